// TChessboardId: a compact, comparable identifier of the 64 squares (not the side to move nor
// castling), and its alphanumeric text forms used in file names, logs and records.
#pragma once

#include <cstdint>
#include <string>

#include "chessboard.h"

namespace moremate {

struct TChessboardId {
    int16_t bitCount = 0;
    uint8_t bits[40] = {};

    friend bool operator==(const TChessboardId&, const TChessboardId&) = default;
    friend auto operator<=>(const TChessboardId&, const TChessboardId&) = default;
};

// Empty square: one 0 bit; a piece: a 1 bit and its four-bit short code, least significant bit
// first. Throws "Unknown figure code" or "Exception in TChessboardId".
TChessboardId EncodeId(const uint8_t* squares);
// Throws "Wrong chessboard id" or "Unknown figure short code"; `squares` may be partly written.
void DecodeId(const TChessboardId& id, uint8_t* squares);

// Six-bit groups as 0-9, a-z, A-Z, "(" and ")".
std::string ToAlphanum6(const TChessboardId& id);
// Five-bit groups of `bitCount` bits of `bytes` as 0-9, a-v.
std::string ToAlphanum5(const uint8_t* bytes, int bitCount);

}  // namespace moremate
