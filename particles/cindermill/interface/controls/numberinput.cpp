#include "particles/cindermill/interface/controls/numberinput.h"

#include "library/containers/assertion.h"
#include "library/maths/scalar.h"
#include "particles/cindermill/interface/controls/numbertext.h"

#include <cmath>
#include <limits>

namespace {

constexpr const char* FloatCharacters = "0123456789.-";
constexpr const char* WholeCharacters = "0123456789-";

bool IsSame(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

// Of zero.
double WithoutSign(double value)
{
    return value == 0 ? 0.0 : value;
}

} // namespace

TNumberInput::TNumberInput(TControlHost& host) : Edit(host), Arrows(host)
{
    AddObject(&Edit);
    AddObject(&Arrows);
}

void TNumberInput::Build(const TVector2& size, bool isFloat, float fontSize)
{
    Float = isFloat;
    if (!Float) {
        Min = std::numeric_limits<int>::min();
        Max = std::numeric_limits<int>::max();
        Step = 1;
    }
    Edit.Build(TVector2(size[0] - ArrowRoom, size[1]), fontSize);
    Edit.SetAllowed(Float ? FloatCharacters : WholeCharacters);
    Edit.SetPasteFilter(Float ? FindNumber : FindWholeNumber);
    Arrows.Build(TVector2(ArrowWidth, size[1]));
    Arrows.SetOrigin(TVector2(size[0] - ArrowWidth, 0));
    Redisplay();
}

void TNumberInput::SetRange(double min, double max)
{
    ASSERT(min <= max);
    Min = min;
    Max = max;
}

void TNumberInput::SetFormat(const char* format)
{
    Format = format;
    Redisplay();
}

void TNumberInput::SetReadOnly(bool readOnly)
{
    Edit.SetReadOnly(readOnly);
    Arrows.SetEnabled(!readOnly);
}

void TNumberInput::SetValue(double value)
{
    Value = Clamp(Float ? value : std::trunc(value), Min, Max);
    Redisplay();
}

void TNumberInput::ShowValue(double value)
{
    if (IsSame(value, Value) && Edit.IsEdited())
        return;
    Value = value;
    Redisplay();
}

void TNumberInput::Redisplay()
{
    TString text;
    if (Float)
        text.Format(Format, Value);
    else
        text.Format("%d", GetInt());
    Edit.SetText(text.Print());
}

// What stands in the edit becomes the value, if it is a number.
void TNumberInput::TakeText()
{
    double typed = 0;
    if (ParseNumber(Edit.GetText().Print(), Float, typed))
        Value = WithoutSign(Clamp(typed, Min, Max));
    Redisplay();
}

void TNumberInput::EndTyping()
{
    if (Edit.IsEdited())
        TakeText();
}

// The last thing that is done, as the change may take the input away.
void TNumberInput::NotifyIfChanged(double before)
{
    if (!IsSame(Value, before))
        TellParent(RE_VALUECHANGED);
}

double TNumberInput::GetStepped(double value, double delta) const
{
    // Nothing to step: also a value beyond the end that the step leads to.
    if (std::isnan(value) || (delta > 0 && value >= Max) || (delta < 0 && value <= Min))
        return value;
    double stepped = value + delta;
    // Steps from a round value lead to round values, whatever is lost by adding.
    constexpr double Slack = 1e-4;
    const double unit = std::fabs(delta);
    const double round = std::nearbyint(stepped / unit) * unit;
    if (std::fabs(round - stepped) < unit * Slack)
        stepped = round;
    return WithoutSign(Clamp(stepped, Min, Max));
}

void TNumberInput::StepBy(int steps, bool coarse, bool fine)
{
    if (Edit.IsReadOnly())
        return;
    const double before = Value;
    EndTyping();
    const double typed = Value;
    double step = Step;
    if (coarse)
        step *= 10;
    if (fine)
        step /= 10;
    // A whole number has no tenths.
    if (!Float && step < 1)
        step = 1;
    for (int i = 0; i < std::abs(steps); ++i)
        Value = GetStepped(Value, steps > 0 ? step : -step);
    if (!Float)
        Value = std::trunc(Value);
    // What was typed is shown by now, so that a step back to the value of before shows too.
    if (!IsSame(Value, typed))
        Redisplay();
    NotifyIfChanged(before);
}

bool TNumberInput::HasPointer()
{
    TVector2 min;
    TVector2 max;
    GetBounds(min, max);
    const TVector2 point = GetPointer() - GetAbsolutePosition();
    return point[0] >= min[0] && point[0] < max[0] && point[1] >= min[1] && point[1] < max[1];
}

bool TNumberInput::OnWheel(const TRenderEvent& event)
{
    if (!Edit.IsFocused() || Edit.IsReadOnly() || !HasPointer())
        return TRenderObjects::Event(event);
    StepBy(Wheel.Take(event.Detail), (GetKeyFlags() & KF_SHIFT) != 0, (GetKeyFlags() & KF_CTRL) != 0);
    return true;
}

bool TNumberInput::Event(const TRenderEvent& event)
{
    const bool coarse = (GetKeyFlags() & KF_SHIFT) != 0;
    const bool fine = (GetKeyFlags() & KF_CTRL) != 0;
    if (event.Code == RE_VALUECHANGED && event.Source == &Edit) {
        const double before = Value;
        TakeText();
        NotifyIfChanged(before);
        return true;
    }
    if (event.Code == RE_VALUECHANGED && event.Source == &Arrows) {
        if (!Edit.IsFocused())
            Edit.TakeFocus();
        StepBy(event.Detail, coarse, fine);
        return true;
    }
    if (event.Code == RE_WHEEL)
        return OnWheel(event);
    if (event.Code == RE_KEY && Edit.IsFocused() && (event.Detail == KEY_UP || event.Detail == KEY_DOWN)) {
        StepBy(event.Detail == KEY_UP ? 1 : -1, coarse, fine);
        return true;
    }
    return TRenderObjects::Event(event);
}

TRenderObject* TNumberInput::HitTest(const TVector2& point)
{
    if (Edit.IsReadOnly())
        return TRenderObject::HitTest(point);
    // The gap between the edit and the arrows is a part of the input too.
    TRenderObject* hit = TRenderObjects::HitTest(point);
    return hit != nullptr ? hit : TRenderObject::HitTest(point);
}

bool TNumberInput::Describe(TAccessibleTraits& traits)
{
    Edit.Describe(traits);
    traits.Role = AR_NUMBER;
    traits.Number = Value;
    traits.Least = Min;
    traits.Most = Max;
    traits.Step = Step;
    return true;
}

bool TNumberInput::EnterValue(const char* text)
{
    double typed = 0;
    if (Edit.IsReadOnly() || !ParseNumber(text, Float, typed))
        return false;
    const double before = Value;
    SetValue(WithoutSign(typed));
    NotifyIfChanged(before);
    return true;
}
