#!/usr/bin/env bash
# The QuilTool test command. On a fresh Debian machine (as root) it installs
# what is missing, then builds and tests three lanes:
#   linux    the library, tools, benchmarks (built, not run) and all tests
#   asan     the Linux tests again under AddressSanitizer + UBSan
#   windows  cross-built with mingw-w64, every test run under Wine (in Xvfb)
#   fuzz     every libFuzzer harness (fuzz/) for a few seconds each
# and checks that a program outside the tree builds and runs against the
# installed package on both targets. Prints one summary per lane and a last
# line "N passed, N failed"; exits non-zero when anything failed.
#
#   usage: scripts/test.sh [lane ...]     (default: linux asan windows fuzz)
set -uo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${QUILTOOL_BUILD_DIR:-$root/build}
jobs=${QUILTOOL_JOBS:-$(nproc)}
lanes=("$@")
[ ${#lanes[@]} -gt 0 ] || lanes=(linux asan windows fuzz)

if [ "$(id -u)" = 0 ]; then
  bash "$root/scripts/install-deps.sh" || { echo "installing dependencies failed" >&2; exit 1; }
fi

# Everything a run leaves lives here and goes with it: temporary files, the
# Wine prefix, installed packages.
run_tmp=$(mktemp -d /tmp/quiltool-run.XXXXXX)
# Some lock tests act as a second, unprivileged account, which must reach
# the test folders below this one.
chmod 0755 "$run_tmp"
cleanup() {
  if [ -n "${WINEPREFIX:-}" ] && command -v wineserver >/dev/null; then wineserver -k 2>/dev/null || true; fi
  rm -rf "$run_tmp"
}
trap cleanup EXIT
export TMPDIR="$run_tmp"

declare -A passed failed
total_passed=0
total_failed=0
status=0

# Builds $1 quietly; the log is shown when the build fails.
build_quietly() {
  local dir=$1 lane=$2
  if ninja -C "$dir" -j "$jobs" >"$run_tmp/build-$lane.log" 2>&1; then
    grep -E 'warning:' "$run_tmp/build-$lane.log" | sort -u | head -20 || true
    return 0
  fi
  grep -E 'error|FAILED|undefined' "$run_tmp/build-$lane.log" | head -60 >&2
  return 1
}

# Runs ctest in $1 for lane $2, counting passes and failures.
run_ctest() {
  local dir=$1 lane=$2
  shift 2
  local log="$run_tmp/ctest-$lane.log"
  (cd "$dir" && "$@" ctest --output-on-failure -j "$jobs" --timeout 600) 2>&1 | tee "$log" | grep -E '\*\*\*|tests passed|tests failed|^\s+[0-9]+ - ' || true
  local total fails
  total=$(grep -oE 'out of [0-9]+' "$log" | tail -1 | grep -oE '[0-9]+' || echo 0)
  fails=$(grep -oE '[0-9]+ tests failed' "$log" | tail -1 | grep -oE '^[0-9]+' || echo 0)
  if [ "${total:-0}" = 0 ]; then
    echo "$lane: no tests ran" >&2
    fails=1
  fi
  # What the failing tests printed.
  [ "$fails" = 0 ] || grep -v -E 'Passed +[0-9.]+ sec|^ +Start ' "$log" | tail -400 >&2
  passed[$lane]=$(( total - fails ))
  failed[$lane]=$fails
}

fail_lane() {
  passed[$1]=0
  failed[$1]=1
  echo "== $1: $2" >&2
}

# Builds the example consumer against an installed package and runs it.
check_consumer() {
  local lane=$1 prefix=$2
  shift 2
  local src="$run_tmp/consumer-src-$lane" bld="$run_tmp/consumer-build-$lane"
  cp -r "$root/examples/consumer" "$src"
  if cmake -S "$src" -B "$bld" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" "$@" >"$run_tmp/consumer-$lane.log" 2>&1 &&
     ninja -C "$bld" >>"$run_tmp/consumer-$lane.log" 2>&1; then
    return 0
  fi
  cat "$run_tmp/consumer-$lane.log" >&2
  return 1
}

lane_linux() {
  local dir="$build/linux"
  cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUILTOOL_BUILD_BENCHMARKS=ON \
    -DCMAKE_INSTALL_PREFIX="$run_tmp/prefix-linux" >/dev/null || { fail_lane linux "configure failed"; return; }
  build_quietly "$dir" linux || { fail_lane linux "build failed"; return; }
  run_ctest "$dir" linux
  # The installed package, used the way a module outside this tree uses it.
  if cmake --install "$dir" >/dev/null && check_consumer linux "$run_tmp/prefix-linux"; then
    if LD_LIBRARY_PATH="$run_tmp/prefix-linux/lib" "$run_tmp/consumer-build-linux/consumer" &&
       PKG_CONFIG_PATH="$run_tmp/prefix-linux/lib/pkgconfig" \
         g++ -o "$run_tmp/consumer-pc" "$root/examples/consumer/main.cpp" $(PKG_CONFIG_PATH="$run_tmp/prefix-linux/lib/pkgconfig" pkg-config --cflags --libs quiltool) &&
       LD_LIBRARY_PATH="$run_tmp/prefix-linux/lib" "$run_tmp/consumer-pc" >/dev/null; then
      passed[linux]=$(( ${passed[linux]} + 1 ))
      echo "linux: installed package builds and runs a consumer (CMake and pkg-config)"
    else
      failed[linux]=$(( ${failed[linux]} + 1 ))
      echo "linux: consumer against the installed package FAILED" >&2
    fi
  else
    failed[linux]=$(( ${failed[linux]} + 1 ))
    echo "linux: install or consumer build FAILED" >&2
  fi
  # The installed program starts by itself and finds the installed language
  # files without being told where.
  if env -u LD_LIBRARY_PATH "$run_tmp/prefix-linux/bin/quiltool" --version >/dev/null &&
     env -u LD_LIBRARY_PATH "$run_tmp/prefix-linux/bin/quiltool" lng check >/dev/null; then
    passed[linux]=$(( ${passed[linux]} + 1 ))
    echo "linux: installed bin/quiltool starts and finds the installed language files"
  else
    failed[linux]=$(( ${failed[linux]} + 1 ))
    echo "linux: installed bin/quiltool FAILED" >&2
  fi
}

lane_asan() {
  local dir="$build/asan"
  cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQUILTOOL_SANITIZE=ON >/dev/null ||
    { fail_lane asan "configure failed"; return; }
  build_quietly "$dir" asan || { fail_lane asan "build failed"; return; }
  ASAN_OPTIONS=detect_leaks=1:halt_on_error=1:abort_on_error=1 \
  UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
    run_ctest "$dir" asan
}

lane_windows() {
  local dir="$build/windows" deps="$build/deps-win"
  bash "$root/scripts/build-win-deps.sh" "$deps" || { fail_lane windows "cross-building SQLite/tinyxml2 failed"; return; }
  cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake" -DQUILTOOL_WIN_DEPS="$deps" \
    -DCMAKE_INSTALL_PREFIX="$run_tmp/prefix-windows" >/dev/null || { fail_lane windows "configure failed"; return; }
  build_quietly "$dir" windows || { fail_lane windows "build failed"; return; }

  export WINEPREFIX="$run_tmp/wineprefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
  export WINEARCH=win64
  # One X server and one persistent wineserver for the whole lane: starting
  # them per test would cost seconds each. Making the prefix starts its
  # service manager twice, and both linger for seconds; tests that start
  # while they go down can meet two COM services. So the prefix is left to
  # go quiet first, and the services then start once, with the first test.
  xvfb-run -a -s "-screen 0 1280x1024x24" bash -c '
    wineboot -i >/dev/null 2>&1
    wineserver -w
    wineserver -p
    "$@"
    rc=$?
    # Wine leaves X before the X server goes, or its desktop process complains.
    wineserver -k 2>/dev/null
    exit $rc' _ "$root/scripts/test-windows-inner.sh" "$dir" "$jobs" "$run_tmp" "$root"
  local inner=$?
  wineserver -k 2>/dev/null || true
  local log="$run_tmp/ctest-windows.log"
  if [ -f "$log" ]; then
    local total fails
    grep -q '\*\*\*' "$log" && grep -v -E 'Passed +[0-9.]+ sec|^ +Start ' "$log" | tail -400 >&2
    total=$(grep -oE 'out of [0-9]+' "$log" | tail -1 | grep -oE '[0-9]+' || echo 0)
    fails=$(grep -oE '[0-9]+ tests failed' "$log" | tail -1 | grep -oE '^[0-9]+' || echo 0)
    [ "${total:-0}" = 0 ] && fails=1
    passed[windows]=$(( total - fails ))
    failed[windows]=$fails
  else
    fail_lane windows "tests did not run"
  fi
  [ $inner -eq 0 ] || [ "${failed[windows]}" -gt 0 ] || failed[windows]=1
  if [ -f "$run_tmp/screenshots-failed" ]; then
    failed[windows]=$(( ${failed[windows]} + 1 ))
    grep -v 'wrote' "$run_tmp/screenshots.log" | tail -20 >&2
    echo "windows: scripts/screenshots.sh FAILED" >&2
  fi

  if cmake --install "$dir" >/dev/null && check_consumer windows "$run_tmp/prefix-windows" \
       -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake" &&
     cp "$run_tmp/prefix-windows/bin/quiltool.dll" "$run_tmp/consumer-build-windows/" &&
     xvfb-run -a bash -c 'wine "$1"; rc=$?; wineserver -k 2>/dev/null; exit $rc' _ "$run_tmp/consumer-build-windows/consumer.exe"; then
    passed[windows]=$(( ${passed[windows]} + 1 ))
    echo "windows: installed package builds and runs a consumer under Wine"
  else
    failed[windows]=$(( ${failed[windows]} + 1 ))
    echo "windows: consumer against the installed package FAILED" >&2
  fi
}

# Runs one harness for $2 seconds over its seeds and the inputs kept from
# earlier findings; writes "pass <line>" or "fail <lines>" to $3. Inputs it
# finds go to a scratch corpus, findings to build/fuzz/findings.
fuzz_one() {
  local bin=$1 seconds=$2 result=$3 dir=$4
  local name=${bin##*/fuzz_}
  local inputs=("$run_tmp/fuzz-corpus/$name")
  mkdir -p "${inputs[0]}"
  [ -d "$run_tmp/fuzz-seeds/$name" ] && inputs+=("$run_tmp/fuzz-seeds/$name")
  [ -d "$root/fuzz/corpus/$name" ] && inputs+=("$root/fuzz/corpus/$name")
  [ -d "$root/fuzz/regressions/$name" ] && inputs+=("$root/fuzz/regressions/$name")
  local findings="$dir/findings/$name" log="$run_tmp/fuzz-$name.log"
  rm -rf "$findings"
  mkdir -p "$findings"
  # Forked jobs keep fuzzing after a finding, so that one known defect
  # does not hide the next and the rate covers the whole time.
  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 \
    "$bin" -fork=1 -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1 \
      -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
      -artifact_prefix="$findings/" "${inputs[@]}" >"$log" 2>&1
  local rc=$? runs rate found
  # Runs from the last progress line ("#<runs>: cov: ..."); the rate over
  # the whole time, restarts of the forked jobs included.
  runs=$(grep -oE '^#[0-9]+:' "$log" | tail -1 | tr -d '#:')
  rate=$(( ${runs:-0} / seconds ))
  found=$(find "$findings" -type f | wc -l)
  if [ $rc -eq 0 ] && [ -n "$runs" ] && [ "$found" -eq 0 ]; then
    printf 'pass fuzz: %-12s %8s runs in %s s, %6s runs/s\n' "$name" "$runs" "$seconds" "$rate" >"$result"
    return
  fi
  {
    printf 'fail fuzz: %-12s FAILED: %s finding(s), exit %s, %s runs in %s s, %s runs/s; inputs kept in %s\n' \
      "$name" "$found" "$rc" "${runs:-0}" "$seconds" "${rate:-0}" "$findings"
    # What the first findings broke, each run again alone, without the stack.
    local input
    for input in $(find "$findings" -type f | head -3); do
      echo "   ${input##*/}:"
      ASAN_OPTIONS=detect_leaks=1 "$bin" -timeout=10 "$input" 2>&1 |
        grep -E -A3 '^== property broken|ERROR: (Address|Leak|UndefinedBehavior)Sanitizer|runtime error:|ERROR: libFuzzer: (timeout|out-of-memory)' |
        grep -vE '^ +#[0-9]|^==[0-9]+==' | head -6
    done
  } >"$result"
}

# Every harness for a bounded time, as many at once as there are jobs; one
# that ends without a finding counts as passed.
lane_fuzz() {
  local dir="$build/fuzz" seconds=${QUILTOOL_FUZZ_SECONDS:-15}
  command -v clang++ >/dev/null || { fail_lane fuzz "clang++ is not installed"; return; }
  CC=clang CXX=clang++ cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUILTOOL_FUZZ=ON \
    -DQUILTOOL_BUILD_TESTS=OFF -DQUILTOOL_BUILD_TOOLS=OFF >/dev/null || { fail_lane fuzz "configure failed"; return; }
  if ! ninja -C "$dir" -j "$jobs" fuzz_all >"$run_tmp/build-fuzz.log" 2>&1; then
    grep -E 'error|FAILED|undefined' "$run_tmp/build-fuzz.log" | head -60 >&2
    fail_lane fuzz "build failed"
    return
  fi
  # Fresh seeds from the library's writers; the database ones are too big
  # to keep in the tree.
  "$dir/bin/fuzz_make_seeds" "$run_tmp/fuzz-seeds" || { fail_lane fuzz "writing the seeds failed"; return; }
  passed[fuzz]=0
  failed[fuzz]=0
  local bin results=() result
  for bin in "$dir"/bin/fuzz_*; do
    [ "${bin##*/}" = fuzz_make_seeds ] && continue
    result="$run_tmp/fuzz-${bin##*/fuzz_}.result"
    results+=("$result")
    while [ "$(jobs -rp | wc -l)" -ge "$jobs" ]; do wait -n; done
    fuzz_one "$bin" "$seconds" "$result" "$dir" &
  done
  wait
  for result in "${results[@]}"; do
    if [ -f "$result" ] && [ "$(head -c 4 "$result")" = pass ]; then
      passed[fuzz]=$(( ${passed[fuzz]} + 1 ))
      cut -c6- "$result"
    else
      failed[fuzz]=$(( ${failed[fuzz]} + 1 ))
      if [ -f "$result" ]; then sed '1s/^fail //' "$result" >&2; else echo "fuzz: ${result##*/} has no result" >&2; fi
    fi
  done
}

for lane in "${lanes[@]}"; do
  echo "== lane $lane"
  start=$SECONDS
  case "$lane" in
    linux) lane_linux ;;
    asan) lane_asan ;;
    windows) lane_windows ;;
    fuzz) lane_fuzz ;;
    *) echo "unknown lane $lane" >&2; exit 2 ;;
  esac
  echo "== lane $lane took $(( SECONDS - start )) s"
done

echo
echo "== summary"
for lane in "${lanes[@]}"; do
  p=${passed[$lane]:-0}
  f=${failed[$lane]:-1}
  echo "$lane: $p passed, $f failed"
  total_passed=$(( total_passed + p ))
  total_failed=$(( total_failed + f ))
done
[ "$total_failed" -eq 0 ] || status=1
echo "$total_passed passed, $total_failed failed"
exit $status
