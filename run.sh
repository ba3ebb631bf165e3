#!/usr/bin/env bash
# The main job: builds ZrUtil, takes a real side-scan recording through it, and starts the application ZrSurvey on it.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/scripts/common.sh"

usage() {
    cat <<'EOT'
Usage: ./run.sh [--out DIR]

Installs what is missing (Debian packages, as root or through sudo), builds the libraries, the zr tool and ZrSurvey, and
runs the main job on the real side-scan line in data/sidescan-xtf, first on the command line:

  1. imports it into a data log,
  2. prints what the log holds,
  3. plays it through a ZrPlayer,
  4. writes the census of its record types as CSV,
  5. cuts its middle third into a log of its own,
  6. indexes it, marks an event, and writes its track as CSV, GPX and KML,
  7. makes one log of the glider mission in data/glider-nav (several files), indexes it and writes its track,
  8. plans a small survey over the area of the side-scan line, checks it, and writes it as GeoJSON and GPX,
  9. draws the side-scan line as a waterfall and as a mosaic with a world file, and measures where the wreck's stem is,

and then in the application: with a display it opens ZrSurvey on a copy of the side-scan line; without one ZrSurvey goes through
the main job by itself on a virtual display (plans, records, reviews, measures, exports), looks after each station
whether all is as it must be, and leaves a picture of each in DIR/tour.

Files in DIR that an earlier run wrote are replaced, events and indexes beside its logs too. The copy in DIR/review stays
with all that was added to it: events, targets, bottom line.

Options:
  --out DIR   where the results go (default: out/ beside this script)
  --help      this text
EOT
}

out=$zr_root/out
while [ $# -gt 0 ]; do
    case $1 in
        --out)
            [ $# -ge 2 ] || zr_fail "--out needs a folder"
            out=$2
            shift 2
            ;;
        --help | -h)
            usage
            exit 0
            ;;
        *)
            usage >&2
            exit 1
            ;;
    esac
done

has_display=${DISPLAY:-}
packages=("${zr_build_packages[@]}" fonts-liberation)
[ -n "$has_display" ] || packages+=(xvfb xauth libgl1-mesa-dri)
zr_install "${packages[@]}"
zr_build release

bin=$zr_root/build/release/bin
log=$out/iver2-scotsman.log
mkdir -p "$out" || zr_fail "cannot create $out"

zr_say; zr_say "== Importing the side-scan line"
"$bin/zr" log import "$zr_root/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf" "$log" --force
zr_say; zr_say "== What the log holds"
"$bin/zr" log info "$log"
zr_say; zr_say "== Playing it"
"$bin/ex_play_log" "$log"
zr_say; zr_say "== Census and middle third"
"$bin/zr" log census "$log" "$out/iver2-scotsman-census.csv" --force
"$bin/zr" log cut "$log" "$out/iver2-scotsman-middle.log" --from 33.3% --to 66.7% --force

zr_say; zr_say "== Index, events and track"
rm -f "$log".*
"$bin/zr" log index "$log"
"$bin/zr" log events "$log" --add "Line begins" --time 2013-09-10T21:13:08.130Z >/dev/null
"$bin/zr" log events "$log"
"$bin/zr" log track "$log" "$out/iver2-scotsman-track.csv" --force
"$bin/zr" log track "$log" "$out/iver2-scotsman-track.gpx" --force
"$bin/zr" log track "$log" "$out/iver2-scotsman-track.kml" --force
zr_say; zr_say "== A glider mission of several files"
glider=$out/glider-mission.log
rm -f "$glider".*
"$bin/zr" log import "$zr_root"/data/glider-nav/*.csv "$glider" --force | tail -n 1
"$bin/zr" log index "$glider"
"$bin/zr" log track "$glider" "$out/glider-track.csv" --force
"$bin/zr" log track "$glider" "$out/glider-track.geojson" --simplify 5 --force

zr_say; zr_say "== A survey over the area of the side-scan line"
survey=$out/iver2-scotsman-survey
"$bin/zr" route survey "$out/iver2-scotsman-track.gpx" "$survey.geojson" --box 25 --spacing 20 --turn-radius 8 \
    --overshoot 10 --speed 1.25 --name "Scotsman survey" --force
"$bin/zr" route check "$survey.geojson"
"$bin/zr" route convert "$survey.geojson" "$survey.gpx" --force
"$bin/zr" route info "$survey.gpx"

zr_say; zr_say "== Waterfall, mosaic and a target of the side-scan line"
"$bin/zr" sonar info "$log"
"$bin/zr" sonar image "$log" "$out/iver2-scotsman-waterfall.png" --force
"$bin/zr" sonar image "$log" "$out/iver2-scotsman-ground.png" --slant --palette gray --force
"$bin/zr" sonar mosaic "$log" "$out/iver2-scotsman-mosaic.png" --heading course --force
"$bin/zr" sonar target "$log" --line 172 --column 1310 --heading course

zr_say; zr_say "Results in $out:"
(cd "$out" && for f in *; do
    [ ! -f "$f" ] || printf '  %-30s %9d bytes\n' "$f" "$(stat -c %s "$f")"
done)

if [ -n "$has_display" ]; then
    review=$out/review/$(basename "$log")
    zr_keep_copy "$log" "$review"
    zr_say; zr_say "== ZrSurvey on the side-scan line, $review"
    exec "$bin/ZrSurvey" "$review"
fi
zr_say; zr_say "== ZrSurvey goes through the main job (no display: on a virtual one)"
status=0
zr_without_display "$bin/ZrSurvey" --tour "$out/tour" 2>"$out/tour.err" || status=$?
case $status in
    0) ;;
    130 | 143) exit "$status" ;;
    *)
        tail -n 20 "$out/tour.err" >&2
        zr_fail "the tour was not as expected; its pictures are in $out/tour"
        ;;
esac
zr_say; zr_say "Pictures of the stations: $out/tour"
zr_say "Exports of the tour:      $out/tour/exports"
