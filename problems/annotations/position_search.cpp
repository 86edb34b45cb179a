#include "position_search.h"

#include <cctype>
#include <cstdio>

#include "core/notation.h"

namespace moremate {
namespace {

struct TPieceKind {
    uint8_t type;
    char letter;
};

constexpr TPieceKind kKinds[] = {{kKing, 'K'},   {kQueen, 'Q'},  {kRook, 'R'},
                                 {kBishop, 'B'}, {kKnight, 'N'}, {kPawn, 'P'}};

int PieceCount(const TChessboard& board, uint8_t colour) {
    int count = 0;
    for (Piece piece : board.squares) count += piece != kEmpty && ColourOf(piece) == colour;
    return count;
}

// "WPIECES=2 AND BPIECES=1 AND STIP='#3'": the counts and the stipulation, as PDB's search reads.
std::string PdbExpression(const TChessboard& board, int moves) {
    return "WPIECES=" + std::to_string(PieceCount(board, kWhite)) +
           " AND BPIECES=" + std::to_string(PieceCount(board, kBlack)) + " AND STIP='#" +
           std::to_string(moves) + "'";
}

struct TPositionSearch {
    ProblemDatabase database;
    const char* sSearchPage;  // the query follows it
    const char* sAfterQuery;
};

constexpr TPositionSearch kSearches[] = {
    {ProblemDatabase::Pdb, "https://pdb.dieschwalbe.de/search.jsp?expression=", ""},
    {ProblemDatabase::Meson, "https://www.bstephen.me.uk/meson/meson.pl?search=", ""},
    {ProblemDatabase::Albrecht,
     "https://www.dieschwalbe.de/albrecht/search5.php?spalten=Stellung&search=", "&type=search"},
    {ProblemDatabase::Yacpdb, "https://www.yacpdb.org/?search=", ""},
};

}  // namespace

std::string PositionPiecesText(const TChessboard& board) {
    std::string text;
    for (uint8_t colour : {kWhite, kBlack})
        for (const TPieceKind& kind : kKinds)
            for (int square = 0; square < 64; ++square) {
                if (board.squares[square] != MakePiece(colour, kind.type)) continue;
                if (!text.empty()) text += ' ';
                text += colour == kWhite ? 'w' : 'b';
                text += kind.letter;
                text += SquareText(square);
            }
    return text;
}

std::string PercentEncoded(std::string_view text) {
    std::string encoded;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) || c == '-' || c == '_' || c == '.' || c == '~') {
            encoded += c;
            continue;
        }
        char escape[4];
        std::snprintf(escape, sizeof escape, "%%%02X", byte);
        encoded += escape;
    }
    return encoded;
}

std::string PositionSearchLink(ProblemDatabase database, const TChessboard& board, int moves) {
    for (const TPositionSearch& search : kSearches)
        if (search.database == database) {
            const std::string query =
                database == ProblemDatabase::Pdb ? PdbExpression(board, moves) : PositionPiecesText(board);
            return search.sSearchPage + PercentEncoded(query) + search.sAfterQuery;
        }
    return {};
}

}  // namespace moremate
