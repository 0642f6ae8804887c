#include "particles/cindermill/interface/controls/rampparametercontrols.h"

#include "particles/cindermill/graph/operations/gesture.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/controls/ramp.h"
#include "particles/cindermill/interface/controls/rampoperations.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/nodetype.h"

namespace {

constexpr int ColourRampType = 4;

bool AreSame(const TNodeRampParameter& a, const TNodeRampParameter& b)
{
    if (a.IsLinear() != b.IsLinear())
        return false;
    for (int i = 0; i < a.GetDimensions(); ++i) {
        TRampCurve curves[2];
        curves[0].SetPoints(a.GetCurve(i));
        curves[1].SetPoints(b.GetCurve(i));
        if (a.GetLocks()[i] != b.GetLocks()[i] || !(curves[0] == curves[1]))
            return false;
    }
    return true;
}

} // namespace

TNodeRampParameterControls::TNodeRampParameterControls() = default;
TNodeRampParameterControls::~TNodeRampParameterControls() = default;

TNodeRampParameter& TNodeRampParameterControls::GetRampParameter() const
{
    return *static_cast<TNodeRampParameter*>(Parameter);
}

TNodeRampParameterControls::TShape TNodeRampParameterControls::GetShape() const
{
    return TShape{GetRampParameter().GetDimensions(), GetRampParameter().GetRampType() == ColourRampType};
}

void TNodeRampParameterControls::BuildControls()
{
    Ramp.Reset(new TRamp(*Host));
    Ramp->SetParameter(&GetRampParameter());
    BuildRamp(GetShape());
    AddObject(Ramp.Get());
}

void TNodeRampParameterControls::BuildRamp(const TShape& shape)
{
    Shape = shape;
    const TNodeRampParameter& parameter = GetRampParameter();
    vector<TRampPoint> lists[TNodeRampParameter::MaxDimensions];
    for (int i = 0; i < TNodeRampParameter::MaxDimensions; ++i)
        lists[i] = parameter.GetCurve(i);
    Ramp->Build(TVector2(RampWidth, RampHeight), shape.ComponentCount, shape.Colour, parameter.IsLinear(),
                lists);
    Ramp->SetLocks(parameter.GetLocks());
}

void TNodeRampParameterControls::Refresh()
{
    const TShape shape = GetShape();
    if (!(shape == Shape))
        BuildRamp(shape);
    Ramp->Refresh();
    TellSize();
}

void TNodeRampParameterControls::GetSize(TVector2& size) const
{
    size = TVector2(Ramp->GetWidth(), RampHeight);
}

void TNodeRampParameterControls::OnChildChanged(const TRenderEvent& event)
{
    if (event.Source != Ramp.Get())
        return;
    if (TOperation* operation = Ramp->TakeOperation())
        Document->ApplyOperation(operation);
}

void TNodeRampParameterControls::CopyValue(TString& text) const
{
    Ramp->CopyValue(text);
}

bool TNodeRampParameterControls::PasteValue(const char* text)
{
    return Ramp->PasteValue(text);
}

void TNodeRampParameterControls::ResetValue()
{
    const TNodeRampParameter* value = static_cast<const TNodeRampParameter*>(FindDefault());
    if (value == nullptr)
        return;
    TNodeRampParameter& parameter = GetRampParameter();
    TRampCurve curves[TNodeRampParameter::MaxDimensions];
    for (int i = 0; i < TNodeRampParameter::MaxDimensions; ++i)
        curves[i].SetPoints(value->GetCurve(i));
    TOperation* const operations[] = {MakeCurvesOperation(parameter, curves),
                                      MakeLockOperation(parameter, value->GetLocks()),
                                      MakeLinearOperation(parameter, value->IsLinear())};
    const TGesture gesture(*Document->GetOperationStack());
    for (TOperation* operation : operations)
        if (operation != nullptr)
            Document->ApplyOperation(operation);
}

bool TNodeRampParameterControls::IsDefault() const
{
    const TNodeRampParameter* value = static_cast<const TNodeRampParameter*>(FindDefault());
    return value == nullptr || AreSame(GetRampParameter(), *value);
}

TNodeRampParameterControls::TShape TNodePolyRampParameterControls::GetShape() const
{
    static constexpr int Components[] = {1, 2, 3, 3, 4};
    constexpr int NumTypes = sizeof(Components) / sizeof(Components[0]);
    const TNodeType& nodeType = *ToolNode->GetNodeType();
    const int output = static_cast<const TNodePolyRampParameter&>(GetRampParameter()).FindOutput(nodeType);
    const int type = output != -1 ? nodeType.GetOutputType(output) : TY_POLYTYPE;
    if (type >= 0 && type < NumTypes)
        return TShape{Components[type], type == TY_COLOUR};
    return TShape{TNodeRampParameter::MaxDimensions, false};
}
