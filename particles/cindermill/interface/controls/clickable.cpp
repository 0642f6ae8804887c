#include "particles/cindermill/interface/controls/clickable.h"

#include "particles/cindermill/interface/controls/controlhost.h"
#include "particles/cindermill/interface/controls/controlpaint.h"
#include "particles/cindermill/interface/controls/fieldwalk.h"

void TClickable::SetEnabled(bool enabled)
{
    if (enabled == Enabled)
        return;
    Enabled = enabled;
    if (!Enabled)
        Press.Cancel();
    Redraw();
}

void TClickable::Redraw()
{
    Host.RedrawGraphs();
}

int TClickable::GetLook() const
{
    int look = Enabled ? 0 : CL_DISABLED;
    if (Hover)
        look |= CL_HOVER;
    if (IsHeldOver())
        look |= CL_PRESSED;
    if (GetFocus() == this)
        look |= CL_FOCUSED;
    return look;
}

bool TClickable::Activate()
{
    if (!Enabled)
        return false;
    OnClick();
    return true;
}

void TClickable::DescribeClickable(TAccessibleTraits& traits) const
{
    traits.Role = AR_BUTTON;
    traits.IsEnabled = Enabled;
    traits.TakesFocus = Enabled;
    traits.HasFocus = GetFocus() == this;
}

bool TClickable::OnPress(const TRenderEvent& event)
{
    if (!Enabled)
        return TRenderObject::Event(event);
    SetFocus(this, GetRenderer());
    Press.Over = true;
    Press.Begin(Host);
    Redraw();
    return true;
}

bool TClickable::Event(const TRenderEvent& event)
{
    switch (event.Code) {
    case RE_LEFTDOWN:
        return OnPress(event);
    case RE_LEFTUP:
        return Enabled || TRenderObject::Event(event);
    case RE_ENTER:
    case RE_LEAVE:
        Hover = event.Code == RE_ENTER;
        if (Hover && Enabled)
            Host.ShowPointer(*this, PS_HAND);
        Redraw();
        return TRenderObject::Event(event);
    case RE_CHARACTER:
        if (event.Detail != ' ' || !Enabled)
            return TRenderObject::Event(event);
        // Held, the key is one click.
        if (!IsKeyRepeat())
            OnClick();
        return true;
    case RE_KEY:
        if (event.Detail != KEY_TAB)
            return TRenderObject::Event(event);
        WalkFields(*this, (GetKeyFlags() & KF_SHIFT) != 0);
        return true;
    case RE_FOCUSLOST:
        Redraw();
        return true;
    default:
        return TRenderObject::Event(event);
    }
}

void TClickable::TPress::OnDrag(const TVector2& point, int keyFlags)
{
    (void)keyFlags;
    TVector2 min;
    TVector2 max;
    Owner.GetBounds(min, max);
    const bool over = point[0] >= min[0] && point[0] < max[0] && point[1] >= min[1] && point[1] < max[1];
    if (over == Over)
        return;
    Over = over;
    Owner.Redraw();
}

void TClickable::TPress::OnDragEnd()
{
    Owner.Redraw();
    if (Over)
        Owner.OnClick();
}
