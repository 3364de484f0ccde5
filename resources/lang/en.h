// English texts.
#ifndef ZR_RESOURCES_LANG_EN_H
#define ZR_RESOURCES_LANG_EN_H

#define TEXT_JOB_FAILED \
    "The PDF file was not created. Correct what the title of this message names, then print again."
#define TEXT_NO_COLOUR_PROFILE "Colour profile not found: "
#define TEXT_NO_SETTING_FILE "Print setting not found: "
#define TEXT_BAD_SETTING_FILE "Print setting cannot be read: "
#define TEXT_NO_OUTPUT_CONDITION "The print setting names no output condition"
#define TEXT_BAD_PAGE_BOXES "The trim box of the print setting is not inside its bleed box"

#define TEXT_CUSTOM_PAPER "Custom size"

#define TEXT_SETTINGS_TAB "PDF Settings"
#define TEXT_OPTION_TAB "Options"

// Names of sections, fields and values.

#endif
