// Loading a register file by name, and what the interface says about it.
#include "core/chess_exception.h"
#include "register_file.h"
#include "register_stream.h"
#include "settings/reporter.h"

namespace moremate {
namespace {

constexpr size_t kReadBufferSize = size_t{1} << 20;

}  // namespace

TRegisterLoadResult LoadRegisterFile(const std::filesystem::path& path,
                                     TAggregatedTemporaryChessboardRegister& reg, size_t nBuckets,
                                     const TRegisterLoadOptions& options) {
    TRegisterLoadResult result;
    std::error_code error;
    const uint64_t nFileSize = std::filesystem::file_size(path, error);
    CFileHandle file(error ? nullptr : std::fopen(path.c_str(), "rb"), &std::fclose);
    if (!file) {
        result.sError = kRegisterReadError;
        return result;
    }
    std::setvbuf(file.get(), nullptr, _IOFBF, kReadBufferSize);
    try {
        result.bComplete = Load(file.get(), reg, nBuckets, nFileSize, options, result.report);
        result.bRead = true;
    } catch (const ChessException& exception) {
        result.sError = exception.what();
    }
    return result;
}

TRegisterLoadResult LoadRegisterFile(const std::filesystem::path& path,
                                     TAggregatedTemporaryChessboardRegister& white,
                                     TAggregatedTemporaryChessboardRegister* pBlack, size_t nBuckets,
                                     const TRegisterLoadOptions& options) {
    TRegisterLoadResult result = LoadRegisterFile(path, white, nBuckets, options);
    const std::filesystem::path blackPath = BlackToMoveFilePath(path);
    if (!pBlack || !result.bRead || !std::filesystem::exists(blackPath)) return result;
    TRegisterLoadOptions blackOptions = options;
    blackOptions.bBlackToMove = true;
    const TRegisterLoadResult black = LoadRegisterFile(blackPath, *pBlack, nBuckets, blackOptions);
    result.bRead = black.bRead;
    result.bComplete = result.bComplete && black.bComplete;
    result.report.nRecords += black.report.nRecords;
    result.report.nInvalidPositions += black.report.nInvalidPositions;
    result.sError = black.sError;
    return result;
}

size_t LoadBucketCount(int nMoves, uint64_t nRegisterMemoryMB) {
    if (nMoves < 15) return 16'384;
    if (nMoves >= 23 && nRegisterMemoryMB >= 8'193) return 4'194'304;
    return 524'288;
}

std::string LoadReportText(const TRegisterLoadResult& result, const std::filesystem::path& path,
                           int languageId, bool bClearRegisterOnStartSolving) {
    std::string text;
    if (!result.bRead)
        text = std::string(kRegisterReadError) + " ";
    else if (!result.bComplete)
        text = "File has been read with errors: ";
    else
        text = languageId == kPolish ? "Plik wczytany: " : "File has been read: ";
    text += path.string();
    if (result.report.nInvalidPositions > 0)
        text += "\n\nNOTE: invalid positions were detected - invalid data?";
    if (bClearRegisterOnStartSolving)
        text += "\n\nNote: Option to clear temporary data on start of analysis (first move) is on";
    return text;
}

}  // namespace moremate
