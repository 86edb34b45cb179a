// Helpers of the problem tests: collections read from inline text, and a scratch folder.
#pragma once

#include "tests/support/temp_folder.h"

#include <filesystem>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "problems/format/collection_reader.h"
#include "problems/format/record_writer.h"

namespace moremate {

// Failed comparisons of records show their text.
inline void PrintTo(const ProblemEntry& entry, std::ostream* out) {
    *out << WriteRecord(entry);
}

}  // namespace moremate

namespace moremate::testing {

// The position of most records: White Ke1, Qa7, Rh1, Black Kc1; the test data folder.
inline const std::string kFen = "8/Q7/8/8/8/8/8/2k1K2R w K - 0 1";
inline const std::string kRecordBody = "{\n\tFEN: " + kFen + "\n}\n";
inline const std::filesystem::path kData = MOREMATE_TEST_DATA;

inline std::vector<ProblemEntry> ReadAll(const std::string& text, const TCollectionReading& reading = {}) {
    std::vector<ProblemEntry> entries;
    ReadCollectionText(text, entries, reading);
    return entries;
}

// The single record of `text`.
inline ProblemEntry ReadOne(const std::string& text) {
    const std::vector<ProblemEntry> entries = ReadAll(text);
    if (entries.size() != 1) throw std::logic_error("expected one record");
    return entries.front();
}

// The message of the fault that reading `text` raises, or "" when it reads.
inline std::string ReadError(const std::string& text) {
    try {
        ReadAll(text);
    } catch (const CCollectionReadError& error) {
        return error.what();
    }
    return "";
}

inline std::string FileText(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace moremate::testing
