// ProblemEntry: one problem of a collection as its file states it: number, stipulation, the
// options of its header line, the comment-line annotations, description, position and answer.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/chessboard.h"

namespace moremate {

enum class ProblemType : uint8_t {
    Directmate = 1,  // "#n": White mates in n moves
    Selfmate = 2,    // "s#n": White forces Black to mate in n moves
    Position = 4,    // no stipulation: a position with a sequence of moves to be shown
};

inline constexpr int kPositionPlies = 255;                // depth of a record without stipulation
inline constexpr uint8_t kThreadsNotGiven = 255;          // THREADS absent
inline constexpr uint32_t kEmptySlotNumber = 0x7fffffff;  // never written to a file

// Option flags of the header line, one per keyword; STOPON4SOL and USEPREDEFINEDSETTINGS share
// their bit on purpose.
enum ProblemOption : uint32_t {
    kOptNoMirror = 1u << 0,
    kOptMirrorOnly = 1u << 1,
    kOptAllSolutions = 1u << 2,
    kOptStopOnDual = 1u << 3,
    kOptStopOn3Sol = 1u << 4,
    kOptStopOn4Sol = 1u << 5,
    kOptUsePredefinedSettings = kOptStopOn4Sol,
    kOptGuiCheck = 1u << 6,
    kOptGuiCheckBestDefence = 1u << 7,
    kOptGuiCheckBestDefenceAndAux = 1u << 8,
    kOptSafeMode = 1u << 9,
    kOptRequiresSyzygy = 1u << 10,
    kOptAllSolutionsRequiresSyzygy = 1u << 11,
    kOptHybridBruteForce = 1u << 12,
    kOptBruteForce = 1u << 13,
    kOptDontRelaxHeuristics = 1u << 14,
    kOptDontRunPassTwo = 1u << 15,
    kOptNoGlobReg = 1u << 16,
};

enum class SortIndicationMode : uint8_t { None = 0, MainVariant = 1, AllVariants = 2 };

// What the answer list of a record means.
enum class AnswerKind : uint8_t {
    None,
    Full,              // ANSWER, SOLUTION, A: every key of the problem
    ExpectedSort,      // EXPECTEDSORTWHITEMOVES, SWM: the expected order of White's first moves
    ExpectedSortOnly,  // EXPECTEDSORTWHITEMOVESONLY: the same, and only the order is compared
};

// The variant given by LOOKFORBESTDEFENCESAFTER: the texts on either side of its ";".
struct TVariantPair {
    std::string sMoves;
    std::string sDefences;
    friend bool operator==(const TVariantPair&, const TVariantPair&) = default;
};
inline constexpr const char* kBestDefenceVariantName = "{VariantForLookForBestDefenceAfter}";

// The annotation lines between the header line and "{", kept as their texts after the marker.
struct TAnnotationLines {
    std::vector<std::string> vsTags;              // "//#" lines after "//#TAGS"
    std::vector<std::string> vsVariantLines;      // "//!" lines between "//!VARIANTS" and "//!ENDVARIANTS"
    std::optional<std::string> sSortIndications;  // text after "//@SortIndications: "
    std::optional<std::string> sTmpReg;           // text after "//@tmpreg="
    friend bool operator==(const TAnnotationLines&, const TAnnotationLines&) = default;
};

// The initial position. Positions compare by their squares, castling rights and side to move.
struct TStartPosition {
    TChessboard board;
    friend bool operator==(const TStartPosition& a, const TStartPosition& b);
};

struct ProblemEntry {
    uint32_t m_nNumber = 0;
    ProblemType m_type = ProblemType::Directmate;
    int m_nPlies = 0;  // 2n-1 for "#n", 2n+1 for "s#n", kPositionPlies without stipulation

    uint32_t m_nOptions = 0;  // ProblemOption flags
    uint8_t m_nThreads = kThreadsNotGiven;
    std::optional<int> m_nSchedulerLevels;
    std::optional<int> m_nLichessLevels;
    std::optional<int> m_nGlobRegMB;
    int m_nGuiCheckCount = 1;
    bool m_bStopRelaxOnFirstSolution = false;
    SortIndicationMode m_sortIndicationMode = SortIndicationMode::None;
    std::vector<std::string> m_vsRequires;
    std::vector<std::string> m_vsAllSolutionsRequires;

    uint32_t m_nHeuristicsOff = 0;                          // special-heuristic bits switched OFF
    std::map<uint32_t, std::string> m_mapHeuristicParams;   // bracketed parameter text per bit
    std::map<std::string, TVariantPair> m_mapVariantPairs;  // keyed by kBestDefenceVariantName

    TAnnotationLines m_annotations;
    std::string m_sDescription;  // UTF-8
    TStartPosition m_position;   // side to move and half-moves set from the stipulation
    AnswerKind m_answerKind = AnswerKind::None;
    std::vector<TMove> m_vAnswer;
    std::vector<TMove> m_vMoves;  // MOVES: the sequence played from the initial position

    bool Has(uint32_t option) const { return (m_nOptions & option) != 0; }
    // The number of moves n of the stipulation, as the header line states it.
    int StipulationMoves() const;

    friend bool operator==(const ProblemEntry&, const ProblemEntry&) = default;
};

}  // namespace moremate
