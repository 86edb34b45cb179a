#include "problems/format/collection_files.h"

#include <gtest/gtest.h>

#include "problems/format/record_writer.h"
#include "tests/problems/problem_text.h"

namespace moremate {
namespace {

using testing::CTempFolder;
using testing::FileText;

std::vector<ProblemEntry> Problems(const char* description) {
    return testing::ReadAll(std::string("1 #2 { D: ") + description + "\n W: Ke1 B: Ke8 }");
}

TEST(CollectionFiles, SavingKeepsTheFormerFileAsBackup) {
    CTempFolder folder;
    const auto file = folder.File("set.cp");
    const auto backup = folder.File("set.cp.BAK");

    WriteCollectionFile(file, Problems("first"));
    EXPECT_EQ(FileText(file), WriteCollectionText(Problems("first")));
    EXPECT_FALSE(std::filesystem::exists(backup));

    WriteCollectionFile(file, Problems("second"));
    EXPECT_EQ(FileText(backup), WriteCollectionText(Problems("first")));

    WriteCollectionFile(file, Problems("third"));
    EXPECT_EQ(FileText(backup), WriteCollectionText(Problems("second")));
    EXPECT_EQ(FileText(file), WriteCollectionText(Problems("third")));
    EXPECT_FALSE(std::filesystem::exists(folder.File("set.cp.tmp")));
}

TEST(CollectionFiles, AFolderIsNeitherOverwrittenNorBackedUp) {
    CTempFolder folder;
    std::filesystem::create_directory(folder.File("set.cp"));
    try {
        WriteCollectionFile(folder.File("set.cp"), Problems("x"));
        FAIL();
    } catch (const ChessException& error) {
        EXPECT_EQ(error.what(), "Error opening file: " + folder.File("set.cp").string());
    }
    EXPECT_TRUE(std::filesystem::is_directory(folder.File("set.cp")));
    EXPECT_FALSE(std::filesystem::exists(folder.File("set.cp.BAK")));
}

TEST(CollectionFiles, NewCollectionHoldsTheTemplate) {
    CTempFolder folder;
    const auto file = folder.File("new.cp");
    CRecordingReporter reporter;
    ASSERT_TRUE(CreateNewCollection(file, {&reporter, kEnglish}));
    EXPECT_TRUE(reporter.Reports().empty());
    EXPECT_EQ(FileText(file), kNewCollectionText);
    const ProblemEntry entry = testing::ReadOne(FileText(file));
    EXPECT_EQ(entry.m_nPlies, 3);
    EXPECT_EQ(entry.m_sDescription, "Click here to change problem description");
    EXPECT_EQ(entry.m_position.board.WhiteKingSquare(), 4);
    EXPECT_EQ(entry.m_position.board.BlackKingSquare(), 60);
}

TEST(CollectionFiles, ExistingFileIsReplacedOnlyWhenTheUserAgrees) {
    CTempFolder folder;
    const auto file = folder.Write("old.cp", "old text");
    CRecordingReporter reporter;
    reporter.QueueAnswer(ReportAnswer::No);
    EXPECT_FALSE(CreateNewCollection(file, {&reporter, kPolish}));
    EXPECT_EQ(FileText(file), "old text");
    ASSERT_EQ(reporter.Reports().size(), 1u);
    EXPECT_EQ(reporter.Reports()[0].sTitle, "Pytanie");
    EXPECT_EQ(reporter.Reports()[0].sText,
              "File " + file.string() + " already exists.\nDo you want to replace it with a new file?");

    EXPECT_TRUE(CreateNewCollection(file, {&reporter, kEnglish}));
    EXPECT_EQ(FileText(file), kNewCollectionText);
    EXPECT_EQ(FileText(folder.File("old.cp.BAK")), "old text");
}

TEST(CollectionFiles, ScratchCopiesTakeTheNextFreeNumberUnderTmp) {
    CTempFolder folder;
    const std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    const ProblemEntry entry = Problems("scratch").front();
    const std::filesystem::path first = WriteScratchCopy(entry);
    const std::filesystem::path second = WriteScratchCopy(entry);
    std::filesystem::current_path(previous);

    EXPECT_EQ(first, folder.Path() / "tmp" / "1.cp");
    EXPECT_EQ(second, folder.Path() / "tmp" / "2.cp");
    EXPECT_EQ(FileText(second), "UTF-8\n\n" + WriteRecord(entry));
}

}  // namespace
}  // namespace moremate
