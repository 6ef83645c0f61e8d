#!/bin/sh
# Prints how much code and static memory the library takes, in bytes: its three parts and all of them, each linked
# into one shared object without what it depends on, stripped. Fails when the code passes the goal.
# usage: size.sh [BUILD_DIR]      (build/arm when none is named)
set -eu
cd "$(dirname "$0")/.."

GOAL=1572864 # 1.5 MiB of code and constants

build=${1:-build/arm}
strip=$(sed -n 's/^CMAKE_STRIP:[A-Z]*=//p' "$build/CMakeCache.txt")
prefix=${strip%strip} # of the tools that the library was built with
netserver=$build/Server/libnetserver.a
netsocket=$build/LibProject/NetSocket/libnetsocket.a
sharesdk=$build/LibProject/ShareSDK/libsharesdk.a

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# What a host calls; all else stays inside.
cat > "$work/exports" << END
{
  global: _Z[1-9][0-9]NET_SERVER_*; _Z[1-9][0-9]ONVIF_CLIENT_*; _Z[1-9][0-9]ONVIF_SEARCH_*; _Z[1-9][0-9]NET_SOCKET_*; _Z[1-9][0-9]SHARESDK_*;
  local: *;
};
END

# measure NAME ARCHIVE...: all of the archives, needed or not.
measure()
{
  name=$1
  shift
  "${prefix}g++" -shared -s -nodefaultlibs -Wl,--version-script="$work/exports" -o "$work/$name" \
    -Wl,--whole-archive "$@" -Wl,--no-whole-archive -lgcc
  "${prefix}size" "$work/$name" | awk -v name="$name" 'NR == 2 { printf "%-10s %8d %8d %8d\n", name, $1, $2, $3 }'
}

printf '%-10s %8s %8s %8s\n' "" text data bss
measure netserver "$netserver"
measure netsocket "$netsocket"
measure sharesdk "$sharesdk"
measure all "$netserver" "$netsocket" "$sharesdk" | tee "$work/sum"

text=$(awk '{ print $2 }' "$work/sum")
if [ "$text" -gt "$GOAL" ]; then
  echo "size.sh: $text bytes of text are more than the goal, $GOAL" >&2
  exit 1
fi
