#!/usr/bin/env bash
# Mutation testing of the library: plants one textual fault at a time in a
# library source file, rebuilds, runs the tests and puts the file back. A
# developer tool run on demand; CI never runs it.
#
#   scripts/mutate.sh [--seed N] [--count N] [--build DIR] [--timeout S] [--list]
#                     [--only FILE] [--by-test]
#
#   --seed     seed of the sample (default 1); the same seed and count give
#              the same mutants on the same sources
#   --count    mutants in the sample (default 150)
#   --build    build directory (default build-mutate: RelWithDebInfo, no
#              benchmarks, gold links the many test programs faster)
#   --timeout  seconds per test case before ctest counts it failed (default 20)
#   --list     print the sampled mutants and stop
#   --only     run only the mutants of the sample whose key (the first word
#              of each line of FILE, e.g. an earlier run's survivors) is listed
#   --by-test  run every test against every mutant and write which tests
#              killed it to <build>/mutate-kills.txt ("key test test ..."):
#              a test that is never the only killer of a mutant adds
#              nothing the others do not catch
#
# The sample takes the same share from each folder. Faults: a swapped
# operator (== !=, < <=, > >=, && ||, + -, ++ --, += -=), an integer
# constant off by one, a deleted statement, a return forced to 0 (1 where
# it returned 0). Comments, string and character literals and
# preprocessor lines are never touched. Folders: core dot1x webauth escape
# cli util platform/host, headers left out (a header fault rebuilds
# everything).
#
# Each mutant is "killed" (a test failed), "survived", "no-compile" (skipped)
# or "equivalent" (its object code is the original's: nothing observable
# changed; not run, not scored). Score = killed / (killed + survived).
# The survivors are listed in <build>/mutate-survivors.txt, each after its
# key: the key stays the same while the line it sits on is unchanged.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

seed=1 count=150 build=$root/build-mutate timeout=20 list=0 only="" by_test=0
while (($#)); do
    case $1 in
    --seed) seed=$2 && shift ;;
    --count) count=$2 && shift ;;
    --build) build=$(realpath -m "$2") && shift ;;
    --timeout) timeout=$2 && shift ;;
    --list) list=1 ;;
    --by-test) by_test=1 ;;
    --only) only=$(realpath "$2") && shift ;;
    *) sed -n '2,36p' "$0" >&2 && exit 2 ;;
    esac
    shift
done

# Sites and the sample: "file<TAB>line<TAB>column<TAB>old<TAB>new" lines.
generate() {
    python3 - "$seed" "$count" <<'EOF'
import hashlib, re, subprocess, sys

seed, count = int(sys.argv[1]), int(sys.argv[2])
folders = ("core/", "dot1x/", "webauth/", "escape/", "cli/", "util/", "platform/host/")
files = sorted(f for f in subprocess.run(["git", "ls-files"], capture_output=True, text=True,
                                         check=True).stdout.split()
               if f.startswith(folders) and f.endswith((".cc", ".c"))
               and not f.endswith(("_test.cc", "_test.c")))

def masked(text):
    """The text with comments, string and character literals blanked."""
    out, i, n = [], 0, len(text)
    while i < n:
        c = text[i]
        if text.startswith("//", i):
            j = text.find("\n", i)
            j = n if j < 0 else j
            out.append(" " * (j - i)); i = j
        elif text.startswith("/*", i):
            j = text.find("*/", i + 2)
            j = n if j < 0 else j + 2
            out.append("".join(ch if ch == "\n" else " " for ch in text[i:j])); i = j
        elif c in "\"'":
            j = i + 1
            while j < n and text[j] != c and text[j] != "\n":
                j += 2 if text[j] == "\\" else 1
            j = min(j + 1, n)
            out.append(c + " " * (j - i - 2) + c if j - i >= 2 else c); i = j
        else:
            out.append(c); i += 1
    return "".join(out)

swaps = {"==": "!=", "!=": "==", "<=": "<", ">=": ">", "<": "<=", ">": ">=", "&&": "||",
         "||": "&&", "+=": "-=", "-=": "+=", "+": "-", "-": "+", "++": "--", "--": "++"}
op = re.compile(r"->|<<=|>>=|<<|>>|\+\+|--|\+=|-=|==|!=|<=|>=|&&|\|\||[<>+\-]")
number = re.compile(r"(?<![\w.])(\d+)([uUlL]*)(?![\w.])")
ret = re.compile(r"^(\s*)return\s+(.+);\s*$")

sites, lines_of = [], {}
for f in files:
    text = open(f).read()
    lines, code = text.split("\n"), masked(text).split("\n")
    lines_of[f] = lines
    for k, (line, m) in enumerate(zip(lines, code), 1):
        s = m.strip()
        if not s or s.startswith("#") or "static_assert" in s or "template" in s:
            continue
        for t in op.finditer(m):
            o, a, b = t.group(), t.start(), t.end()
            if o not in swaps:
                continue
            if o not in ("++", "--") and not (m[a - 1:a] == " " and m[b:b + 1] == " "):
                continue  # binary operators only: unary minus, templates stay
            sites.append((f, k, a, o, swaps[o]))
        for t in number.finditer(m):
            v = int(t.group(1))
            sites.append((f, k, t.start(), t.group(), str(v - 1 if v == 1 else v + 1) + t.group(2)))
        r = ret.match(m)
        if r and r.group(2).strip() not in ("0", "nullptr", "false"):
            sites.append((f, k, len(r.group(1)), line.strip(), "return 0;"))
        elif r:
            sites.append((f, k, len(r.group(1)), line.strip(), "return 1;"))
        prev = next((c.strip() for c in reversed(code[:k - 1]) if c.strip()), ";")
        if (s.endswith(";") and line[:1].isspace()
                and not s.startswith(("}", "return", "case", "default", "constexpr", "using",
                                      "static", "const ", "struct", "enum"))
                and s.count("(") == s.count(")") and prev[-1:] in ";{}:" and not r):
            sites.append((f, k, len(line) - len(line.lstrip()), line.strip(), ""))

# A site's place in the sample follows from the seed, its file and its own
# line's text, not from its line number: a change elsewhere in the sources
# leaves the rest of the sample as it was.
def rank(site):
    f, k, col, old, new = site
    text = lines_of[f][k - 1]
    key = f"{seed}|{f}|{text.strip()}|{col - (len(text) - len(text.lstrip()))}|{old}|{new}"
    return hashlib.sha256(key.encode()).hexdigest()

# The same share of the sample from every folder, so that a small folder
# gets a score worth reading.
sample = []
for i, folder in enumerate(folders):
    share = count // len(folders) + (i < count % len(folders))
    sample += sorted((s for s in sites if s[0].startswith(folder)), key=rank)[:share]
sample.sort(key=lambda x: (x[0], x[1], x[2]))
print(f"# {len(sites)} sites, {len(sample)} sampled", file=sys.stderr)
for f, k, col, old, new in sample:
    print(f"{rank((f, k, col, old, new))[:12]}\t{f}\t{k}\t{col}\t{old}\t{new}")
EOF
}

