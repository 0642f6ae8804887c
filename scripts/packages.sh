#!/usr/bin/env bash
# Installs the packages that are missing: `scripts/packages.sh` what the build needs, with `tests` also what the
# tests need. Where it cannot, one line names them.
set -euo pipefail

packages=(g++ cmake ninja-build pkg-config libsquish-dev qt6-base-dev libqt6opengl6-dev libgl-dev libegl-dev libglew-dev
    libfreetype-dev libfontconfig-dev libxcb1-dev libtomlplusplus-dev fonts-dejavu-core fonts-liberation libgl1-mesa-dri)
if [ "${1:-}" = tests ]; then
    packages+=(libgtest-dev libbenchmark-dev clang-format clang libclang-rt-dev lld xvfb xauth xdotool openbox
        imagemagick x11-utils dpkg-dev desktop-file-utils appstream shared-mime-info libglib2.0-bin
        groff-base dbus-daemon gdb libxml2-utils make git)
fi

fail() {
    printf '%s\n' "$1" >&2
    exit 1
}

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    echo "This is no Debian system: what it calls these packages has to be there: ${packages[*]}"
    exit 0
fi

missing=()
for package in "${packages[@]}"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=(env DEBIAN_FRONTEND=noninteractive)
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null ||
        fail "These packages are missing, and without sudo only root can install them: ${missing[*]}"
    as_root=(sudo "${as_root[@]}")
fi
echo "Installing: ${missing[*]}"
# Without new lists the old ones may still do.
"${as_root[@]}" apt-get -q update || true
"${as_root[@]}" apt-get -q install -y --no-install-recommends -o DPkg::Lock::Timeout=300 "${missing[@]}" ||
    fail "These packages could not be installed (see above; is the network there?): ${missing[*]}"
