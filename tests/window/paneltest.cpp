#include "window/programfixture.h"

#include "support/fakecontrolhost.h"

#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/numberparamop.h"
#include "particles/cindermill/graph/operations/valueparamop.h"
#include "particles/cindermill/interface/controls/boolparametercontrols.h"
#include "particles/cindermill/interface/controls/colourparametercontrols.h"
#include "particles/cindermill/interface/controls/colourpicker.h"
#include "particles/cindermill/interface/controls/enumparametercontrols.h"
#include "particles/cindermill/interface/controls/groupparametercontrols.h"
#include "particles/cindermill/interface/controls/numberparametercontrols.h"
#include "particles/cindermill/interface/controls/ramp.h"
#include "particles/cindermill/interface/controls/rampoperations.h"
#include "particles/cindermill/interface/controls/rampparametercontrols.h"
#include "particles/cindermill/interface/graph/nodeexp.h"
#include "particles/cindermill/interface/graph/nodelayout.h"

#include <stdexcept>
#include <thread>

namespace {

// Like changes that follow each other faster are one step of the history.
void WaitForANewStep()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(2200));
}

// The panel of a node, used by hand on the screen, and by operations in the document without windows. Where
// its controls stand is read off a panel of that document that is never drawn.
class TPanelHand
{
public:
    TPanelHand(TScreen& screen, TWorkshop& workshop, TToolNode* node)
        : Screen(screen), Workshop(workshop), Node(node), Type(*node->GetNodeType())
    {
        for (int i = 0; i < Type.GetNumParameters(); ++i)
            AddControls(*Type.GetParameter(i), -1);
        for (int i = 0; i < Type.GetNumInputs(); ++i)
            AddControls(*Type.GetInput(i), i);
        Panel.SetOrigin(TVector2(static_cast<float>(node->GetX()), static_cast<float>(node->GetY())));
        Panel.Build(Type, MeasureNode(Type));
        ClickButton(MeasureNode(Type)[0]);
    }
    void Close() { ClickButton(Panel.GetSize()[0]); }

    // By the dotted path of a parameter, or the name of an input.
    template <class TParameter>
    TParameter& Param(const char* name) const
    {
        TNodeParameter* parameter = Type.FindParameter(name);
        if (parameter == nullptr && Type.FindInput(name) != -1)
            parameter = Type.GetInput(Type.FindInput(name));
        if (dynamic_cast<TParameter*>(parameter) == nullptr)
            throw std::runtime_error(std::string("no parameter ") + name);
        return static_cast<TParameter&>(*parameter);
    }
    template <class TControls>
    TControls& Find(const char* name)
    {
        const TNodeParameter& parameter = Param<TNodeParameter>(name);
        for (int i = 0; i < Panel.GetNumControls(); ++i)
            if (TNodeParameterControls* found = FindIn(Panel.GetControls(i), parameter))
                return dynamic_cast<TControls&>(*found);
        throw std::runtime_error(std::string("no controls for ") + name);
    }
    TNumberInput& Field(const char* name, int field = 0)
    {
        return Find<TNumberParameterControls>(name).GetInput(field);
    }

