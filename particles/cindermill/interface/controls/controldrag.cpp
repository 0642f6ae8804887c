#include "particles/cindermill/interface/controls/controldrag.h"

#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/renderobject.h"
#include "particles/cindermill/interface/controls/controlhost.h"

TControlDrag::~TControlDrag()
{
    Finish();
}

bool TControlDrag::Begin(TControlHost& host)
{
    TRenderer* renderer = TRenderObject::GetRenderer();
    if (IsRunning() || renderer == nullptr || TWimp::Get().GetMouseDrag() != nullptr)
        return false;
    Host = &host;
    Top = Object.GetTop();
    Renderer.Set(renderer);
    host.BeginDrag(*renderer, *this);
    return true;
}

void TControlDrag::Finish()
{
    if (!IsRunning())
        return;
    TControlHost* host = Host;
    Host = nullptr;
    // The view may have gone meanwhile.
    if (Renderer.Get() != nullptr)
        host->EndDrag(*Renderer.Get());
    else if (TWimp::Get().GetMouseDrag() == this)
        TWimp::Get().ClearMouseDrag();
    Renderer.Set(nullptr);
}

void TControlDrag::Cancel()
{
    if (!IsRunning())
        return;
    Finish();
    OnDragCancel();
}

void TControlDrag::OnMouseMove(double x, double y, int buttons)
{
    TRenderer* renderer = Renderer.Get();
    if (renderer == nullptr || Object.GetTop() != Top) {
        Cancel();
        return;
    }
    OnDrag(renderer->PixelToWorld(x, y) - Object.GetAbsolutePosition(), TRenderObject::GetKeyFlags());
    if ((buttons & MB_LEFT) != 0 || !IsRunning())
        return;
    Finish();
    OnDragEnd();
}

void TControlDrag::OnCaptureLost()
{
    Cancel();
}
