#include "partial_verification.h"

#include <algorithm>
#include <set>

namespace moremate {
namespace {

void AddWithSuccessors(const TPrecalcType& type, std::vector<TPrecalcType>& order) {
    if (std::ranges::find(order, type) != order.end()) return;
    for (const TPrecalcType& next : type.Successors())
        if (!next.WhiteBare()) AddWithSuccessors(next, order);
    order.push_back(type);
}

bool SuccessorsPresent(const TPrecalcType& type, const std::set<std::string>& present) {
    const std::vector<TPrecalcType> successors = type.Successors();
    return std::ranges::all_of(successors, [&present](const TPrecalcType& next) {
        return next.WhiteBare() || present.contains(next.Description());
    });
}

void AddTypeList(const char* title, const std::vector<std::string>& descriptions,
                 std::vector<std::string>& notes) {
    if (descriptions.empty()) return;
    std::string line = title;
    for (const std::string& description : descriptions) line += " " + description;
    notes.push_back(line);
}

}  // namespace

std::vector<std::string> PartialVerificationNotes(const TPartialVerification& result) {
    std::vector<std::string> notes;
    AddTypeList("Not on disk:", result.m_vMissing, notes);
    AddTypeList("On disk, not checked (a type it leads to is missing):", result.m_vUnchecked, notes);
    if (result.m_bStopped) notes.emplace_back("Stopped before the types left");
    return notes;
}

std::vector<TPrecalcType> TypesGeneratedFor(const TPrecalcType& type) {
    std::vector<TPrecalcType> order;
    AddWithSuccessors(type, order);
    return order;
}

TPartialVerification VerifyPartialData(TGlobalRegisters& registers, const TPrecalcType& type,
                                       unsigned threads, bool bProgress, const std::atomic<bool>* stop) {
    TPartialVerification result;
    std::set<std::string> present;  // on disk with every type it leads to
    for (const TPrecalcType& next : TypesGeneratedFor(type)) {
        if (stop && stop->load(std::memory_order_relaxed)) {
            result.m_bStopped = true;
            break;
        }
        const std::string description = next.Description();
        if (registers.FileToLoad(next).empty()) {
            result.m_vMissing.push_back(description);
            continue;
        }
        if (!SuccessorsPresent(next, present)) {
            result.m_vUnchecked.push_back(description);
            continue;
        }
        present.insert(description);
        result.m_vVerified.emplace_back(
            description, VerifyTypeData(registers, registers.Require(next), threads, bProgress));
    }
    return result;
}

}  // namespace moremate
