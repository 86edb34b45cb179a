#include <gtest/gtest.h>

#include "problems/format/collection_files.h"
#include "problems/format/record_writer.h"
#include "settings/bounded_file.h"
#include "tests/problems/problem_text.h"
#include "tests/support/kill_test.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using testing::CTempFolder;
using testing::FileText;
using testing::ReadAll;

std::string Record(int number, const char* stipulation, const char* description) {
    return std::to_string(number) + " " + stipulation + "\n{\n\tDescription: " + description +
           "\n\tFEN: 8/Q7/8/8/8/8/8/2k1K2R w K - 0 1\n}\n";
}

TEST(Collections, LaterRecordOfANumberReplacesTheEarlierInItsPlace) {
    CRecordingReporter reporter;
    std::string log;
    TCollectionReading reading;
    reading.questions.pReporter = &reporter;
    reading.log = [&](const std::string& line) { log += line; };
    const std::vector<ProblemEntry> entries =
        ReadAll("UTF-8\n\n" + Record(7, "#2", "first") + Record(3, "#2", "other") + Record(7, "#3", "second"),
                reading);

    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].m_nNumber, 7u);
    EXPECT_EQ(entries[0].m_sDescription, "second");
    EXPECT_EQ(entries[0].m_nPlies, 5);
    EXPECT_EQ(entries[1].m_nNumber, 3u);
    EXPECT_EQ(log, "Problem 7 read from file.\nProblem 3 read from file.\nProblem 7 read from file.\n");
    const auto reports = reporter.Reports();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports[0].sTitle, "Warning");
    EXPECT_EQ(reports[0].sText, "Problem id 7 defined more than once - the last definition prevails.");
}

TEST(Collections, EncodingMarkIsOptional) {
    for (const std::string prefix : {"", "UTF-8\n\n", "utf-8 ", "\xEF\xBB\xBFUTF-8\n"}) {
        const std::vector<ProblemEntry> entries =
            ReadAll(prefix + Record(1, "#2", "a") + Record(2, "#2", "b"));
        EXPECT_EQ(entries.size(), 2u) << prefix;
    }
    EXPECT_TRUE(ReadAll("UTF-8\n\n").empty());
    EXPECT_TRUE(ReadAll("").empty());
}

TEST(Collections, ReadingAFileReplacesOrAppends) {
    testing::CTempFolder folder;
    const auto first = folder.Write("first.cp", "UTF-8\n\n" + Record(1, "#2", "a") + Record(2, "#2", "b"));
    const auto second = folder.Write("second.cp", "UTF-8\n\n" + Record(2, "#3", "c") + Record(5, "#2", "d"));
    std::vector<ProblemEntry> entries;
    ReadCollectionFile(first, entries, false, {});
    ReadCollectionFile(second, entries, true, {});
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[1].m_sDescription, "c");
    ReadCollectionFile(second, entries, false, {});
    EXPECT_EQ(entries.size(), 2u);
    EXPECT_EQ(test::ErrorOf([&] { ReadCollectionFile(folder.File("missing.cp"), entries, false, {}); }),
              "Error opening file: " + folder.File("missing.cp").string() + " (No such file or directory)");
}

TEST(Collections, EmptySlotsAreNotWritten) {
    std::vector<ProblemEntry> entries = ReadAll(Record(1, "#2", "a") + Record(2, "#2", "b"));
    entries[0].m_nNumber = kEmptySlotNumber;
    EXPECT_EQ(WriteCollectionText(entries), "UTF-8\n\n" + WriteRecord(entries[1]));
}

TEST(Collections, EveryFeatureSurvivesWritingAndReading) {
    const std::string text =
        "UTF-8\n"
        "3 s#3 guicheckbestdefence 2 THREADS 8 SafeMode Requires KQKR\n"
        "//#TAGS\n//#2nd prize\n//!VARIANTS\n//!Main variant: a7-f2\n//!ENDVARIANTS\n"
        "//@SortIndications: a7-f2\n//@tmpreg=12\n"
        "{ DESC: Selfmate\n W: Ke1, Qa7, Rh1, Pb2 B: Kc1, Pb3 SWM: a7-f2, h1-h3 }\n"
        "4 NoMirror { FEN: r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1\n Moves: 1. 0-0 0-0-0\n}\n";
    const std::vector<ProblemEntry> entries = ReadAll(text);
    ASSERT_EQ(entries.size(), 2u);
    const std::string written = WriteCollectionText(entries);
    EXPECT_EQ(ReadAll(written), entries);
    EXPECT_EQ(WriteCollectionText(ReadAll(written)), written);
}

