// Register files: the contents of a temporary register written to disk and read back.
//
// The data are a stream of groups. A group is a 12-byte marker (u32 0xFFFFFFFF, u64
// configuration key: 0 for the mate / no-mate entries, else the doubtfulness configuration)
// followed by 68-byte entry records (u16 MovesMate, u16 MovesNoMate, the 64 piece bytes of the
// position key). A marker is told from a record by its first two u16 values both being 0xFFFF.
// The stream is stored plain or in one of the packed forms of register_packing.h.
//
// A save writes level by level, shortest first (see SaveExact), so that a file cut at a byte
// limit keeps the most valuable results. A level's marker of key 0 is always written; the marker
// of a doubtfulness configuration only before its first record of the level. Saving reads the
// live register bucket by bucket, each under its lock: consistent per bucket, not as a whole.
//
// A solving run keeps positions with White to move and those with Black to move in two
// registers. The White register is the file itself; the Black register goes to a companion file
// beside it (BlackToMoveFilePath). Each file begins with a header (register_file_header.h) that
// names its side, ties the two files of a save together and guards the data by a checksum; the
// pair is put in place as one (register_pair_commit.h). Files of the older form, without the
// header, are still read.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <limits>
#include <span>
#include <string>

#include "aggregated_register.h"

namespace moremate {

// The message of a register file that cannot be opened or read.
inline constexpr const char* kRegisterReadError = "Error reading file";

class CRegisterLevels;
class CRegisterStream;

enum class TRegisterFileForm { Plain, Lz4, Lz4e, Lz4Container, Lz4eContainer };

inline constexpr uint64_t kNoByteLimit = std::numeric_limits<uint64_t>::max();
inline constexpr size_t kRegisterMarkerSize = 12;
inline constexpr size_t kRegisterRecordSize = 68;
inline constexpr const char* kSavedRegisterFolder = "SavedTmpRegisterData";
inline constexpr const char* kRegisterFileExtension = ".tmpReg";
inline constexpr const char* kLoadScratchFile = "UncompressedTmpRegLoadData.tmpReg";
inline constexpr const char* kLoadLogFile = "TmpRegLoad.log";

struct TRegisterSaveOptions {
    TRegisterFileForm form = TRegisterFileForm::Plain;
    uint64_t nByteLimit = kNoByteLimit;  // on the stream before packing
    unsigned nCompressionThreads = 0;    // for the containers; 0: one per processor
    bool bLogCompression = false;        // one line per block into the file's name + ".log"
    // Writes the descriptor that belongs to the saved files to the path given (a temporary name,
    // put in place together with them); false when it could not.
    std::function<bool(const std::filesystem::path&)> writeDescriptor;
};

struct TRegisterSaveResult {
    uint64_t nStreamBytes = 0;  // markers and records written
    bool bComplete = true;      // false when the byte limit cut the save short
};

// Where and how loading reports what it read.
struct TRegisterLoadOptions {
    std::filesystem::path workingFolder = ".";  // for the scratch copy and the load log
    bool bLogToFile = false;                    // the LogToFileTmpRegLoad option
    bool bBlackToMove = false;                  // the side to move of the positions, for checking them
    unsigned nThreads = 0;                      // threads sharing the records out; 0: the processors
};

struct TRegisterLoadReport {
    uint64_t nRecords = 0;           // entries stored
    uint64_t nInvalidPositions = 0;  // entries skipped, their position breaking the rules
};

struct TRegisterLoadResult {
    bool bRead = false;      // the file was read, possibly with errors
    bool bComplete = false;  // every record was read
    TRegisterLoadReport report;
    std::string sError;          // the failure's message when not read
    std::filesystem::path file;  // the Black-to-move file when the message is about it
    std::string sNote;           // what the user should know besides: leftovers of a killed save
};

// Writes the marker of key 0 and the records of level n (see register_levels.h), then frees
// them. Adds 12 per marker and 68 per record to `nCount` and returns false once a further
// record would take the count beyond `nByteLimit`. Throws ChessException when the file cannot
// be written.
bool SaveExact(CRegisterLevels& levels, CRegisterStream& out, uint64_t nByteLimit, uint64_t& nCount,
               uint16_t n);

// Every level with records in ascending order, until the byte limit stops it.
TRegisterSaveResult SaveLevels(const TAggregatedTemporaryChessboardRegister& reg, CRegisterStream& out,
                               uint64_t nByteLimit);

// Writes the file under a temporary name and renames it; a Black-to-move file beside it is
// removed. Throws ChessException on failure, leaving the old file as it was.
TRegisterSaveResult SaveRegisterFile(const std::filesystem::path& path,
                                     const TAggregatedTemporaryChessboardRegister& reg,
                                     const TRegisterSaveOptions& options);
// The White register to `path`, the Black one, when given, to its companion file, the two put in
// place as one.
TRegisterSaveResult SaveRegisterFile(const std::filesystem::path& path,
                                     const TAggregatedTemporaryChessboardRegister& white,
                                     const TAggregatedTemporaryChessboardRegister* pBlack,
                                     const TRegisterSaveOptions& options);

// "AutoSave.tmpReg" -> "AutoSave.black.tmpReg".
std::filesystem::path BlackToMoveFilePath(const std::filesystem::path& path);
// "<program folder>/SavedTmpRegisterData/<name>.tmpReg".
std::filesystem::path SavedRegisterFilePath(const std::string& sName);

// Sets the bucket count and stores the records of a file's data (after its header); true when the
// data end at a record boundary. Throws ChessException when packed data cannot be unpacked.
bool Load(std::span<const uint8_t> data, TAggregatedTemporaryChessboardRegister& reg, size_t nBuckets,
          const TRegisterLoadOptions& options, TRegisterLoadReport& report);

// Opens and loads the file, catching the failure into the result ("Error reading file" when it
// cannot be opened). A file with a header is checked first, whole: its side, size and checksum.
TRegisterLoadResult LoadRegisterFile(const std::filesystem::path& path,
                                     TAggregatedTemporaryChessboardRegister& reg, size_t nBuckets,
                                     const TRegisterLoadOptions& options);
// The White file into `white`; the companion file, when present, into `*pBlack`. The counts are
// those of both; an error of either makes the result's. Finishes or clears an interrupted save
// first, and refuses a pair whose files come from different saves or whose Black file is missing.
TRegisterLoadResult LoadRegisterFile(const std::filesystem::path& path,
                                     TAggregatedTemporaryChessboardRegister& white,
                                     TAggregatedTemporaryChessboardRegister* pBlack, size_t nBuckets,
                                     const TRegisterLoadOptions& options);

// The bucket count for loading a file while a problem of `nMoves` moves is open: 16,384 below
// 15 moves; 4,194,304 from 23 moves on with a register memory (MB) of at least 8,193; else 524,288.
size_t LoadBucketCount(int nMoves, uint64_t nRegisterMemoryMB);

// The text of the interface's "Information" box about a load.
std::string LoadReportText(const TRegisterLoadResult& result, const std::filesystem::path& path,
                           int languageId, bool bClearRegisterOnStartSolving);

}  // namespace moremate
