// The proof-number pass: before the heuristic passes of a long problem, a df-pn search of the
// root proves a key or disproves every first move without heuristics. Keys are walked again
// (proof_walk.h) before they are reported; disproved first moves are "no mate" with the same
// standing as pass 2's. What it leaves open, the passes after it search as usual, finding its
// facts in the temporary register.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/search/proof_number_search.h"
#include "solver.h"

namespace moremate {

// `auto`: the position type check decides (problems beyond the exhaustive range); `only`: the
// pass alone, with the whole time limit.
enum class TProofNumberMode : uint8_t { Auto, Off, Only };

// "auto", "off", "only"; false for any other text.
bool ReadProofNumberMode(const std::string& text, TProofNumberMode& mode);

// The pass's label in status lines, logs and reports.
inline constexpr const char* kProofNumberPassLabel = "pn";

struct TProofNumberPassRequest {
    TChessboard position;  // prepared for solving
    size_t keyLimit = 1;   // SIZE_MAX: every key
    std::vector<TMove> preferredFirstMoves;
    int64_t budgetMs = 0;      // the pass's share of the time; 0: until settled or stopped
    int timeLimitSeconds = 0;  // the run's time left: the stop is raised then; 0 = none
    uint64_t tableBytes = 0;   // memory of the pass's table
    int threads = 1;           // threads sharing the table
    TSearchEnvironment environment;
};

struct TProofNumberPassResult {
    uint8_t result = kDoubtful;  // kMate with keys, kNoMate when every first move is disproved
    bool complete = false;       // every first move settled, or the key limit reached
    bool stopped = false;        // stop request or the run's time limit
    std::vector<TKey> keys;
    std::vector<TMove> disproved;
    uint64_t nodes = 0;
    int64_t msec = 0;
    TProofNumberStats stats;
    TProofNumberTableStats table;
    uint64_t walkNodes = 0;  // nodes of the proof walks
};

TProofNumberPassResult RunProofNumberPass(const TProofNumberPassRequest& request, std::atomic<bool>* stop);

// The pass's figures: "Proof-number pass: ..." lines for the register statistics.
std::string ProofNumberStatsText(const TProofNumberPassResult& result);

// The table's share of the temporary register's memory quota.
uint64_t ProofNumberTableBytes(uint64_t registerQuotaMB);

}  // namespace moremate
