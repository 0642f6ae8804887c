#!/usr/bin/env bash
# Holds what the build cannot: Qt stays inside the window framework and the settings store, standard containers
# stay out of the system's own code, no source file has more than 800 lines and no function more than six parameters, a
# layer that includes from above does not build, and the README of each layer's folder tells what it links:
# scripts/layercheck.sh BUILD, a folder that is configured.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

fail() {
    printf '%s\n' "$1" >&2
    exit 1
}

[ -d "$1/layers" ] || fail "The build folder $1 is not configured"

qt=$(grep -rlE '#include <Q[A-Za-z/]+>' library particles |
    grep -vE '^library/wimp/|^particles/cindermill/main/settingsstore\.cpp$' || true)
[ -z "$qt" ] || fail "Qt is included outside the window framework: $qt"

standard=$(grep -rlE '#include <(vector|string|map|set|list|array|deque|unordered_map|unordered_set|memory|functional|iostream|sstream|fstream)>' library particles || true)
[ -z "$standard" ] || fail "Standard containers in the system's own code: $standard"

# A file that holds more than one theme is found by nobody.
long=$(find library particles tests tools bench -name '*.h' -o -name '*.cpp' | xargs wc -l | awk '$1 > 800 && $2 != "total"')
[ -z "$long" ] || fail "Files of more than 800 lines: $long"

scripts/parameters.sh

# The lowest layer tries to look up.
compile=(g++ -std=c++20 -fsyntax-only -I "$1/layers/library-containers" -x c++ -)
if "${compile[@]}" <<<'#include "particles/effectgraph/schedule/effectschedule.h"' 2>/dev/null; then
    fail "The lowest layer can include the schedule"
fi
"${compile[@]}" <<<'#include "library/containers/string.h"' ||
    fail "The lowest layer cannot include its own headers"

# The READMEs tell what the build does.
for record in "$1"/layers/*.links; do
    read -r folder links <"$record"
    [ -f "$folder/README.md" ] || fail "$folder has no README"
    told=$(sed -n '/^Links: /,/^$/p' "$folder/README.md" | tr -d '`,.' | xargs | sed 's/^Links: *//')
    [ "${told/#nothing/}" = "$links" ] || fail "$folder links '$links', and its README tells '$told'"
done
