#!/bin/sh
# Checks the layout of all sources, compiles them with clang (warnings and its analysis of what each lock guards are
# errors), then runs clang-tidy and cppcheck over them.
set -eu
cd "$(dirname "$0")/.."

git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run -Werror
cmake --preset clang > /dev/null
cmake --build --preset clang
run-clang-tidy -quiet -p build/clang "$PWD/(LibProject|Server|QlxApi|Rtsp|Onvif|Apps|examples)/.*"
cppcheck --quiet --project=build/clang/compile_commands.json --enable=warning,performance,portability \
  --inline-suppr -iTests -iBench -ibuild --error-exitcode=1
