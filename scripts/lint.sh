#!/bin/sh
# Checks the layout of all sources, then runs clang-tidy and cppcheck over them.
set -eu
cd "$(dirname "$0")/.."

git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run -Werror
cmake --preset dev > /dev/null
run-clang-tidy -quiet -p build/dev "$PWD/(LibProject|Server|QlxApi|Rtsp|Onvif|Apps)/.*"
cppcheck --quiet --project=build/dev/compile_commands.json --enable=warning,performance,portability \
  --inline-suppr -iTests -iBench -ibuild --error-exitcode=1
