#include "problem_arg.h"

#include <fmt/core.h>

#include "core/chess_exception.h"
#include "problems/format/collection_reader.h"

namespace moremate::cli {

std::vector<ProblemEntry> ReadProblems(const std::string& file, TProgramContext& context) {
    std::vector<ProblemEntry> entries;
    ReadCollectionFile(file, entries, false, TCollectionReading{{&context.reporter, 1}, {}});
    return entries;
}

ProblemEntry& FindProblem(std::vector<ProblemEntry>& entries, unsigned number) {
    for (ProblemEntry& e : entries)
        if (e.m_nNumber == number) return e;
    throw ChessException(fmt::format("Problem {} not found", number));
}

}  // namespace moremate::cli
