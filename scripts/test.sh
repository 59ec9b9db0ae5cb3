#!/usr/bin/env bash
# Installs what a fresh Debian machine lacks, builds the library, runs every
# test, then installs it into a staging prefix and builds the plain-C example
# daemon against it through pkg-config.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

packages=()
need() { dpkg -s "$1" >/dev/null 2>&1 || packages+=("$1"); }
need cmake
need ninja-build
need g++
need gcc
need pkg-config
need libgtest-dev
need libgmock-dev
need binutils
if ((${#packages[@]})); then
    export DEBIAN_FRONTEND=noninteractive
    apt-get update
    apt-get install -y --no-install-recommends "${packages[@]}"
fi

build=${AUTHMNG_BUILD_DIR:-$root/build}
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build"
ctest --test-dir "$build" --output-on-failure -j"$(nproc)"

# The installed library from a plain-C program, as a daemon developer uses it.
stage=$build/stage
rm -rf "$stage"
cmake --install "$build" --prefix "$stage" >/dev/null
export PKG_CONFIG_PATH=$stage/lib/pkgconfig:$stage/lib/x86_64-linux-gnu/pkgconfig:$stage/lib64/pkgconfig
example=$build/example-from-install
# shellcheck disable=SC2046
gcc -std=c99 -Wall -Wextra -Werror "$root/examples/dot1x_daemon.c" -o "$example" \
    $(pkg-config --cflags --libs qx_authmng)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/tmp" "$work/flash"
TMPDIR=$work/tmp AUTHMNG_FLASH_HOME=$work/flash "$example" >"$work/out.txt" 2>&1
grep -q "abnormal records queued" "$work/out.txt"
echo "example daemon: 1 passed, 0 failed"
