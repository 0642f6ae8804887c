#include "particles/cindermill/interface/controls/colourpicker.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/colourpaint.h"
#include "particles/cindermill/interface/controls/colourtext.h"
#include "particles/cindermill/interface/controls/controlhost.h"
#include "particles/cindermill/interface/controls/fieldwalk.h"
#include "particles/cindermill/interface/controls/pickerprograms.h"

#include <initializer_list>

namespace {

constexpr float RowHeight = 20.0f;
constexpr float RowStep = 24.0f;
constexpr float InputLeft = 14.0f;
constexpr float InputWidth = 100.0f;
constexpr float ComboWidth = 100.0f;
constexpr double InputStep = 0.01;
constexpr float AreaLeft = 130.0f;
constexpr float AreaBottom = 4 * RowStep + RowHeight;
constexpr float AreaHeight = AreaBottom - TColourPicker::AreaTop;
constexpr float AreaGap = 12.0f;
// Room for the marker of a strip that is at its top.
constexpr float HeadingGap = 4.0f;
// How far markers reach beyond what they mark.
constexpr float MarkerReach = 7.0f;
const TVector4 FocusColour(0.10f, 0.42f, 0.90f, 1);

// By mode.
constexpr const char* RowNames[2][TPickedColour::NumComponents] = {{"H:", "S:", "L:", "A:"},
                                                                   {"R:", "G:", "B:", "A:"}};
constexpr const char* HeadingNames[2][4] = {{"H/S:", "L:", "A:", "Colour:"}, {"R/G:", "B:", "A:", "Colour:"}};

// What an area shows at a place, as one that has no program is drawn.
using TColourAt = TVector4 (*)(const float* components, float x, float y);

TVector4 HslColour(float hue, float saturation, float luminance)
{
    const float hsl[3] = {hue, saturation, luminance};
    float rgb[3];
    HslToRgb(hsl, rgb);
    return TVector4(rgb[0], rgb[1], rgb[2], 1);
}

TVector4 HslSquareAt(const float* components, float x, float y)
{
    return HslColour(x, y, ClampToUnit(components[2]));
}

TVector4 HslStripAt(const float* components, float, float y)
{
    return HslColour(ClampToUnit(components[0]), ClampToUnit(components[1]), y);
}

TVector4 RgbSquareAt(const float* components, float x, float y)
{
    return TVector4(x, y, ClampToUnit(components[2]), 1);
}

TVector4 RgbStripAt(const float* components, float, float y)
{
    return TVector4(ClampToUnit(components[0]), ClampToUnit(components[1]), y, 1);
}

TVector4 AlphaStripAt(const float* components, float, float y)
{
    return TVector4(ClampToUnit(components[0]), ClampToUnit(components[1]), ClampToUnit(components[2]), y);
}

struct TRectangle
{
    TVector2 Min;
    TVector2 Max;

    // With y upwards.
    TVector2 At(float x, float y) const
    {
        return TVector2(Min[0] + (Max[0] - Min[0]) * x, Max[1] - (Max[1] - Min[1]) * y);
    }
};

constexpr float Corners[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};

// Between the corners of its cells OpenGL shades by itself.
void DrawShaded(TRenderer& renderer, const TRectangle& area, TColourAt colourAt, const float* components,
                int columns, int rows)
{
    renderer.Begin(PR_QUADS);
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            for (const float* corner : Corners) {
                const float x = (static_cast<float>(column) + corner[0]) / static_cast<float>(columns);
                const float y = (static_cast<float>(row) + corner[1]) / static_cast<float>(rows);
                renderer.SetColour(colourAt(components, x, y));
                renderer.Vertex(area.At(x, y));
            }
    renderer.End();
}

void DrawByProgram(TRenderer& renderer, const TRectangle& area, const TArbProgram& program,
                   const TVector4& local)
{
    renderer.Begin(PR_QUADS, 0, program, local);
    for (const float* corner : Corners)
        renderer.Vertex(area.At(corner[0], corner[1]), TVector2(corner[0], corner[1]));
    renderer.End();
}

// The whole turn of hues in steps of a third of a sixth.
constexpr int SquareColumns = 18;
constexpr int SquareRows = 8;
constexpr int StripRows = 16;

} // namespace

TColourPicker::TColourPicker(TControlHost& host)
    : Host(host),
      Combo(host), Inputs{TNumberInput(host), TNumberInput(host), TNumberInput(host), TNumberInput(host)},
      Drag(*this), Programs(&TPickerPrograms::GetShared())
{
}

