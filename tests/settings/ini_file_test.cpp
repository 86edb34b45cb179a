#include "settings/ini_file.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

using testing::CTempFolder;

struct TReadIntCase {
    const char* pszName;
    std::string sContent;
    const char* pszSection;
    const char* pszKey;
    int nExpected;  // with -99 as the default

    friend void PrintTo(const TReadIntCase& c, std::ostream* os) { *os << c.pszName; }
};

class IniReadInt : public ::testing::TestWithParam<TReadIntCase> {};

TEST_P(IniReadInt, ReadsLikeThePrivateProfileFunctions) {
    CTempFolder folder;
    CIniFile ini(folder.Write("test.ini", GetParam().sContent));
    EXPECT_EQ(ini.ReadInt(GetParam().pszSection, GetParam().pszKey, -99), GetParam().nExpected);
}

INSTANTIATE_TEST_SUITE_P(
    Values, IniReadInt,
    ::testing::Values(TReadIntCase{"Plain", "[chess]\nA=12\n", "chess", "A", 12},
                      TReadIntCase{"KeyCaseIgnored", "[chess]\nQuickMode=1\n", "chess", "QUICKMODE", 1},
                      TReadIntCase{"SectionCaseIgnored", "[CHESS]\nA=3\n", "chess", "a", 3},
                      TReadIntCase{"TextReadsAsZero", "[chess]\nA=abc\n", "chess", "A", 0},
                      TReadIntCase{"LeadingDigitsOnly", "[chess]\nA=12abc\n", "chess", "A", 12},
                      TReadIntCase{"Negative", "[chess]\nA=-3\n", "chess", "A", -3},
                      TReadIntCase{"PlusSign", "[chess]\nA=+7\n", "chess", "A", 7},
                      TReadIntCase{"LoneSignIsZero", "[chess]\nA=-\n", "chess", "A", 0},
                      TReadIntCase{"EmptyValueGivesDefault", "[chess]\nA=\n", "chess", "A", -99},
                      TReadIntCase{"MissingKey", "[chess]\nB=1\n", "chess", "A", -99},
                      TReadIntCase{"KeyOfAnotherSection", "[other]\nA=1\n[chess]\nB=2\n", "chess", "A", -99},
                      TReadIntCase{"KeyBeforeAnySection", "A=1\n[chess]\nB=2\n", "chess", "A", -99},
                      TReadIntCase{"CommentedOut", "[chess]\n;A=5\n#A=6\n", "chess", "A", -99},
                      TReadIntCase{"BlanksAround", "[ chess ]\n  A  =  42  \n", "chess", "A", 42},
                      TReadIntCase{"UnsignedMaskWraps", "[chess]\nA=4294967295\n", "chess", "A", -1},
                      TReadIntCase{"CrLfLines", "[chess]\r\nA=5\r\nB=6\r\n", "chess", "B", 6},
                      TReadIntCase{"ByteOrderMark", "\xEF\xBB\xBF[chess]\nA=1\n", "chess", "A", 1},
                      TReadIntCase{"FirstOfDuplicateKeys", "[chess]\nA=1\nA=2\n", "chess", "A", 1},
                      TReadIntCase{"SecondSectionOfSameName", "[chess]\nA=1\n[x]\n[Chess]\nB=2\n", "chess",
                                   "B", 2},
                      TReadIntCase{"NoLineBreakAtEnd", "[chess]\nA=8", "chess", "A", 8}),
    [](const auto& info) { return info.param.pszName; });

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

struct TWriteCase {
    const char* pszName;
    std::string sBefore;
    const char* pszKey;
    const char* pszValue;
    std::string sAfter;

    friend void PrintTo(const TWriteCase& c, std::ostream* os) { *os << c.pszName; }
};

class IniWrite : public ::testing::TestWithParam<TWriteCase> {};

TEST_P(IniWrite, ChangesOnlyTheKey) {
    CTempFolder folder;
    std::filesystem::path path = folder.File("test.ini");
    if (!GetParam().sBefore.empty()) folder.Write("test.ini", GetParam().sBefore);
    ASSERT_TRUE(CIniFile(path).WriteString("chess", GetParam().pszKey, GetParam().pszValue));
    EXPECT_EQ(folder.Read("test.ini"), GetParam().sAfter);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(path.parent_path()), {}), 1)
        << "the temporary file is left behind";
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Values, IniWrite, ::testing::Values(
    TWriteCase{"ReplacesKeepingEverythingElse", "; options\r\n[chess]\r\nA=1\r\nB=2\r\n[other]\r\nA=9\r\n", "a", "5",
        "; options\r\n[chess]\r\nA=5\r\nB=2\r\n[other]\r\nA=9\r\n"},
    TWriteCase{"KeepsSpellingOfSectionAndKey", "[CHESS]\nQuickMode = 1\n", "QUICKMODE", "0", "[CHESS]\nQuickMode =0\n"},
    TWriteCase{"AddsKeyAtEndOfItsSection", "[chess]\nA=1\n\n[other]\nB=2\n", "C", "3",
        "[chess]\nA=1\nC=3\n\n[other]\nB=2\n"},
    TWriteCase{"AddsKeyToFirstSectionOfThatName", "[chess]\nA=1\n[chess]\nB=2\n", "C", "3",
        "[chess]\nA=1\nC=3\n[chess]\nB=2\n"},
    TWriteCase{"AppendsMissingSection", "[other]\nB=2", "A", "1", "[other]\nB=2\n\n[chess]\nA=1\n"},
    TWriteCase{"NewLinesFollowFileLineEndings", "[other]\r\nB=2\r\n", "A", "1",
        "[other]\r\nB=2\r\n\r\n[chess]\r\nA=1\r\n"},
    TWriteCase{"CreatesMissingFile", "", "A", "1", "[chess]\nA=1\n"},
    TWriteCase{"KeepsByteOrderMark", "\xEF\xBB\xBF[chess]\nA=1\n", "A", "2", "\xEF\xBB\xBF[chess]\nA=2\n"},
    TWriteCase{"ValueStaysOneLine", "[chess]\nA=1\nB=2\n", "A", "x\ny", "[chess]\nA=x y\nB=2\n"},
    TWriteCase{"DoesNotMatchCommentedKey", "[chess]\n;A=1\n", "A", "2", "[chess]\n;A=1\nA=2\n"}),
    [](const auto& info) { return info.param.pszName; });
// clang-format on

TEST(IniWrite, FailureLeavesNoTemporaryFile) {
    CTempFolder folder;
    EXPECT_FALSE(CIniFile(folder.File("missing") / "test.ini").WriteInt("chess", "A", 1));
    std::filesystem::create_directory(folder.File("folder.ini"));  // the replacing rename fails
    EXPECT_FALSE(CIniFile(folder.File("folder.ini")).WriteInt("chess", "A", 1));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.File("")), {}), 1);
}

}  // namespace
}  // namespace moremate
