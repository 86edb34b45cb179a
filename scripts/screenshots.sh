#!/usr/bin/env bash
# Runs the desktop program under Xvfb and drives it with keys as a user would: open a collection
# through the file dialog, go to a problem, solve it, save, look at the options and the heuristics
# dialog, quit. Writes the screenshots of the README to docs/. Needs a build (BUILD, default
# build) with moremate-gui.
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
# Two long mates: the #20 is solved in a second, the #24 keeps the engine busy for the picture of a
# run (it is solved in about 5 s on the project's machines: the picture is taken after 2).
cat >>"$work/problems.cp" <<'RECORD'

100 #20
{
	Description: W. Bone, English Chess Problems 1876 (key 1.Rxh7+)
	FEN: 2n4k/2KB1ppp/1p3p2/p5Q1/4p1N1/Pbpr4/1Br3PR/1n1q4 w - - 0 1
}

101 #24
{
	Description: G. Popov, SuperProblem 09/11/2016 (key 1.g7)
	FEN: 4b3/8/3p2P1/3p1p2/N1pPkp2/1pP2p2/3K1P2/8 w - - 0 1
}
RECORD
export MOREMATE_HOME="$work"  # options.ini and the default collection live here
# The online tablebase off: a machine without network would stop the run with its warning.
printf '[chess]\nLichessLevels=-1\n' >"$work/options.ini"

cd "$work"  # the start log and the scratch files go to the working folder
"$gui" &
pid=$!
window=$(xdotool search --sync --onlyvisible --name 'moremate - ' | head -1)
xdotool windowsize "$window" 1180 800 windowmove "$window" 0 0
sleep 1
# Without a window manager nothing gives a new window the keyboard: focus it by its title.
focus() {
  sleep 1
  xdotool windowfocus --sync "$(xdotool search --sync --onlyvisible --name "$1" | tail -1)"
  sleep 0.5
}
keys() { xdotool key --delay 150 "$@"; sleep 1; }
text() { xdotool type --delay 40 "$1"; sleep 0.5; }
shot() { import -window "$window" "$docs/$1"; }
focus 'moremate - '

# Open the copy of the sample collection through the file dialog.
keys ctrl+o
focus 'Open file with chess problems'
text "$work/problems.cp"
keys Return
focus 'moremate - problems.cp'
# Problem 101, the #24: solve (F5), look at the run, stop it with the start/stop tool.
keys ctrl+g
focus 'Select problem number'
keys ctrl+a
text 101
keys Return
focus 'moremate - problems.cp'
keys F5
sleep 2
shot gui-running.png
xdotool mousemove 356 38 click 1  # the start/stop tool
sleep 3
# The #20 before it (Ctrl+Shift+Left), solved to the end.
keys ctrl+shift+Left
keys F5
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
focus Options
import -window "$(xdotool search --onlyvisible --name Options | tail -1)" "$docs/gui-options.png"
keys Escape
# The heuristics dialog (Ctrl+F5) on the #20, closed without solving.
focus 'moremate - problems.cp'
keys ctrl+F5
focus 'Special heuristics'
import -window "$(xdotool search --onlyvisible --name 'Special heuristics' | tail -1)" "$docs/gui-heuristics.png"
keys Escape
# Quit (File > Exit); the collection was saved, so nothing is asked.
focus 'moremate - problems.cp'
keys alt+f
keys x
for _ in $(seq 1 20); do kill -0 "$pid" 2>/dev/null || break; sleep 0.5; done
if kill -0 "$pid" 2>/dev/null; then
  echo "screenshots: the program did not quit" >&2
  kill "$pid"
  exit 1
fi
grep -q "//!Main variant" "$work/problems.cp" && echo "screenshots: the solution was saved"
ls -l "$docs"/gui-*.png
