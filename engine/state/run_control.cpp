#include "run_control.h"

#include <algorithm>

#include "solving_run.h"

namespace moremate {

thread_local CRunControl::TSlot* CRunControl::s_pAnalysed = nullptr;

void CRunControl::Stop() {
    std::lock_guard lock(m_mutex);
    m_bUserStop = true;
    m_bStop = true;
    g_bStopPending = true;
    RunningProblems().StoppingAll();
    m_cvResume.notify_all();
}

void CRunControl::RunStarting() {
    std::lock_guard lock(m_mutex);  // not between the two flags of Stop()
    m_bStop = m_bUserStop.load();
}

void CRunControl::Pause() {
    std::lock_guard lock(m_mutex);
    m_bPaused = true;
    UpdateAttention();
}

void CRunControl::HoldOneThread() {
    std::lock_guard lock(m_mutex);
    ++m_nHoldsPending;
    UpdateAttention();
}

void CRunControl::Resume() {
    std::lock_guard lock(m_mutex);
    m_bPaused = false;
    m_nHoldsPending = 0;
    ++m_nResumes;
    UpdateAttention();
    m_cvResume.notify_all();
}

int CRunControl::HeldThreads() const {
    std::lock_guard lock(m_mutex);
    return m_nHeld;
}

bool CRunControl::Skip(size_t count) {
    std::lock_guard lock(m_mutex);
    const TSlot* first = nullptr;
    for (const TSlot* slot : m_vAnalysed)
        if (!slot->bSkip && (!first || slot->index < first->index)) first = slot;
    if (!first) return false;
    SkipMoves(Following(first->index, count));
    return true;
}

// Move `from` and the `count` - 1 that come after it: in the order of the round when the search
// keeps one, else by index.
std::vector<size_t> CRunControl::Following(size_t from, size_t count) const {
    std::vector<size_t> indices{from};
    if (!m_pSteering) {
        for (size_t index = from + 1; index < from + count; ++index) indices.push_back(index);
        return indices;
    }
    for (const TWaitingMove& next : m_pSteering->Waiting())
        if (indices.size() < count) indices.push_back(next.index);
    return indices;
}

void CRunControl::SkipMoves(const std::vector<size_t>& indices) {
    const auto among = [](const std::vector<size_t>& list, size_t index) {
        return std::find(list.begin(), list.end(), index) != list.end();
    };
    for (const size_t index : indices)
        if (!among(m_vSkipped, index)) m_vSkipped.push_back(index);
    for (TSlot* slot : m_vAnalysed) {
        if (slot->bSkip || !among(indices, slot->index)) continue;
        slot->bSkip = true;
        ++m_nSkipsPending;
    }
    UpdateAttention();
}

bool CRunControl::MoveToEnd() {
    std::lock_guard lock(m_mutex);
    return m_pSteering && m_pSteering->MoveToEnd();
}

bool CRunControl::SwapWithNext() {
    std::lock_guard lock(m_mutex);
    return m_pSteering && m_pSteering->SwapWithNext();
}

bool CRunControl::SkipTo(const TMove& move) {
    std::lock_guard lock(m_mutex);
    const std::optional<size_t> current = m_pSteering ? m_pSteering->BringForward(move) : std::nullopt;
    if (current) SkipMoves({*current});
    return current.has_value();
}

std::vector<TWaitingMove> CRunControl::WaitingFirstMoves() const {
    std::lock_guard lock(m_mutex);
    return m_pSteering ? m_pSteering->Waiting() : std::vector<TWaitingMove>{};
}

void CRunControl::PassStarted(int number, const std::string& letter, uint32_t mask) {
    std::lock_guard lock(m_mutex);
    m_pass = TPassProgress{number, letter, mask, 0};
    m_nFirstMoves = m_nFirstMovesBegun = 0;
}

// The moves concluded; without a search that keeps the order, those before the earliest one in
// progress.
TPassProgress CRunControl::Pass() const {
    std::lock_guard lock(m_mutex);
    TPassProgress pass = m_pass;
    size_t done = m_nFirstMovesBegun;
    for (const TSlot* slot : m_vAnalysed) done = std::min(done, slot->index);
    if (m_pSteering) done = m_pSteering->Concluded();
    if (m_nFirstMoves > 0)
        pass.percent = 100.0 * static_cast<double>(done) / static_cast<double>(m_nFirstMoves);
    return pass;
}

void CRunControl::FirstMovesStarted(size_t count, CFirstMoveSteering* steering) {
    std::lock_guard lock(m_mutex);
    m_nFirstMoves = count;
    m_nFirstMovesBegun = 0;
    m_vSkipped.clear();
    m_pSteering = steering;
}

void CRunControl::FirstMovesEnded() {
    std::lock_guard lock(m_mutex);
    m_pSteering = nullptr;
}

void CRunControl::Attend() {
    std::unique_lock lock(m_mutex);
    if (m_bPaused && !m_bStop) {
        ++m_nHeld;
        m_cvResume.wait(lock, [this] { return !m_bPaused || m_bStop; });
        --m_nHeld;
    } else if (m_nHoldsPending > 0 && !m_bStop) {
        --m_nHoldsPending;
        UpdateAttention();
        ++m_nHeld;
        const unsigned resumes = m_nResumes;
        m_cvResume.wait(lock, [this, resumes] { return m_nResumes != resumes || m_bStop; });
        --m_nHeld;
    }
    if (s_pAnalysed && s_pAnalysed->bSkip && !m_bStop) throw TMoveSkipped{};
}

void CRunControl::UpdateAttention() {
    m_nAttention.store(m_bPaused || m_nSkipsPending > 0 || m_nHoldsPending > 0 ? 1 : 0,
                       std::memory_order_relaxed);
}

CRunControl::TFirstMove::TFirstMove(CRunControl& control, size_t index)
    : m_control(control), m_slot{index, false}, m_pOuter(s_pAnalysed) {
    std::lock_guard lock(control.m_mutex);
    const std::vector<size_t>& skipped = control.m_vSkipped;
    m_bSkippedBefore = std::find(skipped.begin(), skipped.end(), index) != skipped.end();
    if (m_bSkippedBefore) return;
    control.m_nFirstMovesBegun = std::max(control.m_nFirstMovesBegun, index + 1);
    control.m_vAnalysed.push_back(&m_slot);
    s_pAnalysed = &m_slot;
}

CRunControl::TFirstMove::~TFirstMove() {
    if (m_bSkippedBefore) return;
    std::lock_guard lock(m_control.m_mutex);
    auto& analysed = m_control.m_vAnalysed;
    analysed.erase(std::find(analysed.begin(), analysed.end(), &m_slot));
    if (m_slot.bSkip) {
        --m_control.m_nSkipsPending;
        m_control.UpdateAttention();
    }
    s_pAnalysed = m_pOuter;
}

}  // namespace moremate
