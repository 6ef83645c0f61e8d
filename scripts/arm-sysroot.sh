#!/bin/sh
# Makes a sysroot of 32-bit ARM out of Debian's armhf packages, in build/arm-sysroot: what the library and its tests
# build against and run with. Nothing is installed on this machine and no rights are needed. Does nothing when it is
# there.
set -eu
cd "$(dirname "$0")/.."

PACKAGES="libc6-dev libstdc++-12-dev
  libevent-dev libtinyxml2-dev libspdlog-dev nettle-dev uuid-dev
  libgtest-dev libgmock-dev"

sysroot="$PWD/build/arm-sysroot"
work="$PWD/build/arm-sysroot.work"

# Other packages, or another way to unpack them, make it anew.
stamp=$(cksum < scripts/arm-sysroot.sh)
[ "$stamp" != "$(cat "$sysroot/stamp" 2> /dev/null)" ] || exit 0

# The archive of this machine's own packages; the release alone, since its updates come to the architectures at
# different times.
codename=$(. /etc/os-release && echo "${VERSION_CODENAME:-}")
archive=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' "Created-By: Packages" \
  "Label: Debian" "Codename: $codename" "Component: main" | sort -u | head -n 1)
if [ -z "$archive" ]; then
  echo "arm-sysroot.sh: apt has no Debian archive of '$codename'; see sources.list(5), then run 'apt-get update'" >&2
  exit 1
fi

# An apt with an architecture and a state of its own. All else, proxies for one, is as the machine has it.
rm -rf "$work" "$sysroot"
mkdir -p "$work/state/lists/partial" "$work/cache/archives/partial" "$work/root"
: > "$work/status"
echo "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $archive" > "$work/sources.list"
cat > "$work/apt.conf" << END
#clear APT::Architectures;
#clear APT::Update::Post-Invoke;
#clear APT::Update::Post-Invoke-Success;
#clear DPkg::Post-Invoke;
APT::Architecture "armhf";
APT::Architectures { "armhf"; };
APT::Sandbox::User "$(id -un)";
Acquire::Languages "none";
Dir::State "$work/state";
Dir::State::status "$work/status";
Dir::Cache "$work/cache";
Dir::Etc::SourceList "$work/sources.list";
Dir::Etc::SourceParts "/dev/null";
END
echo "Fetching Debian's armhf packages into build/arm-sysroot"
apt-get -qq -c "$work/apt.conf" update
apt-get -qq -c "$work/apt.conf" install --yes --download-only --no-install-recommends $PACKAGES

for package in "$work"/cache/archives/*.deb; do
  dpkg-deb -x "$package" "$work/root"
done

# A link to "/lib/x" means the file of the sysroot, not this machine's.
find "$work/root" -type l -lname '/*' | while read -r link; do
  ln -snfr "$work/root$(readlink "$link")" "$link"
done

echo "$stamp" > "$work/root/stamp"
mv "$work/root" "$sysroot"
rm -rf "$work"
