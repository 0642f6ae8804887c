#pragma once

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderobjects.h"
#include "particles/cindermill/interface/controls/scrollbar.h"

// A window onto objects that may be higher than it is. The bar at its right and the wheel move them. Where
// they have room, there is no bar, and the wheel goes on to the parent, as it does while the pointer is
// elsewhere.
class TScrollPane : public TRegistered<TScrollPane, TRenderObjects>
{
public:
    static constexpr const char* RegisteredName = "TScrollPane";
    static constexpr float BarWidth = 9.0f;
    static constexpr float BarGap = 2.0f;
    static constexpr float WheelStep = 36.0f;
    explicit TScrollPane(TControlHost& host);

    void Build(const TVector2& size);
    // What is shown, added to by the owner. Its place is the pane's.
    TRenderObjects& GetContent() { return Content; }
    // The part of the content's height that is above the pane's top.
    float GetScroll() const { return Bar.GetPosition(); }
    void SetScroll(float scroll);
    // Scrolls as little as brings an object of the content into sight.
    void Show(TRenderObject& object);
    const TScrollBar& GetBar() const { return Bar; }

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    // Of what is clipped away nothing is hit.
    TRenderObject* HitTest(const TVector2& point) override;
    bool Event(const TRenderEvent& event) override;

private:
    bool OnWheel(const TRenderEvent& event);
    bool HasPointer() const;
    bool IsScrolling() const { return Bar.GetLimit() > 0; }
    float GetViewWidth() const { return IsScrolling() ? Size[0] - BarWidth - BarGap : Size[0]; }
    // The content may have changed.
    void Update();
    void PlaceContent();

    TControlHost& Host;
    TRenderObjects Content;
    TScrollBar Bar;
    TVector2 Size = TVector2(0, 0);
};
