// Bulk paste: several problems taken in at once from one text. The text falls into pieces at
// blank lines, at "---" lines, before "\begin{diagram}" and after "\end{diagram}"; each piece is
// problem text in a foreign layout (RecognizeForeignProblem), FEN lines (one problem each, "#n"
// after the FEN gives the stipulation, else #2), or records of a problem file. A piece that
// cannot be read, and a directmate longer than the limit, are left out with the reason; the rest
// are taken.
#pragma once

#include <string>
#include <vector>

#include "problems/format/problem_entry.h"
#include "problems/format/user_questions.h"

namespace moremate::ui {

struct TBulkPaste {
    std::vector<ProblemEntry> entries;  // numbered 0: the collection numbers them when added
    std::vector<std::string> faults;    // one line per piece left out
};

// `maxMoves`: MaxStipulationForBulkInsert. `prizedOnly`: only problems with an award that names
// a prize (a place tag, or an award text naming a prize without a place) are taken.
TBulkPaste ReadBulkPaste(const std::string& text, int maxMoves, bool prizedOnly,
                         const TUserQuestions& questions);

}  // namespace moremate::ui
