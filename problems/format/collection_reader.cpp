#include "collection_reader.h"

#include <algorithm>
#include <iterator>

#include "settings/bounded_file.h"

namespace moremate {
namespace {

void AddEntry(ProblemEntry&& entry, std::vector<ProblemEntry>& entries, const TCollectionReading& reading) {
    const auto same = std::ranges::find(entries, entry.m_nNumber, &ProblemEntry::m_nNumber);
    if (same == entries.end()) {
        entries.push_back(std::move(entry));
        return;
    }
    *same = std::move(entry);
    if (CReporter* reporter = reading.questions.pReporter)
        reporter->Report(ReportTitle(ReportKind::Warning, reading.questions.nLanguage),
                         "Problem id " + std::to_string(same->m_nNumber) +
                             " defined more than once - the last definition prevails.");
}

}  // namespace

void SkipEncodingMark(CProblemLexer& lexer, std::string_view text) {
    if (text.starts_with("\xEF\xBB\xBF")) lexer.Rewind(3);
    const size_t start = lexer.Position();
    if (ToUpper(lexer.Next(false)) == "UTF" && lexer.Next(false) == "-" && lexer.Next(false) == "8") return;
    lexer.Rewind(start);
}

void ReadCollectionText(std::string_view text, std::vector<ProblemEntry>& entries,
                        const TCollectionReading& reading) {
    CProblemLexer lexer(text);
    SkipEncodingMark(lexer, text);
    for (size_t record = 1;; ++record) {
        std::optional<uint32_t> number;
        try {
            const std::string lexeme = lexer.Next(false);
            if (lexeme.empty()) return;
            number = ToNumber(lexeme);
            std::optional<ProblemEntry> entry = ReadRecord(lexeme, lexer, reading.questions);
            if (!entry) continue;
            if (reading.log)
                reading.log("Problem " + std::to_string(entry->m_nNumber) + " read from file.\n");
            AddEntry(std::move(*entry), entries, reading);
        } catch (const ChessException& error) {
            throw CCollectionReadError(error.what(), record, number, lexer.Line());
        }
    }
}

void ReadCollectionFile(const std::filesystem::path& file, std::vector<ProblemEntry>& entries, bool append,
                        const TCollectionReading& reading) {
    const std::string text = ReadTextFile(file);
    if (!append) entries.clear();
    ReadCollectionText(text, entries, reading);
}

}  // namespace moremate
