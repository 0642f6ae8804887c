#pragma once

#include <QtCore/QEvent>
#include <QtWidgets/QWidget>

// Counts the paintings of a widget.
class TPaintCounter : public QObject
{
public:
    explicit TPaintCounter(QWidget& widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override
    {
        Paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int Paints = 0;
};
