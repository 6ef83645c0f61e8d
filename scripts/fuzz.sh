#!/bin/sh
# Runs every fuzz target for FUZZ_SECONDS (60) each, from its seed corpus. What it finds stays under build/fuzz.
# usage: fuzz.sh [target...]
set -eu
cd "$(dirname "$0")/.."

cmake --preset fuzz
cmake --build --preset fuzz
if [ $# -eq 0 ]; then
  set -- $(cd build/fuzz/Fuzz && find . -maxdepth 1 -type f -perm -u+x -name 'Fuzz*' | sed 's|^\./||' | sort)
fi
number=0
for target in "$@"; do
  number=$((number + 1))
  echo "== $target ($number of $#, ${FUZZ_SECONDS:-60} seconds)"
  if [ ! -x "build/fuzz/Fuzz/$target" ]; then
    echo "fuzz.sh: no target '$target'; the folder Fuzz has a source for each" >&2
    exit 2
  fi
  mkdir -p "build/fuzz/found/$target"
  dictionary=""
  [ ! -f "Fuzz/$target.dict" ] || dictionary="-dict=Fuzz/$target.dict"
  "build/fuzz/Fuzz/$target" -max_total_time="${FUZZ_SECONDS:-60}" -print_final_stats=1 -close_fd_mask=2 \
    ${dictionary:+"$dictionary"} \
    -artifact_prefix="build/fuzz/found/$target-" "build/fuzz/found/$target" "Fuzz/corpus/$target" || {
    echo "fuzz.sh: $target found something; the input is in build/fuzz/found/$target-*, and" \
      "'build/fuzz/Fuzz/$target INPUT' shows what it does" >&2
    exit 1
  }
done
