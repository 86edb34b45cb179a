#include "register_pair_commit.h"

#include <fcntl.h>
#include <unistd.h>

#include <fstream>

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
    SyncFolder(whiteFile);
    std::error_code error;
    std::filesystem::remove(commit, error);
}

}  // namespace

std::filesystem::path SavingPath(const std::filesystem::path& file) {
    return WithSuffix(file, ".saving");
}

std::filesystem::path CommitFilePath(const std::filesystem::path& whiteFile) {
    return WithSuffix(whiteFile, ".commit");
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
}

std::string RecoverInterruptedSave(const std::filesystem::path& whiteFile) {
    if (std::filesystem::exists(CommitFilePath(whiteFile))) {
        ApplyCommit(whiteFile);
        return "Completed the interrupted save of " + whiteFile.string();
    }
    const bool bLeftovers = std::filesystem::exists(SavingPath(whiteFile)) ||
                            std::filesystem::exists(SavingPath(BlackToMoveFilePath(whiteFile))) ||
                            std::filesystem::exists(SavingPath(CommitFilePath(whiteFile)));
    if (!bLeftovers) return "";
    RemoveSavingFiles(whiteFile);
    return "Removed the unfinished files of an interrupted save of " + whiteFile.string();
}

}  // namespace moremate
