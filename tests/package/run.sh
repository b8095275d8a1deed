#!/usr/bin/env bash
# Installs a build into a folder of its own, then builds and runs a C and a C++ program against it, once through the
# CMake package and once through pkg-config.    run.sh SOURCE_DIR BUILD_DIR
set -euo pipefail
source_dir=$1
build_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/installed" >"$work/log"
cmake -G Ninja -S "$source_dir/tests/package" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/installed" >>"$work/log"
cmake --build "$work/build" >>"$work/log"
"$work/build/use_from_c"
"$work/build/use_from_cpp"

pc=$(dirname "$(find "$work/installed" -name kprcv.pc)")
flags=$(PKG_CONFIG_PATH=$pc pkg-config --cflags --libs kprcv)
# shellcheck disable=SC2086  # flags are words
cc -std=c11 -pedantic-errors -Wall -Wextra -Werror "$source_dir/tests/package/use_from_c.c" $flags -o "$work/use_from_c"
LD_LIBRARY_PATH=$(dirname "$pc") "$work/use_from_c"
