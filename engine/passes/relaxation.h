// Relaxation of the heuristic set between passes: TryRelaxSpecialHeuristics makes one fixed-order
// step per call, and the "Show" path lists the sets of all passes a set leads to.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <string>

#include "core/chessboard.h"
#include "engine/heuristics/heuristic_set.h"

namespace moremate {

// A 16-bit counter used as a spin lock: increment, and when the result exceeds 1 decrement and
// retry, yielding the processor every 100 tries. A copy starts unlocked.
class CSpinCounter {
  public:
    CSpinCounter() = default;
    CSpinCounter(const CSpinCounter&) {}
    CSpinCounter& operator=(const CSpinCounter&) { return *this; }
    void Lock();
    void Unlock() { --m_n; }

  private:
    std::atomic<uint16_t> m_n{0};
};

// The passes of one problem. The FFM mode, its initial mode, the default number of FFM
// relaxations and the "-Preliminary" and "-Custom" flags travel in the set's parameters.
struct TPassState {
    THeuristicSet set;
    uint32_t parameterWord = 0;  // derived from the set after every change: its configuration half
    uint8_t step = 0;            // relaxation steps taken; the pass letter follows from it
    std::array<int64_t, 256> passEndTimes{};  // msec; slot 0 is the start of the series
    CSpinCounter endTimeLock;

    bool relaxationAllowed = true;  // "Let relax heuristics", cleared by DONTRELAXHEURISTICS
    bool pass2Allowed = true;       // cleared by DONTRUNPASSTWO
    bool stopRelaxOnFirstSolution = false;
    bool fallback = false;           // "Enable heur.fallback": read by the heuristics during a pass
    bool dynamicDlfuAllowed = true;  // without it a pending dynamic DLFU request is ignored
    bool safeMode = false;
    bool safeModeForced = false;     // by the engine (the sea snake step)
    bool safeModeForbidden = false;  // the problem does not let the engine force safe mode
    bool quickMode = true;

    // Requests and marks of the engine and the problem read by the steps.
    bool pendingDynamicDlfu = false;       // add SH_DONTLETFIGUREUNBLOCK at the next step
    bool pendingDlfuKeyToggle = false;     // swap SH_DONTLETFIGUREUNBLOCK and SH_KEYWHITEFIGURE
    bool dynamicDlfuActive = false;        // the engine set SH_DONTLETFIGUREUNBLOCK itself
    bool almostStrictToSurrounded = true;  // ALMOST_STRICT may turn into SH_ASSERTBLACKKINGSURROUNDED
    bool edgeToSurrounded = false;         // the edge rule gives way to SH_ASSERTBLACKKINGSURROUNDED
    bool queenCheckRelaxable = true;
    bool promotedQueenRelaxable = true;

    uint8_t ffmCustomRelaxations = 0;   // allowed FFM mode steps while "-Custom" is set
    THeuristicSet ffmFullSet;           // the set to restore after a "-Preliminary" pass 1
    bool timeDependentReached = false;  // the last step consulted the time of the pass

    bool subProblem = false;
    TPassState* parent = nullptr;  // the problem whose set a sub-problem follows
};

struct TRelaxationEnvironment {
    const TChessboard* root = nullptr;  // for the position-dependent choices
    std::function<int64_t()> clock;     // monotonic msec; empty: steady clock
    bool log = false;                   // "TryRelaxSpecialHeuristics.log" in `logFolder`
    std::string logFolder = ".";
    std::string engineLogPath;  // receives the time-dependent relaxation lines; empty: none
    int16_t thread = 0;         // the thread field of the log lines
};

inline constexpr int64_t kTimeDependentLimitMs = 1000;

// The environment's clock in msec, the steady clock when it has none.
int64_t RelaxationClockMs(const TRelaxationEnvironment& env);

// The configuration half of a set for the register: a hash of its parameters, 0 for no heuristics.
uint32_t ParameterWord(const THeuristicSet& set);
// The text of the state's set (quick mode applies outside safe mode) for logs, paths and reports.
std::string PassSetText(const TPassState& state, const TChessboard* root);
// "" for pass 1, then "b", "c", ... one per relaxation step.
std::string PassLetter(uint8_t step);

// Before pass 1: with "-Preliminary" and SH_FINDFORCEDMATE the full set is saved, and pass 1 runs
// without SH_KEEPKINGONTHEEDGE and SH_ASSERTBLACKKINGSURROUNDED but with SH_KEEPKINGWITHINEXTEDGE.
void PreparePassOne(TPassState& state);

// One relaxation step; true when a pass with heuristics follows. The position-dependent choices
// read the root position (see RootFacts):
// - FFM: with a single white piece besides the king "#1+" is passed over; once the mode steps are
//   used up, "#2" becomes "#2+" for a stipulation of at most #21 with the black king on the edge,
//   or for a black king without flights; "-WithOtherHeuristics" adds PositionTypeHeuristics;
//   the time-dependent step leaves "CheckOnly" alone while Black has a queen;
// - ALMOST_STRICT turns into SH_ASSERTBLACKKINGSURROUNDED with two or more black pieces next to the
//   black king; a key white figure fails its test when its square holds no white figure;
// - STRICT relaxes to ALMOST_STRICT when Black has pawns, else to the plain edge, and to
//   SH_ASSERTBLACKKINGSURROUNDED when the black king stands off the edge;
// - "incl.pawns" of SH_DONTLOSEANYFIGURES goes a step before the rule while White has more pawns;
// - the edge rule gives way to SH_ASSERTBLACKKINGSURROUNDED with five or more black pieces in the
//   7 by 7 box around the black king, else to SH_KEEPKINGWITHINEXTEDGE ("incl.corner" when the
//   king is in or next to a corner); ext.edge leaves SH_ASSERTBLACKKINGSURROUNDED behind in
//   positions of at most seven pieces;
// - an engine-set DLFU stays one step longer while one of its figures cannot move.
bool TryRelaxSpecialHeuristics(TPassState& state, const TRelaxationEnvironment& env);

// The "Show" text: the sets of pass 1, 1b, ... obtained by relaxing a copy of `state`.
std::string RelaxationPathText(const TPassState& state, const TRelaxationEnvironment& env);

}  // namespace moremate
