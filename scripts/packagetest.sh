#!/usr/bin/env bash
# Makes both packages of a build folder, installs them into an empty root and runs both programs there:
# scripts/packagetest.sh BUILD
# The root stays for further tests, as BUILD/installed.
set -euo pipefail
build=$(realpath "$1")

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$build/installed
rm -rf "$root"
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates" "$work/home"
touch "$root/var/lib/dpkg/status"

fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

(cd "$work" && cpack --config "$build/CPackConfig.cmake" -B "$work/packages") >"$work/log" 2>&1 ||
    { cat "$work/log" >&2; fail "The packages could not be made"; }
for package in cindermill cindermill-batch; do
    [ -f "$(echo "$work/packages/${package}"_*.deb)" ] || fail "There is no package $package"
done

# named PACKAGE...: what the named packages bring along, of what this machine has. PACKAGE may be a list of Depends.
named() {
    dpkg-query -W -f '${Package};${Provides};${Pre-Depends}, ${Depends}\n' | awk -F ';' -v wanted="$*" '
        function parts(text, list) {
            gsub(/\([^)]*\)|:[a-z0-9]+| /, "", text)
            return split(text, list, /[,|]/)
        }
        {
            needed[$1] = needed[$1] "," $3
            count = parts($2, list)
            for (i = 1; i <= count; ++i)
                needed[list[i]] = needed[list[i]] "," $1
        }
        END {
            count = parts(wanted, queue)
            for (i = 1; i <= count; ++i) {
                if (seen[queue[i]]++)
                    continue
                print queue[i]
                more = parts(needed[queue[i]], list)
                for (j = 1; j <= more; ++j)
                    queue[++count] = list[j]
            }
        }'
}

# brought WHO DEPENDS: the libraries on the standard input are all of packages that DEPENDS bring along.
brought() {
    named "$2" >"$work/named"
    mapfile -t loaded
    # Packages write /usr/lib or /lib, which are one. A line of owners: PACKAGE /lib/...
    dpkg -S "${loaded[@]}" "${loaded[@]/#//usr}" "${loaded[@]#/usr}" 2>"$work/log" |
        sed -E 's,(:[a-z0-9]+)?: (/usr)?, ,' >"$work/owners" || true
    for library in "${loaded[@]}"; do
        owner=$(awk -v path="${library#/usr}" '$2 == path { print $1; exit }' "$work/owners")
        [ -n "$owner" ] || fail "No package holds $library, which $1 loads"
        grep -qxF -- "$owner" "$work/named" || fail "$1 loads $library, but its package does not depend on $owner"
    done
}

libraries() {
    ldd "$@" | grep -o '=> /[^ ]*' | cut -c 4- | sort -u
}

# What a build machine needs must not bring a window toolkit along.
depends=$(dpkg-deb -f "$work/packages"/cindermill-batch_*.deb Depends)
! grep -Eq 'gui|widgets|libgl|glew|x11' <<<"$depends" || fail "cindermill-batch needs: $depends"

# The root has none of the libraries, which are this machine's.
dpkg --root="$root" --force-depends --force-not-root --force-script-chrootless --install \
    "$work/packages"/*.deb >"$work/log" 2>&1 || { cat "$work/log" >&2; fail "The packages could not be installed"; }

run() {
    (cd / && env -i PATH=/usr/bin:/bin HOME="$work/home" LANG=C.UTF-8 "$@")
}

types=$(run "$root/usr/bin/cindermill-batch" types | wc -l)
[ "$types" -eq "$(find "$root/usr/share/cindermill/NodeTypes" -name '*.xml' | wc -l)" ] ||
    fail "The installed batch program finds $types node types"
samples=$root/usr/share/cindermill/samples
run "$root/usr/bin/cindermill-batch" --resources "$samples" export "$samples/campfire.effect" "$work/campfire.efx"
[ -s "$work/campfire.efx" ] || fail "The installed batch program exports nothing"
run "$root/usr/bin/cindermill-batch" --resources "$samples" picture "$samples/campfire.effect" "$work/campfire.png"
[ "$(head -c 4 "$work/campfire.png" | tail -c 3)" = PNG ] || fail "The installed program draws no picture"

# The window program shows its window, and no message beside it that something is missing.
run timeout -k 5 120 xvfb-run -a -s "-screen 0 1280x1024x24" bash -c '
    "$1" &
    program=$!
    timeout 60 xdotool search --sync --onlyvisible --name "^Cindermill$" >/dev/null
    sleep 1
    grep -Eo "/[^ ]*/(plugins/(platforms|xcbglintegrations)|dri)/[^ ]*" "/proc/$program/maps" | sort -u >"$2"
    names=$(xdotool search --onlyvisible --name . getwindowname %@)
    kill "$program"
    wait "$program" || true
    [ "$names" = Cindermill ]
