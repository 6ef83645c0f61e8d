#!/bin/sh
# Installs the Debian 12 packages that a task needs. Does nothing when they are there.
# usage: deps.sh [GROUP]...      (build when none is named; the groups are below)
set -eu

# What builds the library, the camera, the tests and the benchmarks, and the clients that the tests drive.
BUILD="cmake ninja-build g++ pkg-config
  libevent-dev libtinyxml2-dev libspdlog-dev nettle-dev uuid-dev
  libcli11-dev libsqlite3-dev libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev
  gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-plugins-bad gstreamer1.0-plugins-ugly
  gstreamer1.0-x gstreamer1.0-libav gstreamer1.0-tools
  libgtest-dev libgmock-dev libbenchmark-dev
  python3 ffmpeg curl libxml2-utils chromium iproute2 util-linux gupnp-tools
  locales debhelper dpkg-dev mandoc systemd doxygen graphviz gnuplot-nox"
FORMAT="git clang-format"
LINT="clang clang-tidy cppcheck"
COVERAGE="gcovr"
DEB="lintian"
FUZZ="clang libclang-rt-14-dev"
# The libraries are those of the device: see arm-sysroot.sh.
ARM="cmake ninja-build pkg-config g++-arm-linux-gnueabihf qemu-user debian-archive-keyring python3 iproute2 util-linux"

packages=""
for group in "${@:-build}"; do
  case "$group" in
    build) packages="$packages $BUILD" ;;
    format) packages="$packages $FORMAT" ;;
    lint) packages="$packages $BUILD $FORMAT $LINT" ;;
    coverage) packages="$packages $BUILD $COVERAGE" ;;
    fuzz) packages="$packages $BUILD $FUZZ" ;;
    arm) packages="$packages $ARM" ;;
    deb) packages="$packages $BUILD $DEB" ;;
    *) echo "deps.sh: no group '$group'; there are build, format, lint, coverage, fuzz, arm and deb" >&2; exit 2 ;;
  esac
done

if ! command -v dpkg-query > /dev/null; then
  echo "deps.sh: this is no Debian system; the packages needed are:" $packages >&2
  exit 0
fi

missing=""
for package in $packages; do
  status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2> /dev/null) || status=""
  [ "$status" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=""
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo > /dev/null; then
    echo "deps.sh: these packages are missing; install them as root:$missing" >&2
    exit 1
  fi
  as_root="sudo"
fi
echo "Installing:$missing"
$as_root apt-get update
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $missing
