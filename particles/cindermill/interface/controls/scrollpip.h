#pragma once

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderobject.h"
#include "particles/cindermill/interface/controls/controldrag.h"
#include "particles/cindermill/interface/controls/controlpaint.h"

class TControlHost;

// The part of a scroll bar that is dragged. Each move of a drag sends RE_VALUECHANGED to the parent, which
// asks for GetWished and puts the pip where it belongs.
class TScrollPip : public TRegistered<TScrollPip, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TScrollPip";
    explicit TScrollPip(TControlHost& host);
    ~TScrollPip() override;

    void SetSize(const TVector2& size);
    const TVector2& GetSize() const { return Size; }
    // Where its top has been dragged to, in the parent's space.
    float GetWished() const { return Wished; }
    bool IsDragged() const { return Drag.IsRunning(); }

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    bool Event(const TRenderEvent& event) override;

private:
    struct TPipDrag : public TControlDrag
    {
        explicit TPipDrag(TScrollPip& owner) : TControlDrag(owner), Owner(owner) {}
        void OnDrag(const TVector2& point, int keyFlags) override;
        void OnDragEnd() override;
        // Back to where the drag began.
        void OnDragCancel() override;

        TScrollPip& Owner;
        float Grip = 0.0f;
        float Before = 0.0f;
    };

    void Wish(float top);

    TControlHost& Host;
    TControlBox Box;
    TVector2 Size = TVector2(0, 0);
    float Wished = 0.0f;
    bool Hover = false;
    TPipDrag Drag;
};
