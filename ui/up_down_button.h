// TUpDownButton: a tool button whose upper half counts up and lower half counts down, for the
// tools that step a number (the engine's threads).
#pragma once

#include <QMouseEvent>
#include <QToolButton>

namespace moremate::ui {

class TUpDownButton : public QToolButton {
    Q_OBJECT
  public:
    using QToolButton::QToolButton;

  Q_SIGNALS:
    void Up();
    void Down();

  protected:
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() != Qt::LeftButton) return QToolButton::mousePressEvent(event);
        if (event->position().y() < height() / 2.0)
            Q_EMIT Up();
        else
            Q_EMIT Down();
    }
};

}  // namespace moremate::ui
