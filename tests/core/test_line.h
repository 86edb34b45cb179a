// A line of play for tests: moves given as text are played one after another, each into a board
// of its own so that the `previous` links of the line stay valid.
#pragma once

#include <deque>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "core/chessboard.h"
#include "core/fen.h"
#include "core/notation.h"
#include "core/validation.h"

namespace moremate::test {

// The start of a problem with `halfMoves` half-moves to go; its parity gives the side to move.
inline TChessboard Problem(const std::string& fen, int halfMoves) {
    TChessboard board;
    EXPECT_TRUE(ReadFen(fen, board)) << fen;
    PrepareForSolving(board, halfMoves, true);
    return board;
}

class TestLine {
  public:
    explicit TestLine(const TChessboard& start) { boards_.push_back(start); }

    TestLine& Play(const std::string& text) {
        boards_.emplace_back();
        MakeMove(boards_[boards_.size() - 2], text, boards_.back());
        return *this;
    }
    // Moves separated by blanks.
    TestLine& PlayLine(const std::string& moves) {
        std::istringstream in(moves);
        for (std::string move; in >> move;) Play(move);
        return *this;
    }
    const TChessboard& Now() const { return boards_.back(); }

  private:
    std::deque<TChessboard> boards_;  // a deque keeps earlier boards in place as the line grows
};

}  // namespace moremate::test
