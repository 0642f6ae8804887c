#include "particles/cindermill/interface/controls/static.h"

#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/controlpaint.h"

TStatic::TStatic(const char* text, float fontSize)
{
    Font.Create(ControlFont, fontSize);
    SetText(text);
}

void TStatic::SetText(const char* text)
{
    Text = text;
    Measure();
}

void TStatic::SetWidth(float width)
{
    Width = width;
    Measure();
}

void TStatic::Measure()
{
    Shown = Text;
    if (Width > 0)
        FitText(Font, Text.Print(), Width, Shown);
    Font.GetTextSize(Shown.Print(), Size);
    TouchBounds();
}

void TStatic::Render(TRenderer& renderer)
{
    DrawControlText(renderer, Font, TVector2(0, 0), Shown.Print(), GetControlInk(0));
}

void TStatic::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Size;
}

TRenderObject* TStatic::HitTest(const TVector2& point)
{
    (void)point;
    return nullptr;
}

bool TStatic::Describe(TAccessibleTraits& traits)
{
    traits.Role = AR_LABEL;
    traits.Name = Text;
    return !Text.IsEmpty();
}
