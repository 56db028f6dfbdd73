#!/usr/bin/env bash
# Installs what building and testing QuilTool needs on Debian (run as root).
# Only what is missing is installed.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git
  libsqlite3-dev libtinyxml2-dev googletest libbenchmark-dev libspdlog-dev libelf-dev
  g++-mingw-w64-x86-64-posix wine wine64 xvfb xauth
  dpkg-dev tcl xz-utils python3 locales sqlite3
  clang libclang-rt-dev llvm
  libreoffice-calc-nogui gnumeric libxlsxwriter-dev
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "== installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -q
  apt-get install -y -q --no-install-recommends "${missing[@]}"
fi

# Source packages for the Windows lane come from the machine's own Debian
# sources: add a deb-src twin of each deb entry once.
if ! grep -rqs '^Types:.*deb-src' /etc/apt/sources.list.d/ && ! grep -qs '^deb-src' /etc/apt/sources.list; then
  echo "== adding deb-src entries derived from the configured Debian sources"
  for f in /etc/apt/sources.list.d/*.sources; do
    [ -f "$f" ] || continue
    grep -q 'debian' "$f" || continue
    sed -n '/^Types:/,/^$/p' "$f" | sed 's/^Types: deb$/Types: deb-src/' > "/etc/apt/sources.list.d/quiltool-src-$(basename "$f")"
  done
  if [ -f /etc/apt/sources.list ]; then
    grep -E '^deb ' /etc/apt/sources.list | sed 's/^deb /deb-src /' > /etc/apt/sources.list.d/quiltool-src.list || true
  fi
  apt-get update -q
fi

# A locale whose decimal point is ',', so that the tests that formatting
# ignores the process locale run on Linux too instead of skipping.
if ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf-\?8$'; then
  echo "== generating the de_DE.UTF-8 locale"
  localedef -i de_DE -c -f UTF-8 de_DE.UTF-8
fi
