// The client against a service on the loopback address: answers, the cache, and every failure
// with its report. Timeouts are kept short so that the slowest case takes a fraction of a second.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

#include "settings/instance_lock.h"
#include "tablebase/answer_file.h"
#include "tablebase/lichess.h"
#include "tablebase/tablebase_position.h"
#include "tablebase/tablebase_service.h"
#include "tests/support/hostile_files.h"
#include "tests/support/loopback_tablebase.h"
#include "tests/support/positions.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

using testing::CLoopbackTablebase;
using testing::CSilentPort;
using testing::CTempFolder;
using testing::kHostileKinds;
using testing::MakeHostileFile;
using testing::THostileKind;

const std::string kFen = "4k3/6KP/8/8/8/8/7p/8 w - - 0 1";
const std::string kAnswer =
    R"({"dtz":1,"precise_dtz":1,"dtm":17,"dtw":null,"category":"win","moves":[{"uci":"h7h8q","san":"h8=Q+",)"
    R"("dtz":-2,"precise_dtz":-2,"dtm":-16,"dtw":null,"category":"loss"}]})";
const std::map<std::string, std::string> kAnswers = {{kFen, kAnswer}};
constexpr int kTimeoutMs = 1500;  // loose enough for a loaded machine and the sanitizers

TLiChessSettings Settings(const std::string& url, bool warnOnRepetition = false) {
    return {.sURL = url,
            .nTimeoutMs = kTimeoutMs,
            .bWarnOnRepetition = warnOnRepetition,
            .nLanguageId = kEnglish};
}

std::vector<std::string> Texts(const CRecordingReporter& reporter) {
    std::vector<std::string> texts;
    for (const auto& report : reporter.Reports()) texts.push_back(report.sText);
    return texts;
}

struct TClient {
    CTempFolder folder;
    CTablebaseCache cache{folder.Path(), false};
    CRecordingReporter reporter;
    CLiChess liChess;
    explicit TClient(const TLiChessSettings& settings) : liChess(settings, cache, reporter) {}
};

TEST(LiChess, AsksOnceThenAnswersFromTheCacheWithTheServiceGone) {
    CLoopbackTablebase service(kAnswers);
    TClient client(Settings(service.URL("ok")));
    const TChessboard board = test::Board(kFen);
    const auto first = client.liChess.Query(board);
    ASSERT_TRUE(first);
    EXPECT_FALSE(first->bFromCache);
    EXPECT_EQ(first->answer.m_shDtm, 17);
    EXPECT_TRUE(std::filesystem::exists(client.cache.FilePath(CacheName(board))));
    service.Stop();

    CLiChess again(Settings("http://127.0.0.1:1/"), client.cache, client.reporter);
    const auto second = again.Query(board);
    ASSERT_TRUE(second);
    EXPECT_TRUE(second->bFromCache);
    EXPECT_EQ(second->answer, first->answer);
    EXPECT_EQ(service.Requests(), 1);
    EXPECT_TRUE(client.reporter.Reports().empty());
}

TEST(LiChess, FollowsARedirect) {
    CLoopbackTablebase service(kAnswers);
    TClient client(Settings(service.URL("redirect")));
    const auto lookup = client.liChess.Query(test::Board(kFen));
    ASSERT_TRUE(lookup);
    EXPECT_EQ(lookup->answer.m_nMoves, 1);
}

TEST(LiChess, EveryFailureHasItsReport) {
    CLoopbackTablebase service(std::map<std::string, std::string>{});
    const CSilentPort silent(true), refused(false);
    const struct {
        std::string url;
        std::string report;
        bool bOnline;  // still asked after the failure
    } cases[] = {
        {service.URL("500"), kGetHTMLPageFailed, true},
        {service.URL("loop"), kGetHTMLPageFailed, true},
        {service.URL("short"), kGetHTMLPageFailed, true},
        {service.URL("huge"), kGetHTMLPageFailed, true},
        {service.URL("ok"), kGetHTMLPageFailed, true},  // 404: a position it does not have
        {service.URL("garbage"), kUnreadableAnswer + kFen, true},
        {silent.URL(), kGetHTMLPageFailed, false},
        {refused.URL(), kNoInternetConnection, false},
    };
    for (const auto& c : cases) {
        TClient client(Settings(c.url));
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(client.liChess.Query(test::Board(kFen))) << c.url;
        EXPECT_EQ(client.liChess.Online(), c.bOnline) << c.url;
        EXPECT_FALSE(client.liChess.Query(test::Board(kFen))) << c.url;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(3 * kTimeoutMs))
            << c.url;
        // A service found missing is reported once and not asked again.
        std::vector<std::string> expected(c.bOnline ? 2 : 1, c.report);
        EXPECT_EQ(Texts(client.reporter), expected) << c.url;
        EXPECT_TRUE(std::filesystem::is_empty(client.folder.Path())) << c.url;
    }
}

// The first query of a client waits for libcurl to load; an abort meanwhile (or during the
// transfer) ends it without a report and leaves the service to be asked again.
TEST(LiChess, AnAbortedQueryIsNoFailureOfTheService) {
    CLoopbackTablebase service(kAnswers);
    TClient client(Settings(service.URL("ok")));
    const std::atomic<bool> abort{true};
    EXPECT_FALSE(client.liChess.Query(test::Board(kFen), &abort));
    EXPECT_TRUE(client.liChess.Online());
    EXPECT_TRUE(client.reporter.Reports().empty());
    const auto lookup = client.liChess.Query(test::Board(kFen));
    ASSERT_TRUE(lookup);
    EXPECT_EQ(lookup->answer.m_shDtm, 17);
}

