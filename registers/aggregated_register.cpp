#include "aggregated_register.h"

#include "register_emptying.h"

namespace moremate {

TAggregatedTemporaryChessboardRegister::TAggregatedTemporaryChessboardRegister(uint32_t nCapacity,
                                                                               size_t nBuckets)
    : TTemporaryChessboardRegister<0>(nCapacity, nBuckets), m_nLastEmptyingMs(EmptyingClockMs() - 100) {}

TAggregatedTemporaryChessboardRegister::~TAggregatedTemporaryChessboardRegister() = default;

uint32_t TAggregatedTemporaryChessboardRegister::ElementsBesideEntries() const {
    return DoubtfulElementCount() + SubproblemCount();
}

uint32_t TAggregatedTemporaryChessboardRegister::DoubtfulElementCount() const {
    return m_nDoubtfulElements.load(std::memory_order_relaxed);
}

void TAggregatedTemporaryChessboardRegister::AddOwnedElements(int64_t nDelta) {
    m_nDoubtfulElements.fetch_add(static_cast<uint32_t>(nDelta), std::memory_order_relaxed);
}

bool TAggregatedTemporaryChessboardRegister::InsertDoubtful(uint64_t nConfiguration, uint16_t n,
                                                            const TRegisterKey& position, bool bDoubtful,
                                                            TSolvingMode mode) {
    if (!Accepts(n)) return false;
    return StoreDoubtful(nConfiguration, [&](TDoubtfulnessRegister& doubtfulness) {
        return doubtfulness.Store(n, position, bDoubtful, mode);
    });
}

bool TAggregatedTemporaryChessboardRegister::Merge(uint64_t nConfiguration,
                                                   const TChessboardRegisterEntry& entry, uint32_t nHash) {
    if (nConfiguration == 0) return Merge(entry, nHash);
    return StoreDoubtful(nConfiguration, [&](TDoubtfulnessRegister& doubtfulness) {
        return doubtfulness.StoreLoaded(entry, nHash);
    });
}

std::optional<TChessboardRegisterEntry> TAggregatedTemporaryChessboardRegister::FindDoubtful(
    uint64_t nConfiguration, const TRegisterKey& position) const {
    std::shared_lock lock(m_lock);
    const TDoubtfulnessRegister* pRegister = FindDoubtfulRegister(nConfiguration);
    return pRegister ? pRegister->Find(position) : std::nullopt;
}

TAggregatedTemporaryChessboardRegister::TDoubtfulnessRegister*
TAggregatedTemporaryChessboardRegister::FindDoubtfulRegister(uint64_t nConfiguration) const {
    auto it = m_doubtful.find(nConfiguration);
    return it == m_doubtful.end() ? nullptr : it->second.get();
}

TAggregatedTemporaryChessboardRegister::TDoubtfulnessRegister&
TAggregatedTemporaryChessboardRegister::DoubtfulRegister(uint64_t nConfiguration) {
    std::shared_ptr<TDoubtfulnessRegister>& pRegister = m_doubtful[nConfiguration];
    if (!pRegister) {
        pRegister = std::make_shared<TDoubtfulnessRegister>(Capacity(), m_table.BucketCount(), this);
        pRegister->SetShortPositionsFlag(ShortPositions());
    }
    return *pRegister;
}

void TAggregatedTemporaryChessboardRegister::PinDoubtful(uint32_t nHeuristics, uint32_t nParameters) {
    std::lock_guard lock(m_pinsMutex);
    ++m_pins[ConfigurationKey(nHeuristics, nParameters)];
}

uint32_t TAggregatedTemporaryChessboardRegister::PinCount(uint64_t nConfiguration) const {
    std::lock_guard lock(m_pinsMutex);
    auto it = m_pins.find(nConfiguration);
    return it == m_pins.end() ? 0 : it->second;
}

bool TAggregatedTemporaryChessboardRegister::ConsumePin(uint64_t nConfiguration) {
    std::lock_guard lock(m_pinsMutex);
    auto it = m_pins.find(nConfiguration);
    if (it == m_pins.end()) return false;
    if (--it->second == 0) m_pins.erase(it);
    return true;
}

uint32_t TAggregatedTemporaryChessboardRegister::RemoveDoubtful(uint32_t nHeuristics, uint32_t nParameters) {
    Services().Log("RemoveDoubtful start.");
    const uint64_t nConfiguration = ConfigurationKey(nHeuristics, nParameters);
    const uint32_t nRemoved = ConsumePin(nConfiguration) ? 0 : DestroyDoubtful(nConfiguration);
    Services().Log("RemoveDoubtful complete.");
    return nRemoved;
}

// The register leaves the map under the exclusive lock; its memory is freed after the lock is
// released (or by the last reader of a snapshot), so that the search threads do not wait for it.
uint32_t TAggregatedTemporaryChessboardRegister::DestroyDoubtful(uint64_t nConfiguration) {
    std::shared_ptr<TDoubtfulnessRegister> pRemoved;
    {
        std::unique_lock lock(m_lock);
        auto it = m_doubtful.find(nConfiguration);
        if (it == m_doubtful.end()) return 0;
        pRemoved = std::move(it->second);
        m_doubtful.erase(it);
    }
    const uint32_t nRemoved = pRemoved->ElementCount();
    m_nDoubtfulElements.fetch_sub(nRemoved, std::memory_order_relaxed);
    return nRemoved;
}

uint32_t TAggregatedTemporaryChessboardRegister::RemoveAllUnpinnedDoubtful() {
    uint32_t nRemoved = 0;
    for (uint64_t nConfiguration : DoubtfulConfigurations()) {
        if (PinCount(nConfiguration) != 0) continue;
        nRemoved += RemoveDoubtful(static_cast<uint32_t>(nConfiguration),
                                   static_cast<uint32_t>(nConfiguration >> 32));
    }
    return nRemoved;
}

uint32_t TAggregatedTemporaryChessboardRegister::RemoveNMovers(uint16_t n) {
    Services().Log("TAggregatedTemporaryChessboardRegister::RemoveNMovers start.");
    uint32_t nRemoved = TTemporaryChessboardRegister<0>::RemoveNMovers(n);
    {
        std::shared_lock lock(m_lock);
        for (auto& entry : m_doubtful) nRemoved += entry.second->RemoveNMovers(n);
    }
    Services().Log("TAggregatedTemporaryChessboardRegister::RemoveNMovers complete.");
    return nRemoved;
}

void TAggregatedTemporaryChessboardRegister::ClearShortPositions() {
    SetShortPositionsFlag(false);
    std::shared_lock lock(m_lock);
    for (auto& entry : m_doubtful) entry.second->SetShortPositionsFlag(false);
}

void TAggregatedTemporaryChessboardRegister::SetBucketCount(size_t nBuckets) {
    TTemporaryChessboardRegister<0>::SetBucketCount(nBuckets);
    std::shared_lock lock(m_lock);
    for (auto& entry : m_doubtful) entry.second->SetBucketCount(nBuckets);
}

std::vector<uint64_t> TAggregatedTemporaryChessboardRegister::DoubtfulConfigurations() const {
    std::shared_lock lock(m_lock);
    std::vector<uint64_t> configurations;
    for (const auto& entry : m_doubtful) configurations.push_back(entry.first);
    return configurations;
}

TAggregatedTemporaryChessboardRegister::TDoubtfulSnapshot
TAggregatedTemporaryChessboardRegister::DoubtfulSnapshot() const {
    std::shared_lock lock(m_lock);
    return {m_doubtful.begin(), m_doubtful.end()};
}

TMapCensus TAggregatedTemporaryChessboardRegister::DoubtfulCensus() const {
    TMapCensus census;
    for (const auto& entry : DoubtfulSnapshot()) census.Add(entry.second->Census());
    return census;
}

}  // namespace moremate
