#!/bin/sh
# Installs what is missing, builds everything and runs all tests.
set -eu
cd "$(dirname "$0")"
scripts/install-dependencies.sh
cmake --preset dev
cmake --build --preset dev
ctest --preset dev --parallel "$(nproc)"
