// Identifiers of the language libraries' resources, read by the resource scripts and by C++.
#ifndef ZR_RESOURCES_IDS_H
#define ZR_RESOURCES_IDS_H

// Messages of a job.
#define IDS_JOB_FAILED 19
#define IDS_NO_COLOUR_PROFILE 511
#define IDS_NO_SETTING_FILE 513
#define IDS_BAD_SETTING_FILE 514
#define IDS_NO_OUTPUT_CONDITION 515
#define IDS_BAD_PAGE_BOXES 516

// The paper list.
#define IDS_CUSTOM_PAPER 2200

// Sheets.
#define IDS_SETTINGS_TAB 1370
#define IDS_OPTION_TAB 4399

// Names of sections, fields and values, for the sentences that tell what differs between two settings
// (20000 to 20999).

#endif
