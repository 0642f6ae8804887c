#include "particles/cindermill/interface/controls/ramp.h"

#include "library/containers/append.h"
#include "library/system/clock.h"
#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/graph/operations/operation.h"
#include "particles/cindermill/interface/controls/controlpaint.h"
#include "particles/cindermill/interface/controls/fieldwalk.h"
#include "particles/cindermill/interface/controls/rampcolours.h"
#include "particles/cindermill/interface/controls/rampdrawing.h"
#include "particles/cindermill/interface/controls/rampoperations.h"
#include "particles/cindermill/interface/controls/ramptext.h"

#include <cmath>

namespace {

constexpr float RowLeft = 25.0f;
constexpr float ComponentWidth = 30.0f;
constexpr float ComponentGap = 5.0f;
constexpr float LockWidth = 40.0f;
constexpr float LinearWidth = 48.0f;
constexpr float InputWidth = 80.0f;
// Between neighbours in the row.
constexpr float Gap = 4.0f;
constexpr float ButtonHeight = 15.0f;
constexpr float ButtonAbove = 4.5f;
constexpr float LinearAbove = 4.0f;
constexpr float RowFontSize = 8.0f;
constexpr uint32_t DoublePressMilliseconds = 500;

// A hundredth of the span, or so: a power of ten.
double GetArrowStep(double span)
{
    constexpr double PartsAtLeast = 50.0;
    return std::pow(10.0, std::floor(std::log10(span / PartsAtLeast)));
}

TVector2 GetZoom()
{
    const TRenderer* renderer = TRenderObject::GetRenderer();
    return renderer != nullptr ? renderer->GetScale() : TVector2(1, 1);
}

} // namespace

TRamp::TRamp(TControlHost& host)
    : Host(host), Drag(*this), ComponentButtons{TPushButton(host), TPushButton(host), TPushButton(host),
                                                TPushButton(host)},
      LockButton(host), LinearButton(host), TimeInput(host), ValueInput(host)
{
    Font.Create(ControlFont, RowFontSize);
}

TRamp::~TRamp() = default;

void TRamp::Build(const TVector2& size, int componentCount, bool colour, bool linear,
                  const vector<TRampPoint>* pointLists)
{
    Drag.Cancel();
    Model.Build(componentCount, linear);
    for (int i = 0; i < componentCount; ++i)
        Model.GetCurve(i).SetPoints(pointLists[i]);
    ColourStrip = colour;
    Layout = TRampLayout(size, colour);
    BuildRow(colour);
    Selected = TRampSelection();
    View.SetLayout(Layout);
    View.Fit(Model);
    Changed();
    TouchBounds();
}

void TRamp::AddMissing(TRenderObject& object)
{
    if (!HasObject(&object))
        AddObject(&object);
}

// Gives the next one's place. The button stands above the row line.
float TRamp::PlaceButton(TPushButton& button, const char* text, float x, float width, float shownWidth,
                         float above)
{
    button.Build(text, TVector2(shownWidth, ButtonHeight), RowFontSize);
    button.SetToggle(true);
    button.SetCode(RE_NODEREFRESH);
    button.SetOrigin(TVector2(x, TRampLayout::RowLine - above - ButtonHeight));
    AddMissing(button);
    return x + width;
}

void TRamp::BuildRow(bool colour)
{
    const bool isMany = Model.GetComponentCount() > 1;
    float x = RowLeft;
    // The Tab key leads from a point to its numbers first.
    AddMissing(TimeInput);
    AddMissing(ValueInput);
    for (int i = 0; i < MaxComponents; ++i) {
        if (isMany && i < Model.GetComponentCount())
            x = PlaceButton(ComponentButtons[i], GetRampLabel(i, colour), x, ComponentWidth,
                            ComponentWidth - ComponentGap, ButtonAbove);
        else if (HasObject(&ComponentButtons[i]))
            RemoveObject(&ComponentButtons[i]);
    }
    if (isMany)
        x = PlaceButton(LockButton, "Lock", x, LockWidth, LockWidth - Gap, ButtonAbove);
    else if (HasObject(&LockButton))
        RemoveObject(&LockButton);
    x = PlaceButton(LinearButton, "Linear", x, LinearWidth, LinearWidth - Gap, LinearAbove);
    TNumberInput* const inputs[] = {&TimeInput, &ValueInput};
    for (TNumberInput* input : inputs) {
        input->Build(TVector2(InputWidth - Gap, ButtonHeight), true, RowFontSize);
        input->SetFormat("%.2f");
        input->SetOrigin(TVector2(x, TRampLayout::RowLine - ButtonAbove - ButtonHeight));
        x += InputWidth;
    }
    RowEnd = x - Gap;
    ValueInput.SetRange(-TNumberInput::FloatLimit, TNumberInput::FloatLimit);
}

