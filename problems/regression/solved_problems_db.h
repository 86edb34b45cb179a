// The database of solved problems: one SQLite file per collection in the folder
// "SolvedProblemsDB", "<collection>.cpdb" for full regression tests and "<collection>.cspdb" for
// short ones. A row per problem and side of the mirror, replaced by each newer result.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace moremate {

inline constexpr const char* kSolvedProblemsFolder = "SolvedProblemsDB";

struct TSolvedProblemRow {
    unsigned nProblem = 0;
    bool bMirrored = false;
    std::string sPositionId;   // ToAlphanum6 of the position's identifier
    std::string sStipulation;  // "#3"
    std::string sKeys;         // answer form, ", " between keys
    std::string sResult;       // "solved", "no solution", "stopped" or "error"
    long long nMsec = 0;
    std::string sSettings;  // the test's mode label and time limit
    friend bool operator==(const TSolvedProblemRow&, const TSolvedProblemRow&) = default;
};

// The file of a collection's results in `folder`.
std::filesystem::path SolvedProblemsFile(const std::filesystem::path& folder,
                                         const std::filesystem::path& collection, bool shortTest);

// Creates the folder and the file when missing and stores the rows in one transaction, so a
// failure leaves the file as it was. Throws ChessException with SQLite's message.
void StoreSolvedProblems(const std::filesystem::path& file, const std::vector<TSolvedProblemRow>& rows);

// Every row of the file ordered by problem and mirror side (for tests and tools).
std::vector<TSolvedProblemRow> ReadSolvedProblems(const std::filesystem::path& file);

}  // namespace moremate
