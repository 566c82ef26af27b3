#!/usr/bin/env bash
# Installs the built project into a scratch prefix, then builds and runs C
# programs against it twice: through pkg-config and through find_package.
# tables.c uses libvel.so alone; load.c loads a model file through
# libvel_io.so, which must keep yaml-cpp and expat out of libvel.so.
set -euo pipefail
build="$1"
prefix="$2/prefix"
here="$(cd "$(dirname "$0")" && pwd)"
rm -rf "$2"
cmake --install "$build" --prefix "$prefix" >/dev/null
libdir="$(dirname "$(find "$prefix" -name libvel.so | head -n 1)")"
expected="0.8 0.2 0 1"

if objdump -p "$libdir/libvel.so" | grep -E 'NEEDED.*(yaml|expat)'; then
  echo "libvel.so depends on a loader's library" >&2
  exit 1
fi

model="$2/rain.yaml"
printf '%s\n' 'domain: garden' 'nodes:' \
  '  - {name: Wet, type: boolean, model: {nodes: [], expressions: ["Distribution(0.25, 0.75)"]}}' >"$model"
broken="$2/broken.yaml"
printf 'nodes: [\n' >"$broken"
expected_load="garden 0.25 0.75"

check() {  # check LABEL PROGRAM_PREFIX
  local got
  got="$(LD_LIBRARY_PATH="$libdir" "$2tables")"
  [ "$got" = "$expected" ] || { echo "$1 tables printed '$got', not '$expected'" >&2; exit 1; }
  got="$(LD_LIBRARY_PATH="$libdir" "$2load" "$model")"
  [ "$got" = "$expected_load" ] || { echo "$1 load printed '$got', not '$expected_load'" >&2; exit 1; }
  got="$(LD_LIBRARY_PATH="$libdir" "$2load" "$broken" || true)"
  [ "${got#"$broken:2:1: "}" != "$got" ] || { echo "$1 load of a broken file printed '$got'" >&2; exit 1; }
}

export PKG_CONFIG_PATH="$libdir/pkgconfig"
cc -o "$2/pc-tables" "$here/tables.c" $(pkg-config --cflags --libs vel)
cc -o "$2/pc-load" "$here/load.c" $(pkg-config --cflags --libs vel_io)
check pkg-config "$2/pc-"

cmake -S "$here" -B "$2/consumer" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$2/consumer" >/dev/null
check find_package "$2/consumer/"
echo "installed libraries: pkg-config and find_package builds run"
