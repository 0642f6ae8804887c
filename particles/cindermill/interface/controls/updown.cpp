#include "particles/cindermill/interface/controls/updown.h"

#include "library/system/clock.h"
#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/controlhost.h"

namespace {

constexpr uint32_t FirstRepeat = 500;
constexpr uint32_t Repeat = 50;
constexpr float PixelsPerStep = 2.0f;

} // namespace

TUpDown::TUpDown(TControlHost& host) : Host(host), Hold(*this) {}

TUpDown::~TUpDown() = default;

void TUpDown::Build(const TVector2& size)
{
    Size = size;
    const float middle = size[1] * 0.5f;
    Upper.Build(TVector2(0, 0), TVector2(size[0], middle + 0.5f), ControlRadius, PC_TOP);
    Lower.Build(TVector2(0, middle - 0.5f), size, ControlRadius, PC_BOTTOM);
    TouchBounds();
}

void TUpDown::SetEnabled(bool enabled)
{
    Enabled = enabled;
    if (!enabled)
        Hold.Cancel();
    Host.RedrawGraphs();
}

bool TUpDown::Event(const TRenderEvent& event)
{
    const int side = event.Point[1] < Size[1] * 0.5f ? 1 : -1;
    switch (event.Code) {
    case RE_LEFTDOWN:
        return OnPress(event);
    case RE_LEFTUP:
        return Enabled || TRenderObject::Event(event);
    case RE_ENTER:
    case RE_MOVE:
    case RE_LEAVE: {
        const int hover = event.Code == RE_LEAVE ? 0 : side;
        if (Enabled && event.Code == RE_ENTER)
            Host.ShowPointer(*this, PS_UPDOWN);
        if (hover != Hover)
            Host.RedrawGraphs();
        Hover = hover;
        return TRenderObject::Event(event);
    }
    default:
        return TRenderObject::Event(event);
    }
}

bool TUpDown::OnPress(const TRenderEvent& event)
{
    if (!Enabled)
        return TRenderObject::Event(event);
    TRenderer* renderer = GetRenderer();
    if (!Hold.Begin(Host))
        return true;
    Direction = event.Point[1] < Size[1] * 0.5f ? 1 : -1;
    Hold.From = event.Point[1];
    Hold.PixelsPerUnit = renderer->GetScale()[1];
    Hold.NumSteps = 0;
    Hold.Dragged = false;
    NextStep = GetTickCount() + FirstRepeat;
    AddTick(this);
    Step(Direction);
    return true;
}

void TUpDown::OnReleased()
{
    RemoveTick(this);
    Direction = 0;
    Host.RedrawGraphs();
}

// What the step brings about may take the arrows away.
void TUpDown::Step(int direction)
{
    Host.RedrawGraphs();
    TellParent(RE_VALUECHANGED, direction);
}

void TUpDown::THold::OnDrag(const TVector2& point, int keyFlags)
{
    (void)keyFlags;
    const int wanted = static_cast<int>((From - point[1]) * PixelsPerUnit / PixelsPerStep);
    // Once dragged, it is the hand that steps and no longer the clock.
    if (wanted != 0 && !Dragged) {
        Dragged = true;
        TRenderObject::RemoveTick(&Owner);
    }
    while (IsRunning() && NumSteps != wanted) {
        const int direction = wanted > NumSteps ? 1 : -1;
        NumSteps += direction;
        Owner.Step(direction);
    }
}

void TUpDown::Tick(TRenderer* renderer)
{
    (void)renderer;
    const uint32_t now = GetTickCount();
    if (static_cast<int32_t>(now - NextStep) < 0)
        return;
    NextStep += Repeat;
    // After a pause of the whole program what was missed is not made up for.
    if (static_cast<int32_t>(now - NextStep) >= 0)
        NextStep = now + Repeat;
    Step(Direction);
}

void TUpDown::Render(TRenderer& renderer)
{
    constexpr float ArrowSize = 6.0f;
    const int base = Enabled ? 0 : CL_DISABLED;
    for (int side = 1; side >= -1; side -= 2) {
        TControlBox& box = side > 0 ? Upper : Lower;
        int look = base;
        if (Direction == side)
            look |= CL_PRESSED;
        if (Hover == side)
            look |= CL_HOVER;
        box.RenderButton(renderer, look);
        DrawArrow(renderer, (box.GetMin() + box.GetMax()) * 0.5f, ArrowSize, side > 0, GetControlInk(look));
    }
}

void TUpDown::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Size;
}
