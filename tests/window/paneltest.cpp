#include "window/pickerhand.h"
#include "window/programfixture.h"
#include "window/ramphand.h"

#include "particles/cindermill/graph/operations/animflagsparamop.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/graph/operations/rampchangepointsop.h"
#include "particles/cindermill/interface/controls/animationparametercontrols.h"
#include "particles/cindermill/interface/controls/textureparametercontrols.h"
#include "particles/cindermill/interface/controls/transformparametercontrols.h"

namespace {

const char* const TextureTitle = "^Select texture to load$";
const char* const AnimationTitle = "^Select animation to load$";

// Edits the values of nodes that stand already.
class ProgramPanels : public Program
{
protected:
    // Put together by OpenGL, as it is for everybody with a graphics card; most other tests have it without.
    static TProgramOptions GetOptions()
    {
        TProgramOptions options;
        options.Environment = {"QT_WIDGETS_RHI=1"};
        return options;
    }
    static int CountSteps(TDocument& document) { return document.GetOperationStack()->GetNumOperations(); }
    // The steps of the history of a file, all done.
    static int CountSteps(TWorkshop& workshop, const std::string& path)
    {
        TDocument document(workshop.GetApp());
        EXPECT_TRUE(document.Load(path.c_str()));
        EXPECT_FALSE(document.GetOperationStack()->CanRedo());
        return CountSteps(document);
    }
    // Saves both, and compares: all values as they are, then without the last steps, then with them again.
    void CheckSteps(TProgram& program, TWorkshop& workshop, int steps)
    {
        TDocument& document = workshop.GetDocument();
        const std::string saved = program.Path("values.effect");
        const std::string expected = program.Path("expected.effect");
        const int all = CountSteps(document);
        SaveTo(program, saved);
        ASSERT_FALSE(HasFatalFailure());
        ASSERT_TRUE(document.SaveAs(expected.c_str()));
        ASSERT_TRUE(AreSame(saved, expected));
        EXPECT_EQ(CountSteps(workshop, saved), all);
        const std::string before = ReadBytes(saved);
        for (const bool undo : {true, false}) {
            Screen.Keys(std::vector<std::string>(static_cast<size_t>(steps), undo ? "ctrl+z" : "ctrl+y"));
            for (int i = 0; i < steps; ++i)
                undo ? document.Undo() : document.Redo();
            Screen.Key("ctrl+s");
            ASSERT_TRUE(document.Save());
            EXPECT_TRUE(WaitUntil([&] { return AreSame(saved, expected); })) << undo;
            EXPECT_EQ(ReadBytes(saved) == before, !undo);
        }
    }
    // Chooses a file by the button that asks for one.
    void ChooseFile(TProgram& program, TPanelHand& panel, TPushButton& button, const char* title,
                    const std::string& path)
    {
        panel.Click(button);
        ASSERT_TRUE(program.AnswerChooser(title, path)) << program.GetOutput();
        ASSERT_TRUE(Screen.WaitUntilActive(MainTitle));
    }
};

} // namespace

