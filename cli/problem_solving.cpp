#include "problem_solving.h"

#include <fmt/core.h>

#include <algorithm>

#include "core/chess_exception.h"
#include "core/notation.h"
#include "engine/run_register.h"
#include "engine/solver.h"
#include "problems/problem_moves.h"
#include "problems/solving_task.h"
#include "progress_line.h"

namespace moremate::cli {
namespace {

bool MoveLess(const TMove& a, const TMove& b) {
    return std::tuple(a.from, a.to, a.PromotedType()) < std::tuple(b.from, b.to, b.PromotedType());
}

// Full answers must agree with every key found; in single-solution mode the key found must be
// one of them. Expected move orders are not compared here.
std::optional<bool> Matches(const ProblemEntry& entry, const TSolveResult& result, bool allSolutions) {
    if (entry.m_answerKind != AnswerKind::Full || result.stopped) return std::nullopt;
    std::vector<TMove> expected = entry.m_vAnswer, found;
    for (const TKey& k : result.keys) found.push_back(k.move);
    std::sort(expected.begin(), expected.end(), MoveLess);
    std::sort(found.begin(), found.end(), MoveLess);
    if (allSolutions) return found == expected;
    if (found.empty()) return expected.empty();
    return std::find(expected.begin(), expected.end(), found.front()) != expected.end();
}

std::string ResultWord(const TSolveResult& r) {
    if (!r.keys.empty()) return "solved";
    if (r.stopped || r.result == kDoubtful) return "stopped";
    return "no solution";
}

void Describe(const TChessboard& root, const TSolveResult& result, TProblemReport& report) {
    report.result = ResultWord(result);
    for (const TKey& k : result.keys) {
        report.keys.push_back(AnswerMoveText(root, k.move));
        report.keysLong.push_back(MoveToText(root, k.move));
    }
    if (!result.keys.empty()) report.mainLine = SolutionLine(root, result.keys.front().mainLine);
    report.msec = result.msec;
    report.nodes = result.nodes;
}

}  // namespace

TProblemReport SolveProblem(const ProblemEntry& entry, const TSolveSettings& settings, TProgramContext& context,
                            std::unique_ptr<CRunRegister>& runRegister) {
    TProblemReport report;
    report.problem = entry.m_nNumber;
    report.stipulation = fmt::format("{}#{}", entry.m_type == ProblemType::Selfmate ? "s" : "",
                                     entry.StipulationMoves());
    if (entry.m_answerKind == AnswerKind::Full) {
        report.expected.emplace();
        for (const TMove& m : entry.m_vAnswer) report.expected->push_back(AnswerMoveText(entry.m_position.board, m));
    }
    try {
        if (entry.m_type != ProblemType::Directmate)
            throw ChessException("Only mate problems (type=1) supported currently.");
        TSolvingTask task = MakeSolvingTask(entry);
        task.position.problem = &task.root;
        if (!runRegister || context.options.m_bClearRegisterOnStartSolving)
            runRegister = std::make_unique<CRunRegister>(context.options);
        std::atomic<uint64_t> progress{0};
        TSolveRequest request;
        request.position = task.position;
        request.allSolutions = settings.allSolutions || entry.Has(kOptAllSolutions);
        request.timeLimitSeconds = settings.timeLimitSeconds;
        request.environment.store = runRegister.get();
        request.environment.progressNodes = &progress;
        const CProgressLine progressLine(progress, [&runRegister] { return runRegister->FillPercent(); });
        std::optional<CSearchLog> moveLog;
        if (context.options.m_bLogMoves) {
            moveLog.emplace(".", entry.m_nNumber, 0);
            request.environment.log = &*moveLog;
            request.environment.logFolder = ".";
        }
        const TSolveResult result = Solve(request, nullptr);
        if (!result.error.empty()) throw ChessException(result.error);
        Describe(task.position, result, report);
        report.match = Matches(entry, result, request.allSolutions);
    } catch (const ChessException& e) {
        report.result = "error";
        report.error = e.what();
    }
    return report;
}

}  // namespace moremate::cli
