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

# build PRESET [TARGET...]: configures, and builds what has changed.
build() {
    local preset=$1
    shift
    say "building build/$preset (takes minutes the first time)"
    quietly cmake --preset "$preset" ${VELMO_CMAKE_OPTIONS:-}
    quietly cmake --build --preset "$preset" ${*:+--target "$@"}
}

# show_help SCRIPT: shows the comment that the script begins with.
show_help() {
    sed -n '2,/^[^#]/{s/^# \?//p}' "$1"
}
