# What scripts/install and scripts/uninstall share: the user's own Wine prefix. Sourced, not run.
own_prefix=${WINEPREFIX:-$HOME/.wine}
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
export WINEPREFIX=$own_prefix

usage() { sed -n 's/^#   \(scripts\/\)/usage: \1/p' "$0" >&2; exit 2; }

# The prefix has to be there: making one is the user's affair.
find_prefix() {
    [ -n "$WINEPREFIX" ] || usage
    [ -f "$WINEPREFIX/system.reg" ] || fail "there is no Wine prefix in $WINEPREFIX (wineboot -i makes one)"
    grep -q '^#arch=win64' "$WINEPREFIX/system.reg" || fail "$WINEPREFIX takes 32-bit programs only"
    WINEPREFIX=$(realpath "$WINEPREFIX")
}

find_stage() {
    if [ -n "${ZR_STAGE:-}" ]; then
        stage=$(realpath "$ZR_STAGE")
    else
        "$root/scripts/build"
        stage=$root/build/stage
    fi
}

# Not through a pipe: processes of Wine that stay for a while would keep it open.
host() { "$root/scripts/wine-run" "$stage/zr_print.exe" "$@" </dev/null; }
