#include <gtest/gtest.h>

#include <fstream>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "precalc/global/data_file.h"
#include "precalc/global/global_register.h"
#include "precalc/global/global_registers.h"
#include "tests/support/hostile_files.h"
#include "tests/support/positions.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

std::vector<uint8_t> Elements(std::initializer_list<uint8_t> values) {
    return std::vector<uint8_t>(values);
}

TEST(GlobalStorage, MateCodesOfEachForm) {
    const std::vector<uint8_t> values = Elements({0, 1, 3, 255, 2});
    const auto plain = MakePlainStorage(values, 1);
    EXPECT_EQ(plain->MateCode(0), 0);
    EXPECT_EQ(plain->MateCode(1), 1);
    EXPECT_EQ(plain->MateCode(2), 5);
    EXPECT_EQ(plain->MateCode(3), kUnknownMate);
    const auto wide = MakePlainStorage({3, 0, 255, 0}, 2);  // 3 and 255 as 16-bit words
    EXPECT_EQ(wide->MateCode(0), 5);
    EXPECT_EQ(wide->MateCode(1), 509);
    const auto twoBit = MakeTwoBitStorage(Elements({0, 1, 2, 3, 3, 0}));
    for (uint64_t i = 0; i < 6; ++i) EXPECT_EQ(twoBit->MateCode(i), std::vector<int>({0, 1, 2, 3, 3, 0})[i]);
    EXPECT_EQ(twoBit->Payload()[0], 0b11100100);
    EXPECT_THROW(MakeTwoBitStorage(Elements({4})), ChessException);
    const auto rle = MakeRunLengthStorage(values);
    EXPECT_EQ(rle->MateCode(2), 5);
    EXPECT_EQ(rle->MateCode(3), 509);  // a literal 255 is no unknown in this form
    EXPECT_THROW(MakeRunLengthStorage(Elements({200})), ChessException);
    const auto packed = MakePackedStorage(TStorageKind::kPackedLzw, values, 1);
    EXPECT_EQ(packed->MateCode(2), 5);
    EXPECT_EQ(packed->MateCode(3), kUnknownMate);
}

TEST(GlobalStorage, RunLengthBlockOfALiteralAndARepeat) {
    // One block: literal 4, then 130 = three more indexes of 4, then literal 0.
    std::vector<uint8_t> image = {5, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 4, 130, 0};
    const auto rle = OpenRunLengthStorage(image);
    for (uint64_t i = 0; i < 4; ++i) EXPECT_EQ(rle->MateCode(i), 7) << i;
    EXPECT_EQ(rle->MateCode(4), 0);
    image[13] = 140;  // the repeat now runs past the element count: still readable
    EXPECT_NO_THROW(OpenRunLengthStorage(image));
    image[12] = 200;  // a block must start with a literal
    EXPECT_THROW(OpenRunLengthStorage(image), ChessException);
}

TEST(GlobalStorage, RunLengthBlocksRoundTripLongRuns) {
    std::vector<uint8_t> values(3 * 2048 + 17, 0);
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = (i / 300) % 3 == 0 ? 0 : static_cast<uint8_t>(i % 7 + 1);
    for (size_t i = 2048; i < 2500; ++i) values[i] = 9;  // a run across the block start
    const auto rle = MakeRunLengthStorage(values);
    for (size_t i = 0; i < values.size(); ++i) ASSERT_EQ(rle->Element(i), values[i]) << i;
    EXPECT_LT(rle->MemoryBytes(), values.size());
}

// A small data set written in every kind the program can read and read back.
TEST(DataFile, EveryKindReadsBackWhatWasWritten) {
    testing::CTempFolder folder;
    std::vector<uint8_t> values(10000);
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<uint8_t>((i * 7919) % 13 < 9 ? 0 : i % 4);
    for (const TStorageKind kind : kAllStorageKinds) {
        const std::filesystem::path file = folder.File(std::string("t") + StorageName(kind));
        const bool packed = kind == TStorageKind::kPackedLzw || kind == TStorageKind::kPackedLz4;
        const auto storage = kind == TStorageKind::kTwoBit      ? MakeTwoBitStorage(values)
                             : kind == TStorageKind::kRunLength ? MakeRunLengthStorage(values)
                             : packed                           ? MakePackedStorage(kind, values, 1)
                                                                : MakePlainStorage(values, 1);
        WriteDataFile(file, "KQk", *storage, kind);
        for (const bool disk : {false, true}) {
            const auto read = ReadDataFile(file, "KQk", values.size(), disk);
            EXPECT_EQ(read->Form() == TStorageForm::kDiskAccess, disk && kind == TStorageKind::kPlain);
            for (size_t i = 0; i < values.size(); ++i)
                ASSERT_EQ(read->Element(i), values[i]) << StorageName(kind);
        }
        EXPECT_FALSE(std::filesystem::exists(file.string() + ".tmp"));
    }
}

