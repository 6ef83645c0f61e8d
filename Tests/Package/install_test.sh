#!/bin/sh
# Installs a build tree and builds a host from the installed files alone, by CMake package and by pkg-config.
# usage: install_test.sh BUILD_DIR CONSUMER_DIR WORK_DIR
set -eu
build=$1
consumer=$2
work=$3
rm -rf "$work"
cmake --install "$build" --prefix "$work/root" > /dev/null

cmake -S "$consumer" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$work/root" > /dev/null
cmake --build "$work/cmake" > /dev/null
"$work/cmake/consumer"

PKG_CONFIG_PATH=$(dirname "$(find "$work/root" -name netserver.pc)")
export PKG_CONFIG_PATH
# shellcheck disable=SC2046
c++ -std=c++17 "$consumer/main.cpp" -o "$work/by-pkg-config" $(pkg-config --cflags --libs --static netserver)
LD_LIBRARY_PATH=$(pkg-config --variable=libdir netserver) "$work/by-pkg-config"
