#include "board_widget.h"

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "interface_state.h"
#include "piece_drag.h"
#include "piece_glyphs.h"

namespace moremate::ui {
namespace {

const QColor kLight(240, 217, 181);
const QColor kDark(181, 136, 99);
const QColor kMark(246, 246, 105, 170);

}  // namespace

TBoardWidget::TBoardWidget(QWidget* parent) : QWidget(parent) {
    setMinimumSize(200, 200);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void TBoardWidget::SetSquares(const uint8_t* squares) {
    std::copy(squares, squares + 64, m_squares.begin());
    RequestPaint();
}

void TBoardWidget::SetRotated(bool rotated) {
    m_bRotated = rotated;
    RequestPaint();
}

void TBoardWidget::SetMarked(int square) {
    m_nMarked = square;
    RequestPaint();
}

// A square board in the middle, with a margin of a third of a square for the coordinates.
QRectF TBoardWidget::BoardRect() const {
    const double side = std::min(width(), height());
    const double cell = side / (8 + 2.0 / 3);
    const double boardSide = 8 * cell;
    return {(width() - boardSide) / 2, (height() - boardSide) / 2, boardSide, boardSide};
}

QRectF TBoardWidget::SquareRect(int square) const {
    const QRectF board = BoardRect();
    const double cell = board.width() / 8;
    int file = FileOf(square), row = 7 - RankOf(square);
    if (m_bRotated) {
        file = 7 - file;
        row = 7 - row;
    }
    return {board.left() + file * cell, board.top() + row * cell, cell, cell};
}

int TBoardWidget::SquareAt(const QPoint& point) const {
    const QRectF board = BoardRect();
    if (!board.contains(point)) return -1;
    const double cell = board.width() / 8;
    int file = std::clamp(static_cast<int>((point.x() - board.left()) / cell), 0, 7);
    int rank = 7 - std::clamp(static_cast<int>((point.y() - board.top()) / cell), 0, 7);
    if (m_bRotated) {
        file = 7 - file;
        rank = 7 - rank;
    }
    return MakeSquare(file, rank);
}

void TBoardWidget::DrawCoordinates(QPainter& painter, const QRectF& board) const {
    const double cell = board.width() / 8;
    QFont font = painter.font();
    font.setPixelSize(std::max(6, static_cast<int>(cell / 4)));
    painter.setFont(font);
    painter.setPen(palette().color(QPalette::WindowText));
    for (int i = 0; i < 8; ++i) {
        const int file = m_bRotated ? 7 - i : i, rank = m_bRotated ? i : 7 - i;
        const QRectF below(board.left() + i * cell, board.bottom(), cell, cell / 3);
        painter.drawText(below, Qt::AlignCenter, QString(QChar('a' + file)));
        const QRectF left(board.left() - cell / 3, board.top() + i * cell, cell / 3, cell);
        painter.drawText(left, Qt::AlignCenter, QString::number(rank + 1));
    }
}

void TBoardWidget::RequestPaint() {
    InterfaceState().m_bWMPaintPending = true;
    update();
}

void TBoardWidget::paintEvent(QPaintEvent*) {
    const CBoardPaintScope scope;
    QPainter painter(this);
    const QRectF board = BoardRect();
    for (int sq = 0; sq < 64; ++sq) {
        const QRectF rect = SquareRect(sq);
        painter.fillRect(rect, SquareColour(sq) == 0 ? kDark : kLight);
        if (sq == m_nMarked) painter.fillRect(rect, kMark);
        DrawPiece(painter, rect, m_squares[static_cast<size_t>(sq)]);
    }
    painter.setPen(QPen(QColor(60, 40, 20), 1));
    painter.drawRect(board);
    DrawCoordinates(painter, board);
}

void TBoardWidget::SetDragging(bool dragging) {
    m_bDragging = dragging;
    m_nPressed = -1;
    setAcceptDrops(dragging);
}

void TBoardWidget::mousePressEvent(QMouseEvent* event) {
    const int square = SquareAt(event->position().toPoint());
    if (square < 0) return;
    if (!m_bDragging || event->button() != Qt::LeftButton)
        return Q_EMIT SquareClicked(square, event->button());
    m_nPressed = square;
    m_pointPressed = event->position().toPoint();
}

void TBoardWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (m_nPressed >= 0 && event->button() == Qt::LeftButton)
        Q_EMIT SquareClicked(m_nPressed, Qt::LeftButton);
    m_nPressed = -1;
}

// A piece dragged off the board is taken away.
void TBoardWidget::mouseMoveEvent(QMouseEvent* event) {
    if (m_nPressed < 0 ||
        (event->position().toPoint() - m_pointPressed).manhattanLength() < QApplication::startDragDistance())
        return;
    const int from = m_nPressed;
    m_nPressed = -1;
    const Piece piece = m_squares[static_cast<size_t>(from)];
    if (piece != kEmpty && !DragPiece(this, {piece, from})) Q_EMIT PieceDropped(from, kNoSquare, piece);
}

void TBoardWidget::dragEnterEvent(QDragEnterEvent* event) {
    if (DroppedPiece(event->mimeData())) event->acceptProposedAction();
}

void TBoardWidget::dragMoveEvent(QDragMoveEvent* event) {
    if (SquareAt(event->position().toPoint()) >= 0)
        event->acceptProposedAction();
    else
        event->ignore();
}

void TBoardWidget::dropEvent(QDropEvent* event) {
    const std::optional<TDraggedPiece> dragged = DroppedPiece(event->mimeData());
    const int square = SquareAt(event->position().toPoint());
    if (!dragged || square < 0) return event->ignore();
    event->acceptProposedAction();
    Q_EMIT PieceDropped(dragged->from, square, dragged->piece);
}

}  // namespace moremate::ui