TEST_F(ProgramPanels, TheValuesOfAnEffectAreEditedByHand)
{
    TProgram program(Screen, GetOptions());
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

    const int built = CountSteps(workshop.GetDocument());
    {
        TPanelHand panel(Screen, workshop, emitter);
        panel.Enter("Rate", "120", 0, "Tab");
        panel.EnterNext("Start Delay", "0.25", 0);
        panel.Choose("Emit Mode", 0);
        panel.TickGroup("Max life time", true);
        panel.Enter("Max life time.Life Time", "7.5");
        Screen.Save(program.GetMainRectangle(), Screenshot("panel-emitter"));
        panel.Close();
    }
    {
        TPanelHand panel(Screen, workshop, gravity);
        // A step of 0.1 for each two pixels.
        panel.DragLabel("Acceleration", 1, 36);
        panel.ApplyNumber("Acceleration", 1, -8);
        // The number that was dragged has the keys.
        Screen.Key("Tab");
        panel.EnterNext("Acceleration", "1.5", 2);
        panel.Close();
    }
    {
        TPanelHand panel(Screen, workshop, volume);
        panel.TickBool("Output Distance", true);
        panel.Close();
    }
    {
        TPanelHand panel(Screen, workshop, scalar);
        TRampHand ramp(panel, "Value");
        ramp.DragPoint(0, 3, 60, 30);
        ramp.DragPoint(0, 1, 10, -20);
        Screen.Save(program.GetMainRectangle(), Screenshot("panel-ramp"));
        panel.Close();
    }
    {
        TPanelHand panel(Screen, workshop, quads);
        panel.Choose("Alpha Blend.Dest Function", 1);
        panel.TickGroup("Cull Face", true);
        panel.TickGroup("Depth Test", false);
        TPickerHand colour(panel, "Colour");
        // White is white at every hue: it takes its luminance first.
        colour.Drag(PA_STRIP, 0, 10);
        Screen.Save(program.GetMainRectangle(), Screenshot("panel-stage"));

        // Forth and back while the picker is open.
        for (int i = 0; i < 3; ++i)
            workshop.Undo();
        for (int i = 0; i < 3; ++i)
            workshop.Redo();
        panel.Layout();
        panel.Close();
    }
    EXPECT_EQ(CountSteps(workshop.GetDocument()), built + 14);
    CheckSteps(program, workshop, 14);
    Exit(program);
}

