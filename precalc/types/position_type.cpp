#include "position_type.h"

#include <algorithm>
#include <cctype>

#include "core/chess_exception.h"
#include "core/pieces.h"

namespace moremate {
namespace {

constexpr uint8_t kSlotOrder[] = {kQueen, kRook, kBishop, kKnight, kPawn};

char LetterOf(Piece piece) {
    const char letter = TypeLetter(TypeOf(piece)) == ' ' ? 'P' : TypeLetter(TypeOf(piece));
    return ColourOf(piece) == kWhite ? letter : static_cast<char>(std::tolower(letter));
}

std::array<int, 32> NoCounts() {
    std::array<int, 32> counts{};
    return counts;
}

// Piece counts by colour and type of a description; throws for anything that is not one.
void CountLetters(const std::string& text, std::array<int, 32>& white, std::array<int, 32>& black) {
    const auto fail = [&text]() { throw ChessException(kUnknownTypeText + text); };
    for (const char c : text) {
        if (!std::isalpha(static_cast<unsigned char>(c))) fail();
        const char upper = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        if (std::string("KQRBNP").find(upper) == std::string::npos) fail();
        const uint8_t type = upper == 'P' ? uint8_t{kPawn} : TypeFromLetter(upper, false);
        ++(std::isupper(static_cast<unsigned char>(c)) ? white : black)[type];
    }
    int pieces = 0;
    for (const uint8_t type : kSlotOrder) pieces += white[type] + black[type];
    if (white[kKing] != 1 || black[kKing] != 1 || pieces > kMaxPrecalcPieces - 2) fail();
}

}  // namespace

TPrecalcType TPrecalcType::Parse(const std::string& text, bool bCustom) {
    std::array<int, 32> white = NoCounts(), black = NoCounts();
    CountLetters(text, white, black);
    TPrecalcType type;
    type.m_bCustom = bCustom;
    type.AddPieces(kWhite, white);
    type.AddPieces(kBlack, black);
    return type;
}

std::optional<TPrecalcType> TPrecalcType::OfPosition(const uint8_t* squares) {
    std::array<int, 32> white = NoCounts(), black = NoCounts();
    int pieces = 0;
    for (int sq = 0; sq < 64; ++sq) {
        const Piece p = squares[sq];
        if (p == kEmpty) continue;
        if (++pieces > kMaxPrecalcPieces) return std::nullopt;
        ++(ColourOf(p) == kWhite ? white : black)[TypeOf(p)];
    }
    if (white[kKing] != 1 || black[kKing] != 1) return std::nullopt;
    TPrecalcType type;
    type.AddPieces(kWhite, white);
    type.AddPieces(kBlack, black);
    return type;
}

void TPrecalcType::AddPieces(uint8_t colour, const std::array<int, 32>& counts) {
    m_sDescription += colour == kWhite ? 'K' : 'k';
    for (const uint8_t type : kSlotOrder) {
        const int k = counts[type];
        if (k == 0) continue;
        TPieceSlot slot;
        slot.m_piece = MakePiece(colour, type);
        slot.m_cLetter = LetterOf(slot.m_piece);
        slot.m_bPawn = type == kPawn;
        slot.m_nGroupSize = k;
        slot.m_pMapping = k > 1 ? &CombinationMapping(slot.m_bPawn, k) : nullptr;
        slot.m_nRadix = k > 1 ? slot.m_pMapping->Count() : (slot.m_bPawn ? 48 : 64);
        m_sDescription.append(static_cast<size_t>(k), slot.m_cLetter);
        m_nPieces += k;
        m_bPawns = m_bPawns || slot.m_bPawn;
        m_nPlacements *= slot.m_nRadix;
        m_slotOfPiece[slot.m_piece] = static_cast<int8_t>(m_vSlots.size());
        m_vSlots.push_back(slot);
    }
}

bool TPrecalcType::WhiteBare() const {
    return std::none_of(m_vSlots.begin(), m_vSlots.end(),
                        [](const TPieceSlot& s) { return ColourOf(s.m_piece) == kWhite; });
}

TPrecalcType::TPieceSquares TPrecalcType::PiecesOf(const uint8_t* squares) const {
    TPieceSquares pieces{};
    int filled[kMaxPrecalcPieces] = {};
    int firstOfSlot[kMaxPrecalcPieces] = {};
    for (size_t slot = 0, at = 2; slot < m_vSlots.size();
         at += static_cast<size_t>(m_vSlots[slot++].m_nGroupSize))
        firstOfSlot[slot] = static_cast<int>(at);
    for (int sq = 0; sq < 64; ++sq) {
        const Piece p = squares[sq];
        if (p == kEmpty) continue;
        if (p == (kWhite | kKing)) {
            pieces[0] = static_cast<uint8_t>(sq);
        } else if (p == (kBlack | kKing)) {
            pieces[1] = static_cast<uint8_t>(sq);
        } else {
            const int slot = m_slotOfPiece[p];
            if (slot >= 0 && filled[slot] < m_vSlots[static_cast<size_t>(slot)].m_nGroupSize)
                pieces[static_cast<size_t>(firstOfSlot[slot] + filled[slot]++)] = static_cast<uint8_t>(sq);
        }
    }
    return pieces;
}

uint64_t TPrecalcType::IndexOfPieces(TPieceSquares pieces) const {
    const bool mirror = FileOf(pieces[0]) >= 4;
    if (mirror)
        for (int i = 0; i < m_nPieces + 2; ++i) pieces[static_cast<size_t>(i)] ^= 7;
    uint64_t p = 0;
    unsigned char* at = pieces.data() + 2;
    for (const TPieceSlot& slot : m_vSlots) {
        if (slot.m_pMapping) {
            std::sort(at, at + slot.m_nGroupSize);
            p = p * slot.m_nRadix + slot.m_pMapping->IndexOfSet(at);
        } else {
            p = p * slot.m_nRadix + (*at - (slot.m_bPawn ? 8u : 0u));
        }
        at += slot.m_nGroupSize;
    }
    const uint64_t w = static_cast<uint64_t>(RankOf(pieces[0]) * 4 + FileOf(pieces[0]));
    return w + 32 * (static_cast<uint64_t>(pieces[1]) + 64 * p);
}

uint64_t TPrecalcType::IndexOf(const uint8_t* squares) const {
    return IndexOfPieces(PiecesOf(squares));
}

bool TPrecalcType::PlacementAt(uint64_t nIndex, uint8_t* squares) const {
    std::fill(squares, squares + 64, kEmpty);
    const int w = static_cast<int>(nIndex % 32);
    const int bk = static_cast<int>(nIndex / 32 % 64);
    const int wk = MakeSquare(w % 4, w / 4);
    if (wk == bk) return false;
    squares[wk] = kWhite | kKing;
    squares[bk] = kBlack | kKing;
    uint64_t p = nIndex / (32 * 64);
    for (auto slot = m_vSlots.rbegin(); slot != m_vSlots.rend(); ++slot) {
        const uint64_t part = p % slot->m_nRadix;
        p /= slot->m_nRadix;
        unsigned char set[kMaxPrecalcPieces];
        if (slot->m_pMapping)
            slot->m_pMapping->SetAtIndex(part, set);
        else
            set[0] = static_cast<unsigned char>(part + (slot->m_bPawn ? 8 : 0));
        for (int i = 0; i < slot->m_nGroupSize; ++i) {
            if (squares[set[i]] != kEmpty) return false;
            squares[set[i]] = slot->m_piece;
        }
    }
    return true;
}

std::vector<TPrecalcType> TPrecalcType::Successors() const {
    std::vector<TPrecalcType> result;
    const auto add = [&result](const std::string& text) {
        const TPrecalcType type = Parse(text);
        if (std::find(result.begin(), result.end(), type) == result.end()) result.push_back(type);
    };
    for (size_t i = 0; i < m_sDescription.size(); ++i) {
        const char c = m_sDescription[i];
        if (c == 'K' || c == 'k') continue;
        std::string rest = m_sDescription;
        rest.erase(i, 1);
        add(rest);
        if (c != 'P' && c != 'p') continue;
        for (const char promoted : std::string("QRBN")) {
            std::string text = rest;
            text += c == 'P' ? promoted : static_cast<char>(std::tolower(promoted));
            add(text);
        }
    }
    return result;
}

}  // namespace moremate
