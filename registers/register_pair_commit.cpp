#include "register_pair_commit.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <fstream>
#include <set>
#include <string_view>

#include "core/chess_exception.h"
#include "register_file.h"
#include "register_stream.h"
#include "settings/kill_test_pause.h"

namespace moremate {
namespace {

constexpr const char* kWithBlack = "white+black\n";
constexpr const char* kWhiteOnly = "white\n";
constexpr const char* kCommitError = "Cannot finish saving the temporary register";

std::filesystem::path WithSuffix(const std::filesystem::path& file, const char* sSuffix) {
    std::filesystem::path result = file;
    result += sSuffix;
    return result;
}

// Makes the renames in the folder last across a power loss too.
void SyncFolder(const std::filesystem::path& file) {
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (fd < 0) return;
    fsync(fd);
    close(fd);
}

void Rename(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::error_code error;
    std::filesystem::rename(from, to, error);
    if (error)
        throw ChessException(std::string(kCommitError) + ": " + to.string() + " (" + error.message() + ")");
}

void WriteCommitFile(const std::filesystem::path& whiteFile, bool bWithBlack) {
    const std::filesystem::path commit = CommitFilePath(whiteFile);
    const std::filesystem::path temporary = SavingPath(commit);
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << (bWithBlack ? kWithBlack : kWhiteOnly);
        if (!out.flush()) {
            std::error_code error;
            std::filesystem::remove(temporary, error);
            throw ChessException(FileErrorText(kCommitError, temporary.string()));
        }
    }
    Rename(temporary, commit);
    SyncFolder(commit);
}

bool CommittedWithBlack(const std::filesystem::path& commit) {
    std::ifstream in(commit, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    return text == kWithBlack;
}

// The renames of a committed pair; each step can be repeated after a kill.
void ApplyCommit(const std::filesystem::path& whiteFile) {
    const std::filesystem::path commit = CommitFilePath(whiteFile);
    const std::filesystem::path blackFile = BlackToMoveFilePath(whiteFile);
    if (std::filesystem::exists(SavingPath(blackFile))) {
        Rename(SavingPath(blackFile), blackFile);
    } else if (!CommittedWithBlack(commit)) {
        std::error_code error;
        std::filesystem::remove(blackFile, error);
    }
    PauseForKillTest("register-renames");
    if (std::filesystem::exists(SavingPath(whiteFile))) Rename(SavingPath(whiteFile), whiteFile);
    PauseForKillTest("register-descriptor");
    const std::filesystem::path descriptor = DescriptorPath(whiteFile);
    if (std::filesystem::exists(SavingPath(descriptor))) Rename(SavingPath(descriptor), descriptor);
    SyncFolder(whiteFile);
    std::error_code error;
    std::filesystem::remove(commit, error);
}

// The White register file of a pair whose save left `file` behind, or "" for any other file.
std::filesystem::path WhiteFileOfLeftover(const std::filesystem::path& file) {
    std::string name = file.filename().string();
    for (const std::string_view suffix : {".saving", ".commit"})
        if (name.ends_with(suffix)) name.resize(name.size() - suffix.size());
    if (name == file.filename().string()) return "";
    if (name.ends_with(".ini")) name.resize(name.size() - 4);
    if (!name.ends_with(kRegisterFileExtension)) return "";
    const std::string black = std::string(".black") + kRegisterFileExtension;
    if (name.ends_with(black)) name.replace(name.size() - black.size(), black.size(), kRegisterFileExtension);
    return file.parent_path() / name;
}

}  // namespace

std::filesystem::path SavingPath(const std::filesystem::path& file) {
    return WithSuffix(file, ".saving");
}

std::filesystem::path CommitFilePath(const std::filesystem::path& whiteFile) {
    return WithSuffix(whiteFile, ".commit");
}

std::filesystem::path DescriptorPath(const std::filesystem::path& whiteFile) {
    return WithSuffix(whiteFile, ".ini");
}

void CommitRegisterPair(const std::filesystem::path& whiteFile, bool bWithBlack) {
    WriteCommitFile(whiteFile, bWithBlack);
    ApplyCommit(whiteFile);
}

void RemoveSavingFiles(const std::filesystem::path& whiteFile) {
    std::error_code error;
    std::filesystem::remove(SavingPath(whiteFile), error);
    std::filesystem::remove(SavingPath(BlackToMoveFilePath(whiteFile)), error);
    std::filesystem::remove(SavingPath(CommitFilePath(whiteFile)), error);
    std::filesystem::remove(SavingPath(DescriptorPath(whiteFile)), error);
}

namespace {

std::filesystem::path FolderOf(const std::filesystem::path& file) {
    return file.has_parent_path() ? file.parent_path() : ".";
}

}  // namespace

CRegisterSaveLock::CRegisterSaveLock(const std::filesystem::path& file, bool bWait)
    : m_lock(FolderOf(file), O_RDONLY | O_DIRECTORY, bWait) {}

std::string RecoverInterruptedSave(const std::filesystem::path& whiteFile, const CRegisterSaveLock& lock) {
    if (!lock.Held()) return "";
    if (std::filesystem::exists(CommitFilePath(whiteFile))) {
        ApplyCommit(whiteFile);
        return "Completed the interrupted save of " + whiteFile.string();
    }
    const auto leftover = [](const std::filesystem::path& file) {
        return std::filesystem::exists(SavingPath(file));
    };
    if (!leftover(whiteFile) && !leftover(BlackToMoveFilePath(whiteFile)) &&
        !leftover(CommitFilePath(whiteFile)) && !leftover(DescriptorPath(whiteFile)))
        return "";
    RemoveSavingFiles(whiteFile);
    return "Removed the unfinished files of an interrupted save of " + whiteFile.string();
}

std::vector<std::string> RecoverInterruptedSaves(const std::filesystem::path& folder) {
    const CRegisterSaveLock lock(folder / kRegisterFileExtension, false);
    if (!lock.Held()) return {};
    std::set<std::filesystem::path> whiteFiles;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        if (std::filesystem::path white = WhiteFileOfLeftover(entry.path()); !white.empty())
            whiteFiles.insert(white);
    std::vector<std::string> lines;
    for (const std::filesystem::path& white : whiteFiles)
        lines.push_back(RecoverInterruptedSave(white, lock));
    return lines;
}

}  // namespace moremate
