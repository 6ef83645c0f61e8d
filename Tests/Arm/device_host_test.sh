#!/bin/sh
# Installs a cross-built tree, cross-builds a host from the installed files alone, static and shared, and runs that.
# usage: device_host_test.sh BUILD_DIR TOOLCHAIN_FILE CONSUMER_DIR WORK_DIR EMULATOR...
set -eu
build=$1
toolchain=$2
consumer=$3
work=$4
shift 4
rm -rf "$work"
cmake --install "$build" --prefix "$work/root" > /dev/null

package=$(dirname "$(find "$work/root" -name NetServerConfig.cmake)")
for kind in static shared; do
  cmake -S "$consumer" -B "$work/$kind" -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DNetServer_DIR="$package" \
    -DKIND=$kind > /dev/null
  cmake --build "$work/$kind" > /dev/null
  "$@" "$work/$kind/consumer"
done
