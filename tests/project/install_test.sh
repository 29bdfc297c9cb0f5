#!/usr/bin/env bash
# Installs into a prefix of its own and uses that installation as a host would: the public headers
# compile with nothing else in sight, and examples/minimal-host builds by CMake and by pkg-config.
#
#   install_test.sh SOURCE BUILD WORK
set -euo pipefail
source=$1 build=$2 work=$3
prefix=$work/prefix
cxx=${CXX:-c++}

fail() {
    echo "install: $*" >&2
    exit 1
}

rm -rf "$work"
mkdir -p "$work"
cmake --build "$build"
cmake --install "$build" --prefix "$prefix" >"$work/install.log"

libdir=$(dirname "$(find "$prefix" -name libjoinery.so)")
export PKG_CONFIG_PATH=$libdir/pkgconfig
export LD_LIBRARY_PATH=$libdir

# Nothing may point back into the trees that it was made in.
if grep -rlF -e "$source" -e "$build" --include '*.cmake' --include '*.pc' --include '*.h' "$prefix"; then
    fail "the files above name the source or build folder"
fi

# All public headers, with the installed ones alone.
grep -E '^[a-z].*\.h$' "$source/cmake/public_headers.txt" |
    sed 's/.*/#include "&"/' >"$work/headers.cpp"
# shellcheck disable=SC2046  # flags are words
"$cxx" -std=c++17 -Wall -Wextra -Werror -fsyntax-only "$work/headers.cpp" \
    $(pkg-config --cflags joinery joinery-qtsql)

# The example, as short as it promises, by both roads.
example=$source/examples/minimal-host
lines=$(wc -l <"$example/main.cpp")
[ "$lines" -le 40 ] || fail "examples/minimal-host/main.cpp has $lines lines; 40 are promised"
cp -r "$example" "$work/example"
cmake -S "$work/example" -B "$work/by-cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$cxx"
cmake --build "$work/by-cmake"
# shellcheck disable=SC2046
"$cxx" -std=c++17 "$work/example/main.cpp" -o "$work/by-pkg-config" \
    $(pkg-config --cflags --libs joinery joinery-qtsql)

program=$(find "$work/by-cmake" -maxdepth 1 -type f -executable ! -name '*.so*')
sample=$work/sample.sqlite
python3 -c 'import sqlite3, sys; sqlite3.connect(sys.argv[2]).executescript(open(sys.argv[1]).read())' \
    "$source"/resources/sample/*.sql "$sample"
for host in "$program" "$work/by-pkg-config"; do
    picture=$work/$(basename "$host").png
    timeout 60 "$host" "$sample" --grab "$picture" || fail "$host ended with an error"
    [ "$(od -An -tx1 -N4 "$picture" | tr -d ' ')" = 89504e47 ] || fail "$host grabbed no picture"
    [ "$(stat -c %s "$picture")" -gt 4000 ] || fail "$host grabbed an empty window"
done
echo "install: headers, CMake package and pkg-config files serve a host"
