#!/usr/bin/env bash
# Tells which lines of the sources clang-format would lay out otherwise: scripts/format.sh; with -i it does.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

[ $# -gt 0 ] || set -- --dry-run -Werror
find bench library particles shaders tests tools \( -name '*.h' -o -name '*.cpp' \) -print0 | xargs -0 clang-format "$@"
