#!/bin/sh
# Installs a cross-built tree, cross-builds a host from the installed files alone, and runs that.
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
cmake -S "$consumer" -B "$work/host" -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DNetServer_DIR="$package" > /dev/null
cmake --build "$work/host" > /dev/null
"$@" "$work/host/consumer"
