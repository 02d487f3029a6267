#!/usr/bin/env bash
# Times the start of the editor on a display of its own (Xvfb), beside its twin that pauses
# 50 ms after each message it sends:
#   bash bench/start_bench.sh [BUILD_DIR] [RUNS]      (build/ and 10 runs unless given)
# It builds the editor, the twin and the timer in BUILD_DIR first.
set -euo pipefail
build=${1:-build}
runs=${2:-10}
cmake --build "$build" --target tessivo tessivo-paced start_bench >/dev/null

# Xvfb picks a free display and writes its number to the descriptor given.
exec {fd}<> <(:)
Xvfb -displayfd "$fd" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
trap 'kill "$xvfb" 2>/dev/null; wait "$xvfb" 2>/dev/null || true' EXIT
read -r -t 10 -u "$fd" display || { echo "Xvfb did not start" >&2; exit 1; }
export DISPLAY=":$display"
"$build/bench/start_bench" "$runs" "$build/tessivo" "$build/bench/tessivo-paced"