void TColourPicker::Build()
{
    Combo.Build(TVector2(ComboWidth, RowHeight));
    Combo.AddString("HSL", PM_HSL);
    Combo.AddString("RGB", PM_RGB);
    Combo.SetSelection(Mode);
    AddObject(&Combo);
    for (int i = 0; i < NumRows; ++i) {
        AddObject(&RowLabels[i]);
        Inputs[i].Build(TVector2(InputWidth, RowHeight), true);
        Inputs[i].SetRange(0, 1);
        Inputs[i].SetStep(InputStep);
        AddObject(&Inputs[i]);
    }
    for (TStatic& heading : Headings)
        AddObject(&heading);
    Layout();
    ShowLabels();
    ShowNumbers();
}

// All areas but the square are as wide as the widest heading of any mode.
void TColourPicker::Layout()
{
    float widest = 0;
    for (const auto& names : HeadingNames)
        for (const char* name : names) {
            const float width = TStatic(name).GetSize()[0];
            widest = width > widest ? width : widest;
        }
    float left = AreaLeft;
    for (int i = 0; i < HD_NUMHEADINGS; ++i) {
        Lefts[i] = left;
        Rights[i] = left + (i == HD_SQUARE ? AreaHeight : widest);
        left = Rights[i] + AreaGap;
    }
    Size = TVector2(Rights[HD_RESULT] + 1, AreaBottom + 1);
    for (int i = 0; i < NumRows; ++i)
        Inputs[i].SetOrigin(TVector2(InputLeft, static_cast<float>(i + 1) * RowStep));
}

void TColourPicker::ShowLabels()
{
    for (int i = 0; i < NumRows; ++i) {
        RowLabels[i].SetText(RowNames[Mode][i]);
        const float top = (RowHeight - RowLabels[i].GetSize()[1]) * 0.5f;
        RowLabels[i].SetOrigin(TVector2(0, static_cast<float>(i + 1) * RowStep + top));
    }
    for (int i = 0; i < HD_NUMHEADINGS; ++i) {
        Headings[i].SetText(HeadingNames[Mode][i]);
        Headings[i].SetOrigin(TVector2(Lefts[i], AreaTop - HeadingGap - Headings[i].GetSize()[1]));
    }
}

const float* TColourPicker::GetShown() const
{
    return Mode == PM_HSL ? Colour.GetHsla() : Colour.GetRgba();
}

void TColourPicker::ShowNumbers()
{
    for (int i = 0; i < NumRows; ++i)
        Inputs[i].ShowValue(GetShown()[i]);
}

void TColourPicker::SetColour(const float* rgba)
{
    Colour.SetRgba(rgba);
    ShowNumbers();
}

void TColourPicker::SetMode(TPickerMode mode)
{
    Mode = mode;
    Combo.SetSelection(mode);
    ShowLabels();
    ShowNumbers();
}

void TColourPicker::GetArea(TPickerArea area, TVector2& min, TVector2& max) const
{
    ASSERT_TEXT(area != PA_NONE, "area != 0");
    const int heading = area - PA_SQUARE;
    min = TVector2(Lefts[heading], AreaTop);
    max = TVector2(Rights[heading], AreaBottom);
}

TPickerArea TColourPicker::AreaAt(const TVector2& point) const
{
    constexpr TPickerArea Areas[] = {PA_SQUARE, PA_STRIP, PA_ALPHA};
    for (const TPickerArea area : Areas) {
        TVector2 min;
        TVector2 max;
        GetArea(area, min, max);
        if (point[0] >= min[0] && point[0] < max[0] && point[1] >= min[1] && point[1] < max[1])
            return area;
    }
    return PA_NONE;
}

TRenderObject* TColourPicker::HitTest(const TVector2& point)
{
    if (TRenderObject* child = TRenderObjects::HitTest(point))
        return child;
    return AreaAt(point - Origin) != PA_NONE ? this : nullptr;
}

void TColourPicker::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(-MarkerReach, -MarkerReach);
    max = Size + TVector2(MarkerReach, MarkerReach);
}

bool TColourPicker::Event(const TRenderEvent& event)
{
    switch (event.Code) {
    case RE_LEFTDOWN:
        return (event.Source == this && OnPress(event)) || TRenderObjects::Event(event);
    case RE_VALUECHANGED:
        if (event.Source == &Combo) {
            SetMode(static_cast<TPickerMode>(Combo.GetData(Combo.GetSelection())));
            Host.RedrawGraphs();
        }
        for (int i = 0; i < NumRows; ++i)
            if (event.Source == &Inputs[i])
                OnInput(i);
        return true;
    case RE_KEY:
        return (event.Source == this && OnKey(event.Detail)) || TRenderObjects::Event(event);
    case RE_FOCUSLOST:
        if (event.Source == this)
            Host.RedrawGraphs();
        return true;
    default:
        return TRenderObjects::Event(event);
    }
}

