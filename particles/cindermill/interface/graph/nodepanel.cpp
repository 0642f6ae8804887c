#include "particles/cindermill/interface/graph/nodepanel.h"

#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/controlpaint.h"
#include "particles/cindermill/interface/graph/nodecolour.h"
#include "particles/effectgraph/nodetype.h"

namespace {

constexpr float ShadowTone = 0.502f;
constexpr float Tones[PT_NUMTONES][4] = {{0.737f, 0.784f, 0.784f, 1},
                                         {0.651f, 0.690f, 0.690f, 1},
                                         {0.620f, 0.659f, 0.659f, 1},
                                         {0.769f, 0.816f, 0.816f, 1}};
// The order in which the tones take each other's places under a pressed button.
constexpr int PressedTones[PT_NUMTONES] = {PT_DARK, PT_LIGHT, PT_HIGHLIGHT, PT_DARK};

constexpr float FaintGlyph = 0.45f;
const TVector4 VeilColour(0.93f, 0.94f, 0.92f, 1);

constexpr TPanelPath SharedPaths[TNodePanel::NumSharedPaths] = {
    {At(2.5f), At(3.5f), AtEnd(3.0f), AtEnd(4.0f), 6, PC_ALL, PP_SHADOW, 0},
    {At(-2.5f), At(-2.5f), AtEnd(2.5f), AtEnd(2.5f), 7, PC_ALL, PP_HALO, 0.75f},
    // The frame.
    {At(0), At(0), AtEnd(0), AtEnd(0), 5, PC_ALL, PP_OUTLINE, 0},
    {At(1), At(1), AtEnd(-1), AtEnd(-1), 4, PC_ALL, PP_STRIP, -0.06f},
    {At(1), At(14), At(3), AtEnd(-4), 0, 0, PP_STRIP2, 0.07f},
    {AtEnd(-3), At(14), AtEnd(-1), AtEnd(-4), 0, 0, PP_STRIP, -0.11f},
    {At(4), AtEnd(-3), AtEnd(-4), AtEnd(-1), 0, 0, PP_STRIP2, -0.11f},
    // The title bar, lit from above.
    {At(1), At(1), AtEnd(-1), At(4), 4, PC_TOP, PP_TITLE, 0.11f},
    {At(1), At(4), AtEnd(-1), At(7.5f), 0, 0, PP_TITLE, 0.07f},
    {At(1), At(7.5f), AtEnd(-1), At(11), 0, 0, PP_TITLE, 0.05f},
    {At(1), At(11), AtEnd(-1), At(14), 0, 0, PP_TITLE, -0.06f},
    {At(1), At(14), AtEnd(-1), At(15), 0, 0, PP_TITLE, -0.17f},
    // The face.
    {At(2.5f), At(15), AtEnd(-2.5f), AtEnd(-2.5f), 3, PC_BOTTOM, PP_FACE, PT_DARK},
    {At(3), At(15), AtEnd(-3), AtEnd(-3), 2.5f, PC_BOTTOM, PP_FACE, PT_MID},
    {At(3), At(15), AtEnd(-4.25f), AtEnd(-5.5f), 2.5f, PC_BOTTOMRIGHT, PP_FACE, PT_LIGHT},
    {At(4.5f), AtEnd(-3.75f), AtEnd(-4.5f), AtEnd(-3), 0, 0, PP_FACE, PT_DARK},
    {At(3), At(15), AtEnd(-3), At(16), 0, 0, PP_FACE, PT_HIGHLIGHT},
    // The button.
    {AtEnd(-13), At(3), AtEnd(-3), At(13), 2.5f, PC_ALL, PP_BUTTONEDGE, 0},
    {AtEnd(-12), At(4), AtEnd(-4), At(8), 1.5f, PC_TOP, PP_BUTTON, PT_HIGHLIGHT},
    {AtEnd(-12), At(8), AtEnd(-4), At(12), 1.5f, PC_BOTTOM, PP_BUTTON, PT_MID},
    // The grip, clear of the label beside it.
    {AtEnd(-7), AtEnd(-7), AtEnd(-3), AtEnd(-3), 0.8f, PC_RISING, PP_GRIP, 0},
    {AtEnd(-5), AtEnd(-5), AtEnd(-3), AtEnd(-3), 0.8f, PC_RISING, PP_GRIP, 0},
};

TVector4 MakeColour(const float* channels)
{
    return TVector4(channels[0], channels[1], channels[2], channels[3]);
}

float GetPosition(const TPanelEdge& edge, float size, float split)
{
    return static_cast<float>(double(edge.OfSize) * size + double(edge.OfSplit) * split + edge.Offset);
}

// A bar across a box, from its bottom left to its top right.
void MakeBar(TRenderPath& path, const TVector2& min, const TVector2& max, float thickness)
{
    const TVector2 from(min[0], max[1]);
    const TVector2 to(max[0], min[1]);
    TVector2 side(from[1] - to[1], to[0] - from[0]);
    side.Normalise();
    side *= thickness * 0.5f;
    path.MoveTo(from + side);
    path.LineTo(to + side);
    path.LineTo(to - side);
    path.LineTo(from - side);
    path.Close();
}

// Whether nothing is seen through it, whatever state the panel is in.
bool IsSolid(TPanelPaint paint)
{
    switch (paint) {
    case PP_STRIP:
    case PP_STRIP2:
    case PP_TITLE:
    case PP_FACE:
    case PP_OUTLINE:
        return true;
    default:
        return false;
    }
}

bool IsButton(TPanelPaint paint)
{
    return paint == PP_BUTTON || paint == PP_BUTTONEDGE || paint == PP_GLYPH || paint == PP_GLYPHABOVE;
}

} // namespace

