#include "position_type.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <tuple>

#include "core/chess_exception.h"
#include "core/pieces.h"
#include "precalc/types/type_description.h"

namespace moremate {
namespace {

constexpr uint8_t kSlotOrder[] = {kQueen, kRook, kBishop, kKnight, kPawn};

char LetterOf(Piece piece) {
    const char letter = TypeLetter(TypeOf(piece)) == ' ' ? 'P' : TypeLetter(TypeOf(piece));
    return ColourOf(piece) == kWhite ? letter : static_cast<char>(std::tolower(letter));
}

unsigned char NthSquare(uint64_t squares, uint64_t n) {
    for (; n > 0; --n) squares &= squares - 1;
    return static_cast<unsigned char>(std::countr_zero(squares));
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

TPrecalcType TPrecalcType::ParseAny(const std::string& text, bool bCustom) {
    return Parse(text, bCustom || text.find_first_of("+()Xx?") != std::string::npos);
}

TPrecalcType TPrecalcType::Parse(const std::string& text, bool bCustom) {
    if (bCustom) {
        TPrecalcType type;
        type.m_bCustom = true;
        type.AddCustomPieces(text);
        return type;
    }
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
        AddSlot(slot);
    }
}

void TPrecalcType::AddSlot(const TPieceSlot& slot) {
    m_nPieces += slot.m_nGroupSize;
    m_bPawns = m_bPawns || slot.m_bPawn;
    m_nPlacements *= slot.m_nRadix;
    if (m_slotOfPiece[slot.m_piece] < 0) m_slotOfPiece[slot.m_piece] = static_cast<int8_t>(m_vSlots.size());
    m_vSlots.push_back(slot);
}

// Slots in the standard order, pieces that may stand anywhere before restricted ones of their
// kind; like pieces that may stand anywhere form one group.
void TPrecalcType::AddCustomPieces(const std::string& text) {
    std::vector<TDescribedPiece> pieces = ReadCustomDescription(text);
    const auto order = [](const TDescribedPiece& p) {
        const uint8_t* kind = std::find(std::begin(kSlotOrder), std::end(kSlotOrder), TypeOf(p.m_piece));
        return std::tuple(ColourOf(p.m_piece) == kWhite ? 0 : 1, kind - std::begin(kSlotOrder),
                          p.m_nSquares != 0);
    };
    std::stable_sort(pieces.begin(), pieces.end(),
                     [&order](const auto& a, const auto& b) { return order(a) < order(b); });
    for (size_t i = 0; i < pieces.size(); ++i) {
        const TDescribedPiece& p = pieces[i];
        if (TypeOf(p.m_piece) == kKing) continue;
        TPieceSlot slot;
        slot.m_piece = p.m_piece;
        slot.m_cLetter = LetterOf(p.m_piece);
        slot.m_bPawn = TypeOf(p.m_piece) == kPawn;
        slot.m_nSquares = p.m_nSquares;
        while (p.m_nSquares == 0 && i + 1 < pieces.size() && pieces[i + 1].m_piece == p.m_piece &&
               pieces[i + 1].m_nSquares == 0) {
            ++slot.m_nGroupSize;
            ++i;
        }
        slot.m_pMapping =
            slot.m_nGroupSize > 1 ? &CombinationMapping(slot.m_bPawn, slot.m_nGroupSize) : nullptr;
        slot.m_nRadix = slot.m_pMapping        ? slot.m_pMapping->Count()
                        : slot.m_nSquares != 0 ? static_cast<uint64_t>(std::popcount(slot.m_nSquares))
                        : slot.m_bPawn         ? 48
                                               : 64;
        m_bRestricted = m_bRestricted || slot.m_nSquares != 0;
        uint64_t mirrored = 0;
        for (int sq = 0; sq < 64; ++sq)
            if (slot.m_nSquares >> sq & 1) mirrored |= 1ull << MirroredFile(static_cast<uint8_t>(sq));
        m_bMirror = m_bMirror && mirrored == slot.m_nSquares;
        AddSlot(slot);
    }
    m_sDescription = text;
    if (!m_bMirror) {
        m_nKingRadix = 64;
        m_nPlacements *= 2;
    }
}

TPrecalcType TPrecalcType::Standard() const {
    std::array<int, 32> white = NoCounts(), black = NoCounts();
    for (const TPieceSlot& slot : m_vSlots)
        (ColourOf(slot.m_piece) == kWhite ? white : black)[TypeOf(slot.m_piece)] += slot.m_nGroupSize;
    TPrecalcType type;
    type.AddPieces(kWhite, white);
    type.AddPieces(kBlack, black);
    return type;
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
            const int slot = m_bRestricted ? SlotOf(p, sq, filled) : m_slotOfPiece[p];
            if (slot >= 0 && filled[slot] < m_vSlots[static_cast<size_t>(slot)].m_nGroupSize)
                pieces[static_cast<size_t>(firstOfSlot[slot] + filled[slot]++)] = static_cast<uint8_t>(sq);
        }
    }
    return pieces;
}

