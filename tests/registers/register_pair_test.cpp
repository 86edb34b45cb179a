// The White and Black files of a register as one pair: a file of the wrong side or of another
// save is refused, a half pair is reported, and a save killed at any moment leaves the old pair
// or the new one, whichever the next load finds.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "core/chess_exception.h"
#include "register_test_support.h"
#include "registers/register_autosave.h"
#include "registers/register_file.h"
#include "registers/register_pair_commit.h"
#include "tests/support/kill_test.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

using testing::Contents;
using testing::CTempFolder;
using testing::KillWhileWriting;
using testing::LegalKeys;

constexpr size_t kBuckets = 64;
constexpr TRegisterFileForm kForms[] = {TRegisterFileForm::Plain, TRegisterFileForm::Lz4,
                                        TRegisterFileForm::Lz4e, TRegisterFileForm::Lz4Container,
                                        TRegisterFileForm::Lz4eContainer};

class RegisterPair : public ::testing::Test {
  protected:
    RegisterPair() : oldWhite(1'000, 16), oldBlack(1'000, 16), newWhite(1'000, 16), newBlack(1'000, 16) {
        const auto keys = LegalKeys(40);
        for (size_t i = 0; i < 10; ++i) {
            oldWhite.Insert(5, keys[i], true);
            oldBlack.Insert(6, keys[10 + i], false);
            newWhite.Insert(7, keys[20 + i], true);
            newBlack.Insert(8, keys[30 + i], false);
        }
        options.workingFolder = folder.Path();
    }
    void SaveOld(const std::string& name, TRegisterFileForm form = TRegisterFileForm::Plain) {
        TRegisterSaveOptions save;
        save.form = form;
        SaveRegisterFile(folder.File(name), oldWhite, &oldBlack, save);
    }
    void SaveNew(const std::string& name) { SaveRegisterFile(folder.File(name), newWhite, &newBlack, {}); }
    TRegisterLoadResult Load(const std::string& name) {
        white = std::make_unique<TAggregatedTemporaryChessboardRegister>(1'000, 16);
        black = std::make_unique<TAggregatedTemporaryChessboardRegister>(1'000, 16);
        return LoadRegisterFile(folder.File(name), *white, black.get(), kBuckets, options);
    }
    // The pair loaded is the old one or the new one, whole.
    void ExpectLoaded(const TAggregatedTemporaryChessboardRegister& w,
                      const TAggregatedTemporaryChessboardRegister& b) {
        EXPECT_EQ(Contents(*white), Contents(w));
        EXPECT_EQ(Contents(*black), Contents(b));
    }
    bool Exists(const std::string& name) const { return std::filesystem::exists(folder.File(name)); }
    void ExpectNoLeftovers() const {
        for (const char* name : {"r.tmpReg.saving", "r.black.tmpReg.saving", "r.tmpReg.commit"})
            EXPECT_FALSE(Exists(name)) << name;
    }

    CTempFolder folder;
    TAggregatedTemporaryChessboardRegister oldWhite, oldBlack, newWhite, newBlack;
    std::unique_ptr<TAggregatedTemporaryChessboardRegister> white, black;
    TRegisterLoadOptions options;
};

TEST_F(RegisterPair, SwappedFilesAreRefusedInEveryForm) {
    for (const TRegisterFileForm form : kForms) {
        SCOPED_TRACE(static_cast<int>(form));
        SaveOld("r.tmpReg", form);
        ASSERT_TRUE(Load("r.tmpReg").bComplete);
        std::filesystem::rename(folder.File("r.tmpReg"), folder.File("x"));
        std::filesystem::rename(folder.File("r.black.tmpReg"), folder.File("r.tmpReg"));
        std::filesystem::rename(folder.File("x"), folder.File("r.black.tmpReg"));
        const TRegisterLoadResult result = Load("r.tmpReg");
        EXPECT_FALSE(result.bRead);
        EXPECT_EQ(
            result.sError.rfind("Error - the file holds positions with Black to move, expected White", 0),
            0u);
        EXPECT_EQ(Contents(*white).size(), 0u);
    }
}

TEST_F(RegisterPair, BlackFileOfAnotherSaveOrNoneIsReportedUnderItsName) {
    SaveOld("r.tmpReg");
    SaveNew("s.tmpReg");
    std::filesystem::copy_file(folder.File("s.black.tmpReg"), folder.File("r.black.tmpReg"),
                               std::filesystem::copy_options::overwrite_existing);
    TRegisterLoadResult result = Load("r.tmpReg");
    EXPECT_EQ(result.sError, "Error - the White and Black files come from different saves");
    EXPECT_EQ(result.file, folder.File("r.black.tmpReg"));
    EXPECT_EQ(LoadReportText(result, folder.File("r.tmpReg"), kEnglish, false),
              "Error reading file " + folder.File("r.black.tmpReg").string() + "\n\n" + result.sError);

    std::filesystem::remove(folder.File("r.black.tmpReg"));
    result = Load("r.tmpReg");
    EXPECT_EQ(result.sError, "Error - the Black-to-move file of this register is missing");
    EXPECT_EQ(result.file, folder.File("r.black.tmpReg"));

    std::filesystem::resize_file(folder.File("s.black.tmpReg"), 60);
    result = Load("s.tmpReg");
    EXPECT_EQ(result.sError.rfind("Error - the register file is cut short", 0), 0u);
    EXPECT_EQ(result.file, folder.File("s.black.tmpReg"));
}

TEST_F(RegisterPair, SavingTheWhiteRegisterAloneRemovesTheOldBlackFile) {
    SaveOld("r.tmpReg");
    SaveRegisterFile(folder.File("r.tmpReg"), newWhite, {});
    EXPECT_FALSE(Exists("r.black.tmpReg"));
    EXPECT_TRUE(Load("r.tmpReg").bComplete);
    EXPECT_EQ(Contents(*white), Contents(newWhite));
}

TEST_F(RegisterPair, LeftoversOfASaveBeforeItsCommitAreRemoved) {
    SaveOld("r.tmpReg");
    folder.Write("r.tmpReg.saving", "half written");
    folder.Write("r.black.tmpReg.saving", "");
    const TRegisterLoadResult result = Load("r.tmpReg");
    EXPECT_TRUE(result.bComplete) << result.sError;
    EXPECT_EQ(result.sNote,
              "Removed the unfinished files of an interrupted save of " + folder.File("r.tmpReg").string());
    ExpectLoaded(oldWhite, oldBlack);
    ExpectNoLeftovers();
}

TEST_F(RegisterPair, TheFilesOfASaveUnderWayAreLeftAlone) {
    SaveOld("r.tmpReg");
    folder.Write("r.tmpReg.saving", "being written");
    {
        const CRegisterSaveLock saving(folder.File("r.tmpReg"), true);  // as a save in another thread
        const TRegisterLoadResult result = Load("r.tmpReg");
        EXPECT_TRUE(result.bComplete);
        EXPECT_EQ(result.sNote, "");
        EXPECT_TRUE(RecoverInterruptedSaves(folder.Path()).empty());
        EXPECT_TRUE(Exists("r.tmpReg.saving"));
    }
    folder.Write("s.black.tmpReg.saving", "");
    folder.Write("t.tmpReg.commit.saving", "");
    folder.Write("notes.saving", "");  // not of a register
    const std::vector<std::string> lines = RecoverInterruptedSaves(folder.Path());
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0],
              "Removed the unfinished files of an interrupted save of " + folder.File("r.tmpReg").string());
    EXPECT_EQ(lines[1],
              "Removed the unfinished files of an interrupted save of " + folder.File("s.tmpReg").string());
    EXPECT_EQ(lines[2],
              "Removed the unfinished files of an interrupted save of " + folder.File("t.tmpReg").string());
    ExpectNoLeftovers();
    EXPECT_FALSE(Exists("s.black.tmpReg.saving") || Exists("t.tmpReg.commit.saving"));
    EXPECT_TRUE(Exists("notes.saving"));
}

