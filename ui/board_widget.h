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

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

  private:
    // A paint asked for, noted for the crash log.
    void RequestPaint();
    QRectF BoardRect() const;
    void DrawCoordinates(QPainter& painter, const QRectF& board) const;

    std::array<uint8_t, 64> m_squares{};
    bool m_bRotated = false;
    int m_nMarked = kNoSquare;
};

}  // namespace moremate::ui
