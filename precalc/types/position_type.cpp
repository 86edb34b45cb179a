#include "position_type.h"

#include <algorithm>
#include <cctype>

#include "core/chess_exception.h"
#include "core/pieces.h"

namespace moremate {
namespace {

constexpr uint8_t kSlotOrder[] = {kQueen, kRook, kBishop, kKnight, kPawn};

int Mirror(int sq, bool bMirror) {
    return bMirror ? (sq ^ 7) : sq;
}

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

TPositionType TPositionType::Parse(const std::string& text, bool bCustom) {
    std::array<int, 32> white = NoCounts(), black = NoCounts();
    CountLetters(text, white, black);
    TPositionType type;
    type.m_bCustom = bCustom;
    type.AddPieces(kWhite, white);
    type.AddPieces(kBlack, black);
    return type;
}

std::optional<TPositionType> TPositionType::OfPosition(const uint8_t* squares) {
    std::array<int, 32> white = NoCounts(), black = NoCounts();
    int pieces = 0;
    for (int sq = 0; sq < 64; ++sq) {
        const Piece p = squares[sq];
        if (p == kEmpty) continue;
        if (++pieces > kMaxPrecalcPieces) return std::nullopt;
        ++(ColourOf(p) == kWhite ? white : black)[TypeOf(p)];
    }
    if (white[kKing] != 1 || black[kKing] != 1) return std::nullopt;
    TPositionType type;
    type.AddPieces(kWhite, white);
    type.AddPieces(kBlack, black);
    return type;
}

void TPositionType::AddPieces(uint8_t colour, const std::array<int, 32>& counts) {
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
        m_vSlots.push_back(slot);
    }
}

bool TPositionType::WhiteBare() const {
    return std::none_of(m_vSlots.begin(), m_vSlots.end(),
                        [](const TPieceSlot& s) { return ColourOf(s.m_piece) == kWhite; });
}

uint64_t TPositionType::IndexOf(const uint8_t* squares) const {
    int wk = 0, bk = 0;
    for (int sq = 0; sq < 64; ++sq) {
        if (squares[sq] == (kWhite | kKing)) wk = sq;
        if (squares[sq] == (kBlack | kKing)) bk = sq;
    }
    const bool mirror = FileOf(wk) >= 4;
    uint64_t p = 0;
    for (const TPieceSlot& slot : m_vSlots) {
        unsigned char set[kMaxPrecalcPieces];
        int n = 0;
        // Squares of the (mirrored) board in ascending order: the group's set comes out sorted.
        for (int sq = 0; sq < 64 && n < slot.m_nGroupSize; ++sq)
            if (squares[Mirror(sq, mirror)] == slot.m_piece) set[n++] = static_cast<unsigned char>(sq);
        const uint64_t part =
            slot.m_pMapping ? slot.m_pMapping->IndexOfSet(set) : set[0] - (slot.m_bPawn ? 8 : 0);
        p = p * slot.m_nRadix + part;
    }
    wk = Mirror(wk, mirror);
    const uint64_t w = static_cast<uint64_t>(RankOf(wk) * 4 + FileOf(wk));
    return w + 32 * (static_cast<uint64_t>(Mirror(bk, mirror)) + 64 * p);
}

bool TPositionType::PlacementAt(uint64_t nIndex, uint8_t* squares) const {
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

std::vector<TPositionType> TPositionType::Successors() const {
    std::vector<TPositionType> result;
    const auto add = [&result](const std::string& text) {
        const TPositionType type = Parse(text);
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
