#!/usr/bin/env bash
# End-to-end checks of the moremate program: output formats and exit statuses.
set -u
mm=$(realpath "${1:?path to moremate}")
data=$(cd "$(dirname "$0")/../data" && pwd)
samples=$(cd "$(dirname "$0")/../../samples" && pwd)
long="$(cd "$(dirname "$0")/../../../shared/problems" 2>/dev/null && pwd)/longmates.cp"
# The program writes its scratch files and logs into the working folder: use a fresh one.
cd "$(mktemp -d)" || exit 1
# The online tablebase is asked at a port where nothing listens: the tests never leave the machine.
offline=$(pwd)/offline
mkdir "$offline" && printf '[chess]\nTablebaseURL=http://127.0.0.1:1/\n' >"$offline/options.ini"
export MOREMATE_HOME=$offline
passed=0 failed=0

tally() {  # tally NAME: counts the status of the command before, and returns it
    local rc=$?
    if [ $rc -eq 0 ]; then passed=$((passed + 1)); else failed=$((failed + 1)); echo "FAIL: $1"; fi
    return $rc
}
check() {  # check NAME EXPECTED_STATUS EXPECTED_STDOUT_OR_STDERR_PATTERN -- ARGS...
    local name=$1 status=$2 pattern=$3; shift 4
    local out rc
    out=$("$mm" "$@" 2>/tmp/moremate_cli_err.$$); rc=$?
    [ "$rc" -eq "$status" ] && printf '%s\n' "$out" | cat - /tmp/moremate_cli_err.$$ | grep -Eq -- "$pattern"
    tally "$name (status $rc, expected $status)" || { echo "$out" | head -5; head -5 /tmp/moremate_cli_err.$$; }
}

start="rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1"
check "perft total" 0 '^8902$' -- perft "$start" 3
check "divide lists moves in long notation" 0 '^Ng1-f3 20$' -- perft "$start" 2 --divide
check "divide castles" 0 '^0-0 ' -- perft "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -" 1 --divide
check "black to move" 0 '^15833292$' -- perft "r2q1rk1/pP1p2pp/Q4n2/bbp1p3/Np6/1B3NBn/pPPP1PPP/R3K2R b KQ - 0 1" 5
check "fen normalises" 0 '^FEN: 4k3/8/8/8/8/8/8/R3K3 w Q - 0 1$' -- fen "4k3/8/8/8/8/8/8/R3K3 w KQkq -"
check "fen prints castling" 0 '^Castling: Q$' -- fen "4k3/8/8/8/8/8/8/R3K3"
check "fen prints the identifier" 0 '^Id: [0-9a-zA-Z()]+$' -- fen "$start"
check "fen warns about withheld castling" 0 'does not consider additional information' -- fen "4k3/8/8/8/8/8/8/4K2R w - -"
check "two kings required" 2 'Illegal number of kings.' -- fen "8/8/8/8/8/8/8/8 w - -"
check "pawn on the first rank" 2 'Pawns cannot occupy 1st nor 8th line of the chessboard.' -- fen "4k3/8/8/8/8/8/8/P3K3 w - -"
check "side not to move in check" 2 'Black king cannot be checked' -- perft "4k3/8/8/8/8/8/8/4RK2 w - -" 1
check "not a FEN" 2 'Improper FEN code' -- perft "hello" 2
check "rank too long" 2 'Improper FEN code' -- fen "9/8/8/8/8/8/8/4K2k w - -"
check "bad depth" 2 '' -- perft "$start" 0
check "unknown command" 2 '' -- frobnicate
check "version" 0 '^moremate [0-9]' -- --version
check "help" 0 'perft' -- --help

check "solve prints keys and main line" 0 'main line: 1\. Qa7-f2 ' -- solve "$data/small.cp" --problem 1
if [ -f "$long" ]; then
    check "the proof-number pass finds the #8's key" 0 '"key":"f2-b6","pass":"pn"' -- solve "$long" --problem 3 --json
    check "proof-number figures" 0 '^Proof-number pass: ' -- solve "$long" --problem 3 --proof-number only --register-stats
