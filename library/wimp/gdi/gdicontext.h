#pragma once

#include "library/containers/vector.h"
#include "library/wimp/gdi/themecolour.h"

class QFont;
class QPainter;
class QRect;
class TGDIBitmap;
class TString;

// A font of the window system; the height of its characters in pixels, of either sign.
struct TGDIFont
{
    // Null: the stock system font.
    const char* Face = nullptr;
    int Height = 12;
    int Weight = 400;
};

// A place between pixels.
struct TGDIPoint
{
    double X = 0;
    double Y = 0;
};

// Draws into a window that is not OpenGL's, while its paint message is handled. Positions are pixels, which
// on a scaled screen are not always whole dots: edges fall on the nearest dot, so that what touches in pixels
// touches on the screen, and all lines are equally thick. Rectangles hold their left and top edge and not
// their right and bottom one. Colours are told as a light desktop has them; a dark one has its own in their
// place.
class TGDIContext
{
public:
    // For the framework.
    explicit TGDIContext(QPainter& painter);
    TGDIContext(const TGDIContext&) = delete;
    TGDIContext& operator=(const TGDIContext&) = delete;

    void SetPen(TGDIColour colour, bool dotted = false);
    void SetNoPen();
    void SetBrush(TGDIColour colour);
    void SetNoBrush();
    void SetFont(const TGDIFont& font);
    void SetTextColour(TGDIColour colour);

    // Without its last point, as far as it is level or upright.
    void Line(int x1, int y1, int x2, int y2);
    // Through all the points, with the pen. One point draws nothing.
    void Polyline(const vector<TGDIPoint>& points);
    // Nothing is drawn outside a rectangle from now on.
    void SetClip(int left, int top, int right, int bottom);
    void ClearClip();
    // Filled with the brush, outlined with the pen.
    void Rectangle(int left, int top, int right, int bottom);
    // The position is the text's top left.
    void TextOut(int x, int y, const char* text);
    // Only what lies inside a rectangle that begins at the position.
    void TextOutClipped(int x, int y, int width, int height, const char* text);
    // In so many pixels: what there is no room for gives way to an ellipsis.
    void TextOutShortened(int x, int y, int width, const char* text);
    void GetTextExtent(const char* text, int& width, int& height) const;
    void Draw(const TGDIBitmap& bitmap, int x, int y);
    // Around what the keys are at.
    void FocusFrame(int left, int top, int right, int bottom);
    // A raised edge, as a tab or a button has.
    void RaisedEdge(int left, int top, int right, int bottom);

private:
    // Of lines, in dots.
    int GetThickness() const;
    // The dots of a rectangle of pixels, and filling dots.
    QRect ToDots(int left, int top, int right, int bottom) const;
    void FillDots(const QRect& dots, TGDIColour colour);
    void FillLine(const QRect& dots, bool level);
    // Along the inside of a rectangle of dots.
    void Frame(const QRect& dots, TGDIColour topLeft, TGDIColour bottomRight);

    QPainter& Painter;
    TGDIColour PenColour = 0;
    bool Dotted = false;
    TGDIColour TextColour = 0;
};

// The system's colour of buttons and of what stands between windows.
TGDIColour GetButtonColour();

// Without a window at hand.
void GetTextExtent(const TGDIFont& font, const char* text, int& width, int& height);
int GetTextWidth(const TGDIFont& font, const char* text);
// As much of the text as has room in the width, with an ellipsis where it ends before its time.
void FitText(const TGDIFont& font, const char* text, int width, TString& result);