' - "$root/usr/bin/cindermill" "$work/plugins" || fail "The installed tool does not start as it should"

libraries "$root/usr/bin/cindermill-batch" | brought cindermill-batch "$depends"
depends+=", $(dpkg-deb -f "$work/packages"/cindermill_*.deb Depends)"
libraries "$root/usr/bin/cindermill" "$root/usr/libexec/cindermill/cindermill-picture" | brought cindermill "$depends"
grep -q /platforms/ "$work/plugins" || fail "The installed tool has loaded no plugin for its windows"
brought cindermill "$depends" <"$work/plugins"

grep -qx 'Exec=/usr/bin/cindermill' "$root/usr/share/dbus-1/services"/*.service || fail "The bus would not find the tool"
desktop-file-validate "$root"/usr/share/applications/*.desktop
appstreamcli validate --no-net "$root"/usr/share/metainfo/*.xml >"$work/log" || { cat "$work/log" >&2; exit 1; }
XDG_DATA_DIRS="$root/usr/share" update-mime-database "$root/usr/share/mime"
kind() {
    XDG_DATA_DIRS="$root/usr/share" gio info -a standard::content-type "$1" | sed -n 's/.*content-type: //p'
}
# expect FILE TYPE: by its name, and by its first bytes where it has none that tells.
expect() {
    [ "$(kind "$1")" = "$2" ] || fail "$1 is taken for $(kind "$1")"
    cp "$1" "$work/nameless"
    [ "${3:-}" = named ] || [ "$(kind "$work/nameless")" = "$2" ] || fail "The bytes of $1 are taken for $(kind "$work/nameless")"
}
expect "$samples/campfire.effect" application/x-cindermill-effect
expect "$work/campfire.efx" application/x-cindermill-efx
expect "$samples/animations/knot.vori" application/x-cindermill-animation
expect "$samples/textures/smoke.hvt" image/x-hvt

# Each icon is there in every size, and as large as its folder says.
icons=$root/usr/share/icons/hicolor
for icon in apps/org.cindermill.Cindermill mimetypes/application-x-cindermill-{effect,efx,animation}; do
    [ -s "$icons/scalable/$icon.svg" ] || fail "There is no scalable icon $icon"
    for size in 16 32 48 64 128 256; do
        [ -s "$icons/${size}x$size/$icon.png" ] || fail "There is no icon $icon of $size pixels"
    done
done
identify -format '%wx%h %d/\n' "$icons"/*/*/*.png >"$work/sizes"
while read -r size folder; do
    [[ $folder = */$size/* ]] || fail "An icon of $size lies in $folder"
done <"$work/sizes"

# Each package tells its rights, and its documents lead to nothing that it has not.
headings() {
    sed -n 's/^##* //p' "$1" | tr '[:upper:]' '[:lower:]' | sed 's/[^a-z0-9 _-]//g; s/ /-/g'
}
for folder in "$root"/usr/share/doc/*; do
    [ -s "$folder/copyright" ] || fail "$folder has no copyright"
    for document in "$folder"/*.md; do
        while read -r link; do
            target=$folder/${link%%#*}
            case $link in '#'*) target=$document ;; ../*) target= ;; esac
            [ -f "$target" ] || fail "$document leads to $link, which is not there"
            case $link in *'#'*) headings "$target" | grep -xF -- "${link#*#}" >"$work/log" ||
                fail "$document leads to $link, which is no heading" ;; esac
        done < <(grep -o '](\([^)]*\))' "$document" | sed 's/^](//; s/)$//' | grep -v '^https:' | sort -u)
    done
done
for program in "$root"/usr/bin/*; do
    [ -f "$root/usr/share/man/man1/${program##*/}.1" ] || fail "${program##*/} has no man page"
done
for page in "$root"/usr/share/man/man1/*.1; do
    warnings=$(groff -man -Tutf8 -ww -z "$page" 2>&1)
    [ -z "$warnings" ] || fail "$warnings"
done
echo "Both packages install and run."
