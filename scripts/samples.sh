#!/usr/bin/env bash
# Exports every sample with the batch program and prints a table of what came of it: scripts/samples.sh PROGRAM
set -euo pipefail

batch=$(realpath "$1")
cd "$(dirname "$(readlink -f "$0")")/.."
out=build/samples
mkdir -p "$out"
failed=0
printf '%-28s %6s %7s %10s %14s\n' effect nodes groups particles 'bytes exported'
for effect in samples/*.effect; do
    name=$(basename "$effect" .effect)
    if ! "$batch" --resources samples export "$effect" "$out/$name.efx"; then
        printf '%-28s could not be exported\n' "$name"
        failed=1
        continue
    fi
    report=$("$batch" --resources samples report "$effect" | tr -d '\r')
    nodes=$(sed -n 's/^Nodes in schedule: //p' <<<"$report")
    groups=$(sed -n 's/^Groups in schedule: //p' <<<"$report")
    # Three seconds are 150 frames of the default length; a particle has one row for each of its attributes.
    particles=$("$batch" --resources samples run "$effect" --frames 150 --seed 1 |
        awk -F, '$1 == 150 && $4 >= 0 && !seen[$3 "," $4]++ { count++ } END { print count + 0 }')
    printf '%-28s %6s %7s %10s %14s\n' "$name" "$nodes" "$groups" "$particles" "$(stat -c %s "$out/$name.efx")"
done
exit $failed
