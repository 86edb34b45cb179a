#include "chessboard_id.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace moremate {
namespace {

constexpr int kIdBits = 8 * sizeof(TChessboardId::bits);
constexpr int kShortCodeBits = 4;

// Piece of each four-bit short code; codes 12..15 name no piece.
constexpr Piece kShortCodePieces[] = {
    kWhite | kKing, kBlack | kKing, kWhite | kPawn,   kBlack | kPawn,   kWhite | kQueen,  kBlack | kQueen,
    kWhite | kRook, kBlack | kRook, kWhite | kBishop, kBlack | kBishop, kWhite | kKnight, kBlack | kKnight,
};
constexpr int kShortCodes = static_cast<int>(std::size(kShortCodePieces));

// Groups of the text forms: 0-9, a-z, A-Z, "(" and ")". Five-bit groups use the first 32.
constexpr char kAlphabet[] = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ()";

int ShortCode(Piece piece) {
    const Piece* found = std::find(std::begin(kShortCodePieces), std::end(kShortCodePieces), piece);
    if (found == std::end(kShortCodePieces)) throw std::runtime_error("Unknown figure code");
    return static_cast<int>(found - std::begin(kShortCodePieces));
}

// Sixty-four squares of at most five bits fill the 40 bytes exactly; the guard keeps a change of
// the layout from writing past them.
void AppendBits(TChessboardId& id, int value, int width) {
    for (int i = 0; i < width; ++i, ++id.bitCount) {
        if (id.bitCount >= kIdBits) throw std::runtime_error("Exception in TChessboardId");
        if ((value >> i) & 1) id.bits[id.bitCount / 8] |= static_cast<uint8_t>(1 << (id.bitCount % 8));
    }
}

// `width` bits from bit `pos` on, least significant first; bits from `limit` on read as zero.
int ReadBits(const uint8_t* bytes, int limit, int pos, int width) {
    int value = 0;
    for (int i = 0; i < width && pos + i < limit; ++i)
        value |= ((bytes[(pos + i) / 8] >> ((pos + i) % 8)) & 1) << i;
    return value;
}

std::string ToAlphanum(const uint8_t* bytes, int bitCount, int width, const char* error) {
    std::string text;
    for (int pos = 0; pos < bitCount; pos += width) {
        const int value = ReadBits(bytes, bitCount, pos, width);
        if (value >= (1 << width)) throw std::runtime_error(error);  // past the alphabet in use
        text += kAlphabet[value];
    }
    return text;
}

}  // namespace

TChessboardId EncodeId(const uint8_t* squares) {
    TChessboardId id;
    for (int sq = 0; sq < 64; ++sq) {
        if (squares[sq] == kEmpty) {
            AppendBits(id, 0, 1);
        } else {
            AppendBits(id, 1, 1);
            AppendBits(id, ShortCode(squares[sq]), kShortCodeBits);
        }
    }
    return id;
}

void DecodeId(const TChessboardId& id, uint8_t* squares) {
    if (id.bitCount <= 0) throw std::runtime_error("Wrong chessboard id");
    int pos = 0;
    for (int sq = 0; sq < 64; ++sq) {
        if (sq > 0 && pos >= id.bitCount) throw std::runtime_error("Wrong chessboard id");
        if (ReadBits(id.bits, kIdBits, pos++, 1) == 0) {
            squares[sq] = kEmpty;
            continue;
        }
        const int code = ReadBits(id.bits, kIdBits, pos, kShortCodeBits);
        if (code >= kShortCodes) throw std::runtime_error("Unknown figure short code");
        squares[sq] = kShortCodePieces[code];
        pos += kShortCodeBits;
    }
}

std::string ToAlphanum6(const TChessboardId& id) {
    return ToAlphanum(id.bits, std::min<int>(id.bitCount, kIdBits), 6, "Error in ToAlphanum6");
}

std::string ToAlphanum5(const uint8_t* bytes, int bitCount) {
    return ToAlphanum(bytes, bitCount, 5, "Error in ToAlphanum5");
}

}  // namespace moremate
