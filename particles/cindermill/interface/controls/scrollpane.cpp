#include "particles/cindermill/interface/controls/scrollpane.h"

#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/controlhost.h"

TScrollPane::TScrollPane(TControlHost& host) : Host(host), Bar(host)
{
    AddObject(&Content);
    AddObject(&Bar);
}

void TScrollPane::Build(const TVector2& size)
{
    Size = size;
    Bar.Build(TVector2(BarWidth, size[1]));
    Bar.SetOrigin(TVector2(size[0] - BarWidth, 0));
    Update();
    TouchBounds();
}

void TScrollPane::Update()
{
    float height = 0;
    if (!Content.GetObjects().empty()) {
        TVector2 min;
        TVector2 max;
        Content.GetBounds(min, max);
        height = max[1];
    }
    Bar.SetExtent(height, Size[1]);
    PlaceContent();
}

void TScrollPane::PlaceContent()
{
    const TVector2 origin(0, -Bar.GetPosition());
    if (!(Content.GetOrigin() == origin))
        Content.SetOrigin(origin);
}

void TScrollPane::SetScroll(float scroll)
{
    Update();
    Bar.SetPosition(scroll);
    PlaceContent();
    Host.RedrawGraphs();
}

void TScrollPane::Show(TRenderObject& object)
{
    Update();
    TVector2 min;
    TVector2 max;
    object.GetBounds(min, max);
    const TVector2 place = object.GetAbsolutePosition() - Content.GetAbsolutePosition();
    const float top = place[1] + min[1];
    const float bottom = place[1] + max[1];
    if (top < GetScroll())
        SetScroll(top);
    else if (bottom > GetScroll() + Size[1])
        SetScroll(bottom - Size[1]);
}

bool TScrollPane::HasPointer() const
{
    const TVector2 point = GetPointer() - GetAbsolutePosition();
    return point[0] >= 0 && point[1] >= 0 && point[0] < Size[0] && point[1] < Size[1];
}

bool TScrollPane::OnWheel(const TRenderEvent& event)
{
    Update();
    if (!HasPointer() || !IsScrolling())
        return TRenderObjects::Event(event);
    SetScroll(GetScroll() - static_cast<float>(event.Detail) / WheelNotch * WheelStep);
    return true;
}

bool TScrollPane::Event(const TRenderEvent& event)
{
    if (event.Code == RE_WHEEL)
        return OnWheel(event);
    if (event.Code == RE_VALUECHANGED && event.Source == &Bar) {
        PlaceContent();
        Host.RedrawGraphs();
        return true;
    }
    return TRenderObjects::Event(event);
}

void TScrollPane::Render(TRenderer& renderer)
{
    Update();
    renderer.PushWindow(TVector2(0, 0), TVector2(GetViewWidth(), Size[1]));
    renderer.PushOrigin(Content.GetOrigin());
    Content.Render(renderer);
    renderer.PopOrigin();
    renderer.PopWindow();
    if (!IsScrolling())
        return;
    renderer.PushOrigin(Bar.GetOrigin());
    Bar.Render(renderer);
    renderer.PopOrigin();
}

void TScrollPane::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Size;
}

TRenderObject* TScrollPane::HitTest(const TVector2& point)
{
    if (TRenderObject::HitTest(point) == nullptr)
        return nullptr;
    Update();
    const TVector2 inside = point - Origin;
    if (IsScrolling() && inside[0] >= GetViewWidth())
        return Bar.HitTest(inside);
    return Content.HitTest(inside);
}
