#!/usr/bin/env bash
# Runs the Windows lane's tests inside the Xvfb session that test.sh opens.
#   usage: test-windows-inner.sh BUILD_DIR JOBS RUN_TMP ROOT
set -uo pipefail
dir=$1 jobs=$2 run_tmp=$3 root=$4
# The tests whose names contain "Screenshot" write their pictures as they
# run; scripts/screenshots.sh then only checks them (and takes the Linux
# terminal captures).
shots="$(dirname "$dir")/screenshots"
rm -rf "$shots" && mkdir -p "$shots"
# One rerun of a failed test: one registry test has failed once in four
# full runs under a loaded Wine and never alone; a test that fails twice
# still fails the lane, and the log keeps the first failure.
cd "$dir" && QUILTOOL_SCREENSHOT_DIR=$(winepath -w "$shots") \
  ctest --output-on-failure -j "$jobs" --timeout 600 --repeat until-pass:2 > "$run_tmp/ctest-windows.log" 2>&1
rc=$?
grep -E '\*\*\*|tests passed|tests failed|^\s+[0-9]+ - ' "$run_tmp/ctest-windows.log" || true
QT_SCREENSHOTS_INSIDE=1 QT_SCREENSHOTS_TAKEN=1 bash "$root/scripts/screenshots.sh" "$(dirname "$dir")" \
  >"$run_tmp/screenshots.log" 2>&1 || touch "$run_tmp/screenshots-failed"
grep -c 'wrote' "$run_tmp/screenshots.log" | sed 's/^/screenshots: /;s/$/ files written/'
exit $rc
