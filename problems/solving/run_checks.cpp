#include "run_checks.h"

#include <algorithm>
#include <deque>
#include <sstream>

#include "core/chess_exception.h"
#include "core/movegen.h"
#include "engine/search/black_defence.h"
#include "precalc/types/position_type.h"
#include "problems/annotations/problem_variants.h"
#include "problems/format/problem_moves.h"

namespace moremate {
namespace {

// A line of play from the root; every position keeps its address, as the next links to it.
class CLine {
  public:
    explicit CLine(const TChessboard& root) : m_root(root) {}
    const TChessboard& Play(const TMove& move) {
        const TChessboard& from = Last();
        TChessboard& child = m_positions.emplace_back();
        PlayMove(from, move, child);
        child.movesLeft = static_cast<int16_t>(from.movesLeft - 1);
        return child;
    }
    const TChessboard& Last() const { return m_positions.empty() ? m_root : m_positions.back(); }

  private:
    const TChessboard& m_root;
    std::deque<TChessboard> m_positions;
};

bool Contains(const std::vector<TMove>& moves, const TMove& move) {
    return std::find(moves.begin(), moves.end(), move) != moves.end();
}

std::string MovesText(const TChessboard& node, const std::vector<TMove>& moves) {
    return moves.empty() ? std::string("none") : AnswerText(node, moves);
}

// The replies that refute the mate, else those that put it off the longest.
std::vector<TMove> BestDefences(TMateSearch& search, const TChessboard& black) {
    const TDefence defence = FindBlackDefence(search, black);
    return defence.refutations.empty() ? defence.best : defence.refutations;
}

// White's moves that mate the quickest within the half-moves left; none without a mate.
std::vector<TMove> QuickestMates(TMateSearch& search, const TChessboard& white) {
    const int mateIn = search.ShortestMate(white);
    std::vector<TMove> mates;
    if (mateIn == 0) return mates;
    TMoveList moves;
    GenerateLegalMoves(white, moves);
    for (const TMove& m : moves) {
        TChessboard child;
        PlayMove(white, m, child);
        child.movesLeft = static_cast<int16_t>(mateIn - 1);
        if (search.FindForcedMate(child) == kMate) mates.push_back(m);
    }
    return mates;
}

// Requirements name data sets in capitals, "KQKR" for a white king and queen against a black
// king and rook; a name in the data's own letters ("KQkr", in any order) is read as it is.
std::string CanonicalDataName(std::string name) {
    const bool capitals = std::none_of(name.begin(), name.end(), [](char c) { return std::islower(c); });
    const size_t blackKing = name.find('K', name.find('K') + 1);
    if (capitals && blackKing != std::string::npos)
        std::transform(name.begin() + static_cast<std::ptrdiff_t>(blackKing), name.end(),
                       name.begin() + static_cast<std::ptrdiff_t>(blackKing),
                       [](char c) { return static_cast<char>(std::tolower(c)); });
    try {
        return TPrecalcType::Parse(name).Description();
    } catch (const ChessException&) {
        return name;
    }
}

void CheckRequirements(const ProblemEntry& entry, const TRunFacts& run, std::vector<std::string>& failures) {
    const auto missing = [&run](const std::vector<std::string>& names) {
        return std::any_of(names.begin(), names.end(), [&run](const std::string& name) {
            const std::set<std::string>& present = run.available.precalculated;
            return !present.contains(name) && !present.contains(CanonicalDataName(name));
        });
    };
    if (missing(entry.m_vsRequires)) failures.emplace_back("Requires clause not satisfied");
    if (entry.Has(kOptRequiresSyzygy) && !run.available.bSyzygy)
        failures.emplace_back("RequiresSyzygy not satisfied");
    if (!run.bAllSolutions) return;
    if (missing(entry.m_vsAllSolutionsRequires))
        failures.emplace_back("AllSolutionsRequires clause not satisfied");
    if (entry.Has(kOptAllSolutionsRequiresSyzygy) && !run.available.bSyzygy)
        failures.emplace_back("AllSolutionsRequiresSyzygy not satisfied");
}

// The main variant's second move must be one of Black's best replies to its key; with the
// auxiliary mate, its third move one of White's quickest mates after that reply.
void CheckMainVariant(const std::vector<TMove>& variant, bool aux, TMateSearch& search,
                      const TChessboard& root, std::vector<std::string>& failures) {
    if (variant.size() < 2) return;
    CLine line(root);
    const TChessboard& black = line.Play(variant[0]);
    const std::vector<TMove> defences = BestDefences(search, black);
    if (!Contains(defences, variant[1])) {
        failures.push_back("Error in best defence:\n\nexpected " + AnswerMoveText(black, variant[1]) +
                           "\nfound " + MovesText(black, defences));
        return;
    }
    if (!aux || variant.size() < 3) return;
    const TChessboard& white = line.Play(variant[1]);
    const std::vector<TMove> mates = QuickestMates(search, white);
    if (!Contains(mates, variant[2]))
        failures.push_back("Error in auxMate:\n\nexpected " + AnswerMoveText(white, variant[2]) + "\nfound " +
                           MovesText(white, mates));
}

// Black's best defences after the pair's line must be exactly the moves listed after its ";".
void CheckDefencesAfter(const TVariantPair& pair, TMateSearch& search, const TChessboard& root,
                        std::vector<std::string>& failures) {
    CLine line(root);
    for (const TMove& m : ReadMoveSequence(pair.sMoves, root)) line.Play(m);
    const TChessboard& black = line.Last();
    if (black.WhiteToMove())
        throw ChessException("LookForBestDefencesAfter: the line must end with White's move: " + pair.sMoves);
    std::vector<TMove> expected;
    std::istringstream pieces(pair.sDefences);
    for (std::string piece; std::getline(pieces, piece, ',');)
        for (const TMove& m : ReadMoveSequence(piece, black)) expected.push_back(m);
    const std::vector<TMove> found = BestDefences(search, black);
    if (expected.size() != found.size())
        failures.push_back("Error in count of bestDefences (LookForBestDefencesAfter):\n\nexpected " +
                           std::to_string(expected.size()) + "\nfound " + std::to_string(found.size()));
    for (const TMove& m : expected)
        if (!Contains(found, m))
            failures.push_back(
                "Error in bestDefences (LookForBestDefencesAfter):\n\n expected defence but not found by "
                "engine: " +
                AnswerMoveText(black, m));
}

void CheckDefences(const ProblemEntry& entry, const TChessboard& root, const TRunFacts& run,
                   std::vector<std::string>& failures) {
    TSearchEnvironment env;
    env.store = run.store;
    TMateSearch search(env);
    if (entry.Has(kOptGuiCheckBestDefence | kOptGuiCheckBestDefenceAndAux)) {
        const TVariants variants = ReadVariants(entry).variants;
        const auto main = variants.find(kMainVariantName);
        if (main != variants.end())
            CheckMainVariant(main->second, entry.Has(kOptGuiCheckBestDefenceAndAux), search, root, failures);
    }
    const auto pair = entry.m_mapVariantPairs.find(kBestDefenceVariantName);
    if (pair != entry.m_mapVariantPairs.end()) CheckDefencesAfter(pair->second, search, root, failures);
}

}  // namespace

std::vector<std::string> FailedChecks(const ProblemEntry& entry, const TChessboard& root,
                                      const TRunFacts& run) {
    std::vector<std::string> failures;
    CheckRequirements(entry, run, failures);
    if (!run.bCompleted) return failures;
    try {
        CheckDefences(entry, root, run, failures);
    } catch (const ChessException& e) {
        failures.emplace_back(e.what());
    }
    return failures;
}

}  // namespace moremate
