#include "library/wimp/gdi/gdicontext.h"

#include "library/wimp/gdi/gdibitmap.h"

#include <QtGui/QFontMetrics>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>
#include <QtGui/QPalette>

#include <stdlib.h>

// Of a raised edge, from outside to inside.
static constexpr TGDIColour EdgeLight = 0xFFFFFF;
static constexpr TGDIColour EdgeDark = 0x696969;
static constexpr TGDIColour InnerLight = 0xE3E3E3;
static constexpr TGDIColour InnerDark = 0xA0A0A0;

static QColor ToColour(TGDIColour colour)
{
    return QColor::fromRgb(static_cast<QRgb>(colour));
}

static QFont ToFont(const TGDIFont& font)
{
    QFont result = QGuiApplication::font();
    if (font.Face != nullptr) {
        QStringList families = result.families();
        families.prepend(QString::fromUtf8(font.Face));
        result.setFamilies(families);
    }
    if (font.Height != 0)
        result.setPixelSize(abs(font.Height));
    result.setWeight(static_cast<QFont::Weight>(font.Weight));
    return result;
}

static void Measure(const QFontMetrics& metrics, const char* text, int& width, int& height)
{
    width = metrics.horizontalAdvance(QString::fromUtf8(text));
    height = metrics.height();
}

TGDIContext::TGDIContext(QPainter& painter) : Painter(painter)
{
    SetFont(TGDIFont());
}

void TGDIContext::SetPen(TGDIColour colour, bool dotted)
{
    QPen pen(ToColour(colour), 1);
    pen.setJoinStyle(Qt::MiterJoin);
    if (dotted) {
        pen.setCapStyle(Qt::FlatCap);
        pen.setDashPattern({1, 1});
    }
    Painter.setPen(pen);
}

void TGDIContext::SetNoPen()
{
    Painter.setPen(Qt::NoPen);
}

void TGDIContext::SetBrush(TGDIColour colour)
{
    Painter.setBrush(ToColour(colour));
}

void TGDIContext::SetNoBrush()
{
    Painter.setBrush(Qt::NoBrush);
}

void TGDIContext::SetFont(const TGDIFont& font)
{
    Painter.setFont(ToFont(font));
}

void TGDIContext::SetTextColour(TGDIColour colour)
{
    TextColour = colour;
}

void TGDIContext::Line(int x1, int y1, int x2, int y2)
{
    if (x1 == x2 && y1 == y2)
        return;
    if (y1 == y2)
        x2 += x2 > x1 ? -1 : 1;
    else if (x1 == x2)
        y2 += y2 > y1 ? -1 : 1;
    Painter.drawLine(x1, y1, x2, y2);
}

void TGDIContext::Rectangle(int left, int top, int right, int bottom)
{
    if (right <= left || bottom <= top)
        return;
    const QRect area(left, top, right - left, bottom - top);
    if (Painter.brush().style() != Qt::NoBrush)
        Painter.fillRect(area, Painter.brush());
    if (Painter.pen().style() == Qt::NoPen)
        return;
    const QBrush brush = Painter.brush();
    Painter.setBrush(Qt::NoBrush);
    Painter.drawRect(area.adjusted(0, 0, -1, -1));
    Painter.setBrush(brush);
}

void TGDIContext::TextOut(int x, int y, const char* text)
{
    if (text == nullptr)
        return;
    const QPen pen = Painter.pen();
    Painter.setPen(ToColour(TextColour));
    Painter.drawText(x, y + Painter.fontMetrics().ascent(), QString::fromUtf8(text));
    Painter.setPen(pen);
}

void TGDIContext::TextOutClipped(int x, int y, int width, int height, const char* text)
{
    if (width <= 0 || height <= 0)
        return;
    Painter.save();
    Painter.setClipRect(x, y, width, height, Qt::IntersectClip);
    TextOut(x, y, text);
    Painter.restore();
}

void TGDIContext::GetTextExtent(const char* text, int& width, int& height) const
{
    Measure(Painter.fontMetrics(), text, width, height);
}

void TGDIContext::Draw(const TGDIBitmap& bitmap, int x, int y)
{
    Painter.drawImage(x, y, bitmap.GetImage());
}

void TGDIContext::RaisedEdge(int left, int top, int right, int bottom)
{
    Painter.save();
    Edge(left, top, right, bottom, EdgeLight, EdgeDark);
    Edge(left + 1, top + 1, right - 1, bottom - 1, InnerLight, InnerDark);
    Painter.restore();
}

void TGDIContext::Edge(int left, int top, int right, int bottom, TGDIColour light, TGDIColour dark)
{
    SetPen(light);
    Line(left, top, right - 1, top);
    Line(left, top, left, bottom - 1);
    SetPen(dark);
    Line(left, bottom - 1, right, bottom - 1);
    Line(right - 1, top, right - 1, bottom);
}

TGDIColour GetButtonColour()
{
    return QGuiApplication::palette().color(QPalette::Button).rgb() & 0xFFFFFF;
}

void GetTextExtent(const TGDIFont& font, const char* text, int& width, int& height)
{
    Measure(QFontMetrics(ToFont(font)), text, width, height);
}
