// Identifiers of the Compression page.
#define IDD_COMPRESS 160
#define IDS_COMPRESS_TAB 1160

#define IDC_CMP_ASCII 161
#define IDC_CMP_TEXT 162
#define IDC_CMP_HIGH 163
#define IDC_CMP_NOTE 164

// The controls of one kind of image, from its first control on.
#define IDC_CMP_COLOUR 170
#define IDC_CMP_GREY 190
#define IDC_CMP_MONO 210
#define CMP_METHOD 0
#define CMP_QUALITY 1
#define CMP_QUALITY_SPIN 2
#define CMP_SAMPLING 3
#define CMP_THRESHOLD 4
#define CMP_TARGET 5
#define CMP_GROUP 6
#define CMP_METHOD_LABEL 7
#define CMP_QUALITY_LABEL 8
#define CMP_QUALITY_UNIT 9
#define CMP_SAMPLING_LABEL 10
#define CMP_THRESHOLD_LABEL 11
#define CMP_THRESHOLD_UNIT 12
#define CMP_TARGET_LABEL 13
#define CMP_TARGET_UNIT 14

// Values of the lists.
#define IDS_CMP_METHOD_0 1161
#define IDS_CMP_METHOD_1 1162
#define IDS_CMP_METHOD_2 1163
#define IDS_CMP_METHOD_3 1164
#define IDS_CMP_METHOD_4 1165
#define IDS_CMP_MONO_METHOD_0 1166
#define IDS_CMP_MONO_METHOD_1 1167
#define IDS_CMP_MONO_METHOD_2 1168
#define IDS_CMP_MONO_METHOD_3 1169
#define IDS_CMP_MONO_METHOD_4 1170
#define IDS_CMP_SAMPLING_0 1171
#define IDS_CMP_SAMPLING_1 1172
#define IDS_CMP_SAMPLING_2 1173
#define IDS_CMP_SAMPLING_3 1174
// What the page says of the colour mode.
#define IDS_CMP_NOTE_COLOUR 1175
#define IDS_CMP_NOTE_GREY 1176
#define IDS_CMP_NOTE_MONO 1177
// Why values are refused.
#define IDS_CMP_BAD_RESOLUTION 1178
#define IDS_CMP_BAD_QUALITY 1179
#define IDS_CMP_TARGET_ABOVE 1180

// What its fields and their values are called where somebody is told of them.
#define IDS_PS_ASCII 20046
#define IDS_PS_TEXT_AND_LINE_ART 20047
#define IDS_PS_HIGH_COMPRESS 20048
#define IDS_PS_DOWN_SAMPLING 20052
#define IDS_PS_METHOD 20053
#define IDS_PS_JPEG_QUALITY 20054
#define IDS_PS_THRESHOLD 20055
#define IDS_PS_TARGET 20056