TEST_F(RegisterPair, ACommittedSaveIsCompletedByTheNextLoad) {
    SaveOld("r.tmpReg");
    SaveNew("s.tmpReg");
    std::filesystem::rename(folder.File("s.tmpReg"), folder.File("r.tmpReg.saving"));
    std::filesystem::rename(folder.File("s.black.tmpReg"), folder.File("r.black.tmpReg.saving"));
    folder.Write("r.tmpReg.commit", "white+black\n");
    const TRegisterLoadResult result = Load("r.tmpReg");
    EXPECT_TRUE(result.bComplete) << result.sError;
    EXPECT_EQ(result.sNote, "Completed the interrupted save of " + folder.File("r.tmpReg").string());
    ExpectLoaded(newWhite, newBlack);
    ExpectNoLeftovers();
}

TEST_F(RegisterPair, AFailedSaveKeepsTheOldPair) {
    SaveOld("r.tmpReg");
    std::filesystem::create_directories(
        folder.File("r.black.tmpReg.saving/in-the-way"));  // cannot be written
    EXPECT_THROW(SaveNew("r.tmpReg"), ChessException);
    EXPECT_FALSE(Exists("r.tmpReg.saving"));
    std::filesystem::remove_all(folder.File("r.black.tmpReg.saving"));
    EXPECT_TRUE(Load("r.tmpReg").bComplete);
    ExpectLoaded(oldWhite, oldBlack);
}

