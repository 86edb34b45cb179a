#include "answer_file.h"

#include <fmt/core.h>

#include <sstream>

#include "core/notation.h"
#include "core/pieces.h"
#include "core/types.h"

namespace moremate {
namespace {

constexpr const char* kHeader = "moremate tablebase answer 1";
// Closes the text, so that a file cut short is never taken for a whole one.
constexpr const char* kFooter = "end";

std::optional<uint8_t> PromotionOfLetter(char c) {
    for (uint8_t type : {uint8_t{kQueen}, uint8_t{kRook}, uint8_t{kBishop}, uint8_t{kKnight}})
        if (TypeLetter(type) == (c & ~0x20)) return type;
    return std::nullopt;
}

bool FitsByte(int value) {
    return value >= 0 && value <= 255;
}

bool FitsInt16(int value) {
    return value >= INT16_MIN && value <= INT16_MAX;
}

std::optional<TTablebaseMove> ReadMoveLine(std::istream& in) {
    std::string uci;
    int wdl = 0, dtm = 0, dtz = 0;
    if (!(in >> uci >> wdl >> dtm >> dtz) || (uci.size() != 4 && uci.size() != 5)) return std::nullopt;
    if (!FitsByte(wdl) || !FitsInt16(dtm) || !FitsByte(dtz)) return std::nullopt;
    TTablebaseMove move{.m_byWdl = static_cast<uint8_t>(wdl),
                        .m_shDtm = static_cast<int16_t>(dtm),
                        .m_byDtz = static_cast<uint8_t>(dtz)};
    try {
        move.m_byFrom = static_cast<uint8_t>(String2Square(uci.substr(0, 2)));
        move.m_byTo = static_cast<uint8_t>(String2Square(uci.substr(2, 2)));
    } catch (const std::exception&) {
        return std::nullopt;
    }
    if (uci.size() == 5) {
        const std::optional<uint8_t> promotion = PromotionOfLetter(uci[4]);
        if (!promotion) return std::nullopt;
        move.m_byPromotion = *promotion;
    }
    return move;
}

}  // namespace

std::string WriteAnswerText(const std::string& fen, const TTablebaseAnswer& answer) {
    std::string text = fmt::format("{}\n{}\n{} {} {} {}\n", kHeader, fen, answer.m_byWdl, answer.m_shDtm,
                                   answer.m_byDtz, answer.m_nMoves);
    for (const TTablebaseMove& move : answer.m_vMoves)
        text += fmt::format("{} {} {} {}\n", UciText(move), move.m_byWdl, move.m_shDtm, move.m_byDtz);
    return text + kFooter + '\n';
}

std::optional<TTablebaseAnswer> ReadAnswerText(const std::string& text, const std::string& fen) {
    std::istringstream in(text);
    std::string header, storedFen;
    if (!std::getline(in, header) || header != kHeader || !std::getline(in, storedFen) || storedFen != fen)
        return std::nullopt;
    int wdl = 0, dtm = 0, dtz = 0, count = 0;
    if (!(in >> wdl >> dtm >> dtz >> count) || !FitsByte(wdl) || !FitsInt16(dtm) || !FitsByte(dtz) ||
        count < 0 || count > 1000)
        return std::nullopt;
    TTablebaseAnswer answer{.m_byWdl = static_cast<uint8_t>(wdl),
                            .m_shDtm = static_cast<int16_t>(dtm),
                            .m_byDtz = static_cast<uint8_t>(dtz),
                            .m_nMoves = count,
                            .m_vMoves = {}};
    answer.m_vMoves.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const std::optional<TTablebaseMove> move = ReadMoveLine(in);
        if (!move) return std::nullopt;
        answer.m_vMoves.push_back(*move);
    }
    std::string footer, rest;
    if (!(in >> footer) || footer != kFooter || in >> rest) return std::nullopt;
    return answer;
}

}  // namespace moremate
