#include "particles/cindermill/interface/controls/colourswatch.h"

#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/colourpaint.h"
#include "particles/cindermill/interface/controls/colourtext.h"
#include "particles/cindermill/interface/controls/controlpaint.h"

namespace {
// Where the sign stands, right of the colour.
constexpr float SignRoom = 16.0f;
constexpr float SignSize = 7.0f;
} // namespace

void TColourSwatch::SetColour(const float* rgba)
{
    for (int i = 0; i < TPickedColour::NumComponents; ++i)
        Rgba[i] = rgba[i];
}

void TColourSwatch::SetOpen(bool open)
{
    Open = open;
    Redraw();
}

void TColourSwatch::OnClick()
{
    SetOpen(!Open);
    TellParent(RE_VALUECHANGED);
}

void TColourSwatch::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Size;
}

void TColourSwatch::Render(TRenderer& renderer)
{
    TControlBox box;
    box.Build(TVector2(0, 0), Size);
    box.RenderButton(renderer, GetLook());
    const TVector2 inset(3, 3);
    const TVector2 max(Size[0] - SignRoom, Size[1] - 3);
    DrawColourSample(renderer, inset, max, Rgba);
    DrawAreaFrame(renderer, inset, max);
    DrawArrow(renderer, TVector2(Size[0] - SignRoom * 0.5f, Size[1] * 0.5f), SignSize, Open,
              GetControlInk(GetLook()));
}

bool TColourSwatch::Describe(TAccessibleTraits& traits)
{
    DescribeClickable(traits);
    ColourToText(Rgba, traits.Value);
    traits.IsCheckable = true;
    traits.IsChecked = Open;
    return true;
}
