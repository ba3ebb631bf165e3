#!/usr/bin/env bash
# Runs the example programs as a newcomer would and checks what they print.
set -euo pipefail
bin=$1
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

log=$("$bin/ex_record_log" "$dir" 2>/dev/null)
[ -s "$log" ] || { echo "ex_record_log wrote no log: $log"; exit 1; }
"$bin/ex_play_log" "$log" >"$dir/out" 2>/dev/null || { echo "ex_play_log failed"; exit 1; }
grep -qx 'Played 11 items, 444 payload bytes, to 100.0 % of the file' "$dir/out"
grep -qx '  type 16  navigation     10' "$dir/out"
grep -qx '  deepest position of the vehicle: 4.50 m' "$dir/out"

# A damaged log is told by the exit code.
truncate -s -1 "$log"
status=0
"$bin/ex_play_log" "$log" >/dev/null 2>&1 || status=$?
[ "$status" -eq 2 ] || { echo "a cut log gave exit code $status"; exit 1; }

# Also when it ends right behind an item's header, where nothing is left to be read.
truncate -s 88 "$log"
status=0
"$bin/ex_play_log" "$log" >/dev/null 2>&1 || status=$?
[ "$status" -eq 2 ] || { echo "a log cut behind a header gave exit code $status"; exit 1; }

# Settings stay from run to run, also when the file is damaged in between.
settings=$dir/config/settings.json
shows() {
    local expected=$1 shown
    shift
    shown=$("$bin/ex_settings" "$settings" "$@" 2>"$dir/errors") || { echo "ex_settings failed"; exit 1; }
    [ "$shown" = "$expected" ] || { echo "ex_settings printed: $shown"; exit 1; }
}
shows 'port on, 1024 samples, range 50.0 m, sea floor #ffa000' 75.5
shows 'port on, 1024 samples, range 75.5 m, sea floor #ffa000' 120
shows 'port on, 1024 samples, range 120.0 m, sea floor #ffa000'
[ ! -s "$dir/errors" ] || { echo "ex_settings complained: $(cat "$dir/errors")"; exit 1; }
truncate -s 20 "$settings"
shows 'port on, 1024 samples, range 75.5 m, sea floor #ffa000'
grep -q "The settings are those of its last good copy, $settings.bak" "$dir/errors"
shows 'port on, 1024 samples, range 75.5 m, sea floor #ffa000'
status=0
"$bin/ex_settings" "$dir" >/dev/null 2>&1 || status=$?
[ "$status" -eq 3 ] || { echo "a folder gave exit code $status"; exit 1; }
# A route with two turns to the left of a quarter circle each; the corners count for its length.
"$bin/ex_route" "$dir/route.json" >"$dir/out" || { echo "ex_route failed"; exit 1; }
grep -qx 'Start Mission  48.4800 -68.5200  at    0.0 m' "$dir/out"
[ "$(grep -c ', turns left$' "$dir/out")" -eq 2 ]
grep -qx 'Length 1103.9 m, duration 1104 s' "$dir/out"
grep -q '"name": "Recovery"' "$dir/route.json"
status=0
"$bin/ex_route" "$dir" >/dev/null 2>&1 || status=$?
[ "$status" -eq 3 ] || { echo "a folder in place of the file gave exit code $status"; exit 1; }
# A survey of an area of 369 m by 222 m: six lines along its longer side, nothing where there is no area.
"$bin/ex_survey_pattern" 40 25 48.480 -68.515 48.480 -68.510 48.482 -68.510 48.482 -68.515 >"$dir/out"
grep -qx 'L1 S      48.4818993  -68.5150000  r 0.0' "$dir/out"
grep -qx '6 lines of 2218 m together, heading 90.0' "$dir/out"
grep -qx '22 waypoints, 2981 m, 5962 s' "$dir/out"
status=0
"$bin/ex_survey_pattern" 40 25 48.480 -68.515 48.480 -68.510 48.480 -68.512 2>"$dir/out" || status=$?
[ "$status" -eq 2 ] || { echo "no area gave exit code $status"; exit 1; }
grep -qx 'The corners of the area lie on one line.' "$dir/out"
# A simulated survey is a sound log with both sides of the sonar, and the same each time.
"$bin/ex_simulate" "$dir/simulated.log" 3 >"$dir/out" 2>"$dir/errors" || { echo "ex_simulate failed"; exit 1; }
[ ! -s "$dir/errors" ] || { echo "ex_simulate complained: $(cat "$dir/errors")"; exit 1; }
grep -qE '^29[0-9] m in 1[45][0-9] s: [0-9]+ items, 7[0-9][0-9] pings$' "$dir/out" || { cat "$dir/out"; exit 1; }
grep -q '^wreck ' "$dir/out"
"$bin/ex_play_log" "$dir/simulated.log" >"$dir/played" 2>/dev/null || { echo "its log is not sound"; exit 1; }
grep -qE '^  type 17 ' "$dir/played"
status=0
"$bin/ex_simulate" "$dir/none/simulated.log" >/dev/null 2>&1 || status=$?
[ "$status" -eq 3 ] || { echo "a missing folder gave exit code $status"; exit 1; }
# Forty seconds of it for other programs: the track, a table, and both sides of the sonar as pictures.
"$bin/ex_export_survey" "$dir/simulated.log" "$dir/exported" 20 60 >"$dir/out" || { echo "ex_export_survey failed"; exit 1; }
grep -qE '^track\.gpx: [34][0-9][0-9] items, [0-9]+ bytes$' "$dir/out" || { cat "$dir/out"; exit 1; }
[ "$(grep -c '<trkpt' "$dir/exported/track.gpx")" -ge 300 ]
head -1 "$dir/exported/records.csv" | grep -q '^time,latitude,longitude,depth,'
for picture in waterfall.png mosaic.png; do
    [ "$(head -c 4 "$dir/exported/$picture" | tail -c 3)" = PNG ] || { echo "no $picture"; exit 1; }