TEST_F(RegisterPair, AFullDiskKeepsTheOldPairAndSaysWhy) {
    SaveOld("r.tmpReg");
    try {
        testing::CFileSizeLimit limit(200);
        SaveNew("r.tmpReg");
        ADD_FAILURE() << "saved beyond the limit";
    } catch (const ChessException& exception) {
        EXPECT_EQ(std::string(exception.what()), "Cannot write to file in TRegisterCombinedMap::SaveExact: " +
                                                     folder.File("r.tmpReg.saving").string() +
                                                     " (File too large)");
    }
    ExpectNoLeftovers();
    EXPECT_TRUE(Load("r.tmpReg").bComplete);
    ExpectLoaded(oldWhite, oldBlack);
}

TEST_F(RegisterPair, KilledBeforeTheCommitTheOldPairStays) {
    SaveOld("r.tmpReg");
    KillWhileWriting("register-pair", [&] { SaveNew("r.tmpReg"); });
    EXPECT_TRUE(Exists("r.tmpReg.saving") && Exists("r.black.tmpReg.saving"));
    EXPECT_TRUE(Load("r.tmpReg").bComplete);
    ExpectLoaded(oldWhite, oldBlack);
    ExpectNoLeftovers();
}

TEST_F(RegisterPair, KilledBetweenTheRenamesTheNewPairIsCompleted) {
    SaveOld("r.tmpReg");
    KillWhileWriting("register-renames", [&] { SaveNew("r.tmpReg"); });
    EXPECT_TRUE(Exists("r.tmpReg.commit") && Exists("r.tmpReg.saving"));
    EXPECT_TRUE(Load("r.tmpReg").bComplete);
    ExpectLoaded(newWhite, newBlack);
    ExpectNoLeftovers();
}

TAutoSaveDescriptor Described(const std::string& description) {
    TAutoSaveDescriptor descriptor;
    descriptor.m_sDescription = description;
    return descriptor;
}

// The descriptor beside an automatic save is put in place with the pair: after a kill at any
// moment of the save, the next load finds the old pair with the old descriptor or the new pair
// with the new one.
TEST_F(RegisterPair, AutoSaveKilledAtAnyMomentKeepsItsDescriptorWithItsPair) {
    const struct {
        const char* moment;
        bool bNewPair;
    } cases[] = {{"register-pair", false}, {"register-renames", true}, {"register-descriptor", true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.moment);
        const TAutoSaveSettings settings{1, 0, true, folder.Path()};
        int64_t nNowMs = 0;
        CRegisterAutoSave first(settings, Described("old"), [&] { return nNowMs; });
        first.Attach(oldWhite, &oldBlack);
        nNowMs += 60'000;
        ASSERT_TRUE(first.SaveIfDue());
        CRegisterAutoSave second(settings, Described("new"), [&] { return nNowMs; });
        second.Attach(newWhite, &newBlack);
        nNowMs += 60'000;
        KillWhileWriting(c.moment, [&] { second.SaveIfDue(); });
        EXPECT_TRUE(Load(kAutoSaveFileName).bComplete);
        if (c.bNewPair)
            ExpectLoaded(newWhite, newBlack);
        else
            ExpectLoaded(oldWhite, oldBlack);
        const auto descriptor = folder.File(std::string(kAutoSaveFileName) + ".ini");
        EXPECT_EQ(ReadAutoSaveDescriptor(descriptor).m_sDescription, c.bNewPair ? "new" : "old");
        EXPECT_FALSE(Exists(std::string(kAutoSaveFileName) + ".ini.saving"));
        EXPECT_FALSE(Exists(std::string(kAutoSaveFileName) + ".commit"));
    }
}

}  // namespace
}  // namespace moremate
