#include "window/panelhand.h"

#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/numberparamop.h"
#include "particles/cindermill/graph/operations/polytypeusertypeop.h"
#include "particles/cindermill/interface/controls/boolparametercontrols.h"
#include "particles/cindermill/interface/controls/enumparametercontrols.h"
#include "particles/cindermill/interface/controls/groupparametercontrols.h"
#include "particles/cindermill/interface/controls/polytypeparametercontrols.h"
#include "particles/cindermill/interface/controls/valueparametercontrols.h"
#include "particles/cindermill/interface/graph/nodelayout.h"

TPanelHand::TPanelHand(TScreen& screen, TWorkshop& workshop, TToolNode* node)
    : Screen(screen), Workshop(workshop), Node(node), Type(*node->GetNodeType())
{
    for (int i = 0; i < Type.GetNumParameters(); ++i)
        AddControls(*Type.GetParameter(i), -1);
    for (int i = 0; i < Type.GetNumInputs(); ++i)
        AddControls(*Type.GetInput(i), i);
    Panel.SetOrigin(TVector2(static_cast<float>(node->GetX()), static_cast<float>(node->GetY())));
    Layout();
    ClickButton(MeasureNode(Type)[0]);
}

void TPanelHand::AddControls(TNodeParameter& parameter, int port)
{
    TNodeParameterControls* controls =
        CreateParameterControls(Workshop.GetDocument(), *Node, parameter, Host);
    if (controls == nullptr)
        return;
    Panel.AddControls(controls, port);
    if (port != -1 && Node->GetInput(port) != nullptr)
        Panel.ShowControls(Panel.GetNumControls() - 1, false);
}

std::vector<TNodeParameter*> TPanelHand::FindParameters(const char* name) const
{
    TNodeParameter* parameter = Type.FindParameter(name);
    if (parameter == nullptr && Type.FindInput(name) != -1)
        parameter = Type.GetInput(Type.FindInput(name));
    std::vector<TNodeParameter*> found = {parameter};
    if (const auto* polytype = dynamic_cast<TNodePolytypeParameter*>(parameter))
        found.push_back(polytype->GetCurrentParameter());
    return found;
}

void TPanelHand::Gather(TNodeParameterControls& controls, std::vector<TNodeParameterControls*>& all)
{
    all.push_back(&controls);
    if (const auto* group = dynamic_cast<TNodeGroupParameterControls*>(&controls))
        for (TNodeParameterControls* child : group->GetChildren())
            Gather(*child, all);
    if (auto* polytype = dynamic_cast<TNodePolytypeParameterControls*>(&controls))
        if (polytype->GetValueControls() != nullptr)
            Gather(*polytype->GetValueControls(), all);
}

TNumberInput& TPanelHand::Field(const char* name, int field)
{
    return Find<TNumberParameterControls>(name).GetInput(field);
}

void TPanelHand::Layout()
{
    Panel.Build(Type, MeasureNode(Type));
}

void TPanelHand::ClickButton(float width)
{
    const TVector2 button = Panel.GetOrigin() + TVector2(width - 9, 8);
    const THandFlow flow(Screen);
    Screen.Click(ScreenX(button), ScreenY(button));
}

TVector2 TPanelHand::MiddleOf(TRenderObject& object)
{
    TVector2 min;
    TVector2 max;
    object.GetBounds(min, max);
    return object.GetAbsolutePosition() + (min + max) * 0.5f;
}

TVector2 TPanelHand::PixelIn(TRenderObject& object, const TVector2& place, int dx, int dy) const
{
    const TVector2 pixel(static_cast<float>(ScreenX(place) + dx - Workshop.ScreenX(0)),
                         static_cast<float>(ScreenY(place) + dy - Workshop.ScreenY(0)));
    return pixel - object.GetAbsolutePosition();
}

void TPanelHand::Click(TRenderObject& object)
{
    const TVector2 middle = MiddleOf(object);
    const THandFlow flow(Screen);
    Screen.Click(ScreenX(middle), ScreenY(middle));
}

void TPanelHand::Drag(const TVector2& from, int dx, int dy)
{
    const THandFlow flow(Screen);
    Screen.Drag(ScreenX(from), ScreenY(from), ScreenX(from) + dx, ScreenY(from) + dy);
}