done
[ -s "$dir/exported/mosaic.pgw" ]
status=0
"$bin/ex_export_survey" "$dir/simulated.log" "$dir/exported" 1e6 2e6 2>"$dir/out" >/dev/null || status=$?
[ "$status" -eq 3 ] && grep -qx 'There is nothing to export' "$dir/out" || { echo "a part beyond the log gave $status"; exit 1; }
status=0
"$bin/ex_export_survey" "$dir/none.log" "$dir/exported" >/dev/null 2>&1 || status=$?
[ "$status" -eq 2 ] || { echo "no log to export gave $status"; exit 1; }
# A recording of a simulated survey goes through the session, event and all, and can be reviewed.
mkdir "$dir/recorded"
"$bin/ex_record_survey" "$dir/recorded" 40 >"$dir/out" 2>"$dir/errors" || { cat "$dir/errors"; exit 1; }
grep -qE 'survey_[0-9]{8}_[0-9]{6}\.log: [0-9]{4} items, [0-9]+ bytes, with an event$' "$dir/out" || { cat "$dir/out"; exit 1; }
LC_ALL=C grep -qaP 'b\x00e\x00g\x00i\x00n\x00s' "$dir"/recorded/survey_*.log || { echo "its event is not in the log"; exit 1; }
"$bin/ex_review_log" "$dir"/recorded/survey_*.log 80 >"$dir/out" || { echo "ex_review_log failed"; exit 1; }
grep -qE '^Depth 16\.[0-9] to 16\.[0-9] m$' "$dir/out"
grep -qE '^Played 5\.0 s, up to record 5[0-9] of 3[0-9][0-9]$' "$dir/out"
status=0
"$bin/ex_review_log" "$dir/none.log" >/dev/null 2>&1 || status=$?
[ "$status" -eq 2 ] || { echo "a missing log gave exit code $status"; exit 1; }
status=0
"$bin/ex_record_survey" /proc/none 5 2>"$dir/errors" >/dev/null || status=$?
[ "$status" -eq 2 ] && [ -s "$dir/errors" ] || { echo "a folder that cannot be made gave exit code $status"; exit 1; }
# Sentences are recorded from each source; each log begins with the plan.
fix() { printf '$GPGGA,1200%02d.00,4828.800,N,06830.900,W,1,08,1.0,0.0,M,0.0,M,,' "$1"; }
sentence() {
    local body sum=0 i
    body=$(fix "$1")
    for ((i = 1; i < ${#body}; ++i)); do sum=$((sum ^ $(printf '%d' "'${body:i:1}"))); done
    printf '%s*%02X\r\n' "$body" "$sum"
}
for second in 0 1 2 3 4; do sentence "$second"; done >"$dir/boat.nmea"
mkdir "$dir/nmea"
"$bin/ex_record_nmea" "$dir/nmea" "file:$dir/boat.nmea" >"$dir/out" 2>"$dir/errors" || { cat "$dir/errors"; exit 1; }
grep -qE 'nmea_[0-9]{8}_[0-9]{6}\.log: 5 lines, 5 positions, 11 items$' "$dir/out" || { cat "$dir/out"; exit 1; }
LC_ALL=C grep -qaP 'W\x00a\x00y\x00p\x00o\x00i\x00n\x00t\x00s|Waypoints' "$dir"/nmea/*.log || { echo "no plan in the log"; exit 1; }
mkdir "$dir/again"
"$bin/ex_record_nmea" "$dir/again" "log:$(ls "$dir"/nmea/*.log)" >"$dir/out" 2>"$dir/errors" || { cat "$dir/errors"; exit 1; }
grep -qE ': [0-9]+ lines, 5 positions, 1[0-9] items$' "$dir/out" || { cat "$dir/out"; exit 1; }
# A server, found by the port that it tells; a port that is not there is waited for; one that no port has is refused.
mkdir "$dir/tcp" "$dir/udp" "$dir/serial"
python3 - "$dir/boat.nmea" "$dir/port" <<'END' &
import os, socket, sys
server = socket.create_server(("127.0.0.1", 0))
open(sys.argv[2] + ".part", "w").write(str(server.getsockname()[1]))
os.rename(sys.argv[2] + ".part", sys.argv[2])
server.settimeout(30)
client, _ = server.accept()
client.sendall(open(sys.argv[1], "rb").read())
client.settimeout(30)
client.recv(1)
END
server=$!
for ((i = 0; i < 300; ++i)); do [ -e "$dir/port" ] && break; sleep 0.1; done
"$bin/ex_record_nmea" "$dir/tcp" "tcp:127.0.0.1:$(cat "$dir/port")" 3 >"$dir/out" 2>"$dir/errors" || { cat "$dir/errors"; exit 1; }
wait "$server"
grep -qE ': 5 lines, 5 positions, 11 items$' "$dir/out" || { cat "$dir/out"; exit 1; }
"$bin/ex_record_nmea" "$dir/serial" serial:/dev/no-such-port:4800 1.5 >"$dir/out" 2>"$dir/errors" || { cat "$dir/errors"; exit 1; }
grep -q 'No such file' "$dir/out" || { echo "the missing port is not told"; cat "$dir/out"; exit 1; }
status=0
"$bin/ex_record_nmea" "$dir/serial" serial:/dev/no-such-port:4801 1 >/dev/null 2>"$dir/errors" || status=$?
[ "$status" -eq 2 ] && [ -s "$dir/errors" ] || { echo "a speed that no port has gave exit code $status"; exit 1; }
"$bin/ex_record_nmea" "$dir/udp" udp:0 1 >/dev/null 2>"$dir/errors" && { echo "port 0 is no port"; exit 1; }
grep -q '^Usage: ' "$dir/errors"
# A plan left unsaved is taken up from its draft, which is gone once it is saved.
"$bin/ex_plan_draft" "$dir/draft.json" >"$dir/out"
grep -qx 'Not saved, the draft remains' "$dir/out"
"$bin/ex_plan_draft" "$dir/draft.json" "$dir/plan.gpx" >"$dir/out"
grep -qx 'Took up the draft of 3 waypoints' "$dir/out"
grep -qx 'Undo: Reverse route' "$dir/out"
grep -qx '222 m in 111 s' "$dir/out"
[ ! -e "$dir/draft.json" ] && [ -s "$dir/plan.gpx" ] || { echo "the draft outlived its plan"; exit 1; }
# The widget gallery tells its options without a display; its pictures are tested elsewhere.
env -u DISPLAY QT_QPA_PLATFORM=offscreen "$bin/widget_gallery" --help >"$dir/out"
grep -q -- '--screenshots <DIR>' "$dir/out"
status=0
env -u DISPLAY "$bin/widget_gallery" --screenshots "$dir/none" 2>"$dir/out" || status=$?
[ "$status" -eq 3 ] || { echo "a folder that is not there gave exit code $status"; exit 1; }
grep -qx "Cannot write $dir/none/gallery-minus2-metric.png" "$dir/out"
