// TBoardWidget: the chessboard of the main window, painted to fit whatever room it has, with
// the files and ranks along its edges, White at the bottom unless rotated, and the square picked
// by the first click of a move marked.
#pragma once

#include <QWidget>
#include <array>

#include "core/types.h"

namespace moremate::ui {

class TBoardWidget : public QWidget {
    Q_OBJECT
  public:
    explicit TBoardWidget(QWidget* parent = nullptr);

    void SetSquares(const uint8_t* squares);
    void SetRotated(bool rotated);
    bool Rotated() const { return m_bRotated; }
    void SetMarked(int square);  // none: any value from 64 up
    // Pieces may be dragged (the position setting mode): a click then counts at the release.
    void SetDragging(bool dragging);
    int Marked() const { return m_nMarked; }
    // The square under the widget point `point`, or -1 outside the board.
    int SquareAt(const QPoint& point) const;
    // The widget rectangle of `square`.
    QRectF SquareRect(int square) const;

    QSize sizeHint() const override { return {480, 480}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return width; }

  Q_SIGNALS:
    void SquareClicked(int square, Qt::MouseButton button);
    // A piece dragged onto square `to`, or off the board (`to` none), from square `from` (none:
    // from the palette).
    void PieceDropped(int from, int to, Piece piece);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    // A paint asked for, noted for the crash log.
    void RequestPaint();
    QRectF BoardRect() const;
    void DrawCoordinates(QPainter& painter, const QRectF& board) const;

    std::array<uint8_t, 64> m_squares{};
    bool m_bRotated = false;
    int m_nMarked = kNoSquare;
    bool m_bDragging = false;
    int m_nPressed = -1;  // the square of a press that may become a drag
    QPoint m_pointPressed;
};

}  // namespace moremate::ui
