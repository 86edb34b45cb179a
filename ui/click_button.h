// TClickButton: a tool button that tells its right and middle clicks apart from the left one,
// for the tools whose other buttons do something else (the stipulation's arrows, start/stop).
#pragma once

#include <QMouseEvent>
#include <QToolButton>

namespace moremate::ui {

class TClickButton : public QToolButton {
    Q_OBJECT
  public:
    using QToolButton::QToolButton;

  Q_SIGNALS:
    void RightClicked(Qt::KeyboardModifiers modifiers);
    void MiddleClicked();

  protected:
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::RightButton) {
            Q_EMIT RightClicked(event->modifiers());
            return;
        }
        if (event->button() == Qt::MiddleButton) {
            Q_EMIT MiddleClicked();
            return;
        }
        QToolButton::mousePressEvent(event);
    }
};

}  // namespace moremate::ui
