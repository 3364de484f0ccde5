// Identifiers of the print processor's resources.
#ifndef ZR_PROCESSOR_RESOURCE_H
#define ZR_PROCESSOR_RESOURCE_H

#define IDD_PROGRESS 100
#define IDC_DOCUMENT 101
#define IDC_STATE 102

// Each language's texts begin at its own number.
#define IDS_EN 16
#define IDS_JA 32
#define IDS_KR 48
#define IDS_CHS 64
#define IDS_CHT 80

#define TEXT_BEGUN 0
#define TEXT_PAGE 1
#define TEXT_PAGE_OF 2
#define TEXT_CANCEL 3
#define TEXT_CANCELLING 4

#endif
