#!/bin/sh
# Installs what is missing, builds everything (optimised) and starts the game.
set -e
cd "$(dirname "$0")/.."
scripts/setup-debian.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DASHEN_SANITIZE=OFF
cmake --build build -j2
cd build/game && exec ./ashen-oath "$@"
