#!/usr/bin/env bash
# End-to-end run of authmng-hostapd on real 802.1X traffic: two network
# namespaces joined by veth pairs, FreeRADIUS on the authenticator side's
# loopback, hostapd (driver=wired) on two ports, wpa_supplicant stations
# on macvlans of the other side. Asserts on what the library saw through
# authmng-cli, the interval file and the metrics endpoint, and prints the
# burst rate and the auth_time error against the wire.
#
#   scripts/e2e.sh BUILD_DIR
#
# Passes as skipped, saying why, where namespaces cannot be created. Every
# process is ended by its PID and everything is removed on exit, failed or
# not.
set -euo pipefail
build=${1:?usage: scripts/e2e.sh BUILD_DIR}
bridge_bin=$build/tools/authmng-hostapd/authmng-hostapd
cli_bin=$build/tools/authmng-cli/authmng-cli
[[ -x $bridge_bin && -x $cli_bin ]] || { echo "e2e: $bridge_bin or $cli_bin not built"; exit 1; }

# The system's python: quick to start, which the polling loops need.
py=/usr/bin/python3
[[ -x $py ]] || py=$(command -v python3)
tag=amg$$
ns_a=$tag-auth
ns_s=$tag-supp
work=$(mktemp -d /tmp/authmng-e2e.XXXXXX)
pids=()
radius_pid=
failures=0

cleanup() {
    local pid
    for pid in "${pids[@]}" $radius_pid; do kill "$pid" 2>/dev/null || true; done
    for pid in "${pids[@]}" $radius_pid; do
        for _ in $(seq 50); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
        kill -9 "$pid" 2>/dev/null || true
    done
    ip netns del "$ns_a" 2>/dev/null || true
    ip netns del "$ns_s" 2>/dev/null || true
    if ((failures)) || [[ ${AUTHMNG_E2E_KEEP:-} ]]; then
        echo "e2e: logs kept in $work"
    else
        rm -rf "$work"
    fi
}
trap cleanup EXIT
trap "exit 130" INT TERM

if ! ip netns add "$ns_a" 2>"$work/netns.err"; then
    echo "e2e: skipped: cannot create network namespaces here ($(cat "$work/netns.err"))"
    exit 0
fi
ip netns add "$ns_s"
in_a() { ip netns exec "$ns_a" "$@"; }
in_s() { ip netns exec "$ns_s" "$@"; }
# start NS NAME CMD...: CMD in namespace NS in the background, logged to
# $work/NAME.log; its PID in $last_pid (ip netns exec becomes CMD).
start() {
    local ns=$1 name=$2
    shift 2
    ip netns exec "$ns" "$@" >"$work/$name.log" 2>&1 &
    last_pid=$!
    pids+=("$last_pid")
}
# wait_for SECONDS WHAT CMD...: polls CMD until it succeeds, at most SECONDS.
wait_for() {
    local limit=$1 what=$2 deadline
    shift 2
    deadline=$((SECONDS + (limit > 0 ? limit : 1)))
    while ((SECONDS < deadline)); do
        "$@" >/dev/null 2>&1 && return 0
        sleep 0.1
    done
    echo "e2e: timed out after $limit s waiting for $what"
    return 1
}
check() { # check WHAT CMD...
    local what=$1
    shift
    if "$@"; then
        echo "ok   $what"
    else
        echo "FAIL $what"
        failures=$((failures + 1))
    fi
}

# --- network: port a (stations, link down) and port b (the silent station)
for port in a b; do
    ip link add "veth-$port" netns "$ns_a" type veth peer name "veth-s$port" netns "$ns_s"
    in_a ip link set "veth-$port" up
    in_s ip link set "veth-s$port" up
done
in_a ip link set lo up
in_s ip link set lo up

