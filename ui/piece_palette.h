// TPiecePalette: the pieces offered in the position setting mode, White's and Black's six and an
// empty cell that clears squares. A click chooses one; the board's click then puts it down. A
// piece may also be dragged onto the board.
#pragma once

#include <QWidget>
#include <optional>

#include "core/types.h"

namespace moremate::ui {

class TPiecePalette : public QWidget {
    Q_OBJECT
  public:
    explicit TPiecePalette(QWidget* parent = nullptr);

    // The piece chosen (kEmpty: the eraser), or none.
    std::optional<Piece> Chosen() const { return m_chosen; }
    void Choose(std::optional<Piece> piece);

    QSize sizeHint() const override { return {13 * 36, 36}; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    QRectF CellRect(size_t index) const;
    std::optional<size_t> CellAt(const QPointF& point) const;

    std::optional<Piece> m_chosen;
    std::optional<size_t> m_pressed;  // the cell of a press that may become a drag
    QPoint m_pointPressed;
};

}  // namespace moremate::ui
