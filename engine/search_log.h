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
    // half-moves played. `suppressed` is set by a pass that does not want node lines.
    void Result(int played, const TMove& move, uint8_t result, uint32_t doubtReason);
    void Line(const std::string& text);
    void NextMultithreadingLevel();
    bool IsOpen() const { return m_file.is_open(); }
    void Suppress(bool suppressed) { m_bSuppressed = suppressed; }

    // Appends "\n<placement> #<n>, move <move> sorted as <index>th" to "PoorSWM.log" in `folder`.
    static void PoorlySortedMove(const std::string& folder, const TChessboard& board, const TMove& move,
                                 int index);

  private:
    std::ofstream m_file;
    bool m_bSuppressed = false;
};

// The doubt reason as the logs print it: the heuristic's name for a heuristic bit, the
// "impossible" codes as a number, and register doubt marked as such.
std::string DoubtReasonText(uint32_t reason);

}  // namespace moremate