TEST(LiChess, WarnsOfARepeatedAnswerWhenAsked) {
    CLoopbackTablebase service(kAnswers);
    for (bool warn : {false, true}) {
        TClient client(Settings(service.URL("ok"), warn));
        client.liChess.Query(test::Board(kFen));
        client.liChess.Query(test::Board(kFen));
        EXPECT_EQ(Texts(client.reporter).size(), warn ? 1u : 0u);
    }
}

TEST(LiChess, ASecondInstanceReadsTheCacheAndWritesNothing) {
    CLoopbackTablebase service(kAnswers);
    CTempFolder folder;
    const CInstanceLock first(folder.Path());
    ASSERT_TRUE(first.FirstInstance());
    TOptions options;
    options.m_sTablebaseURL = service.URL("ok");
    options.m_nTablebaseTimeoutMs = kTimeoutMs;
    CRecordingReporter reporter;
    CTablebaseService second(options, reporter, folder.Path());
    EXPECT_EQ(Texts(reporter), std::vector<std::string>{kSecondInstanceReadOnly});
    const TChessboard board = test::Board(kFen);
    ASSERT_TRUE(second.LiChess().Query(board));
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / kTablebaseCacheFolder));

    // What the first instance stored, the second reads.
    CTablebaseCache(folder.Path() / kTablebaseCacheFolder, false)
        .Store(CacheName(board), kFen, second.LiChess().Query(board)->answer);
    EXPECT_TRUE(second.LiChess().Query(board)->bFromCache);
}

TEST(AnswerCache, KeepsAnswersAndIgnoresFilesOfOtherPositions) {
    CTempFolder folder;
    const CTablebaseCache cache(folder.Path(), false);
    TTablebaseAnswer answer{.m_byWdl = kWdlWin, .m_shDtm = 17, .m_byDtz = 1, .m_nMoves = 2, .m_vMoves = {}};
    answer.m_vMoves = {
        {.m_byFrom = 55,
         .m_byTo = 63,
         .m_byPromotion = kKnight,
         .m_byWdl = kWdlLoss,
         .m_shDtm = kNoDtm,
         .m_byDtz = 3},
        {.m_byFrom = 54, .m_byTo = 45, .m_byWdl = kWdlDraw, .m_shDtm = -32767, .m_byDtz = kNoDtz}};
    ASSERT_TRUE(cache.Store("id", kFen, answer));
    EXPECT_EQ(cache.Find("id", kFen), answer);
    EXPECT_FALSE(cache.Find("id", "8/8/8/8/8/8/8/8 b - - 0 1"));
    EXPECT_FALSE(cache.Find("other", kFen));
    const std::string text = WriteAnswerText(kFen, answer);
    for (std::size_t cut : {text.size() - 3, text.size() / 2}) {
        folder.Write("cut.lichess", text.substr(0, cut));
        EXPECT_FALSE(cache.Find("cut", kFen)) << cut;
    }
    EXPECT_FALSE(CTablebaseCache(folder.Path(), true).Store("readonly", kFen, answer));
    EXPECT_FALSE(std::filesystem::exists(cache.FilePath("readonly")));
}

// A cache file that cannot be one is reported by name and the service asked instead.
TEST(AnswerCache, FolderPipeDeviceOrHugeFileIsReportedAndAskedAgain) {
    for (const THostileKind kind : kHostileKinds) {
        CLoopbackTablebase service(kAnswers);
        TClient client(Settings(service.URL("ok")));
        const TChessboard board = test::Board(kFen);
        const std::string message =
            MakeHostileFile(kind, client.cache.FilePath(CacheName(board)), 2 * kMaxAnswerBytes);
        const auto answer = client.liChess.Query(board);
        ASSERT_TRUE(answer) << message;
        EXPECT_FALSE(answer->bFromCache);
        EXPECT_EQ(answer->answer.m_shDtm, 17);
        EXPECT_EQ(Texts(client.reporter), std::vector<std::string>{message});
    }
}

TEST(TablebasePosition, AsksThreeToSevenPiecesWithoutCastling) {
    const struct {
        const char* fen;
        bool askable;
        const char* name;
    } cases[] = {
        {"4k3/6KP/8/8/8/8/7p/8 w - - 0 1", true, ""},         {"4k3/6KP/8/8/8/8/7p/8 b - - 0 1", true, "_b"},
        {"4k3/8/8/8/8/8/8/4K3 w - - 0 1", false, ""},         {"4k3/8/8/8/8/8/8/R3K3 w - - 0 1", false, ""},
        {"4k3/pppp4/8/8/8/8/PPPP4/4K3 w - - 0 1", false, ""},
    };
    for (const auto& c : cases) {
        const TChessboard board = test::Board(c.fen);
        EXPECT_EQ(WhyNotAskable(board).empty(), c.askable) << c.fen;
        EXPECT_EQ(TablebaseFen(board), c.fen);
        EXPECT_TRUE(CacheName(board).ends_with(c.name)) << c.fen;
    }
}

}  // namespace
}  // namespace moremate
