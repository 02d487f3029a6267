#!/usr/bin/env bash
# On the X display in DISPLAY: starts PROGRAM, waits for its preferences window, presses Enter
# (OK is the window's default button), waits for the main form and ends the program as a
# logout does. Fails when a window does not come or the program does not end cleanly.
#   start_and_ok.sh PROGRAM LOG
set -uo pipefail
program=$1
log=$2

"$program" > "$log" 2>&1 &
pid=$!
fail() {
  echo "FAIL: $*" >> "$log"
  kill "$pid" 2> /dev/null
  wait "$pid" 2> /dev/null
  exit 1
}

# The first visible window with exactly this title, within 20 seconds.
window() {
  local id
  for _ in $(seq 200); do
    kill -0 "$pid" 2> /dev/null || fail "the program ended before \"$1\" showed"
    id=$(xdotool search --onlyvisible --name "^$1\$" 2> /dev/null | head -1)
    [[ -n $id ]] && { echo "$id"; return 0; }
    sleep 0.1
  done
  return 1
}

prefs=$(window "Tessivo Startup Preferences") || fail "no \"Tessivo Startup Preferences\" window"
xdotool windowfocus --sync "$prefs" || fail "the preferences window takes no focus"
xdotool key --clearmodifiers Return
window "CS2x Tessivo" > /dev/null || fail "no main form after OK"
kill -TERM "$pid"
wait "$pid"
status=$?
[[ $status == 0 ]] || { echo "FAIL: the program ended with $status" >> "$log"; exit 1; }
