# Sourced by the scripts beside it.

set -euo pipefail

. "$(dirname "${BASH_SOURCE[0]}")/help.sh"

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

say() {
    printf '==> %s\n' "$*"
}

# Runs a command silently; what it printed is shown only when it fails.
quietly() {
    local output status=0
    output=$("$@" 2>&1) || status=$?
    if [ "$status" -ne 0 ]; then
        printf '%s\n' "$output" >&2
    fi
    return "$status"
}

# preset_of tao|omniorb: prints the preset that builds on that object request broker.
preset_of() {
    case "$1" in
    tao) echo tao ;;
    omniorb) echo release ;;
    *)
        echo "$0: --orb takes tao or omniorb" >&2
        exit 2
        ;;
    esac
}

# configure PRESET: ends the script with status 77 where there is no such broker.
configure() {
    local output
    if output=$(cmake --preset "$1" ${VELMO_CMAKE_OPTIONS:-} 2>&1); then
        return
    fi
    if ! grep -q 'Could NOT find TAO' <<<"$output"; then
        printf '%s\n' "$output" >&2
        exit 1
    fi
    say "there is no TAO to build on: $(sed -n \
        '/Could NOT find TAO/,/Call Stack/ { /Call Stack/d; s/Reason given by package:/-/; p }' \
        <<<"$output" | tr -s ' \n' ' ')"
    exit 77
}

# build PRESET [TARGET...]: configures, and builds what has changed.
build() {
    local preset=$1
    shift
    say "building build/$preset (takes minutes the first time)"
    configure "$preset"
    quietly cmake --build --preset "$preset" ${*:+--target "$@"}
}

# run_tests PRESET [CTEST OPTION...]: more at a time than there are processors, since most
# wait for something.
run_tests() {
    say "testing build/$1"
    ctest --preset "$1" -j $((2 * $(nproc))) "${@:2}"
}