void TPanelHand::DragLabel(const char* name, int field, int dx)
{
    TNumberParameterControls& controls = Find<TNumberParameterControls>(name);
    Drag(controls.GetAbsolutePosition() + controls.GetScrubPoint(field), dx, 0);
}

void TPanelHand::TypeInto(TNumberInput& input, const char* text)
{
    const THandFlow flow(Screen);
    Click(input.GetEdit());
    Screen.Type(text);
}

void TPanelHand::Enter(const char* name, const char* text, int field, const char* key)
{
    const THandFlow flow(Screen);
    TypeInto(Field(name, field), text);
    Screen.Key(key);
    ApplyNumber(name, field, std::stod(text));
}

void TPanelHand::EnterNext(const char* name, const char* text, int field, const char* key)
{
    const THandFlow flow(Screen);
    Screen.Type(text);
    Screen.Key(key);
    ApplyNumber(name, field, std::stod(text));
}

void TPanelHand::ClickArrow(TNumberInput& input, bool up)
{
    constexpr float FromTheEdge = 5;
    TVector2 min;
    TVector2 max;
    input.GetBounds(min, max);
    const TVector2 place =
        input.GetAbsolutePosition() +
        TVector2(max[0] - TNumberInput::ArrowWidth * 0.5f, up ? min[1] + FromTheEdge : max[1] - FromTheEdge);
    const THandFlow flow(Screen);
    Screen.Click(ScreenX(place), ScreenY(place));
}

void TPanelHand::DragArrowDown(TNumberInput& input, int distance)
{
    TVector2 min;
    TVector2 max;
    input.GetBounds(min, max);
    const TVector2 corner = input.GetAbsolutePosition() + max;
    Drag(corner - TVector2(TNumberInput::ArrowWidth * 0.5f, 5), 0, distance);
}

void TPanelHand::ChooseRow(TComboBox& combo, int row)
{
    constexpr float Border = 2;
    // Away from the press that opens the list, with which it would be a double click.
    constexpr float Left = 12;
    const float y = combo.GetSize()[1] + Border + TComboDropDown::RowHeight * (float(row) + 0.5f);
    const TVector2 place = combo.GetAbsolutePosition() + TVector2(Left, y);
    const THandFlow flow(Screen);
    Click(combo);
    Screen.Click(ScreenX(place), ScreenY(place));
}

void TPanelHand::Choose(const char* name, int item)
{
    ChooseRow(Find<TNodeEnumParameterControls>(name).GetCombo(), item);
    Apply(new TEnumParamOp(&Param<TNodeEnumParameter>(name), item));
}

void TPanelHand::ChooseType(const char* name, int type)
{
    TNodePolytypeParameter& parameter = Param<TNodePolytypeParameter>(name);
    const uint32_t types = parameter.GetValidTypes() & parameter.GetAllowedTypes();
    int row = 0;
    for (int i = 0; i < type; ++i)
        row += (types >> i & 1) != 0 ? 1 : 0;
    ChooseRow(Find<TNodePolytypeParameterControls>(name).GetCombo(), row);
    Apply(new TPolytypeUserTypeOp(Node, &parameter, type));
}

void TPanelHand::TickBool(const char* name, bool set)
{
    Click(Find<TSwitchParameterControls>(name).GetTickBox());
    Apply(new TBoolParamOp(&Param<TNodeBoolParameter>(name), set));
}

void TPanelHand::TickGroup(const char* name, bool set)
{
    Click(Find<TSwitchParameterControls>(name).GetTickBox());
    Apply(new TGroupParamOp(&Param<TNodeGroupParameter>(name), set));
}

void TPanelHand::ApplyNumber(const char* name, int field, double value)
{
    for (TNodeParameter* parameter : FindParameters(name)) {
        if (auto* whole = dynamic_cast<TNodeIntParameter*>(parameter))
            Apply(new TIntParamOp(whole, static_cast<int>(value)));
        if (auto* floats = dynamic_cast<TNodeValueParameter*>(parameter)) {
            float changed[MaxValueFloats];
            floats->GetValue(changed);
            changed[field] = static_cast<float>(value);
            Apply(MakeValueOperation(*floats, changed));
        }
    }
}

void TPanelHand::Apply(TOperation* operation)
{
    if (operation == nullptr)
        return;
    Workshop.GetDocument().ApplyOperation(operation);
    Layout();
}
