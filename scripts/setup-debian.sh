#!/bin/sh
# Installs the Debian 12 packages the build, the game and the tests need.
# Runs apt-get only when something is missing; uses sudo when not root.
set -e
PACKAGES="build-essential cmake pkg-config git
  libsdl2-dev libsdl2-ttf-dev libsdl2-mixer-dev libx11-dev libjpeg62-turbo-dev libpng-dev zlib1g-dev
  libvorbis-dev libogg-dev fonts-wqy-microhei fonts-droid-fallback
  libpugixml-dev nlohmann-json3-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libjpeg-turbo-progs imagemagick xvfb xauth x11-utils openbox tiled"
missing=""
for p in $PACKAGES; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
if [ -n "$missing" ]; then
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO=sudo
  echo "Installing:$missing"
  $SUDO apt-get update
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y --no-install-recommends $missing
fi
