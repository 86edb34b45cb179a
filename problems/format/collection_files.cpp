#include "collection_files.h"

#include <fstream>

#include "core/chess_exception.h"
#include "record_writer.h"

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

void WriteNewFile(const std::filesystem::path& file, const std::string& text, const std::string& name) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    if (!out) throw ChessException("Error opening file: " + name);
    out << text;
    out.close();
    if (!out) throw ChessException("Error writing file: " + name);
}

void MoveToBackup(const std::filesystem::path& file, const std::string& name) {
    const std::filesystem::path backup = WithSuffix(file, ".BAK");
    std::error_code error;
    std::filesystem::remove(backup, error);
    std::filesystem::rename(file, backup, error);
    if (error) throw ChessException("Error writing file: " + name);
}

}  // namespace

void WriteFileWithBackup(const std::filesystem::path& file, const std::string& text) {
    const std::string name = file.string();
    if (std::filesystem::is_directory(file)) throw ChessException("Error opening file: " + name);
    const std::filesystem::path temporary = WithSuffix(file, ".tmp");
    WriteNewFile(temporary, text, name);
    if (std::filesystem::is_regular_file(file)) MoveToBackup(file, name);
    std::error_code error;
    std::filesystem::rename(temporary, file, error);
    if (error) throw ChessException("Error writing file: " + name);
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
