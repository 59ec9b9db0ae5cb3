#!/usr/bin/env bash
# Builds the benchmarks in a Release tree and prints one table: each figure,
# the floor it is judged against, their ratio, the target and the verdict,
# the floors measured in the same program run as the figures; then the
# memory figures. Not part of the tests.
#
#   scripts/bench.sh                    times (median of 5 repetitions)
#   scripts/bench.sh --callgrind        also instructions per operation
#   scripts/bench.sh --repetitions 9 --min-time 1
#
# Environment: AUTHMNG_BENCH_DIR (build tree, default build-bench).
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
out=${AUTHMNG_BENCH_DIR:-$root/build-bench}
repetitions=5
min_time=0.5
callgrind=0
while (($#)); do
    case $1 in
        --callgrind) callgrind=1 ;;
        --repetitions) repetitions=$2; shift ;;
        --min-time) min_time=$2; shift ;;
        *) echo "usage: $0 [--callgrind] [--repetitions N] [--min-time SECONDS]" >&2; exit 2 ;;
    esac
    shift
done

cmake -S "$root" -B "$out" -G Ninja -DCMAKE_BUILD_TYPE=Release -DAUTHMNG_BUILD_BENCH=ON \
    -DAUTHMNG_BUILD_TESTS=OFF -DAUTHMNG_BUILD_TOOLS=OFF >/dev/null
cmake --build "$out" -j2 >/dev/null
bin=$out/bench
if [[ ! -x $bin/authmng_dot1x_bench ]]; then
    echo "bench: Google Benchmark is not installed (Debian: libbenchmark-dev)" >&2
    exit 1
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Each program runs once; its rows and its floors come from that one run.
for program in dot1x webauth; do
    "$bin/authmng_${program}_bench" --benchmark_repetitions="$repetitions" \
        --benchmark_report_aggregates_only=true --benchmark_min_time="$min_time" \
        --benchmark_out="$work/$program.csv" --benchmark_out_format=csv >/dev/null 2>"$work/$program.err" ||
        { cat "$work/$program.err" >&2; exit 1; }
done
"$bin/authmng_memory_probe" >"$work/memory.txt"

# Instructions per operation: the operation runs n times inside
# authmng_bench_icount_op, the only function callgrind collects.
icount() { # program row n
    local file=$work/cg.$RANDOM
    valgrind --tool=callgrind --toggle-collect=authmng_bench_icount_op \
        --callgrind-out-file="$file" "$bin/authmng_$1_bench" --icount="$2" --icount-n="$3" \
        >/dev/null 2>&1 || { echo 0; return; }
    awk -v n="$3" '/^(summary|totals):/ { ir = $2 } END { printf "%.0f", ir / n }' "$file"
}

# row label | program | figure | floor | target ratio | callgrind repetitions
rows=(
    "802.1X successful first authentication|dot1x|dot1x/auth_success|floor/event|2.0|20000"
    "802.1X failed auth, full abnormal list|dot1x|dot1x/auth_fail_full_list|floor/alloc_copy_free|3.0|20000"
    "web-auth successful authentication|webauth|webauth/auth_success|floor/event|2.5|20000"
    "web-auth redirect report|webauth|webauth/redirect|floor/event|1.5|20000"
    "web-auth station move|webauth|webauth/station_move|floor/event|1.5|20000"
    "escape check report|webauth|webauth/escape_check|floor/event|2.0|20000"
    "802.1X statistic display, per call|dot1x|dot1x/show_statistic|floor/statistic_snprintf|1.5|200"
    "802.1X daily row pair, per call|dot1x|dot1x/daily_rows|floor/daily_rows_snprintf|1.5|200"
    "drain of 10,000 abnormal records|dot1x|dot1x/drain_10000|floor/drain_loop_10000|1.5|2"
)

