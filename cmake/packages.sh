#!/usr/bin/env bash
# Installs the packages that are missing: `cmake/packages.sh` what the build needs, with `tests` also what the
# tests need.
set -euo pipefail

packages=(g++ cmake ninja-build pkg-config libsquish-dev qt6-base-dev libqt6opengl6-dev libgl-dev libegl-dev libglew-dev
    libfreetype-dev libfontconfig-dev fonts-liberation libgl1-mesa-dri)
if [ "${1:-}" = tests ]; then
    packages+=(libgtest-dev libbenchmark-dev clang-format clang libclang-rt-14-dev xvfb xauth xdotool openbox
        imagemagick x11-utils libxcb1-dev)
fi

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
if [ "$(id -u)" -eq 0 ]; then
    as_root=()
elif command -v sudo >/dev/null; then
    as_root=(sudo)
else
    echo "These packages are missing and only root can install them: ${missing[*]}" >&2
    exit 1
fi
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
