#!/usr/bin/env bash
# qel-edit in a real X server: F5 runs a script that never ends, Esc stops
# it, and Ctrl+Q then quits at once. A window held hostage by the script, or
# a script still running, would leave the process alive (Ctrl+Q asks first
# while a script runs). Usage: xvfb_stop_test.sh QEL_EDIT
set -euo pipefail
qel_edit=$1
work=$(mktemp -d)
display=":$((90 + RANDOM % 500))"
cleanup() {
  [ -n "${editor:-}" ] && kill "$editor" 2> /dev/null || true
  [ -n "${server:-}" ] && kill "$server" 2> /dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

printf 'VAR i : INTEGER;\nBEGIN\n  i := 0;\n  LOOP\n    i := i + 1\n  END\nEND.\n' > "$work/endlos.qel"
Xvfb "$display" -screen 0 1024x768x24 -nolisten tcp > /dev/null 2>&1 &
server=$!
export DISPLAY=$display
for _ in $(seq 50); do xdotool getmouselocation > /dev/null 2>&1 && break; sleep 0.1; done

# A home of its own, so that settings and recovery files stay in the test.
HOME=$work QT_QPA_PLATFORM=xcb "$qel_edit" "$work/endlos.qel" > "$work/out.txt" 2>&1 &
editor=$!
window=$(timeout 20 xdotool search --sync --onlyvisible --name 'endlos.qel' | head -1)
xdotool windowfocus --sync "$window"

alive_after() {  # whether the editor still runs after $1 seconds
  sleep "$1"
  kill -0 "$editor" 2> /dev/null
}

xdotool key F5
alive_after 1 || { echo "qel-edit ended during the run"; exit 1; }
xdotool key Escape
sleep 0.5
xdotool key ctrl+q
for _ in $(seq 50); do
  kill -0 "$editor" 2> /dev/null || break
  sleep 0.1
done
if kill -0 "$editor" 2> /dev/null; then
  echo "qel-edit did not quit after Esc and Ctrl+Q: the script still runs or the window does not answer"
  exit 1
fi
wait "$editor" && status=0 || status=$?
editor=""
[ "$status" = 0 ] || { echo "qel-edit exited with $status"; cat "$work/out.txt"; exit 1; }
echo "stopped with Esc and quit in a real X window"
