// The Polish and Ukrainian forms of the libraries' messages: every message constant and every
// literal an exception of the libraries starts with, as the sources spell them, has its row.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "engine/run/run_texts.h"
#include "settings/reporter.h"
#include "ui/library_text_reporter.h"
#include "ui/library_texts.h"

using namespace moremate;
using namespace moremate::ui;

namespace {

// The libraries whose messages reach the window.
constexpr const char* kLibraryFolders[] = {"core",      "problems", "registers", "precalc",
                                           "tablebase", "engine",   "settings"};

// Constants that are no messages: names of files, folders and sections, markers written into
// files, labels of heuristics and log lines. The processor affinity text is the same in every
// language.
const std::set<std::string> kNotMessages = {"kAffinityChangedOutside",
                                            "kAlphabet",
                                            "kAutoSaveFileName",
                                            "kAutoSaveSection",
                                            "kBestDefenceVariantName",
                                            "kBlanks",
                                            "kCustomPrecalcFolder",
                                            "kDegreesSeparator",
                                            "kFenMarker",
                                            "kFooter",
                                            "kHeader",
                                            "kInsert",
                                            "kInstanceLockFile",
                                            "kItemSeparator",
                                            "kKingMoveLabel",
                                            "kLoadLogFile",
                                            "kLoadLogHeader",
                                            "kLoadScratchFile",
                                            "kMirrorPrefix",
                                            "kNameEnd",
                                            "kNewCollectionText",
                                            "kNextLevelLogLine",
                                            "kNoDynamicDlfu",
                                            "kOptionsSection",
                                            "kPrecalcFolder",
                                            "kProofNumberPassLabel",
                                            "kQuickModeItem",
                                            "kReferencePrefix",
                                            "kRegionsPhaseLabel",
                                            "kRegisterFileExtension",
                                            "kRotatedPrefix",
                                            "kSavedRegisterFolder",
                                            "kSchema",
                                            "kSelect",
                                            "kSkipThisSuffix",
                                            "kSolvedProblemsFolder",
                                            "kTablebaseCacheFolder",
                                            "kUnnamed",
                                            "kUtf8Bom",
                                            "kWhiteOnly",
                                            "kWithBlack"};

// The sources whose functions return the messages the window shows: the broken rules of a
// position and of the heuristics dialog, Black's defence and the lines of a run's passes.
const std::set<std::string> kReturningMessages = {"validation.cpp", "heuristic_checks.cpp",
                                                  "black_defence.cpp", "passes.cpp", "relaxation_path.cpp"};

std::string FileText(const std::filesystem::path& file) {
    std::ifstream in(file);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// The text of the C++ string literals that follow `at`, adjacent literals joined, up to the first
// character that is neither a literal nor a blank.
std::string Literals(const std::string& source, size_t at) {
    std::string text;
    for (;;) {
        at = source.find_first_not_of(" \t\n", at);
        if (at == std::string::npos || source[at] != '"') return text;
        for (++at; source[at] != '"'; ++at) {
            if (source[at] != '\\') {
                text += source[at];
                continue;
            }
            const char escaped = source[++at];
            text += escaped == 'n' ? '\n' : escaped;
        }
        ++at;
    }
}

struct TSourceMessage {
    std::string where;  // the constant's name or the file of the exception
    std::string text;
};

// The message constants and the leading literals of the exceptions and the other messages of
// every library source.
std::vector<TSourceMessage> SourceMessages() {
    static const std::regex constant(
        R"((?:constexpr const char\*|const char\* const|constexpr std::string_view|const std::string) (k\w+) =)");
    // The exceptions, and the messages of the file and position readers and of the heuristics checks.
    static const std::regex exception(
        R"((?:ChessException\((?:std::string\()?|ThrowFileError\(|RequireColon\(lexer, |TVerdict\(|Joined\(\{)(?=\"))");
    static const std::regex returned(R"(return (?=\"))");
    std::vector<TSourceMessage> messages;
    for (const char* folder : kLibraryFolders) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(
                 std::filesystem::path(MOREMATE_SOURCE_DIR) / folder)) {
            const std::string extension = entry.path().extension().string();
            if (extension != ".h" && extension != ".cpp") continue;
            const std::string source = FileText(entry.path());
            for (std::sregex_iterator it(source.begin(), source.end(), constant), end; it != end; ++it) {
                const std::string text = Literals(source, it->position() + it->length());
                if (!text.empty() && !kNotMessages.contains((*it)[1])) messages.push_back({(*it)[1], text});
            }
            const std::string name = entry.path().filename().string();
            for (const std::regex* pattern : {&exception, &returned}) {
                if (pattern == &returned && !kReturningMessages.contains(name)) continue;
                for (std::sregex_iterator it(source.begin(), source.end(), *pattern), end; it != end; ++it)
                    messages.push_back({name, Literals(source, it->position() + it->length())});
            }
        }
    }
    return messages;
}