TEST_F(ProgramPanels, EveryKindOfParameterIsEditedByHand)
{
    TProgram program(Screen, GetOptions());
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    workshop.FoldPalette({"Forces", "Life"});
    TToolNode* controls = workshop.Add("Effect With Controls", 110, 60);
    TToolNode* constant = workshop.Add("Constant", 110, 200);
    TToolNode* path = workshop.Add("Animation Path", 110, 300);
    TToolNode* grid = workshop.Add("Grid", 110, 400);
    TToolNode* shaper = workshop.Add("Shaper", 110, 500);
    TToolNode* quads = workshop.Add("Quad Render Stage", 330, 60);
    workshop.Connect(shaper, "Value", quads, "Colour");
    TDocument& document = workshop.GetDocument();
    const int built = CountSteps(document);

    // A whole number, two numbers, a choice.
    {
        TPanelHand panel(Screen, workshop, grid);
        panel.Enter("Particle Count", "64");
        panel.ClickArrow(panel.Field("Particle Count"), true);
        panel.ApplyNumber("Particle Count", 0, 65);
        panel.Enter("Size", "2.5", 0, "Tab");
        panel.EnterNext("Size", "0.75", 1);
        panel.Choose("Emit Type", 1);
        Screen.Save(program.GetMainRectangle(), Screenshot("panel-grid"));
        panel.Close();
    }
    EXPECT_EQ(CountSteps(document), built + 5);
    // A transform by its tabs, of which the scale takes nothing.
    {
        TPanelHand panel(Screen, workshop, controls);
        panel.TickGroup("Max Life Time", true);
        panel.Enter("Intensity", "0.8");
        panel.Enter("Direction", "-0.5", 2);
        auto& placement = panel.Find<TNodeTransformParameterControls>("Placement");
        panel.Click(placement.GetFoldButton());
        placement.SetOpen(true);
        panel.Layout();
        panel.Enter("Placement", "1.25");
        for (const int tab :
             {TNodeTransformParameterControls::TT_ROTATE, TNodeTransformParameterControls::TT_SCALE,
              TNodeTransformParameterControls::TT_TRANSLATE}) {
            panel.Click(placement.GetTabButton(tab));
            placement.ShowTab(tab);
            if (tab == TNodeTransformParameterControls::TT_ROTATE)
                panel.Enter("Placement", "45", 4);
            if (tab == TNodeTransformParameterControls::TT_SCALE)
                panel.TypeInto(panel.Field("Placement", 7), "3");
            if (tab == TNodeTransformParameterControls::TT_ROTATE)
                Screen.Save(program.GetMainRectangle(), Screenshot("panel-transform"));
        }
        panel.Click(placement.GetFoldButton());
        placement.SetOpen(false);
        panel.Layout();
        panel.Enter("Placement", "-2", 2);
        panel.Close();
    }
    EXPECT_EQ(CountSteps(document), built + 11);
    // A port of several types: what it is, then its value.
    {
        TPanelHand panel(Screen, workshop, constant);
        panel.ChooseType("Value", TY_QUATERNION);
        panel.Enter("Value", "30", 0, "Tab");
        panel.EnterNext("Value", "-60", 1, "Tab");
        panel.EnterNext("Value", "90", 2);
        Screen.Save(program.GetMainRectangle(), Screenshot("panel-quaternion"));
        panel.ChooseType("Value", TY_TEXCOORDS);
        panel.Enter("Value", "0.125", 1);
        panel.Close();
    }
    EXPECT_EQ(CountSteps(document), built + 17);
    // The curves of a wire's type: four of a colour.
    {
        TPanelHand panel(Screen, workshop, shaper);
        TRampHand ramp(panel, "Value");
        ASSERT_EQ(ramp.Ramp().GetModel().GetComponentCount(), 4);
        // All four lie on each other.
        ramp.DragPoint(0, 3, 0, 25);
        panel.Close();
    }
    EXPECT_EQ(CountSteps(document), built + 18);
    // The rectangle of a texture, and the texture itself by the dialog.
    {
        TPanelHand panel(Screen, workshop, quads);
        panel.Enter("UVs", "0.25", 0, "Tab");
        panel.EnterNext("UVs", "-0.5", 1, "Tab");
        panel.EnterNext("UVs", "0.75", 2, "Tab");
        panel.EnterNext("UVs", "1.5", 3);
        auto& texture = panel.Find<TNodeTextureParameterControls>("Texture");
        ChooseFile(program, panel, texture.GetButton(), TextureTitle,
                   SourcePath("samples/textures/smoke.hvt"));
        ASSERT_FALSE(HasFatalFailure());
        panel.Apply(new TTextureParamOp(&panel.Param<TNodeTextureParameter>("Texture"), "smoke.hvt"));
        // The preview's colours turn grey, which is nothing to undo.
        const TVector2 box = panel.MiddleOf(texture.GetAlphaBox());
        const TRectangle preview = {panel.ScreenX(texture.GetAbsolutePosition()),
                                    panel.ScreenY(texture.GetAbsolutePosition()) + 24, 100, 100};
        Screen.MoveTo(panel.ScreenX(box), panel.ScreenY(box));
        const TPicture before = Screen.Grab(preview);
        panel.Click(texture.GetAlphaBox());
        EXPECT_TRUE(IsChanged(preview, before, 500));
        Screen.Save(program.GetMainRectangle(), Screenshot("panel-texture"));
        panel.Close();
    }
    EXPECT_EQ(CountSteps(document), built + 23);
    {
        TPanelHand panel(Screen, workshop, path);
        auto& animation = panel.Find<TNodeAnimationParameterControls>("Animation");
        TNodeAnimationParameter& parameter = panel.Param<TNodeAnimationParameter>("Animation");
        ChooseFile(program, panel, animation.GetButton(), AnimationTitle,
                   SourcePath("samples/animations/knot.vori"));
        ASSERT_FALSE(HasFatalFailure());
        panel.Apply(new TAnimNameParamOp(&parameter, "knot.vori"));
        bool flags[TNodeAnimationParameterControls::FL_NUMFLAGS] = {
            parameter.UsesPosition(), parameter.UsesRotation(), parameter.UsesScale()};
        for (int i = 0; i < TNodeAnimationParameterControls::FL_NUMFLAGS; ++i) {
            panel.Click(animation.GetFlagBox(i));
            flags[i] = !flags[i];
            panel.Apply(new TAnimFlagsParamOp(&parameter, flags[0], flags[1], flags[2]));
        }
        Screen.Save(program.GetMainRectangle(), Screenshot("panel-animation"));
        panel.Close();
    }
    EXPECT_EQ(CountSteps(document), built + 27);
    CheckSteps(program, workshop, 27);
    Exit(program);
}

