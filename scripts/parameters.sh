#!/usr/bin/env bash
# Holds every function to six parameters: what takes more wants a structure with names.
# scripts/parameters.sh [FILE...], without files all sources.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

files=("$@")
if [ ${#files[@]} -eq 0 ]; then
    mapfile -t files < <(find library particles tests tools bench -name '*.h' -o -name '*.cpp' | sort)
fi

# What no bracket or comma may be counted in goes first: texts, comments, directives. One line a file.
plain() {
    awk '
        FNR == 1 && NR > 1 { printf "\n" }
        FNR == 1 { printf "%s\t", FILENAME; raw = 0; comment = 0; directive = 0 }
        {
            line = $0
            if (raw) { if (!sub(/^.*\)[A-Za-z]*"/, "\"\"", line)) next; raw = 0 }
            if (comment) { if (!sub(/^.*\*\//, "", line)) next; comment = 0 }
            if (directive || line ~ /^[ \t]*#/) { directive = line ~ /\\$/; next }
            gsub(/R"[A-Za-z]*\(([^)]|\)[^"A-Za-z])*\)[A-Za-z]*"/, "\"\"", line)
            if (line ~ /R"[A-Za-z]*\(/) { sub(/R"[A-Za-z]*\(.*$/, "", line); raw = 1 }
            gsub(/\\\\/, "", line)
            gsub(/\\["\047]/, "", line)
            gsub(/\047[^\047]\047/, "0", line)
            gsub(/"[^"]*"/, "0", line)
            sub(/\/\/.*$/, "", line)
            gsub(/\/\*([^*]|\*[^\/])*\*\//, "", line)
            if (line ~ /\/\*/) { sub(/\/\*.*$/, "", line); comment = 1 }
            gsub(/\t/, " ", line)
            printf "%s ", line
        }
        END { printf "\n" }' "$@"
}

# A function has a body, or is "= 0": its parameters are the brackets in front of that.
many() {
    awk -F '\t' '
        function check(head, end,    i, c, depth, angle, from, commas, rest, before, n, group) {
            depth = 0
            n = length(head)
            for (i = 1; i <= n; ++i) {
                c = substr(head, i, 1)
                if (c == "(") {
                    if (depth++ == 0) { from = i; commas = 0; angle = 0 }
                } else if (c == ")") {
                    if (depth == 0 || --depth > 0) continue
                    rest = substr(head, i + 1)
                    before = substr(head, 1, from - 1)
                    if (!follows(rest, end) || !names(before)) continue
                    group = substr(head, from, i - from + 1)
                    if (commas >= 6) print file ": " squeeze(substr(before, length(before) - 60) group)
                    # Behind a colon stand what a constructor initialises.
                    return
                } else if (depth == 1) {
                    if (c == "<") ++angle
                    else if (c == ">" && angle > 0) --angle
                    else if (c == "," && angle == 0) ++commas
                }
            }
        }
        function follows(rest, end) {
            while (sub(/^ *(const|override|noexcept|final|mutable|&&?) */, "", rest)) continue
            if (end == "0") return rest ~ /^ *= *0 *$/
            return rest ~ /^ *$/ || rest ~ /^ *->[^()]*$/ || rest ~ /^ *:[^:]/
        }
        function names(before) {
            sub(/ +$/, "", before)
            if (before ~ /(^|[^A-Za-z0-9_])(if|for|while|switch|catch|return|constexpr|sizeof|decltype|alignas)$/) return 0
            return before ~ /[A-Za-z0-9_\]>]$/ || before ~ /operator *[^A-Za-z0-9_ ]+$/
        }
        function squeeze(text) { gsub(/  +/, " ", text); return text }
        {
            file = $1
            gsub(/operator\(\)/, "operatorcall", $2)
            count = split($2, chunks, /[;}]/)
            for (k = 1; k <= count; ++k) {
                if (chunks[k] !~ /\(/) continue
                parts = split(chunks[k], heads, "{")
                for (p = 1; p < parts; ++p) check(heads[p], "{")
                if (chunks[k] ~ /= *0 *$/) check(heads[parts], "0")
            }
        }'
}

found=$(plain "${files[@]}" | many)
[ -z "$found" ] || {
    printf 'Functions with more than six parameters:\n%s\n' "$found" >&2
    exit 1
}
