#!/usr/bin/env bash
# Builds what is missing and runs the example 802.1X daemon against the
# library, with its temporary and flash areas under ./authmng-out.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
if [ ! -x build/examples/dot1x_daemon ]; then
    cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
    cmake --build build --target dot1x_daemon >/dev/null
fi
out=${AUTHMNG_OUT:-$root/authmng-out}
mkdir -p "$out/tmp" "$out/flash"
TMPDIR=$out/tmp AUTHMNG_FLASH_HOME=$out/flash build/examples/dot1x_daemon
