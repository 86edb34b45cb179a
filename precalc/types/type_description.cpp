#include "type_description.h"

#include <cctype>

#include "core/chess_exception.h"
#include "core/occupancy.h"
#include "core/pieces.h"
#include "precalc/types/position_type.h"

namespace moremate {
namespace {

constexpr uint64_t kPawnSquares = 0x00FFFFFFFFFFFF00ull;
constexpr uint64_t kRank1 = 0xFFull;

class CDescriptionReader {
  public:
    explicit CDescriptionReader(const std::string& text) : m_text(text) {}

    std::vector<TDescribedPiece> Read() {
        bool added = false;
        while (m_at < m_text.size()) {
            if (m_text[m_at] == '+') {
                added = true;
                ++m_at;
                if (m_at == m_text.size()) Fail("a piece letter must follow \"+\"");
            }
            ReadPiece(added);
        }
        CheckMen();
        return m_pieces;
    }

  private:
    [[noreturn]] void Fail(const std::string& what) const {
        throw ChessException(kUnknownTypeText + m_text + " (" + what + ")");
    }

    void ReadPiece(bool added) {
        const char c = m_text[m_at++];
        const char upper = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        if (c == '?') Fail("\"?\" stands for any file or rank of a square, as in a? or ?7");
        if (std::string("KQRBNPX").find(upper) == std::string::npos)
            Fail(std::string("unknown piece letter \"") + c + "\"");
        const uint8_t colour = std::isupper(static_cast<unsigned char>(c)) ? kWhite : kBlack;
        const bool fileOnly = upper == 'X';
        const uint8_t type = fileOnly || upper == 'P' ? uint8_t{kPawn} : TypeFromLetter(upper, false);
        TDescribedPiece piece{MakePiece(colour, type), 0};
        if (fileOnly) piece.m_nSquares = kRank1 << (8 * (colour == kWhite ? 1 : 6));
        if (m_at < m_text.size() && m_text[m_at] == '(') {
            piece.m_nSquares = ReadBracketed();
        } else if (added && m_at < m_text.size() && m_text[m_at] != '+') {
            piece.m_nSquares = ReadPlace();
        }
        if (type == kKing && piece.m_nSquares != 0) Fail("the kings may stand anywhere");
        if (type == kPawn && piece.m_nSquares != 0) {
            piece.m_nSquares &= kPawnSquares;
            if (piece.m_nSquares == 0) Fail("a pawn stands on ranks 2 to 7");
        }
        if (piece.m_nSquares == ~0ull || (type == kPawn && piece.m_nSquares == kPawnSquares))
            piece.m_nSquares = 0;
        m_pieces.push_back(piece);
    }

    uint64_t ReadBracketed() {
        ++m_at;
        uint64_t squares = 0;
        while (m_at < m_text.size() && m_text[m_at] != ')') {
            if (m_text[m_at] == ',') {
                ++m_at;
                continue;
            }
            squares |= ReadPlace();
        }
        if (m_at == m_text.size()) Fail("\"(\" without \")\"");
        ++m_at;
        if (squares == 0) Fail("no square between \"(\" and \")\"");
        return squares;
    }

    // A file, a rank or both: the squares they name.
    uint64_t ReadPlace() {
        uint64_t files = ~0ull, ranks = ~0ull;
        bool read = false;
        if (m_at < m_text.size() && (m_text[m_at] == '?' || (m_text[m_at] >= 'a' && m_text[m_at] <= 'h'))) {
            if (m_text[m_at] != '?') files = kFileA << (m_text[m_at] - 'a');
            ++m_at;
            read = true;
        }
        if (m_at < m_text.size() && (m_text[m_at] == '?' || (m_text[m_at] >= '1' && m_text[m_at] <= '8'))) {
            if (m_text[m_at] != '?') ranks = kRank1 << (8 * (m_text[m_at] - '1'));
            ++m_at;
            read = true;
        }
        if (!read)
            Fail("a square, a file (a-h) or a rank (1-8) expected at position " + std::to_string(m_at + 1));
        return files & ranks;
    }

    void CheckMen() const {
        int kings[2] = {0, 0};
        for (const TDescribedPiece& p : m_pieces)
            if (TypeOf(p.m_piece) == kKing) ++kings[ColourOf(p.m_piece) == kWhite ? 0 : 1];
        if (kings[0] != 1 || kings[1] != 1) Fail("one \"K\" and one \"k\" are needed");
        if (m_pieces.size() > static_cast<size_t>(kMaxPrecalcPieces))
            Fail("at most " + std::to_string(kMaxPrecalcPieces) + " men");
        for (size_t i = 0; i < m_pieces.size(); ++i)
            for (size_t j = i + 1; j < m_pieces.size(); ++j)
                if (m_pieces[i].m_piece == m_pieces[j].m_piece && TypeOf(m_pieces[i].m_piece) != kKing &&
                    (m_pieces[i].m_nSquares == 0 || m_pieces[j].m_nSquares == 0 ||
                     (m_pieces[i].m_nSquares & m_pieces[j].m_nSquares) != 0) &&
                    (m_pieces[i].m_nSquares != 0 || m_pieces[j].m_nSquares != 0))
                    Fail("like pieces with squares in common must both stand anywhere");
    }

    const std::string& m_text;
    size_t m_at = 0;
    std::vector<TDescribedPiece> m_pieces;
};

}  // namespace

std::vector<TDescribedPiece> ReadCustomDescription(const std::string& text) {
    return CDescriptionReader(text).Read();
}

}  // namespace moremate
