#!/usr/bin/env bash
# Builds Tessivo and runs every test (unit, Qt offscreen, end-to-end over a JACK server).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build
ctest --test-dir build --output-on-failure --timeout 300
