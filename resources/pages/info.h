// Identifiers of the Document page. IDC_NAME shows the name of the setting here, too.
#define IDD_INFO 350
#define IDS_INFO_TAB 1360

#define IDC_INFO_TITLE 3501
#define IDC_INFO_SUBJECT 3502
#define IDC_INFO_AUTHOR 3503
#define IDC_INFO_KEYWORDS 3504
#define IDC_INFO_CREATOR 3505
#define IDC_INFO_SETTING_NAME 3506

// What becomes of a text that is left empty.
#define IDS_CUE_TITLE 20201
#define IDS_CUE_LEFT_OUT 20202
#define IDS_CUE_CREATOR 20208

// What its fields and their values are called where somebody is told of them.
#define IDS_PS_TITLE 20061
#define IDS_PS_SUBJECT 20062
#define IDS_PS_AUTHOR 20063
#define IDS_PS_KEYWORDS 20064
#define IDS_PS_CREATOR 20065
#define IDS_PS_EMBED_PS_NAME 20066