# --- FreeRADIUS on the authenticator side's loopback
radius_start() {
    ip netns exec "$ns_a" freeradius -f -d "$work/raddb" -l "$work/radius.log" &
    radius_pid=$!
    wait_for 20 "FreeRADIUS to listen" in_a bash -c "ss -lun | grep -q ':1812 '"
}
[[ -f /etc/ssl/certs/ssl-cert-snakeoil.pem ]] ||
    make-ssl-cert generate-default-snakeoil --force-overwrite
cp -a /etc/freeradius/3.0 "$work/raddb"
mkdir -p "$work/radius-run"
sed -i -e "s|^logdir = .*|logdir = $work/radius-run|" \
    -e "s|^run_dir = .*|run_dir = $work/radius-run|" \
    -e 's|^\(\s*\)user = freerad|\1#user = freerad|' -e 's|^\(\s*\)group = freerad|\1#group = freerad|' \
    -e 's|reject_delay = 1|reject_delay = 0|' "$work/raddb/radiusd.conf"
sed -i -e 's|ipaddr = \*|ipaddr = 127.0.0.1|' -e 's|ipv6addr = ::.*|ipv6addr = ::1|' \
    "$work/raddb/sites-available/default"
# The only RADIUS client: hostapd on the same loopback.
cat >"$work/raddb/clients.conf" <<'EOF'
client authmng_e2e {
	ipaddr = 127.0.0.1
	proto = *
	secret = e2e-secret
	require_message_authenticator = no
	nas_type = other
}
EOF
authorize=$work/raddb/mods-config/files/authorize
{
    printf 'alice\tCleartext-Password := "alicepass"\n'
    printf 'bob\tCleartext-Password := "bobpass"\n'
    cat "$authorize"
} >"$authorize.new"
mv "$authorize.new" "$authorize"
radius_start

# --- hostapd: one process, both ports
mkdir -p "$work/hostapd"
for port in a b; do
    cat >"$work/hostapd-$port.conf" <<EOF
interface=veth-$port
driver=wired
logger_stdout=-1
logger_stdout_level=2
ctrl_interface=$work/hostapd
ieee8021x=1
eapol_version=2
eap_reauth_period=0
use_pae_group_addr=0
own_ip_addr=127.0.0.1
nas_identifier=authmng-e2e
auth_server_addr=127.0.0.1
auth_server_port=1812
auth_server_shared_secret=e2e-secret
EOF
done
start "$ns_a" hostapd hostapd "$work/hostapd-a.conf" "$work/hostapd-b.conf"
hostapd_pid=$last_pid
wait_for 20 "hostapd's control interfaces" test -S "$work/hostapd/veth-a" -a -S "$work/hostapd/veth-b"

# --- the bridge
sock=$work/cmd.sock
start "$ns_a" bridge "$bridge_bin" -i "$work/hostapd/veth-a" -i "$work/hostapd/veth-b" -s "$sock" \
    --metrics 127.0.0.1:9469 --tmp "$work/tmp" --flash "$work/flash" --record "$work/events.rec"
wait_for 20 "the bridge to attach both ports" bash -c \
    "[[ \$(grep -c 'attached to' '$work/bridge.log') -ge 2 ]]"
