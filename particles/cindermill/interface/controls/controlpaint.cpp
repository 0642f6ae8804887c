#include "particles/cindermill/interface/controls/controlpaint.h"

#include "library/wimp/gl/renderer.h"

namespace {

const TVector4 Ink(0.09f, 0.10f, 0.12f, 1);
const TVector4 FaintInk(0.09f, 0.10f, 0.12f, 0.42f);
const TVector4 EdgeColour(0.36f, 0.40f, 0.41f, 1);
const TVector4 HoverEdge(0.20f, 0.23f, 0.25f, 1);
const TVector4 FaintEdge(0.53f, 0.57f, 0.57f, 1);
const TVector4 FocusColour(1, 0.55f, 0.10f, 1);
const TVector4 SelectionColour(1, 0.80f, 0.52f, 1);

const TVector4 FieldFace(0.925f, 0.945f, 0.940f, 1);
const TVector4 FieldShade(0.835f, 0.865f, 0.860f, 1);
const TVector4 FieldHover(0.965f, 0.980f, 0.975f, 1);
const TVector4 FieldFocused(1, 1, 0.985f, 1);
const TVector4 FieldDisabled(0.755f, 0.800f, 0.800f, 1);
const TVector4 GrooveFace(0.620f, 0.659f, 0.659f, 1);

// The lower and the upper half of a button.
struct TButtonFace
{
    TVector4 Lower;
    TVector4 Upper;
};
const TButtonFace ButtonFace{TVector4(0.672f, 0.712f, 0.712f, 1), TVector4(0.800f, 0.845f, 0.843f, 1)};
const TButtonFace ButtonHover{TVector4(0.745f, 0.785f, 0.783f, 1), TVector4(0.875f, 0.910f, 0.907f, 1)};
const TButtonFace ButtonPressed{TVector4(0.600f, 0.640f, 0.642f, 1), TVector4(0.520f, 0.560f, 0.565f, 1)};
const TButtonFace ButtonDisabled{TVector4(0.720f, 0.762f, 0.762f, 1), TVector4(0.745f, 0.788f, 0.788f, 1)};

constexpr float EdgeWidth = 1.0f;
constexpr float ShadeHeight = 1.5f;
constexpr float FocusPixels = 1.5f;
constexpr float FocusWidth = 1.5f;
// In a view that is zoomed out strokes thinner than a pixel would be pale: there a letter covers more of the
// pixels that it only touches, so much more from so little zoom on.
constexpr float NearestStrong = 0.5f;
constexpr float FarStrokes = 0.9f;

const TButtonFace& GetButtonFace(int look)
{
    if ((look & CL_DISABLED) != 0)
        return ButtonDisabled;
    if ((look & CL_PRESSED) != 0)
        return ButtonPressed;
    return (look & CL_HOVER) != 0 ? ButtonHover : ButtonFace;
}

const TVector4& GetFieldFace(int look)
{
    if ((look & CL_DISABLED) != 0)
        return FieldDisabled;
    if ((look & CL_FOCUSED) != 0)
        return FieldFocused;
    return (look & CL_HOVER) != 0 ? FieldHover : FieldFace;
}

const TVector4& GetEdge(int look)
{
    if ((look & CL_DISABLED) != 0)
        return FaintEdge;
    return (look & (CL_HOVER | CL_FOCUSED | CL_PRESSED)) != 0 ? HoverEdge : EdgeColour;
}

} // namespace

TVector4 Stronger(const TVector4& colour, float zoom)
{
    if (zoom >= FarZoom || colour[3] < 1)
        return colour;
    const float share = (FarZoom - zoom) / (FarZoom - NearestStrong);
    return TVector4(colour[0], colour[1], colour[2], colour[3] * (1 + FarStrokes * (share < 1 ? share : 1)));
}

void TControlBox::Build(const TVector2& min, const TVector2& max, float radius, int corners)
{
    Min = min;
    Max = max;
    Radius = radius;
    Corners = corners;
    const TVector2 edge(EdgeWidth, EdgeWidth);
    const float inner = radius > EdgeWidth ? radius - EdgeWidth : 0.0f;
    TRenderPath* const paths[] = {&Edge, &Face, &Upper};
    for (TRenderPath* path : paths) {
        path->Clear();
        path->SetWidth(0);
    }
    if (!(max[0] - min[0] > 2 * EdgeWidth) || !(max[1] - min[1] > 2 * EdgeWidth))
        return;
    MakeBox(Edge, min, max, radius, corners);
    MakeBox(Face, min + edge, max - edge, inner, corners);
    const float middle = (min[1] + max[1]) * 0.5f;
    MakeBox(Upper, min + edge, TVector2(max[0] - EdgeWidth, middle), inner, corners & PC_TOP);
}

