#!/usr/bin/env bash
# Builds what is out of date, then runs a simulated day of an 802.1X daemon and of
# a web-auth daemon with the library loaded, printing the main displays and
# the files each produced, and ends with the report of both days. Output
# goes under ./authmng-out (AUTHMNG_OUT).
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
build=$root/build
sim=$build/tools/authmng-sim/authmng-sim
if ! dpkg -s libreadline-dev >/dev/null 2>&1 || ! command -v cmake >/dev/null ||
    ! command -v ninja >/dev/null; then
    echo "demo: installing build tools" >&2
    export DEBIAN_FRONTEND=noninteractive
    apt-get update
    apt-get install -y --no-install-recommends cmake ninja-build g++ libreadline-dev libgtest-dev
fi
# cmake decides what is out of date; its errors are shown as they come.
if [ ! -f "$build/CMakeCache.txt" ]; then
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null ||
        { echo "demo: cmake could not configure $build (see above)" >&2; exit 1; }
fi
cmake --build "$build" --target authmng-sim authmng-report ||
    { echo "demo: the build failed (see above)" >&2; exit 1; }
out=${AUTHMNG_OUT:-$root/authmng-out}
rm -rf "$out"

show_files() {
    local dir=$1
    for f in $(cd "$dir" && find . -type f | sort); do
        echo "--- ${f#./} (first lines)"
        head -4 "$dir/$f" | cut -c1-160
    done
}

echo "=================== an 802.1X daemon, one day ==================="
"$sim" --client dot1x --out "$out/dot1x" --users 300 --until 2026-03-10T01:01:00 \
    --cmd 'show dot1x authmng statistic' \
    --cmd 'show dot1x authmng mab statistic telnet' \
    --cmd 'debug dot1x authmng summary'
show_files "$out/dot1x"

echo
echo "=================== a web-auth daemon, one day ==================="
"$sim" --client webauth --out "$out/webauth" --users 300 --until 2026-03-10T01:01:00 \
    --cmd 'show webauth authmng statistic' \
    --cmd 'show webauth authmng statistic telnet' \
    --cmd 'show authmanage user-escape'
show_files "$out/webauth"

echo
echo "=================== the report of both days ==================="
"$build/tools/authmng-report/authmng-report" -o "$out/report.html" --tidy "$out/tidy" "$out"
echo "demo: the report is $out/report.html (open it in a browser; tidy CSV tables in $out/tidy)"
