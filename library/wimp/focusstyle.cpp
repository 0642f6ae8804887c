#include "library/wimp/focusstyle.h"

#include "library/wimp/fittedpath.h"

#include <QtGui/QPainter>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QStyleOption>

namespace {

void DrawFrame(QPainter& painter, const QRect& place, const QColor& colour)
{
    painter.save();
    painter.setPen(colour);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(place.adjusted(0, 0, -1, -1));
    painter.restore();
}

bool IsScrolled(const QWidget* widget)
{
    return qobject_cast<const QAbstractItemView*>(widget) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(widget) != nullptr;
}

bool IsFrameSign(QStyle::StandardPixmap which)
{
    return which == QStyle::SP_TitleBarMinButton || which == QStyle::SP_TitleBarNormalButton ||
           which == QStyle::SP_TitleBarMaxButton || which == QStyle::SP_TitleBarCloseButton;
}

// In a square from 0 to 10.
void DrawFrameSign(QPainter& painter, QStyle::StandardPixmap which)
{
    if (which == QStyle::SP_TitleBarMinButton) {
        painter.drawLine(QPointF(2, 8), QPointF(8, 8));
    } else if (which == QStyle::SP_TitleBarMaxButton) {
        painter.drawRect(QRectF(2, 2, 6, 6));
    } else if (which == QStyle::SP_TitleBarNormalButton) {
        painter.drawRect(QRectF(1.5, 4, 4.5, 4.5));
        const QPointF behind[] = {{4, 4}, {4, 1.5}, {8.5, 1.5}, {8.5, 6}, {6, 6}};
        painter.drawPolyline(behind, 5);
    } else {
        painter.drawLine(QPointF(2, 2), QPointF(8, 8));
        painter.drawLine(QPointF(8, 2), QPointF(2, 8));
    }
}

} // namespace

void TFocusStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const
{
    QProxyStyle::drawControl(element, option, painter, widget);
    const QColor colour = option->palette.color(QPalette::Active, QPalette::Highlight);
    if (element == CE_ShapedFrame && IsScrolled(widget) && widget->hasFocus())
        DrawFrame(*painter, option->rect, colour);
    constexpr int Inset = 3;
    if (element == CE_PushButton && option->state.testFlag(State_HasFocus))
        DrawFrame(*painter, option->rect.adjusted(Inset, Inset, -Inset, -Inset), colour);
}

void TFocusStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const
{
    const QStyleOptionTitleBar* title = qstyleoption_cast<const QStyleOptionTitleBar*>(option);
    if (control == CC_TitleBar && title != nullptr && widget != nullptr) {
        DrawTitleBar(*title, painter, *widget);
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control != CC_ToolButton || !option->state.testFlag(State_HasFocus))
        return;
    const QColor colour = option->palette.color(QPalette::Active, QPalette::Highlight);
    DrawFrame(*painter, option->rect, colour);
    DrawFrame(*painter, option->rect.adjusted(1, 1, -1, -1), colour);
}

// The text comes without its end where it has no room: the name of the file, and whether it is modified.
void TFocusStyle::DrawTitleBar(const QStyleOptionTitleBar& option, QPainter* painter,
                               const QWidget& widget) const
{
    // What the style itself leaves free.
    constexpr int Margin = 14;
    QStyleOptionTitleBar title = option;
    const int width = subControlRect(CC_TitleBar, &title, SC_TitleBarLabel, &widget).width();
    title.text = FitPath(widget.windowTitle(), width - Margin, painter->fontMetrics());
    QProxyStyle::drawComplexControl(CC_TitleBar, &title, painter, &widget);
}

QIcon TFocusStyle::standardIcon(StandardPixmap which, const QStyleOption* option, const QWidget* widget) const
{
    if (!IsFrameSign(which))
        return QProxyStyle::standardIcon(which, option, widget);
    QIcon icon;
    // At each scale that screens have.
    for (const int size : {16, 20, 24, 28, 32, 48}) {
        QPixmap picture(size, size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / 10.0, size / 10.0);
        painter.setPen(QPen(QApplication::palette().color(QPalette::ButtonText), 1));
        DrawFrameSign(painter, which);
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}