// The slot of a piece on `sq` among those of its kind: one whose squares hold `sq` and that has
// room, else the first with room.
int TPrecalcType::SlotOf(Piece piece, int sq, const int* filled) const {
    int first = -1;
    for (size_t s = 0; s < m_vSlots.size(); ++s) {
        const TPieceSlot& slot = m_vSlots[s];
        if (slot.m_piece != piece || filled[s] >= slot.m_nGroupSize) continue;
        if (slot.m_nSquares == 0 || (slot.m_nSquares >> sq & 1)) return static_cast<int>(s);
        if (first < 0) first = static_cast<int>(s);
    }
    return first;
}

bool TPrecalcType::InSquares(const TPieceSquares& pieces) const {
    size_t at = 2;
    for (const TPieceSlot& slot : m_vSlots) {
        if (slot.m_nSquares != 0 && !(slot.m_nSquares >> pieces[at] & 1)) return false;
        at += static_cast<size_t>(slot.m_nGroupSize);
    }
    return true;
}

bool TPrecalcType::ContainsPosition(const uint8_t* squares) const {
    const std::optional<TPrecalcType> material = OfPosition(squares);
    return material && material->Description() == Standard().Description() && Contains(PiecesOf(squares));
}

uint64_t TPrecalcType::IndexOfPieces(TPieceSquares pieces) const {
    const bool mirror = m_bMirror && FileOf(pieces[0]) >= 4;
    if (mirror)
        for (int i = 0; i < m_nPieces + 2; ++i) pieces[static_cast<size_t>(i)] ^= 7;
    uint64_t p = 0;
    unsigned char* at = pieces.data() + 2;
    for (const TPieceSlot& slot : m_vSlots) {
        if (slot.m_pMapping) {
            std::sort(at, at + slot.m_nGroupSize);
            p = p * slot.m_nRadix + slot.m_pMapping->IndexOfSet(at);
        } else if (slot.m_nSquares != 0) {
            p = p * slot.m_nRadix +
                static_cast<uint64_t>(std::popcount(slot.m_nSquares & ((1ull << *at) - 1)));
        } else {
            p = p * slot.m_nRadix + (*at - (slot.m_bPawn ? 8u : 0u));
        }
        at += slot.m_nGroupSize;
    }
    const uint64_t w =
        m_bMirror ? static_cast<uint64_t>(RankOf(pieces[0]) * 4 + FileOf(pieces[0])) : pieces[0];
    return w + m_nKingRadix * (static_cast<uint64_t>(pieces[1]) + 64 * p);
}

uint64_t TPrecalcType::IndexOf(const uint8_t* squares) const {
    return IndexOfPieces(PiecesOf(squares));
}

bool TPrecalcType::PlacementAt(uint64_t nIndex, uint8_t* squares) const {
    std::fill(squares, squares + 64, kEmpty);
    const int w = static_cast<int>(nIndex % m_nKingRadix);
    const int bk = static_cast<int>(nIndex / m_nKingRadix % 64);
    const int wk = m_bMirror ? MakeSquare(w % 4, w / 4) : w;
    if (wk == bk) return false;
    squares[wk] = kWhite | kKing;
    squares[bk] = kBlack | kKing;
    uint64_t p = nIndex / (m_nKingRadix * 64);
    for (auto slot = m_vSlots.rbegin(); slot != m_vSlots.rend(); ++slot) {
        const uint64_t part = p % slot->m_nRadix;
        p /= slot->m_nRadix;
        unsigned char set[kMaxPrecalcPieces];
        if (slot->m_pMapping)
            slot->m_pMapping->SetAtIndex(part, set);
        else if (slot->m_nSquares != 0)
            set[0] = NthSquare(slot->m_nSquares, part);
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
    if (m_bCustom) {
        // Moves out of the allowed squares lead to the standard type of the material.
        std::vector<TPrecalcType> result = Standard().Successors();
        if (m_bRestricted) result.insert(result.begin(), Standard());
        return result;
    }
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
