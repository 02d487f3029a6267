#!/usr/bin/env bash
# Builds Tessivo and starts the editor.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build --target tessivo
exec build/tessivo "$@"