TVector4 GetPanelTone(int tone)
{
    return MakeColour(Tones[tone]);
}

int FindPanelRegion(const TPanelRegion* table, int numRegions, const TVector2& size, const TVector2& point)
{
    for (int i = 0; i < numRegions; ++i) {
        const TPanelRegion& row = table[i];
        if (point[0] >= GetPosition(row.Left, size[0], 0) && point[0] < GetPosition(row.Right, size[0], 0) &&
            point[1] >= GetPosition(row.Top, size[1], 0) && point[1] < GetPosition(row.Bottom, size[1], 0))
            return row.Region;
    }
    return -1;
}

void TNodePanel::Build(const TNodeType& type, const TPanelPath* table, int numPaths, const TVector2& size,
                       float split)
{
    Type = &type;
    Table = table;
    Size = size;
    Split = split;
    Fonts.Fit(type, size[0]);
    Paths.resize(NumSharedPaths + numPaths);
    for (int i = 0; i < Paths.size(); ++i)
        BuildPath(GetRow(i), Paths[i]);
    Paint();
    CutHoles();
}

const TPanelPath& TNodePanel::GetRow(int i) const
{
    return i < NumSharedPaths ? SharedPaths[i] : Table[i - NumSharedPaths];
}

void TNodePanel::BuildPath(const TPanelPath& row, TRenderPath& path) const
{
    const TVector2 min(GetPosition(row.Left, Size[0], 0), GetPosition(row.Top, Size[1], Split));
    const TVector2 max(GetPosition(row.Right, Size[0], 0), GetPosition(row.Bottom, Size[1], Split));
    path.Clear();
    path.SetWidth(0);
    const bool missing = row.Top.OfSplit != 0 && !(Size[1] > Split);
    if (missing || !(min[0] < max[0]) || !(min[1] < max[1]))
        return;
    if (row.Corners == PC_RISING)
        MakeBar(path, min, max, row.Radius);
    else
        MakeBox(path, min, max, row.Radius, row.Corners);
}

