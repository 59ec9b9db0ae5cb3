#!/usr/bin/env bash
# The report in a real browser: renders the report of the simulator's
# built-in day (802.1X, web-auth and cpp daemons of one device) plus a
# device whose users chose hostile names, loads it in headless Chromium with
# scripts/report-selfcheck.js added, and checks the verdict in the DOM.
#
#   scripts/report-check.sh BUILD_DIR [SCREENSHOT.png]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=$1
shot=${2:-}
sim=$build/tools/authmng-sim/authmng-sim
report=$build/tools/authmng-report/authmng-report
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

day=(--users 300 --start 2026-03-09T00:00:00 --until 2026-03-10T01:01:00 --quiet)
for client in dot1x webauth cpp; do
    "$sim" --client "$client" --out "$work/switch/$client" "${day[@]}"
done
cat >"$work/hostile.trace" <<'TRACE'
# user names an attacker chose
2026-03-09T08:00:00 dot1x-auth result=5 auth_time=60 username=<script>window.__pwned=1</script>
+1 dot1x-auth result=5 auth_time=60 username=<img/src=x/onerror=window.__pwned=2>
+1 dot1x-auth result=5 auth_time=60 username=a,b"c'&amp;</td></tr></table>
TRACE
"$sim" --client dot1x --trace "$work/hostile.trace" --out "$work/hostile" \
    --until 2026-03-10T01:01:00 --quiet
"$report" -o "$work/report.html" --tidy "$work/tidy" "$work/switch" "$work/hostile"

# The page with the self-check after its own script.
{
    sed 's|</body></html>$||' "$work/report.html"
    printf '<script>\n'
    cat "$root/scripts/report-selfcheck.js"
    printf '</script></body></html>\n'
} >"$work/check.html"

browser=(chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run
    --disable-background-networking --disable-component-update --disable-sync
    --user-data-dir="$work/profile" --virtual-time-budget=10000)
timeout 120 "${browser[@]}" --dump-dom "file://$work/check.html" >"$work/dom.html" 2>"$work/browser.log" || {
    tail -20 "$work/browser.log"
    echo "report: chromium failed"
    exit 1
}
# The verdict the self-check wrote (its own text never holds this tag).
verdict=$(sed -n '/<pre id="selfcheck">SELFCHECK /,/<\/pre>/p' "$work/dom.html" | sed 's/<[^>]*>//g')
echo "${verdict:-no verdict in the page}"
if [[ $verdict != "SELFCHECK PASS"* ]]; then
    echo "report: the browser check failed"
    exit 1
fi
if [[ -n $shot ]]; then
    timeout 120 "${browser[@]}" --hide-scrollbars --window-size=1100,2400 \
        --screenshot="$shot" "file://$work/report.html" 2>>"$work/browser.log" >/dev/null
    echo "report: screenshot in $shot"
fi
echo "report: 1 passed, 0 failed"
