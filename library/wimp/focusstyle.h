#pragma once

// This header shows the window system: only the framework includes it.

#include <QtWidgets/QProxyStyle>

// The look of the window system's controls, in which what has the keys can be seen: lists and texts with a
// frame, and buttons too, of which the default one looks the same with the keys and without.
class TFocusStyle : public QProxyStyle
{
public:
    using QProxyStyle::QProxyStyle;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    // Of tiles.
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
};
