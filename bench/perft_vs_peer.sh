#!/usr/bin/env bash
# Times `moremate perft` against the perft of a bitboard engine (Debian's stockfish) on the same
# machine in the same run, and prints the speed ratio. Usage: perft_vs_peer.sh MOREMATE [DEPTH]
set -euo pipefail
moremate=${1:?path to the moremate program}
depth=${2:-6}
peer=$(command -v stockfish || echo /usr/games/stockfish)
[ -x "$peer" ] || { echo "stockfish not installed (MOREMATE_BENCH_PEERS=1 scripts/setup.sh)"; exit 1; }
fen="rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1"

now_ms() { date +%s%3N; }
best_of() {  # best wall time of three runs, in ms
    local best=999999999
    for _ in 1 2 3; do
        local t0 t1; t0=$(now_ms); "$@" >/dev/null 2>&1; t1=$(now_ms)
        (( t1 - t0 < best )) && best=$(( t1 - t0 ))
    done
    echo "$best"
}
peer_perft() { printf 'position fen %s\ngo perft %s\nquit\n' "$fen" "$depth" | "$peer"; }

ours=$(best_of "$moremate" perft "$fen" "$depth")
theirs=$(best_of peer_perft)
echo "perft $depth of the initial position: moremate ${ours} ms, stockfish ${theirs} ms"
awk -v a="$ours" -v b="$theirs" 'BEGIN { printf "moremate runs at %.2f of the peer'"'"'s speed (target: at least 1)\n", b / a }'
