#include "particles/cindermill/interface/graph/nodeexp.h"

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/renderwindow.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/effectgraph/nodetype.h"

namespace {

constexpr TPanelPath Table[TNodeExp::NumPaths - TNodePanel::NumSharedPaths] = {
    // The button's sign: there is less, or with nothing to show yet, more.
    {AtEnd(-11), At(7.25f), AtEnd(-5), At(8.75f), 0, 0, PP_GLYPH, 0},
    {AtEnd(-8.75f), At(5), AtEnd(-7.25f), At(11), 0, 0, PP_GLYPHABOVE, 0},
    // A groove below the ports, with a handle in the type's colour.
    {At(3), AtSplit(1), AtEnd(-3), AtSplit(2), 0, 0, PP_FACE, PT_DARK},
    {At(3), AtSplit(2), AtEnd(-3), AtSplit(3), 0, 0, PP_FACE, PT_HIGHLIGHT},
    {AtEnd(-20), AtSplit(0), AtEnd(-8), AtSplit(4), 2, PC_ALL, PP_STRIP, -0.11f},
    {AtEnd(-19), AtSplit(1), AtEnd(-9), AtSplit(3), 1, PC_ALL, PP_STRIP2, 0.07f},
    {At(8), AtSplit(0), At(20), AtSplit(4), 2, PC_ALL, PP_STRIP, -0.11f},
    {At(9), AtSplit(1), At(19), AtSplit(3), 1, PC_ALL, PP_STRIP2, 0.07f},
    // The sunken panel of the controls.
    {At(6), AtSplit(6), AtEnd(-6), AtEnd(-6), 3, PC_ALL, PP_OUTLINE, 0},
    {At(7), AtSplit(7), AtEnd(-7), AtEnd(-7), 2.5f, PC_ALL, PP_FACE, PT_MID},
    {At(8), AtSplit(9), AtEnd(-8), AtEnd(-8), 2, PC_ALL, PP_FACE, PT_LIGHT},
    {At(8), AtSplit(7), AtEnd(-8), AtSplit(8), 0, 0, PP_FACE, PT_DARK},
    {At(7), AtSplit(9), At(8), AtEnd(-9), 0, 0, PP_FACE, PT_DARK},
    {AtEnd(-8), AtSplit(9), AtEnd(-7), AtEnd(-9), 0, 0, PP_FACE, PT_HIGHLIGHT},
    {At(9), AtEnd(-8), AtEnd(-9), AtEnd(-7), 0, 0, PP_FACE, PT_HIGHLIGHT},
    {AtEnd(-9), AtEnd(-9), AtEnd(-3), AtEnd(-3), 0.8f, PC_RISING, PP_GRIP, 0},
    {At(1), At(1), AtEnd(-1), AtEnd(-1), 4, PC_ALL, PP_VEIL, 0.5f},
};

constexpr int NumRegions = 3;
constexpr TPanelRegion Regions[NumRegions] = {
    {XR_CLOSE, AtEnd(-14), At(2), AtEnd(-2), At(14)},
    {XR_GRIP, AtEnd(-9), AtEnd(-9), AtEnd(0), AtEnd(0)},
    {XR_BODY, At(0), At(0), AtEnd(0), AtEnd(0)},
};

// Around and between the controls.
constexpr float ControlsSide = 14.0f;
constexpr float ControlsTop = 13.0f;
constexpr float ControlsBottom = 14.0f;
constexpr float ControlsGap = 5.0f;
constexpr float PictureOpacity = 0.7f;
// The close button leaves room for the bypass box.
constexpr float ButtonLeft = 24.0f;
constexpr float ButtonWidth = 14.0f;

} // namespace

TNodeExp::TNodeExp() = default;
TNodeExp::~TNodeExp() = default;

void TNodeExp::DeleteControls()
{
    Controls.clear();
    Owned.clear();
}