    void Click(TRenderObject& object)
    {
        const TVector2 middle = MiddleOf(object);
        Screen.Click(ScreenX(middle), ScreenY(middle));
    }
    // The distance in pixels.
    void Drag(const TVector2& from, int dx, int dy)
    {
        Screen.Drag(ScreenX(from), ScreenY(from), ScreenX(from) + dx, ScreenY(from) + dy);
    }
    void DragLabel(const char* name, int field, int dx)
    {
        TNumberParameterControls& controls = Find<TNumberParameterControls>(name);
        Drag(controls.GetAbsolutePosition() + controls.GetScrubPoint(field), dx, 0);
    }
    // The arrows of a number input, from the lower one.
    void DragArrowDown(TNumberInput& input, int distance)
    {
        TVector2 min;
        TVector2 max;
        input.GetBounds(min, max);
        const TVector2 corner = input.GetAbsolutePosition() + max;
        Drag(corner - TVector2(TNumberInput::ArrowWidth * 0.5f, 5), 0, distance);
    }
    void Choose(const char* name, int item)
    {
        constexpr float Border = 2;
        TComboBox& combo = Find<TNodeEnumParameterControls>(name).GetCombo();
        Click(combo);
        const float row = combo.GetSize()[1] + Border + TComboDropDown::RowHeight * (float(item) + 0.5f);
        const TVector2 place = combo.GetAbsolutePosition() + TVector2(40, row);
        Screen.Click(ScreenX(place), ScreenY(place));
        Apply(new TEnumParamOp(&Param<TNodeEnumParameter>(name), item));
    }
    void TickGroup(const char* name, bool set)
    {
        Click(Find<TSwitchParameterControls>(name).GetTickBox());
        Apply(new TGroupParamOp(&Param<TNodeGroupParameter>(name), set));
    }
    void ApplyScalar(const char* name, float value)
    {
        Apply(new TScalarParamOp(&Param<TNodeScalarParameter>(name), &value));
    }
    void ApplyVector(const char* name, const std::vector<float>& value)
    {
        Apply(new TVector3ParamOp(&Param<TNodeVector3Parameter>(name), value.data()));
    }
    void Apply(TOperation* operation)
    {
        Workshop.GetDocument().ApplyOperation(operation);
        Layout();
    }
    // After a group has changed its size.
    void Layout() { Panel.Build(Type, MeasureNode(Type)); }

    static TVector2 MiddleOf(TRenderObject& object)
    {
        TVector2 min;
        TVector2 max;
        object.GetBounds(min, max);
        return object.GetAbsolutePosition() + (min + max) * 0.5f;
    }
    int ScreenX(const TVector2& place) const { return Workshop.ScreenX(double(place[0])); }
    int ScreenY(const TVector2& place) const { return Workshop.ScreenY(double(place[1])); }
    // The pixel at a place, moved, in the space of an object.
    TVector2 PixelIn(TRenderObject& object, const TVector2& place, int dx = 0, int dy = 0) const
    {
        const TVector2 pixel(static_cast<float>(ScreenX(place) + dx - Workshop.ScreenX(0)),
                             static_cast<float>(ScreenY(place) + dy - Workshop.ScreenY(0)));
        return pixel - object.GetAbsolutePosition();
    }

private:
    void AddControls(TNodeParameter& parameter, int port)
    {
        TNodeParameterControls* controls =
            CreateParameterControls(Workshop.GetDocument(), *Node, parameter, Host);
        if (controls == nullptr)
            return;
        Panel.AddControls(controls, port);
        if (port != -1 && Node->GetInput(port) != nullptr)
            Panel.ShowControls(Panel.GetNumControls() - 1, false);
    }
    static TNodeParameterControls* FindIn(TNodeParameterControls& controls, const TNodeParameter& parameter)
    {
        if (controls.GetParameter() == &parameter)
            return &controls;
        if (const auto* group = dynamic_cast<TNodeGroupParameterControls*>(&controls))
            for (TNodeParameterControls* child : group->GetChildren())
                if (TNodeParameterControls* found = FindIn(*child, parameter))
                    return found;
        return nullptr;
    }
    void ClickButton(float width)
    {
        const TVector2 button = Panel.GetOrigin() + TVector2(width - 9, 8);
        Screen.Click(ScreenX(button), ScreenY(button));
    }

    TScreen& Screen;
    TWorkshop& Workshop;
    TToolNode* Node;
    TNodeType& Type;
    TFakeControlHost Host;
    TNodeExp Panel;
};

