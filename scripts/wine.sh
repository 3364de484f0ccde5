# What every script shares, here and in the installed package: help, messages, Wine's surroundings. Sourced, not run.
# Before that a script says what it works with:
#   prefix=NAME        a Wine prefix in build/; --prefix DIR or ZR_PREFIX exchange it
#   fixed_prefix=NAME  one whose settings the script changes and which nothing exchanges
#   command_follows=1  what stands behind the first word without a dash is another program's
set -euo pipefail

root=$(cd "$(dirname "$(realpath "${BASH_SOURCE[0]}")")/.." && pwd)
say() { printf '==> %s\n' "$*"; }
fail() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }
refuse() { printf '%s: %s (--help tells more)\n' "$(basename "$0")" "$*" >&2; exit 2; }  # wrong words
need_value() { [ -n "${2:-}" ] || refuse "$1 takes a value"; }  # need_value "$@": the option that stands first
no_words() { [ $# -eq 0 ] || refuse "there is no argument $1"; }

# The comment at a script's head is its help. --prefix goes, so that the script sees its own words only.
words=()
while [ $# -gt 0 ]; do
    case $1 in
        --help) sed -n '2,/^[^#]\|^$/s/^# \{0,1\}//p' "$0"; exit 0 ;;
        --prefix | --prefix=*)
            if [ -n "${prefix:-}" ]; then
                [ "$1" = --prefix ] || set -- --prefix "${1#*=}" "${@:2}"
                need_value "$@"
                ZR_PREFIX=$2
                shift 2
                continue
            fi
            ;;
        --) break ;;
        -*) ;;
        *) [ -z "${command_follows:-}" ] || break ;;
    esac
    words+=("$1")
    shift
done
set -- ${words[@]+"${words[@]}"} "$@"

WINEPREFIX=$root/build/${fixed_prefix:-${prefix:-wine}}  # whatever the user's own is
[ -n "${fixed_prefix:-}" ] || WINEPREFIX=$(realpath -m -- "${ZR_PREFIX:-$WINEPREFIX}")
export WINEPREFIX ZR_PREFIX=$WINEPREFIX  # the latter for wine-run
is_own_prefix() { [[ $WINEPREFIX == "$root"/build/* ]]; }
export LC_ALL=C.UTF-8
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml,winedbg.exe=}"

# Another prefix than the project's own has to be there, and stays as it is set.
check_prefix() {
    [ -f "$WINEPREFIX/system.reg" ] || fail "there is no Wine prefix in $WINEPREFIX (wineboot -i makes one)"
    grep -q '^#arch=win64' "$WINEPREFIX/system.reg" || fail "$WINEPREFIX takes 32-bit programs only"
    [ -e "$WINEPREFIX/dosdevices/z:" ] || fail "$WINEPREFIX has no drive Z: for the files of this system (winecfg, Drives)"
}
