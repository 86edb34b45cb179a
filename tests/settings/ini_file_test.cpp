#include "settings/ini_file.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include "settings/autosave_descriptor.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

using testing::CTempFolder;

TEST(IniRead, ReadsLikeThePrivateProfileFunctions) {
    // The contents, the section and key read, and the value with -99 as the default.
    // clang-format off
    const struct { std::string sContent; const char* pszSection; const char* pszKey; int nExpected; } cases[] = {
        {"[chess]\nA=12\n", "chess", "A", 12}, {"[chess]\nQuickMode=1\n", "chess", "QUICKMODE", 1},
        {"[CHESS]\nA=3\n", "chess", "a", 3}, {"[chess]\nA=abc\n", "chess", "A", 0},
        {"[chess]\nA=12abc\n", "chess", "A", 12}, {"[chess]\nA=-3\n", "chess", "A", -3},
        {"[chess]\nA=+7\n", "chess", "A", 7}, {"[chess]\nA=-\n", "chess", "A", 0},
        {"[chess]\nA=\n", "chess", "A", -99}, {"[chess]\nB=1\n", "chess", "A", -99},
        {"[other]\nA=1\n[chess]\nB=2\n", "chess", "A", -99}, {"A=1\n[chess]\nB=2\n", "chess", "A", -99},
        {"[chess]\n;A=5\n#A=6\n", "chess", "A", -99}, {"[ chess ]\n  A  =  42  \n", "chess", "A", 42},
        {"[chess]\nA=4294967295\n", "chess", "A", -1}, {"[chess]\r\nA=5\r\nB=6\r\n", "chess", "B", 6},
        {"\xEF\xBB\xBF[chess]\nA=1\n", "chess", "A", 1}, {"[chess]\nA=1\nA=2\n", "chess", "A", 1},
        {"[chess]\nA=1\n[x]\n[Chess]\nB=2\n", "chess", "B", 2}, {"[chess]\nA=8", "chess", "A", 8},
    };
    // clang-format on
    CTempFolder folder;
    for (const auto& c : cases) {
        CIniFile ini(folder.Write("test.ini", c.sContent));
        EXPECT_EQ(ini.ReadInt(c.pszSection, c.pszKey, -99), c.nExpected) << c.sContent;
    }
}

TEST(IniRead, MissingFileGivesDefaults) {
    CTempFolder folder;
    CIniFile ini(folder.File("absent.ini"));
    EXPECT_EQ(ini.ReadInt("chess", "A", 7), 7);
    EXPECT_EQ(ini.ReadString("chess", "A", "dflt", 100), "dflt");
}

TEST(IniRead, StringsLoseQuotesAndAreCutToCodePoints) {
    CTempFolder folder;
    CIniFile ini(folder.Write("test.ini", "[chess]\nPath=\"C:\\data\\\"\nName=żółw\nEmpty=\n"));
    EXPECT_EQ(ini.ReadString("chess", "path", "", 255), "C:\\data\\");
    EXPECT_EQ(ini.ReadString("chess", "Name", "", 2), "żó");
    EXPECT_EQ(ini.ReadString("chess", "Empty", "dflt", 255), "");
    EXPECT_EQ(ini.ReadString("chess", "Missing", "dflt", 2), "df");
}

