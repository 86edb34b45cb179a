#!/usr/bin/env bash
# Bad input and hostile conditions end with a message and a non-zero status, and lose nothing:
# folders and endless files where files are expected, wrong or damaged register files, a full
# disk, an unwritable folder, and a kill (SIGKILL) in the middle of a save.
set -u
mm=$(realpath "${1:?path to moremate}")
data=$(cd "$(dirname "$0")/../data" && pwd)
samples=$(cd "$(dirname "$0")/../../samples" && pwd)
work=$(mktemp -d)
cd "$work" || exit 1
mkdir home && printf '[chess]\nTablebaseURL=http://127.0.0.1:1/\n' >home/options.ini
export MOREMATE_HOME=$work/home
err=$work/stderr
passed=0 failed=0

tally() {  # tally NAME: counts the status of the command before
    if [ $? -eq 0 ]; then passed=$((passed + 1)); else failed=$((failed + 1)); echo "FAIL: $1"; fi
}
check() {  # check NAME EXPECTED_STATUS PATTERN -- ARGS...: the status, and the pattern in stdout or stderr
    local name=$1 status=$2 pattern=$3; shift 4
    local out rc
    out=$("$mm" "$@" 2>"$err"); rc=$?
    [ "$rc" -eq "$status" ] && printf '%s\n' "$out" | cat - "$err" | grep -Eq -- "$pattern"
    tally "$name (status $rc, expected $status)" || { echo "$out" | head -5; head -5 "$err"; }
}
same() {  # same NAME FILE COPY: the file is byte for byte its earlier copy
    cmp -s "$2" "$3"; tally "$1"
}
absent() {  # absent NAME FILE...: none of the files exists
    local name=$1; shift
    ! ls "$@" >/dev/null 2>&1; tally "$name"
}
# kill_at MOMENT ARGS...: runs the program until it pauses at MOMENT of a save, then kills it
kill_at() {
    local moment=$1; shift
    MOREMATE_PAUSE_AT=$moment "$mm" "$@" >/dev/null 2>"$err" &
    local pid=$! waited=0
    until grep -q "^Paused at $moment" "$err" || [ $waited -ge 600 ]; do sleep 0.1; waited=$((waited + 1)); done
    grep -q "^Paused at $moment" "$err"; tally "pauses at $moment"
    kill -9 $pid; wait $pid 2>/dev/null
}

cp "$data/small.cp" small.cp
solve=(solve small.cp --problem 2 --threads 1)

# Folders, endless files and empty names.
mkdir folder && printf 'OPEN folder\n' >open.vrs
check "script opens a folder" 2 'Script line 1: Error opening file: .*folder \(a folder\)' -- script open.vrs
check "solve /dev/zero" 2 '^/dev/zero: Error opening file: /dev/zero \(larger than the 64 MB this program reads\)$' -- solve /dev/zero
check "save the register under a file" 2 '^Cannot create the folder .*small\.cp \(Not a directory\)$' -- "${solve[@]}" --save-register small.cp/r.tmpReg
check "save the register as a folder" 2 '^Cannot save the register to folder: it is a folder$' -- "${solve[@]}" --save-register folder
check "register save under a file, before solving" 2 '^Cannot create the folder small\.cp \(Not a directory\)$' -- register save small.cp --problem 2 --to small.cp/x.tmpReg
check "register of a device" 2 '^/dev/zero: Error reading file \(not a regular file\)$' -- register stats /dev/zero
check "save the register to no name" 2 "^The register file's name is empty$" -- "${solve[@]}" --save-register ""
mv home/options.ini options.saved && mkdir home/options.ini
check "options.ini a folder: the defaults and a message" 0 '^Error: Error opening file: .*/home/options\.ini \(a folder\)$' -- fen "4k3/8/8/8/8/8/8/4K3"
rmdir home/options.ini && mv options.saved home/options.ini
check "improper FEN names the field" 2 "^Improper FEN code: piece placement \(first field\): rank 8 has more than 8 squares$" -- fen "4k4/8/8/8/8/8/8/4K3 w - -"

# Register files: the right pair or nothing.
check "save a register pair" 0 'agrees with the answer' -- "${solve[@]}" --save-register r.tmpReg
cp r.tmpReg r.old && cp r.black.tmpReg r.black.old
check "load the pair" 0 '^File has been read: r\.tmpReg$' -- "${solve[@]}" --load-register r.tmpReg
mv r.tmpReg x && mv r.black.tmpReg r.tmpReg && mv x r.black.tmpReg
check "swapped files" 2 '^r\.tmpReg: Error - the file holds positions with Black to move, expected White to move' -- "${solve[@]}" --load-register r.tmpReg
cp r.old r.tmpReg && head -c 100 r.black.old >r.black.tmpReg
check "damaged Black file under its own name" 2 '^.*r\.black\.tmpReg: Error - the register file is cut short' -- register stats r.tmpReg
rm r.black.tmpReg
check "half a pair" 2 "r\.black\.tmpReg: Error - the Black-to-move file of this register is missing" -- register stats r.tmpReg
cp r.black.old r.black.tmpReg
python3 -c "import sys; d=bytearray(open('r.old','rb').read()); d[len(d)//2]^=4; open('r.tmpReg','wb').write(d)"
check "bit flip" 2 "^r\.tmpReg: Error - the register file is damaged \(its checksum does not match\)$" -- register stats r.tmpReg
head -c 5000 /dev/urandom >r.tmpReg
check "garbage" 2 '^r\.tmpReg: Error - not a temporary register file$' -- register stats r.tmpReg
cp r.old r.tmpReg

