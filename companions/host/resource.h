// Identifiers of the program's resources.
#ifndef ZR_HOST_RESOURCE_H
#define ZR_HOST_RESOURCE_H

#define IDR_DATA_FILE 100

#endif