cli() { "$cli_bin" -s "$sock" "$@"; }
metrics() { in_a "$py" -c 'import urllib.request,sys
sys.stdout.write(urllib.request.urlopen("http://127.0.0.1:9469/metrics",timeout=5).read().decode())'; }
# count KIND CODE [FILE]: the library's count of a first-authentication
# result or an offline reason, read from the metrics or from FILE, a copy of
# them (0 when absent); total KIND [FILE]: the sum over every code.
metrics_or() { if [[ ${1:-} ]]; then cat "$1"; else metrics; fi; }
count() {
    metrics_or "${3:-}" | awk -v name="authmng_$1_total" -v code="$2" '
        index($0, name "{method=\"dot1x\",code=\"" code "\",") == 1 { n = $NF }
        END { print n + 0 }'
}
total() {
    metrics_or "${2:-}" | awk -v name="authmng_$1_total{method=\"dot1x\"" '
        index($0, name) == 1 { n += $NF }
        END { print n + 0 }'
}
count_at_least() { [[ $(count "$1" "$2") -ge $3 ]]; }

# --- stations
# prepare NAME MAC PORT USER PASSWORD: a macvlan and a wpa_supplicant
# configuration for a station; station NAME ...: prepared and started.
prepare() {
    local name=$1 mac=$2 port=$3 user=$4 password=$5
    in_s ip link add "$name" link "veth-s$port" address "$mac" type macvlan mode private
    in_s ip link set "$name" up
    cat >"$work/$name.conf" <<EOF
ctrl_interface=$work/wpa-$name
ap_scan=0
eapol_version=2
network={
	key_mgmt=IEEE8021X
	eap=PEAP
	identity="$user"
	password="$password"
	phase2="auth=MSCHAPV2"
	ca_cert="/etc/ssl/certs/ssl-cert-snakeoil.pem"
	eapol_flags=0
}
EOF
}
launch() {
    start "$ns_s" "$1" wpa_supplicant -Dwired -i "$1" -c "$work/$1.conf"
    eval "pid_$1=$last_pid"
}
station() {
    prepare "$@"
    launch "$1"
}
stop_station() { local var=pid_$1; kill "${!var}" 2>/dev/null || true; }
authorized() { in_s wpa_cli -p "$work/wpa-$1" -i "$1" status 2>/dev/null | grep -q 'suppPortStatus=Authorized'; }

# The silent station of port b goes first: hostapd gives up on it only after
# about 81 s of fixed retransmissions, so it runs alongside everything else.
# It sends one EAPOL-Start and never answers.
in_s "$py" - "veth-sb" <<'EOF'
import socket, sys
s = socket.socket(socket.AF_PACKET, socket.SOCK_RAW)
s.bind((sys.argv[1], 0x888e))
dst = bytes.fromhex("0180c2000003"); src = bytes.fromhex("020000000105")
s.send(dst + src + b"\x88\x8e" + b"\x02\x01\x00\x00")
EOF
silent_start=$SECONDS

# tcpdump on port a for the wire times of the first successes.
start "$ns_a" tcpdump tcpdump -i veth-a -n -w "$work/wire.pcap" -U ether proto 0x888e
tcpdump_pid=$last_pid
sleep 0.5

# Successes, then a wrong password.
station s1 02:00:00:00:01:01 a alice alicepass
station s2 02:00:00:00:01:02 a alice alicepass
wait_for 30 "two successes" count_at_least authentications 0 2
check "s1 and s2 authorized" authorized s1
station s3 02:00:00:00:01:03 a bob wrong-password
wait_for 30 "the reject of bob" count_at_least authentications 5 1
stop_station s3

# Logoff.
station s4 02:00:00:00:01:04 a alice alicepass
wait_for 30 "s4 authorized" authorized s4
in_s wpa_cli -p "$work/wpa-s4" -i s4 logoff >/dev/null
wait_for 15 "the logoff" count_at_least offlines 0 1
kill "$tcpdump_pid"
wait "$tcpdump_pid" 2>/dev/null || true

# RADIUS stopped: s6 gets in, its server time-out is shortened (hostapd's
# timers are per station and cannot be set in hostapd.conf), the server
# stops and hostapd re-authenticates s6.
station s6 02:00:00:00:01:06 a alice alicepass
wait_for 30 "s6 authorized" authorized s6
in_a hostapd_cli -p "$work/hostapd" -i veth-a raw EAPOL_SET 02:00:00:00:01:06 serverTimeout 3 >/dev/null
kill "$radius_pid"
wait "$radius_pid" 2>/dev/null || true
radius_pid=
in_a hostapd_cli -p "$work/hostapd" -i veth-a raw EAPOL_REAUTH 02:00:00:00:01:06 >/dev/null
wait_for 30 "the RADIUS time-out" count_at_least reauthentications 3 1
forget() { # forget NAME MAC: the station stopped and removed from hostapd
    stop_station "$1"
    in_a hostapd_cli -p "$work/hostapd" -i veth-a deauthenticate "$2" >/dev/null
}
forget s6 02:00:00:00:01:06
forget s4 02:00:00:00:01:04
radius_start

# Link down on port a: s1 and s2 are online there.
in_s ip link set veth-sa down
wait_for 10 "the port-down offlines" count_at_least offlines 29 2
stop_station s1
stop_station s2
in_s ip link set veth-sa up

# A burst of 50 parallel supplicants: how fast they come in is bounded by
# starting 50 processes on this machine, so once they are in, hostapd
# re-authenticates all of them at once as well (a figure only). A RADIUS
# round lost under the load costs its station hostapd's 30 s server
# time-out; the first burst passes with 48 of 50 in.
burst_before=$(count authentications 0)
for i in $(seq 1 50); do
    prepare "b$i" "$(printf '02:00:00:00:02:%02x' "$i")" a alice alicepass
done
for i in $(seq 1 50); do launch "b$i"; done
wait_for 25 "50 burst successes" count_at_least authentications 0 $((burst_before + 50)) || true
check "burst: at least 48 of 50 supplicants in" count_at_least authentications 0 $((burst_before + 48))
reauth_before=$(count reauthentications 0)
in_a "$py" - "$work/hostapd/veth-a" "$work/reauth.sock" >"$work/reauth-start" <<'EOF'
import socket, sys, time
s = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
s.bind(sys.argv[2])
s.connect(sys.argv[1])
print(int(time.monotonic() * 1e6))
for i in range(1, 51):
    s.send(b"EAPOL_REAUTH 02:00:00:00:02:%02x" % i)
for i in range(1, 51):
    s.recv(64)
EOF
wait_for 10 "50 re-authentications" count_at_least reauthentications 0 $((reauth_before + 50)) >/dev/null || true

# The silent station's EAP time-out.
wait_for $((110 - (SECONDS - silent_start))) "the silent station's time-out" \
    count_at_least authentications 1 1

# --- the library's view
# Taken again while a station that failed in a burst comes back between
# the first and the last look: every view must show the same counts.
counts() { grep -E '^authmng_(authentications|reauthentications|offlines)_total' "$1"; }
for _ in 1 2 3 4 5; do
    metrics >"$work/metrics-before.txt"
    cli show dot1x authmng statistic >"$work/statistic.txt"
    cli show dot1x authmng abnormal >"$work/abnormal.txt"
    cli bridge write-interval >/dev/null
    cli bridge status >"$work/status.txt"
    metrics >"$work/metrics.txt"
    cmp -s <(counts "$work/metrics-before.txt") <(counts "$work/metrics.txt") && break
    sleep 1
done
csv=$work/tmp/security/authmanage/dot1x/dot1x_statistic.csv
successes=$(count authentications 0 "$work/metrics.txt")
reauth_timeouts=$(count reauthentications 3 "$work/metrics.txt")
port_downs=$(count offlines 29 "$work/metrics.txt")
# Every first-authentication result the metrics count, whatever its code.
auth_number=$(total authentications "$work/metrics.txt")
line_of() { grep -qF -- "$1" "$2"; }
check "show statistic: the authentication number" \
    line_of " authentication number:........................$auth_number." "$work/statistic.txt"
check "show statistic: the successes" \
    line_of " authentication success:.......................$successes." "$work/statistic.txt"
check "show statistic: one request id timeout (the silent station)" \
    grep -Eq '^  request id timeout +: 1$' "$work/statistic.txt"
# bob's reject, and any a burst station got from a RADIUS round lost under
# the load.
rejects=$(count authentications 5 "$work/metrics.txt")
check "show statistic: the aaa rejects, bob's among them" \
    bash -c "(($rejects >= 1)) && grep -Eq '^  aaa reject +: $rejects$' '$work/statistic.txt'"
check "show statistic: the re-authentication's aaa timeout" \
    grep -Eq "^    aaa timeout +: $reauth_timeouts$" "$work/statistic.txt"
check "show statistic: one user logoff, the port down offlines" \
    bash -c "grep -Eq '^  user logoff +: 1$' '$work/statistic.txt' &&
             grep -Eq '^  port down +: $port_downs$' '$work/statistic.txt'"
check "abnormal list: bob's reject with his MAC" \
    grep -Eq '^[0-9.: ]+ 0200\.0000\.0103 .* D1X_AUTH +aaa reject .* bob *$' "$work/abnormal.txt"
check "abnormal list: alice's RADIUS time-out, aaa_timeout set" \
    grep -Eq '^[0-9.: ]+ 0200\.0000\.0106 [0-9]+ +1 .* D1X_REAUTH +aaa timeout .* alice *$' "$work/abnormal.txt"
check "abnormal list: the silent station's request id timeout" \
    grep -Eq '^[0-9.: ]+ 0200\.0000\.0105 [0-9]+ +0 +1 .* request id timeout' "$work/abnormal.txt"
check "abnormal list: the port-down offlines of s1 and s2" \
    bash -c "grep -Eq '0200\.0000\.0101 .* D1X_OFFLINE +port down' '$work/abnormal.txt' &&
             grep -Eq '0200\.0000\.0102 .* D1X_OFFLINE +port down' '$work/abnormal.txt'"
# Each write adds the rows of the activity since the one before.
check "interval file: the dot1x rows add up to this run's counts" \
    test "$(awk -F, '$2 == "dot1x" { a += $4; s += $5 } END { print a + 0, s + 0 }' "$csv")" = \
    "$auth_number $successes"
check "interval file: a mab row with nothing counted" grep -Eq '^[0-9.: ]+,mab,0, 0, 0, ' "$csv"
check "metrics: promtool accepts them" promtool check metrics <"$work/metrics.txt"
check "metrics: the rejects counted by their text" \
    grep -q "^authmng_authentications_total{method=\"dot1x\",code=\"5\",result=\"aaa reject\"} $rejects\$" \
    "$work/metrics.txt"
# hostapd busy with a burst (its command queue full) is no lost interface.
check "bursts: no interface lost" grep -q '^attaches: 2, lost: 0,' "$work/status.txt"
check "metrics: no malformed lines, both ports attached" \
    bash -c "grep -q '^authmng_hostapd_malformed_lines_total 0$' '$work/metrics.txt' &&
             grep -q '^authmng_hostapd_interfaces_attached 2$' '$work/metrics.txt'"

# Survives a hostapd restart: re-attaches; hostapd disconnects its stations
# as it stops, so they go offline.
online() { metrics | awk '/^authmng_online_users\{method="dot1x"\}/ { print $NF }'; }
offlines_before=$(total offlines)
read -r attaches lost < <(sed -n 's/^attaches: \([0-9]*\), lost: \([0-9]*\),.*/\1 \2/p' "$work/status.txt")
online_before=$(online)
kill "$hostapd_pid"
wait "$hostapd_pid" 2>/dev/null || true
start "$ns_a" hostapd2 hostapd "$work/hostapd-a.conf" "$work/hostapd-b.conf"
wait_for 20 "the bridge to re-attach" bash -c \
    "[[ \$(grep -c 'attached to' '$work/bridge.log') -ge $((attaches + 2)) ]]"
check "hostapd restart: re-attached" \
    grep -q "^attaches: $((attaches + 2)), lost: $((lost + 2))," <(cli bridge status)
check "hostapd restart: the $online_before online stations offline" \
    test "$(online)" = 0 -a "$(total offlines)" -ge "$((offlines_before + online_before))"

# --- figures
"$py" - "$work/events.rec" "$work/wire.pcap" "$work/reauth-start" <<'EOF' | tee "$work/figures.txt"
import struct, sys
starts, ends = {}, {}
reauth_at = int(open(sys.argv[3]).read())
for line in open(sys.argv[1], errors="replace"):
    f = line.split(" ", 3)
    if len(f) < 4 or f[2] != "E":
        continue
    us, text = int(f[0]), f[3].split()
    name, mac = text[0].split(">", 1)[-1], text[1] if len(text) > 1 else ""
    if name == "CTRL-EVENT-EAP-STARTED":
        starts.setdefault(mac, us)
    if name == "CTRL-EVENT-EAP-SUCCESS2" and mac in starts:
        ends.setdefault(mac, us)
def rate(what, first, last):
    t0 = min(first)
    span = (max(last) - t0) / 1e6
    quick = [t for t in last if t - t0 <= 1e6]
    print("%s: %d in, first EAP start to last success %.3f s (%.0f auth/s)" % (what, len(last), span, len(last) / span))
    if quick:
        q = (max(quick) - t0) / 1e6
        print("  of which %d within its first second, in %.3f s (%.0f auth/s)" % (len(quick), q, len(quick) / q))
b = [m for m in ends if m.startswith("02:00:00:00:02:")]
if b:
    rate("first-authentication burst (50 supplicants started together)", [starts[m] for m in b], [ends[m] for m in b])
rs, re_ = {}, {}
for line in open(sys.argv[1], errors="replace"):
    f = line.split(" ", 3)
    if len(f) < 4 or f[2] != "E" or int(f[0]) < reauth_at:
        continue
    text = f[3].split()
    name, mac = text[0].split(">", 1)[-1], text[1] if len(text) > 1 else ""
    if not mac.startswith("02:00:00:00:02:"):
        continue
    if name == "CTRL-EVENT-EAP-STARTED":
        rs.setdefault(mac, int(f[0]))
    if name == "CTRL-EVENT-EAP-SUCCESS2" and mac in rs:
        re_.setdefault(mac, int(f[0]))
if re_:
    rate("re-authentication burst (hostapd, 50 at once)", [reauth_at], list(re_.values()))
# Wire: EAPOL-Start from the station to EAP-Success to the station.
data = open(sys.argv[2], "rb").read()
pos, wire_start, wire_first, wire_end = 24, {}, {}, {}
while pos + 16 <= len(data):
    sec, usec, incl, _ = struct.unpack("<IIII", data[pos:pos + 16])
    frame = data[pos + 16:pos + 16 + incl]
    pos += 16 + incl
    t = sec * 1e6 + usec
    if len(frame) < 18 or frame[12:14] != b"\x88\x8e":
        continue
    dst, src = ":".join("%02x" % x for x in frame[0:6]), ":".join("%02x" % x for x in frame[6:12])
    if frame[15] == 1 and src not in wire_end:
        wire_start[src] = t
        wire_first.pop(src, None)
    elif frame[15] == 0 and frame[18] == 1 and dst in wire_start:
        wire_first.setdefault(dst, t)  # hostapd's first request after the start
    elif frame[15] == 0 and frame[18] == 3:
        wire_end.setdefault(dst, t)
for mac in sorted(wire_end):
    if mac in starts and mac in ends and mac in wire_start:
        obs = (ends[mac] - starts[mac]) / 1000
        wire = (wire_end[mac] - wire_start[mac]) / 1000
        print("auth_time %s: bridge %.3f ms, wire %.3f ms, error %+.3f ms" % (mac, obs, wire, obs - wire))
        if mac in wire_first:
            served = (wire_end[mac] - wire_first[mac]) / 1000
            print("  from hostapd's first request on the wire: %.3f ms, error %+.3f ms" % (served, obs - served))
EOF
"$bridge_bin" --replay "$work/events.rec" --repeat 200 --tmp "$work/replay/tmp" \
    --flash "$work/replay/flash" | tail -n 1 | tee -a "$work/figures.txt"

echo "e2e: $failures failed"
((failures == 0))
