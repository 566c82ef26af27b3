#!/usr/bin/env bash
# Installs the built project into a scratch prefix, then builds and runs a C
# program against it twice: through pkg-config and through find_package.
set -euo pipefail
build="$1"
prefix="$2/prefix"
here="$(cd "$(dirname "$0")" && pwd)"
rm -rf "$2"
cmake --install "$build" --prefix "$prefix" >/dev/null
libdir="$(dirname "$(find "$prefix" -name libvel.so | head -n 1)")"
expected="0.8 0.2 0 1"

export PKG_CONFIG_PATH="$libdir/pkgconfig"
cc -o "$2/tables-pc" "$here/tables.c" $(pkg-config --cflags --libs vel)
got="$(LD_LIBRARY_PATH="$libdir" "$2/tables-pc")"
[ "$got" = "$expected" ] || { echo "pkg-config build printed '$got', not '$expected'" >&2; exit 1; }

cmake -S "$here" -B "$2/consumer" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$2/consumer" >/dev/null
got="$(LD_LIBRARY_PATH="$libdir" "$2/consumer/tables")"
[ "$got" = "$expected" ] || { echo "find_package build printed '$got', not '$expected'" >&2; exit 1; }
echo "installed library: pkg-config and find_package builds run"
