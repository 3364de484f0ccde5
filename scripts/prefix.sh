# What scripts/install, scripts/uninstall and scripts/print share: the user's own Wine prefix. In the package they are
# the commands vantrix-install, vantrix-uninstall and vantrix-print. Sourced, not run.
. "$(dirname "$(realpath "${BASH_SOURCE[0]}")")/wine.sh"
export WINEPREFIX="${WINEPREFIX:-$HOME/.wine}"

usage() { sed -n 's/^#   \(.*\[--prefix DIR\]\)/usage: \1/p' "$0" >&2; exit 2; }
help() { sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"; exit 0; }

# The prefix has to be there: making one is the user's affair.
find_prefix() {
    [ -n "$WINEPREFIX" ] || usage
    [ -f "$WINEPREFIX/system.reg" ] || fail "there is no Wine prefix in $WINEPREFIX (wineboot -i makes one)"
    grep -q '^#arch=win64' "$WINEPREFIX/system.reg" || fail "$WINEPREFIX takes 32-bit programs only"
    WINEPREFIX=$(realpath "$WINEPREFIX")
}

# The built tree: the one that $ZR_STAGE names, the package's, or the project's, built first.
find_stage() {
    stage=${ZR_STAGE:-$root/stage}
    if [ ! -d "$stage" ]; then
        "$root/scripts/build"
        stage=$root/build/stage
    fi
    stage=$(realpath "$stage")
}

# Not through a pipe: processes of Wine that stay for a while would keep it open.
host() { "$root/scripts/wine-run" "$stage/zr_print.exe" "$@" </dev/null; }
