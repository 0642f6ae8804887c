#!/usr/bin/env bash
# Configures a preset and builds it: scripts/build.sh PRESET [TARGET...]
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

# What keeps compiled files knows headers that were compiled before only if told so.
export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS:-pch_defines,time_macros}

preset=$1
shift
folder=build/$preset
# Once configured, a folder knows by itself when to configure anew, but for a change of the presets.
if [ ! -f "$folder/build.ninja" ] || [ CMakePresets.json -nt "$folder/build.ninja" ]; then
    launcher=()
    if command -v ccache >/dev/null; then
        launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    cmake --preset "$preset" "${launcher[@]}"
fi
cmake --build "$folder" --target "${@:-all}"
