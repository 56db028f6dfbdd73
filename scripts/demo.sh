#!/usr/bin/env bash
# The first thing to run: on a fresh Debian machine (as root) it installs
# what the Linux build needs, builds the library and the quiltool command,
# makes a sample project of a small ventilation plant and exports it the
# way a module of the suite does (lock, read, grid, layout, progress,
# XML Spreadsheet 2003 and text). Prints where the files are and the first
# lines of the text export.
#   usage: scripts/demo.sh [RECORDS]        (default 10000)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
records=${1:-10000}
build=${QUILTOOL_BUILD_DIR:-$root/build}/demo
out=${QUILTOOL_DEMO_DIR:-$build/out}

packages=(build-essential cmake ninja-build pkg-config libsqlite3-dev libtinyxml2-dev libelf-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  [ "$(id -u)" = 0 ] || { echo "demo: missing packages (${missing[*]}); run as root to install them" >&2; exit 1; }
  echo "== installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -q
  apt-get install -y -q --no-install-recommends "${missing[@]}"
fi

echo "== building the library and quiltool (Linux)"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQUILTOOL_BUILD_TESTS=OFF >/dev/null
ninja -C "$build" quiltool_cli >/dev/null

mkdir -p "$out"
project="$out/plant.qep"
rm -f "$project" "$out/plant.xml" "$out/plant.txt"
echo "== making a sample project of $records records"
"$build/bin/quiltool" db sample "$project" --records "$records"
echo "== exporting it"
"$build/bin/quiltool" report "$project" --set TERMINAL --out "$out/plant.xml" --text "$out/plant.txt"
echo
echo "spreadsheet (XML Spreadsheet 2003): $out/plant.xml"
echo "text (tab-delimited UTF-16):        $out/plant.txt"
echo "first lines of the text export:"
iconv -f UTF-16 -t UTF-8 "$out/plant.txt" | head -5 | tr -d '\r' | sed 's/^/  /'
