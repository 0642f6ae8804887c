#include "library/wimp/gdi/gdicontext.h"

#include "library/containers/string.h"
#include "library/wimp/gdi/gdibitmap.h"

#include <QtGui/QFontMetrics>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>
#include <QtGui/QPalette>

#include <math.h>
#include <stdlib.h>

// Of a raised edge, from outside to inside.
static constexpr TGDIColour EdgeLight = 0xFFFFFF;
static constexpr TGDIColour EdgeDark = 0x696969;
static constexpr TGDIColour InnerLight = 0xE3E3E3;
static constexpr TGDIColour InnerDark = 0xA0A0A0;
static constexpr TGDIColour DarkThemeEdge = 0x6A6A6A;
static constexpr TGDIColour DarkThemeInner = 0x1E1E1E;

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

// A part of a pixel too wide counts as fitting, as where the text is measured.
static QByteArray Shorten(const QFontMetrics& metrics, const char* text, int width)
{
    const QString whole = QString::fromUtf8(text);
    if (metrics.horizontalAdvance(whole) <= width)
        return whole.toUtf8();
    return metrics.elidedText(whole, Qt::ElideRight, width).toUtf8();
}

TGDIContext::TGDIContext(QPainter& painter) : Painter(painter)
{
    SetFont(TGDIFont());
    // Pictures are made for a screen that is not scaled.
    Painter.setRenderHint(QPainter::SmoothPixmapTransform);
}

int TGDIContext::GetThickness() const
{
    const double dots = Painter.device()->devicePixelRatio();
    const int nearest = static_cast<int>(ceil(dots - 0.5));
    return nearest > 1 ? nearest : 1;
}

QRect TGDIContext::ToDots(int left, int top, int right, int bottom) const
{
    const QRectF dots = Painter.deviceTransform().mapRect(QRectF(QPoint(left, top), QPoint(right, bottom)));
    return QRect(QPoint(qRound(dots.left()), qRound(dots.top())),
                 QPoint(qRound(dots.right()) - 1, qRound(dots.bottom()) - 1));
}

void TGDIContext::FillDots(const QRect& dots, TGDIColour colour)
{
    if (!dots.isEmpty())
        Painter.fillRect(Painter.deviceTransform().inverted().mapRect(QRectF(dots)), ToColour(colour));
}

void TGDIContext::FillLine(const QRect& dots, bool level)
{
    if (!Dotted) {
        FillDots(dots, PenColour);
        return;
    }
    const int size = GetThickness();
    const int length = level ? dots.width() : dots.height();
    for (int at = 0; at < length; at += 2 * size) {
        const QRect part = level ? QRect(dots.left() + at, dots.top(), size, dots.height())
                                 : QRect(dots.left(), dots.top() + at, dots.width(), size);
        FillDots(part & dots, PenColour);
    }
}

void TGDIContext::Frame(const QRect& dots, TGDIColour topLeft, TGDIColour bottomRight)
{
    const int line = GetThickness();
    const int across = dots.width();
    const int down = dots.height();
    FillDots(QRect(dots.left(), dots.top(), across - line, line), topLeft);
    FillDots(QRect(dots.left(), dots.top(), line, down - line), topLeft);
    FillDots(QRect(dots.left(), dots.top() + down - line, across, line), bottomRight);
    FillDots(QRect(dots.left() + across - line, dots.top(), line, down), bottomRight);
}

void TGDIContext::SetPen(TGDIColour colour, bool dotted)
{
    PenColour = GetThemeColour(colour);
    Dotted = dotted;
    QPen pen(ToColour(PenColour), 1);
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
    Painter.setBrush(ToColour(GetThemeColour(colour)));
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
    TextColour = GetThemeColour(colour);
}

void TGDIContext::Line(int x1, int y1, int x2, int y2)
{
    if (x1 == x2 && y1 == y2)
        return;
    if (x1 != x2 && y1 != y2) {
        Painter.drawLine(x1, y1, x2, y2);
        return;
    }
    if (Painter.pen().style() == Qt::NoPen)
        return;
    // Whichever way it runs, its last point is left out.
    const bool back = x2 < x1 || y2 < y1;
    const bool level = y1 == y2;
    const int left = back && level ? x2 + 1 : x1;
    const int right = back && level ? x1 + 1 : x2;
    const int top = back && !level ? y2 + 1 : y1;
    const int bottom = back && !level ? y1 + 1 : y2;
    QRect dots = ToDots(left, top, level ? right : left + 1, level ? top + 1 : bottom);
    if (level)
        dots.setHeight(GetThickness());
    else
        dots.setWidth(GetThickness());
    FillLine(dots, level);
}

void TGDIContext::Polyline(const vector<TGDIPoint>& points)
{
    for (int i = 1; i < points.size(); ++i)
        Painter.drawLine(QPointF(points[i - 1].X, points[i - 1].Y), QPointF(points[i].X, points[i].Y));
}

void TGDIContext::SetClip(int left, int top, int right, int bottom)
{
    Painter.setClipRect(QRect(left, top, right - left, bottom - top));
}

void TGDIContext::ClearClip()
{
    Painter.setClipping(false);
}

void TGDIContext::Rectangle(int left, int top, int right, int bottom)
{
    if (right <= left || bottom <= top)
        return;
    const QRect dots = ToDots(left, top, right, bottom);
    if (Painter.brush().style() != Qt::NoBrush)
        FillDots(dots, Painter.brush().color().rgb());
    if (Painter.pen().style() != Qt::NoPen)
        Frame(dots, PenColour, PenColour);
}

void TGDIContext::FocusFrame(int left, int top, int right, int bottom)
{
    constexpr TGDIColour FocusColour = 0x2A6FB0;
    SetPen(FocusColour);
    SetNoBrush();
    Rectangle(left, top, right, bottom);
    Rectangle(left + 1, top + 1, right - 1, bottom - 1);
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

void TGDIContext::TextOutShortened(int x, int y, int width, const char* text)
{
    TextOut(x, y, Shorten(Painter.fontMetrics(), text, width).constData());
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
    const QRect dots = ToDots(left, top, right, bottom);
    const int line = GetThickness();
    const bool isDark = IsDarkTheme();
    const QRect inner = dots.adjusted(line, line, -line, -line);
    Frame(dots, isDark ? DarkThemeEdge : EdgeLight, isDark ? 0 : EdgeDark);
    Frame(inner, isDark ? GetButtonColour() : InnerLight, isDark ? DarkThemeInner : InnerDark);
}

TGDIColour GetButtonColour()
{
    return GetThemeColour(ButtonColour);
}

void GetTextExtent(const TGDIFont& font, const char* text, int& width, int& height)
{
    Measure(QFontMetrics(ToFont(font)), text, width, height);
}

int GetTextWidth(const TGDIFont& font, const char* text)
{
    int width = 0;
    int height = 0;
    GetTextExtent(font, text, width, height);
    return width;
}

void FitText(const TGDIFont& font, const char* text, int width, TString& result)
{
    result = Shorten(QFontMetrics(ToFont(font)), text, width).constData();
}
