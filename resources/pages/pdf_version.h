// Identifiers of the PDF version page.
#define IDD_PDF_VERSION 1600
#define IDS_PDF_VERSION_TAB 2201

#define IDC_PV_PROFILE 1601
#define IDC_PV_CONDITION 1602
#define IDC_PV_STOP 1603
#define IDC_PV_CONTINUE 1604
#define IDC_PV_NOTE 1605
#define IDC_PV_PROFILE_LABEL 1606
#define IDC_PV_CONDITION_LABEL 1607
#define IDC_PV_ERROR_LABEL 1608
#define IDC_PV_VERSION 1609
#define IDC_PV_BROWSE 2904

// The edges of each box follow each other: left, top, right, bottom.
#define IDC_PV_USE_TRIM 1610
#define IDC_PV_TRIM_LEFT 1611
#define IDC_PV_TRIM_TOP 1612
#define IDC_PV_TRIM_RIGHT 1613
#define IDC_PV_TRIM_BOTTOM 1614
#define IDC_PV_USE_BLEED 1620
#define IDC_PV_BLEED_LEFT 1621
#define IDC_PV_BLEED_TOP 1622
#define IDC_PV_BLEED_RIGHT 1623
#define IDC_PV_BLEED_BOTTOM 1624
// Label and unit of an edge, from its edit on.
#define IDC_PV_LABEL_STEP 20
#define IDC_PV_UNIT_STEP 40

// What the versions are for.
#define IDS_PV_NOTE_LOW 1601
#define IDS_PV_NOTE_PLAIN 1602
#define IDS_PV_NOTE_ARCHIVE 1603
#define IDS_PV_NOTE_PRESS_CMYK 1604
#define IDS_PV_NOTE_PRESS 1605
#define IDS_PV_NOTE_NEWEST 1606
// Why a choice is refused.
#define IDS_PV_NO_PROFILE 1607
#define IDS_PV_NO_CONDITION 1608
#define IDS_PV_BAD_BOXES 1609
#define IDS_PV_BAD_MARGIN 1610
// Values of "WhenErroredPDFAX".
#define IDS_PV_ON_ERROR_0 1611
#define IDS_PV_ON_ERROR_1 1612
// A profile's file.
#define IDS_PV_BROWSE_TITLE 20204
#define IDS_PV_BROWSE_PROFILES 20205
#define IDS_PV_BAD_PROFILE 20206

// What its fields and their values are called where somebody is told of them.
#define IDS_PS_VERSION 20079
#define IDS_PS_VERSION_0 20080
#define IDS_PS_VERSION_1 20081
#define IDS_PS_VERSION_2 20082
#define IDS_PS_VERSION_3 20083
#define IDS_PS_VERSION_4 20084
#define IDS_PS_VERSION_5 20085
#define IDS_PS_VERSION_6 20086
#define IDS_PS_VERSION_7 20087
#define IDS_PS_VERSION_8 20088
#define IDS_PS_VERSION_9 20089
#define IDS_PS_VERSION_10 20090
#define IDS_PS_VERSION_11 20091
#define IDS_PS_VERSION_12 20092
#define IDS_PS_WHEN_ERRORED 20093
#define IDS_PS_USE_TRIM_BOX 20094
#define IDS_PS_TRIM_BOX 20095
#define IDS_PS_USE_BLEED_BOX 20096
#define IDS_PS_BLEED_BOX 20097
#define IDS_PS_LEFT 20098
#define IDS_PS_TOP 20099
#define IDS_PS_RIGHT 20100
#define IDS_PS_BOTTOM 20101
#define IDS_PS_ICC_FILE 20102
