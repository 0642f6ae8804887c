#!/usr/bin/env bash
# Runs every fuzz target for some seconds from the repository's own files as seeds: scripts/fuzz.sh [SECONDS]
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

seconds=${1:-5}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Copies the seeds of a target: small ones, as many as it can use.
seed() {
    mkdir -p "$work/$1"
    shift_to=$work/$1
    shift
    for file in "$@"; do
        [ -f "$file" ] && [ "$(stat -c %s "$file")" -lt 200000 ] && cp "$file" "$shift_to/" || true
    done
}
shopt -s globstar nullglob
seed effect samples/*.effect
seed nodetype NodeTypes/**/*.xml
seed shader build/*/shaders/*.sho
seed animation samples/**/*.vori
seed dds samples/**/*.dds
seed hvt samples/**/*.hvt
seed efx build/samples/*.efx
# Choices, for which no file of the repository is an example.
mkdir -p "$work/changedlibrary"
for length in 200 500 1000 2000; do
    awk -v n="$length" 'BEGIN { srand(n); for (i = 0; i < n; ++i) printf "%c", 33 + int(rand() * 94) }' \
        >"$work/changedlibrary/$length"
done

# What a target has to tell goes to its own file, as several run at a time.
run() {
    local target=$1
    if ! "build/sanitize/fuzz/fuzz-$target" -max_total_time="$seconds" -timeout=120 -rss_limit_mb=2048 -max_len=65536 \
        -artifact_prefix="$work/$target-" -print_final_stats=1 "$work/$target" >"$work/$target.log" 2>&1; then
        # All but the lines that tell how it went until then.
        grep -vE '^#[0-9]+[[:space:]]' "$work/$target.log" >&2
        mkdir -p build/sanitize/fuzz/faults
        find "$work" -maxdepth 1 \( -name "$target-crash-*" -o -name "$target-timeout-*" -o -name "$target-oom-*" \
            -o -name "$target-leak-*" \) -exec cp {} build/sanitize/fuzz/faults/ \;
        echo "The fuzz target for $target found a fault; its input lies in build/sanitize/fuzz/faults" >&2
        return 1
    fi
    printf '%-15s %s inputs\n' "$target" "$(sed -n 's/^stat::number_of_executed_units: //p' "$work/$target.log")"
}

targets=(effect nodetype shader animation dds hvt efx changedlibrary)
pids=()
for target in "${targets[@]}"; do
    while [ "$(jobs -rp | wc -l)" -ge "$(nproc)" ]; do
        sleep 0.1
    done
    run "$target" &
    pids+=($!)
done
fault=0
for pid in "${pids[@]}"; do
    wait "$pid" || fault=1
done
[ $fault -eq 0 ] && echo "${#targets[@]} fuzz targets found nothing"
exit $fault
