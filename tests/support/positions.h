// Positions and lines of play for tests, and the message a call fails with.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <exception>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "core/chessboard.h"
#include "core/fen.h"
#include "core/movegen.h"
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

// The start of a "#moves" problem.
inline TChessboard Directmate(const std::string& fen, int moves) {
    return Problem(fen, 2 * moves - 1);
}

// A position with the FEN's side to move.
inline TChessboard Board(const std::string& fen) {
    return Problem(fen, FenWhiteToMove(fen) ? 1 : 2);
}

struct TSharedDirectmate {
    std::string fen;
    int moves = 0;
    bool solvable = false;  // the record has an answer
};

// The directmates of the shared collection from #`minMoves` to #`maxMoves`.
inline std::vector<TSharedDirectmate> SharedDirectmates(int minMoves, int maxMoves) {
    std::ifstream in(std::string(MOREMATE_SHARED_PROBLEMS) + "/directmates.cp");
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const std::regex record(R"(\d+ #(\d+)\s*\{[^}]*?FEN: ([^\n]+)\n[^}]*?Answer:([^\n]*)\n)");
    std::vector<TSharedDirectmate> out;
    for (std::sregex_iterator it(text.begin(), text.end(), record), end; it != end; ++it) {
        const int moves = std::stoi((*it)[1]);
        if (moves < minMoves || moves > maxMoves) continue;
        out.push_back({(*it)[2], moves, (*it)[3].str().find_first_not_of(" \t\r") != std::string::npos});
    }
    return out;
}

// Moves given as text are played one after another, each into a board of its own so that the
// `previous` links of the line stay valid.
class TestLine {
  public:
    explicit TestLine(const TChessboard& start) { boards_.push_back(start); }

    TestLine& Play(const std::string& text) {
        boards_.emplace_back();
        MakeMove(boards_[boards_.size() - 2], text, boards_.back());
        return *this;
    }
    TestLine& Play(const TMove& move) {
        boards_.emplace_back();
        PlayMove(boards_[boards_.size() - 2], move, boards_.back());
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

// A move between two squares given as text, "e2" and "e4".
inline TMove M(const char* from, const char* to, uint8_t promotion = 0) {
    return TMove{static_cast<Square>(String2Square(from)), static_cast<Square>(String2Square(to)), promotion};
}

inline constexpr const char* kNoError = "no error";

// The exception's text, or kNoError when the call returns: tables of cases list failures as text.
template <typename F>
std::string ErrorOf(F&& f) {
    try {
        f();
    } catch (const std::exception& e) {
        return e.what();
    }
    return kNoError;
}

}  // namespace moremate::test
