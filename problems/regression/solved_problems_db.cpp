#include "solved_problems_db.h"

#include <sqlite3.h>

#include <memory>

#include "core/chess_exception.h"

namespace moremate {
namespace {

const char* const kSchema =
    "CREATE TABLE IF NOT EXISTS solved ("
    " problem INTEGER NOT NULL, mirrored INTEGER NOT NULL, position TEXT NOT NULL,"
    " stipulation TEXT NOT NULL, keys TEXT NOT NULL, result TEXT NOT NULL, msec INTEGER NOT NULL,"
    " settings TEXT NOT NULL, stored TEXT NOT NULL DEFAULT CURRENT_TIMESTAMP,"
    " PRIMARY KEY (problem, mirrored))";
const char* const kInsert =
    "INSERT OR REPLACE INTO solved (problem, mirrored, position, stipulation, keys, result, msec, settings)"
    " VALUES (?, ?, ?, ?, ?, ?, ?, ?)";
const char* const kSelect =
    "SELECT problem, mirrored, position, stipulation, keys, result, msec, settings FROM solved"
    " ORDER BY problem, mirrored";

struct CloseDb {
    void operator()(sqlite3* db) const { sqlite3_close(db); }
};
struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using CDatabase = std::unique_ptr<sqlite3, CloseDb>;
using CStatement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

[[noreturn]] void Fail(sqlite3* db, const std::filesystem::path& file) {
    throw ChessException("Solved problems database " + file.string() + ": " + sqlite3_errmsg(db));
}

CDatabase Open(const std::filesystem::path& file, int flags) {
    sqlite3* raw = nullptr;
    const int rc = sqlite3_open_v2(file.string().c_str(), &raw, flags, nullptr);
    CDatabase db(raw);
    if (rc != SQLITE_OK) Fail(db.get(), file);
    return db;
}

void Execute(sqlite3* db, const char* sql, const std::filesystem::path& file) {
    if (sqlite3_exec(db, sql, nullptr, nullptr, nullptr) != SQLITE_OK) Fail(db, file);
}

CStatement Prepare(sqlite3* db, const char* sql, const std::filesystem::path& file) {
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &raw, nullptr) != SQLITE_OK) Fail(db, file);
    return CStatement(raw);
}

void BindText(sqlite3_stmt* statement, int index, const std::string& text) {
    sqlite3_bind_text(statement, index, text.c_str(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

void Insert(sqlite3* db, sqlite3_stmt* statement, const TSolvedProblemRow& row,
            const std::filesystem::path& file) {
    sqlite3_reset(statement);
    sqlite3_bind_int64(statement, 1, row.nProblem);
    sqlite3_bind_int(statement, 2, row.bMirrored ? 1 : 0);
    BindText(statement, 3, row.sPositionId);
    BindText(statement, 4, row.sStipulation);
    BindText(statement, 5, row.sKeys);
    BindText(statement, 6, row.sResult);
    sqlite3_bind_int64(statement, 7, row.nMsec);
    BindText(statement, 8, row.sSettings);
    if (sqlite3_step(statement) != SQLITE_DONE) Fail(db, file);
}

std::string Text(sqlite3_stmt* statement, int column) {
    const unsigned char* text = sqlite3_column_text(statement, column);
    return text ? reinterpret_cast<const char*>(text) : "";
}

TSolvedProblemRow ReadRow(sqlite3_stmt* statement) {
    TSolvedProblemRow row;
    row.nProblem = static_cast<unsigned>(sqlite3_column_int64(statement, 0));
    row.bMirrored = sqlite3_column_int(statement, 1) != 0;
    row.sPositionId = Text(statement, 2);
    row.sStipulation = Text(statement, 3);
    row.sKeys = Text(statement, 4);
    row.sResult = Text(statement, 5);
    row.nMsec = sqlite3_column_int64(statement, 6);
    row.sSettings = Text(statement, 7);
    return row;
}

}  // namespace

std::filesystem::path SolvedProblemsFile(const std::filesystem::path& folder,
                                         const std::filesystem::path& collection, bool shortTest) {
    return folder / collection.stem().concat(shortTest ? ".cspdb" : ".cpdb");
}

void StoreSolvedProblems(const std::filesystem::path& file, const std::vector<TSolvedProblemRow>& rows) {
    std::error_code error;
    if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path(), error);
    if (error)
        throw ChessException("Cannot create the folder " + file.parent_path().string() + " (" +
                             error.message() + ")");
    const CDatabase db = Open(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    Execute(db.get(), kSchema, file);
    Execute(db.get(), "BEGIN", file);
    const CStatement insert = Prepare(db.get(), kInsert, file);
    for (const TSolvedProblemRow& row : rows) Insert(db.get(), insert.get(), row, file);
    Execute(db.get(), "COMMIT", file);
}

std::vector<TSolvedProblemRow> ReadSolvedProblems(const std::filesystem::path& file) {
    const CDatabase db = Open(file, SQLITE_OPEN_READONLY);
    const CStatement select = Prepare(db.get(), kSelect, file);
    std::vector<TSolvedProblemRow> rows;
    int rc;
    while ((rc = sqlite3_step(select.get())) == SQLITE_ROW) rows.push_back(ReadRow(select.get()));
    if (rc != SQLITE_DONE) Fail(db.get(), file);
    return rows;
}

}  // namespace moremate
