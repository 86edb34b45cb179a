#include "problem_collection.h"

#include <algorithm>
#include <exception>

#include "core/chess_exception.h"
#include "problem_search.h"
#include "problems/format/collection_files.h"
#include "problems/format/collection_reader.h"

namespace moremate::ui {

void TProblemCollection::Open(const std::filesystem::path& file, const TUserQuestions& questions) {
    std::vector<ProblemEntry> entries;
    std::exception_ptr fault;  // a fault after some records: they are shown, then the fault told
    try {
        ReadCollectionFile(file, entries, false, TCollectionReading{questions, {}});
    } catch (const CCollectionReadError&) {
        if (entries.empty()) throw;
        fault = std::current_exception();
    }
    if (entries.empty()) throw ChessException("No problem in file " + file.string());
    m_vEntries = std::move(entries);
    m_pathFile = file;
    m_nCurrent = 0;
    m_bModified = false;
    m_vBack.clear();
    m_vForward.clear();
    if (fault) std::rethrow_exception(fault);
}

void TProblemCollection::Append(const std::filesystem::path& file, const TUserQuestions& questions) {
    std::vector<ProblemEntry> entries = m_vEntries;
    ReadCollectionFile(file, entries, true, TCollectionReading{questions, {}});
    m_vEntries = std::move(entries);
    m_bModified = true;
}

void TProblemCollection::Save() {
    WriteCollectionFile(m_pathFile, m_vEntries);
    m_bModified = false;
}

void TProblemCollection::SaveAs(const std::filesystem::path& file) {
    WriteCollectionFile(file, m_vEntries);
    m_pathFile = file;
    m_bModified = false;
}

void TProblemCollection::Set(size_t index, const ProblemEntry& entry) {
    ProblemEntry& record = m_vEntries.at(index);
    if (record == entry) return;
    record = entry;
    m_bModified = true;
}

bool TProblemCollection::GoTo(size_t index) {
    if (index >= m_vEntries.size() || index == m_nCurrent) return false;
    Moved(m_nCurrent);
    m_nCurrent = index;
    return true;
}

bool TProblemCollection::GoToNumber(uint32_t number) {
    const auto it = std::find_if(m_vEntries.begin(), m_vEntries.end(),
                                 [number](const ProblemEntry& e) { return e.m_nNumber == number; });
    if (it == m_vEntries.end()) return false;
    GoTo(static_cast<size_t>(it - m_vEntries.begin()));
    return true;
}

// One step through the history: the current problem goes onto `to`, the last of `from` becomes
// the current one.
bool TProblemCollection::Step(std::vector<size_t>& from, std::vector<size_t>& to) {
    if (from.empty()) return false;
    to.push_back(m_nCurrent);
    m_nCurrent = from.back();
    from.pop_back();
    return true;
}

bool TProblemCollection::GoBack() {
    return Step(m_vBack, m_vForward);
}

bool TProblemCollection::GoForward() {
    return Step(m_vForward, m_vBack);
}

bool TProblemCollection::Find(const std::string& query, bool forward) {
    for (size_t i = m_nCurrent; forward ? i + 1 < m_vEntries.size() : i > 0;) {
        i = forward ? i + 1 : i - 1;
        if (ProblemMatches(m_vEntries[i], query)) return GoTo(i);
    }
    return false;
}

uint32_t TProblemCollection::HighestNumber() const {
    uint32_t highest = 0;
    for (const ProblemEntry& e : m_vEntries) highest = std::max(highest, e.m_nNumber);
    return highest;
}

void TProblemCollection::AddProblem() {
    std::vector<ProblemEntry> fresh;
    ReadCollectionText(kNewCollectionText, fresh, {});
    AddProblems(std::move(fresh));
}

void TProblemCollection::AddProblems(std::vector<ProblemEntry> entries) {
    if (entries.empty()) return;
    const size_t first = m_vEntries.size();
    uint32_t number = HighestNumber();
    for (ProblemEntry& e : entries) {
        e.m_nNumber = ++number;
        m_vEntries.push_back(std::move(e));
    }
    m_bModified = true;
    GoTo(first);
}

size_t TProblemCollection::RemovePresentIn(const std::vector<ProblemEntry>& others) {
    const auto present = [&others](const ProblemEntry& e) {
        return std::any_of(others.begin(), others.end(),
                           [&e](const ProblemEntry& o) { return SameProblem(e, o); });
    };
    std::vector<ProblemEntry> kept;
    size_t current = 0;
    for (size_t i = 0; i < m_vEntries.size(); ++i) {
        if (i == m_nCurrent) current = kept.size();
        if (!present(m_vEntries[i])) kept.push_back(m_vEntries[i]);
    }
    if (kept.empty()) kept.push_back(m_vEntries.back());
    const size_t removed = m_vEntries.size() - kept.size();
    if (removed == 0) return 0;
    m_vEntries = std::move(kept);
    m_nCurrent = std::min(current, m_vEntries.size() - 1);
    m_vBack.clear();
    m_vForward.clear();
    m_bModified = true;
    return removed;
}

void TProblemCollection::Moved(size_t from) {
    m_vBack.push_back(from);
    m_vForward.clear();
}

}  // namespace moremate::ui
