#pragma once

#include "library/containers/classregistry.h"
#include "library/wimp/gl/renderobject.h"

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

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    bool Event(const TRenderEvent& event) override;
    void Tick(TRenderer* renderer) override;

private:
    TControlHost& Host;
    TVector2 Size = TVector2(0, 0);
};
