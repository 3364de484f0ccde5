# Pictures of settings in use, in high contrast, and of work by the keyboard alone. Sourced by screenshots, not run.

# --- colours -----------------------------------------------------------------------------------------------------

# The registry as it was before `high_contrast`; there only while it is not.
plain_registry=$WINEPREFIX/user.reg.plain

take_registry_back() { [ ! -f "$plain_registry" ] || mv -f "$plain_registry" "$WINEPREFIX/user.reg"; }

# Takes `high_contrast` back, also that of a run that was killed.
plain_colours() {
    [ -f "$plain_registry" ] || return 0
    stop_wine
    take_registry_back
    dpi=  # whatever it was then
    start_wine
}

# The colours of Windows' scheme with light letters on black. A theme would draw over them.
high_contrast() {
    stop_wine
    cp "$WINEPREFIX/user.reg" "$plain_registry.part"
    mv -f "$plain_registry.part" "$plain_registry"
    start_wine
    colour() { printf "\"%s\"=\"$1\"\n" "${@:2}"; }  # colour 'RED GREEN BLUE' NAME...
    {
        printf '%s\n\n%s\n' 'Windows Registry Editor Version 5.00' '[HKEY_CURRENT_USER\Control Panel\Colors]'
        colour '0 0 0' AppWorkSpace Background ButtonAlternateFace ButtonFace GradientInactiveTitle HilightText \
            InactiveTitle InfoWindow Menu MenuBar Scrollbar Window
        colour '255 255 255' ActiveBorder ButtonDkShadow ButtonLight ButtonText InactiveBorder InactiveTitleText \
            InfoText MenuText TitleText WindowFrame WindowText
        colour '192 192 192' ButtonHilight
        colour '128 128 128' ButtonShadow
        colour '63 242 63' GrayText
        colour '26 235 255' Hilight MenuHilight
        colour '255 255 0' HotTrackingColor
        colour '55 0 110' ActiveTitle GradientActiveTitle
        printf '\n%s\n"ThemeActive"="0"\n' \
            '[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\ThemeManager]'
    } >"$WINEPREFIX/drive_c/colours.reg"
    "$wine" reg import 'C:\colours.reg' >/dev/null 2>&1 </dev/null || fail "the colours could not be set"
    restart_wine
}

# --- settings in use ---------------------------------------------------------------------------------------------

# Two settings in use: what one of them does not allow is set in the other.
draft='Draft for comments'
press='Brochure for the press'

write_settings_in_use() {
    cp /usr/share/color/icc/ghostscript/default_cmyk.icc "$WINEPREFIX/drive_c/press.icc"
    printf '\xef\xbb\xbf%s' '{
        "PSName": "'"$draft"'", "PSComment": [],
        "Addition": {"Str": {"FileName": "{date} {title}"}},
        "General": {"NoOutputBlankPage": true, "URLLink": true, "WhenSameName": 2, "SaveStyle": 1,
            "OutputFolder": "C:\\Drafts", "Scale": 90},
        "Color": {"ColorMode": 2, "MonoImageThreshold": 150, "MonoImageFilter": 4},
        "Compression": {"HighCompress": true, "Mono": {"ResolutionThreshold": 900, "ResolutionTarget": 600}},
        "Font": {"EmbedBase14": false, "WhenFailedToEmbed": 0, "Fonts": ["Arial", "Courier New", "Times New Roman"]},
        "Security": {"UserPassword": "for-readers", "MasterPassword": "for-authors", "AllowCopyContent": true,
            "EditPermission": 3, "PrintPermission": 1},
        "Watermark": {"Style": 1, "Text": "DRAFT", "FontSize": 96, "TextColor": 12611584, "Transparency": 50},
        "OpenAction": {"PageLayout": 2, "PageAdjust": 3, "PageMode": 1, "ShowDocumentTitle": true},
        "Summary": {"Subject": "For comments", "Author": "Documentation", "Keywords": "draft",
            "EmbedPSFileName": true}}' | own_setting in-use-draft.ps4
    printf '\xef\xbb\xbf%s' '{
        "PSName": "'"$press"'", "PSComment": [],
        "Addition": {"Str": {"OutputCondition": "CGATS TR 001"}},
        "Color": {"BlackToK100": true},
        "PDFVersion": {"Version": 10, "ICCFileName": "C:\\press.icc", "UseTrimBox": true, "UseBleedBox": true,
            "TrimBox": {"left": 10, "top": 10, "right": 10, "bottom": 10},
            "BleedBox": {"left": 7, "top": 7, "right": 7, "bottom": 7}}}' | own_setting in-use-press.ps4
}

