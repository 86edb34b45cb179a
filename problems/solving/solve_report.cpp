#include "solve_report.h"

#include <fmt/core.h>
#include <fmt/ranges.h>

#include <nlohmann/json.hpp>

namespace moremate {

std::string ReportText(const TProblemReport& r) {
    std::string text = fmt::format("Problem {} {}: {}", r.problem, r.stipulation, r.result);
    if (r.error) text += fmt::format(" ({})", *r.error);
    text += '\n';
    if (r.registerLoad) text += fmt::format("  {}\n", *r.registerLoad);
    if (!r.keysLong.empty()) text += fmt::format("  keys: {}\n", fmt::join(r.keysLong, ", "));
    for (size_t i = 0; i < r.found.size(); ++i) {
        const TFoundKey& f = r.found[i];
        text += fmt::format("  {} found in pass {}{}\n", r.keysLong[i], f.pass,
                            f.heuristics.empty() ? "" : " with " + f.heuristics);
    }
    if (!r.mainLine.empty()) text += fmt::format("  main line: {}\n", r.mainLine);
    text += fmt::format("  {} ms, {} nodes\n", r.msec, r.nodes);
    if (!r.outcome.empty()) text += r.outcome + '\n';
    if (r.match) {
        text += *r.match ? "  agrees with the answer\n"
                         : fmt::format("  DIFFERS from the answer: {}\n", fmt::join(*r.expected, ", "));
    }
    if (!r.firstMoveOrder.empty())
        text += fmt::format("  order of first moves: {}\n", fmt::join(r.firstMoveOrder, ", "));
    for (const std::string& failure : r.failedChecks) text += fmt::format("Failed: {}\n", failure);
    return text;
}

void TSolveSummary::Add(const TProblemReport& report) {
    ++problems;
    if (report.result == "solved") ++solved;
    if (report.match) {
        ++withAnswer;
        if (*report.match) ++agreeing;
    }
}

std::string SummaryText(const TSolveSummary& s) {
    return fmt::format("Summary: {} problem{}, {} solved, {} of {} agreeing with their answers, {:.1f} s\n",
                       s.problems, s.problems == 1 ? "" : "s", s.solved, s.agreeing, s.withAnswer,
                       static_cast<double>(s.msec) / 1000);
}

std::string ReportJson(const TProblemReport& r) {
    nlohmann::json j;
    j["problem"] = r.problem;
    j["stipulation"] = r.stipulation;
    j["result"] = r.result;
    j["keys"] = r.keys;
    j["found"] = nlohmann::json::array();
    for (const TFoundKey& f : r.found)
        j["found"].push_back({{"key", f.key}, {"pass", f.pass}, {"heuristics", f.heuristics}});
    j["expected"] = r.expected ? nlohmann::json(*r.expected) : nlohmann::json(nullptr);
    j["match"] = r.match ? nlohmann::json(*r.match) : nlohmann::json(nullptr);
    j["msec"] = r.msec;
    j["nodes"] = r.nodes;
    j["error"] = r.error ? nlohmann::json(*r.error) : nlohmann::json(nullptr);
    j["order"] = r.firstMoveOrder;
    j["checks"] = r.failedChecks;
    j["register"] = r.registerLoad ? nlohmann::json(*r.registerLoad) : nlohmann::json(nullptr);
    return j.dump() + '\n';
}

}  // namespace moremate
