// Drawing one chess piece into a square: the solid chess glyph of the board font as an outline
// path, filled in the piece's colour and edged in the other, so that it stays sharp at any size.
#pragma once

#include <QIcon>
#include <QPainter>
#include <QRectF>

#include "core/types.h"

namespace moremate::ui {

// The family of the board's glyphs (installed by the set-up as fonts-dejavu-core).
inline constexpr const char* kBoardFontFamily = "DejaVu Sans";

void DrawPiece(QPainter& painter, const QRectF& square, Piece piece);

// An icon of one piece (the hand of the position setting mode, the tray icon).
QIcon PieceIcon(Piece piece);

}  // namespace moremate::ui
