// Loading a register file by name, and what the interface says about it.
#include <cstring>
#include <optional>

#include "core/chess_exception.h"
#include "mapped_file.h"
#include "register_file.h"
#include "register_file_header.h"
#include "register_packing.h"
#include "register_pair_commit.h"
#include "register_stream.h"
#include "settings/machine.h"
#include "settings/reporter.h"

namespace moremate {
namespace {

constexpr const char* kRecordReadError = "Error reading file in TAggregatedTemporaryChessboardRegister::Load";
constexpr const char* kNotRegisterFile = "Error - not a temporary register file";
constexpr const char* kDamaged = "Error - the register file is damaged (its checksum does not match)";
constexpr const char* kTooLarge =
    "Error allocating memory: the packed file is larger than this machine can unpack";
constexpr const char* kOlderForm =
    "Note: a register file of the older form, without a header: its side and checksum are not checked";

struct TOpenedFile {
    CFileHandle file{nullptr, &std::fclose};
    uint64_t nSize = 0;
    std::optional<TRegisterFileHeader> header;  // none in a file of the older form
};

// Packed data are unpacked whole in memory, next to the unpacked result.
bool FitsInMemory(uint64_t nPackedBytes) {
    const uint64_t nMemory = PhysicalMemoryBytes();
    return nMemory == 0 || nPackedBytes <= nMemory / 2;
}

// A White file where a Black one is expected, or the other way round.
void CheckSide(const std::optional<TRegisterFileHeader>& header, bool bBlackToMove) {
    if (header && header->bBlackToMove != bBlackToMove)
        throw ChessException(std::string("Error - the file holds positions with ") +
                             SideText(header->bBlackToMove) + ", expected " + SideText(bBlackToMove) +
                             " (White and Black files swapped?)");
}

// Checks a header against the data after it: side, size, checksum.
void CheckHeader(const TRegisterFileHeader& header, std::span<const uint8_t> data, bool bBlackToMove) {
    CheckSide(header, bBlackToMove);
    const uint64_t nData = data.size();
    if (nData != header.nDataBytes)
        throw ChessException("Error - the register file is " +
                             std::string(nData < header.nDataBytes ? "cut short" : "too long") + ": " +
                             std::to_string(nData) + " bytes of data, " + std::to_string(header.nDataBytes) +
                             " expected");
    if (header.form != TRegisterFileForm::Plain && !FitsInMemory(nData)) throw ChessException(kTooLarge);
    if (UpdateCrc32OnThreads(0, data.data(), data.size()) != header.nDataCrc) throw ChessException(kDamaged);
}

// Opens the file and reads its header, or makes sure it is a register file of the older form.
TOpenedFile OpenRegisterFile(const std::filesystem::path& path) {
    TOpenedFile opened;
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        const bool bExists = std::filesystem::exists(path, error);
        throw ChessException(std::string(kRegisterReadError) + (bExists ? " (not a regular file)" : ""));
    }
    opened.nSize = std::filesystem::file_size(path, error);
    opened.file.reset(error ? nullptr : std::fopen(path.c_str(), "rb"));
    if (!opened.file) throw ChessException(kRegisterReadError);
    uint8_t bytes[kRegisterHeaderSize];
    const size_t nRead = std::fread(bytes, 1, sizeof bytes, opened.file.get());
    if (HasRegisterHeaderMagic(bytes, nRead)) {
        std::string sError;
        if (nRead < kRegisterHeaderSize)
            throw ChessException("Error - the register file's header is cut short");
        opened.header = DecodeRegisterHeader(bytes, sError);
        if (!opened.header) throw ChessException(sError);
        return opened;
    }
    const bool bMarker = nRead >= kPackedMagicSize && std::memcmp(bytes, "\xFF\xFF\xFF\xFF", 4) == 0;
    if (nRead >= kPackedMagicSize && !bMarker && !IsPackedMagic(bytes))
        throw ChessException(kNotRegisterFile);
    if (IsPackedMagic(bytes) && !FitsInMemory(opened.nSize)) throw ChessException(kTooLarge);
    return opened;
}

TRegisterLoadResult LoadOpened(TOpenedFile& opened, TAggregatedTemporaryChessboardRegister& reg,
                               size_t nBuckets, const TRegisterLoadOptions& options) {
    TRegisterLoadResult result;
    const CMappedFile mapped(opened.file.get(), opened.nSize, kRecordReadError);
    std::span<const uint8_t> data = mapped.Bytes();
    if (opened.header) {
        data = data.subspan(kRegisterHeaderSize);
        CheckHeader(*opened.header, data, options.bBlackToMove);
    } else {
        result.sNote = kOlderForm;
    }
    result.bComplete = Load(data, reg, nBuckets, options, result.report);
    result.bRead = true;
    const uint64_t nRecords = result.report.nRecords + result.report.nInvalidPositions;
    if (opened.header && nRecords != opened.header->nRecords)
        throw ChessException("Error - the register file holds " + std::to_string(nRecords) +
                             " entries, its header says " + std::to_string(opened.header->nRecords));
    return result;
}

// The Black file must be the one saved with the White file, and must be there when the White
// file says it belongs to a pair.
void CheckPair(const TOpenedFile& white, const std::optional<TOpenedFile>& black) {
    if (!white.header) {
        if (black && black->header)
            throw ChessException("Error - the White and Black files come from different saves");
        return;
    }
    if (white.header->bHasBlackFile && !black)
        throw ChessException("Error - the Black-to-move file of this register is missing");
    if (black &&
        (!black->header || !white.header->bHasBlackFile || black->header->nPairId != white.header->nPairId))
        throw ChessException("Error - the White and Black files come from different saves");
}

struct TOpenedPair {
    TOpenedFile white;
    std::optional<TOpenedFile> black;  // none when not asked for or not there
};

// Opens the White file and, when asked, the Black file, and checks that they belong together.
// Throws ChessException; `failedFile` then names the Black file when the fault is about it.
TOpenedPair OpenPair(const std::filesystem::path& path, bool bWithBlack, std::filesystem::path& failedFile) {
    TOpenedPair pair{OpenRegisterFile(path), std::nullopt};
    CheckSide(pair.white.header, false);
    if (!bWithBlack) return pair;
    failedFile = BlackToMoveFilePath(path);
    if (std::filesystem::exists(failedFile)) {
        pair.black = OpenRegisterFile(failedFile);
        CheckSide(pair.black->header, true);
    }
    CheckPair(pair.white, pair.black);
    failedFile.clear();
    return pair;
}

// The result of `load`, or its failure; a failure about the Black file names it (`failedFile`).
template <class FLoad>
TRegisterLoadResult Catching(const std::filesystem::path& failedFile, FLoad&& load) {
    try {
        return load();
    } catch (const ChessException& exception) {
        TRegisterLoadResult result;
        result.sError = exception.what();
        result.file = failedFile;
        return result;
    }
}

void AddBlackResult(TRegisterLoadResult& result, const TRegisterLoadResult& black) {
    result.bRead = black.bRead;
    result.bComplete = result.bComplete && black.bComplete;
    result.report.nRecords += black.report.nRecords;
    result.report.nInvalidPositions += black.report.nInvalidPositions;
    result.sError = black.sError;
    result.file = black.file;
}

}  // namespace

