#!/usr/bin/env bash
# Builds and runs the consumer against an installed library, once found by CMake and once by pkg-config.
#   run.sh PREFIX [SCRATCH-FOLDER]
set -euo pipefail
prefix=$(readlink -f "$1")
here=$(dirname "$(readlink -f "$0")")
scratch=${2:-$(mktemp -d)}
[ $# -gt 1 ] || trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch"
export QT_QPA_PLATFORM=offscreen

libraries=$(dirname "$(find "$prefix" -name 'libKelvara.so' -print -quit)")
[ -e "$libraries/libKelvara.so" ] || { echo "There is no library in $prefix." >&2; exit 1; }

echo "== found by CMake"
cmake -S "$here" -B "$scratch/cmake" -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF >"$scratch/configure.log" 2>&1 || { cat "$scratch/configure.log" >&2; exit 1; }
cmake --build "$scratch/cmake" -j "$(nproc)" >"$scratch/build.log" 2>&1 || { cat "$scratch/build.log" >&2; exit 1; }
"$scratch/cmake/consumer"

echo "== found by pkg-config"
export PKG_CONFIG_PATH="$libraries/pkgconfig"
# shellcheck disable=SC2046 # options, one a word
"${CXX:-c++}" -std=c++20 -Wall -Wextra -Werror "$here"/*.cpp $(pkg-config --cflags --libs kelvara kelvara-specimen) \
    -o "$scratch/consumer"
# Not that a copy elsewhere on the machine is what works.
resolved=$(LD_LIBRARY_PATH="$libraries" ldd "$scratch/consumer" | sed -nE 's/.*libKelvara\.so\.[0-9]+ => ([^ ]+).*/\1/p')
[ "$(readlink -f "$resolved")" = "$(readlink -f "$libraries/libKelvara.so")" ] \
    || { echo "The consumer runs with another library: $resolved" >&2; exit 1; }
LD_LIBRARY_PATH="$libraries" "$scratch/consumer"

# What hosts compile with the headers: other people's libraries stay behind them.
{ find "$prefix/include/kelvara" -name '*.h' -printf '#include <%P>\n'; } | sort >"$scratch/all.cpp"
# shellcheck disable=SC2046
"${CXX:-c++}" -std=c++20 -M $(pkg-config --cflags kelvara) "$scratch/all.cpp" | tr -s ' \\' '\n\n' >"$scratch/included"
grep -q qwidget.h "$scratch/included" || { echo "What the headers include could not be found out." >&2; exit 1; }
if grep -E '/(opencv4?|opencv2|openssl|tesseract|leptonica|PCSC)/|libdeflate' "$scratch/included"; then
    echo "The installed headers include these." >&2
    exit 1
fi
echo "The $(wc -l <"$scratch/all.cpp") installed headers show nothing of OpenCV, OpenSSL, Tesseract, PC/SC and libdeflate."
