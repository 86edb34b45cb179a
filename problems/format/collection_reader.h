// Reading a whole problem collection: record after record until the end of the text, each added
// to the list, a later record of the same number replacing the earlier one in its place.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/chess_exception.h"
#include "problem_entry.h"
#include "record_reader.h"

namespace moremate {

struct TCollectionReading {
    TUserQuestions questions;                     // also receives the warnings
    std::function<void(const std::string&)> log;  // "Problem %d read from file.\n" per record
};

// The syntax fault that stopped reading a collection: the message, and where it was found.
class CCollectionReadError : public ChessException {
  public:
    CCollectionReadError(const std::string& message, size_t nRecord, std::optional<uint32_t> nProblem,
                         int nLine)
        : ChessException(message), m_nRecord(nRecord), m_nProblem(nProblem), m_nLine(nLine) {}

    size_t Record() const { return m_nRecord; }  // ordinal of the record in the text, from 1
    std::optional<uint32_t> Problem() const { return m_nProblem; }  // its number, when it was read
    int Line() const { return m_nLine; }

  private:
    size_t m_nRecord;
    std::optional<uint32_t> m_nProblem;
    int m_nLine;
};

// Skips a byte order mark and the "UTF-8" that begin a collection, when they are there.
void SkipEncodingMark(CProblemLexer& lexer, std::string_view text);

// Adds every record of `text` to `entries`. A leading "UTF-8" marks the encoding. On a syntax
// fault it throws CCollectionReadError; the records read before it stay in `entries`.
void ReadCollectionText(std::string_view text, std::vector<ProblemEntry>& entries,
                        const TCollectionReading& reading);

// Reads the file `file` into `entries`, which is emptied first unless `append`. Throws
// ChessException "Error opening file: " when the file cannot be read, else as above.
void ReadCollectionFile(const std::filesystem::path& file, std::vector<ProblemEntry>& entries, bool append,
                        const TCollectionReading& reading);

}  // namespace moremate
