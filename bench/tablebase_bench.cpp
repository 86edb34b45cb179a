// The online tablebase client against a service on the loopback address: queries per second (a
// new connection for each, the cache never hit), a position answered from the cache, and the
// reading of an answer alone. The network's own delay comes on top of the first figure.
#include <benchmark/benchmark.h>

#include "core/fen.h"
#include "core/validation.h"
#include "tablebase/answer_reader.h"
#include "tablebase/lichess.h"
#include "tablebase/tablebase_position.h"
#include "tests/support/loopback_tablebase.h"
#include "tests/support/tablebase_answers.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

const std::string kFen = "k7/8/2K5/8/8/8/8/1R6 w - - 0 1";

TChessboard Board() {
    TChessboard board;
    ReadFen(kFen, board);
    PrepareForSolving(board, 1, true);
    return board;
}

std::string Answer() {
    return testing::AnswerBody(Board(), R"("category":"win","dtm":3,"dtz":3)",
                               {{"c6c7", R"("category":"loss","dtm":-2,"dtz":-2)"}},
                               R"("category":"loss","dtm":null,"dtz":-5)");
}

TLiChessSettings Settings(const std::string& url) {
    return {.sURL = url, .nTimeoutMs = 2000, .bWarnOnRepetition = false, .nLanguageId = kEnglish};
}

void BM_ServiceQuery(benchmark::State& state) {
    const std::map<std::string, std::string> answers = {{kFen, Answer()}};
    testing::CLoopbackTablebase service(answers);
    testing::CTempFolder folder;
    const CTablebaseCache cache(folder.Path(), true);  // read-only and empty: every query goes out
    CRecordingReporter reporter;
    CLiChess liChess(Settings(service.URL("ok")), cache, reporter);
    const TChessboard board = Board();
    for (auto _ : state) benchmark::DoNotOptimize(liChess.Query(board));
    if (!reporter.Reports().empty()) state.SkipWithError(reporter.Reports().front().sText.c_str());
}
BENCHMARK(BM_ServiceQuery)->Unit(benchmark::kMicrosecond);

void BM_CacheHit(benchmark::State& state) {
    testing::CTempFolder folder;
    const CTablebaseCache cache(folder.Path(), false);
    CRecordingReporter reporter;
    CLiChess liChess(Settings("http://127.0.0.1:1/"), cache, reporter);
    const TChessboard board = Board();
    cache.Store(CacheName(board), kFen, ReadTablebaseAnswer(Answer()));
    for (auto _ : state) benchmark::DoNotOptimize(liChess.Query(board));
    if (!reporter.Reports().empty()) state.SkipWithError("the cache missed");
}
BENCHMARK(BM_CacheHit)->Unit(benchmark::kMicrosecond);

void BM_ReadAnswer(benchmark::State& state) {
    const std::string body = Answer();
    for (auto _ : state) benchmark::DoNotOptimize(ReadTablebaseAnswer(body));
}
BENCHMARK(BM_ReadAnswer)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace moremate
