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