# Median CPU time of a row in ns, and its spread (coefficient of variation
# of the repetitions, percent).
median() { # program row
    awk -F, -v want="\"$2_median\"" '$1 == want { printf "%.1f", $4 * ($5 == "us" ? 1000 : $5 == "ms" ? 1000000 : 1) }' \
        "$work/$1.csv"
}
spread() { # program row
    awk -F, -v want="\"$2_cv\"" '$1 == want { printf "%.1f", $7 * 100 }' "$work/$1.csv"
}
# Aggregate ns per event of the threaded intake row: all events of a round
# over its wall time.
per_event() { # threads
    awk -F, -v want="\"dot1x/intake/threads:$1/manual_time_median\"" \
        '$1 == want { printf "%.1f", 1e9 / $7 }' "$work/dot1x.csv"
}
human() { # ns
    awk -v t="$1" 'BEGIN { if (t >= 1e6) printf "%.2f ms", t / 1e6; else if (t >= 1e3) printf "%.2f us", t / 1e3; else printf "%.1f ns", t }'
}
verdict() { # ratio target
    awk -v r="$1" -v t="$2" 'BEGIN { print (r <= t ? "met" : "MISSED") }'
}

echo "libqx_authmng benchmarks: $(date -u +%Y-%m-%dT%H:%M:%SZ), $(nproc) CPUs," \
    "load $(cut -d' ' -f1-3 /proc/loadavg), Release, debugging off"
echo "times: median CPU time of $repetitions repetitions; floors from the same program run"
echo
header="%-40s %11s %6s %11s %7s %7s %-7s"
printf "$header" "row" "time/op" "cv%" "floor" "ratio" "target" "verdict"
((callgrind)) && printf " %9s %9s %7s" "Ir/op" "Ir floor" "Ir rat."
printf "\n"
for row in "${rows[@]}"; do
    IFS='|' read -r label program figure floor target n <<<"$row"
    t=$(median "$program" "$figure")
    f=$(median "$program" "$floor")
    ratio=$(awk -v a="$t" -v b="$f" 'BEGIN { printf "%.2f", a / b }')
    printf "$header" "$label" "$(human "$t")" "$(spread "$program" "$figure")" "$(human "$f")" \
        "$ratio" "<=$target" "$(verdict "$ratio" "$target")"
    if ((callgrind)); then
        a=$(icount "$program" "$figure" "$n")
        b=$(icount "$program" "$floor" "$n")
        printf " %9s %9s %7s" "$a" "$b" "$(awk -v a="$a" -v b="$b" 'BEGIN { printf "%.2f", b ? a / b : 0 }')"
    fi
    printf "\n"
done
one=$(per_event 1)
two=$(per_event 2)
ratio=$(awk -v a="$two" -v b="$one" 'BEGIN { printf "%.2f", a / b }')
printf "$header\n" "intake, 2 threads (aggregate per event)" "$(human "$two")" \
    "$(spread dot1x dot1x/intake/threads:2/manual_time)" "$(human "$one")" \
    "$ratio" "<=1.0" "$(verdict "$ratio" 1.0)"
printf "$header\n" "floor: lock pair + 12 increments (802.1X)" "$(human "$(median dot1x floor/event)")" \
    "$(spread dot1x floor/event)" "" "" "" ""
printf "$header\n" "floor: lock pair + 12 increments (web)" "$(human "$(median webauth floor/event)")" \
    "$(spread webauth floor/event)" "" "" "" ""

echo
memory() { awk -v k="$1" '$1 == k { print $2 }' "$work/memory.txt"; }
read -r text data bss _ < <(size "$out/libqx_authmng.so" | awk 'NR == 2')
file_size=$(stat -L -c %s "$out/libqx_authmng.so")
record=$(memory record_bytes)
heap=$(memory heap_per_record_bytes)
ratio=$(awk -v a="$heap" -v b="$record" 'BEGIN { printf "%.2f", a / b }')
printf "%-40s %s\n" "libqx_authmng.so code (text)" "$text bytes"
printf "%-40s %s\n" "libqx_authmng.so static data" "$((data + bss)) bytes (data $data, bss $bss)"
printf "%-40s %s\n" "libqx_authmng.so file size" "$file_size bytes"
printf "%-40s %s\n" "heap per queued abnormal record" \
    "$heap bytes vs record $record bytes: ratio $ratio, target <=1.15, $(verdict "$ratio" 1.15)"
printf "%-40s %s\n" "" "(node $(memory node_bytes) bytes, malloc usable size $(memory node_usable_bytes))"
printf "%-40s %s\n" "peak RSS, process holding $(memory records) records" \
    "$(memory peak_rss_kb) kB (same process before queueing: $(memory peak_rss_before_kb) kB)"