void TNodeExp::BuildFor(const TNodeType& type)
{
    Build(type, MeasureNode(type));
    Panel.SetOpacity(PictureOpacity);
    Ports.clear();
    for (int i = 0; i < type.GetNumInputs(); ++i)
        Ports.push_back(new TPort(nullptr, i, true, type.GetInput(i)->Name));
    for (int i = 0; i < type.GetNumOutputs(); ++i)
        Ports.push_back(new TPort(nullptr, i, false, type.GetOutput(i).Name));
    for (TPort* port : Ports)
        port->SetOrigin(GetPortOffset(port->IsInput(), port->GetIndex(), GetSize()[0]));
    TouchBounds();
}

void TNodeExp::Build(const TNodeType& type, const TVector2& closedSize)
{
    const TVector2 room = LayoutControls(closedSize[1] + ControlsTop);
    TVector2 size = closedSize;
    if (HasVisibleControls()) {
        const float width = static_cast<float>(room[0] + 2.0 * ControlsSide);
        if (width > size[0])
            size[0] = width;
        size[1] = static_cast<float>(double(size[1]) + ControlsTop + room[1] + ControlsBottom);
    }
    Panel.Build(type, Table, NumPaths - TNodePanel::NumSharedPaths, size, closedSize[1]);
    TouchBounds();
}

TVector2 TNodeExp::LayoutControls(float top)
{
    // The groups' own places stand in one line; their labels end left of it.
    TVector2 min;
    TVector2 max;
    float left = 0;
    float right = 0;
    for (const TControls& controls : Controls) {
        if (!controls.Visible)
            continue;
        controls.Object->GetBounds(min, max);
        left = min[0] < left ? min[0] : left;
        right = max[0] > right ? max[0] : right;
    }
    float y = top;
    for (const TControls& controls : Controls) {
        if (!controls.Visible)
            continue;
        TVector2 size;
        controls.Object->GetSize(size);
        controls.Object->SetOrigin(TVector2(ControlsSide - left, y));
        y = static_cast<float>(double(y) + size[1] + ControlsGap);
    }
    const float height = y > top ? y - top - ControlsGap : 0.0f;
    return TVector2(right - left, height);
}

void TNodeExp::AddControls(TNodeParameterControls* controls, int inputPort)
{
    TControls entry;
    entry.Object = controls;
    entry.Port = inputPort;
    Controls.push_back(entry);
    Owned.push_back(controls);
    AddObject(controls);
}

bool TNodeExp::ShowControls(int i, bool visible)
{
    TControls& controls = Controls[i];
    if (controls.Visible == visible)
        return false;
    controls.Visible = visible;
    if (visible)
        AddObject(controls.Object);
    else
        RemoveObject(controls.Object);
    return true;
}

bool TNodeExp::HasVisibleControls() const
{
    for (const TControls& controls : Controls)
        if (controls.Visible)
            return true;
    return false;
}

void TNodeExp::Render(TRenderer& renderer)
{
    Panel.SetButtonShift(GetButtonShift(renderer));
    Panel.Render(renderer);
    TRenderObjects::Render(renderer);
    for (TPort* port : Ports) {
        renderer.PushOrigin(port->GetOrigin());
        port->Render(renderer);
        renderer.PopOrigin();
    }
}

void TNodeExp::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Panel.GetSize();
}

TRenderObject* TNodeExp::HitTest(const TVector2& point)
{
    return TRenderObjects::HitTest(point);
}

int TNodeExp::GetRegion(const TVector2& point) const
{
    return FindPanelRegion(Regions, NumRegions, Panel.GetSize(), point);
}

float TNodeExp::GetButtonShift(const TRenderer& view) const
{
    // A picture of a type has no button to press.
    if (Parent == nullptr || view.GetWindow() == nullptr)
        return 0;
    int width;
    int height;
    view.GetWindow()->GetSize(width, height);
    const float end = view.PixelToWorld(width, 0)[0] - GetAbsolutePosition()[0];
    const float least = ButtonLeft + ButtonWidth - GetSize()[0];
    const float shift = end - GetSize()[0];
    return shift >= 0 || least >= 0 ? 0 : shift < least ? least : shift;
}

bool TNodeExp::HitsButton(const TVector2& point, const TRenderer* view) const
{
    const float shift = view != nullptr ? GetButtonShift(*view) : 0.0f;
    return GetRegion(point) == XR_CLOSE || GetRegion(point - TVector2(shift, 0)) == XR_CLOSE;
}
