#pragma once

#include "library/containers/string.h"
#include "library/wimp/gl/renderfont.h"
#include "library/wimp/gl/renderpath.h"
#include "particles/cindermill/interface/controls/outlines.h"

class TRenderer;

// What all controls are drawn with, so that they and the panels that they stand in look like one family.

enum TControlLook
{
    CL_HOVER = 1,
    CL_PRESSED = 2,
    CL_FOCUSED = 4,
    CL_DISABLED = 8
};

constexpr const char* ControlFont = "Arial (TrueType)";
constexpr float ControlRadius = 2.5f;
// A view with less zoom counts as zoomed out.
constexpr float FarZoom = 0.8f;
// Letters smaller than this many pixels say nothing.
constexpr float SmallestText = 3.0f;

// A box with a thin edge: a field to write in, a button to press, or a groove.
class TControlBox
{
public:
    void Build(const TVector2& min, const TVector2& max, float radius = ControlRadius, int corners = PC_ALL);
    // With TControlLook bits.
    void RenderField(TRenderer& renderer, int look);
    void RenderButton(TRenderer& renderer, int look);
    void RenderGroove(TRenderer& renderer);
    // What is dragged along a groove.
    void RenderPip(TRenderer& renderer, int look);
    // A list above everything.
    void RenderList(TRenderer& renderer);
    const TVector2& GetMin() const { return Min; }
    const TVector2& GetMax() const { return Max; }

private:
    void RenderFocus(TRenderer& renderer);
    void RenderPart(TRenderer& renderer, TRenderPath& path, const TVector4& colour);

    TVector2 Min = TVector2(0, 0);
    TVector2 Max = TVector2(0, 0);
    float Radius = 0.0f;
    int Corners = PC_ALL;
    TRenderPath Edge;
    TRenderPath Face;
    TRenderPath Upper;
};

// Of texts and signs on a control.
TVector4 GetControlInk(int look);
// Behind selected text, and behind the row of a list that the pointer is on.
TVector4 GetSelectionColour();
// Behind the row of a list that is chosen.
TVector4 GetChosenColour();
// For letters at a zoom: more than opaque where that is far, as it multiplies their coverage. What is to be
// seen through stays as it is.
TVector4 Stronger(const TVector4& colour, float zoom);
// A text with its top left at the place; left out where it is too small to be read, and stronger in a view
// that is zoomed out.
void DrawControlText(TRenderer& renderer, const TFontInstance& font, const TVector2& place, const char* text,
                     const TVector4& colour);
// The top of a text that stands in the middle of a height.
float GetTextTop(const TFontInstance& font, float height);
// As much of the text as has room in the width, with "..." where it is cut.
void FitText(const TFontInstance& font, const char* text, float width, TString& result);
// A small triangle that points up or down, around its middle.
void DrawArrow(TRenderer& renderer, const TVector2& middle, float size, bool up, const TVector4& colour);
// A length of so many pixels of the view in world units, but no shorter than so many units.
float GetPixelLength(const TRenderer& renderer, float pixels, float least);
