#pragma once

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderobjects.h"
#include "particles/cindermill/interface/controls/scrollpip.h"

// An upright scroll bar. The pip is as long a part of it as what is visible is of the whole. A press beside
// the pip goes on by a page. RE_VALUECHANGED goes to the parent for each move that a person makes.
class TScrollBar : public TRegistered<TScrollBar, TRenderObjects>
{
public:
    static constexpr const char* RegisteredName = "TScrollBar";
    static constexpr float ShortestPip = 10.0f;
    explicit TScrollBar(TControlHost& host);

    void Build(const TVector2& size);
    // The whole, and what of it is visible, in any unit.
    void SetExtent(float total, float visible);
    // Of the first that is visible; held within what there is. Sends nothing.
    void SetPosition(float position);
    float GetPosition() const { return Position; }
    // The furthest position; 0 where all is visible.
    float GetLimit() const { return Total > Visible ? Total - Visible : 0.0f; }
    const TScrollPip& GetPip() const { return Pip; }

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;
    bool Event(const TRenderEvent& event) override;

private:
    void PlacePip();
    // As a person's change.
    void MoveTo(float position);

    TControlHost& Host;
    TControlBox Groove;
    TScrollPip Pip;
    TVector2 Size = TVector2(0, 0);
    float Total = 1.0f;
    float Visible = 1.0f;
    float Position = 0.0f;
};
