#include "combination_index.h"

#include <stdexcept>

namespace moremate {

uint64_t Binomial(int n, int k) {
    if (k < 0 || k > n) return 0;
    uint64_t result = 1;
    for (int i = 1; i <= k; ++i)
        result = result * static_cast<uint64_t>(n - k + i) / static_cast<uint64_t>(i);
    return result;
}

template <int N, int K, typename TSquare, int First>
CMappingCombinationIndexIntoSet<N, K, TSquare, First>::CMappingCombinationIndexIntoSet()
    : m_nCount(Binomial(N, K)), m_vPartialSums(static_cast<size_t>(N + 1) * (K + 1) * (N + 1), 0) {
    for (int n = 0; n <= N; ++n)
        for (int j = 1; j <= K; ++j)
            for (int t = 1; t <= n; ++t) Partial(n, j, t) = Partial(n, j, t - 1) + Binomial(n - t, j - 1);
    m_vSets.reserve(static_cast<size_t>(m_nCount) * K);
    TSquare set[K];
    for (int i = 0; i < K; ++i) set[i] = static_cast<TSquare>(i);
    for (uint64_t rank = 0; rank < m_nCount; ++rank) {
        for (int i = 0; i < K; ++i) m_vSets.push_back(static_cast<TSquare>(set[i] + First));
        int i = K - 1;
        while (i >= 0 && set[i] == N - K + i) --i;
        if (i < 0) break;
        ++set[i];
        for (int j = i + 1; j < K; ++j) set[j] = static_cast<TSquare>(set[j - 1] + 1);
    }
}

template <int N, int K, typename TSquare, int First>
void CMappingCombinationIndexIntoSet<N, K, TSquare, First>::SetAtIndex(uint64_t nIndex,
                                                                       unsigned char* pSquares) const {
    if (nIndex >= m_nCount) throw std::out_of_range("combination rank out of range");
    const TSquare* set = &m_vSets[static_cast<size_t>(nIndex) * K];
    for (int i = 0; i < K; ++i) pSquares[i] = static_cast<unsigned char>(set[i]);
}

template <int N, int K, typename TSquare, int First>
uint64_t CMappingCombinationIndexIntoSet<N, K, TSquare, First>::IndexOfSet(
    const unsigned char* pSquares) const {
    uint64_t rank = 0;
    int lowest = 0, left = N, pieces = K, i = 0;
    for (; pieces > 2; ++i, --pieces) {
        const int a = pSquares[i] - First;
        rank += Partial(left, pieces, a - lowest);
        left -= a + 1 - lowest;
        lowest = a + 1;
    }
    const uint64_t x = static_cast<uint64_t>(pSquares[i] - First - lowest);
    const uint64_t y = static_cast<uint64_t>(pSquares[i + 1] - First - lowest);
    return rank + y + ((2 * static_cast<uint64_t>(left) - x - 1) * x) / 2 - x - 1;
}

template class CMappingCombinationIndexIntoSet<64, 2, unsigned char, 0>;
template class CMappingCombinationIndexIntoSet<64, 3, unsigned char, 0>;
template class CMappingCombinationIndexIntoSet<64, 4, unsigned char, 0>;
template class CMappingCombinationIndexIntoSet<64, 5, unsigned char, 0>;
template class CMappingCombinationIndexIntoSet<48, 2, unsigned char, 8>;
template class CMappingCombinationIndexIntoSet<48, 3, unsigned char, 8>;
template class CMappingCombinationIndexIntoSet<48, 4, unsigned char, 8>;
template class CMappingCombinationIndexIntoSet<48, 5, unsigned char, 8>;

namespace {

template <int N, int First>
const CMappingCombinationIndexIntoSetBase& Mapping(int k) {
    switch (k) {
        case 2: {
            static const CMappingCombinationIndexIntoSet<N, 2, unsigned char, First> s_mapping;
            return s_mapping;
        }
        case 3: {
            static const CMappingCombinationIndexIntoSet<N, 3, unsigned char, First> s_mapping;
            return s_mapping;
        }
        case 4: {
            static const CMappingCombinationIndexIntoSet<N, 4, unsigned char, First> s_mapping;
            return s_mapping;
        }
        case 5: {
            static const CMappingCombinationIndexIntoSet<N, 5, unsigned char, First> s_mapping;
            return s_mapping;
        }
        default:
            throw std::invalid_argument("no combination mapping for " + std::to_string(k) + " pieces");
    }
}

}  // namespace

const CMappingCombinationIndexIntoSetBase& CombinationMapping(bool bPawns, int k) {
    return bPawns ? Mapping<48, 8>(k) : Mapping<64, 0>(k);
}

}  // namespace moremate
