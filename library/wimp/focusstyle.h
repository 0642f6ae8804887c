#pragma once

// This header shows the window system: only the framework includes it.

#include <QtWidgets/QProxyStyle>

class QStyleOptionTitleBar;

// The look of the window system's controls, in which what has the keys can be seen: lists and texts with a
// frame, and buttons too, of which the default one looks the same with the keys and without. The titles of
// documents keep the name of the file, however long its path is. The signs of their buttons, and of these in
// the menu bar, have the colour of text on buttons, on a dark desktop too, and as many dots as the screen's
// scale asks for.
class TFocusStyle : public QProxyStyle
{
public:
    using QProxyStyle::QProxyStyle;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    // Of tiles, and of title bars.
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    QIcon standardIcon(StandardPixmap which, const QStyleOption* option,
                       const QWidget* widget) const override;

private:
    void DrawTitleBar(const QStyleOptionTitleBar& option, QPainter* painter, const QWidget& widget) const;
};
