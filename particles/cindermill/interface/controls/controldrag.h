#pragma once

#include "library/maths/vector2.h"
#include "library/wimp/gl/rendererwatch.h"
#include "library/wimp/wimp.h"

class TControlHost;
class TRenderObject;

// A drag that a control runs, with the left button. The pointer comes in the control's own space. A drag that
// is begun ends once: with OnDragEnd when the button is let go, or with OnDragCancel when the mouse is lost,
// the view goes, the object leaves the drawing, or Cancel is called.
class TControlDrag : public TMouseDrag
{
public:
    // The object whose space the pointer is told in.
    explicit TControlDrag(TRenderObject& object) : Object(object) {}
    ~TControlDrag() override;

    // In the view whose message is being routed. False if another drag runs or there is no such view.
    bool Begin(TControlHost& host);
    bool IsRunning() const { return Host != nullptr; }
    TRenderObject& GetObject() const { return Object; }
    void Cancel();

    virtual void OnDrag(const TVector2& point, int keyFlags) = 0;
    virtual void OnDragEnd() {}
    virtual void OnDragCancel() {}

    void OnMouseMove(double x, double y, int buttons) override;
    void OnCaptureLost() override;

private:
    void Finish();

    TRenderObject& Object;
    TControlHost* Host = nullptr;
    // What the object stood in when the drag began.
    const TRenderObject* Top = nullptr;
    TRendererWatch Renderer;
};
