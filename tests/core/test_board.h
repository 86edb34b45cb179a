// Positions for tests, read from FEN with the FEN's side to move.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "core/fen.h"
#include "core/validation.h"

namespace moremate::test {

inline TChessboard Board(const std::string& fen) {
    TChessboard board;
    EXPECT_TRUE(ReadFen(fen, board)) << fen;
    PrepareForSolving(board, FenWhiteToMove(fen) ? 1 : 2, true);
    return board;
}

}  // namespace moremate::test
