#!/usr/bin/env bash
# Schedules, runs for 200 frames and exports random graphs, and takes as many random documents through node type
# libraries that change, under the address and undefined-behaviour sanitizers:
# scripts/soak.sh [GRAPHS [FIRST_SEED]]
# CINDERMILL_SOAK_PRESET names another build than "sanitize".
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

graphs=${1:-2000}
first=${2:-1}
preset=${CINDERMILL_SOAK_PRESET:-sanitize}
scripts/build.sh "$preset" test-particles-cindermill-main
tests=RandomGraphs.ScheduledRunForTwoHundredFramesAndExported:ChangedLibrary.DocumentsGoThroughIt

logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT
jobs=$(nproc)
[ "$jobs" -le "$graphs" ] || jobs=$graphs
pids=()
for ((job = 0; job < jobs; ++job)); do
    # The seeds in a row, shared out.
    begin=$((graphs * job / jobs))
    end=$((graphs * (job + 1) / jobs))
    CINDERMILL_RANDOM_GRAPHS=$((end - begin)) CINDERMILL_RANDOM_SEED=$((first + begin)) nice \
        "build/$preset/tests/test-particles-cindermill-main" --gtest_filter="$tests" >"$logs/$job.log" 2>&1 &
    pids+=($!)
done

# How far it is, every now and then.
pause=15
next=$((SECONDS + pause))
while [ -n "$(jobs -rp)" ]; do
    sleep 1
    [ $SECONDS -ge $next ] || continue
    next=$((SECONDS + pause))
    echo "$(cat "$logs"/*.log | grep -c '^seed ' || true) of $graphs graphs begun"
done

fault=0
for job in "${!pids[@]}"; do
    if ! wait "${pids[$job]}"; then
        fault=1
        echo "The soak found a fault:" >&2
        grep -v '^seed [0-9]*$' "$logs/$job.log" >&2
        echo "The last graph was of $(grep '^seed [0-9]*$' "$logs/$job.log" | tail -n 1)" >&2
    fi
done
# What the graphs came to, over all processes.
sed -n 's/^ *\([0-9]\+\) \(.*\) (first of seed \([0-9]\+\))$/\1\t\3\t\2/p' "$logs"/*.log |
    awk -F '\t' '{ n[$3] += $1; if (!($3 in f) || $2 < f[$3]) f[$3] = $2 }
        END { for (w in n) printf "%8d  %s (first of seed %d)\n", n[w], w, f[w] }' | sort -k1,1nr -k2
[ $fault -eq 0 ] && echo "$graphs random graphs and changed libraries, seeds $first to $((first + graphs - 1)): no fault"
exit $fault
