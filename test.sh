#!/usr/bin/env bash
# All tests, on request under the sanitizers too.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/scripts/common.sh"

usage() {
    cat <<'EOT'
Usage: ./test.sh [--asan] [--tsan] [--all] [-- CTEST-OPTION...]

Installs what is missing (Debian packages, as root or through sudo), builds everything and runs the tests.

  (no option)   every test in the ordinary build
  --asan        every test under the address and undefined-behaviour sanitizers
  --tsan        the tests with threads under the thread sanitizer
  --all         all three, one after the other
  -- OPTION...  goes to ctest, for instance: ./test.sh -- -R tst_ZrPlayer
  --help        this text
EOT
}

presets=()
while [ $# -gt 0 ]; do
    case $1 in
        --asan) presets+=(asan) ;;
        --tsan) presets+=(tsan) ;;
        --all) presets=(tsan asan dev) ;;
        --help | -h)
            usage
            exit 0
            ;;
        --)
            shift
            break
            ;;
        *)
            usage >&2
            exit 1
            ;;
    esac
    shift
done
[ ${#presets[@]} -gt 0 ] || presets=(dev)

zr_install "${zr_build_packages[@]}" "${zr_test_packages[@]}"

zr_ctest() {
    local preset=$1
    shift
    # Many tests wait rather than compute: for a recording to end, for a window to be shown.
    ctest --preset "$preset" -j "$(($(nproc) + 1))" "$@"
}

cd "$zr_root"
status=0
for preset in "${presets[@]}"; do
    if [ "$preset" = tsan ]; then
        zr_build tsan thread_tests
    else
        zr_build "$preset"
    fi
    zr_say "== Tests, $preset build"
    zr_ctest "$preset" "$@" || status=1
done
exit $status
