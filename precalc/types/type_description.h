// The grammar of position type descriptions. A standard description is piece letters only:
// "K", "k" and up to three of Q, R, B, N, P in either case (uppercase White, lowercase Black).
// A custom description may further restrict where pieces stand:
//
//   description := piece* ("+" piece)*      one "K" and one "k" in all, five men at most
//   piece       := letter squares?
//   letter      := K Q R B N P X  (White)  |  k q r b n p x  (Black)
//   squares     := "(" place ("," place)* ")"  |  place   (a bare place only right after "+")
//   place       := file rank | file | rank   file: a-h or "?" (any), rank: 1-8 or "?" (any)
//
// "X" / "x" is a pawn of which only the file is indexed: it stands on its own second rank ("X" on
// rank 2, "x" on rank 7) unless squares follow. A piece after "+" is one more piece of the type,
// written as in "KRk+pa7" (a black pawn on a7). Places are listed one after another or with
// commas: "N(a1,h1)" or "N(a1h1)"; "a" is the a-file, "7" the seventh rank, "?7" the same.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/types.h"

namespace moremate {

struct TDescribedPiece {
    Piece m_piece = kEmpty;
    uint64_t m_nSquares = 0;  // the squares it may stand on, one bit each; 0 for any
};

// The pieces of a custom description, kings first as written. Throws ChessException
// kUnknownTypeText + text + " (" + what is wrong + ")".
std::vector<TDescribedPiece> ReadCustomDescription(const std::string& text);

}  // namespace moremate