TPushButton* TRamp::GetComponentButton(int component)
{
    return HasObject(&ComponentButtons[component]) ? &ComponentButtons[component] : nullptr;
}

void TRamp::SetLocks(const int* locks)
{
    Drag.Cancel();
    Model.SetLocks(locks);
    DropLostSelection();
    Changed();
}

void TRamp::SetPoints(int component, const vector<TRampPoint>& points)
{
    Drag.Cancel();
    const TRampCurve before = Model.GetCurve(component);
    Model.GetCurve(component).SetPoints(points);
    if (Selected.Component == component)
        KeepSelection(before);
    Changed();
}

void TRamp::Refresh()
{
    if (Parameter == nullptr)
        return;
    if (!Drag.IsPan())
        Drag.Cancel();
    const TRampCurve before = Selected.IsNone() ? TRampCurve() : Model.GetCurve(Selected.Component);
    Model.SetLinear(Parameter->IsLinear());
    Model.SetLocks(Parameter->GetLocks());
    for (int i = 0; i < MaxComponents; ++i)
        Model.GetCurve(i).SetPoints(Parameter->GetCurve(i));
    if (!Selected.IsNone())
        KeepSelection(before);
    Changed();
}

// Points have no names. In a list of the same length the point is the one with its number, in another one
// that has stayed where it was.
void TRamp::KeepSelection(const TRampCurve& before)
{
    const TRampCurve& now = Model.GetCurve(Selected.Component);
    if (now.GetNumPoints() != before.GetNumPoints()) {
        const TRampPoint point = before.GetPoint(Selected.Point);
        const int kind = Selected.Point % 3;
        Selected.Point = -1;
        for (int i = kind; i < now.GetNumPoints() && Selected.Point == -1; i += 3)
            if (TRampCurve::IsSame(now.GetPoint(i), point))
                Selected.Point = i;
    }
    DropLostSelection();
}

void TRamp::DropLostSelection()
{
    if (!Selected.IsNone() && !Model.IsSelectable(Selected.Component, Selected.Point))
        Selected = TRampSelection();
}

void TRamp::Select(const TRampSelection& selection)
{
    Selected = selection;
    UpdateRow();
    Host.RedrawGraphs();
}

void TRamp::Changed()
{
    // Under a drag the ground stands still.
    if (!Drag.IsRunning())
        View.Follow(Model);
    Paths.Rebuild(Model, View);
    Model.Sample(Samples);
    UpdateRow();
    Host.RedrawGraphs();
}

void TRamp::UpdateRow()
{
    for (int i = 0; i < MaxComponents; ++i)
        ComponentButtons[i].SetPressed(Model.IsVisible(i));
    LockButton.SetPressed(Model.HasLocks());
    LockButton.SetEnabled(Model.HasLocks() || Model.CanLock());
    LinearButton.SetPressed(Model.IsLinear());
    const float maxTime = Model.GetMaxTime();
    TimeInput.SetRange(0, maxTime > 1.0f ? double(maxTime) : 1.0);
    TRampPoint shown;
    if (!Selected.IsNone())
        shown = Model.GetCurve(Selected.Component).GetPoint(Selected.Point);
    TimeInput.SetReadOnly(Selected.IsNone());
    ValueInput.SetReadOnly(Selected.IsNone());
    TimeInput.ShowValue(double(shown.X));
    ValueInput.ShowValue(double(shown.Y));
}

void TRamp::ShowView(const TRampView& view)
{
    View = view;
    Paths.Rebuild(Model, View);
    Host.RedrawGraphs();
}

void TRamp::ShowDragged(const TRampCurve& curve, const TVector2& place)
{
    Model.GetCurve(Drag.GetMoved().Component) = curve;
    OnPointer(place, Layout.IsInPlot(place));
    Changed();
}

void TRamp::EndDrag()
{
    if (!Drag.IsPan())
        Commit(Drag.GetMoved().Component);
}

