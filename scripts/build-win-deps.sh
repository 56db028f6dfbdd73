#!/usr/bin/env bash
# Cross-builds SQLite 3 and tinyxml2 for Windows x64 from Debian's source
# packages into a prefix (static libraries and headers).
#   usage: build-win-deps.sh PREFIX
set -euo pipefail

prefix=$(realpath -m "$1")
if [ -f "$prefix/lib/libsqlite3.a" ] && [ -f "$prefix/lib/libtinyxml2.a" ]; then
  exit 0
fi
cc=x86_64-w64-mingw32-gcc-posix
cxx=x86_64-w64-mingw32-g++-posix
ar=x86_64-w64-mingw32-ar
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$prefix/lib" "$prefix/include"

cd "$work"
apt-get source -q --download-only sqlite3 tinyxml2 >/dev/null 2>&1 || {
  echo "apt-get source failed: are deb-src entries configured? (scripts/install-deps.sh adds them)" >&2
  exit 1
}

# SQLite: the amalgamation is made from the canonical sources with the
# build machine's tools, then compiled for Windows.
tar xf sqlite3_*.orig.tar.xz
sq=$(find . -maxdepth 1 -type d -name 'sqlite3-*' | head -1)
mkdir "$sq/native"
(cd "$sq/native" && ../configure --disable-tcl >/dev/null && make sqlite3.c >/dev/null)
$cc -O2 -DSQLITE_THREADSAFE=1 -DSQLITE_ENABLE_DESERIALIZE -DSQLITE_OMIT_LOAD_EXTENSION \
  -c "$sq/native/sqlite3.c" -o sqlite3.o
$ar rcs "$prefix/lib/libsqlite3.a" sqlite3.o
cp "$sq/native/sqlite3.h" "$sq/native/sqlite3ext.h" "$prefix/include/" 2>/dev/null || cp "$sq/native/sqlite3.h" "$prefix/include/"

# tinyxml2: one source file.
tar xf tinyxml2_*.orig.tar.xz
tx=$(find . -maxdepth 1 -type d -name 'tinyxml2-*' | head -1)
$cxx -O2 -std=c++17 -c "$tx/tinyxml2.cpp" -o tinyxml2.o
$ar rcs "$prefix/lib/libtinyxml2.a" tinyxml2.o
cp "$tx/tinyxml2.h" "$prefix/include/"
echo "Windows dependencies in $prefix"
