#include "type_generator.h"

#include <fmt/format.h>

#include <cstring>

#include "core/attacks.h"
#include "precalc/generator/parallel_for.h"
#include "precalc/generator/retro_moves.h"

namespace moremate {
namespace {

constexpr int kLargestValue = 250;

bool HasPieces(const TPrecalcType& type, uint8_t colour, uint8_t pieceType) {
    for (const TPieceSlot& slot : type.Slots())
        if (slot.m_piece == MakePiece(colour, pieceType)) return true;
    return false;
}

// Whether the position before a move taken back is legal with the mover's side to move: the
// other king not attacked. `board` holds the position after the move and is left as it was. The
// attack test reads the pieces from the board's bit boards, so those are filled in for it.
bool LegalBefore(TChessboard& board, const TPrecalcType::TPieceSquares& before, const TRetroMove& move,
                 uint8_t mover) {
    uint8_t* sq = board.squares;
    sq[move.to] = sq[move.from];
    sq[move.from] = kEmpty;
    const int otherKing = mover == kWhite ? before[1] : before[0];
    DerivePieceBits(board);
    const bool legal = !IsAttacked(board, otherKing, mover);
    sq[move.from] = sq[move.to];
    sq[move.to] = kEmpty;
    return legal;
}

}  // namespace

CTypeGenerator::CTypeGenerator(const TPrecalcType& type, TGlobalRegisters& registers,
                               const TGenerationOptions& options)
    : m_type(type),
      m_options(options),
      m_nPlacements(type.PlacementCount()),
      m_bBothPawns(HasPieces(type, kWhite, kPawn) && HasPieces(type, kBlack, kPawn)),
      m_source{m_white, m_black},
      m_others(registers),
      m_lookahead(type, m_source, m_others),
      m_progress(options.m_bProgress) {}

uint64_t CTypeGenerator::PeakBytes(const TPrecalcType& type) {
    // Four bytes per placement, and lists of settled positions at four bytes per index.
    return 4 * type.PlacementCount() + 4 * TypeIndexCount(type);
}

void CTypeGenerator::Show(const std::string& what, bool force) {
    m_progress.Show(fmt::format("{}: {}", m_type.Description(), what), force);
}

bool CTypeGenerator::HasOpenEnPassantMove(const TChessboard& board) const {
    if (!m_bBothPawns) return false;
    TMoveList moves;
    GenerateLegalMoves(board, moves);
    for (const TMove& m : moves) {
        if (TypeOf(board.squares[m.from]) != kPawn || (m.to > m.from ? m.to - m.from : m.from - m.to) != 16)
            continue;
        TChessboard child;
        PlayMove(board, m, child);
        if (EnPassantOpen(child)) return true;
    }
    return false;
}

std::vector<uint32_t> CTypeGenerator::Merge(TIndexLists& perThread) const {
    std::vector<uint32_t> all;
    for (std::vector<uint32_t>& list : perThread) {
        all.insert(all.end(), list.begin(), list.end());
        list.clear();
    }
    return all;
}

void CTypeGenerator::Append(TIndexLists& byValue, const TIndexLists& perThread,
                            const std::vector<uint8_t>& values) {
    for (const std::vector<uint32_t>& list : perThread)
        for (const uint32_t i : list) {
            const uint8_t v = values[i];
            if (byValue.size() <= v) byValue.resize(v + 1u);
            byValue[v].push_back(i);
        }
}

// White leaves the type only by capturing a black piece or promoting a pawn (or, in a restricted
// custom type, by any move of a piece); Black likewise.
bool CTypeGenerator::CanLeaveType(uint8_t mover) const {
    return m_type.IsRestricted() || HasPieces(m_type, Opponent(mover), kQueen) ||
           HasPieces(m_type, Opponent(mover), kRook) || HasPieces(m_type, Opponent(mover), kBishop) ||
           HasPieces(m_type, Opponent(mover), kKnight) || HasPieces(m_type, Opponent(mover), kPawn) ||
           HasPieces(m_type, mover, kPawn);
}

// Whether White to move has a capture, a promotion or a double step that opens an en passant
// capture: the moves whose positions are not those of the type. The moves are generated only then.
bool CTypeGenerator::MayLeaveType(const TChessboard& board) const {
    if (m_bBothPawns || m_type.IsRestricted()) return true;
    for (int sq = 0; sq < 64; ++sq) {
        const Piece p = board.squares[sq];
        if (p == (kWhite | kPawn) && RankOf(sq) == 6) return true;
        if (ColourOf(p) == kBlack && TypeOf(p) != kKing && IsAttacked(board, sq, kWhite)) return true;
    }
    return false;
}

// White positions that mate by leaving the type at once; nothing to look for when White cannot.
void CTypeGenerator::ScanWhite() {
    if (!CanLeaveType(kWhite)) return;
    TIndexLists seeds(m_options.m_nThreads), specials(m_options.m_nThreads);
    std::vector<uint8_t> seedValue(m_nPlacements, 0);
    ParallelFor(m_nPlacements, m_options.m_nThreads, [&](uint64_t begin, uint64_t end, unsigned t) {
        TChessboard board;
        for (uint64_t i = begin; i < end; ++i) {
            if (!SetUpPlacement(m_type, i, true, board) || !MayLeaveType(board)) continue;
            const uint8_t v = m_lookahead.WhiteValue(board, kNoLimit);
            if (v != 0) {
                seedValue[i] = v;
                seeds[t].push_back(static_cast<uint32_t>(i));
            }
            if (HasOpenEnPassantMove(board)) specials[t].push_back(static_cast<uint32_t>(i));
        }
        Show(fmt::format("White to move {}%", 100 * (m_nDone += end - begin) / m_nPlacements));
    });
    Append(m_whiteSeeds, seeds, seedValue);
    m_whiteSpecials = Merge(specials);
}

void CTypeGenerator::ScanBlack() {
    TIndexLists settled(m_options.m_nThreads), specials(m_options.m_nThreads);
    m_nDone = 0;
    ParallelFor(m_nPlacements, m_options.m_nThreads, [&](uint64_t begin, uint64_t end, unsigned t) {
        TChessboard board;
        for (uint64_t i = begin; i < end; ++i) {
            if (!SetUpPlacement(m_type, i, false, board)) continue;
            int staying = 0;
            const uint8_t s = m_lookahead.BlackValue(board, 0, false, &staying);
            m_black[i] = s;
            m_unsettledMoves[i] = static_cast<uint8_t>(staying);
            if (s != 0 && s != kEscapes) settled[t].push_back(static_cast<uint32_t>(i));
            if (s == 0 && HasOpenEnPassantMove(board)) specials[t].push_back(static_cast<uint32_t>(i));
        }
        Show(fmt::format("Black to move {}%", 100 * (m_nDone += end - begin) / m_nPlacements));
    });
    Append(m_blackByValue, settled, m_black);
    m_blackSpecials = Merge(specials);
}

// White positions from which a move leads to a Black position mated after d - 1 more moves.
void CTypeGenerator::TakeBackWhiteMoves(int d, TIndexLists& found) {
    if (m_blackByValue.size() <= static_cast<size_t>(d)) return;
    ForEachTakeBack(m_blackByValue[d], kWhite,
                    [&](TChessboard& after, const TPrecalcType::TPieceSquares& before, const TRetroMove& move,
                        uint64_t i, unsigned t) {
                        if (m_source.White(i) != 0 || !LegalBefore(after, before, move, kWhite)) return;
                        if (ClaimWhite(i, static_cast<uint8_t>(d)))
                            found[t].push_back(static_cast<uint32_t>(i));
                    });
}

template <class FVisit>
void CTypeGenerator::ForEachTakeBack(const std::vector<uint32_t>& placements, uint8_t mover, FVisit&& visit) {
    ParallelFor(placements.size(), m_options.m_nThreads, [&](uint64_t begin, uint64_t end, unsigned t) {
        TChessboard scratch;
        TRetroMoveList retro;
        for (uint64_t k = begin; k < end; ++k) {
            m_type.PlacementAt(placements[k], scratch.squares);
            const TPrecalcType::TPieceSquares pieces = m_type.PiecesOf(scratch.squares);
            GenerateRetroMoves(scratch.squares, mover, true, retro);
            for (int r = 0; r < retro.count; ++r) {
                const TPrecalcType::TPieceSquares before =
                    TPrecalcType::Moved(pieces, retro.moves[r].from, retro.moves[r].to);
                if (!m_type.Contains(before)) continue;
                visit(scratch, before, retro.moves[r], m_type.IndexOfPieces(before), t);
            }
        }
    });
}

void CTypeGenerator::SettleWhite(int d, const std::vector<uint32_t>& indexes, TIndexLists& found) {
    for (const uint32_t i : indexes)
        if (ClaimWhite(i, static_cast<uint8_t>(d))) found[0].push_back(i);
}

void CTypeGenerator::CheckWhiteSpecials(int d, TIndexLists& found) {
    ParallelFor(m_whiteSpecials.size(), m_options.m_nThreads, [&](uint64_t begin, uint64_t end, unsigned t) {
        TChessboard board;
        for (uint64_t k = begin; k < end; ++k) {
            const uint32_t i = m_whiteSpecials[k];
            if (m_source.White(i) != 0 || !SetUpPlacement(m_type, i, true, board)) continue;
            const uint8_t v = m_lookahead.WhiteValue(board, d);
            if (v != 0 && ClaimWhite(i, v)) found[t].push_back(i);
        }
    });
}

// Black positions whose last move to an unsettled stored position now leads to a settled one,
// and those with an en passant capture to give, each once.
std::vector<uint32_t> CTypeGenerator::BlackCandidates() {
    TIndexLists found(m_options.m_nThreads);
    const auto claim = [this](uint64_t i) {
        if (std::atomic_ref<uint8_t>(m_black[i]).load(std::memory_order_relaxed) != 0) return false;
        return std::atomic_ref<uint8_t>(m_candidate[i]).exchange(1) == 0;
    };
    // An illegal position before the move (White's king attacked) is never settled: its count may
    // run out of step without harm.
    ForEachTakeBack(
        m_newWhite, kBlack,
        [&](TChessboard&, const TPrecalcType::TPieceSquares&, const TRetroMove&, uint64_t i, unsigned t) {
            if (std::atomic_ref<uint8_t>(m_unsettledMoves[i]).fetch_sub(1) == 1 && claim(i))
                found[t].push_back(static_cast<uint32_t>(i));
        });
    for (const uint32_t i : m_blackSpecials)
        if (m_unsettledMoves[i] == 0 && claim(i)) found[0].push_back(i);
    return Merge(found);
}

bool CTypeGenerator::CheckBlack(int d, const std::vector<uint32_t>& candidates) {
    TIndexLists settled(m_options.m_nThreads);
    ParallelFor(candidates.size(), m_options.m_nThreads, [&](uint64_t begin, uint64_t end, unsigned t) {
        TChessboard board;
        for (uint64_t k = begin; k < end; ++k) {
            const uint32_t i = candidates[k];
            if (SetUpPlacement(m_type, i, false, board)) {
                const uint8_t s = m_lookahead.BlackValue(board, d, false);
                if (s != 0) std::atomic_ref<uint8_t>(m_black[i]).store(s, std::memory_order_relaxed);
                if (s != 0 && s != kEscapes) settled[t].push_back(i);
            }
        }
    });
    for (const uint32_t i : candidates) m_candidate[i] = 0;
    Append(m_blackByValue, settled, m_black);
    return std::any_of(settled.begin(), settled.end(), [](const auto& list) { return !list.empty(); });
}

bool CTypeGenerator::PendingAfter(int d) const {
    const auto pending = [d](const TIndexLists& lists) {
        for (size_t v = static_cast<size_t>(d) + 1; v < lists.size(); ++v)
            if (!lists[v].empty()) return true;
        return false;
    };
    return pending(m_whiteSeeds) || pending(m_blackByValue) || d <= m_others.LargestValue() + 1;
}

// One level: White positions that mate in d, then the Black positions they settle.
bool CTypeGenerator::Level(int d) {
    TIndexLists found(m_options.m_nThreads);
    TakeBackWhiteMoves(d, found);
    if (m_whiteSeeds.size() > static_cast<size_t>(d)) SettleWhite(d, m_whiteSeeds[d], found);
    CheckWhiteSpecials(d, found);
    m_newWhite = Merge(found);
    const bool black = CheckBlack(d, BlackCandidates());
    Show(fmt::format("level {}, {} White positions settled", d, m_newWhite.size()), true);
    return !m_newWhite.empty() || black;
}

std::vector<uint8_t> CTypeGenerator::Run(TGenerationReport& report) {
    m_white.assign(m_nPlacements, 0);
    m_black.assign(m_nPlacements, 0);
    if (!m_type.WhiteBare()) {
        m_candidate.assign(m_nPlacements, 0);
        m_unsettledMoves.assign(m_nPlacements, 0);
        ScanWhite();
        ScanBlack();
        for (int d = 1; d <= kLargestValue && (Level(d) || PendingAfter(d)); ++d) {
            report.m_nLevels = d;
            ThrowIfGenerationStopped(m_options);
        }
    }
    std::vector<uint8_t> elements(std::move(m_white));
    elements.reserve(2 * m_nPlacements);
    for (const uint8_t s : m_black) elements.push_back(s == kEscapes ? 0 : s);
    for (uint64_t i = 0; i < m_nPlacements; ++i) {
        report.m_nWhiteMates += elements[i] != 0;
        report.m_nBlackMated += elements[m_nPlacements + i] != 0;
        report.m_nLongestMate = std::max<int>(report.m_nLongestMate, elements[i]);
    }
    report.m_nIndexes = elements.size();
    return elements;
}

}  // namespace moremate