TEST_F(ProgramPanels, EveryButtonOfARampIsPressed)
{
    TProgram program(Screen, GetOptions());
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    TToolNode* colours = workshop.Add("Colour Over Life", 110, 60);
    TDocument& document = workshop.GetDocument();
    const int built = CountSteps(document);
    enum TComponent
    {
        Red,
        Green,
        Blue,
        Alpha
    };
    TPanelHand panel(Screen, workshop, colours);
    TRampHand ramp(panel, "Value");
    // Red alone: all but alpha lie on each other.
    for (const int component : {Green, Blue, Alpha})
        ramp.ToggleComponent(component);
    const int point = ramp.Insert(Red, 0.5f);
    ASSERT_EQ(point, 3);
    ramp.Enter(Red, point, "0.4", "0.6");
    EXPECT_EQ(CountSteps(document), built + 3);
    ramp.ClickArrow(Red, point, true, true);
    ramp.ClickArrow(Red, point, false, true);
    ramp.ClickArrow(Red, point, true, false);
    ramp.ClickArrow(Red, point, false, false);
    EXPECT_EQ(CountSteps(document), built + 7);
    // A hundredth of the time, a thousandth of a span of 0.4; a tenth of it with Shift.
    ramp.Select(Red, point);
    ramp.MoveByKey(Red, point, "Right", 0.01, 0);
    ramp.MoveByKey(Red, point, "Up", 0, 0.001);
    ramp.MoveByKey(Red, point, "shift+Left", -0.001, 0);
    ramp.MoveByKey(Red, point, "shift+Down", 0, -0.0001);
    EXPECT_EQ(CountSteps(document), built + 11);
    for (const char* key : {"Delete", "BackSpace"}) {
        const int added = ramp.Insert(Red, 0.75f);
        ASSERT_EQ(added, 6);
        ramp.RemoveByKey(Red, added, key);
    }
    EXPECT_EQ(CountSteps(document), built + 15);
    ramp.ToggleLinear();
    ramp.DragPoint(Red, point, -20, 10);
    ramp.ToggleLinear();
    EXPECT_EQ(CountSteps(document), built + 18);
    // What is hidden takes no part in a lock.
    for (const int component : {Red, Green, Blue})
        ramp.ToggleComponent(component);
    ramp.ToggleLock({-1, -1, Green, -1});
    Screen.Save(program.GetMainRectangle(), Screenshot("panel-lock"));
    ramp.ToggleLock({-1, -1, -1, -1});
    for (const int component : {Red, Alpha})
        ramp.ToggleComponent(component);
    EXPECT_EQ(CountSteps(document), built + 20);

    // Near, aside, and back to all: were it not all, the point would not be under the pointer.
    const TVector2 corner = ramp.Ramp().GetAbsolutePosition();
    const TVector2 axis = corner + TVector2(10, 70);
    ramp.Select(Alpha, 3);
    const TRectangle plot = {panel.ScreenX(corner) + 25, panel.ScreenY(corner) + 20, 320, 105};
    const TPicture all = Screen.Grab(plot);
    Screen.Wheel(panel.ScreenX(corner) + 180, panel.ScreenY(corner) + 70, 3);
    EXPECT_TRUE(IsChanged(plot, all, 500));
    panel.Drag(axis, 20, 10);
    Screen.DoubleClick(panel.ScreenX(axis), panel.ScreenY(axis));
    // A drag that is given up leaves nothing.
    ramp.Select(Alpha, 3);
    Screen.Key("ctrl+c");
    const TVector2 place = ramp.PlaceOf(ramp.Parameter().GetCurve(Alpha)[3]);
    Screen.MoveTo(panel.ScreenX(place), panel.ScreenY(place));
    Screen.Press();
    Screen.MoveTo(panel.ScreenX(place) + 30, panel.ScreenY(place) + 30);
    Screen.Key("Escape");
    Screen.Release();
    EXPECT_EQ(CountSteps(document), built + 20);
    // The points that were copied come back.
    const vector<TRampPoint> copied = ramp.Parameter().GetCurve(Alpha);
    ramp.DragPoint(Alpha, 3, 40, 20);
    Screen.Key("ctrl+v");
    panel.Apply(new TRampChangePointsOp(&ramp.Parameter(), Alpha, copied));
    Screen.Save(program.GetMainRectangle(), Screenshot("panel-colours"));
    EXPECT_EQ(CountSteps(document), built + 22);
    panel.Close();
    CheckSteps(program, workshop, 22);
    Exit(program);
}

