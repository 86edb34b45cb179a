#include "pieces.h"

#include <cctype>
#include <stdexcept>

#include "chess_exception.h"

namespace moremate {

char TypeLetter(uint8_t type) {
    switch (type) {
        case kKing:
            return 'K';
        case kPawn:
            return ' ';
        case kBishop:
            return 'B';
        case kRook:
            return 'R';
        case kQueen:
            return 'Q';
        case kKnight:
            return 'N';
        default:
            return 'E';
    }
}

uint8_t TypeFromLetter(char letter, bool moveText) {
    switch (std::toupper(static_cast<unsigned char>(letter))) {
        case 'K':
            return kKing;
        case 'Q':
        case 'H':
            return kQueen;
        case 'R':
        case 'W':
            return kRook;
        case 'B':
        case 'G':
            return kBishop;
        case 'N':
        case 'S':
            return kKnight;
        case 'P':
            return kPawn;
        case 'D':
            if (moveText) return kQueen;
            break;
        case 'T':
            if (moveText) return kRook;
            break;
        case 'L':
            if (moveText) return kBishop;
            break;
        default:
            break;
    }
    throw ChessException(std::string("Unknown figure letter: ") + letter);
}

int PieceToColumn(uint8_t type) {
    switch (type) {
        case kEmpty:
            return -1;
        case kKing:
            return 0;
        case kQueen:
            return 1;
        case kRook:
            return 2;
        case kBishop:
            return 3;
        case kKnight:
            return 4;
        case kPawn:
            return 5;
        default:
            throw std::runtime_error("Unknown figure code passed to PieceToColumn.");
    }
}

uint8_t ColumnToPiece(int column) {
    static constexpr uint8_t kTypes[7] = {kKing, kQueen, kRook, kBishop, kKnight, kPawn, kPawn};
    if (column < 0 || column > 6) throw std::runtime_error("Cannot convert column to piece.");
    return kTypes[column];
}

}  // namespace moremate
