#include "particles/cindermill/interface/controls/scrollpip.h"

#include "particles/cindermill/interface/controls/controlhost.h"

TScrollPip::TScrollPip(TControlHost& host) : Host(host), Drag(*this) {}

TScrollPip::~TScrollPip() = default;

void TScrollPip::SetSize(const TVector2& size)
{
    if (size == Size)
        return;
    Size = size;
    Box.Build(TVector2(0, 0), size, size[0] * 0.5f);
    TouchBounds();
}

bool TScrollPip::Event(const TRenderEvent& event)
{
    switch (event.Code) {
    case RE_LEFTDOWN:
        Drag.Grip = event.Point[1];
        Drag.Before = Origin[1];
        Drag.Begin(Host);
        Host.RedrawGraphs();
        return true;
    case RE_LEFTUP:
        return true;
    case RE_ENTER:
    case RE_LEAVE:
        Hover = event.Code == RE_ENTER;
        if (Hover)
            Host.ShowPointer(*this, PS_UPDOWN);
        Host.RedrawGraphs();
        return TRenderObject::Event(event);
    default:
        return TRenderObject::Event(event);
    }
}

void TScrollPip::Wish(float top)
{
    Wished = top;
    TellParent(RE_VALUECHANGED);
}

void TScrollPip::TPipDrag::OnDrag(const TVector2& point, int keyFlags)
{
    (void)keyFlags;
    // The point is relative to the pip, which moves along.
    Owner.Wish(Owner.Origin[1] + point[1] - Grip);
}

void TScrollPip::TPipDrag::OnDragEnd()
{
    Owner.Host.RedrawGraphs();
}

void TScrollPip::TPipDrag::OnDragCancel()
{
    Owner.Wish(Before);
    Owner.Host.RedrawGraphs();
}

void TScrollPip::Render(TRenderer& renderer)
{
    int look = Hover ? CL_HOVER : 0;
    if (IsDragged())
        look |= CL_PRESSED;
    Box.RenderPip(renderer, look);
}

void TScrollPip::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Size;
}
