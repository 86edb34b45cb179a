// What `moremate solve` reports for one problem, as text or as one JSON object per line.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace moremate {

// A key with the pass that found it and that pass's heuristics.
struct TFoundKey {
    std::string key;
    std::string pass;
    std::string heuristics;
};

struct TProblemReport {
    unsigned problem = 0;
    std::string stipulation;            // "#3"
    std::string result;                 // "solved", "no solution", "stopped" or "error"
    std::vector<std::string> keys;      // answer form: "e2-e4", "h7:g8Q"
    std::vector<std::string> keysLong;  // long notation: "Qa7-f2"
    std::vector<TFoundKey> found;
    std::optional<std::vector<std::string>> expected;  // the record's answer, when it has one
    std::optional<bool> match;
    std::string mainLine;  // of the first key
    long long msec = 0;
    unsigned long long nodes = 0;
    std::optional<std::string> error;
    std::string outcome;  // the run's closing texts: the solutions found, a time limit hit, an error
    std::vector<std::string> firstMoveOrder;      // when the record expects one: White's first moves in
                                                  // the order the solver tries them
    std::vector<std::string> failedChecks;        // the checks after the run that failed (run_checks.h)
    std::optional<std::string> registerLoad;      // the load report of the register the record refers to
    std::optional<std::string> proofNumberStats;  // the figures of the proof-number pass, when it ran
    std::optional<std::string> regionStats;       // the figures of the regions, when they were used
};

// The closing line of a run over a collection: how many problems ran, how many were solved and how
// many of those with an answer agree with it, and the time the whole run took.
struct TSolveSummary {
    unsigned problems = 0;
    unsigned solved = 0;
    unsigned withAnswer = 0;
    unsigned agreeing = 0;
    long long msec = 0;

    void Add(const TProblemReport& report);
};

std::string ReportText(const TProblemReport& report);
std::string SummaryText(const TSolveSummary& summary);
std::string ReportJson(const TProblemReport& report);

}  // namespace moremate
