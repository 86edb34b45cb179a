#!/usr/bin/env bash
# Runs the desktop program under Xvfb and drives it with keys as a user would: open a collection
# through the file dialog, go to a problem, solve it, save, look at the options, quit. Writes the
# screenshots of the README to docs/. Needs a build (BUILD, default build) with moremate-gui.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ -z "${MOREMATE_IN_XVFB:-}" ]; then
  MOREMATE_IN_XVFB=1 exec xvfb-run -a -s "-screen 0 1280x860x24" "$0" "$@"
fi
gui="$(pwd)/${BUILD:-build}/moremate-gui"
docs="$(pwd)/docs"
mkdir -p "$docs"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cp samples/sample_problems.cp "$work/problems.cp"
export MOREMATE_HOME="$work"  # options.ini and the default collection live here

"$gui" &
pid=$!
window=$(xdotool search --sync --onlyvisible --name moremate | head -1)
xdotool windowsize "$window" 1180 800 windowmove "$window" 0 0
xdotool mousemove 600 400
sleep 1
keys() { xdotool key --delay 150 "$@"; sleep 1; }
text() { xdotool type --delay 40 "$1"; sleep 0.5; }
shot() { import -window "$window" "$docs/$1"; }

# Open the copy of the sample collection through the file dialog.
keys ctrl+o
text "$work/problems.cp"
keys Return
# Problem 42, a #6, and the engine with all solutions (Shift+F5).
keys ctrl+g
keys ctrl+a
text 42
keys Return
keys shift+F5
sleep 4
shot gui-running.png
# Wait until the run has ended and written its keys into the problem, then save.
for _ in $(seq 1 120); do
  xdotool search --name 'moremate - problems.cp \*' >/dev/null 2>&1 && break
  sleep 1
done
sleep 1
shot gui-solved.png
keys ctrl+s
# The options dialog (Advanced > Options).
keys alt+d
keys o
sleep 1
import -window root -crop 1180x800+0+0 "$docs/gui-options.png"
keys Escape
# Quit (File > Exit); the collection was saved, so nothing is asked.
keys alt+f
keys x
wait "$pid"
grep -q "//!Main variant" "$work/problems.cp" && echo "screenshots: the solution was saved"
ls -l "$docs"/gui-*.png
