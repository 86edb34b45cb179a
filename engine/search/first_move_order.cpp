#include "first_move_order.h"

#include "move_ordering.h"

namespace moremate {

std::vector<TMove> FirstMoveOrder(const TChessboard& position, const std::vector<TMove>& preferred) {
    TMoveList list;
    GenerateLegalMoves(position, list);
    OrderWhiteMoves(position, list, TKillerMoves{}, false);
    PreferMoves(list, preferred);
    return std::vector<TMove>(list.begin(), list.end());
}

}  // namespace moremate
