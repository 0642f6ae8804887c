#include "window/pickerhand.h"

#include "particles/cindermill/graph/operations/valueparamop.h"
#include "particles/cindermill/interface/controls/colourparametercontrols.h"

TPickerHand::TPickerHand(TPanelHand& panel, const char* name) : Panel(panel), Name(name)
{
    Panel.Click(Panel.Find<TNodeColourParameterControls>(Name).GetSwatch());
    Panel.Find<TNodeColourParameterControls>(Name).SetOpen(true);
    Panel.Layout();
    Colour.SetRgba(Picker().GetColour());
}

void TPickerHand::Fold()
{
    Panel.Click(Panel.Find<TNodeColourParameterControls>(Name).GetSwatch());
    Panel.Find<TNodeColourParameterControls>(Name).SetOpen(false);
    Panel.Layout();
}

TColourPicker& TPickerHand::Picker()
{
    return *Panel.Find<TNodeColourParameterControls>(Name).GetPicker();
}

void TPickerHand::ChooseMode(TPickerMode mode)
{
    Panel.ChooseRow(Picker().GetCombo(), mode);
    Picker().SetMode(mode);
}

void TPickerHand::Set(int component, float value)
{
    if (Picker().GetMode() == PM_HSL)
        Colour.SetHslaComponent(component, value);
    else
        Colour.SetRgbaComponent(component, value);
}

void TPickerHand::Apply()
{
    Panel.Apply(new TColourParamOp(&Panel.Param<TNodeColourParameter>(Name), Colour.GetRgba()));
}

void TPickerHand::Drag(TPickerArea area, int dx, int dy)
{
    TVector2 min;
    TVector2 max;
    Picker().GetArea(area, min, max);
    const TVector2 from = Picker().GetAbsolutePosition() + (min + max) * 0.5f;
    const TVector2 to = Panel.PixelIn(Picker(), from, dx, dy);
    Panel.Drag(from, dx, dy);
    const float x = ClampToUnit((to[0] - min[0]) / (max[0] - min[0]));
    const float y = ClampToUnit((max[1] - to[1]) / (max[1] - min[1]));
    if (area == PA_SQUARE)
        Set(0, x);
    Set(area == PA_SQUARE ? 1 : area == PA_STRIP ? 2 : TPickedColour::Alpha, y);
    Apply();
}

void TPickerHand::Enter(int component, const char* text)
{
    const THandFlow flow(Panel.GetScreen());
    Panel.TypeInto(Picker().GetInput(component), text);
    Panel.GetScreen().Key("Return");
    Set(component, std::stof(text));
    Apply();
}

void TPickerHand::ClickArrow(int component, bool up)
{
    constexpr double Step = 0.01;
    const float* shown = Picker().GetMode() == PM_HSL ? Colour.GetHsla() : Colour.GetRgba();
    double value = shown[component] + (up ? Step : -Step);
    const double round = std::nearbyint(value / Step) * Step;
    if (std::abs(round - value) < Step * 1e-4)
        value = round;
    Panel.ClickArrow(Picker().GetInput(component), up);
    Set(component, static_cast<float>(value));
    Apply();
}

void TPickerHand::DragArrowToTheEnd(int component)
{
    constexpr int Far = 240;
    Panel.DragArrowDown(Picker().GetInput(component), Far);
    Set(component, 0);
    Apply();
}