void TRamp::Commit(int component)
{
    if (Parameter == nullptr) {
        Changed();
        return;
    }
    TOperation* operation = MakeCurveOperation(*Parameter, component, Model.GetCurve(component));
    if (operation != nullptr)
        Send(operation);
    else
        Changed();
}

void TRamp::Send(TOperation* operation)
{
    Pending.Reset(operation);
    if (operation != nullptr) {
        TellParent(RE_VALUECHANGED);
        Pending.Reset();
    }
    // Whether it has been done or not: the parameter knows.
    Refresh();
}

TRamp* TRamp::GetFocused()
{
    return dynamic_cast<TRamp*>(GetFocus());
}

TOperation* TRamp::TakeOperation()
{
    return Pending.Release();
}

void TRamp::CopyValue(TString& text) const
{
    vector<TRampPoint> curves[MaxComponents];
    for (int i = 0; i < Model.GetComponentCount(); ++i) {
        const TRampCurve& curve = Model.GetCurve(Model.GetSource(i));
        for (int k = 0; k < curve.GetNumPoints(); ++k)
            Append(curves[i], curve.GetPoint(k));
    }
    WriteRampText(curves, Model.GetComponentCount(), text);
}

bool TRamp::PasteValue(const char* text)
{
    vector<TRampPoint> curves[MaxComponents];
    const int count = ReadRampText(text, curves, MaxComponents);
    const bool isOne = count == 1 && !Selected.IsNone();
    if (Parameter == nullptr || (!isOne && count != Model.GetComponentCount()))
        return false;
    TRampCurve changed[MaxComponents];
    for (int i = 0; i < MaxComponents; ++i)
        changed[i] = Model.GetCurve(i);
    for (int i = 0; i < count; ++i) {
        const int component = isOne ? Selected.Component : i;
        if (Model.GetSource(component) != component)
            continue;
        changed[component].SetPoints(curves[i]);
        changed[component].Constrain();
    }
    Send(MakeCurvesOperation(*Parameter, changed));
    return true;
}

void TRamp::RemovePoint(int component, int point)
{
    Drag.Cancel();
    Model.GetCurve(component).RemovePoint(point);
    Selected = TRampSelection();
    Commit(component);
}

void TRamp::RemoveSelected()
{
    if (Drag.IsRunning() || Selected.IsNone())
        return;
    if (Model.GetCurve(Selected.Component).IsInnerAnchor(Selected.Point))
        RemovePoint(Selected.Component, Selected.Point);
}

void TRamp::Render(TRenderer& renderer)
{
    const bool hasPointer = PointerInPlot && PointerView.Get() == &renderer;
    const bool isFocused = GetFocus() == this;
    TRampDrawing drawing(renderer, TRampPicture{Layout, Model, View, Paths, Font, Selected,
                                                ColourStrip ? Samples : nullptr, isFocused,
                                                hasPointer ? &Pointer : nullptr});
    drawing.Draw();
    for (int i = 0; i < MaxComponents; ++i)
        if (HasObject(&ComponentButtons[i])) {
            const TVector2 place(ComponentButtons[i].GetOrigin()[0],
                                 TRampLayout::RowLine - ButtonAbove + 1.0f);
            const TVector4 colour = GetRampColour(i);
            renderer.SetColour(Model.IsVisible(i) ? colour : WithAlpha(colour, 0.3f));
            renderer.DrawRectangle(place, place + TVector2(ComponentWidth - ComponentGap, 2));
        }
    TRenderObjects::Render(renderer);
}

void TRamp::GetBounds(TVector2& min, TVector2& max)
{
    TRenderObjects::GetBounds(min, max);
    for (int i = 0; i < 2; ++i) {
        if (min[i] > 0)
            min[i] = 0;
        if (max[i] < Layout.Size[i])
            max[i] = Layout.Size[i];
    }
}

TRenderObject* TRamp::HitTest(const TVector2& point)
{
    if (TRenderObject* child = TRenderObjects::HitTest(point))
        return child;
    return TRenderObject::HitTest(point);
}

bool TRamp::Event(const TRenderEvent& event)
{
    if (event.Code == RE_FOCUSLOST)
        OnFocusLost(event.Source);
    if (event.Code == RE_WHEEL)
        return OnWheel(event.Detail) || TRenderObjects::Event(event);
    const bool consumed = event.Source == this ? OnOwnEvent(event) : OnChildEvent(event);
    return consumed || TRenderObjects::Event(event);
}

