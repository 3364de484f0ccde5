# What scripts/install, scripts/uninstall and scripts/print share: the user's own Wine prefix. In the package they are
# the commands vantrix-install, vantrix-uninstall and vantrix-print. Sourced, not run.
prefix=own
ZR_PREFIX=${ZR_PREFIX:-${WINEPREFIX:-$HOME/.wine}}
. "$(dirname "$(realpath "${BASH_SOURCE[0]}")")/wine.sh"

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
