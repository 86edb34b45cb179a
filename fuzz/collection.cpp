// `.cp` collections with the annotations of their records: read, the annotations of each record
// read as the interface reads them, and the collection written back.
#include "core/chess_exception.h"
#include "fuzz_support.h"
#include "problems/annotations/award_places.h"
#include "problems/annotations/database_links.h"
#include "problems/annotations/foreign_problem.h"
#include "problems/annotations/problem_tags.h"
#include "problems/annotations/problem_variants.h"
#include "problems/annotations/problem_year.h"
#include "problems/annotations/register_reference.h"
#include "problems/format/collection_reader.h"
#include "problems/format/record_writer.h"

using namespace moremate;

namespace {

void ReadAnnotations(const ProblemEntry& entry) {
    Tags(entry);
    TmpRegNumber(entry);
    ReadVariants(entry);
    FindYear(entry.m_sDescription);
    FindDatabaseReferences(entry.m_sDescription);
    RecognizeAward(entry.m_sDescription);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text = fuzz::Text(data, size);
    std::vector<ProblemEntry> entries;
    try {
        ReadCollectionText(text, entries, TCollectionReading{});
    } catch (const ChessException&) {
    }
    for (const ProblemEntry& entry : entries) {
        try {
            ReadAnnotations(entry);
        } catch (const ChessException&) {
        }
    }
    WriteCollectionText(entries);
    try {
        RecognizeForeignProblem(text);
    } catch (const ChessException&) {
    }
    return 0;
}