TEST(DataFile, DamagedFilesAreRefusedWithTheirMessage) {
    testing::CTempFolder folder;
    std::vector<uint8_t> values(5000, 2);
    const std::filesystem::path file = folder.File("d.precalc");
    const auto damage = [&](uint64_t at, char byte) {
        WriteDataFile(file, "KRk", *MakePlainStorage(values, 1), TStorageKind::kPlain);
        std::fstream f(file, std::ios::in | std::ios::out | std::ios::binary);
        f.seekp(static_cast<std::streamoff>(at));
        f.put(byte);
    };
    const auto refused = [&](const std::string& description, uint64_t count, bool disk) {
        try {
            ReadDataFile(file, description, count, disk);
        } catch (const ChessException& e) {
            return std::string(e.what()).starts_with(kDamagedDataFile);
        }
        return false;
    };
    damage(kDataFileHeaderBytes + 100, 7);
    EXPECT_TRUE(refused("KRk", values.size(), false));
    EXPECT_TRUE(refused("KRk", values.size(), true));
    damage(0, 'X');
    EXPECT_TRUE(refused("KRk", values.size(), false));
    damage(kDataFileHeaderBytes + 100, 2);  // intact
    EXPECT_FALSE(refused("KRk", values.size(), false));
    EXPECT_TRUE(refused("KQk", values.size(), false));
    EXPECT_TRUE(refused("KRk", values.size() + 1, false));
    std::filesystem::resize_file(file, kDataFileHeaderBytes + 10);
    EXPECT_TRUE(refused("KRk", values.size(), true));
}

// A folder, a pipe, a device or a file larger than any data of its type is refused before it is
// read, in memory or on disk.
TEST(DataFile, FilesThatCannotBeDataFilesAreRefusedByName) {
    constexpr uint64_t kElements = 5000;
    for (const testing::THostileKind kind : testing::kHostileKinds)
        for (const bool disk : {false, true}) {
            testing::CTempFolder folder;
            const auto file = folder.File("d.precalc");
            const std::string message = testing::MakeHostileFile(kind, file, DataFileLimit(kElements));
            EXPECT_EQ(test::ErrorOf([&] { ReadDataFile(file, "KRk", kElements, disk); }), message);
        }
}

// A register over a file that does not fit the quota, and one that is damaged: both give their
// message, and the position stays unknown.
TEST(GlobalRegisters, QuotaAndDamageLeaveTheTypeUnavailable) {
    testing::CTempFolder folder;
    const TPrecalcType type = TPrecalcType::Parse("KQk");
    std::vector<uint8_t> values(TypeIndexCount(type), 1);
    const std::filesystem::path file = TypeFile(folder.Path(), type, TStorageKind::kRunLength);
    WriteDataFile(file, type.Description(), *MakeRunLengthStorage(values), TStorageKind::kRunLength);
    TChessboard board;
    ASSERT_TRUE(ReadFen("8/8/8/3k4/8/8/1Q6/K7", board));
    CRecordingReporter reporter;
    TGlobalRegisters registers;
    TGlobalRegisterSettings settings;
    settings.m_dataFolder = folder.Path();
    settings.m_nQuotaBytes = 100;
    registers.Configure(settings, &reporter);
    EXPECT_EQ(registers.Find(board), nullptr);
    ASSERT_EQ(reporter.Reports().size(), 1u);
    EXPECT_EQ(reporter.Reports()[0].sText, kQuotaExceededText);
    EXPECT_EQ(reporter.Reports()[0].sTitle, "Warning");
    EXPECT_THROW(registers.Require(type), ChessException);

    settings.m_nQuotaBytes = 1 << 30;
    registers.Configure(settings, &reporter);
    ASSERT_NE(registers.Find(board), nullptr);
    EXPECT_EQ(registers.Find(board)->HalfMovesToMate(board), 1);
    EXPECT_EQ(registers.TypesOnDisk(), std::set<std::string>{"KQk"});
    {
        std::fstream f(file, std::ios::in | std::ios::out | std::ios::binary);
        f.seekp(-1, std::ios::end);
        f.put(3);
    }
    registers.Configure(settings, &reporter);
    EXPECT_EQ(registers.Find(board), nullptr);
    EXPECT_TRUE(reporter.Reports().back().sText.starts_with(kDamagedDataFile));
}

TEST(GlobalRegister, HalfMovesFollowTheSideToMove) {
    const TPrecalcType type = TPrecalcType::Parse("KQk");
    std::vector<uint8_t> values(TypeIndexCount(type), 0);
    TChessboard white, black;
    ASSERT_TRUE(ReadFen("8/8/8/3k4/8/8/1Q6/K7", white));
    black = white;
    black.movesLeft = 2;
    TGlobalRegister reg(type, MakePlainStorage(values, 1));
    reg.SetMateByIndex(reg.IndexOf(white), 3);  // White mates in 3: five half-moves
    reg.SetMateByIndex(reg.IndexOf(black), 3);  // Black to move, mated after two White moves
    EXPECT_EQ(reg.IsMateByIndex(white), 5);
    EXPECT_EQ(reg.HalfMovesToMate(white), 5);
    EXPECT_EQ(reg.HalfMovesToMate(black), 4);
    white.castling = kWhiteKingside;  // no king on e1: no right held, still covered
    EXPECT_EQ(reg.HalfMovesToMate(white), 5);
    TGlobalRegister none(type, nullptr);
    EXPECT_THROW(none.IsMateByIndex(white), std::runtime_error);
}

}  // namespace
}  // namespace moremate
