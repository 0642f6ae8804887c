#!/usr/bin/env bash
# Builds and runs every benchmark program, and prints one table: the shortest times, those of the baselines in the
# same run, and the ratios. What the library prints goes to the standard error. Arguments are given to each program,
# for example --benchmark_filter=Update or --benchmark_repetitions=3.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

scripts/packages.sh tests >&2
scripts/build.sh release benchmarks >&2

# One core, the first that this shell may use, so that nothing is carried from cache to cache. Only the windows'
# pictures have all cores, as the software renderer uses them.
core=$(taskset -cp $$ | sed 's/.*: *//; s/[,-].*//')
bin=build/release/bench
taskset -c "$core" $bin/enginebench "$@"
taskset -c "$core" $bin/modelbench --no-header "$@"
taskset -c "$core" $bin/growthbench --no-header "$@"
$bin/windowbench --no-header "$@"
$bin/startbench --no-header "$@"
