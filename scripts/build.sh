#!/usr/bin/env bash
# Configures a preset and builds it: scripts/build.sh PRESET [TARGET...]
set -euo pipefail

preset=$1
shift
launcher=()
if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
cmake --preset "$preset" "${launcher[@]}" >/dev/null
if [ $# -gt 0 ]; then
    cmake --build "build/$preset" --target "$@"
else
    cmake --build "build/$preset"
fi
