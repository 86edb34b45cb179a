// Logs of the mate search: the per-thread move log (one line per settled node, when the user
// switched full logging on) and "PoorSWM.log" (moves that mated although sorted late).
// Every file has its own process-wide lock: several search threads write at once.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>

#include "core/chessboard.h"

namespace moremate {

class CSearchLog {
  public:
    // Opens ".../MovesLogger_problem<N>_thr<T>.log" in `folder` for appending.
    CSearchLog(const std::string& folder, unsigned problem, unsigned thread);

    // One tab per half-move played, the move number with "." (White) or " ..." (Black), the
    // move, and the result's word; doubtful lines carry the reason. Lines stop after 600
    // half-moves played.
    void Result(int played, const TMove& move, uint8_t result, uint32_t doubtReason);
    void Line(const std::string& text);

    // Appends "\n<placement> #<n>, move <move> sorted as <index>th" to "PoorSWM.log" in `folder`.
    static void PoorlySortedMove(const std::string& folder, const TChessboard& board, const TMove& move,
                                 int index);

  private:
    std::ofstream m_file;
};

// The doubt reason as the logs print it: the heuristic's name for a heuristic bit, the
// "impossible" codes as a number, and register doubt marked as such.
std::string DoubtReasonText(uint32_t reason);

}  // namespace moremate