// The shared collections read, write and read again to the same records, in the canonical layout.
TEST(Collections, SharedCollectionsReadAndWriteBackUnchanged) {
    for (const auto& [file, count] :
         {std::pair{"directmates.cp", 55u}, {"longmates.cp", 3u}, {"matetrack.cp", 111u}}) {
        const std::string original = testing::FileText(std::string(MOREMATE_SHARED_PROBLEMS) + "/" + file);
        const std::vector<ProblemEntry> entries = ReadAll(original);
        ASSERT_EQ(entries.size(), count) << file;
        const std::string written = WriteCollectionText(entries);
        EXPECT_EQ(ReadAll(written), entries) << file;
        EXPECT_EQ(WriteCollectionText(ReadAll(written)), written) << file;
        EXPECT_EQ(written, original) << file;
    }
}

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
    EXPECT_EQ(test::ErrorOf([&] { WriteCollectionFile(folder.File("set.cp"), Problems("x")); }),
              "Error opening file: " + folder.File("set.cp").string() + " (a folder)");
    EXPECT_TRUE(std::filesystem::is_directory(folder.File("set.cp")));
    EXPECT_FALSE(std::filesystem::exists(folder.File("set.cp.BAK")));
}

TEST(CollectionFiles, AFailedSaveKeepsTheFileAndItsBackupAndLeavesNoTemporaryFile) {
    CTempFolder folder;
    const auto file = folder.File("set.cp");
    WriteCollectionFile(file, Problems("first"));
    WriteCollectionFile(file, Problems("second"));
    const std::string longer(5'000, 'x');
    try {
        testing::CFileSizeLimit limit(1'000);
        WriteCollectionFile(file, Problems(longer.c_str()));
        ADD_FAILURE() << "saved beyond the limit";
    } catch (const ChessException& exception) {
        EXPECT_EQ(std::string(exception.what()),
                  "Error writing file: " + file.string() + " (File too large)");
    }
    EXPECT_EQ(FileText(file), WriteCollectionText(Problems("second")));
    EXPECT_EQ(FileText(folder.File("set.cp.BAK")), WriteCollectionText(Problems("first")));
    EXPECT_FALSE(std::filesystem::exists(folder.File("set.cp.tmp")));
}

TEST(CollectionFiles, KilledWhileSavingTheOldFileAndItsBackupAreThere) {
    CTempFolder folder;
    const auto file = folder.File("set.cp");
    WriteCollectionFile(file, Problems("first"));
    testing::KillWhileWriting("collection", [&] { WriteCollectionFile(file, Problems("second")); });
    EXPECT_EQ(FileText(file), WriteCollectionText(Problems("first")));
    EXPECT_EQ(FileText(folder.File("set.cp.BAK")), WriteCollectionText(Problems("first")));
    WriteCollectionFile(file, Problems("third"));  // the next save goes through
    EXPECT_EQ(FileText(file), WriteCollectionText(Problems("third")));
}

TEST(TextFiles, FoldersAndEndlessFilesAreRefused) {
    CTempFolder folder;
    EXPECT_EQ(test::ErrorOf([&] { ReadTextFile(folder.Path()); }),
              "Error opening file: " + folder.Path().string() + " (a folder)");
    EXPECT_EQ(test::ErrorOf([&] { ReadTextFile("/dev/zero", {.nStreamBytes = 2 << 20}); }),
              "Error opening file: /dev/zero (larger than the 2 MB this program reads)");
    EXPECT_EQ(ReadTextFile(folder.Write("a.cp", "UTF-8\n")), "UTF-8\n");
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