bool TColourPicker::OnPress(const TRenderEvent& event)
{
    const TPickerArea area = AreaAt(event.Point);
    if (area == PA_NONE)
        return false;
    // What is being typed is ended first.
    SetFocus(this, GetRenderer());
    if (!Drag.Begin(Host))
        return true;
    static int lastDrag = 0;
    DragNumber = ++lastDrag;
    DragArea = area;
    KeyArea = area;
    Before = Colour;
    Pick(event.Point);
    return true;
}

bool TColourPicker::OnKey(int key)
{
    switch (key) {
    case KEY_ESCAPE:
        if (!Drag.IsRunning())
            return false;
        Drag.Cancel();
        return true;
    case KEY_TAB:
        if (!Drag.IsRunning())
            WalkFields(*this, (GetKeyFlags() & KF_SHIFT) != 0);
        return true;
    case KEY_LEFT:
    case KEY_RIGHT:
        MoveMarker(key == KEY_RIGHT ? 1 : -1, 0);
        return true;
    case KEY_UP:
    case KEY_DOWN:
        MoveMarker(0, key == KEY_UP ? 1 : -1);
        return true;
    default:
        return false;
    }
}

// From where the marker is seen; what does not move keeps its value.
void TColourPicker::MoveMarker(int across, int up)
{
    constexpr double Step = 0.01;
    constexpr double FineStep = 0.001;
    if (KeyArea == PA_NONE || Drag.IsRunning() || (across != 0 && KeyArea != PA_SQUARE))
        return;
    const int component = KeyArea == PA_ALPHA   ? TPickedColour::Alpha
                          : KeyArea == PA_STRIP ? 2
                          : across != 0         ? 0
                                                : 1;
    const double step = (GetKeyFlags() & KF_SHIFT) != 0 ? FineStep : Step;
    const float from = ClampToUnit(GetShown()[component]);
    const float to = ClampToUnit(static_cast<float>(from + (across + up) * step));
    if (to == from)
        return;
    SetComponent(component, to);
    ShowNumbers();
    Notify();
}

void TColourPicker::SetComponent(int i, float value)
{
    if (Mode == PM_HSL)
        Colour.SetHslaComponent(i, value);
    else
        Colour.SetRgbaComponent(i, value);
}

void TColourPicker::Pick(const TVector2& point)
{
    TVector2 min;
    TVector2 max;
    GetArea(DragArea, min, max);
    const float x = ClampToUnit((point[0] - min[0]) / (max[0] - min[0]));
    const float y = ClampToUnit((max[1] - point[1]) / (max[1] - min[1]));
    if (DragArea == PA_SQUARE) {
        SetComponent(0, x);
        SetComponent(1, y);
    } else {
        SetComponent(DragArea == PA_STRIP ? 2 : TPickedColour::Alpha, y);
    }
    ShowNumbers();
    Notify();
}

void TColourPicker::OnInput(int i)
{
    SetComponent(i, static_cast<float>(Inputs[i].GetValue()));
    ShowNumbers();
    Notify();
}

void TColourPicker::Notify()
{
    Host.RedrawGraphs();
    TellParent(RE_VALUECHANGED);
}

void TColourPicker::TakeBack()
{
    Colour = Before;
    ShowNumbers();
    TakenBack = true;
    Notify();
    TakenBack = false;
    DragArea = PA_NONE;
}

void TColourPicker::TPickDrag::OnDrag(const TVector2& point, int keyFlags)
{
    (void)keyFlags;
    Picker.Pick(point);
}

void TColourPicker::TPickDrag::OnDragEnd()
{
    Picker.DragArea = PA_NONE;
}

void TColourPicker::TPickDrag::OnDragCancel()
{
    Picker.TakeBack();
}

void TColourPicker::Render(TRenderer& renderer)
{
    RenderSquare(renderer);
    RenderStrip(renderer);
    RenderAlpha(renderer);
    const TVector2 min(Lefts[HD_RESULT], AreaTop);
    const TVector2 max(Rights[HD_RESULT], AreaBottom);
    DrawColourSample(renderer, min, max, Colour.GetRgba());
    DrawAreaFrame(renderer, min, max);
    RenderFocus(renderer);
    RenderMarkers(renderer);
    TRenderObjects::Render(renderer);
}

