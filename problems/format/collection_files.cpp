#include "collection_files.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "core/chess_exception.h"
#include "record_writer.h"
#include "settings/kill_test_pause.h"

namespace moremate {

const char* const kNewCollectionText =
    "UTF-8\n"
    "\n"
    "1 #2\n"
    "{\n"
    "\tDesc: Click here to change problem description\n"
    "\tWhite: Ke1\n"
    "\tBlack: Ke8\n"
    "}\n";

namespace {

std::filesystem::path WithSuffix(const std::filesystem::path& file, const char* suffix) {
    std::filesystem::path result = file;
    result += suffix;
    return result;
}

[[noreturn]] void ThrowFileError(const char* sMessage, const std::string& name,
                                 const std::error_code& error) {
    throw ChessException(sMessage + name + " (" + error.message() + ")");
}

// Writes the file whole and makes it durable; a file that could not be written is removed.
void WriteNewFile(const std::filesystem::path& file, const std::string& text, const std::string& name) {
    std::FILE* pFile = std::fopen(file.c_str(), "wb");
    if (!pFile) ThrowFileError("Error opening file: ", name, std::error_code(errno, std::generic_category()));
    bool bWritten = std::fwrite(text.data(), 1, text.size(), pFile) == text.size() &&
                    std::fflush(pFile) == 0 && fsync(fileno(pFile)) == 0;
    std::error_code error(bWritten ? 0 : errno, std::generic_category());
    if (std::fclose(pFile) != 0 && bWritten) {
        bWritten = false;
        error.assign(errno, std::generic_category());
    }
    if (!bWritten) {
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
        ThrowFileError("Error writing file: ", name, error);
    }
}

// The backup is a second name of the old file, put in place in one rename: the file itself is
// never missing, and a backup is there from the first save on.
void MakeBackup(const std::filesystem::path& file, const std::string& name) {
    const std::filesystem::path backup = WithSuffix(file, ".BAK");
    const std::filesystem::path temporary = WithSuffix(backup, ".tmp");
    std::error_code error;
    std::filesystem::remove(temporary, error);
    std::filesystem::create_hard_link(file, temporary, error);
    if (error) std::filesystem::copy_file(file, temporary, error);
    if (!error) std::filesystem::rename(temporary, backup, error);
    if (!error) return;
    std::error_code ignored;
    std::filesystem::remove(temporary, ignored);
    ThrowFileError("Error writing file: ", name, error);
}

}  // namespace

void WriteFileWithBackup(const std::filesystem::path& file, const std::string& text) {
    const std::string name = file.string();
    if (std::filesystem::is_directory(file))
        throw ChessException("Error opening file: " + name + " (a folder)");
    const std::filesystem::path temporary = WithSuffix(file, ".tmp");
    WriteNewFile(temporary, text, name);
    std::error_code error;
    if (std::filesystem::is_regular_file(file)) {
        try {
            MakeBackup(file, name);
        } catch (const ChessException&) {
            std::filesystem::remove(temporary, error);
            throw;
        }
    }
    PauseForKillTest("collection");
    std::filesystem::rename(temporary, file, error);
    if (!error) return;
    std::error_code ignored;
    std::filesystem::remove(temporary, ignored);
    ThrowFileError("Error writing file: ", name, error);
}

void WriteCollectionFile(const std::filesystem::path& file, const std::vector<ProblemEntry>& entries) {
    WriteFileWithBackup(file, WriteCollectionText(entries));
}

std::filesystem::path WriteScratchCopy(const ProblemEntry& entry) {
    const std::filesystem::path folder = std::filesystem::current_path() / "tmp";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw ChessException("Error opening file: " + folder.string());
    std::filesystem::path file;
    for (int number = 1; file.empty() || std::filesystem::exists(file); ++number)
        file = folder / (std::to_string(number) + ".cp");
    WriteNewFile(file, WriteCollectionText({entry}), file.string());
    return file;
}

bool CreateNewCollection(const std::filesystem::path& file, const TUserQuestions& questions) {
    if (std::filesystem::exists(file) &&
        !AskYesNo(questions,
                  "File " + file.string() + " already exists.\nDo you want to replace it with a new file?"))
        return false;
    WriteFileWithBackup(file, kNewCollectionText);
    return true;
}

}  // namespace moremate
