#include "piece_glyphs.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainterPath>

namespace moremate::ui {
namespace {

// The solid ("black") glyphs U+265A..U+265F: king, queen, rook, bishop, knight, pawn.
char16_t Glyph(uint8_t type) {
    switch (type) {
        case kKing:
            return u'\u265A';
        case kQueen:
            return u'\u265B';
        case kRook:
            return u'\u265C';
        case kBishop:
            return u'\u265D';
        case kKnight:
            return u'\u265E';
        default:
            return u'\u265F';
    }
}

}  // namespace

void DrawPiece(QPainter& painter, const QRectF& square, Piece piece) {
    if (piece == kEmpty) return;
    QFont font(kBoardFontFamily);
    font.setPixelSize(std::max(1, static_cast<int>(square.height() * 0.82)));
    const QString text(QChar(Glyph(TypeOf(piece))));
    QPainterPath path;
    path.addText(0, 0, font, text);
    const QRectF bounds = path.boundingRect();
    path.translate(square.center() - bounds.center());
    const bool white = ColourOf(piece) == kWhite;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(
        QPen(white ? QColor(20, 20, 20) : QColor(235, 235, 235), std::max(1.0, square.width() / 40)));
    painter.setBrush(white ? QColor(250, 250, 245) : QColor(25, 25, 25));
    painter.drawPath(path);
    painter.restore();
}

}  // namespace moremate::ui
