#include "particles/cindermill/interface/controls/colourparametercontrols.h"

#include "particles/cindermill/graph/operations/gesture.h"
#include "particles/cindermill/graph/operations/valueparamop.h"
#include "particles/cindermill/interface/controls/colourpicker.h"
#include "particles/cindermill/interface/controls/colourtext.h"
#include "particles/cindermill/main/document.h"

#include <algorithm>

namespace {
constexpr float SwatchWidth = 100.0f;

bool AreSame(const float* a, const float* b)
{
    return std::equal(a, a + TPickedColour::NumComponents, b);
}
} // namespace

TNodeColourParameterControls::TNodeColourParameterControls() = default;
TNodeColourParameterControls::~TNodeColourParameterControls() = default;

TNodeColourParameter& TNodeColourParameterControls::GetColour() const
{
    return *static_cast<TNodeColourParameter*>(Parameter);
}

void TNodeColourParameterControls::BuildControls()
{
    Swatch.Reset(new TColourSwatch(*Host));
    Swatch->Build(TVector2(SwatchWidth, RowHeight));
    AddObject(Swatch.Get());
}

void TNodeColourParameterControls::Refresh()
{
    Swatch->SetColour(GetColour().GetFloats());
    if (Picker != nullptr)
        Picker->SetColour(GetColour().GetFloats());
}

void TNodeColourParameterControls::GetSize(TVector2& size) const
{
    size = TVector2(SwatchWidth, RowHeight);
    if (IsOpen())
        size = Picker->GetSize() + TVector2(0, RowStep);
}

void TNodeColourParameterControls::SetOpen(bool open)
{
    if (open == IsOpen())
        return;
    Swatch->SetOpen(open);
    ShowPicker();
}

void TNodeColourParameterControls::ShowPicker()
{
    if (Picker == nullptr) {
        Picker.Reset(new TColourPicker(*Host));
        Picker->Build();
        Picker->SetOrigin(TVector2(0, RowStep));
        Picker->SetColour(GetColour().GetFloats());
    }
    if (IsOpen())
        AddObject(Picker.Get());
    else
        RemoveObject(Picker.Get());
    TellSize();
}

void TNodeColourParameterControls::OnChildChanged(const TRenderEvent& event)
{
    if (event.Source == Swatch.Get())
        ShowPicker();
    else if (event.Source == Picker.Get() && Picker->IsTakenBack())
        TakeBack(Picker->GetDrag());
    else if (event.Source == Picker.Get())
        Apply(Picker->GetColour(), Picker->GetDrag());
}

// Whether what was done last belongs to the drag.
bool TNodeColourParameterControls::HasApplied(int drag) const
{
    const TOperationStack& stack = *Document->GetOperationStack();
    if (drag == 0 || !stack.CanUndo())
        return false;
    TOperation* last = stack.GetOperation(stack.GetPosition() - 1);
    return last->GetClassId() == TColourParamOp::NameID() &&
           static_cast<TColourParamOp*>(last)->GetDrag() == drag;
}

// A drag that was held still for long makes several operations. None of them joins what was done before it,
// which could not be told from it when the drag is taken back.
void TNodeColourParameterControls::Apply(const float* rgba, int drag)
{
    if (AreSame(rgba, GetColour().GetFloats()))
        return;
    TOperation* change = new TColourParamOp(&GetColour(), rgba, drag);
    if (drag == 0) {
        Document->ApplyOperation(change);
        return;
    }
    const TGesture gesture(*Document->GetOperationStack(),
                           HasApplied(drag) ? TGesture::CONTINUED : TGesture::NEW);
    Document->ApplyOperation(change);
}

void TNodeColourParameterControls::TakeBack(int drag)
{
    if (HasApplied(drag))
        Document->Undo();
}

void TNodeColourParameterControls::CopyValue(TString& text) const
{
    ColourToText(GetColour().GetFloats(), text);
}

bool TNodeColourParameterControls::PasteValue(const char* text)
{
    float rgba[TPickedColour::NumComponents];
    GetColour().GetValue(rgba);
    if (!TextToColour(text, rgba))
        return false;
    Apply(rgba, 0);
    return true;
}

void TNodeColourParameterControls::ResetValue()
{
    if (const TNodeParameter* value = FindDefault())
        Apply(static_cast<const TNodeColourParameter*>(value)->GetFloats(), 0);
}

bool TNodeColourParameterControls::IsDefault() const
{
    const TNodeColourParameter* value = static_cast<const TNodeColourParameter*>(FindDefault());
    return value == nullptr || AreSame(value->GetFloats(), GetColour().GetFloats());
}
