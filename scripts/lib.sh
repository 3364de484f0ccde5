# What the project's own scripts share beyond wine.sh: locks, builds, prefixes of their own. Sourced, not run.
. "$(dirname "${BASH_SOURCE[0]}")/wine.sh"
export ZR_VIEWER="${ZR_VIEWER:-none}"  # no finished PDF opens a window

mkdir -p "$root/build" 2>/dev/null || fail "the clone $root cannot be written to"
for folder in "$root"/build/{,release,test,stage,demo} "$WINEPREFIX"; do
    [ ! -d "$folder" ] || [ -w "$folder" ] || fail "the folder ${folder%/} cannot be written to; is it another user's?"
done
has_room() { [ "$(df -Pk "$root/build" | awk 'NR == 2 {print $4}')" -ge 1024 ]; }
need_room() { has_room || fail "the disk that holds $root is full"; }
need_room

# Runs a command while no other run of the project's scripts does the same kind of work.
alone() {  # alone KIND COMMAND...
    local lock="$root/build/.$1.lock"
    shift
    (
        flock -n 8 || { say "waiting for another run to finish"; flock 8; }
        "$@"
    ) 8>"$lock"
}

make_prefix() {
    [ -f "$WINEPREFIX/.ready" ] && return
    say "making a Wine prefix in ${WINEPREFIX#"$root"/}"
    timeout 180 wineboot -i >/dev/null 2>&1 8>&- 9>&- || fail "wineboot could not make $WINEPREFIX"
    # Without a window manager each managed window that closes costs two seconds.
    timeout 60 "$root/scripts/wine-run" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null
    if [ -n "${ZR_GRAPHICS:-}" ]; then
        timeout 60 "$root/scripts/wine-run" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d "$ZR_GRAPHICS" /f >/dev/null
    fi
    timeout 30 wineserver -k || true  # the session that made it may hold another display
    timeout 30 wineserver -w || true
    touch "$WINEPREFIX/.ready"
}

# Makes the prefix where it is missing and holds it until the script ends. The last script that holds it stops
# its Wine server, so that nothing of it stays behind.
hold_prefix() {
    if ! is_own_prefix; then
        check_prefix
        "$root/scripts/wine-run" cmd /c exit >/dev/null 2>&1 </dev/null || true
        return
    fi
    mkdir -p "$(dirname "$WINEPREFIX")"
    exec 9>"$WINEPREFIX.lock"
    flock -s 9
    alone prefix make_prefix 9>&-
    trap release_prefix EXIT
    start_wine
}

# Starts the Wine server and the system processes that come with the first program. Later programs would pass
# their output on to them, and whoever reads it would wait for their end.
start_wine() {
    wineserver -p >/dev/null 2>&1 8>&- 9>&- || true  # it runs already
    "$root/scripts/wine-run" cmd /c exit >/dev/null 2>&1 </dev/null || true
}

stop_wine() {
    timeout 30 wineserver -k 2>/dev/null || true
    timeout 30 wineserver -w 2>/dev/null || true
}

# What is set in the registry for the whole session counts from here on.
restart_wine() {
    stop_wine
    start_wine
}

# The font of windows' titles as the registry has it, a LOGFONTW of 12 pixels: Wine's own shows boxes for the
# characters of the Far East.
caption_font() {  # caption_font FACE
    {
        printf '\xf4\xff\xff\xff'
        head -c 12 /dev/zero
        printf '\x90\x01\0\0\0\0\0\x01\0\0\0\0'
        printf '%s' "$1" | iconv -f UTF-8 -t UTF-16LE
        head -c $((64 - 2 * ${#1})) /dev/zero
    } | od -An -v -tx1 | tr -s ' \n' ',,' | sed 's/^,/"CaptionFont"=hex:/; s/,$//'
}

# Wine's own fonts (text and window buttons) are found in the prefix only; free fonts, one of nearly the same widths
# and one that has the characters of the Far East, stand in for the dialogs'. Counts after a restart.
set_fonts() {
    cp -u /usr/share/wine/fonts/{tahoma,tahomabd,marlett}.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
    {
        printf '%s\n\n' 'Windows Registry Editor Version 5.00' '[HKEY_CURRENT_USER\Software\Wine\Fonts\Replacements]'
        printf '"%s"="Open Sans"\n' 'Segoe UI'
        printf '"%s"="WenQuanYi Micro Hei"\n' 'MS UI Gothic' 'MS PGothic' 'Meiryo UI' 'Yu Gothic UI' 'Gulim' 'Dotum' \
            'Malgun Gothic' 'SimSun' 'Microsoft YaHei' 'Microsoft YaHei UI' 'MingLiU' 'PMingLiU' \
            'Microsoft JhengHei' 'Microsoft JhengHei UI'
        printf '\n%s\n%s\n' '[HKEY_CURRENT_USER\Control Panel\Desktop\WindowMetrics]' \
            "$(caption_font 'WenQuanYi Micro Hei')"
    } >"$WINEPREFIX/drive_c/fonts.reg"
    "$root/scripts/wine-run" reg import 'C:\fonts.reg' >/dev/null 2>&1 </dev/null || fail "the fonts could not be set"
}

release_prefix() {
    if flock -n -x 9; then
        stop_wine
    fi
    exec 9>&-
}

# Configures and builds a preset, or some targets of it; quiet but for its progress and its errors.
build_preset() {  # build_preset release|test [TARGET...]
    cd "$root"
    [ -f "build/$1/build.ninja" ] || cmake --preset "$1" >"build/configure-$1.log" 2>&1 ||
        { need_room; cat "build/configure-$1.log" >&2; fail "cmake could not configure the $1 build"; }
    cmake --build --preset "$1" ${2:+--target "${@:2}"} || { need_room; fail "the $1 build failed"; }
}