void TColourPicker::RenderSquare(TRenderer& renderer)
{
    TRectangle area;
    GetArea(PA_SQUARE, area.Min, area.Max);
    const float third = ClampToUnit(GetShown()[2]);
    const TArbProgram* program = Programs->Get(Mode == PM_HSL ? PP_HSLSQUARE : PP_RGBSQUARE);
    if (program != nullptr)
        DrawByProgram(renderer, area, *program, TVector4(third, 0, 0, 0));
    else
        DrawShaded(renderer, area, Mode == PM_HSL ? &HslSquareAt : &RgbSquareAt, GetShown(), SquareColumns,
                   SquareRows);
    DrawAreaFrame(renderer, area.Min, area.Max);
}

void TColourPicker::RenderStrip(TRenderer& renderer)
{
    TRectangle area;
    GetArea(PA_STRIP, area.Min, area.Max);
    const float* shown = GetShown();
    const TArbProgram* program = Mode == PM_RGB ? Programs->Get(PP_RGBSTRIP) : nullptr;
    if (program != nullptr)
        DrawByProgram(renderer, area, *program, TVector4(ClampToUnit(shown[0]), ClampToUnit(shown[1]), 0, 0));
    else
        DrawShaded(renderer, area, Mode == PM_HSL ? &HslStripAt : &RgbStripAt, shown, 1, StripRows);
    DrawAreaFrame(renderer, area.Min, area.Max);
}

void TColourPicker::RenderAlpha(TRenderer& renderer)
{
    TRectangle area;
    GetArea(PA_ALPHA, area.Min, area.Max);
    const float* rgba = Colour.GetRgba();
    DrawCheckerboard(renderer, area.Min, area.Max);
    if (const TArbProgram* program = Programs->Get(PP_ALPHASTRIP))
        DrawByProgram(renderer, area, *program,
                      TVector4(ClampToUnit(rgba[0]), ClampToUnit(rgba[1]), ClampToUnit(rgba[2]), 0));
    else
        DrawShaded(renderer, area, &AlphaStripAt, rgba, 1, StripRows);
    DrawAreaFrame(renderer, area.Min, area.Max);
}

void TColourPicker::RenderFocus(TRenderer& renderer)
{
    if (GetKeyArea() == PA_NONE)
        return;
    TRectangle area;
    GetArea(KeyArea, area.Min, area.Max);
    const TVector2 edge(2, 2);
    DrawFrame(renderer, area.Min - edge, area.Max + edge, 2, FocusColour);
}

void TColourPicker::RenderMarkers(TRenderer& renderer)
{
    const float* shown = GetShown();
    TRectangle area;
    GetArea(PA_SQUARE, area.Min, area.Max);
    DrawPlaceMarker(renderer, area.At(ClampToUnit(shown[0]), ClampToUnit(shown[1])));
    GetArea(PA_STRIP, area.Min, area.Max);
    DrawHeightMarker(renderer, area.Min[0], area.Max[0], area.At(0, ClampToUnit(shown[2]))[1]);
    GetArea(PA_ALPHA, area.Min, area.Max);
    DrawHeightMarker(renderer, area.Min[0], area.Max[0],
                     area.At(0, ClampToUnit(shown[TPickedColour::Alpha]))[1]);
}

bool TColourPicker::Describe(TAccessibleTraits& traits)
{
    traits.Role = AR_COLOUR;
    ColourToText(GetColour(), traits.Value);
    traits.TakesFocus = true;
    traits.HasFocus = GetFocus() == this;
    return true;
}

void TColourPicker::NamePart(const TRenderObject& part, TString& name) const
{
    if (&part == &Combo)
        name = "mode";
    for (int i = 0; i < NumRows; ++i)
        if (&part == &Inputs[i])
            name = RowLabels[i].GetText();
}

// The last thing that is done, as the change may take the picker away.
bool TColourPicker::EnterValue(const char* text)
{
    float rgba[NumRows];
    for (int i = 0; i < NumRows; ++i)
        rgba[i] = GetColour()[i];
    if (Drag.IsRunning() || !TextToColour(text, rgba))
        return false;
    SetColour(rgba);
    Notify();
    return true;
}

void TColourPicker::TakeKeys(TRenderer* renderer)
{
    if (KeyArea == PA_NONE)
        KeyArea = PA_SQUARE;
    SetFocus(this, renderer);
}