# Applies one mutant to its file (the whole line keeps its place, so every
# line number and __LINE__ stays as it was).
apply() {
    python3 - "$@" <<'EOF'
import sys
f, k, col, old, new = sys.argv[1], int(sys.argv[2]), int(sys.argv[3]), sys.argv[4], sys.argv[5]
lines = open(f).read().split("\n")
line = lines[k - 1]
assert line[col:col + len(old)] == old, (f, k, old)
lines[k - 1] = line[:col] + new + line[col + len(old):]
open(f, "w").write("\n".join(lines))
EOF
}

sample=$(generate)
if [ -n "$only" ]; then
    sample=$(awk 'NR == FNR { keep[$1] = 1; next } $1 in keep' "$only" - <<<"$sample")
fi
if ((list)); then
    echo "$sample"
    exit 0
fi

if [ ! -f "$build/build.ninja" ]; then
    nice cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DAUTHMNG_BUILD_BENCH=OFF -DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=gold \
        -DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=gold >/dev/null
fi
nice cmake --build "$build" -j2 >/dev/null
nice ctest --test-dir "$build" -j2 --timeout "$timeout" -Q || {
    echo "the tests fail without any mutant" >&2
    exit 1
}

# The file under mutation goes back whatever happens (Ctrl-C included) and
# is newer than its object, so the next build compiles the original again.
backup=$build/mutate-original current=""
restore() {
    if [ -n "$current" ]; then
        cat "$backup" >"$current"
        touch "$current"
        current=""
    fi
}
trap restore EXIT
trap 'restore; exit 130' INT TERM

object() { find "$build" -path "*.dir/*" -name "$(basename "$1").o" | grep -F "/${1#platform/}.o" | head -1; }
stripped() { objcopy --strip-debug "$1" "$2"; }

declare -A killed survived
total=0 nocompile=0 equivalent=0
survivors=$build/mutate-survivors.txt kills=$build/mutate-kills.txt
: >"$survivors"
((by_test)) && : >"$kills"
stop=--stop-on-failure
((by_test)) && stop=""
failed=$build/Testing/Temporary/LastTestsFailed.log
while IFS=$'\t' read -r key file line col old new; do
    total=$((total + 1))
    obj=$(object "$file")
    stripped "$obj" "$build/mutate-before.o"
    cp "$file" "$backup"
    current=$file
    apply "$file" "$line" "$col" "$old" "$new"
    folder=$(dirname "$file")
    what="$file:$line: '$old' -> '$new'"
    if ! nice cmake --build "$build" -j2 >/dev/null 2>&1; then
        verdict=no-compile nocompile=$((nocompile + 1))
    elif stripped "$obj" "$build/mutate-after.o" && cmp -s "$build/mutate-before.o" "$build/mutate-after.o"; then
        verdict=equivalent equivalent=$((equivalent + 1))
    elif rm -f "$failed" && nice ctest --test-dir "$build" -j2 --timeout "$timeout" $stop -Q >/dev/null 2>&1; then
        verdict=survived survived[$folder]=$((${survived[$folder]:-0} + 1))
        echo "$key $what" >>"$survivors"
    else
        verdict=killed killed[$folder]=$((${killed[$folder]:-0} + 1))
        ((by_test)) && echo "$key $(cut -d: -f2- "$failed" | tr '\n' ' ')" >>"$kills"
    fi
    restore
    printf '%3d %-10s %s %s\n' "$total" "$verdict" "$key" "$what"
done <<<"$sample"
nice cmake --build "$build" -j2 >/dev/null

echo
echo "seed $seed, $total mutants: $nocompile did not compile, $equivalent changed no object code"
printf '| %-13s | %6s | %8s | %5s |\n' folder killed survived score
printf '|---------------|--------|----------|-------|\n'
all_k=0 all_s=0
for folder in core dot1x webauth escape cli util platform/host; do
    k=${killed[$folder]:-0} s=${survived[$folder]:-0}
    all_k=$((all_k + k)) all_s=$((all_s + s))
    ((k + s)) || continue
    printf '| %-13s | %6d | %8d | %4d%% |\n' "$folder" "$k" "$s" $((100 * k / (k + s)))
done
((all_k + all_s)) && printf '| %-13s | %6d | %8d | %4d%% |\n' all "$all_k" "$all_s" $((100 * all_k / (all_k + all_s)))
echo "survivors: $survivors"
