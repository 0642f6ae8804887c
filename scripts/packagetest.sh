#!/usr/bin/env bash
# Makes both packages of a build folder, installs them into an empty root and runs both programs there:
# scripts/packagetest.sh BUILD
set -euo pipefail
build=$(realpath "$1")

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root
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
    names=$(xdotool search --onlyvisible --name . getwindowname %@)
    kill "$program"
    wait "$program" || true
    [ "$names" = Cindermill ]
' - "$root/usr/bin/cindermill" || fail "The installed tool does not start as it should"

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
for page in "$root"/usr/share/man/man1/*.1; do
    warnings=$(groff -man -Tutf8 -ww -z "$page" 2>&1)
    [ -z "$warnings" ] || fail "$warnings"
done
echo "Both packages install and run."