fi
check "proof-number mode refused" 2 'auto, off or only expected' -- solve "$data/small.cp" --proof-number sometimes
check "all solutions" 0 'keys: Kd2-c1, Kd2-c2, Kd2-c3, Qe3-b6|keys: .*Qe3-b6' -- solve "$data/small.cp" --problem 2 --all-solutions
check "the register's memory" 0 'Number of allocated chunks = [1-9]' -- solve "$data/small.cp" --problem 1 --register-stats
check "json fields" 0 '"keys":\["a7-f2"\],"match":true' -- solve "$data/small.cp" --problem 1 --json
check "json without answer" 0 '"expected":null,"found":\[\],"keys":\[\],"match":null.*"result":"no solution"' -- solve "$data/small.cp" --problem 3 --json
check "selfmates are refused" 1 'Only mate problems \(type=1\) supported currently\.' -- solve "$data/small.cp" --problem 4
check "a wrong answer gives status 1" 1 'DIFFERS from the answer: a7-a1' -- solve "$data/wrong_answer.cp"
check "a run closes with its summary" 1 '^Summary: 1 problem, 1 solved, 0 of 1 agreeing with their answers, [0-9.]+ s$' -- solve "$data/wrong_answer.cp"
check "a json run closes with the summary on stderr" 0 '^Summary: 2 problems, 1 solved, 1 of 1 agreeing' -- solve "$data/small.cp" --problem 1 --problem 3 --json
check "a broken collection names the fault" 2 'Opening bracket expected \{ or unrecognized option encountered: NOSUCHOPTION' -- solve "$data/broken.cp"
check "records before the fault are solved" 2 'Problem 1 #2: solved' -- solve "$data/broken.cp"
check "missing collection" 2 '' -- solve "$data/no_such_file.cp"
check "json names the pass of each key" 0 '"found":\[\{"heuristics":"","key":"a7-f2","pass":"2"\}\]' -- solve "$data/small.cp" --problem 1 --json
check "heuristics given for pass 1" 0 'Qa7-f2 found in pass 1 with SH_DONTLOSEANYFIGURES' -- solve "$data/small.cp" --problem 1 --heuristics "SH_DONTLOSEANYFIGURES"
check "bad heuristics text" 2 'SH_NOSUCHTHING' -- solve "$data/small.cp" --heuristics "SH_NOSUCHTHING"
check "brute force" 0 'keys: Kd2-c1, Kd2-c2, Kd2-c3, Qe3-b6|found in pass 2' -- solve "$data/small.cp" --problem 2 --brute-force
check "stop on two solutions" 0 'keys: [^,]+, [^,]+$' -- solve "$data/small.cp" --problem 2 --stop-on 2
check "relaxation path" 0 '^Pass 1b: ' -- heuristics --path "SH_AREKINGSNEAR, SH_DONTLOSEANYFIGURES"
check "empty relaxation path" 0 'No heuristics selected.' -- heuristics --path ""
check "defence after the key" 0 'Not found any defence against mate. The best looks: Kc2-d3' -- defence "$samples/sample_problems.cp" --problem 3
check "refutations with equivalents" 0 'Equivalent moves: Kc2-d3, a6:b5' -- defence "$samples/sample_problems.cp" --problem 3 --after Qb6-b5
check "defence of a missing problem" 2 'Problem 99 not found' -- defence "$data/small.cp" --problem 99
check "bad thread count" 2 '' -- solve "$data/small.cp" --threads 0
check "two threads on two levels" 0 'keys: Kd2-c1, Kd2-c2, Kd2-c3, Qe3-b6' -- solve "$data/small.cp" --problem 2 --all-solutions --threads 2 --levels 2
check "levels off" 0 'keys: Kd2-c1, Kd2-c2, Kd2-c3, Qe3-b6' -- solve "$data/small.cp" --problem 2 --all-solutions --threads 4 --levels 0
check "bad level count" 2 '' -- solve "$data/small.cp" --levels 65
work=$(mktemp -d)
check "save the register" 0 'agrees with the answer' -- solve "$data/small.cp" --problem 2 --save-register "$work/r.lz4.tmpReg"
check "register statistics" 0 'No mate elements = [1-9]' -- register stats "$work/r.lz4.tmpReg"
check "register dump" 0 '^w	00000000	00000000	[0-9]+	[0-9]+	[^	]+/' -- register dump "$work/r.lz4.tmpReg" --limit 5
check "load the register" 0 'agrees with the answer' -- solve "$data/small.cp" --problem 2 --load-register "$work/r.lz4.tmpReg"
printf 'LZ4 garbage' > "$work/bad.lz4.tmpReg"
check "damaged register file" 2 'An error occurred during LZ4 decompression.' -- register stats "$work/bad.lz4.tmpReg"
rm -rf "$work"
work=$(mktemp -d)
export MOREMATE_HOME=$work  # the solved problems database goes there
cp "$offline/options.ini" "$work/"
check "short regression test" 1 '^\[SnglSolution, 1thrd\(s\)\] Test #2 M1 ok \([0-9]+ msec\)\.$' -- test "$data/small.cp" --short --threads 1 --log-folder "$work"
check "regression test heading" 1 '^Regression test started of [-0-9]+ [0-9:]+, file .*wrong_answer\.cp$' -- test "$data/wrong_answer.cp" --threads 1 --log-folder "$work"
check "a failed test gives status 1" 1 '^Failed: \[SnglSolution, 1thrd\(s\)\] Test #7 M1 failed:$' -- test "$data/wrong_answer.cp" --threads 1 --log-folder "$work"
check "mirrored positions" 1 '^Mirror: \[SnglSolution, 1thrd\(s\)\] Test #2 M1 ok ' -- test "$data/small.cp" --with-mirror --threads 1 --log-folder "$work"
check "test lines give the levels" 1 '^\[SnglSolution, 2\^2thrd\(s\)\] Test #2 M[0-9]+ ok ' -- test "$data/small.cp" --short --threads 2 --levels 2 --log-folder "$work"
mkdir "$work/log"
printed=$("$mm" test "$data/small.cp" --short --threads 1 --log-folder "$work/log" 2>/dev/null)
[ "$printed" = "$(cat "$work"/log/RegressionTest_*.log)" ]; tally "the log differs from the printed lines"
check "test of a broken collection" 2 'NOSUCHOPTION' -- test "$data/broken.cp" --log-folder "$work"
printf 'open %s\nSetTempRegSize 50%%\nrunregtest short,withmirror\n' "$data/small.cp" > "$work/t.vrs"
check "script runs a short mirrored test" 1 '^Mirror: \[SnglSolution, 1thrd\(s\)\] Test #2 M1 ok ' -- script "$work/t.vrs" --threads 1 --log-folder "$work"
check "script ends" 1 '^Script complete\.$' -- script "$work/t.vrs" --threads 1 --log-folder "$work"
printf 'runregtest short\n' > "$work/bad.vrs"
check "faulty script line" 2 'Script line 1: no problem collection is open' -- script "$work/bad.vrs" --log-folder "$work"
check "failed checks after a solve" 1 '^Failed: RequiresSyzygy not satisfied$' -- solve "$data/checks.cp" --problem 2 --threads 1
check "checks that hold" 0 'agrees with the answer' -- solve "$data/checks.cp" --problem 1 --threads 1
check "expected order only" 1 '^\[SnglSolution, 1thrd\(s\)\] Test #4 M1 ok \([0-9]+ msec\) - ExpectedSortWhiteMovesOnly\.$' -- test "$data/checks.cp" --threads 1 --log-folder "$work"
printf '1 #2\n//@tmpreg=7\n{\n FEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n Answer: a7-f2\n}\n' > "$work/ref.cp"
check "missing referenced register" 0 'Error reading file .*/SavedTmpRegisterData/7\.tmpReg' -- solve "$work/ref.cp" --threads 1
mkdir "$work/SavedTmpRegisterData"
"$mm" solve "$work/ref.cp" --threads 1 --save-register "$work/SavedTmpRegisterData/7.tmpReg" >/dev/null 2>&1
check "referenced register" 0 '^File has been read: .*/SavedTmpRegisterData/7\.tmpReg$' -- test "$work/ref.cp" --threads 1 --log-folder "$work"
cp "$data/small.cp" "$work/pin.cp"
check "save a problem's register pinned" 0 '^Problem 2 refers to it: //@tmpreg=1$' -- register save "$work/pin.cp" --problem 2 --pin --threads 1
check "a pinned register is loaded" 0 '^  File has been read: .*/SavedTmpRegisterData/1\.tmpReg$' -- solve "$work/pin.cp" --problem 2 --threads 1
check "load a problem's register" 0 'No mate elements = [1-9]' -- register load "$work/pin.cp" --problem 2
check "unpin" 0 '^Problem 2 no longer refers to a register$' -- register unpin "$work/pin.cp" --problem 2
check "save named after the problem" 0 'Register saved: .*/SavedTmpRegisterData/pin-2\.tmpReg$' -- register save "$work/pin.cp" --problem 2 --threads 1
check "load of a missing problem" 2 'Problem 9 not found' -- register load "$work/pin.cp" --problem 9
printf '1 #7\n{\n FEN: rbk5/ppp5/8/8/8/8/7R/4KBQR w - - 0 1\n}\n' > "$work/dlfu.cp"
"$mm" solve "$work/dlfu.cp" --threads 1 --solution-details --add-heuristics '!DLFU SafeMode' >/dev/null 2>&1
grep -q '^\* Initial set of heuristics: SH_KEEPKINGONTHEEDGE, SH_DONTLOSEANYFIGURES, SH_3MOVESTOMATE (CannotApplyDLFUDynamically)$' "$work/SolutionDetails.log" &&
    grep -q '^\* Safe mode is on' "$work/SolutionDetails.log"; tally "added tokens take back the engine's DLFU and force safe mode"
