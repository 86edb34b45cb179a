#include "piece_palette.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <array>

#include "piece_drag.h"
#include "piece_glyphs.h"

namespace moremate::ui {
namespace {

constexpr std::array<Piece, 13> kCells = {
    MakePiece(kWhite, kKing),
    MakePiece(kWhite, kQueen),
    MakePiece(kWhite, kRook),
    MakePiece(kWhite, kBishop),
    MakePiece(kWhite, kKnight),
    MakePiece(kWhite, kPawn),
    MakePiece(kBlack, kKing),
    MakePiece(kBlack, kQueen),
    MakePiece(kBlack, kRook),
    MakePiece(kBlack, kBishop),
    MakePiece(kBlack, kKnight),
    MakePiece(kBlack, kPawn),
    kEmpty,
};

}  // namespace

TPiecePalette::TPiecePalette(QWidget* parent) : QWidget(parent) {
    setMinimumHeight(28);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void TPiecePalette::Choose(std::optional<Piece> piece) {
    m_chosen = piece;
    update();
}

QRectF TPiecePalette::CellRect(size_t index) const {
    const double cell = std::min(static_cast<double>(height()), width() / static_cast<double>(kCells.size()));
    return {static_cast<double>(index) * cell, 0, cell, cell};
}

void TPiecePalette::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    for (size_t i = 0; i < kCells.size(); ++i) {
        const QRectF rect = CellRect(i);
        painter.fillRect(rect, m_chosen == kCells[i] ? QColor(246, 246, 105) : QColor(225, 225, 225));
        painter.setPen(QColor(150, 150, 150));
        painter.drawRect(rect);
        if (kCells[i] == kEmpty) painter.drawLine(rect.topLeft(), rect.bottomRight());
        DrawPiece(painter, rect, kCells[i]);
    }
}

std::optional<size_t> TPiecePalette::CellAt(const QPointF& point) const {
    for (size_t i = 0; i < kCells.size(); ++i)
        if (CellRect(i).contains(point)) return i;
    return std::nullopt;
}

void TPiecePalette::mousePressEvent(QMouseEvent* event) {
    m_pressed = CellAt(event->position());
    m_pointPressed = event->position().toPoint();
}

// A click (a press and a release without a drag between) chooses the cell, or drops the choice.
void TPiecePalette::mouseReleaseEvent(QMouseEvent*) {
    if (m_pressed) Choose(m_chosen == kCells[*m_pressed] ? std::nullopt : std::optional(kCells[*m_pressed]));
    m_pressed.reset();
}

void TPiecePalette::mouseMoveEvent(QMouseEvent* event) {
    if (!m_pressed || kCells[*m_pressed] == kEmpty ||
        (event->position().toPoint() - m_pointPressed).manhattanLength() < QApplication::startDragDistance())
        return;
    const Piece piece = kCells[*m_pressed];
    m_pressed.reset();
    DragPiece(this, {piece, kNoSquare});
}

}  // namespace moremate::ui
