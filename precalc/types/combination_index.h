// Ranks of groups of like pieces: a sorted set of k distinct squares, taken from N consecutive
// squares starting at `First`, maps to its place in 0 .. C(N, k) - 1 in the lexicographic order of
// ascending k-tuples, and back. The 64-square forms serve pieces, the 48-square forms (squares 8
// to 55) pawns.
#pragma once

#include <cstdint>
#include <vector>

namespace moremate {

class CMappingCombinationIndexIntoSetBase {
  public:
    virtual ~CMappingCombinationIndexIntoSetBase() = default;
    // C(N, k).
    virtual uint64_t Count() const = 0;
    // The k ascending squares of the combination ranked `nIndex`.
    virtual void SetAtIndex(uint64_t nIndex, unsigned char* pSquares) const = 0;
    // The rank of k ascending squares.
    virtual uint64_t IndexOfSet(const unsigned char* pSquares) const = 0;
};

template <int N, int K, typename TSquare, int First>
class CMappingCombinationIndexIntoSet : public CMappingCombinationIndexIntoSetBase {
    static_assert(K >= 2 && K <= N);

  public:
    CMappingCombinationIndexIntoSet();
    uint64_t Count() const override { return m_nCount; }
    void SetAtIndex(uint64_t nIndex, unsigned char* pSquares) const override;
    uint64_t IndexOfSet(const unsigned char* pSquares) const override;

  private:
    // Combinations of j among n squares whose first square lies below the t-th one.
    uint64_t& Partial(int n, int j, int t) { return m_vPartialSums[(n * (K + 1) + j) * (N + 1) + t]; }
    uint64_t Partial(int n, int j, int t) const { return m_vPartialSums[(n * (K + 1) + j) * (N + 1) + t]; }

    uint64_t m_nCount = 0;
    std::vector<uint64_t> m_vPartialSums;
    std::vector<TSquare> m_vSets;  // K squares per combination, in rank order
};

// The shared mapping of k like pieces (2 to 5): 48 pawn squares or 64 squares.
const CMappingCombinationIndexIntoSetBase& CombinationMapping(bool bPawns, int k);

uint64_t Binomial(int n, int k);

}  // namespace moremate
