// TPiecePalette: the pieces offered in the position setting mode, White's and Black's six and an
// empty cell that clears squares. A click chooses one; the board's click then puts it down.
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

  private:
    QRectF CellRect(size_t index) const;

    std::optional<Piece> m_chosen;
};

}  // namespace moremate::ui
