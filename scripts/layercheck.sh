#!/usr/bin/env bash
# Holds what the build cannot: Qt stays inside the window framework and the settings store, standard containers
# stay out of the system's own code, and a layer that includes from above does not build.
set -euo pipefail

fail() {
    printf '%s\n' "$1" >&2
    exit 1
}

qt=$(git grep -lE '#include <Q[A-Za-z/]+>' -- library particles |
    grep -vE '^library/wimp/|^particles/cindermill/main/settingsstore\.cpp$' || true)
[ -z "$qt" ] || fail "Qt is included outside the window framework: $qt"

standard=$(git grep -lE '#include <(vector|string|map|set|list|array|deque|unordered_map|unordered_set|memory|functional|iostream|sstream|fstream)>' -- library particles || true)
[ -z "$standard" ] || fail "Standard containers in the system's own code: $standard"

# The lowest layer tries to look up.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --preset release -B "$work/build" >/dev/null
echo '#include "particles/effectgraph/schedule.h"' >"$work/upward.cpp"
if g++ -std=c++20 -fsyntax-only -I "$work/build/layers/library-containers" "$work/upward.cpp" 2>/dev/null; then
    fail "The lowest layer can include the schedule"
fi
echo '#include "library/containers/string.h"' >"$work/own.cpp"
g++ -std=c++20 -fsyntax-only -I "$work/build/layers/library-containers" "$work/own.cpp" ||
    fail "The lowest layer cannot include its own headers"
