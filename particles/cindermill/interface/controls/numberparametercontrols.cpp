#include "particles/cindermill/interface/controls/numberparametercontrols.h"

#include "library/maths/scalar.h"
#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/graph/operations/operation.h"
#include "particles/cindermill/interface/controls/controlpaint.h"
#include "particles/cindermill/main/document.h"

namespace {

const TVector4 LabelInk(0.33f, 0.35f, 0.37f, 1);
constexpr double UnitsPerStep = 2;

} // namespace

TNumberScrub::TNumberScrub(TNumberParameterControls& owner, int field)
    : TControlDrag(owner), Owner(owner), Field(field)
{
}

TNumberScrub::~TNumberScrub() = default;

void TNumberScrub::Start(const TVector2& point)
{
    LastX = point[0];
    Rest = 0;
}

void TNumberScrub::Show(TOperation* change)
{
    TOwner<TOperation> shown(change);
    shown->Do(Owner.GetDocument());
    if (First == nullptr)
        First.Reset(shown.Release());
}

void TNumberScrub::Restore()
{
    if (First == nullptr)
        return;
    First->Undo(Owner.GetDocument());
    First.Reset();
}

void TNumberScrub::OnDrag(const TVector2& point, int keyFlags)
{
    Rest += (double(point[0]) - LastX) / UnitsPerStep;
    LastX = point[0];
    const int steps = FloatToInt(Rest);
    Rest -= steps;
    if (steps != 0)
        Owner.GetInput(Field).StepBy(steps, (keyFlags & KF_SHIFT) != 0, (keyFlags & KF_CTRL) != 0);
}

void TNumberScrub::OnDragEnd()
{
    const double value = Owner.GetNumber(Field);
    Restore();
    Owner.ApplyNumber(Field, value);
    Owner.FocusField(Field);
}

void TNumberScrub::OnDragCancel()
{
    Restore();
}

TNumberParameterControls::~TNumberParameterControls()
{
    StopListening();
    for (TField* field : Fields)
        field->Scrub.Cancel();
}

void TNumberParameterControls::AddField(const TFieldLook& look)
{
    TField* field = new TField(*this, *Host, Fields.size(), look);
    Fields.push_back(field);
    if (!FieldFont.IsCreated())
        FieldFont.Create(ControlFont, 9);
    TNumberInput& input = field->Input;
    input.Build(TVector2(FieldWidth, RowHeight), look.IsFloat);
    input.SetRange(look.Min, look.Max);
    input.SetStep(look.Step);
    input.SetOrigin(look.Place);
    SetFieldVisible(Fields.size() - 1, true);
}

void TNumberParameterControls::SetFieldVisible(int field, bool visible)
{
    TField& changed = *Fields[field];
    if (changed.Visible == visible)
        return;
    changed.Visible = visible;
    if (visible)
        AddObject(&changed.Input);
    else
        RemoveObject(&changed.Input);
}

void TNumberParameterControls::MoveField(int field, const TVector2& place)
{
    Fields[field]->Look.Place = place;
    Fields[field]->Input.SetOrigin(place);
    TouchBounds();
}

void TNumberParameterControls::Refresh()
{
    for (int i = 0; i < Fields.size(); ++i)
        if (!IsFixed(i))
            Fields[i]->Input.ShowValue(GetNumber(i));
}

void TNumberParameterControls::GetSize(TVector2& size) const
{
    size = TVector2(0, 0);
    for (const TField* field : Fields) {
        if (!field->Visible)
            continue;
        const TVector2 end = field->Look.Place + TVector2(FieldWidth, RowHeight);
        for (int i = 0; i < 2; ++i)
            size[i] = end[i] > size[i] ? end[i] : size[i];
    }
}

void TNumberParameterControls::GetScrubRect(int field, TVector2& min, TVector2& max) const
{
    const TFieldLook& look = Fields[field]->Look;
    if (Fields.size() == 1) {
        min = TVector2(LabelRect[0], 0);
        max = TVector2(LabelRect[0] + GetLabelWidth(), RowHeight);
        return;
    }
    min = TVector2(look.Place[0] - look.LabelWidth, look.Place[1]);
    max = TVector2(look.Place[0], look.Place[1] + RowHeight);
}

TVector2 TNumberParameterControls::GetScrubPoint(int field) const
{
    TVector2 min;
    TVector2 max;
    GetScrubRect(field, min, max);
    return (min + max) * 0.5f;
}

// The field that is dragged from a place, or -1.
int TNumberParameterControls::FindScrub(const TVector2& point) const
{
    for (int i = 0; i < Fields.size(); ++i) {
        TVector2 min;
        TVector2 max;
        GetScrubRect(i, min, max);
        if (Fields[i]->Visible && !IsFixed(i) && point[0] >= min[0] && point[1] >= min[1] &&
            point[0] < max[0] && point[1] < max[1])
            return i;
    }
    return -1;
}

bool TNumberParameterControls::OnPress(const TVector2& point)
{
    const int at = FindScrub(point);
    if (at < 0)
        return false;
    // What is being typed anywhere is ended first.
    SetFocus(this, GetRenderer());
    Fields[at]->Scrub.Start(point);
    Fields[at]->Scrub.Begin(*Host);
    return true;
}

TPointerShape TNumberParameterControls::FindShape(const TVector2& point) const
{
    return FindScrub(point) >= 0 ? PS_SCRUB : PS_NORMAL;
}

void TNumberParameterControls::OnChildChanged(const TRenderEvent& event)
{
    for (int i = 0; i < Fields.size(); ++i)
        if (event.Source == &Fields[i]->Input && !IsFixed(i)) {
            TakeNumber(i);
            return;
        }
}

void TNumberParameterControls::TakeNumber(int field)
{
    TNumberInput& input = Fields[field]->Input;
    if (TOperation* change = MakeOperation(field, input.GetValue())) {
        if (Fields[field]->Scrub.IsRunning())
            Fields[field]->Scrub.Show(change);
        else
            Document->ApplyOperation(change);
    }
    // Where a float is no finer than what was typed, nothing has changed.
    input.ShowValue(GetNumber(field));
}

void TNumberParameterControls::ApplyNumber(int field, double value)
{
    if (TOperation* change = MakeOperation(field, value))
        Document->ApplyOperation(change);
}

double TNumberParameterControls::ClampNumber(int field, double value) const
{
    const TNumberInput& input = Fields[field]->Input;
    return value < input.GetMin() ? input.GetMin() : value > input.GetMax() ? input.GetMax() : value;
}

void TNumberParameterControls::FocusField(int field)
{
    TTextEdit& edit = Fields[field]->Input.GetEdit();
    SetFocus(&edit, GetRenderer());
    edit.SelectAll();
}

void TNumberParameterControls::Render(TRenderer& renderer)
{
    TNodeParameterControls::Render(renderer);
    for (const TField* field : Fields) {
        const TFieldLook& look = field->Look;
        if (!field->Visible || look.Label == nullptr)
            continue;
        TVector2 size;
        FieldFont.GetTextSize(look.Label, size);
        constexpr float Gap = 3;
        const TVector2 place(look.Place[0] - size[0] - Gap, look.Place[1] + GetTextTop(FieldFont, RowHeight));
        DrawControlText(renderer, FieldFont, place, look.Label, LabelInk);
    }
}

void TNumberParameterControls::NamePart(const TRenderObject& part, TString& name) const
{
    for (const TField* field : Fields)
        if (&field->Input == &part && field->Look.Label != nullptr)
            name = field->Look.Label;
}