own_setting() {  # own_setting FILE: the standard input becomes a setting of the user's own
    mkdir -p "$own_settings"
    cat >"$own_settings/$1"
}

list_with() {  # list_with FILE: the list, with that setting as the printer's
    reg add "$product\\Corvanta Vantrix 8.0" /v PDFSettingFileName /d "$1"
    host_sheet --document
    second_page
}

pages_in_use() {  # pages_in_use FILE NAME PICTURE [PAGE...]: as shoot_pages, of the sheet that edits that setting
    list_with "$1"
    keys alt+e  # once: the sheet has an E of its own
    await "$2"
    shoot_pages "${@:3}"
    close_programs
}

picture_in_use() {
    write_settings_in_use
    pages_in_use in-use-press.ps4 "$press" en/PAGE-used-96 pdf-version
    pages_in_use in-use-draft.ps4 "$draft" en/PAGE-used-96 colour fonts security watermark
}

# What is looked at only: the list, a sheet, and what it shows in grey.
look_at() {  # look_at FOLDER DPI
    local images=$looked_at
    use_dpi "$2"
    write_settings_in_use
    list_with in-use-draft.ps4
    shoot "$1/settings-$2" "$window"
    close_programs
    pages_in_use in-use-draft.ps4 "$draft" "$1/PAGE-$2"
    pages_in_use in-use-press.ps4 "$press" "$1/PAGE-press-$2" pdf-version colour security
}

picture_high_contrast() {
    high_contrast
    local dots
    for dots in "${resolutions[@]}"; do
        look_at high-contrast "$dots"
    done
}

# --- by keyboard -------------------------------------------------------------------------------------------------

# The road without a mouse. What each key has done is seen in the files, too.
saved() { grep -qsF "\"PSName\": \"$1\"" "$own_settings"/*.ps4; }

deleted() { ! saved "$1"; }

await_setting() {  # await_setting NAME saved|deleted
    for _ in $(seq 50); do
        ! "$2" "$1" || return 0
        sleep 0.2
    done
    shoot road/failed
    fail "the setting \"$1\" was not $2"
}

shoot_step() {  # shoot_step NAME
    step=$((step + 1))
    shoot "road/$(printf '%02d' "$step")-$1"
}

import_by_keys() {  # import_by_keys FILE: up to the name in the dialog
    keys_for "^$(text_of en IDS_IMPORT_TITLE)\$" alt+i
    keys ctrl+a
    xdotool type --delay 60 "C:\\$1"
}

picture_keyboard_road() {
    local images=$looked_at step=0 message
    message="^$(text_of en IDS_REFUSED)\$"
    printf '\xef\xbb\xbf{\n"PSComment": [],\n"PSName": }\n' >"$WINEPREFIX/drive_c/damaged.ps4"
    printf '\xef\xbb\xbf{\n"PSComment": [],\n"PSName": "Reports"}\n' >"$WINEPREFIX/drive_c/good.ps4"
    host_sheet --document
    settle
    keys alt+s  # the list
    shoot_step list
    keys_for "^$(text_of en IDS_SHEET_NEW)\$" alt+s ctrl+n
    shoot_step new
    keys ctrl+a
    xdotool type --delay 60 Minutes
    keys Tab Tab Tab space  # the third check box
    shoot_step name-and-choice
    keys shift+Tab shift+Tab shift+Tab shift+Tab Right Right alt+g  # by the tabs to Colour: shades of grey
    shoot_step another-page
    keys Return
    await_setting Minutes saved
    shoot_step saved
    keys_for 'copy of Minutes$' alt+s ctrl+d
    shoot_step copy
    keys Return
    await_setting 'Minutes(1)' saved
    settle
    keys alt+s F2
    xdotool type --delay 60 Letters
    shoot_step rename
    keys Return
    await_setting Letters saved
    shoot_step renamed
    keys_for "$message" alt+s Delete
    shoot_step delete
    keys Return
    await_setting Letters deleted
    shoot_step deleted
    import_by_keys damaged.ps4
    shoot_step import
    keys_for "$message" Return
    shoot_step import-damaged
    keys Return
    settle
    import_by_keys good.ps4
    keys Return
    await_setting Reports saved
    shoot_step import-good
}