check "faulty added heuristics" 2 'Error occurred in ApplyPredefinedAdditionalHeuristics\(\) : Invalid square$' -- solve "$work/dlfu.cp" --add-heuristics 'DLFU(z9)'
check "a search variant without implementation" 1 'Error: no implementation in FindMateMultithreadingLevelThreadProcFFM for m_shLookForQuickerMateDepth' -- solve "$work/dlfu.cp" --threads 1 --proof-number off --add-heuristics 'LFQMDepth(#7)'
printf '[chess]\nRunRegressionTestInLoop=1\nTablebaseURL=http://127.0.0.1:1/\n' > "$work/options.ini"
for answer in "--yes --loops 3:3" "--no:1" ":1"; do  # without an answer and a terminal: no
    runs=$("$mm" test "$work/ref.cp" --threads 1 --log-folder "$work" ${answer%:*} </dev/null 2>/dev/null | grep -c '^Regression test started')
    [ "$runs" = "${answer#*:}" ]; tally "loop question answered '${answer%:*}': $runs runs"
done
cp "$offline/options.ini" "$work/"
[ -s "$work/SolvedProblemsDB/small.cspdb" ]; tally "no solved problems database"
# Precalculated data: the small types are generated into the program folder ($work) first.
check "precalc generate" 0 'KQk: 262144 indexes, 72254 White-to-move mates \(longest 10\)' -- precalc generate KQk --threads 1
check "precalc generate in run-length blocks" 0 'KRk: .*\(longest 16\)' -- precalc generate KRk --form rle --threads 1
check "a present type is not generated again" 0 '^KQk: present$' -- precalc generate KQk
check "precalc probe" 0 '^White mates in 14$' -- precalc probe "8/8/8/8/8/2k5/8/K6R w - - 0 1"
check "precalc probe with Black to move" 0 '^no mate$' -- precalc probe "8/8/8/8/8/2k5/2Q5/K7 b - - 0 1"
check "precalc probe without data" 0 '^unknown$' -- precalc probe "8/8/8/8/8/2k5/8/K5NR w - - 0 1"
check "precalc probe of a castling position" 0 '^unknown$' -- precalc probe "8/8/8/8/8/2k5/8/4K2R w - - 0 1"
check "precalc probe of a bad position" 2 'Improper FEN code' -- precalc probe "hello"
check "precalc info" 0 '^Longest mate: White mates in 10: .* w$' -- precalc info KQk
check "precalc info of the run-length form" 0 '^Form: run-length blocks$' -- precalc info KRk
check "precalc info lists the types on disk" 0 'position type\(s\) on disk: KQk KRk' -- precalc info
check "precalc verify" 0 '^KRk: 262144 indexes checked, 0 fault\(s\)$' -- precalc verify KRk --threads 1
check "precalc verify of what an interrupted generation left" 0 '^Not on disk: K[BN]k K[BN]k KPk$' -- precalc verify KPk --partial --threads 1
check "precalc of a bad type" 2 'Unknown position type description: KJk' -- precalc generate KJk
check "precalc generate of a custom type" 0 '^KR\(1\)k: 32768 indexes, 10910 White-to-move mates \(longest 16\)' -- precalc generate "KR(1)k" --threads 1
check "precalc probe in a custom type" 0 '^White mates in 1$' -- precalc probe "k7/8/1K6/8/8/8/8/7R w - - 0 1" --type "KR(1)k"
check "precalc probe outside a custom type" 2 'The position is not one of type KR\(1\)k' -- precalc probe "k7/8/1K6/8/8/8/7R/8 w - - 0 1" --type "KR(1)k"
check "a malformed custom type says why" 2 'KQ\(k \(a square, a file \(a-h\) or a rank \(1-8\) expected at position 4\)' -- precalc info "KQ(k"
check "precalc recompress" 0 '^KRk: KRk_\.precalc\.rle \([0-9]+ bytes\) -> KRk_\.precalc\.packed\.lz4 \([0-9]+ bytes\)$' -- precalc recompress KRk --form packed-lz4
check "a recompressed type loads packed" 0 '^Form: random-access buffer$' -- precalc info KRk
check "precalc generate without a type" 2 'No position type given' -- precalc generate
check "precalc form refused" 2 'Unknown storage form: zip' -- precalc generate KQk --form zip
printf '1 #14 Requires KRK\n{\n FEN: 8/8/8/8/8/2k5/8/K6R w - - 0 1\n}\n' > "$work/krk.cp"
check "a requirement met by data on disk" 0 'Problem 1 #14: solved' -- solve "$work/krk.cp" --threads 1
check "the search settles positions from the data" 0 'Precalculated data: [1-9][0-9]* look-ups' -- solve "$work/krk.cp" --threads 1 --register-stats
printf 'corrupt' | dd of="$work/Precalc/3pieces-pawns/KQk_.precalc.lz4" bs=1 seek=200 conv=notrunc 2>/dev/null
check "a damaged data file gives its message" 0 'Damaged file of precalculated data: .*KQk_\.precalc\.lz4' -- precalc probe "8/8/8/3k4/8/8/1Q6/K7 w - - 0 1"
check "a damaged data file answers unknown" 0 '^unknown$' -- precalc probe "8/8/8/3k4/8/8/1Q6/K7 w - - 0 1"
export MOREMATE_HOME=$offline
rm -rf "$work"
check "bench prints its signature" 0 '^Nodes searched  : [0-9]+$' -- bench
check "a line back to its position stops the run" 0 '^Position repetition: Program detected position repetition$' -- solve "$samples/sample_problems.cp" --problem 13 --after "Kd5-d4 Kb3-b4 Kd4-d5 Kb4-b3"
check "result of analysis without pass 2" 0 'No solution found \([0-9]+ sec\.\) NOTE: Pass without heuristics' -- solve "$data/small.cp" --problem 3 --no-pass2 --heuristics SH_AREKINGSNEAR
# An interrupt stops a long run cleanly, with the texts of a stop by the user.
printf '1 #12\n{\n FEN: rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1\n}\n' > long.cp
"$mm" solve long.cp --threads 1 >stopped.out 2>stopped.err & pid=$!
sleep 1; kill -INT "$pid"; wait "$pid"; rc=$?
[ "$rc" -eq 1 ] && grep -q '^Analysis stopped by user$' stopped.out && grep -q '(stopped by user)$' stopped.out &&
    grep -q '^Stop pending\.\.\.$' stopped.err