// The largest box inside the outline; false for one that is not drawn.
bool TNodePanel::GetInside(int i, TVector2& min, TVector2& max) const
{
    // Where a round corner is nearest to the box, and what rounding may take away.
    constexpr float CornerShare = 0.293f;
    constexpr float Slack = 0.05f;
    const TPanelPath& row = GetRow(i);
    if (!Paths[i].IsClosed() || row.Corners == PC_RISING)
        return false;
    const float inset = row.Radius * CornerShare + Slack;
    min = TVector2(GetPosition(row.Left, Size[0], 0) + inset, GetPosition(row.Top, Size[1], Split) + inset);
    max =
        TVector2(GetPosition(row.Right, Size[0], 0) - inset, GetPosition(row.Bottom, Size[1], Split) - inset);
    return true;
}

// Outlines lie on each other: of each the part is left out that another covers.
void TNodePanel::CutHoles()
{
    constexpr float Smallest = 4.0f;
    for (int i = 0; i < Paths.size(); ++i) {
        TVector2 holeMin(0, 0);
        TVector2 holeMax(0, 0);
        TVector2 min;
        TVector2 max;
        for (int above = i + 1; GetInside(i, min, max) && above < Paths.size(); ++above) {
            TVector2 low;
            TVector2 high;
            if (!IsSolid(GetRow(above).Paint) || Paths[above].GetFillColour()[3] < 1.0f ||
                !GetInside(above, low, high))
                continue;
            for (int axis = 0; axis < 2; ++axis) {
                low[axis] = low[axis] > min[axis] ? low[axis] : min[axis];
                high[axis] = high[axis] < max[axis] ? high[axis] : max[axis];
            }
            const TVector2 size = high - low;
            const TVector2 best = holeMax - holeMin;
            if (size[0] < Smallest || size[1] < Smallest || size[0] * size[1] <= best[0] * best[1])
                continue;
            holeMin = low;
            holeMax = high;
        }
        Paths[i].SetHole(holeMin, holeMax);
    }
}

TVector4 TNodePanel::GetPaint(const TPanelPath& row) const
{
    const TVector4 own = GetNodeTypeColour(Type->Colour);
    const int tone = static_cast<int>(row.Value);
    switch (row.Paint) {
    case PP_SHADOW:
        return TVector4(ShadowTone, ShadowTone, ShadowTone, ShadowTone);
    case PP_STRIP:
        return Selected ? TVector4(0.831f, 0.267f, 0, 1) : ShiftColour(own, row.Value);
    case PP_STRIP2:
        return Selected ? TVector4(0.851f, 0.282f, 0, 1) : ShiftColour(own, row.Value);
    case PP_TITLE:
        return ShiftColour(own, row.Value);
    case PP_FACE:
        return GetPanelTone(tone);
    case PP_BUTTON:
        return GetPanelTone(Pressed ? PressedTones[tone] : tone);
    case PP_OUTLINE:
        return Selected ? TVector4(0.36f, 0.11f, 0, 1)
                        : MixColours(own, TVector4(0.06f, 0.07f, 0.09f, 1), 0.78f);
    case PP_BUTTONEDGE:
        return MixColours(own, TVector4(0.06f, 0.07f, 0.09f, 1), 0.6f);
    case PP_GLYPHABOVE:
        if (Size[1] > Split)
            return TVector4(0, 0, 0, 0);
        [[fallthrough]];
    case PP_GLYPH:
        return TVector4(0.14f, 0.16f, 0.18f, Openable ? 1 : FaintGlyph);
    case PP_GRIP:
        return TVector4(0.30f, 0.33f, 0.35f, 0.8f);
    case PP_HALO:
        return TVector4(1, 0.55f, 0.10f, Selected ? row.Value : 0);
    case PP_VEIL: {
        TVector4 veil = VeilColour;
        veil[3] = Bypassed ? row.Value : 0;
        return veil;
    }
    }
    return own;
}

void TNodePanel::Paint()
{
    for (int i = 0; i < Paths.size(); ++i) {
        TVector4 colour = GetPaint(GetRow(i));
        colour[3] *= Opacity;
        Paths[i].SetFillColour(colour);
    }
}