bool TRamp::OnOwnEvent(const TRenderEvent& event)
{
    switch (event.Code) {
    case RE_LEFTDOWN:
        OnPress(event.Point);
        return true;
    case RE_LEFTUP:
        return true;
    case RE_ENTER:
    case RE_MOVE:
        OnPointer(event.Point, Layout.IsInPlot(event.Point));
        Host.ShowPointer(*this, FindShape(event.Point));
        return false;
    case RE_LEAVE:
        OnPointer(event.Point, false);
        return false;
    case RE_KEY:
        return OnKey(event.Detail);
    default:
        return false;
    }
}

bool TRamp::OnChildEvent(const TRenderEvent& event)
{
    if (event.Code == RE_VALUECHANGED)
        OnInput(event.Source);
    else if (event.Code == RE_NODEREFRESH)
        OnButton(event.Source);
    else
        return false;
    return true;
}

void TRamp::OnPointer(const TVector2& place, bool inside)
{
    if (!inside && !PointerInPlot)
        return;
    PointerInPlot = inside;
    Pointer = place;
    PointerView.Set(GetRenderer());
    Host.RedrawGraphs();
}

TRampHit TRamp::FindHit(const TVector2& place)
{
    return HitRamp(Model, View, Paths, Selected, place, GetZoom());
}

TPointerShape TRamp::FindShape(const TVector2& place)
{
    const TRampHitKind kind = FindHit(place).Kind;
    return kind == RH_POINT || kind == RH_CURVE ? PS_HAND : PS_NORMAL;
}

void TRamp::OnPress(const TVector2& place)
{
    // What was typed into the inputs ends here, for the point that is still selected.
    SetFocus(this, GetRenderer());
    const TRampHit hit = FindHit(place);
    if (hit.Kind == RH_AXES) {
        OnPressAxes(place);
        return;
    }
    HasPress = false;
    if (hit.Kind == RH_POINT) {
        Select(hit.At);
        Drag.BeginPoint(Host, Model, Selected, place);
    } else if (hit.Kind == RH_CURVE) {
        OnPressCurve(hit.At.Component, place);
    } else {
        Select(TRampSelection());
    }
}

bool TRamp::IsDoublePress(const TVector2& place)
{
    const uint32_t now = GetTickCount();
    const bool isSecond = HasPress && now - PressTime <= DoublePressMilliseconds &&
                          (place - PressPlace).Length() <= RampHitPixels / GetZoom()[0];
    HasPress = !isSecond;
    PressTime = now;
    PressPlace = place;
    return isSecond;
}

void TRamp::OnPressAxes(const TVector2& place)
{
    if (!IsDoublePress(place)) {
        Drag.BeginPan(Host, View, place);
        return;
    }
    TRampView view = View;
    view.Fit(Model);
    ShowView(view);
}

// The anchor that is made here is dragged at once: what becomes of both is one operation.
void TRamp::OnPressCurve(int component, const TVector2& place)
{
    const int point = Model.GetCurve(component).Insert(View.ToPoint(place));
    if (point == -1)
        return;
    Selected = TRampSelection{component, point};
    if (Drag.BeginPoint(Host, Model, Selected, place))
        Changed();
    else
        Commit(component);
}

bool TRamp::OnWheel(int delta)
{
    const TVector2 place = GetPointer() - GetAbsolutePosition();
    for (int i = 0; i < 2; ++i)
        if (!(place[i] >= 0 && place[i] < Layout.Size[i]))
            return false;
    if (Drag.IsRunning())
        return true;
    TRampView view = View;
    view.Zoom(place, delta);
    ShowView(view);
    return true;
}

bool TRamp::OnKey(int key)
{
    switch (key) {
    case KEY_DELETE:
    case KEY_BACKSPACE:
        RemoveSelected();
        return true;
    case KEY_ESCAPE:
        Drag.Cancel();
        return true;
    case KEY_TAB:
        if (!Drag.IsRunning())
            WalkFields(*this, (GetKeyFlags() & KF_SHIFT) != 0);
        return true;
    case KEY_LEFT:
    case KEY_RIGHT:
    case KEY_UP:
    case KEY_DOWN:
        return OnArrow(key);
    case KEY_PAGEUP:
    case KEY_PAGEDOWN:
        return WalkPoints(key == KEY_PAGEUP ? -1 : 1);
    default:
        return false;
    }
}

