#pragma once

#include "library/containers/vector.h"
#include "library/wimp/gl/renderpath.h"
#include "particles/cindermill/interface/controls/outlines.h"
#include "particles/cindermill/interface/graph/nodelayout.h"

class TNodeType;

// The look of a panel of nodes is a table of outlines, drawn in order. A position of an outline is a part of
// the panel's size plus a part of its split, the height at which the ports end, plus a constant.
struct TPanelEdge
{
    float OfSize;
    float OfSplit;
    float Offset;
};

// From the panel's left or top, from its right or bottom, and from the split.
constexpr TPanelEdge At(float offset)
{
    return TPanelEdge{0, 0, offset};
}
constexpr TPanelEdge AtEnd(float offset)
{
    return TPanelEdge{1, 0, offset};
}
constexpr TPanelEdge AtSplit(float offset)
{
    return TPanelEdge{0, 1, offset};
}

// For Corners of a row: no box at all but a stroke from the bottom left to the top right.
constexpr int PC_RISING = 16;

// What an outline is filled with.
enum TPanelPaint
{
    PP_SHADOW,
    // The type's colour moved by the value; in a selected panel an orange.
    PP_STRIP,
    PP_STRIP2,
    // The same, never orange.
    PP_TITLE,
    // One of the four tones, by the value.
    PP_FACE,
    // The same, in the opposite order while the button is pressed.
    PP_BUTTON,
    PP_OUTLINE,
    PP_BUTTONEDGE,
    PP_GLYPH,
    // Seen in panels that end at the split only.
    PP_GLYPHABOVE,
    PP_GRIP,
    // Seen in selected panels only.
    PP_HALO,
    // Seen in bypassed panels only.
    PP_VEIL
};

struct TPanelPath
{
    TPanelEdge Left;
    TPanelEdge Top;
    TPanelEdge Right;
    TPanelEdge Bottom;
    // Of the rounded corners; the thickness of a stroke.
    float Radius;
    int Corners;
    TPanelPaint Paint;
    float Value;
};

enum TPanelTone
{
    PT_LIGHT,
    PT_MID,
    PT_DARK,
    PT_HIGHLIGHT,
    PT_NUMTONES
};

// How a node shows itself.
enum TNodeVisualState
{
    VS_NORMAL = 0,
    VS_SELECTED = 1,
    VS_PRESSED = 2,
    VS_RELEASED = -3
};

TVector4 GetPanelTone(int tone);

// A part of a panel that takes clicks.
struct TPanelRegion
{
    int Region;
    TPanelEdge Left;
    TPanelEdge Top;
    TPanelEdge Right;
    TPanelEdge Bottom;
};

// The region of the first entry that holds the point, or -1.
int FindPanelRegion(const TPanelRegion* table, int numRegions, const TVector2& size, const TVector2& point);

// The outlines that closed and open nodes share, then those of a table, made for one node type and size, with
// the title and the ports' labels.
class TNodePanel
{
public:
    static constexpr int NumSharedPaths = 22;

    // The type and the table must stay as long as the panel is drawn. What begins at the split or below is
    // left out if the panel ends there.
    void Build(const TNodeType& type, const TPanelPath* table, int numPaths, const TVector2& size,
               float split);
    void SetVisualState(int code);
    void SetBypassed(bool bypassed);
    // The sign on the button is faint if there is nothing to open.
    void SetOpenable(bool openable);
    // How far from its place the button is drawn, across.
    void SetButtonShift(float shift) { ButtonShift = shift; }
    // From clear, 0, to solid, 1.
    void SetOpacity(float opacity);

    void Render(TRenderer& renderer);
    int GetNumPaths() const { return Paths.size(); }
    const TRenderPath& GetPath(int i) const { return Paths[i]; }
    const TVector2& GetSize() const { return Size; }
    bool IsPressed() const { return Pressed; }

private:
    const TPanelPath& GetRow(int i) const;
    bool GetInside(int i, TVector2& min, TVector2& max) const;
    void CutHoles();
    void BuildPath(const TPanelPath& row, TRenderPath& path) const;
    TVector4 GetPaint(const TPanelPath& row) const;
    void Paint();
    void RenderPath(TRenderer& renderer, int i, float shift);
    void RenderTitle(TRenderer& renderer) const;
    void RenderLabels(TRenderer& renderer) const;

    const TNodeType* Type = nullptr;
    const TPanelPath* Table = nullptr;
    vector<TRenderPath> Paths;
    TNodeFonts Fonts;
    TVector2 Size = TVector2(0, 0);
    float Split = 0.0f;
    float Opacity = 1.0f;
    float ButtonShift = 0.0f;
    bool Selected = false;
    bool Pressed = false;
    bool Bypassed = false;
    bool Openable = true;
};