tally "interrupt (status $rc)" || cat stopped.out stopped.err

# The online tablebase: a service on the loopback address (any FEN gets the recorded answer), the
# cache once the service is gone, and a port where nothing listens.
tb=$(mktemp -d)
mkdir -p "$tb/www/ok"
printf '%s' '{"dtz":1,"precise_dtz":1,"dtm":17,"dtw":null,"category":"win","moves":[{"uci":"h7h8q","san":"h8=Q+","dtz":-2,"precise_dtz":-2,"dtm":-16,"category":"loss"},{"uci":"g7f6","dtz":0,"dtm":null,"category":"draw"}]}' >"$tb/www/ok/standard"
python3 -c '
import functools, http.server, sys
handler = functools.partial(http.server.SimpleHTTPRequestHandler, directory=sys.argv[1])
server = http.server.HTTPServer(("127.0.0.1", 0), handler)
print(server.server_address[1], flush=True)
server.serve_forever()' "$tb/www" >"$tb/port" 2>/dev/null & server=$!
for _ in 1 2 3 4 5 6 7 8 9 10; do [ -s "$tb/port" ] && break; sleep 0.2; done
export MOREMATE_HOME=$tb
printf '[chess]\nTablebaseURL=http://127.0.0.1:%s/ok/\nTablebaseTimeoutMs=1000\n' "$(cat "$tb/port")" >"$tb/options.ini"
endgame="4k3/6KP/8/8/8/8/7p/8 w - - 0 1"
check "tablebase answer" 0 '^h7h8q loss dtm -16 dtz 2$' -- tablebase "$endgame"
check "tablebase null dtm" 0 '^g7f6 draw dtm none dtz 0$' -- tablebase "$endgame"
# White Kc6, Rb1, Black Ka8: mate in two by Kc6-c7 only.
mkdir -p "$tb/www/krk"
python3 -c '
import json
moves = ["c6" + s for s in ("b5", "c5", "d5", "d6", "d7", "c7", "b6")] + ["b1" + s for s in ("b2", "b3", "b4", "b5", "b6", "b7", "b8", "a1", "c1", "d1", "e1", "f1", "g1", "h1")]
own = {"c6c7": ("loss", -2), "b1b8": ("draw", None), "b1b7": ("draw", 0)}
records = [dict(uci=m, category=own.get(m, ("loss", None))[0], dtm=own.get(m, ("loss", None))[1], dtz=None) for m in moves]
print(json.dumps(dict(dtz=3, precise_dtz=3, dtm=3, dtw=None, category="win", moves=records)))' >"$tb/www/krk/standard"
printf '1 #2 RequiresSyzygy\n{\n FEN: k7/8/2K5/8/8/8/8/1R6 w - - 0 1\n Answer: c6-c7\n}\n' >"$tb/krk.cp"
sed -i "s#/ok/#/krk/#" "$tb/options.ini"
check "solve with the tablebase" 0 'agrees with the answer' -- solve "$tb/krk.cp" --all-solutions --threads 1
[ -s "$tb/SavedTmpSyzygyData/$("$mm" fen "k7/8/2K5/8/8/8/8/1R6 w - - 0 1" | sed -n 's/^Id: //p').lichess" ]; tally "the answer is kept in the cache"
sed -i "s#/krk/#/ok/#" "$tb/options.ini"
kill "$server"; wait "$server" 2>/dev/null
check "tablebase answer from the cache" 0 '"cached":true,"dtm":17,"dtz":1,.*"uci":"h7h8q","wdl":"loss"' -- tablebase "$endgame" --json
printf '[chess]\nTablebaseURL=http://127.0.0.1:1/\n' >"$tb/options.ini"
check "tablebase without network" 1 'No internet connection' -- tablebase "4k3/6KP/8/8/8/8/8/8 w - - 0 1"
check "solve from the cached answer" 0 'agrees with the answer' -- solve "$tb/krk.cp" --all-solutions --threads 1
printf '1 #2 RequiresSyzygy\n{\n FEN: k7/8/2K5/8/8/8/8/2R5 w - - 0 1\n}\n' >"$tb/other.cp"
check "tablebase required but not reached" 1 '^Failed: RequiresSyzygy not satisfied$' -- solve "$tb/other.cp" --threads 1
check "tablebase bad FEN" 2 'Improper FEN code' -- tablebase "not a position"
check "tablebase too many pieces" 2 'positions of 3 to 7 pieces, this one has 32' -- tablebase "$start"
check "tablebase castling rights" 2 'no positions with castling rights' -- tablebase "4k3/8/8/8/8/8/8/R3K3 w - - 0 1"
export MOREMATE_HOME=$offline
rm -rf "$tb"

