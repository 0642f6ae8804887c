#include "particles/cindermill/interface/controls/pushbutton.h"

#include "library/wimp/gl/renderer.h"

void TPushButton::Build(const char* text, const TVector2& size, float fontSize)
{
    Text = text;
    Size = size;
    Font.Create(ControlFont, fontSize);
    Box.Build(TVector2(0, 0), size);
    TouchBounds();
}

void TPushButton::SetText(const char* text)
{
    Text = text;
    Redraw();
}

void TPushButton::SetPressed(bool pressed)
{
    if (pressed == Pressed)
        return;
    Pressed = pressed;
    Redraw();
}

void TPushButton::OnClick()
{
    if (Toggle)
        Pressed = !Pressed;
    Redraw();
    TellParent(Code);
}

void TPushButton::Render(TRenderer& renderer)
{
    constexpr float Inset = 3.0f;
    const int look = GetLook();
    // Held over a toggle that is down, it shows what letting go will do.
    const bool down = Toggle && IsHeldOver() ? !Pressed : Pressed || IsHeldOver();
    Box.RenderButton(renderer, down ? look | CL_PRESSED : look & ~CL_PRESSED);
    TString shown;
    FitText(Font, Text.Print(), Size[0] - 2 * Inset, shown);
    TVector2 text;
    Font.GetTextSize(shown.Print(), text);
    const float sunk = down ? 0.5f : 0.0f;
    const TVector2 place((Size[0] - text[0]) * 0.5f + sunk, GetTextTop(Font, Size[1]) + sunk);
    DrawControlText(renderer, Font, place, shown.Print(), GetControlInk(look));
}

void TPushButton::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Size;
}

bool TPushButton::Describe(TAccessibleTraits& traits)
{
    DescribeClickable(traits);
    traits.Name = Text;
    traits.IsCheckable = Toggle;
    traits.IsChecked = Pressed;
    return true;
}
