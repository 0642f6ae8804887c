#include "particles/cindermill/interface/graph/selboxrender.h"

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderer.h"

void TSelBoxRender::Begin(const TVector2& corner)
{
    From = corner;
    Extend(corner);
}

void TSelBoxRender::Extend(const TVector2& corner)
{
    To = corner;
    TVector2 min;
    TVector2 max;
    GetBox(min, max);
    Path.MoveTo(min);
    Path.LineTo(TVector2(max[0], min[1]));
    Path.LineTo(max);
    Path.LineTo(TVector2(min[0], max[1]));
    Path.Close();
    Path.SetFillColour(TVector4(0, 0, 1, 0.25f));
    Path.SetStrokeColour(TVector4(0, 0, 1, 1));
    TouchBounds();
}

void TSelBoxRender::GetBox(TVector2& min, TVector2& max) const
{
    for (int i = 0; i < 2; ++i) {
        min[i] = From[i] < To[i] ? From[i] : To[i];
        max[i] = From[i] < To[i] ? To[i] : From[i];
    }
}

void TSelBoxRender::Render(TRenderer& renderer)
{
    // One pixel wide at every zoom.
    Path.SetWidth(1.0f / renderer.GetScale()[0]);
    Path.Render(renderer);
}

void TSelBoxRender::GetBounds(TVector2& min, TVector2& max)
{
    GetBox(min, max);
}

TRenderObject* TSelBoxRender::HitTest(const TVector2& point)
{
    (void)point;
    return nullptr;
}
