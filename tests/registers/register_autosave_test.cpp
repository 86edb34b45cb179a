// The automatic save: due only after the set minutes, through the register's emptying hook too,
// with the descriptor beside the file; a failure inside the hook stays out of the search.
#include <gtest/gtest.h>

#include <filesystem>

#include "register_file_support.h"
#include "registers/register_autosave.h"
#include "registers/register_file.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

using testing::Contents;
using testing::CTempFolder;
using testing::LegalKeys;

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