void TControlBox::RenderPart(TRenderer& renderer, TRenderPath& path, const TVector4& colour)
{
    if (!path.IsClosed())
        return;
    constexpr float FarShare = 0.5f;
    const bool isFar = renderer.GetResolution()[1] < FarZoom;
    path.SetFillColour(colour);
    path.Render(renderer, TVector2(0, 0), TVector2(1, 1), isFar ? FarShare : 1);
}

// Wide enough to be seen in a view that is zoomed out.
void TControlBox::RenderFocus(TRenderer& renderer)
{
    const float width = GetPixelLength(renderer, FocusPixels, FocusWidth);
    TRenderPath ring;
    ring.SetWidth(0);
    MakeBox(ring, Min - TVector2(width, width), Max + TVector2(width, width), Radius + width, Corners);
    RenderPart(renderer, ring, FocusColour);
}

void TControlBox::RenderField(TRenderer& renderer, int look)
{
    if ((look & CL_FOCUSED) != 0)
        RenderFocus(renderer);
    RenderPart(renderer, Edge, GetEdge(look));
    RenderPart(renderer, Face, GetFieldFace(look));
    if ((look & CL_DISABLED) != 0)
        return;
    // Light falls from above into what lies deeper than the panel.
    renderer.SetColour(FieldShade);
    renderer.DrawRectangle(Min + TVector2(Radius, EdgeWidth),
                           TVector2(Max[0] - Radius, Min[1] + EdgeWidth + ShadeHeight));
}

void TControlBox::RenderButton(TRenderer& renderer, int look)
{
    if ((look & CL_FOCUSED) != 0)
        RenderFocus(renderer);
    const TButtonFace& face = GetButtonFace(look);
    RenderPart(renderer, Edge, GetEdge(look));
    RenderPart(renderer, Face, face.Lower);
    RenderPart(renderer, Upper, face.Upper);
}

void TControlBox::RenderGroove(TRenderer& renderer)
{
    RenderPart(renderer, Edge, FaintEdge);
    RenderPart(renderer, Face, GrooveFace);
}

void TControlBox::RenderPip(TRenderer& renderer, int look)
{
    const TButtonFace& face = GetButtonFace(look);
    RenderPart(renderer, Edge, GetEdge(look));
    RenderPart(renderer, Face, face.Upper);
}

void TControlBox::RenderList(TRenderer& renderer)
{
    TRenderPath shadow;
    shadow.SetWidth(0);
    const TVector2 drop(2.0f, 2.5f);
    MakeBox(shadow, Min + drop, Max + drop, Radius, PC_ALL);
    RenderPart(renderer, shadow, TVector4(0, 0, 0, 0.28f));
    RenderPart(renderer, Edge, HoverEdge);
    RenderPart(renderer, Face, FieldHover);
}

TVector4 GetControlInk(int look)
{
    return (look & CL_DISABLED) != 0 ? FaintInk : Ink;
}

TVector4 GetSelectionColour()
{
    return SelectionColour;
}

TVector4 GetChosenColour()
{
    return FieldShade;
}

void DrawControlText(TRenderer& renderer, const TFontInstance& font, const TVector2& place, const char* text,
                     const TVector4& colour)
{
    const float zoom = renderer.GetScale()[1];
    TVector2 size;
    font.GetTextSize("", size);
    if (size[1] * zoom >= SmallestText)
        font.DrawText(renderer, place, text, Stronger(colour, zoom));
}

float GetTextTop(const TFontInstance& font, float height)
{
    // Most of what hangs below the line is empty, so that the middle of the letters lies higher.
    constexpr float Drop = 0.5f;
    TVector2 size;
    font.GetTextSize("", size);
    return (height - size[1]) * 0.5f + Drop;
}

void FitText(const TFontInstance& font, const char* text, float width, TString& result)
{
    result = text;
    TVector2 size;
    font.GetTextSize(result.Print(), size);
    for (int count = result.Length() - 1; size[0] > width && count >= 0; --count) {
        result.Left(text, count);
        result += "...";
        font.GetTextSize(result.Print(), size);
    }
}

void DrawArrow(TRenderer& renderer, const TVector2& middle, float size, bool up, const TVector4& colour)
{
    const float half = size * 0.5f;
    const float tip = up ? -half * 0.6f : half * 0.6f;
    TRenderPath path;
    path.SetWidth(0);
    path.MoveTo(middle + TVector2(-half, -tip));
    path.LineTo(middle + TVector2(half, -tip));
    path.LineTo(middle + TVector2(0, tip));
    path.Close();
    path.SetFillColour(colour);
    path.Render(renderer);
}

float GetPixelLength(const TRenderer& renderer, float pixels, float least)
{
    const float length = pixels / renderer.GetScale()[0];
    return length > least ? length : least;
}
