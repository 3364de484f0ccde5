# What scripts/install and scripts/uninstall share: the user's own Wine prefix. Sourced, not run.
prefix=own
ZR_PREFIX=${ZR_PREFIX:-${WINEPREFIX:-$HOME/.wine}}
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

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
