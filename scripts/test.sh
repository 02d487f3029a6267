#!/usr/bin/env bash
# Builds Tessivo and runs every test: the plain suite (unit, Qt offscreen, end-to-end over a JACK
# server, faults, the package), the suite again under sanitizers, and each fuzz target briefly.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

echo "== The plain suite"
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build
ctest --test-dir build --output-on-failure --timeout 300

scripts/test-sanitizers.sh

echo "== Fuzz targets, briefly"
scripts/fuzz-brief.sh