// Drags a point of a curve on the screen, and gives the operation the curve that this makes.
void DragPoint(TPanelHand& panel, const char* name, int point, int dx, int dy)
{
    TRamp& ramp = panel.Find<TNodeRampParameterControls>(name).GetRamp();
    TNodeRampParameter& parameter = panel.Param<TNodeRampParameter>(name);
    const TRampPoint before = ramp.GetModel().GetCurve(0).GetPoint(point);
    const TVector2 place = ramp.GetAbsolutePosition() + ramp.GetView().ToPosition(before);
    const TRampPoint from = ramp.GetView().ToPoint(panel.PixelIn(ramp, place));
    const TRampPoint to = ramp.GetView().ToPoint(panel.PixelIn(ramp, place, dx, dy));
    panel.Drag(place, dx, dy);
    TRampCurve curve = ramp.GetModel().GetCurve(0);
    curve.MovePoint(point, TRampPoint{static_cast<float>(before.X + (double(to.X) - from.X)),
                                      static_cast<float>(before.Y + (double(to.Y) - from.Y))});
    TOperation* change = MakeCurveOperation(parameter, 0, curve);
    ASSERT_NE(change, nullptr);
    panel.Apply(change);
}

// Drags in an area of an open picker; the components are of hue, saturation, luminance and alpha, -1 for
// none.
void DragColour(TPanelHand& panel, const char* name, TPickerArea area, int dx, int dy)
{
    TColourPicker& picker = *panel.Find<TNodeColourParameterControls>(name).GetPicker();
    TVector2 min;
    TVector2 max;
    picker.GetArea(area, min, max);
    const TVector2 from = picker.GetAbsolutePosition() + (min + max) * 0.5f;
    const TVector2 to = panel.PixelIn(picker, from, dx, dy);
    panel.Drag(from, dx, dy);
    TPickedColour colour;
    colour.SetRgba(picker.GetColour());
    if (area == PA_SQUARE)
        colour.SetHslaComponent(0, (to[0] - min[0]) / (max[0] - min[0]));
    const int up = area == PA_SQUARE ? 1 : area == PA_STRIP ? 2 : TPickedColour::Alpha;
    colour.SetHslaComponent(up, (max[1] - to[1]) / (max[1] - min[1]));
    panel.Apply(new TColourParamOp(&panel.Param<TNodeColourParameter>(name), colour.GetRgba()));
}

} // namespace