# The crash handler: a crash on purpose leaves its log in the working folder and status 3.
check "crash-test refused while the option is off" 2 'set AddTestCrashHandlerMenuItem=1' -- crash-test segv
crash=$(mktemp -d)
printf '[chess]\nAddTestCrashHandlerMenuItem=1\nTablebaseURL=http://127.0.0.1:1/\n' >"$crash/options.ini"
export MOREMATE_HOME=$crash
cd "$crash" || exit 1
check "crash-test names its log" 3 '^Details written to crash_log_[-_0-9]+\.log$' -- crash-test fpe
grep -q '^Exception Code: 0xC0000094 (Integer Divide By Zero)$' "$crash"/crash_log_*.log
tally "the crash log names the exception"
grep -q '^moremate(moremate::diagnostics::ProvokeCrash(' "$crash"/crash_log_*.log
tally "the crash log's call stack is symbolised"
rm -f "$crash"/crash_log_*.log
printf 'UseSystemCrashHandler=1\n' >>"$crash/options.ini"
# (a sanitizer build would otherwise report the fault itself)
ASAN_OPTIONS=handle_segv=0 bash -c 'ulimit -c 0; "$0" crash-test segv; exit $?' "$mm" 2>/dev/null
[ $? -eq 139 ] && ! ls crash_log_* 2>/dev/null
tally "UseSystemCrashHandler=1 leaves the crash to the system"
cd - >/dev/null || exit 1
export MOREMATE_HOME=$offline
rm -rf "$crash"

rm -f /tmp/moremate_cli_err.$$
echo "cli: $passed passed, $failed failed"
[ "$failed" -eq 0 ]
