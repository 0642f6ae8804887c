#include "particles/cindermill/interface/controls/tickbox.h"

#include "library/wimp/gl/renderer.h"

namespace {

constexpr float TextGap = 5.0f;

// In shares of the box.
constexpr float TickPoints[3][2] = {{0.22f, 0.52f}, {0.43f, 0.73f}, {0.79f, 0.26f}};
constexpr float TickWidth = 0.16f;

} // namespace

void TTickBox::Build(const char* text, float fontSize)
{
    Text = text;
    Font.Create(ControlFont, fontSize);
    Size = TVector2(BoxSize, BoxSize);
    TVector2 measure;
    Font.GetTextSize(Text.Print(), measure);
    if (!Text.IsEmpty())
        Size[0] += TextGap + measure[0];
    if (measure[1] > Size[1])
        Size[1] = measure[1];
    const float top = (Size[1] - BoxSize) * 0.5f;
    Box.Build(TVector2(0, top), TVector2(BoxSize, top + BoxSize), 2.0f);
    TouchBounds();
}

void TTickBox::SetChecked(bool checked)
{
    if (checked == Checked)
        return;
    Checked = checked;
    Redraw();
}

void TTickBox::OnClick()
{
    Checked = !Checked;
    Redraw();
    TellParent(RE_VALUECHANGED);
}

void TTickBox::Render(TRenderer& renderer)
{
    const int look = GetLook();
    if ((look & CL_PRESSED) != 0)
        Box.RenderButton(renderer, look);
    else
        Box.RenderField(renderer, look);
    const TVector4 ink = GetControlInk(look);
    if (Checked) {
        TRenderPath tick;
        for (int i = 0; i < 3; ++i) {
            const TVector2 point = Box.GetMin() + TVector2(TickPoints[i][0], TickPoints[i][1]) * BoxSize;
            if (i == 0)
                tick.MoveTo(point);
            else
                tick.LineTo(point);
        }
        tick.SetWidth(TickWidth * BoxSize);
        tick.SetStrokeColour(ink);
        tick.Render(renderer);
    }
    DrawControlText(renderer, Font, TVector2(BoxSize + TextGap, GetTextTop(Font, Size[1])), Text.Print(),
                    ink);
}

void TTickBox::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Size;
}

bool TTickBox::Describe(TAccessibleTraits& traits)
{
    DescribeClickable(traits);
    traits.Role = AR_CHECK;
    traits.Name = Text;
    traits.IsCheckable = true;
    traits.IsChecked = Checked;
    return true;
}