void TNodePanel::SetVisualState(int code)
{
    const bool selected = code == VS_SELECTED ? true : code == VS_NORMAL ? false : Selected;
    const bool pressed = code == VS_PRESSED ? true : code == VS_RELEASED ? false : Pressed;
    if (selected == Selected && pressed == Pressed)
        return;
    Selected = selected;
    Pressed = pressed;
    Paint();
}

void TNodePanel::SetBypassed(bool bypassed)
{
    if (bypassed == Bypassed)
        return;
    Bypassed = bypassed;
    Paint();
}

void TNodePanel::SetOpenable(bool openable)
{
    if (openable == Openable)
        return;
    Openable = openable;
    Paint();
}

void TNodePanel::SetOpacity(float opacity)
{
    Opacity = opacity;
    Paint();
    CutHoles();
}

void TNodePanel::Render(TRenderer& renderer)
{
    if (Type == nullptr)
        return;
    const bool isShifted = ButtonShift != 0;
    for (int i = 0; i < Paths.size(); ++i) {
        // The veil is the last, and lies over the labels too.
        if (GetRow(i).Paint == PP_VEIL)
            RenderLabels(renderer);
        if (!isShifted || !IsButton(GetRow(i).Paint))
            RenderPath(renderer, i, 0);
    }
    RenderTitle(renderer);
    // It may lie over the title.
    for (int i = 0; isShifted && i < Paths.size(); ++i)
        if (IsButton(GetRow(i).Paint))
            RenderPath(renderer, i, ButtonShift);
}

void TNodePanel::RenderPath(TRenderer& renderer, int i, float shift)
{
    if (Paths[i].IsClosed() && Paths[i].GetFillColour()[3] > 0)
        Paths[i].Render(renderer, TVector2(shift, 0), TVector2(1, 1),
                        GetNodeSmoothness(renderer.GetResolution()[1]));
}

void TNodePanel::RenderTitle(TRenderer& renderer) const
{
    TVector2 size;
    const float zoom = renderer.GetScale()[1];
    const TFontInstance& font = Fonts.GetTitle(zoom);
    font.GetTextSize(Type->Name.Print(), size);
    if (size[1] * zoom < SmallestText)
        return;
    TVector4 own = GetNodeTypeColour(Type->Colour);
    if (Bypassed)
        own = MixColours(own, VeilColour, 0.5f);
    TVector4 colour = GetContrastColour(own);
    TVector4 edge = ShiftColour(own, colour[0] > 0.5f ? -0.35f : 0.15f);
    colour[3] = Opacity;
    edge[3] = 0.75f * Opacity;
    const TVector2 place(GetTitleLeft(*Type, size[0], Size[0]), (NodeTitleHeight - size[1]) * 0.5f + 0.75f);
    // Below the letters, by a pixel.
    if (!TNodeFonts::IsFar(zoom))
        font.DrawText(renderer, place + TVector2(0, 1.0f / zoom), Type->Name.Print(), edge);
    font.DrawText(renderer, place, Type->Name.Print(), Stronger(colour, zoom));
}

void TNodePanel::RenderLabels(TRenderer& renderer) const
{
    const float zoom = renderer.GetScale()[1];
    const TFontInstance& font = Fonts.GetLabel(zoom);
    const TVector4 colour = Stronger(TVector4(0.09f, 0.10f, 0.12f, Opacity), zoom);
    TVector2 line;
    font.GetTextSize("", line);
    if (line[1] * zoom < SmallestText)
        return;
    auto draw = [&](const TString& text, int row, bool isInput) {
        TVector2 size;
        font.GetTextSize(text.Print(), size);
        const float left = isInput ? NodeLabelInset : Size[0] - NodeLabelInset - size[0];
        font.DrawText(renderer, TVector2(left, GetPortRow(row) - size[1] * 0.5f), text.Print(), colour);
    };
    for (int i = 0; i < Type->GetNumInputs(); ++i)
        draw(Type->GetInput(i)->Name, i, true);
    for (int i = 0; i < Type->GetNumOutputs(); ++i)
        draw(Type->GetOutput(i).Name, i, false);
}
