#include "piece_glyphs.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainterPath>

namespace moremate::ui {
namespace {

// The outline ("white") glyphs U+2654..U+2659: king, queen, rook, bishop, knight, pawn. Their
// outer contours give the piece's silhouette, the rest its inner lines.
char16_t Glyph(uint8_t type) {
    switch (type) {
        case kKing:
            return u'\u2654';
        case kQueen:
            return u'\u2655';
        case kRook:
            return u'\u2656';
        case kBishop:
            return u'\u2657';
        case kKnight:
            return u'\u2658';
        default:
            return u'\u2659';
    }
}

}  // namespace

void DrawPiece(QPainter& painter, const QRectF& square, Piece piece) {
    if (piece == kEmpty) return;
    QFont font(kBoardFontFamily);
    font.setPixelSize(std::max(1, static_cast<int>(square.height() * 0.82)));
    QPainterPath outline;
    outline.addText(0, 0, font, QString(QChar(Glyph(TypeOf(piece)))));
    outline.setFillRule(Qt::WindingFill);
    outline.translate(square.center() - outline.boundingRect().center());
    const bool white = ColourOf(piece) == kWhite;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    // Every contour filled on its own: the outer ones cover the whole piece.
    painter.setBrush(white ? QColor(250, 250, 245) : QColor(30, 30, 30));
    for (const QPolygonF& contour : outline.toSubpathPolygons()) painter.drawPolygon(contour);
    painter.setBrush(white ? QColor(20, 20, 20) : QColor(215, 215, 215));
    painter.drawPath(outline);
    painter.restore();
}

QIcon PieceIcon(Piece piece) {
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    DrawPiece(painter, QRectF(0, 0, 32, 32), piece);
    return QIcon(pixmap);
}

}  // namespace moremate::ui
