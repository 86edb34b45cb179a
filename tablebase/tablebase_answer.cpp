#include "tablebase_answer.h"

#include "core/notation.h"
#include "core/pieces.h"

namespace moremate {

std::string UciText(const TTablebaseMove& move) {
    std::string text = SquareText(move.m_byFrom) + SquareText(move.m_byTo);
    if (move.m_byPromotion != 0) text += static_cast<char>(TypeLetter(move.m_byPromotion) | 0x20);
    return text;
}

const char* WdlText(uint8_t wdl) {
    switch (wdl) {
        case kWdlWin:
            return "win";
        case kWdlDraw:
            return "draw";
        case kWdlLoss:
            return "loss";
        default:
            return "unknown";
    }
}

}  // namespace moremate
