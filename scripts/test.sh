#!/usr/bin/env bash
# The project's test command. Installs what a fresh Debian machine lacks,
# then runs every stage; any failing stage fails the whole run.
#
#   scripts/test.sh                 all stages
#   AUTHMNG_STAGES="main asan" scripts/test.sh   only these
#
# Stages:
#   main   gcc build, all tests, install + the example daemon built through
#          pkg-config and find_package from outside the tree
#   external  device build: the minimal port of examples/port-minimal, the
#          library in external mode against it, the port checker and the
#          example daemon on the installed result
#   asan   all tests under AddressSanitizer + UndefinedBehaviorSanitizer
#   tsan   all tests (the stress tests among them) under ThreadSanitizer
#   clang  clang build with -Werror, all tests
#   mips   32-bit big-endian MIPS cross build, all tests under qemu-mips
#   armhf  32-bit little-endian ARM cross build, all tests under qemu-arm
#   format every C and C++ source formatted as .clang-format says
#   report the report of the simulator's day in headless Chromium: charts
#          drawn, record filter working, hostile user names inert
#   fuzz   libFuzzer targets (clang, ASan+UBSan), each run briefly over its
#          seed corpus: AUTHMNG_FUZZ_SECONDS per target (default 20)
#   e2e    authmng-hostapd on real 802.1X traffic (hostapd, wpa_supplicant,
#          FreeRADIUS in network namespaces; skipped where none can be made)
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
stages=${AUTHMNG_STAGES:-format main external report asan tsan clang mips armhf fuzz e2e}
out=${AUTHMNG_BUILD_DIR:-$root/build}
jobs=$(nproc)

packages=()
need() { dpkg -s "$1" >/dev/null 2>&1 || packages+=("$1"); }
for p in cmake ninja-build g++ gcc pkg-config binutils libgtest-dev libgmock-dev googletest \
    libreadline-dev libbenchmark-dev; do
    need "$p"
done
case " $stages " in *" clang "*) need clang ;; esac
case " $stages " in *" fuzz "*) need clang; need libclang-rt-14-dev ;; esac
case " $stages " in *" format "*) need clang-format ;; esac
case " $stages " in *" report "*) need chromium ;; esac
case " $stages " in *" mips "*) need g++-mips-linux-gnu; need qemu-user ;; esac
case " $stages " in *" armhf "*) need g++-arm-linux-gnueabihf; need qemu-user ;; esac
case " $stages " in *" e2e "*)
    for p in hostapd wpasupplicant freeradius freeradius-utils tcpdump iproute2 ssl-cert \
        prometheus python3; do
        need "$p"
    done
    ;;
