#include "relaxation.h"

#include <chrono>
#include <cstring>
#include <thread>
#include <type_traits>

#include <fmt/format.h>

#include "engine/heuristics/heuristic_text.h"
#include "engine/heuristics/position_type.h"
#include "relaxation_log.h"

namespace moremate {
namespace {

// One call of the relaxation: the state it changes and what the position-dependent rules read.
struct TStep {
    TPassState& s;
    const TRelaxationEnvironment& env;
    const TRootFacts& facts;

    THeuristicSet& Set() { return s.set; }
    THeuristicParameters& Params() { return s.set.params; }
    bool Has(uint32_t bit) const { return s.set.Has(bit); }
    // Takes `bit` out when it is in the set: the step.
    bool TakeOut(uint32_t bit) {
        if (!Has(bit)) return false;
        s.set.Remove(bit);
        return true;
    }
    void Replace(uint32_t out, uint32_t in) {
        s.set.Remove(out);
        s.set.Add(in);
    }
};

// ---- FindForcedMate (step 4) ----

uint8_t AllowedFfmSteps(const THeuristicParameters& p, const TPassState& s) {
    return p.ffm.custom ? s.ffmCustomRelaxations : p.ffm.relaxations;
}

// 4b. With a single white piece besides the king, "#1+" adds nothing: the step goes on to "#2".
bool AdvanceFfmMode(TStep& t) {
    TFindForcedMate& ffm = t.Params().ffm;
    if (ffm.mode >= kFfmThreat5 || ffm.mode - ffm.initialMode >= AllowedFfmSteps(t.Params(), t.s))
        return false;
    ++ffm.mode;
    if (ffm.mode == kFfmThreat1Plus && t.facts.WhitePieces() == 1) ffm.mode = kFfmThreat2;
    return true;
}

// 4c, first case: "#2" becomes "#2+" for a stipulation of at most #21 with the black king on the
// edge, or for a black king without flights.
bool RaiseFfmTwoToTwoPlus(TStep& t) {
    TFindForcedMate& ffm = t.Params().ffm;
    if (ffm.mode != kFfmThreat2) return false;
    const bool shortEdge = t.facts.stipulationMoves <= 21 && t.facts.blackKingOnEdge;
    if (!shortEdge && t.facts.blackKingFlights != 0) return false;
    ffm.mode = kFfmThreat2Plus;
    return true;
}

// 4c, second case: "-WithOtherHeuristics" adds the heuristics the position type check chooses.
bool AddOtherHeuristics(TStep& t) {
    if (t.Params().ffm.withOtherHeuristics == 0 || t.env.root == nullptr) return false;
    const THeuristicSet suited = PositionTypeHeuristics(*t.env.root);
    const uint32_t added = suited.mask & ~t.Set().mask & ~SH_FINDFORCEDMATE;
    if (added == 0) return false;
    t.Set().Add(added);
    if (added & SH_KEEPKINGONTHEEDGE) t.Params().kingMode = suited.params.kingMode;
    if (added & SH_DONTLETFIGUREUNBLOCK) {
        std::memcpy(t.Params().blockedFigures, suited.params.blockedFigures,
                    sizeof suited.params.blockedFigures);
        t.Params().blockedCount = suited.params.blockedCount;
    }
    return true;
}

void StorePassEndTime(TPassState& s, int64_t now) {
    s.endTimeLock.Lock();
    if (s.passEndTimes[s.step] == 0) s.passEndTimes[s.step] = now;
    s.endTimeLock.Unlock();
}

// 4c, third case. "CheckOnly" is not advanced while Black has a queen: its checks make the
// threat modes useless.
bool TimeDependentRelaxation(TStep& t) {
    TFindForcedMate& ffm = t.Params().ffm;
    if (ffm.mode >= kFfmThreat2Plus || (ffm.mode == kFfmCheckOnly && t.facts.blackQueens > 0)) return false;
    t.s.timeDependentReached = true;
    StorePassEndTime(t.s, RelaxationClockMs(t.env));
    const int64_t calcTime = t.s.passEndTimes[t.s.step] - t.s.passEndTimes[0];
    if (calcTime >= 800 && calcTime <= 1200 && !t.env.engineLogPath.empty())
        AppendTimeDependentLine(t.env.engineLogPath, calcTime, kTimeDependentLimitMs);
    if (calcTime >= kTimeDependentLimitMs) return false;
    ++ffm.mode;
    if (ffm.mode == kFfmThreat1 || ffm.mode == kFfmThreat2) ++ffm.mode;
    return true;
}

void DropFfm(TStep& t) {
    TFindForcedMate& ffm = t.Params().ffm;
    if (ffm.custom) {
        ffm.custom = false;
        ffm.mode = ffm.initialMode;
    } else {
        t.Set().Remove(SH_FINDFORCEDMATE);
    }
}

bool RelaxFindForcedMate(TStep& t) {
    if (!t.Has(SH_FINDFORCEDMATE)) return false;
    if (t.Params().ffm.preliminary) {
        t.Set() = t.s.ffmFullSet;
        t.Params().ffm.preliminary = false;
        return true;
    }
    if (AdvanceFfmMode(t) || RaiseFfmTwoToTwoPlus(t) || AddOtherHeuristics(t) || TimeDependentRelaxation(t))
        return true;
    DropFfm(t);
    return true;
}

// ---- steps 5 to 25 ----

bool DropSeaSnake(TStep& t) {
    if (!t.TakeOut(SH_SEASNAKE)) return false;
    if (!t.s.safeModeForbidden) t.s.safeMode = t.s.safeModeForced = true;
    return true;
}

bool DropOneColourPlay(TStep& t) {
    if (!t.TakeOut(SH_ONECOLORPLAYPOSSIBLE)) return false;
    t.Params().colourMode = TColourMode::None;
    return true;
}

// 10. ALMOST_STRICT turns into SH_ASSERTBLACKKINGSURROUNDED when the problem allows it and at least
// two black pieces stand next to the black king (the king is walled in by its own men).
bool AlmostStrictToSurrounded(TStep& t) {
    if (!t.Has(SH_KEEPKINGONTHEEDGE) || t.Params().kingMode != TKingMode::AlmostStrict) return false;
    if (!t.s.almostStrictToSurrounded || t.env.root == nullptr) return false;
    const TChessboard& root = *t.env.root;
    int neighbours = 0;
    for (int df = -1; df <= 1; ++df)
        for (int dr = -1; dr <= 1; ++dr) {
            const int f = root.blackKingFile + df, r = root.blackKingRank + dr;
            if ((df || dr) && OnBoard(f, r) && ColourOf(root.squares[MakeSquare(f, r)]) == kBlack)
                ++neighbours;
        }
    if (neighbours < 2) return false;
    t.Replace(SH_KEEPKINGONTHEEDGE, SH_ASSERTBLACKKINGSURROUNDED);
    t.Params().kingMode = TKingMode::Off;
    return true;
}

void ClearDynamicDlfu(TPassState& s) {
    s.dynamicDlfuActive = s.pendingDynamicDlfu = false;
}

bool HoldsBlackFigure(const TChessboard& root, Square sq) {
    return sq < 64 && ColourOf(root.squares[sq]) == kBlack && TypeOf(root.squares[sq]) != kPawn &&
           TypeOf(root.squares[sq]) != kKing;
}

// 11. A DLFU the engine set itself no longer applies when none of its squares holds a black figure.
bool DropInapplicableDynamicDlfu(TStep& t) {
    if (!t.s.dynamicDlfuActive || !t.Has(SH_DONTLETFIGUREUNBLOCK) || t.env.root == nullptr) return false;
    for (int i = 0; i < t.Params().blockedCount; ++i)
        if (HoldsBlackFigure(*t.env.root, t.Params().blockedFigures[i])) return false;
    t.Set().Remove(SH_DONTLETFIGUREUNBLOCK);
    ClearDynamicDlfu(t.s);
    return true;
}

// 13. The key figure test fails when its square does not hold a white figure.
bool DropFailedKeyFigure(TStep& t) {
    if (!t.Has(SH_KEYWHITEFIGURE) || t.facts.blackFigures < 2 || t.env.root == nullptr) return false;
    const Square sq = t.Params().keyWhiteFigure;
    const Piece p = sq < 64 ? t.env.root->squares[sq] : kEmpty;
    if (ColourOf(p) == kWhite && TypeOf(p) != kPawn && TypeOf(p) != kKing) return false;
    t.Set().Remove(SH_KEYWHITEFIGURE);
    return true;
}

// 14. STRICT goes to ALMOST_STRICT when Black has pawns (whose blocked moves are its exceptions),
// else to the plain edge; a black king that stands off the edge gets SH_ASSERTBLACKKINGSURROUNDED.
bool RelaxStrictKing(TStep& t) {
    if (!t.Has(SH_KEEPKINGONTHEEDGE) || t.Params().kingMode != TKingMode::Strict) return false;
    t.Params().kingMode = t.facts.blackPawns > 0 ? TKingMode::AlmostStrict : TKingMode::Off;
    if (!t.facts.blackKingOnEdge) {
        t.Replace(SH_KEEPKINGONTHEEDGE, SH_ASSERTBLACKKINGSURROUNDED);
        t.Params().kingMode = TKingMode::Off;
    }
    return true;
}

bool DropMarked(TStep& t, uint32_t bit, bool relaxable) {
    return relaxable && t.TakeOut(bit);
}

bool SetDlfuEff(TStep& t) {
    if (!t.Has(SH_DONTLETFIGUREUNBLOCK) || t.Params().blockedCount == 0 || t.Params().dlfuEff) return false;
    t.Params().dlfuEff = true;
    return true;
}

// 20. With "incl.pawns" and more white than black pawns the pawns are let go first.
bool RelaxLoseFigures(TStep& t) {
    if (!t.Has(SH_DONTLOSEANYFIGURES)) return false;
    if (t.Params().loseFiguresPawns > 0 && t.facts.whitePawns > t.facts.blackPawns)
        t.Params().loseFiguresPawns = 0;
    else
        t.Set().Remove(SH_DONTLOSEANYFIGURES);
    return true;
}

bool RelaxSurrounded(TStep& t) {
    if (!t.Has(SH_ASSERTBLACKKINGSURROUNDED)) return false;
    if (t.Params().surroundedStrict)
        t.Params().surroundedStrict = false;
    else
        t.Set().Remove(SH_ASSERTBLACKKINGSURROUNDED);
    return true;
}

// 22. The edge rule gives way to SH_ASSERTBLACKKINGSURROUNDED when marked so or when five or more
// black pieces stand in the 7 by 7 box around the king, else to SH_KEEPKINGWITHINEXTEDGE, with
// "incl.corner" when the king is in or next to a corner.
bool RelaxEdge(TStep& t) {
    if (!t.Has(SH_KEEPKINGONTHEEDGE)) return false;
    t.Params().kingMode = TKingMode::Off;
    if (t.s.edgeToSurrounded || t.facts.blackPiecesNearBlackKing >= 5) {
        t.Replace(SH_KEEPKINGONTHEEDGE, SH_ASSERTBLACKKINGSURROUNDED);
    } else {
        t.Replace(SH_KEEPKINGONTHEEDGE, SH_KEEPKINGWITHINEXTEDGE);
        t.Params().inclCorner = t.facts.blackKingNearCorner;
    }
    return true;
}

// 23. Positions of at most seven pieces keep SH_ASSERTBLACKKINGSURROUNDED in its place.
bool RelaxExtEdge(TStep& t) {
    if (!t.Has(SH_KEEPKINGWITHINEXTEDGE)) return false;
    if (t.Params().edgeStrict) {
        t.Params().edgeStrict = false;
    } else {
        t.Set().Remove(SH_KEEPKINGWITHINEXTEDGE);
        if (t.facts.AllPieces() <= 7) t.Set().Add(SH_ASSERTBLACKKINGSURROUNDED);
    }
    return true;
}

// 24. A DLFU the engine may still apply dynamically stays one step longer while one of its
// figures cannot move at all; that step clears the dynamic flags.
bool DropDlfu(TStep& t) {
    if (!t.Has(SH_DONTLETFIGUREUNBLOCK)) return false;
    const bool dynamic = t.s.dynamicDlfuActive || t.s.pendingDynamicDlfu;
    bool walledIn = false;
    for (int i = 0; i < t.Params().blockedCount; ++i)
        for (const Square sq : t.facts.immobileBlackFigures)
            walledIn = walledIn || sq == t.Params().blockedFigures[i];
    if (!(dynamic && walledIn)) t.Set().Remove(SH_DONTLETFIGUREUNBLOCK);
    ClearDynamicDlfu(t.s);
    return true;
}

bool DropLastOrAll(TStep& t) {
    for (const uint32_t bit :
         {SH_DONTLETBLACKQUEENCHECKTWICE, SH_SKIPWORSTWHITEMOVES, SH_SAVEQUEENROOK, SH_AREKINGSNEAR})
        if (t.TakeOut(bit)) return true;
    t.Set().mask = 0;
    return true;
}

// Steps 4 to 25 in their fixed order; the first that applies is the step.
bool ApplyFirstRule(TStep& t) {
    return RelaxFindForcedMate(t) || t.TakeOut(SH_SWEEPINGWHITEROOK) || t.TakeOut(SH_ZUGZWANG) ||
           DropSeaSnake(t) || DropOneColourPlay(t) || t.TakeOut(SH_KEEPKINGNEARCORNER) ||
           AlmostStrictToSurrounded(t) || DropInapplicableDynamicDlfu(t) ||
           t.TakeOut(SH_DONTLEAVEMAINDIAGONAL) || DropFailedKeyFigure(t) || RelaxStrictKing(t) ||
           t.TakeOut(SH_KEYWHITEFIGURE) ||
           DropMarked(t, SH_DONTLETBLACKQUEENCHECKTWICE, t.s.queenCheckRelaxable) ||
           DropMarked(t, SH_DONTLETPROMOTEDQUEENMOVE, t.s.promotedQueenRelaxable) || SetDlfuEff(t) ||
           t.TakeOut(SH_SINGLEQUEENMATE) || RelaxLoseFigures(t) || RelaxSurrounded(t) || RelaxEdge(t) ||
           RelaxExtEdge(t) || DropDlfu(t) || DropLastOrAll(t);
}

// Step 3: pending dynamic DLFU and the DLFU / key figure toggle; true when the toggle was the step.
bool ApplyPendingRequests(TPassState& s) {
    if (s.pendingDynamicDlfu && s.dynamicDlfuAllowed) {
        s.set.Add(SH_DONTLETFIGUREUNBLOCK);
        s.pendingDynamicDlfu = false;
        s.dynamicDlfuActive = true;
    }
    if (!s.pendingDlfuKeyToggle) return false;
    s.pendingDlfuKeyToggle = false;
    if (s.set.Has(SH_DONTLETFIGUREUNBLOCK)) {
        s.set.Remove(SH_DONTLETFIGUREUNBLOCK);
        s.set.Add(SH_KEYWHITEFIGURE);
        return true;
    }
    if (s.set.Has(SH_KEYWHITEFIGURE)) {
        s.set.Remove(SH_KEYWHITEFIGURE);
        s.set.Add(SH_DONTLETFIGUREUNBLOCK);
    }
    return false;
}

bool Relax(TPassState& s, const TRelaxationEnvironment& env) {
    if (!s.relaxationAllowed) {
        s.set.mask = 0;
        return false;
    }
    if (s.subProblem) {
        if (s.parent == nullptr) return false;
        const bool next = TryRelaxSpecialHeuristics(*s.parent, env);
        s.set = s.parent->set;
        return next;
    }
    ++s.step;
    s.timeDependentReached = false;
    if (!ApplyPendingRequests(s)) {
        const TRootFacts facts = env.root ? RootFacts(*env.root) : TRootFacts{};
        TStep step{s, env, facts};
        ApplyFirstRule(step);
    }
    return s.set.mask != 0;
}

void Log(const TPassState& s, const TRelaxationEnvironment& env, bool before) {
    if (env.log) AppendRelaxationLog(env.logFolder, before, env.thread, PassSetText(s, env.root));
}

}  // namespace

int64_t RelaxationClockMs(const TRelaxationEnvironment& env) {
    if (env.clock) return env.clock();
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void CSpinCounter::Lock() {
    for (int tries = 1;; ++tries) {
        if (++m_n <= 1) return;
        --m_n;
        if (tries % 100 == 0) std::this_thread::yield();
    }
}

uint32_t ParameterWord(const THeuristicSet& set) {
    static_assert(std::has_unique_object_representations_v<THeuristicParameters>);
    if (set.mask == 0) return 0;
    unsigned char bytes[sizeof(THeuristicParameters)];
    std::memcpy(bytes, &set.params, sizeof bytes);
    uint32_t hash = 2166136261u;  // FNV-1a
    for (const unsigned char b : bytes) hash = (hash ^ b) * 16777619u;
    return hash;
}

std::string PassSetText(const TPassState& state, const TChessboard* root) {
    if (state.set.mask == 0) return "";  // a pass without heuristics
    THeuristicTextContext context;
    context.m_bQuickMode = state.quickMode && !state.safeMode;
    if (root) context.m_nAlmostStrictPieces = RootFacts(*root).immobileBlackPawns;
    return HeuristicSetText(state.set, context);
}

std::string PassLetter(uint8_t step) {
    if (step == 0) return "";
    if (step <= 'z' - 'a') return std::string(1, static_cast<char>('a' + step));
    return fmt::format("z{}", step - ('z' - 'a'));
}

void PreparePassOne(TPassState& state) {
    THeuristicSet& set = state.set;
    if (set.Has(SH_FINDFORCEDMATE) && set.params.ffm.preliminary) {
        state.ffmFullSet = set;
        set.Remove(SH_KEEPKINGONTHEEDGE | SH_ASSERTBLACKKINGSURROUNDED);
        set.Add(SH_KEEPKINGWITHINEXTEDGE);
    }
    state.parameterWord = ParameterWord(set);
}

bool TryRelaxSpecialHeuristics(TPassState& state, const TRelaxationEnvironment& env) {
    Log(state, env, true);
    const bool next = Relax(state, env);
    state.parameterWord = ParameterWord(state.set);
    Log(state, env, false);
    return next;
}

}  // namespace moremate
