#include "run_register.h"

#include "registers/register_size.h"

namespace moremate {
namespace {

std::unique_ptr<TAggregatedTemporaryChessboardRegister> Make(const TRegisterSize& size) {
    return std::make_unique<TAggregatedTemporaryChessboardRegister>(size.nCapacity, size.nBuckets);
}

}  // namespace

CRunRegister::CRunRegister(const TOptions& options)
    : CRunRegister(RegisterSizeForMemory(options.TempRegQuotaMB()).nCapacity) {}

CRunRegister::CRunRegister(uint32_t capacity)
    : m_white(Make(RegisterSizeForCapacity(capacity / 2))),
      m_black(Make(RegisterSizeForCapacity(capacity / 2))) {}

void CRunRegister::SetConfiguration(uint32_t heuristics, uint32_t parameters) {
    m_nConfiguration = ConfigurationKey(heuristics, parameters);
}

uint8_t CRunRegister::LookupSquares(const TChessboardRegisterItem& squares, uint32_t hash, int halfMoves) {
    const TRegisterKey key(squares, hash);
    const uint16_t n = static_cast<uint16_t>(halfMoves);
    TAggregatedTemporaryChessboardRegister& reg = For(halfMoves);
    switch (reg.Answer(n, key)) {
        case TRegisterAnswer::Mate:
            return kMate;
        case TRegisterAnswer::NoMate:
            return kNoMate;
        case TRegisterAnswer::Unknown:
            break;
    }
    // A line found doubtful with n half-moves left is kept as "no proof within n" under the pass's
    // set: it answers for n and fewer, while a deeper try of the position is searched again (it
    // may reach the mate that the shorter one could not).
    if (m_nConfiguration != 0 &&
        AnswerFor(reg.FindDoubtful(m_nConfiguration, key), n) == TRegisterAnswer::NoMate)
        return kDoubtful;
    return kUnknownResult;
}

void CRunRegister::Store(const TChessboard& position, int halfMoves, uint8_t result) {
    const TChessboardRegisterItem item = RegisterItemOf(position);
    const TRegisterKey key(item, position.squaresHash);
    const uint16_t n = static_cast<uint16_t>(halfMoves);
    TAggregatedTemporaryChessboardRegister& reg = For(halfMoves);
    if (result == kDoubtful)
        reg.InsertDoubtful(m_nConfiguration, n, key, false);
    else
        reg.Insert(n, key, result == kMate);
}

void CRunRegister::PrefetchBucket(uint32_t hash, int halfMoves) {
    For(halfMoves).PrefetchBucket(hash);
}

void CRunRegister::Prefetch(uint32_t hash, int halfMoves) {
    For(halfMoves).Prefetch(hash);
}

int CRunRegister::FillPercent() const {
    const uint64_t capacity = uint64_t{m_white->Capacity()} + m_black->Capacity();
    const uint64_t count = uint64_t{m_white->ElementCount()} + m_black->ElementCount();
    return capacity ? static_cast<int>(count * 100 / capacity) : 0;
}

}  // namespace moremate