esac
if ((${#packages[@]})); then
    export DEBIAN_FRONTEND=noninteractive
    apt-get update
    apt-get install -y --no-install-recommends "${packages[@]}"
fi

summary=()
run_stage() {
    local name=$1
    shift
    local start=$SECONDS
    echo "=== stage $name ==="
    "$@"
    summary+=("$name: $((SECONDS - start)) s")
}

configure_build_test() {
    local dir=$1
    shift
    cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DAUTHMNG_WERROR=ON "$@" \
        >/dev/null
    cmake --build "$dir" -j"$jobs"
    ctest --test-dir "$dir" --output-on-failure -j"$jobs"
}

# The installed library ($1) from a daemon project outside the tree, as a
# daemon developer uses it: the example daemon built through pkg-config and
# through find_package(qx_authmng CONFIG), and run.
check_consumers() {
    local stage=$1 work example failed=0
    work=$(mktemp -d)
    mkdir -p "$work/tmp" "$work/flash" "$work/consumer"
    cp "$root/tests/consumer/CMakeLists.txt" "$root/examples/dot1x_daemon.c" "$work/consumer/"
    # shellcheck disable=SC2046
    PKG_CONFIG_PATH=$stage/lib/pkgconfig gcc -std=c99 -Wall -Wextra -Werror \
        "$root/examples/dot1x_daemon.c" -o "$work/from-pkg-config" \
        $(PKG_CONFIG_PATH=$stage/lib/pkgconfig pkg-config --cflags --libs qx_authmng)
    cmake -S "$work/consumer" -B "$work/consumer/build" -G Ninja -DCMAKE_PREFIX_PATH="$stage" \
        >/dev/null
    cmake --build "$work/consumer/build" >/dev/null
    for example in "$work/from-pkg-config" "$work/consumer/build/dot1x_daemon"; do
        if ! TMPDIR=$work/tmp AUTHMNG_FLASH_HOME=$work/flash "$example" >"$work/out.txt" 2>&1 ||
            ! grep -q "abnormal records queued: 2" "$work/out.txt"; then
            cat "$work/out.txt"
            failed=$((failed + 1))
        fi
    done
    rm -rf "$work"
    echo "example daemon through pkg-config and find_package: $((2 - failed)) passed, $failed failed"
    ((failed == 0))
}

stage_main() {
    configure_build_test "$out"
    local stage=$out/stage
    rm -rf "$stage"
    cmake --install "$out" --prefix "$stage" >/dev/null
    check_consumers "$stage"
}

# A device build: the library in external mode against the minimal port of
# examples/port-minimal, installed with nothing of the host stand-in, the
# port checker passing on it and the example daemon running on it.
stage_external() {
    local port=$out-port dir=$out-external stage=$out-external/stage
    cmake -S "$root/examples/port-minimal" -B "$port" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_C_FLAGS=-Werror >/dev/null
    cmake --build "$port"
    configure_build_test "$dir" -DAUTHMNG_PLATFORM=external \
        -DAUTHMNG_PLATFORM_LIBRARIES="$port/libqx_authmng_port_minimal.so"
    rm -rf "$stage"
    cmake --install "$dir" --prefix "$stage" >/dev/null
    if find "$stage" -name '*host*' | grep . ||
        grep -l 'host\|rpath' "$stage/lib/pkgconfig/qx_authmng.pc" "$stage"/lib/cmake/qx_authmng/* ||
        readelf -d "$stage/lib/libqx_authmng.so" | grep 'host\|RPATH\|RUNPATH'; then
        echo "the external installation refers to the host stand-in (above)"
        return 1
    fi
    # The device image's library directories: the port's and the library's.
    export LD_LIBRARY_PATH=$port:$stage/lib
    AUTHMNG_FLASH_HOME=/tmp "$stage/bin/authmng-port-check"
    check_consumers "$stage"
    unset LD_LIBRARY_PATH
}

stage_asan() {
    ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 \
        configure_build_test "$out-asan" -DAUTHMNG_SANITIZE=address,undefined
}

stage_tsan() {
    TSAN_OPTIONS=halt_on_error=1 \
        configure_build_test "$out-tsan" -DAUTHMNG_SANITIZE=thread
}

stage_clang() {
    CC=clang CXX=clang++ configure_build_test "$out-clang"
}

stage_format() {
    git -C "$root" ls-files '*.c' '*.cc' '*.h' | (cd "$root" && xargs clang-format --dry-run --Werror)
    echo "format: 1 passed, 0 failed"
}

# Reuses the main build when there is one.
stage_report() {
    cmake -S "$root" -B "$out" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DAUTHMNG_WERROR=ON \
        >/dev/null
    cmake --build "$out" -j"$jobs" --target authmng-sim authmng-report
    "$root/scripts/report-check.sh" "$out"
}

stage_mips() {
    configure_build_test "$out-mips" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mips-linux-gnu.cmake" \
        -DAUTHMNG_BUILD_TOOLS=OFF
}

stage_armhf() {
    configure_build_test "$out-armhf" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/arm-linux-gnueabihf.cmake" \
        -DAUTHMNG_BUILD_TOOLS=OFF
}

# Real 802.1X traffic through authmng-hostapd (scripts/e2e.sh): namespaces,
# FreeRADIUS, hostapd and wpa_supplicant; reuses the main build when there.
stage_e2e() {
    [[ -f $out/build.ninja ]] ||
        cmake -S "$root" -B "$out" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DAUTHMNG_WERROR=ON >/dev/null
    cmake --build "$out" -j"$jobs" --target authmng-hostapd authmng-cli
    "$root/scripts/e2e.sh" "$out"
}

# Every fuzz target over its seed corpus and what it finds on the way. New
# inputs go to a scratch directory, never into the checked-in corpus; a
# failing input is kept as $out-fuzz/artifacts/<target>-crash-*.
stage_fuzz() {
    local dir=$out-fuzz seconds=${AUTHMNG_FUZZ_SECONDS:-20} failed=0
    CC=clang CXX=clang++ cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DAUTHMNG_WERROR=ON -DAUTHMNG_BUILD_FUZZ=ON -DAUTHMNG_SANITIZE=address,undefined \
        -DAUTHMNG_BUILD_TESTS=OFF -DAUTHMNG_BUILD_TOOLS=OFF >/dev/null
    cmake --build "$dir" -j"$jobs"
    mkdir -p "$dir/artifacts"
    local target scratch options runs
    for target in fuzz_dot1x_intake fuzz_webauth_intake fuzz_cli fuzz_tlv fuzz_paths fuzz_escape \
        fuzz_trace; do
        scratch=$(mktemp -d)
        options=(-max_total_time="$seconds" -print_final_stats=1
            -artifact_prefix="$dir/artifacts/$target-")
        [[ -f $root/fuzz/$target.dict ]] && options+=(-dict="$root/fuzz/$target.dict")
        if "$dir/fuzz/$target" "${options[@]}" "$scratch" "$root/fuzz/corpus/$target" \
            >"$scratch/log" 2>&1; then
            runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$scratch/log")
            echo "$target: $runs runs in $seconds s, passed"
        else
            tail -n 40 "$scratch/log"
            echo "$target: FAILED"
            failed=1
        fi
        rm -rf "$scratch"
    done
    ((failed == 0))
}

for s in $stages; do
    run_stage "$s" "stage_$s"
done
echo "=== stage times ==="
printf '%s\n' "${summary[@]}"
