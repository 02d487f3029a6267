#!/usr/bin/env bash
# Runs a test program against a JACK server of its own (dummy backend, no sound card),
# started here under a private server name and stopped afterwards.
set -euo pipefail
export JACK_DEFAULT_SERVER="tessivo-test-$$"
export JACK_NO_START_SERVER=1
export JACK_NO_AUDIO_RESERVATION=1
jackd -n "$JACK_DEFAULT_SERVER" -r -d dummy -r 48000 -p 256 >"${TMPDIR:-/tmp}/jackd-$$.log" 2>&1 &
jackd_pid=$!
trap 'kill $jackd_pid 2>/dev/null; wait $jackd_pid 2>/dev/null || true' EXIT
if ! jack_wait -w -t 10 >/dev/null; then
  echo "JACK server did not start:" >&2
  cat "${TMPDIR:-/tmp}/jackd-$$.log" >&2
  exit 1
fi
"$@"
