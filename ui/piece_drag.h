// Dragging a piece in the position setting mode, from the palette or from a square of the board,
// with the piece and the square it comes from carried in the drag's data.
#pragma once

#include <optional>

#include "core/types.h"

class QMimeData;
class QWidget;

namespace moremate::ui {

struct TDraggedPiece {
    Piece piece = kEmpty;
    int from = kNoSquare;  // none: from the palette
};

// Runs the drag from `source` (blocking until the drop); true when a widget took the piece.
bool DragPiece(QWidget* source, const TDraggedPiece& dragged);
// The piece a drop carries, if it carries one.
std::optional<TDraggedPiece> DroppedPiece(const QMimeData* data);

}  // namespace moremate::ui
