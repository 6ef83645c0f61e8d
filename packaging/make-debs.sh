#!/bin/sh
# Makes Debian packages of a tree that is built. Needs no network and no root.
# usage: make-debs.sh BUILD_DIR OUT_DIR
set -eu
source=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)
mkdir -p "$2"
out=$(cd "$2" && pwd)
stage=$build/packaging

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
packaged=$(dpkg-parsechangelog --file "$source/packaging/debian/changelog" --show-field Version)
if [ "${packaged%-*}" != "$version" ]; then
  echo "make-debs.sh: the project has version $version, packaging/debian/changelog $packaged: add an entry there" >&2
  exit 1
fi

rm -rf "$stage"
mkdir -p "$stage/netserver"
cp -r "$source/packaging/debian" "$stage/netserver/debian"
(
  cd "$stage/netserver"
  NETSERVER_BUILD=$build NETSERVER_SOURCE=$source dpkg-buildpackage --build=binary --no-sign --no-check-builddeps \
    > "$stage/log" 2>&1
) || {
  tail -20 "$stage/log" >&2
  echo "make-debs.sh: dpkg-buildpackage failed; all it said is in $stage/log" >&2
  exit 1
}
rm -f "$out"/*.deb
mv "$stage"/*.deb "$out/"
rm -rf "$stage/netserver"
ls "$out"/*.deb
