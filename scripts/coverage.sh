#!/bin/sh
# Runs the library's tests and reports which of its lines they reach; fails below 90 of 100 lines.
# The page of each file is in build/coverage/report/.
set -eu
cd "$(dirname "$0")/.."

cmake --preset coverage
cmake --build --preset coverage --parallel "$(nproc)"
find build/coverage -name '*.gcda' -delete
ctest --preset coverage --parallel "$(nproc)"
mkdir -p build/coverage/report
gcovr --root . --object-directory build/coverage -j "$(nproc)" \
  --filter '(include|LibProject|Server|QlxApi|Rtsp|Onvif)/' --exclude-throw-branches \
  --html-details build/coverage/report/index.html --txt build/coverage/report/lines.txt \
  --print-summary --fail-under-line 90
