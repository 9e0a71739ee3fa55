#!/bin/sh
# Installs what is missing, builds everything with AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs the whole test suite.
set -e
cd "$(dirname "$0")/.."
scripts/setup-debian.sh
cmake -S . -B build-test -DCMAKE_BUILD_TYPE=RelWithDebInfo -DASHEN_SANITIZE=ON -DASHEN_BENCH=OFF
cmake --build build-test -j2
cd build-test && ctest -j2 --output-on-failure
