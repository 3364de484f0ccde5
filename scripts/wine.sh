# What every script that runs Wine shares, here and in the installed package: messages and Wine's surroundings.
# Sourced, not run.
set -euo pipefail

root=$(cd "$(dirname "$(realpath "${BASH_SOURCE[0]}")")/.." && pwd)
export LC_ALL=C.UTF-8
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml,winedbg.exe=}"

say() { printf '==> %s\n' "$*"; }
fail() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }
