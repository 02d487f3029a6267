#!/usr/bin/env bash
# Runs a test program against a JACK server of its own (dummy backend, no sound card),
# started here under a private server name and stopped afterwards.
set -euo pipefail
export JACK_NO_START_SERVER=1
export JACK_NO_AUDIO_RESERVATION=1
log="${TMPDIR:-/tmp}/jackd-$$.log"
jackd_pid=""
trap '[ -n "$jackd_pid" ] && { kill $jackd_pid 2>/dev/null || true; wait $jackd_pid 2>/dev/null || true; }; rm -f "$log"' EXIT

# Starts a server called $1 and waits until it runs (0) or has given up (1).
start_server() {
  export JACK_DEFAULT_SERVER="$1"
  # A server of that name run by someone else (another test run) is theirs, never ours.
  if [ "$(jack_wait -c 2>/dev/null)" = running ]; then return 1; fi
  # A generous client timeout: on a busy machine a client that misses a cycle must not be
  # thrown out of the graph in the middle of a test.
  # TESSIVO_JACK_PERIOD gives a slowed build (ThreadSanitizer) longer cycles to finish its work in.
  jackd -n "$JACK_DEFAULT_SERVER" -r -t 10000 -d dummy -r 48000 -p "${TESSIVO_JACK_PERIOD:-512}" >"$log" 2>&1 &
  jackd_pid=$!
  for _ in $(seq 100); do
    if ! kill -0 "$jackd_pid" 2>/dev/null; then
      wait "$jackd_pid" 2>/dev/null || true
      jackd_pid=""
      return 1
    fi
    if [ "$(jack_wait -c 2>/dev/null)" = running ] && kill -0 "$jackd_pid" 2>/dev/null &&
       ! grep -q "already active" "$log"; then
      return 0
    fi
    sleep 0.1
  done
  return 1
}

# JACK keeps a machine-wide table of eight servers, and frees the entry of a server that died
# without stopping only when a server of the same name starts again. So the names come from a
# small set, the first free one taken: a run that was killed leaves nothing that piles up.
# Starts a server of its own and exports its pid; 1 when none would start.
start_own_server() {
  local started=""
  for attempt in 1 2; do
    for n in 1 2 3 4; do
      if start_server "tessivo-test-$n"; then started=yes; break 2; fi
    done
    # A table filled by servers of other names that died long ago: with no JACK server running
    # on the machine at all, it holds nothing of worth and is cleared once.
    if [ "$attempt" = 1 ] && grep -q "Too many servers" "$log" && ! pgrep -x jackd >/dev/null &&
       ! pgrep -x jackdbus >/dev/null; then
      echo "clearing a stale JACK server table" >&2
      rm -rf /dev/shm/jack-shm-registry /dev/shm/jack-[0-9]*-[0-9]* /dev/shm/jack_db-[0-9]* 2>/dev/null || true
    else
      break
    fi
  done
  if [ -z "$started" ]; then
    echo "JACK server did not start:" >&2
    cat "$log" >&2
    return 1
  fi
  export TESSIVO_JACKD_PID=$jackd_pid
}

# A cycle the server itself ran late in (an xrun: a client not finished in time on a busy
# machine) drops that cycle's MIDI, which no program can help. A failed run during which the
# server reported one runs again on a fresh server, three times at most; any other failure stands.
status=0
for run in 1 2 3; do
  start_own_server || exit 1
  status=0
  "$@" || status=$?
  [ $status -eq 0 ] && break
  echo "--- JACK server log ($JACK_DEFAULT_SERVER) ---" >&2
  cat "$log" >&2
  grep -q "XRun" "$log" || break
  [ $run -lt 3 ] && echo "=== the JACK server ran late during the run: running it again on a fresh server" >&2
  if [ -n "$jackd_pid" ]; then
    kill "$jackd_pid" 2>/dev/null || true
    wait "$jackd_pid" 2>/dev/null || true
    jackd_pid=""
  fi
done
exit $status
