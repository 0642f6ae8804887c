#pragma once

#include "particles/cindermill/interface/controls/clickable.h"
#include "particles/cindermill/interface/controls/pickedcolour.h"

// A colour, with a sign that tells whether what it opens is open. A click changes that and sends
// RE_VALUECHANGED to the parent.
class TColourSwatch : public TClickable
{
public:
    explicit TColourSwatch(TControlHost& host) : TClickable(host) {}

    void Build(const TVector2& size) { Size = size; }
    void SetColour(const float* rgba);
    const float* GetColour() const { return Rgba; }
    // Sends nothing.
    void SetOpen(bool open);
    bool IsOpen() const { return Open; }

    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    bool Describe(TAccessibleTraits& traits) override;

protected:
    void OnClick() override;

private:
    TVector2 Size = TVector2(0, 0);
    float Rgba[TPickedColour::NumComponents] = {1, 1, 1, 1};
    bool Open = false;
};
