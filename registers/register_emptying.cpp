// EmptySomeDataWhenRegisterFull of the aggregated register and the process-wide state it uses.
#include "register_emptying.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <mutex>

#include "aggregated_register.h"

namespace moremate {

namespace {

std::atomic<bool> g_bEmptyingRegister{false};
std::mutex g_emptyingMutex;
std::atomic<uint16_t> g_nLastLevelEmptied{0};

constexpr int64_t kMinMsBetweenEmptyings = 64;
constexpr uint32_t kLastLevel = 255;

// Whether the memory freed so far lets the process allocate again. The volatile keeps the
// compiler from dropping the allocation.
bool TrialAllocationSucceeds() {
    void* volatile p = std::malloc(1024);
    const bool bSucceeded = p != nullptr;
    std::free(p);
    return bSucceeded;
}

}  // namespace

int64_t EmptyingClockMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

uint16_t LastLevelEmptied() {
    return g_nLastLevelEmptied.load();
}

void ResetLastLevelEmptied() {
    g_nLastLevelEmptied.store(0);
}

// Exact integer forms of floor(capacity * 2 / 3) and floor(capacity * 0.32).
uint32_t EmptyingThreshold(uint32_t nCapacity, bool bFromInsertion) {
    if (bFromInsertion) {
        return std::max<uint32_t>(static_cast<uint32_t>(uint64_t{nCapacity} * 2 / 3) / 8, 524'288);
    }
    return std::max<uint32_t>(static_cast<uint32_t>(uint64_t{nCapacity} * 8 / 25) / 8, 4'096);
}

bool TAggregatedTemporaryChessboardRegister::EmptySomeDataWhenRegisterFull(bool bFromInsertion) {
    Services().Log("EmptySomeDataWhenRegisterFull started");
    if (g_bEmptyingRegister.load()) return false;
    std::lock_guard lock(g_emptyingMutex);
    g_bEmptyingRegister.store(true);
    // Destroyed before the lock: the flag is cleared first, on every way out.
    struct TClearFlag {
        ~TClearFlag() { g_bEmptyingRegister.store(false); }
    } clearFlag;

    if (EmptyingClockMs() - m_nLastEmptyingMs <= kMinMsBetweenEmptyings) return true;
    if (bFromInsertion && FreeRoom() >= Capacity() / 4) return true;
    if (m_autosave) m_autosave();
    if (!RemoveByLevels(bFromInsertion)) Services().Log("!!!! EmptySomeDataWhenRegisterFull failed.");
    Services().Log("EmptySomeDataWhenRegisterFull complete");
    m_nLastEmptyingMs = EmptyingClockMs();
    return true;
}

uint32_t TAggregatedTemporaryChessboardRegister::FreeRoom() const {
    const uint32_t nCount = ElementCount();
    const uint32_t nCapacity = Capacity();
    return nCount >= nCapacity ? 0 : nCapacity - nCount;
}

// Unpinned doubtfulness registers go first, then positions with n below 4, then two levels at a
// time from where the last emptying stopped. Returns false when all levels were tried in vain.
bool TAggregatedTemporaryChessboardRegister::RemoveByLevels(bool bFromInsertion) {
    const uint32_t nCapacity = Capacity();
    const uint32_t nCountBefore = ElementCount();
    uint64_t nRemoved = RemoveAllUnpinnedDoubtful();
    bool bEnough = nRemoved > (bFromInsertion ? 262'144u : 4'096u);
    if (!bEnough && ShortPositions()) {
        nRemoved += RemoveNMovers(3);
        bEnough = nRemoved > 4'096;
        if (nRemoved < nCapacity / 3) ClearShortPositions();
    }
    const uint32_t nThreshold = EmptyingThreshold(nCapacity, bFromInsertion);
    const uint32_t nLast = g_nLastLevelEmptied.load();
    for (uint32_t k = nLast > 6 ? nLast - 2 : 5; k <= kLastLevel; k += 2) {
        if (bEnough && ElementCount() < nCountBefore && TrialAllocationSucceeds()) return true;
        if (m_registerFileStop && m_registerFileStop()) return true;
        nRemoved += RemoveNMovers(static_cast<uint16_t>(k));
        nRemoved += RemoveNMovers(static_cast<uint16_t>(k - 1));
        g_nLastLevelEmptied.store(static_cast<uint16_t>(k));
        bEnough = bEnough || nRemoved > nThreshold || FreeRoom() >= nCapacity / 5;
    }
    return false;
}

}  // namespace moremate
