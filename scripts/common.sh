# Shared by run.sh and test.sh: installing what is missing, configuring and building. Sourced, not run.

zr_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

zr_say() { printf '%s\n' "$*"; }

zr_fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

zr_build_packages=(g++ cmake ninja-build ccache pkg-config python3 qtbase5-dev qtpositioning5-dev libfmt-dev libspdlog-dev libcli11-dev zlib1g-dev)
zr_test_packages=(libbenchmark-dev libtinyobjloader-dev libgeographiclib-dev libproj-dev xvfb xauth openbox libgl1-mesa-dri gpsbabel gdal-bin fonts-liberation librsvg2-bin)

# zr_install PACKAGE...: installs what is missing; says nothing when all is there.
zr_install() {
    local package missing=()
    command -v dpkg-query >/dev/null || zr_fail "this script installs packages with apt; on other systems install: $*"
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || zr_fail "missing packages: ${missing[*]} (neither root nor sudo to install them)"
        as_root=(sudo)
    fi
    zr_say "Installing: ${missing[*]}"
    local log
    log=$(mktemp)
    if ! { "${as_root[@]}" apt-get update -q && "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -q --no-install-recommends "${missing[@]}"; } >"$log" 2>&1 </dev/null; then
        tail -n 20 "$log" >&2
        rm -f "$log"
        zr_fail "installing failed: ${missing[*]}"
    fi
    rm -f "$log"
}

# zr_build PRESET [TARGET...]: configures once and builds. A terminal sees one moving line, and errors as they come. A
# file has a line per tenth; the rest goes to build/PRESET.log, whose end is shown when the build fails.
zr_build() {
    local preset=$1 log where='' targets=()
    shift
    [ $# -gt 0 ] && targets=(--target "$@")
    log=$zr_root/build/$preset.log
    mkdir -p "$zr_root/build"
    # Without a home the compiler cache has no place of its own.
    [ -n "${HOME:-}" ] || export CCACHE_DIR=$zr_root/build/ccache
    if ! (cd "$zr_root" && cmake --preset "$preset") >"$log" 2>&1; then
        tail -n 30 "$log" >&2
        zr_fail "configuring failed, see $log"
    fi
    local status=0
    if [ -t 1 ]; then
        NINJA_STATUS="Building $preset [%f/%t] " cmake --build "$zr_root/build/$preset" "${targets[@]}" || status=$?
    else
        NINJA_STATUS='[%f/%t] ' cmake --build "$zr_root/build/$preset" "${targets[@]}" 2>&1 | tee -a "$log" \
            | awk -v preset="$preset" '
                match($0, /^\[[0-9]+\/[0-9]+\]/) {
                    split(substr($0, 2, RLENGTH - 2), part, "/")
                    tenth = int(part[1] * 10 / part[2])
                    if (tenth > last) {
                        last = tenth
                        printf "Building %s: %d of %d\n", preset, part[1], part[2]
                        fflush()
                    }
                }' || status=${PIPESTATUS[0]}
        where=", see $log"
        [ "$status" -eq 0 ] || grep -v '^\[' "$log" | tail -n 60 >&2 || true
    fi
    [ "$status" -eq 0 ] || zr_fail "building failed$where"
}

# zr_keep_copy LOG COPY: COPY holds what LOG holds. What lies beside LOG (index, events) comes along with the first copy
# only: what lies beside a copy a person may have added to.
zr_keep_copy() {
    local log=$1 copy=$2 file
    mkdir -p "$(dirname "$copy")"
    if [ ! -e "$copy" ]; then
        for file in "$log".*; do
            [ ! -f "$file" ] || [ -e "$copy${file#"$log"}" ] || cp "$file" "$copy${file#"$log"}"
        done
    fi
    cmp -s "$log" "$copy" || cp "$log" "$copy"
}

# zr_without_display COMMAND...: runs it on a virtual display, with OpenGL computed by the processor. Whatever ends this
# script ends both.
zr_without_display() {
    local folder display status=0
    folder=$(mktemp -d)
    # The server tells the number it has taken.
    Xvfb -displayfd 3 -screen 0 1920x1200x24 -nolisten tcp 3>"$folder/display" >"$folder/log" 2>&1 &
    zr_server=$!
    zr_command=
    trap 'zr_end_display; trap - EXIT INT; kill -INT $$' INT
    trap 'zr_end_display; trap - EXIT TERM; kill -TERM $$' TERM
    trap zr_end_display EXIT
    until [ -s "$folder/display" ]; do
        if ! kill -0 "$zr_server" 2>/dev/null; then
            cat "$folder/log" >&2
            rm -rf "$folder"
            zr_fail "the virtual display does not start"
        fi
        sleep 0.05
    done
    read -r display <"$folder/display"
    rm -rf "$folder"
    DISPLAY=:$display QT_QPA_PLATFORM=xcb LIBGL_ALWAYS_SOFTWARE=1 "$@" &
    zr_command=$!
    wait "$zr_command" || status=$?
    zr_command=
    zr_end_display
    trap - EXIT INT TERM
    return "$status"
}

zr_end_display() {
    local process
    for process in $zr_command $zr_server; do
        kill "$process" 2>/dev/null || true
        wait "$process" 2>/dev/null || true
    done
    zr_command=
    zr_server=
}
