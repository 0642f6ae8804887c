#include "particles/cindermill/interface/controls/scrollbar.h"

#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/controlhost.h"

TScrollBar::TScrollBar(TControlHost& host) : Host(host), Pip(host)
{
    AddObject(&Pip);
}

void TScrollBar::Build(const TVector2& size)
{
    Size = size;
    Groove.Build(TVector2(0, 0), size, size[0] * 0.5f);
    PlacePip();
    TouchBounds();
}

void TScrollBar::SetExtent(float total, float visible)
{
    Total = total;
    Visible = visible;
    SetPosition(Position);
}

void TScrollBar::SetPosition(float position)
{
    const float limit = GetLimit();
    Position = !(position > 0) ? 0.0f : position > limit ? limit : position;
    PlacePip();
}

void TScrollBar::PlacePip()
{
    const float share = Total > Visible ? Visible / Total : 1.0f;
    float length = Size[1] * share;
    if (length < ShortestPip)
        length = ShortestPip < Size[1] ? ShortestPip : Size[1];
    Pip.SetSize(TVector2(Size[0], length));
    const float limit = GetLimit();
    const float top = limit > 0 ? (Size[1] - length) * Position / limit : 0.0f;
    if (Pip.GetOrigin()[1] != top)
        Pip.SetOrigin(TVector2(0, top));
}

void TScrollBar::MoveTo(float position)
{
    const float before = Position;
    SetPosition(position);
    Host.RedrawGraphs();
    if (Position != before)
        TellParent(RE_VALUECHANGED);
}

bool TScrollBar::Event(const TRenderEvent& event)
{
    if (event.Code == RE_VALUECHANGED && event.Source == &Pip) {
        const float room = Size[1] - Pip.GetSize()[1];
        MoveTo(room > 0 ? Pip.GetWished() / room * GetLimit() : 0.0f);
        return true;
    }
    if (event.Code == RE_LEFTDOWN && event.Source == this) {
        const float top = Pip.GetOrigin()[1];
        if (event.Point[1] < top)
            MoveTo(Position - Visible);
        else if (event.Point[1] >= top + Pip.GetSize()[1])
            MoveTo(Position + Visible);
        return true;
    }
    if (event.Code == RE_LEFTUP)
        return true;
    return TRenderObjects::Event(event);
}

void TScrollBar::Render(TRenderer& renderer)
{
    Groove.RenderGroove(renderer);
    if (GetLimit() > 0)
        TRenderObjects::Render(renderer);
}

void TScrollBar::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Size;
}

TRenderObject* TScrollBar::HitTest(const TVector2& point)
{
    TRenderObject* hit = GetLimit() > 0 ? TRenderObjects::HitTest(point) : nullptr;
    return hit != nullptr ? hit : TRenderObject::HitTest(point);
}
