#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <optional>

#include "core/chess_exception.h"
#include "precalc/global/data_file.h"
#include "precalc/global/global_registers.h"
#include "precalc/global/mate_index_file.h"
#include "precalc/global/recompress.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

// A data file of KQk with every element 1, written under `name` in "Precalc/3pieces-pawns".
void WriteKQk(const std::filesystem::path& folder, const std::string& name) {
    const TPrecalcType type = TPrecalcType::Parse("KQk");
    const auto storage = MakePlainStorage(std::vector<uint8_t>(TypeIndexCount(type), 1), 1);
    WriteDataFile(folder / "Precalc" / "3pieces-pawns" / name, type.Description(), *storage,
                  TStorageKind::kPlain);
}

TGlobalRegisterSettings SettingsOf(const std::filesystem::path& folder) {
    TGlobalRegisterSettings settings;
    settings.m_dataFolder = folder;
    settings.m_nQuotaBytes = 1ull << 30;
    return settings;
}

TEST(DataFolder, ASkipThisFileSwitchesTheTypeOff) {
    struct {
        std::vector<std::string> files;
        bool loaded;
        size_t typesOnDisk;
    } const cases[] = {
        {{"KQk_.precalc"}, true, 1},
        {{"KQk_.precalc", "KQk__SKIPTHIS.precalc"}, false, 1},  // an empty marker beside the data
        {{"KQk__SKIPTHIS.precalc"}, false, 0},                  // the data file renamed
        {{"KQk_.precalc", "KQk__SKIPTHIS.precalc.lz4"}, false, 1},
        {{"KQk_.precalc", "KRk__SKIPTHIS.precalc"}, true, 1},  // another type's marker
    };
    for (const auto& c : cases) {
        testing::CTempFolder folder;
        for (const std::string& name : c.files) {
            if (name == "KQk_.precalc" || name == "KQk__SKIPTHIS.precalc")
                WriteKQk(folder.Path(), name);
            else
                std::ofstream(folder.Path() / "Precalc" / "3pieces-pawns" / name).put('\n');
        }
        TGlobalRegisters registers;
        registers.Configure(SettingsOf(folder.Path()), nullptr);
        const TPrecalcType type = TPrecalcType::Parse("KQk");
        EXPECT_EQ(registers.Find(type) != nullptr, c.loaded) << c.files.back();
        EXPECT_EQ(registers.TypesOnDisk().size(), c.typesOnDisk) << c.files.back();
        if (!c.loaded) {
            EXPECT_TRUE(registers.FileToLoad(type).empty());
            EXPECT_THROW(registers.Require(type), ChessException);
        }
    }
}

// Values 0 to 3 (so that every form holds them), most of them 0, as in the data of a type.
std::vector<uint8_t> SampleValues(uint64_t n) {
    std::vector<uint8_t> values(n, 0);
    for (uint64_t i = 0; i < n; i += 7) values[i] = static_cast<uint8_t>(1 + i % 3);
    return values;
}

void WriteKQkAs(const std::filesystem::path& folder, TStorageKind kind, const std::vector<uint8_t>& values) {
    const TPrecalcType type = TPrecalcType::Parse("KQk");
    WriteDataFile(TypeFile(folder, type, kind), type.Description(), *MakeStorageOfKind(kind, values), kind);
}

TEST(DataFolder, MateIndexesStandBeforeSlowFormsWithinTheirBound) {
    const TPrecalcType type = TPrecalcType::Parse("KQk");
    const std::vector<uint8_t> values = SampleValues(TypeIndexCount(type));
    const uint64_t nonZero =
        static_cast<uint64_t>(std::count_if(values.begin(), values.end(), [](uint8_t v) { return v != 0; }));
    struct {
        TStorageKind kind;
        bool diskAccess;
        uint64_t bound;
        bool damaged;
        bool indexed;
    } const cases[] = {
        {TStorageKind::kPlain, true, nonZero, false, true},  // disk access
        {TStorageKind::kRunLength, false, 1ull << 30, false, true},
        {TStorageKind::kPlain, true, nonZero - 1, false, false},  // beyond the bound
        {TStorageKind::kPlain, false, 1ull << 30, false, false},  // a plain array needs none
        {TStorageKind::kPlain, true, 1ull << 30, true, false},    // a damaged index is reported
    };
    for (const auto& c : cases) {
        testing::CTempFolder folder;
        WriteKQkAs(folder.Path(), c.kind, values);
        const std::filesystem::path idx = MateIndexFile(folder.Path(), type);
        WriteMateIndexFile(idx, type.Description(), *MakePlainStorage(values, 1));
        if (c.damaged) std::filesystem::resize_file(idx, std::filesystem::file_size(idx) - 4);
        TGlobalRegisterSettings settings = SettingsOf(folder.Path());
        settings.m_bForceDiskAccess = c.diskAccess;
        settings.m_nMaxMateIndexes = c.bound;
        CRecordingReporter reporter;
        TGlobalRegisters registers;
        registers.Configure(settings, &reporter);
        const TGlobalRegister& reg = registers.Require(type);
        const auto plain = MakeStorageOfKind(c.kind, values);
        const uint64_t formBytes = c.diskAccess ? 0 : plain->MemoryBytes();
        EXPECT_EQ(reg.MemoryBytes(), formBytes + (c.indexed ? 4 * nonZero : 0)) << StorageName(c.kind);
        EXPECT_EQ(reporter.Reports().size(), c.damaged ? 1u : 0u);
        for (uint64_t i = 0; i < values.size(); ++i) ASSERT_EQ(reg.Storage().Element(i), values[i]) << i;
    }
}