// Through the points that can be taken, component by component.
bool TRamp::WalkPoints(int step)
{
    if (Drag.IsRunning())
        return true;
    vector<TRampSelection> points;
    int at = -1;
    for (int component = 0; component < Model.GetComponentCount(); ++component)
        for (int i = 0; i < Model.GetCurve(component).GetNumPoints(); ++i) {
            if (!Model.IsSelectable(component, i))
                continue;
            if (component == Selected.Component && i == Selected.Point)
                at = points.size();
            points.push_back(TRampSelection{component, i});
        }
    const int to = at != -1 ? at + step : 0;
    if (to >= 0 && to < points.size())
        Select(points[to]);
    return true;
}

void TRamp::TakeKeys(TRenderer* renderer)
{
    SetFocus(this, renderer);
    if (GetFocus() == this && Selected.IsNone())
        WalkPoints(1);
}

bool TRamp::OnArrow(int key)
{
    constexpr double Fine = 0.1;
    if (Selected.IsNone())
        return false;
    if (Drag.IsRunning())
        return true;
    const double part = (GetKeyFlags() & KF_SHIFT) != 0 ? Fine : 1.0;
    const double time = GetArrowStep(double(Model.GetMaxTime())) * part;
    const double value = GetArrowStep(double(View.GetValueSpan())) * part;
    const int across = key == KEY_RIGHT ? 1 : key == KEY_LEFT ? -1 : 0;
    const int up = key == KEY_UP ? 1 : key == KEY_DOWN ? -1 : 0;
    TRampCurve& curve = Model.GetCurve(Selected.Component);
    const TRampPoint from = curve.GetPoint(Selected.Point);
    curve.MovePoint(Selected.Point, TRampPoint{static_cast<float>(from.X + across * time),
                                               static_cast<float>(from.Y + up * value)});
    Commit(Selected.Component);
    return true;
}

// The selection stays while its inputs have the keys. They do not tell when they lose them.
void TRamp::OnFocusLost(const TRenderObject* source)
{
    const TRenderObject* focus = GetFocus();
    if (focus != nullptr && focus != source && focus->IsIn(*this)) {
        AddTick(this);
        return;
    }
    Drag.Cancel();
    Select(TRampSelection());
}

void TRamp::Tick(TRenderer* renderer)
{
    (void)renderer;
    const TRenderObject* focus = GetFocus();
    const bool isWithin = focus != nullptr && focus->IsIn(*this);
    if (!isWithin)
        Select(TRampSelection());
    if (!isWithin || focus == this)
        RemoveTick(this);
}

void TRamp::OnInput(const TRenderObject* input)
{
    if (Selected.IsNone() || Drag.IsRunning()) {
        UpdateRow();
        return;
    }
    TRampCurve& curve = Model.GetCurve(Selected.Component);
    TRampPoint to = curve.GetPoint(Selected.Point);
    if (input == &TimeInput)
        to.X = static_cast<float>(TimeInput.GetValue());
    else if (input == &ValueInput)
        to.Y = static_cast<float>(ValueInput.GetValue());
    curve.MovePoint(Selected.Point, to);
    Commit(Selected.Component);
}

void TRamp::OnButton(const TRenderObject* button)
{
    Drag.Cancel();
    if (button == &LockButton && Parameter != nullptr) {
        int locks[MaxComponents];
        Model.GetToggledLocks(locks);
        Send(MakeLockOperation(*Parameter, locks));
    } else if (button == &LinearButton && Parameter != nullptr) {
        Send(MakeLinearOperation(*Parameter, !Parameter->IsLinear()));
    }
    for (int i = 0; i < MaxComponents; ++i)
        if (button == &ComponentButtons[i])
            Model.SetVisible(i, !Model.IsVisible(i));
    DropLostSelection();
    Changed();
}

bool TRamp::Describe(TAccessibleTraits& traits)
{
    traits.Role = AR_CURVES;
    CopyValue(traits.Value);
    traits.TakesFocus = true;
    traits.HasFocus = GetFocus() == this;
    return true;
}

void TRamp::NamePart(const TRenderObject& part, TString& name) const
{
    if (&part == &TimeInput)
        name = "point's time";
    else if (&part == &ValueInput)
        name = "point's value";
}