TRegisterLoadResult LoadRegisterFile(const std::filesystem::path& path,
                                     TAggregatedTemporaryChessboardRegister& reg, size_t nBuckets,
                                     const TRegisterLoadOptions& options) {
    return Catching({}, [&] {
        TOpenedFile opened = OpenRegisterFile(path);
        return LoadOpened(opened, reg, nBuckets, options);
    });
}

TRegisterLoadResult LoadRegisterFile(const std::filesystem::path& path,
                                     TAggregatedTemporaryChessboardRegister& white,
                                     TAggregatedTemporaryChessboardRegister* pBlack, size_t nBuckets,
                                     const TRegisterLoadOptions& options) {
    std::filesystem::path failedFile;
    std::string sRecovery;
    std::optional<TOpenedPair> pair;
    const TRegisterLoadResult opening = Catching(failedFile, [&] {
        sRecovery = RecoverInterruptedSave(path, CRegisterSaveLock(path, false));
        pair.emplace(OpenPair(path, pBlack != nullptr, failedFile));
        return TRegisterLoadResult{};
    });
    if (!pair) return opening;
    TRegisterLoadResult result =
        Catching({}, [&] { return LoadOpened(pair->white, white, nBuckets, options); });
    if (!sRecovery.empty()) result.sNote = sRecovery;
    if (!pair->black || !result.bRead) return result;
    TRegisterLoadOptions blackOptions = options;
    blackOptions.bBlackToMove = true;
    AddBlackResult(result, Catching(BlackToMoveFilePath(path), [&] {
                       return LoadOpened(*pair->black, *pBlack, nBuckets, blackOptions);
                   }));
    return result;
}

size_t LoadBucketCount(int nMoves, uint64_t nRegisterMemoryMB) {
    if (nMoves < 15) return 16'384;
    if (nMoves >= 23 && nRegisterMemoryMB >= 8'193) return 4'194'304;
    return 524'288;
}

std::string LoadReportText(const TRegisterLoadResult& result, const std::filesystem::path& path,
                           int languageId, bool bClearRegisterOnStartSolving) {
    const std::filesystem::path& named = result.file.empty() ? path : result.file;
    std::string text;
    if (!result.bRead)
        text = std::string(kRegisterReadError) + " ";
    else if (!result.bComplete)
        text = "File has been read with errors: ";
    else
        text = languageId == kPolish ? "Plik wczytany: " : "File has been read: ";
    text += named.string();
    if (!result.bRead && result.sError != kRegisterReadError) text += "\n\n" + result.sError;
    if (result.report.nInvalidPositions > 0)
        text += "\n\nNOTE: invalid positions were detected - invalid data?";
    if (bClearRegisterOnStartSolving)
        text += "\n\nNote: Option to clear temporary data on start of analysis (first move) is on";
    if (!result.sNote.empty()) text += "\n\n" + result.sNote;
    return text;
}

}  // namespace moremate