// A write changes only its key, and leaves no temporary file behind.
TEST(IniWrite, ChangesOnlyTheKey) {
    // The file before (none when empty), the key and value written to section "chess", the file after.
    // clang-format off
    const struct { std::string sBefore; const char* pszKey; const char* pszValue; std::string sAfter; } cases[] = {
        {"; options\r\n[chess]\r\nA=1\r\nB=2\r\n[other]\r\nA=9\r\n", "a", "5",
         "; options\r\n[chess]\r\nA=5\r\nB=2\r\n[other]\r\nA=9\r\n"},
        {"[CHESS]\nQuickMode = 1\n", "QUICKMODE", "0", "[CHESS]\nQuickMode =0\n"},
        {"[chess]\nA=1\n\n[other]\nB=2\n", "C", "3", "[chess]\nA=1\nC=3\n\n[other]\nB=2\n"},
        {"[chess]\nA=1\n[chess]\nB=2\n", "C", "3", "[chess]\nA=1\nC=3\n[chess]\nB=2\n"},
        {"[other]\nB=2", "A", "1", "[other]\nB=2\n\n[chess]\nA=1\n"},
        {"[other]\r\nB=2\r\n", "A", "1", "[other]\r\nB=2\r\n\r\n[chess]\r\nA=1\r\n"},
        {"", "A", "1", "[chess]\nA=1\n"},
        {"\xEF\xBB\xBF[chess]\nA=1\n", "A", "2", "\xEF\xBB\xBF[chess]\nA=2\n"},
        {"[chess]\nA=1\nB=2\n", "A", "x\ny", "[chess]\nA=x y\nB=2\n"},
        {"[chess]\n;A=1\n", "A", "2", "[chess]\n;A=1\nA=2\n"},
    };
    // clang-format on
    for (const auto& c : cases) {
        CTempFolder folder;
        if (!c.sBefore.empty()) folder.Write("test.ini", c.sBefore);
        ASSERT_TRUE(CIniFile(folder.File("test.ini")).WriteString("chess", c.pszKey, c.pszValue));
        EXPECT_EQ(folder.Read("test.ini"), c.sAfter) << c.sBefore;
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
    }
}

TEST(IniWrite, FailureLeavesNoTemporaryFile) {
    CTempFolder folder;
    EXPECT_FALSE(CIniFile(folder.File("missing") / "test.ini").WriteInt("chess", "A", 1));
    std::filesystem::create_directory(folder.File("folder.ini"));  // the replacing rename fails
    EXPECT_FALSE(CIniFile(folder.File("folder.ini")).WriteInt("chess", "A", 1));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.File("")), {}), 1);
}

TEST(AutoSaveDescriptor, RoundTripsNamesTheSavingProcessAndCutsTheDescription) {
    CTempFolder folder;
    std::filesystem::path path = folder.File("AutoSave.tmpReg.ini");
    TAutoSaveDescriptor saved;
    saved.m_sDescription = "Kowalski, Szachy 1950, #7";
    saved.m_nHeuristicsOnStart = 0x80000001u;
    saved.m_bHeuristicsOnStartSelectedByUser = true;
    saved.m_sHeuristicsOnStartString = "KeepBlackKingOnEdge,SyzygyLevels(5)";
    saved.m_nMaxMemRatioForPrecalculatedData = 30;
    saved.m_nMaxMemRatioPerProblem = 45;
    saved.m_nProcessId = 1;  // ignored: the writer names itself
    ASSERT_TRUE(WriteAutoSaveDescriptor(path, saved));

    TAutoSaveDescriptor read = ReadAutoSaveDescriptor(path);
    EXPECT_EQ(read.m_sDescription, saved.m_sDescription);
    EXPECT_EQ(read.m_nHeuristicsOnStart, saved.m_nHeuristicsOnStart);
    EXPECT_TRUE(read.m_bHeuristicsOnStartSelectedByUser);
    EXPECT_EQ(read.m_sHeuristicsOnStartString, saved.m_sHeuristicsOnStartString);
    EXPECT_EQ(read.m_nMaxMemRatioForPrecalculatedData, 30);
    EXPECT_EQ(read.m_nMaxMemRatioPerProblem, 45);
    EXPECT_EQ(read.m_nProcessId, getpid());
    EXPECT_EQ(read.m_sProcessFileName, std::filesystem::read_symlink("/proc/self/exe").string());
    saved.m_sDescription = std::string(3000, 'd');  // cut on reading
    ASSERT_TRUE(WriteAutoSaveDescriptor(path, saved));
    EXPECT_EQ(ReadAutoSaveDescriptor(path).m_sDescription.size(), kMaxDescriptionLength);
}

}  // namespace
}  // namespace moremate