// Each line of `english` is another in `translated`.
void ExpectEveryLineTranslated(const std::string& english, const std::string& translated,
                               const std::string& where) {
    std::istringstream from(english), to(translated);
    for (std::string line, other; std::getline(from, line) && std::getline(to, other);)
        EXPECT_TRUE(line.empty() || other != line) << where << ": no translation of \"" << line << "\"";
}

}  // namespace

TEST(LibraryTexts, EveryMessageOfTheLibrariesHasItsPolishAndUkrainianForm) {
    const std::vector<TSourceMessage> messages = SourceMessages();
    ASSERT_GT(messages.size(), 150u);  // the sources were found and read
    for (const TSourceMessage& message : messages)
        for (int language : {kPolish, kUkrainian})
            ExpectEveryLineTranslated(message.text, LibraryText(message.text, language), message.where);
}

TEST(LibraryTexts, EachEnglishTextHasOneRowWithBothForms) {
    std::set<std::string> english;
    for (const TLibraryTextRow& row : LibraryTextTable()) {
        EXPECT_TRUE(english.insert(row.english).second) << "twice: " << row.english;
        EXPECT_STRNE(row.polish, "") << row.english;
        EXPECT_STRNE(row.ukrainian, "") << row.english;
    }
}

TEST(LibraryTexts, FixedPartsAreTranslatedAndTheVariablePartsKept) {
    const std::pair<std::string, std::string> cases[] = {
        {"Cannot open file /tmp/a b.dat", "Nie można otworzyć pliku /tmp/a b.dat"},
        {"Error reading file", "Błąd odczytu pliku"},
        {"Error reading file (not a regular file)", "Błąd odczytu pliku (to nie jest zwykły plik)"},
        // The longest known start wins.
        {"Error reading file in TAggregatedTemporaryChessboardRegister::Load",
         "Błąd odczytu pliku w TAggregatedTemporaryChessboardRegister::Load"},
        {"Problem 7 not found", "Zadanie 7 nie zostało znalezione"},
        {"x.cp: Problem number expected. Found: 1a", "x.cp: Oczekiwano numeru zadania. Znaleziono: 1a"},
        {"line one\nUnexpected end of file.\n", "line one\nNieoczekiwany koniec pliku.\n"},
        {NoSolutionText(12, true),
         "Nie znaleziono rozwiązania (12 s) UWAGA: przebieg bez heurystyk jest obecnie wyłączony (zob. okno "
         "wyboru heurystyk)"},
        {SolutionsSoFarText(3), "Dotąd znalezione rozwiązania: 3"},
        {QuitQuestionText(2), "Trwa szukanie rozwiązania, liczba zadań: 2.\nCzy na pewno chcesz zakończyć?"},
        // A message after a known start is translated as a line of its own.
        {"Result of analysis: No solution found (3 sec.) (stopped by user)",
         "Wynik analizy: Nie znaleziono rozwiązania (3 s) (przerwane przez użytkownika)"},
        {"Engine stopped: Position repetition", "Silnik zatrzymany: Powtórzenie pozycji"},
        {"3 solution(s) found of the problem 12", "3 – liczba znalezionych rozwiązań zadania 12"},
        {"Buckets count = 8 (0.50 elems per bucket)\nElements count = 4",
         "Liczba kubełków = 8 (0.50 elem. na kubełek)\nLiczba elementów = 4"},
        {"Nieznany tekst: 5", "Nieznany tekst: 5"},
    };
    for (const auto& [english, polish] : cases) {
        EXPECT_EQ(LibraryText(english, kPolish), polish);
        EXPECT_EQ(LibraryText(english, kEnglish), english);
    }
    EXPECT_EQ(LibraryText("Cannot open file x.dat", kUkrainian), "Не вдається відкрити файл x.dat");
}

TEST(LibraryTexts, ReportsReachTheirTargetInTheLanguageSetLast) {
    CRecordingReporter target;
    CLibraryTextReporter reporter(target, kEnglish);
    reporter.Report("Question", "Recompress it now?", ReportButtons::YesNo);
    reporter.SetLanguage(kPolish);
    reporter.Report("Question", "Recompress it now?", ReportButtons::YesNo);
    reporter.Report("Error", "Generation stopped", ReportButtons::Ok);  // error titles stay English
    const std::vector<CRecordingReporter::TReport> reports = target.Reports();
    ASSERT_EQ(reports.size(), 3u);
    EXPECT_EQ(reports[0].sTitle + "|" + reports[0].sText, "Question|Recompress it now?");
    EXPECT_EQ(reports[1].sTitle + "|" + reports[1].sText, "Pytanie|Skompresować go ponownie teraz?");
    EXPECT_EQ(reports[1].buttons, ReportButtons::YesNo);
    EXPECT_EQ(reports[2].sTitle + "|" + reports[2].sText, "Error|Generowanie zatrzymane");
}
