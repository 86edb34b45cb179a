#include "answer_reader.h"

#include <charconv>
#include <optional>
#include <string>

#include "core/types.h"

namespace moremate {
namespace {

constexpr std::size_t npos = std::string_view::npos;

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The place of the value of `"key":` at or after `from` (blanks after the colon skipped), or npos.
std::size_t FindValue(std::string_view text, std::string_view key, std::size_t from = 0) {
    std::string quoted(key.size() + 2, '"');
    key.copy(quoted.data() + 1, key.size());
    for (std::size_t at = text.find(quoted, from); at != npos; at = text.find(quoted, at + 1)) {
        std::size_t pos = at + quoted.size();
        while (pos < text.size() && IsBlank(text[pos])) ++pos;
        if (pos >= text.size() || text[pos] != ':') continue;
        ++pos;
        while (pos < text.size() && IsBlank(text[pos])) ++pos;
        return pos;
    }
    return npos;
}

// The integer at `pos`; none for an empty value, a comma, null or anything not a number.
std::optional<long long> IntegerAt(std::string_view text, std::size_t pos) {
    if (pos >= text.size()) return std::nullopt;
    long long value = 0;
    const char* first = text.data() + pos;
    const auto [end, error] = std::from_chars(first, text.data() + text.size(), value);
    if (error != std::errc() || end == first) return std::nullopt;
    return value;
}

uint8_t WdlOf(long long value) {
    if (value >= 1) return kWdlWin;
    return value == 0 ? kWdlDraw : kWdlLoss;
}

uint8_t CategoryOf(std::string_view text, std::size_t pos) {
    const std::string_view value = text.substr(pos);
    const auto is = [value](std::string_view word) { return value.starts_with(word); };
    if (is("\"win\"") || is("\"cursed-win\"")) return kWdlWin;
    if (is("\"loss\"") || is("\"blessed-loss\"")) return kWdlLoss;
    if (is("\"draw\"")) return kWdlDraw;
    return kWdlUnknown;
}

// "wdl", else "category"; none when the text has neither.
std::optional<uint8_t> ReadWdl(std::string_view text) {
    if (std::size_t pos = FindValue(text, "wdl"); pos != npos) {
        const std::optional<long long> value = IntegerAt(text, pos);
        return value ? WdlOf(*value) : kWdlUnknown;
    }
    if (std::size_t pos = FindValue(text, "category"); pos != npos) return CategoryOf(text, pos);
    return std::nullopt;
}

int16_t DtmAt(std::string_view text, std::size_t pos) {
    const std::optional<long long> value = IntegerAt(text, pos);
    if (!value || *value <= INT16_MIN || *value > INT16_MAX) return kNoDtm;
    return static_cast<int16_t>(*value);
}

uint8_t DtzOf(std::optional<long long> value) {
    if (!value) return kNoDtz;
    if (*value >= 255) return 254;
    if (*value >= 0) return static_cast<uint8_t>(*value);
    if (*value >= -255) return static_cast<uint8_t>(-*value);
    return kNoDtz;
}

uint8_t ReadDtz(std::string_view text) {
    const std::size_t pos = FindValue(text, "dtz");
    return pos == npos ? kNoDtz : DtzOf(IntegerAt(text, pos));
}

std::optional<uint8_t> SquareAt(std::string_view text) {
    const char file = static_cast<char>(text[0] | 0x20);
    if (file < 'a' || file > 'h' || text[1] < '1' || text[1] > '8') return std::nullopt;
    return static_cast<uint8_t>(MakeSquare(file - 'a', text[1] - '1'));
}

std::optional<uint8_t> PromotionOf(char c) {
    switch (c) {
        case '"':
            return uint8_t{0};
        case 'q':
            return uint8_t{kQueen};
        case 'r':
            return uint8_t{kRook};
        case 'b':
            return uint8_t{kBishop};
        case 'n':
            return uint8_t{kKnight};
        default:
            return std::nullopt;
    }
}

// One move's text and values; `text` runs from its "uci" value to the next move's.
std::optional<TTablebaseMove> ReadMove(std::string_view text) {
    if (text.starts_with('"')) text.remove_prefix(1);
    if (text.size() < 5) return std::nullopt;
    const std::optional<uint8_t> from = SquareAt(text), to = SquareAt(text.substr(2));
    const std::optional<uint8_t> promotion = PromotionOf(text[4]);
    const std::optional<uint8_t> wdl = ReadWdl(text);
    const std::size_t dtm = FindValue(text, "dtm");
    if (!from || !to || !promotion || !wdl || dtm == npos) return std::nullopt;
    return TTablebaseMove{.m_byFrom = *from,
                          .m_byTo = *to,
                          .m_byPromotion = *promotion,
                          .m_byWdl = *wdl,
                          .m_shDtm = DtmAt(text, dtm),
                          .m_byDtz = ReadDtz(text)};
}

// The moves of the array `text` (from after "moves": to its closing bracket); none when one of
// them cannot be read.
std::optional<std::vector<TTablebaseMove>> ReadMoves(std::string_view text) {
    std::vector<TTablebaseMove> moves;
    for (std::size_t pos = FindValue(text, "uci"); pos != npos;) {
        const std::size_t next = text.find("\"uci\"", pos);
        const std::optional<TTablebaseMove> move = ReadMove(text.substr(pos, next - pos));
        if (!move) return std::nullopt;
        moves.push_back(*move);
        pos = next == npos ? npos : FindValue(text, "uci", next);
    }
    return moves;
}

}  // namespace

TTablebaseAnswer ReadTablebaseAnswer(std::string_view body) {
    TTablebaseAnswer answer;
    // The position's own keys lie outside the moves array, whose records carry the same keys.
    std::string top(body);
    std::string_view array;
    if (const std::size_t start = FindValue(body, "moves"); start != npos) {
        const std::size_t end = body.find(']', start);
        if (end == npos) return answer;
        array = body.substr(start, end - start);
        top = std::string(body.substr(0, body.rfind("\"moves\"", start))) + std::string(body.substr(end + 1));
    }
    const std::optional<uint8_t> wdl = ReadWdl(top);
    if (!wdl) return answer;
    std::optional<std::vector<TTablebaseMove>> moves = ReadMoves(array);
    if (!moves) return answer;
    answer.m_byWdl = *wdl;
    const std::size_t dtm = FindValue(top, "dtm");
    answer.m_shDtm = dtm == npos ? kNoDtm : DtmAt(top, dtm);
    answer.m_byDtz = ReadDtz(top);
    answer.m_nMoves = static_cast<int>(moves->size());
    answer.m_vMoves.assign(moves->begin(), moves->end());
    return answer;
}

}  // namespace moremate
