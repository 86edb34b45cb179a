#include "position_repetition.h"

#include "mate_search.h"

namespace moremate {

bool RepeatsPositionOfLine(const TChessboard& node) {
    for (const TChessboard* p = node.previous ? node.previous->previous : nullptr; p;
         p = p->previous ? p->previous->previous : nullptr) {
        if (SamePosition(*p, node)) return true;
    }
    return false;
}

}  // namespace moremate
