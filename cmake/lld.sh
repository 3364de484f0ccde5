#!/usr/bin/env bash
# Stands between the compiler and the linker it was built with (-wrapper) and runs lld in its place: the test program
# is linked in a second. Debian's mingw-w64 compiler looks for no other linker, whatever -fuse-ld says.
shift  # the linker
arguments=()
while [ $# -gt 0 ]; do
    case $1 in
        -plugin) shift ;;  # of link-time optimisation, which lld does its own way
        -plugin-opt=*) ;;
        *) arguments+=("$1") ;;
    esac
    shift
done
exec ld.lld "${arguments[@]}"
