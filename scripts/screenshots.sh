#!/usr/bin/env bash
# Writes pictures of what a person sees into BUILD/screenshots: every test
# whose name contains "Screenshot" runs once more with QUILTOOL_SCREENSHOT_DIR
# set, the Windows ones under Wine (PNG files read from the screen), the
# Linux ones natively (terminal captures as text). Each file is named after
# what it shows.
#   usage: screenshots.sh [BUILD_DIR]     (default: ./build, built by test.sh)
# Opens its own X server and Wine prefix unless DISPLAY and WINEPREFIX are
# already set (the Windows lane of test.sh runs it inside its own). With
# QT_SCREENSHOTS_TAKEN set the Windows pictures are already there: the
# lane's test run took them, and they are only checked.
set -uo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(realpath -m "${1:-${QUILTOOL_BUILD_DIR:-$root/build}}")
out="$build/screenshots"
[ -n "${QT_SCREENSHOTS_TAKEN:-}" ] || rm -rf "$out"
mkdir -p "$out"

if [ -z "${QT_SCREENSHOTS_INSIDE:-}" ] && { [ -z "${DISPLAY:-}" ] || [ -z "${WINEPREFIX:-}" ]; }; then
  tmp=$(mktemp -d)
  trap 'rm -rf "$tmp"' EXIT
  export WINEPREFIX="$tmp/wineprefix" WINEDEBUG=-all WINEARCH=win64 WINEDLLOVERRIDES="mscoree,mshtml="
  export QT_SCREENSHOTS_INSIDE=1
  xvfb-run -a -s "-screen 0 1280x1024x24" bash -c '
    wineboot -i >/dev/null 2>&1
    wineserver -w
    "$0" "$1"; rc=$?
    wineserver -k 2>/dev/null
    exit $rc' "$0" "$build"
  exit $?
fi

status=0
shopt -s nullglob
if [ -d "$build/windows/bin" ] && [ -z "${QT_SCREENSHOTS_TAKEN:-}" ]; then
  winout=$(winepath -w "$out" 2>/dev/null)
  for exe in "$build"/windows/bin/quiltool_*_tests.exe; do
    (cd "$build/windows/bin" &&
      QUILTOOL_SCREENSHOT_DIR="$winout" timeout 300 wine "$exe" --gtest_filter='*Screenshot*' >"$out/.log-$(basename "$exe").txt" 2>&1) ||
      { echo "screenshots: $(basename "$exe") failed (see $out/.log-$(basename "$exe").txt)" >&2; status=1; }
  done
fi
if [ -d "$build/linux/bin" ]; then
  for exe in "$build"/linux/bin/quiltool_*_tests; do
    (cd "$build/linux/bin" &&
      QUILTOOL_SCREENSHOT_DIR="$out" timeout 300 "$exe" --gtest_filter='*Screenshot*' >"$out/.log-$(basename "$exe").txt" 2>&1) ||
      { echo "screenshots: $(basename "$exe") failed (see $out/.log-$(basename "$exe").txt)" >&2; status=1; }
  done
fi

# A picture that does not decode is as bad as a missing one.
python3 - "$out" <<'PY' || status=1
import os, struct, sys, zlib
bad = 0
for name in sorted(os.listdir(sys.argv[1])):
    if not name.endswith(".png"):
        continue
    data = open(os.path.join(sys.argv[1], name), "rb").read()
    try:
        assert data[:8] == b"\x89PNG\r\n\x1a\n"
        pos, idat, w, h = 8, b"", 0, 0
        while pos < len(data):
            n, kind = struct.unpack(">I4s", data[pos:pos + 8])
            body = data[pos + 8:pos + 8 + n]
            assert zlib.crc32(kind + body) == struct.unpack(">I", data[pos + 8 + n:pos + 12 + n])[0]
            if kind == b"IHDR":
                w, h = struct.unpack(">II", body[:8])
            if kind == b"IDAT":
                idat += body
            pos += 12 + n
        assert len(zlib.decompress(idat)) == h * (w * 3 + 1)
        print(f"screenshots: {name} {w}x{h}")
    except Exception as e:
        print(f"screenshots: {name} does not decode: {e!r}", file=sys.stderr)
        bad += 1
sys.exit(1 if bad else 0)
PY
ls "$out" | grep -v '^\.' | sed 's/^/screenshots: wrote /'
exit $status
