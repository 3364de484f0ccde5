// Identifiers of the box that shows what a setting's values change to.
#define IDD_CHANGES 4500

#define IDC_CHANGES_ICON 4505
#define IDC_CHANGES 4506
