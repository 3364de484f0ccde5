// Identifiers of the edit sheet's button for the default values, and of the box that asks which pages are
// meant.
#define IDD_RESTORE 2900

#define IDC_RESTORE 2901
#define IDC_RESTORE_PAGE 2902
#define IDC_RESTORE_ALL 2903

#define IDS_RESTORE_BUTTON 20200
