#!/usr/bin/env bash
# Runs a test program against a JACK server of its own (dummy backend, no sound card),
# started here under a private server name and stopped afterwards.
set -euo pipefail
export JACK_DEFAULT_SERVER="tessivo-test-$$"
export JACK_NO_START_SERVER=1
export JACK_NO_AUDIO_RESERVATION=1
# A generous client timeout: on a busy machine a client that misses a cycle must not be thrown
# out of the graph in the middle of a test.
log="${TMPDIR:-/tmp}/jackd-$$.log"
jackd -n "$JACK_DEFAULT_SERVER" -r -t 10000 -d dummy -r 48000 -p 512 >"$log" 2>&1 &
jackd_pid=$!
export TESSIVO_JACKD_PID=$jackd_pid
trap 'kill $jackd_pid 2>/dev/null || true; wait $jackd_pid 2>/dev/null || true' EXIT
if ! jack_wait -w -t 10 >/dev/null; then
  echo "JACK server did not start:" >&2
  cat "$log" >&2
  exit 1
fi
status=0
"$@" || status=$?
if [ $status -ne 0 ]; then
  echo "--- JACK server log ---" >&2
  cat "$log" >&2
fi
rm -f "$log"
exit $status