TEST_F(Program, TheValuesOfAnEffectAreEditedByHand)
{
    TProgram program(Screen);
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    workshop.FoldPalette({"Curves", "Maths", "Motion"});
    TToolNode* emitter = workshop.Add("Emitter", 520, 60);
    TToolNode* points = workshop.Add("Point Emitter", 300, 60);
    TToolNode* age = workshop.Add("Age", 110, 180);
    TToolNode* gravity = workshop.Add("Gravity", 110, 300);
    TToolNode* integrate = workshop.Add("Integrate", 300, 300);
    TToolNode* volume = workshop.Add("Volume", 300, 420);
    TToolNode* quads = workshop.Add("Quad Render Stage", 110, 60);
    workshop.FoldPalette({"Curves"});
    TToolNode* scalar = workshop.Add("Scalar Over Life", 300, 180);
    workshop.Connect(emitter, "Count", points, "Emission Trigger");
    workshop.Connect(points, "Start Transform", integrate, "Position");
    workshop.Connect(gravity, "Velocity", integrate, "Velocity");
    workshop.Connect(integrate, "Position", quads, "Transform");
    workshop.Connect(age, "Age", scalar, "Time");

    {
        TPanelHand panel(Screen, workshop, emitter);
        panel.Click(panel.Field("Rate").GetEdit());
        Screen.Type("120");
        Screen.Key("Tab");
        panel.ApplyScalar("Rate", 120);
        Screen.Type("0.25");
        Screen.Key("Return");
        panel.ApplyScalar("Start Delay", 0.25f);
        panel.Choose("Emit Mode", 0);
        panel.TickGroup("Max life time", true);
        panel.Click(panel.Field("Max life time.Life Time").GetEdit());
        Screen.Type("7.5");
        Screen.Key("Return");
        panel.ApplyScalar("Max life time.Life Time", 7.5f);
        Screen.Save(program.GetMainRectangle(), Screenshot("panel-emitter"));
        panel.Close();
    }
    {
        TPanelHand panel(Screen, workshop, gravity);
        // A step of 0.1 for each two pixels.
        panel.DragLabel("Acceleration", 1, 36);
        panel.ApplyVector("Acceleration", {0, -8, 0});
        // The number that was dragged has the keys.
        Screen.Key("Tab");
        Screen.Type("1.5");
        Screen.Key("Return");
        panel.ApplyVector("Acceleration", {0, -8, 1.5f});
        panel.Close();
    }
    {
        TPanelHand panel(Screen, workshop, volume);
        const char* const name = "Output Distance";
        TNodeBoolParameter& distance = panel.Param<TNodeBoolParameter>(name);
        panel.Click(panel.Find<TSwitchParameterControls>(name).GetTickBox());
        panel.Apply(new TBoolParamOp(&distance, true));
        panel.Close();
    }
    {
        TPanelHand panel(Screen, workshop, scalar);
        DragPoint(panel, "Value", 3, 60, 30);
        WaitForANewStep();
        DragPoint(panel, "Value", 1, 10, -20);
        Screen.Save(program.GetMainRectangle(), Screenshot("panel-ramp"));
        panel.Close();
    }
    {
        TPanelHand panel(Screen, workshop, quads);
        panel.Choose("Alpha Blend.Dest Function", 1);
        panel.TickGroup("Cull Face", true);
        panel.TickGroup("Depth Test", false);
        TNodeColourParameterControls& colour = panel.Find<TNodeColourParameterControls>("Colour");
        panel.Click(colour.GetSwatch());
        colour.SetOpen(true);
        panel.Layout();
        // White is white at every hue: it takes its luminance first.
        DragColour(panel, "Colour", PA_STRIP, 0, 10);
        WaitForANewStep();
        DragColour(panel, "Colour", PA_SQUARE, -25, -18);
        WaitForANewStep();
        // Farther than there are steps: the number stays at its end.
        panel.DragArrowDown(colour.GetPicker()->GetInput(TPickedColour::Alpha), 240);
        float clear[TPickedColour::NumComponents];
        std::copy_n(colour.GetPicker()->GetColour(), TPickedColour::NumComponents, clear);
        clear[TPickedColour::Alpha] = 0;
        panel.Apply(new TColourParamOp(&panel.Param<TNodeColourParameter>("Colour"), clear));
        WaitForANewStep();
        DragColour(panel, "Colour", PA_ALPHA, 0, 15);
        Screen.Save(program.GetMainRectangle(), Screenshot("panel-stage"));

        // Each gesture is one step, forth and back.
        for (int i = 0; i < 4; ++i)
            workshop.Undo();
        for (int i = 0; i < 2; ++i)
            workshop.Redo();
        panel.Layout();
        panel.Close();
    }

    const std::string saved = program.Path("values.effect");
    const std::string expected = program.Path("expected.effect");
    SaveTo(program, saved);
    ASSERT_TRUE(workshop.GetDocument().SaveAs(expected.c_str()));
    EXPECT_TRUE(AreSame(saved, expected));
    const std::string before = ReadBytes(saved);

    // All values back to how the nodes came, and forth again.
    for (int i = 0; i < 14; ++i)
        workshop.Undo();
    Screen.Key("ctrl+s");
    ASSERT_TRUE(workshop.GetDocument().Save());
    EXPECT_TRUE(WaitUntil([&] { return AreSame(saved, expected); }));
    EXPECT_NE(ReadBytes(saved), before);
    for (int i = 0; i < 14; ++i)
        workshop.Redo();
    Screen.Key("ctrl+s");
    ASSERT_TRUE(workshop.GetDocument().Save());
    EXPECT_TRUE(WaitUntil([&] { return AreSame(saved, expected); }));
    EXPECT_EQ(ReadBytes(saved), before);
    Exit(program);
}
