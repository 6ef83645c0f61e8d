#!/bin/sh
# Installs a build tree and builds a host and the examples from the installed files alone, by CMake package and by pkg-config, static and
# shared.
# usage: install_test.sh BUILD_DIR SOURCE_DIR WORK_DIR
set -eu
build=$1
source=$2
consumer=$source/Tests/Package/consumer
work=$3
rm -rf "$work"
cmake --install "$build" --prefix "$work/built" > "$work.log"
mv "$work/built" "$work/root" # nothing in the tree knows its place
libraries=$(dirname "$(find "$work/root" -name libnetserver.a)")

fail()
{
  echo "install_test.sh: $*" >&2
  exit 1
}

# check PROGRAM static|shared: it runs, and has the library inside of it or not.
check()
{
  LD_LIBRARY_PATH=$libraries "$1" || fail "$1 ends with status $?"
  kind=static
  if readelf --dynamic "$1" | grep -q 'NEEDED.*\[libnetserver\.so\.1\]'; then kind=shared; fi
  [ "$kind" = "$2" ] || fail "$1 is $kind, not $2"
}

# by_cmake NAME static|shared OPTION...
by_cmake()
{
  name=$1
  kind=$2
  shift 2
  cmake -S "$consumer" -B "$work/$name" -DCMAKE_PREFIX_PATH="$work/root" "$@" > "$work.log"
  cmake --build "$work/$name" > "$work.log" || fail "$(cat "$work.log")"
  check "$work/$name/consumer" "$kind"
}

# by_pkg_config NAME static|shared ARGUMENT...
by_pkg_config()
{
  name=$1
  kind=$2
  shift 2
  # shellcheck disable=SC2046
  c++ -std=c++17 "$consumer/main.cpp" -o "$work/$name" $(pkg-config --cflags --libs "$@")
  check "$work/$name" "$kind"
}

by_cmake cmake-static static -DKIND=static
by_cmake cmake-shared shared -DKIND=shared
by_cmake cmake-default shared
by_cmake cmake-asked static -DBUILD_SHARED_LIBS=OFF
if cmake -S "$consumer" -B "$work/cmake-bad" -DCMAKE_PREFIX_PATH="$work/root" -DKIND=bogus > "$work.log" 2>&1; then
  fail "find_package takes a component that there is not"
fi

# The examples build from it as they stand; without arguments they tell how they are used.
for example in minimal-host nvr-events; do
  cmake -S "$source/examples/$example" -B "$work/$example" -DCMAKE_PREFIX_PATH="$work/root" > "$work.log"
  cmake --build "$work/$example" > "$work.log" || fail "$(cat "$work.log")"
  status=0
  "$work/$example/$example" 2> "$work.log" || status=$?
  if [ $status -ne 2 ] || ! grep -q "^usage: $example " "$work.log"; then fail "$example ends with status $status"; fi
done

PKG_CONFIG_PATH=$libraries/pkgconfig
export PKG_CONFIG_PATH
by_pkg_config by-pkg-config-shared shared netserver
by_pkg_config by-pkg-config-static static netserver-static

# The applications find the libraries and the pages beside them, wherever the tree is.
if [ -x "$work/root/bin/netserver-camera" ]; then
  for program in netserver-camera netserver-nvr; do
    version=$("$work/root/bin/$program" --version)
    [ "${version%% *}" = $program ] || fail "$program --version: $version"
    [ -s "$work/root/share/man/man1/$program.1" ] || fail "no man page of $program"
  done
  [ -s "$work/root/share/netserver-camera/www/index.html" ] || fail "no page of the camera"
  grep -q "^ExecStart=$work/built/bin/netserver-camera " "$work/root/lib/systemd/system/netserver-camera.service" ||
    fail "the service starts something else"
fi

# A host sees the functions of the public headers, and not what they are made of.
for library in netserver netsocket sharesdk; do
  odd=$(nm --dynamic --defined-only --demangle "$libraries/lib$library.so" |
    grep -vE ' T (NET_SERVER|ONVIF_CLIENT|ONVIF_SEARCH|NET_SOCKET|SHARESDK)_[A-Za-z0-9_]+\(') || true
  [ -z "$odd" ] || fail "lib$library.so exports: $odd"
  readelf --dynamic "$libraries/lib$library.so" | grep -q "SONAME.*\[lib$library\.so\.1\]" || fail "lib$library: SONAME"
done

# A tree of a device that has no shared libraries.
rm "$libraries"/*.so*
by_pkg_config by-pkg-config-static-only static --static netserver

echo "built and run by CMake package and pkg-config, static and shared"
