#pragma once

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderobject.h"
#include "particles/cindermill/interface/controls/controldrag.h"
#include "particles/cindermill/interface/controls/controlpaint.h"

#include <cstdint>

class TControlHost;

// Two arrows, one over the other. A press steps once; held, again after 0.5 seconds every 50 milliseconds;
// dragged up or down, once for each 2 pixels. Each step sends RE_VALUECHANGED to the parent with 1 or -1 as
// its detail.
class TUpDown : public TRegistered<TUpDown, TRenderObject>
{
public:
    static constexpr const char* RegisteredName = "TUpDown";
    explicit TUpDown(TControlHost& host);
    ~TUpDown() override;

    void Build(const TVector2& size);
    // Faint, and takes no presses.
    void SetEnabled(bool enabled);

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    bool Event(const TRenderEvent& event) override;
    void Tick(TRenderer* renderer) override;

private:
    struct THold : public TControlDrag
    {
        explicit THold(TUpDown& owner) : TControlDrag(owner), Owner(owner) {}
        void OnDrag(const TVector2& point, int keyFlags) override;
        void OnDragEnd() override { Owner.OnReleased(); }
        void OnDragCancel() override { Owner.OnReleased(); }

        TUpDown& Owner;
        // Where the pointer went down, by the height that a pixel had then, and the steps made since.
        float From = 0.0f;
        float PixelsPerUnit = 1.0f;
        int NumSteps = 0;
        bool Dragged = false;
    };

    bool OnPress(const TRenderEvent& event);
    void OnReleased();
    void Step(int direction);

    TControlHost& Host;
    TVector2 Size = TVector2(0, 0);
    TControlBox Upper;
    TControlBox Lower;
    THold Hold;
    // Of the arrow that is held: 1 or -1.
    int Direction = 0;
    uint32_t NextStep = 0;
    bool Enabled = true;
    // 1 or -1 for the arrow that the pointer is on, 0 for none.
    int Hover = 0;
};