# A full disk keeps the old files and says why.
(ulimit -f 1; "$mm" "${solve[@]}" --save-register r.tmpReg >/dev/null 2>"$err"); rc=$?
[ $rc -eq 2 ] && grep -q 'tmpReg\.saving (File too large)$' "$err"; tally "full disk: register (status $rc)"
same "full disk: the old White file" r.tmpReg r.old
same "full disk: the old Black file" r.black.tmpReg r.black.old
absent "full disk: no leftovers" r.tmpReg.saving r.black.tmpReg.saving r.tmpReg.commit
{ printf '1 #1\n{\n Desc: '; head -c 3000 /dev/zero | tr '\0' x; printf '\n FEN: 8/8/8/8/8/1K6/8/k1Q5 w - - 0 1\n}\n'; } >long.cp
cp long.cp long.old
(ulimit -f 2; "$mm" register save long.cp --problem 1 --pin --threads 1 >/dev/null 2>"$err"); rc=$?
[ $rc -eq 2 ] && grep -q '^Error writing file: long\.cp (File too large)$' "$err"; tally "full disk: collection (status $rc)"
same "full disk: the old collection" long.cp long.old
absent "full disk: no temporary collection" long.cp.tmp

# An unwritable folder (immutable: root ignores permissions), when the file system allows it.
mkdir locked && cp r.old locked/r.tmpReg && cp r.black.old locked/r.black.tmpReg && cp small.cp locked/small.cp
if chattr +i locked 2>/dev/null; then
    trap 'chattr -i "$work/locked" 2>/dev/null' EXIT
    check "unwritable folder: register" 2 'locked/r\.tmpReg\.saving \(Operation not permitted\)$' -- "${solve[@]}" --save-register locked/r.tmpReg
    same "unwritable folder: the old register" locked/r.tmpReg r.old
    check "unwritable folder: collection" 2 '^Error opening file: locked/small\.cp \(Operation not permitted\)$' -- register save locked/small.cp --problem 2 --pin --threads 1
    same "unwritable folder: the old collection" locked/small.cp small.cp
    chattr -i locked
else
    echo "skipped: no immutable folders here (chattr)"
fi

# Pin then unpin gives back the collection byte for byte.
cp "$samples/sample_problems.cp" pins.cp
"$mm" register save pins.cp --problem 1 --pin --threads 1 >/dev/null 2>&1 && "$mm" register unpin pins.cp --problem 1 >/dev/null 2>&1
same "pin then unpin" pins.cp "$samples/sample_problems.cp"

# Killed in the middle of a save: the old file or the new one, and the backup.
kill_at register-pair "${solve[@]}" --save-register r.tmpReg
same "killed before the commit: the old register" r.tmpReg r.old
check "the next load clears the leftovers" 0 'Removed the unfinished files of an interrupted save of r\.tmpReg' -- register stats r.tmpReg
absent "no leftovers after the load" r.tmpReg.saving r.black.tmpReg.saving
kill_at register-renames "${solve[@]}" --save-register r.tmpReg
check "killed between the renames: the next load completes the new pair" 0 'Completed the interrupted save of r\.tmpReg' -- register stats r.tmpReg
absent "no leftovers after completing" r.tmpReg.saving r.black.tmpReg.saving r.tmpReg.commit
mkdir -p home/SavedTmpRegisterData && printf 'half' >home/SavedTmpRegisterData/5.black.tmpReg.saving
check "the next start clears what a killed save left" 0 'Removed the unfinished files of an interrupted save of .*/SavedTmpRegisterData/5\.tmpReg$' -- fen "4k3/8/8/8/8/8/8/4K3"
absent "no leftovers after the start" home/SavedTmpRegisterData/5.black.tmpReg.saving
"$mm" register save small.cp --problem 2 --pin --threads 1 >/dev/null 2>&1
cp small.cp pinned.old
kill_at collection register unpin small.cp --problem 2
same "killed while saving the collection: the old one" small.cp pinned.old
[ -f small.cp.BAK ]; tally "killed while saving the collection: the backup is there"
check "the next save goes through" 0 'no longer refers to a register' -- register unpin small.cp --problem 2

# The full log of the analysis goes beside the program's data, not into the working folder.
printf 'LogMoves=1\n' >>home/options.ini
"$mm" "${solve[@]}" >/dev/null 2>&1
ls home/MovesLogger_problem2_thr0.log >/dev/null 2>&1 && ! ls MovesLogger_* >/dev/null 2>&1; tally "LogMoves beside the program's data"

cd / && rm -rf "$work"
echo "data safety: $passed passed, $failed failed"
[ "$failed" -eq 0 ]
