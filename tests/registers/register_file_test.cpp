// Register files: every form saves and loads back the same contents, a byte limit keeps the
// shortest levels, and damaged or odd files give their messages; the automatic save.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "register_test_support.h"
#include "registers/register_autosave.h"
#include "registers/register_file.h"
#include "registers/register_file_header.h"
#include "registers/register_stream.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

using testing::Contents;
using testing::CTempFolder;
using testing::FillRegister;
using testing::LegalKeys;

constexpr size_t kBuckets = 256;

std::string Marker(uint64_t nConfiguration) {
    std::string marker(4, '\xFF');
    for (int i = 0; i < 8; ++i) marker += static_cast<char>(nConfiguration >> (8 * i));
    return marker;
}
std::string Record(uint16_t nMate, uint16_t nNoMate, const TChessboardRegisterItem& key) {
    std::string record = {static_cast<char>(nMate), static_cast<char>(nMate >> 8), static_cast<char>(nNoMate),
                          static_cast<char>(nNoMate >> 8)};
    return record + std::string(key.squares, key.squares + 64);
}
uint16_t Level(const testing::TContent& content) {
    return std::max(std::get<2>(content), std::get<3>(content));
}

class RegisterFile : public ::testing::Test {
  protected:
    RegisterFile() : reg(100'000, kBuckets) {
        FillRegister(reg, 2'000);
        options.workingFolder = folder.Path();
    }
    TRegisterLoadResult LoadInto(TAggregatedTemporaryChessboardRegister& target, const std::string& name) {
        return LoadRegisterFile(folder.File(name), target, kBuckets, options);
    }
    TRegisterLoadResult LoadText(const std::string& content) {
        TAggregatedTemporaryChessboardRegister target(1'000, 16);
        return LoadRegisterFile(folder.Write("file.tmpReg", content), target, kBuckets, options);
    }

    CTempFolder folder;
    TAggregatedTemporaryChessboardRegister reg;
    TRegisterLoadOptions options;
};

// Plain first: the packed forms leave their decoded stream in the working folder.
constexpr TRegisterFileForm kForms[] = {TRegisterFileForm::Plain, TRegisterFileForm::Lz4,
                                        TRegisterFileForm::Lz4e, TRegisterFileForm::Lz4Container,
                                        TRegisterFileForm::Lz4eContainer};

TEST_F(RegisterFile, SavedRegisterLoadsBackWholeInEveryForm) {
    for (const TRegisterFileForm form : kForms) {
        SCOPED_TRACE(static_cast<int>(form));
        TRegisterSaveOptions save;
        save.form = form;
        save.nCompressionThreads = 3;
        const TRegisterSaveResult saved = SaveRegisterFile(folder.File("r.tmpReg"), reg, save);
        EXPECT_TRUE(saved.bComplete);
        EXPECT_FALSE(std::filesystem::exists(folder.File("r.tmpReg.saving")));

        TAggregatedTemporaryChessboardRegister loaded(100'000, 16);
        const TRegisterLoadResult result = LoadInto(loaded, "r.tmpReg");
        EXPECT_TRUE(result.bRead && result.bComplete) << result.sError;
        EXPECT_EQ(result.report.nRecords, reg.ElementCount());
        EXPECT_EQ(result.report.nInvalidPositions, 0u);
        EXPECT_EQ(loaded.BucketCount(), kBuckets);
        EXPECT_EQ(Contents(loaded), Contents(reg));

        const char* magic[] = {"\xFF\xFF\xFF\xFF", "LZ4 ", "LZ4e", "lz4 ", "lz4e"};
        EXPECT_EQ(folder.Read("r.tmpReg").substr(0, 8), "mmTmpReg");
        EXPECT_EQ(folder.Read("r.tmpReg").substr(kRegisterHeaderSize, 4), magic[static_cast<int>(form)]);
        const std::filesystem::path scratch = folder.File(kLoadScratchFile);
        EXPECT_EQ(std::filesystem::exists(scratch), form != TRegisterFileForm::Plain);
        EXPECT_TRUE(form == TRegisterFileForm::Plain ||
                    std::filesystem::file_size(scratch) == saved.nStreamBytes);
    }
}

TEST_F(RegisterFile, ByteLimitKeepsTheShortestLevelsInEveryForm) {
    const auto all = Contents(reg);
    for (const TRegisterFileForm form : kForms) {
        SCOPED_TRACE(static_cast<int>(form));
        TRegisterSaveOptions save;
        save.form = form;
        save.nByteLimit = 40'000;
        const TRegisterSaveResult saved = SaveRegisterFile(folder.File("r.tmpReg"), reg, save);
        EXPECT_FALSE(saved.bComplete);
        EXPECT_LE(saved.nStreamBytes, save.nByteLimit);
        EXPECT_GT(saved.nStreamBytes, save.nByteLimit - kRegisterMarkerSize - 2 * kRegisterRecordSize);

        TAggregatedTemporaryChessboardRegister loaded(100'000, 16);
        EXPECT_TRUE(LoadInto(loaded, "r.tmpReg").bComplete);  // the file ends at a record
        const auto kept = Contents(loaded);
        ASSERT_FALSE(kept.empty());
        EXPECT_TRUE(std::includes(all.begin(), all.end(), kept.begin(), kept.end()));
        uint16_t nHighestKept = 0;
        for (const auto& content : kept) nHighestKept = std::max(nHighestKept, Level(content));
        for (const auto& content : all)
            EXPECT_TRUE(Level(content) >= nHighestKept ||
                        std::binary_search(kept.begin(), kept.end(), content));
    }
}

TEST_F(RegisterFile, PlainFileIsWrittenLevelByLevel) {
    TAggregatedTemporaryChessboardRegister small(1'000, 16);
    const auto keys = LegalKeys(3);
    small.Insert(7, keys[0], true);
    small.Insert(5, keys[1], false);
    small.Insert(9, keys[1], true);  // mate 9, no mate 5: saved at level 9
    small.InsertDoubtful(ConfigurationKey(6, 1), 7, keys[2], true);
    SaveRegisterFile(folder.File("r.tmpReg"), small, {});
    // Levels 7 to 9; level 5 holds nothing (the no mate in 5 is saved with the mate in 9).
    const std::string expected = Marker(0) + Record(7, 0, keys[0]) + Marker(ConfigurationKey(6, 1)) +
                                 Record(7, 0, keys[2]) + Marker(0) + Marker(0) + Record(9, 5, keys[1]);
    EXPECT_EQ(folder.Read("r.tmpReg").substr(kRegisterHeaderSize), expected);
}

TEST_F(RegisterFile, MarkersSwitchGroupsAnywhere) {
    const auto keys = LegalKeys(3);
    const uint64_t nFirst = ConfigurationKey(6, 1), nSecond = ConfigurationKey(0x40, 3);
    const std::string content = Marker(nFirst) + Marker(0) + Record(5, 0, keys[0]) + Marker(nFirst) +
                                Record(7, 0, keys[1]) + Marker(nSecond) + Record(0, 9, keys[2]) + Marker(0);
    TAggregatedTemporaryChessboardRegister target(1'000, 16);
    const TRegisterLoadResult result =
        LoadRegisterFile(folder.Write("m.tmpReg", content), target, 64, options);
    EXPECT_TRUE(result.bComplete);
    EXPECT_EQ(result.report.nRecords, 3u);
    EXPECT_EQ(target.Find(keys[0])->MovesMate, 5);
    EXPECT_EQ(target.FindDoubtful(nFirst, keys[1])->MovesMate, 7);
    EXPECT_EQ(target.FindDoubtful(nSecond, keys[2])->MovesNoMate, 9);
    EXPECT_FALSE(target.Find(keys[1]));
}

TEST_F(RegisterFile, PlainFileEndsAtTheLastWholeRecord) {
    const auto keys = LegalKeys(3);
    const std::string whole = Marker(0) + Record(5, 0, keys[0]) + Record(0, 6, keys[1]);
    const TRegisterLoadResult result = LoadText(whole + Record(3, 0, keys[2]).substr(0, 30));
    EXPECT_TRUE(result.bRead);
    EXPECT_FALSE(result.bComplete);
    EXPECT_EQ(result.report.nRecords, 2u);
    EXPECT_FALSE(LoadText(whole + Marker(0).substr(0, 7)).bComplete);
}

// A plain file is read in blocks of 4 MB: records and markers cut by a block's end are completed
// from the next block, and a file cut short still keeps every whole record before its end. Shared
// out between threads, every bucket gets its records in the order of the file, as with one.
TEST_F(RegisterFile, PlainFileOfSeveralReadBlocksLoadsWhole) {
    TAggregatedTemporaryChessboardRegister large(200'000, kBuckets);
    FillRegister(large, 70'000);
    CRegisterStream out;
    SaveLevels(large, out, kNoByteLimit);
    const std::string stream(out.Bytes().begin(), out.Bytes().end());
    ASSERT_GT(stream.size(), size_t{6} << 20);

    TAggregatedTemporaryChessboardRegister loaded(200'000, 16);
    TRegisterLoadResult result =
        LoadRegisterFile(folder.Write("large.tmpReg", stream), loaded, kBuckets, options);
    EXPECT_TRUE(result.bComplete) << result.sError;
    EXPECT_EQ(result.report.nRecords, large.ElementCount());
    EXPECT_EQ(Contents(loaded), Contents(large));

    constexpr size_t kSmallBuckets = size_t{1} << 14;  // about four entries each: kept in file order
    std::vector<testing::TContent> inOrder[2];
    for (unsigned nThreads : {1u, 2u}) {
        options.nThreads = nThreads;
        TAggregatedTemporaryChessboardRegister shared(200'000, 16);
        result = LoadRegisterFile(folder.File("large.tmpReg"), shared, kSmallBuckets, options);
        EXPECT_EQ(result.report.nRecords, large.ElementCount()) << nThreads;
        inOrder[nThreads - 1] = testing::ContentsInOrder(shared);
    }
    EXPECT_EQ(inOrder[0], inOrder[1]);
    options.nThreads = 0;

    TAggregatedTemporaryChessboardRegister cut(200'000, 16);
    result = LoadRegisterFile(folder.Write("cut.tmpReg", stream.substr(0, stream.size() - 30)), cut, kBuckets,
                              options);
    EXPECT_TRUE(result.bRead);
    EXPECT_FALSE(result.bComplete);
    EXPECT_EQ(result.report.nRecords, large.ElementCount() - 1);
}

// More records than room: the batches that would reach the capacity go one by one, making room.
TEST_F(RegisterFile, FileLargerThanTheRegisterMakesRoomOnTheWay) {
    TAggregatedTemporaryChessboardRegister large(200'000, kBuckets);
    for (uint32_t i = 0; i < 50'000; ++i)
        large.Insert(static_cast<uint16_t>(4 + i % 3), testing::NumberedKey(i), false);
    SaveRegisterFile(folder.File("large.tmpReg"), large, {});
    TAggregatedTemporaryChessboardRegister small(20'000, 16);
    testing::CLogRecorder log;
    small.SetServices({.log = log.Sink()});
    const TRegisterLoadResult result =
        LoadRegisterFile(folder.File("large.tmpReg"), small, kBuckets, options);
    EXPECT_TRUE(result.bComplete) << result.sError;
    EXPECT_EQ(result.report.nRecords + result.report.nInvalidPositions, 50'000u);
    EXPECT_GT(result.report.nRecords, 40'000u);
    EXPECT_LT(small.ElementCount(), result.report.nRecords);
    // Asked for room on the way, each time the register was full, not only by the last records: it
    // filled at least twice. How often depends on the speed, as emptyings are kept apart in time.
    const std::vector<std::string> lines = log.Lines();
    EXPECT_GE(std::count(lines.begin(), lines.end(), "EmptySomeDataWhenRegisterFull started"), 2);
}

TEST_F(RegisterFile, InvalidPositionsAreCountedAndSkipped) {
    TChessboardRegisterItem noKings;
    noKings.squares[0] = MakePiece(kWhite, kRook);
    const TRegisterLoadResult result =
        LoadText(Marker(0) + Record(5, 0, noKings) + Record(5, 0, LegalKeys(1)[0]));
    EXPECT_TRUE(result.bComplete);
    EXPECT_EQ(result.report.nRecords, 1u);
    EXPECT_EQ(result.report.nInvalidPositions, 1u);
    EXPECT_EQ(
        LoadReportText(result, "x.tmpReg", kEnglish, false),
        "File has been read: x.tmpReg\n\nNOTE: invalid positions were detected - invalid data?\n\nNote: a "
        "register file of the older form, without a header: its side and checksum are not checked");
}

TEST_F(RegisterFile, LoadErrorsGiveTheirMessages) {
    EXPECT_EQ(LoadText("").sError, "Error - data file is empty.");
    EXPECT_EQ(LoadText("LZ4").sError, "Error - data file is empty.");
    EXPECT_EQ(LoadText("LZ4 \x10").sError, "An error occurred during LZ4 decompression.");
    TAggregatedTemporaryChessboardRegister target(1'000, 16);
    const TRegisterLoadResult missing = LoadRegisterFile(folder.File("none.tmpReg"), target, 16, options);
    EXPECT_FALSE(missing.bRead);
    EXPECT_EQ(missing.sError, "Error reading file");
    EXPECT_EQ(LoadReportText(missing, "none.tmpReg", kEnglish, true),
              "Error reading file none.tmpReg\n\nNote: Option to clear temporary data on start of analysis "
              "(first move) is on");
}

// A damaged file is refused before anything is loaded; without the header (the older form) the
// decoder is what notices.
TEST_F(RegisterFile, DamagedFilesAreRefusedWhole) {
    for (const TRegisterFileForm form : kForms) {
        TRegisterSaveOptions save;
        save.form = form;
        save.nCompressionThreads = 2;
        SaveRegisterFile(folder.File("p.tmpReg"), reg, save);
        const std::string file = folder.Read("p.tmpReg");
        std::string flipped = file;
        flipped[file.size() / 2] = static_cast<char>(flipped[file.size() / 2] ^ 0x10);
        std::string header = file;
        header[24] = static_cast<char>(header[24] ^ 1);  // the entry count
        const std::string packed = file.substr(kRegisterHeaderSize);
        std::string damagedPacked = packed;
        for (size_t i = 40; i < damagedPacked.size(); i += 97) damagedPacked[i] ^= 0x5A;
        const struct {
            std::string content;
            std::string error;
        } cases[] = {
            {file.substr(0, file.size() - 1), "Error - the register file is cut short: "},
            {file + "x", "Error - the register file is too long: "},
            {file.substr(0, 20), "Error - the register file's header is cut short"},
            {flipped, "Error - the register file is damaged (its checksum does not match)"},
            {header, "Error - the register file's header is damaged"},
            {"Hello, world! This is no register.", "Error - not a temporary register file"},
            {form == TRegisterFileForm::Plain ? "" : damagedPacked,
             "An error occurred during LZ4 decompression."},
        };
        for (const auto& c : cases) {
            if (c.content.empty()) continue;
            SCOPED_TRACE(c.error + " " + std::to_string(static_cast<int>(form)));
            TAggregatedTemporaryChessboardRegister target(100'000, 16);
            const TRegisterLoadResult result =
                LoadRegisterFile(folder.Write("d.tmpReg", c.content), target, 16, options);
            EXPECT_FALSE(result.bRead);
            EXPECT_EQ(result.sError.rfind(c.error, 0), 0u) << result.sError;
            EXPECT_EQ(target.ElementCount(), 0u);
        }
    }
}

TEST(RegisterFileHeader, ChecksumIsTheCrc32OfZipInPieces) {
    EXPECT_EQ(UpdateCrc32(0, "123456789", 9), 0xCBF43926u);
    EXPECT_EQ(UpdateCrc32(UpdateCrc32(0, "1234", 4), "56789", 5), 0xCBF43926u);
    // Parts worked out side by side (a size no count of parts divides), continuing a checksum.
    std::vector<uint8_t> data((size_t{5} << 20) + 3);
    uint32_t state = 1;
    for (uint8_t& byte : data) byte = static_cast<uint8_t>((state = state * 1'103'515'245u + 12'345u) >> 24);
    EXPECT_EQ(UpdateCrc32OnThreads(0xCBF43926u, data.data(), data.size()),
              UpdateCrc32(0xCBF43926u, data.data(), data.size()));
}

TEST_F(RegisterFile, FileOfTheOtherSideIsRefused) {
    SaveRegisterFile(folder.File("w.tmpReg"), reg, {});
    options.bBlackToMove = true;
    const TRegisterLoadResult result = LoadInto(reg, "w.tmpReg");
    EXPECT_EQ(
        result.sError,
        "Error - the file holds positions with White to move, expected Black to move (White and Black files "
        "swapped?)");
}

TEST_F(RegisterFile, BlackToMoveRegisterGoesToTheCompanionFile) {
    TAggregatedTemporaryChessboardRegister black(1'000, 16);
    const auto keys = LegalKeys(2);
    black.Insert(6, keys[1], false);
    TRegisterSaveOptions save;
    save.form = TRegisterFileForm::Lz4Container;
    SaveRegisterFile(folder.File("AutoSave.tmpReg"), reg, &black, save);
    EXPECT_TRUE(std::filesystem::exists(folder.File("AutoSave.black.tmpReg")));

    TAggregatedTemporaryChessboardRegister white2(100'000, 16), black2(1'000, 16);
    const TRegisterLoadResult result =
        LoadRegisterFile(folder.File("AutoSave.tmpReg"), white2, &black2, kBuckets, options);
    EXPECT_TRUE(result.bComplete);
    EXPECT_EQ(result.report.nRecords, reg.ElementCount() + 1);
    EXPECT_EQ(Contents(white2), Contents(reg));
    EXPECT_EQ(Contents(black2), Contents(black));
}

TEST_F(RegisterFile, LoadLogListsEveryEntry) {
    options.bLogToFile = true;
    const auto keys = LegalKeys(2);
    LoadText(Marker(0) + Record(5, 3, keys[0]) + Marker(ConfigurationKey(6, 1)) + Record(7, 0, keys[1]));
    const std::string log = folder.Read(kLoadLogFile);
    EXPECT_EQ(
        log.rfind("nMovesMate/Doubtful,nMovesNoMate/NotDoubtful,Heuristics,HeurParams,FEN\n5,3,0,0,", 0), 0u);
    EXPECT_NE(log.find("\n7,0,6,1,"), std::string::npos);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 3);
}

TEST_F(RegisterFile, CompressionLogHasALinePerBlock) {
    TRegisterSaveOptions save;
    save.form = TRegisterFileForm::Lz4eContainer;
    save.nCompressionThreads = 2;
    save.bLogCompression = true;
    SaveRegisterFile(folder.File("c.tmpReg"), reg, save);
    const std::string log = folder.Read("c.tmpReg.log");
    EXPECT_EQ(log.rfind("Compressed bucket 0. Packed ", 0), 0u);
    EXPECT_NE(log.find("\nCompressed bucket 1. Packed "), std::string::npos);
}

TEST(RegisterFileNames, BucketCountPathsAndReportText) {
    EXPECT_EQ(LoadBucketCount(14, 100'000), 16'384u);
    EXPECT_EQ(LoadBucketCount(15, 100'000), 524'288u);
    EXPECT_EQ(LoadBucketCount(23, 8'192), 524'288u);
    EXPECT_EQ(LoadBucketCount(23, 8'193), 4'194'304u);
    EXPECT_EQ(BlackToMoveFilePath("dir/AutoSave.tmpReg"), std::filesystem::path("dir/AutoSave.black.tmpReg"));
    EXPECT_EQ(SavedRegisterFilePath("p12").filename(), "p12.tmpReg");
    EXPECT_EQ(SavedRegisterFilePath("p12").parent_path().filename(), kSavedRegisterFolder);
    TRegisterLoadResult result;
    result.bRead = true;
    EXPECT_EQ(LoadReportText(result, "a", kEnglish, false), "File has been read with errors: a");
}

// The automatic save: due only after the set minutes, through the register's emptying hook too,
// with the descriptor beside the file; a failure inside the hook stays out of the search.
class RegisterAutoSave : public ::testing::Test {
  protected:
    RegisterAutoSave() : white(10'000, 64), black(10'000, 64) {
        const auto keys = LegalKeys(20);
        for (size_t i = 0; i < keys.size(); ++i) {
            white.Insert(static_cast<uint16_t>(5 + 2 * (i % 4)), keys[i], i % 2 == 0);
            black.Insert(static_cast<uint16_t>(6 + 2 * (i % 4)), keys[i], i % 2 == 0);
        }
        settings.nMinutes = 2;
        settings.nMegabytes = 1;
        settings.bEnabled = true;
        settings.folder = folder.Path() / kSavedRegisterFolder;
        descriptor.m_sDescription = "Problem 12";
        descriptor.m_nHeuristicsOnStart = 5;
    }
    CRegisterAutoSave::CClock Clock() {
        return [this] { return nNowMs; };
    }

    CTempFolder folder;
    TAggregatedTemporaryChessboardRegister white, black;
    TAutoSaveSettings settings;
    TAutoSaveDescriptor descriptor;
    int64_t nNowMs = 1'000;
};

TEST_F(RegisterAutoSave, SavesOnlyWhenTheMinutesHavePassed) {
    CRegisterAutoSave autosave(settings, descriptor, Clock());
    autosave.Attach(white, &black);
    nNowMs += 119'999;
    EXPECT_FALSE(autosave.SaveIfDue());
    EXPECT_FALSE(std::filesystem::exists(autosave.FilePath()));
    nNowMs += 1;
    EXPECT_TRUE(autosave.SaveIfDue());
    EXPECT_EQ(autosave.FilePath().filename(), "AutoSave.tmpReg");
    EXPECT_FALSE(autosave.SaveIfDue());  // the interval starts again

    const TAutoSaveDescriptor read = ReadAutoSaveDescriptor(autosave.FilePath().string() + ".ini");
    EXPECT_EQ(read.m_sDescription, "Problem 12");
    EXPECT_EQ(read.m_nHeuristicsOnStart, 5u);
    TAggregatedTemporaryChessboardRegister white2(10'000, 64), black2(10'000, 64);
    EXPECT_TRUE(LoadRegisterFile(autosave.FilePath(), white2, &black2, 64, {folder.Path()}).bComplete);
    EXPECT_EQ(Contents(white2), Contents(white));
    EXPECT_EQ(Contents(black2), Contents(black));
}

TEST_F(RegisterAutoSave, DisabledOrZeroMinutesNeverSave) {
    for (auto change :
         {+[](TAutoSaveSettings& s) { s.bEnabled = false; }, +[](TAutoSaveSettings& s) { s.nMinutes = 0; }}) {
        TAutoSaveSettings changed = settings;
        change(changed);
        CRegisterAutoSave autosave(changed, descriptor, Clock());
        autosave.Attach(white, nullptr);
        nNowMs += 10'000'000;
        EXPECT_FALSE(autosave.SaveIfDue());
    }
}

TEST_F(RegisterAutoSave, EmptyingTheRegisterSavesWhenDue) {
    CRegisterAutoSave autosave(settings, descriptor, Clock());
    autosave.Attach(white, &black);
    nNowMs += 120'000;
    black.EmptySomeDataWhenRegisterFull(false);
    EXPECT_TRUE(std::filesystem::exists(autosave.FilePath()));
    EXPECT_TRUE(std::filesystem::exists(BlackToMoveFilePath(autosave.FilePath())));
}

TEST_F(RegisterAutoSave, AFailedSaveInTheHookIsKept) {
    std::filesystem::create_directories(settings.folder / kAutoSaveFileName);  // a folder in the way
    CRegisterAutoSave autosave(settings, descriptor, Clock());
    autosave.Attach(white, nullptr);
    nNowMs += 120'000;
    EXPECT_NO_THROW(white.EmptySomeDataWhenRegisterFull(false));
    EXPECT_FALSE(autosave.LastError().empty());
}

}  // namespace
}  // namespace moremate