TEST_F(ProgramPanels, EveryButtonOfAPickerIsPressedInBothModes)
{
    TProgram program(Screen, GetOptions());
    TWorkshop workshop(Screen, program);
    StartWithNewDocument(program, workshop);
    if (HasFatalFailure())
        return;
    TToolNode* controls = workshop.Add("Effect With Controls", 110, 60);
    TDocument& document = workshop.GetDocument();
    const int built = CountSteps(document);
    TPanelHand panel(Screen, workshop, controls);
    // Between edits that would be one step, as they change the same of red, green, blue and alpha.
    bool isUp = false;
    const auto between = [&] {
        isUp = !isUp;
        panel.ClickArrow(panel.Field("Intensity"), isUp);
        panel.ApplyNumber("Intensity", 0, isUp ? 1.1 : 1);
    };
    constexpr int A = TPickedColour::Alpha;
    TPickerHand tint(panel, "Tint");
    tint.Drag(PA_STRIP, 0, 10);
    tint.Drag(PA_ALPHA, 0, 15);
    tint.Drag(PA_SQUARE, -25, -18);
    tint.Enter(A, "0.75");
    tint.Enter(0, "0.25");
    tint.ClickArrow(A, true);
    tint.Enter(1, "0.5");
    tint.ClickArrow(A, false);
    tint.Enter(2, "0.625");
    EXPECT_EQ(CountSteps(document), built + 9);
    for (const bool up : {true, false})
        for (int i = 0; i < A; ++i) {
            between();
            tint.ClickArrow(i, up);
        }
    EXPECT_EQ(CountSteps(document), built + 21);
    Screen.Save(program.GetMainRectangle(), Screenshot("panel-hsl"));
    between();
    tint.ChooseMode(PM_RGB);
    // Each of these changes others of the four.
    tint.Drag(PA_SQUARE, 20, -30);
    tint.Drag(PA_ALPHA, 0, -20);
    tint.Drag(PA_STRIP, 0, 25);
    const char* const values[] = {"0.875", "0.375", "0.125", "0.5"};
    for (int i = 0; i <= A; ++i)
        tint.Enter(i, values[i]);
    for (const bool up : {true, false})
        for (int i = 0; i <= A; ++i)
            tint.ClickArrow(i, up);
    EXPECT_EQ(CountSteps(document), built + 37);
    Screen.Save(program.GetMainRectangle(), Screenshot("panel-rgb"));
    tint.DragArrowToTheEnd(1);
    tint.ChooseMode(PM_HSL);
    tint.Fold();
    EXPECT_EQ(CountSteps(document), built + 38);
    panel.Close();
    CheckSteps(program, workshop, 38);
    Exit(program);
}
