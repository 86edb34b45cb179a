#include "engine/search/proof_number_search.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

#include "core/movegen.h"
#include "engine/passes/proof_number_pass.h"
#include "engine/search/proof_walk.h"
#include "tests/engine/map_store.h"
#include "tests/support/positions.h"

namespace moremate {
namespace {

using test::Problem;

struct TRig {
    explicit TRig(uint64_t tableBytes = 8 << 20) : table(tableBytes), proofs(Env(), table, nullptr) {}
    TSearchEnvironment Env() {
        TSearchEnvironment env;
        env.store = &store;
        return env;
    }
    test::CMapStore store;
    CProofNumberTable table;
    TProofNumberSearch proofs;
};

// Every first move of the small shared problems is proved or disproved as the ordinary search
// finds it, and the root agrees with the record's answer.
TEST(ProofNumberSearch, AgreesWithTheOrdinarySearchOnSharedDirectmates) {
    const auto problems = test::SharedDirectmates(1, 3);
    ASSERT_GT(problems.size(), 20u);
    for (const auto& p : problems) {
        SCOPED_TRACE(p.fen);
        const TChessboard root = Problem(p.fen, 2 * p.moves - 1);
        TRig rig;
        EXPECT_EQ(rig.proofs.Prove(root), p.solvable ? kMate : kNoMate);
        TMoveList moves;
        GenerateLegalMoves(root, moves);
        TMateSearch plain(TSearchEnvironment{});
        for (const TMove& m : moves) {
            TChessboard child;
            PlayMove(root, m, child);
            EXPECT_EQ(rig.proofs.Prove(child), plain.FindForcedMate(child));
        }
    }
}

// A node is a position with its half-moves left: a line that comes back to a position meets a
// node of its own, and what is proved there holds for the position without the line.
TEST(ProofNumberSearch, ResultsDoNotDependOnTheLine) {
    const std::string fen = "7k/8/5K2/8/8/8/8/6R1 w - -";
    test::TestLine line(Problem(fen, 9));
    line.Play("Rg1-a1").Play("Kh8-g8").Play("Ra1-g1").Play("Kg8-h8");  // back where it started
    TRig rig, fresh;
    EXPECT_EQ(rig.proofs.Prove(line.Now()), kMate);
    EXPECT_EQ(fresh.proofs.Prove(Problem(fen, 5)), kMate);
    TChessboard tooShort = Problem(fen, 1);
    EXPECT_EQ(rig.proofs.Prove(tooShort), kNoMate);
    // The facts stored agree with a plain search of each position by itself.
    EXPECT_EQ(rig.store.Lookup(line.Now(), 5), kMate);
    EXPECT_EQ(rig.store.Lookup(line.Now(), 1), kNoMate);
}

// A table of a few buckets loses entries all the time: the results stay right, the figures show
// the replacements and collections.
TEST(ProofNumberSearch, TinyTableStaysRight) {
    const auto problems = test::SharedDirectmates(1, 4);
    TRig rig(1024);
    for (const auto& p : problems) {
        SCOPED_TRACE(p.fen);
        EXPECT_EQ(rig.proofs.Prove(Problem(p.fen, 2 * p.moves - 1)), p.solvable ? kMate : kNoMate);
    }
    const TProofNumberTableStats stats = rig.table.Stats();
    EXPECT_EQ(stats.capacity, 32u);
    EXPECT_GT(stats.replacements, 0u);
    EXPECT_GT(stats.collections, 0u);
    EXPECT_LE(stats.used, stats.capacity);
}

// The table starts at 16 MB and doubles up to its size while two threads store and probe: every
// entry not given up to another in a full bucket is found again with its numbers.
TEST(ProofNumberTable, GrowsToItsSizeKeepingItsEntries) {
    CProofNumberTable table(64 << 20, true);
    EXPECT_EQ(table.Stats().capacity, (16u << 20) / CProofNumberTable::kEntryBytes);
    constexpr uint64_t kPerThread = 300'000;
    const auto key = [](uint64_t i) {
        uint64_t z = (i + 1) * 0x9E3779B97F4A7C15ULL;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        return TPositionKey{z ^ (z >> 27), i + 1};
    };
    const auto numbers = [](uint64_t i) {
        return TProofNumbers{uint32_t(i % 1000 + 1), uint32_t(i % 7 + 1)};
    };
    const auto store = [&](uint64_t first) {
        for (uint64_t i = first; i < first + kPerThread; ++i) table.Store(key(i), numbers(i), 1);
    };
    std::atomic<uint64_t> found{0};
    const auto probe = [&](uint64_t first) {
        for (uint64_t i = first; i < first + kPerThread; ++i) {
            TProofNumbers out;
            if (!table.Probe(key(i), out)) continue;
            EXPECT_EQ(out.pn, numbers(i).pn);
            EXPECT_EQ(out.dn, numbers(i).dn);
            ++found;
        }
    };
    for (const auto& step : {std::function<void(uint64_t)>(store), std::function<void(uint64_t)>(probe)}) {
        std::thread other(step, kPerThread);
        step(0);
        other.join();
    }
    const TProofNumberTableStats stats = table.Stats();
    EXPECT_EQ(stats.capacity, (64u << 20) / CProofNumberTable::kEntryBytes);
    EXPECT_EQ(found + stats.replacements, 2 * kPerThread);
    EXPECT_EQ(stats.used, found.load());
    EXPECT_LT(stats.replacements, 2 * kPerThread / 50);
}

TEST(ProofWalk, WalksProofsAndRefusesTheRest) {
    const TChessboard root = Problem("7k/8/5K2/8/8/8/8/6R1 w - -", 3);
    TRig rig;
    ASSERT_EQ(rig.proofs.Prove(root), kMate);
    TMateSearch search(TSearchEnvironment{});
    CProofWalk walk(rig.proofs);
    const TMove mating = search.MatingMove(root, 3);
    TChessboard key, other;
    PlayMove(root, mating, key);
    PlayMove(root, TMove{6, 62}, other);  // Rg1-g8+ Kxg8
    EXPECT_TRUE(walk.Holds(key));
    EXPECT_FALSE(walk.Holds(other));
    const std::vector<TMove> line = walk.Line(root, mating);
    ASSERT_EQ(line.size(), 3u);
    test::TestLine played(root);
    for (const TMove& m : line) played.Play(m);
    EXPECT_TRUE(IsMate(played.Now()));
}

TEST(ProofNumberPass, LongCompositionKeyAndAllSolutions) {
    TProofNumberPassRequest request;
    request.position = Problem("8/8/8/8/1k6/1p6/pp1p1Q2/rrbK4 w - - 0 1", 15);  // #8, key Qf2-b6+
    request.tableBytes = 32 << 20;
    test::CMapStore store;
    request.environment.store = &store;
    TProofNumberPassResult single = RunProofNumberPass(request, nullptr);
    ASSERT_EQ(single.keys.size(), 1u);
    EXPECT_EQ(single.keys[0].move, (TMove{13, 41}));
    EXPECT_TRUE(single.complete);
    EXPECT_GE(single.keys[0].mainLine.size(), 3u);

    request.position = Problem("8/8/8/8/R7/2k5/8/4K2R w K - 0 1", 5);  // #3 with one key
    request.keyLimit = SIZE_MAX;
    const TProofNumberPassResult all = RunProofNumberPass(request, nullptr);
    EXPECT_TRUE(all.complete);
    TMoveList moves;
    GenerateLegalMoves(request.position, moves);
    EXPECT_EQ(all.keys.size() + all.disproved.size(), static_cast<size_t>(moves.count));
    TMateSearch plain(TSearchEnvironment{});
    for (const TKey& key : all.keys) {
        TChessboard child;
        PlayMove(request.position, key.move, child);
        EXPECT_EQ(plain.FindForcedMate(child), kMate);
    }
}

// Two threads share the table and settle first moves apart: the same keys, the same verdicts.
TEST(ProofNumberPass, ThreadsAgreeWithOneThread) {
    for (const auto& p : test::SharedDirectmates(1, 3)) {
        SCOPED_TRACE(p.fen);
        TProofNumberPassRequest request;
        request.position = Problem(p.fen, 2 * p.moves - 1);
        request.keyLimit = SIZE_MAX;
        request.tableBytes = 4 << 20;
        std::vector<TMove> keys[2], disproved[2];
        for (int threads = 1; threads <= 2; ++threads) {
            request.threads = threads;
            const TProofNumberPassResult r = RunProofNumberPass(request, nullptr);
            EXPECT_TRUE(r.complete);
            for (const TKey& key : r.keys) keys[threads - 1].push_back(key.move);
            disproved[threads - 1] = r.disproved;
        }
        EXPECT_EQ(keys[0], keys[1]);
        EXPECT_EQ(disproved[0], disproved[1]);
        EXPECT_EQ(keys[0].empty(), !p.solvable);
    }
}

TEST(ProofNumberPass, ModesAndTexts) {
    TProofNumberMode mode = TProofNumberMode::Off;
    EXPECT_TRUE(ReadProofNumberMode("only", mode));
    EXPECT_EQ(mode, TProofNumberMode::Only);
    EXPECT_FALSE(ReadProofNumberMode("sometimes", mode));
    EXPECT_EQ(mode, TProofNumberMode::Only);
    EXPECT_EQ(ProofNumberTableBytes(1), 16ULL << 20);
    EXPECT_EQ(ProofNumberTableBytes(1 << 20), 4ULL << 30);
}

}  // namespace
}  // namespace moremate