TEST(DataFolder, RecompressionKeepsEveryValueAndReplacesTheFile) {
    const TPrecalcType type = TPrecalcType::Parse("KQk");
    const std::vector<uint8_t> values = SampleValues(TypeIndexCount(type));
    for (const TStorageKind from :
         {TStorageKind::kPlain, TStorageKind::kLz4, TStorageKind::kRunLength, TStorageKind::kTwoBit})
        for (const TStorageKind to :
             {TStorageKind::kPackedLzw, TStorageKind::kPackedLz4, TStorageKind::kPlain}) {
            if (from == to) continue;
            testing::CTempFolder folder;
            WriteKQkAs(folder.Path(), from, values);
            const std::filesystem::path old = TypeFile(folder.Path(), type, from);
            const std::filesystem::path written = RecompressTypeData(folder.Path(), type, old, to);
            EXPECT_EQ(written, TypeFile(folder.Path(), type, to));
            EXPECT_FALSE(std::filesystem::exists(old)) << StorageName(from) << " " << StorageName(to);
            TGlobalRegisters registers;
            registers.Configure(SettingsOf(folder.Path()), nullptr);
            EXPECT_EQ(registers.FileToLoad(type), written);
            const TGlobalRegister& reg = registers.Require(type);
            for (uint64_t i = 0; i < values.size(); i += 5) ASSERT_EQ(reg.Storage().Element(i), values[i]);
        }
}

TEST(DataFolder, LoadingOffersToRecompressALessPackedFile) {
    const TPrecalcType type = TPrecalcType::Parse("KQk");
    const std::vector<uint8_t> values = SampleValues(TypeIndexCount(type));
    struct {
        TStorageKind kind;
        int asked;
        std::optional<ReportAnswer> answer;  // none: no question
        TStorageKind loaded;
    } const cases[] = {
        {TStorageKind::kLz4, 2, ReportAnswer::Yes, TStorageKind::kPackedLzw},
        {TStorageKind::kLz4, 2, ReportAnswer::No, TStorageKind::kLz4},
        {TStorageKind::kPlain, 1, ReportAnswer::Yes, TStorageKind::kPackedLz4},
        {TStorageKind::kPackedLz4, 2, ReportAnswer::Yes, TStorageKind::kPackedLzw},
        {TStorageKind::kPackedLz4, 1, std::nullopt, TStorageKind::kPackedLz4},
        {TStorageKind::kLz4, 0, std::nullopt, TStorageKind::kLz4},
    };
    for (const auto& c : cases) {
        testing::CTempFolder folder;
        WriteKQkAs(folder.Path(), c.kind, values);
        TGlobalRegisterSettings settings = SettingsOf(folder.Path());
        settings.m_bForceDiskAccess = false;
        settings.m_nAskForRecompression = c.asked;
        CRecordingReporter reporter;
        if (c.answer) reporter.QueueAnswer(*c.answer);
        TGlobalRegisters registers;
        registers.Configure(settings, &reporter);
        const TGlobalRegister& reg = registers.Require(type);
        const auto reports = reporter.Reports();
        ASSERT_EQ(reports.size(), c.answer ? 1u : 0u) << StorageName(c.kind) << " " << c.asked;
        if (c.answer) {
            EXPECT_EQ(reports[0].sTitle, "Question");
            const std::string command = std::string("moremate precalc recompress KQk --form ") +
                                        StorageName(KindForPackingLevel(c.asked));
            EXPECT_NE(reports[0].sText.find(command), std::string::npos) << reports[0].sText;
        }
        EXPECT_EQ(registers.FileToLoad(type), TypeFile(folder.Path(), type, c.loaded));
        EXPECT_EQ(reg.Storage().Form() == TStorageForm::kRandomAccess, PackingLevel(c.loaded) > 0);
        for (uint64_t i = 0; i < values.size(); i += 11) ASSERT_EQ(reg.Storage().Element(i), values[i]);
    }
}

}  // namespace
}  // namespace moremate
