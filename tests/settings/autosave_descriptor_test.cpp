#include "settings/autosave_descriptor.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

using testing::CTempFolder;

TEST(AutoSaveDescriptor, RoundTripsAndNamesTheSavingProcess) {
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
}

TEST(AutoSaveDescriptor, LongDescriptionIsCutOnReading) {
    CTempFolder folder;
    std::filesystem::path path = folder.File("x.ini");
    TAutoSaveDescriptor saved;
    saved.m_sDescription = std::string(3000, 'd');
    ASSERT_TRUE(WriteAutoSaveDescriptor(path, saved));
    EXPECT_EQ(ReadAutoSaveDescriptor(path).m_sDescription.size(), kMaxDescriptionLength);
}

}  // namespace
}  // namespace moremate
