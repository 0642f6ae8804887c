#include "scenetest.h"

#include "library/wimp/gl/renderfonttable.h"
#include "particles/cindermill/graph/operations/bypassflagop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/nodepropertiesop.h"
#include "particles/cindermill/graph/operations/polytypeusertypeop.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/cindermill/interface/graph/nodecolour.h"

namespace {

class TNodeObjTest : public TSceneTest
{
protected:
    void Rename(TToolNode* node, const char* name)
    {
        TNodeProperties properties;
        properties.Name = name;
        Document.ApplyOperation(new TNodePropertiesOp(node, properties));
    }
    static float WidthOf(const char* text, float size)
    {
        TFontInstance font;
        EXPECT_TRUE(font.Create("Arial (TrueType)", size));
        TVector2 result;
        font.GetTextSize(text, result);
        return result[0];
    }
    // The first strip of a selected node's frame.
    TVector4 FrameOf(TNodeObj& object) { return object.GetBody().GetPanel().GetPath(3).GetFillColour(); }
    TVector4 ButtonOfPanel(TNodeObj& object)
    {
        return object.GetBody().GetPanel().GetPath(18).GetFillColour();
    }
};

TEST_F(TNodeObjTest, ANodeWithNoInputsAndOneLongTitleIsAsWideAsItsTitleDemands)
{
    TToolNode* node = Add("Effect", 100, 100);
    const char* title = "An effect with quite a long name for a node";
    Rename(node, title);
    EXPECT_FLOAT_EQ(Object(node).GetSize()[0], WidthOf(title, 12) + 2 * 10 + 12);
}

TEST_F(TNodeObjTest, ANodeIsAsWideAsItsWidestLabels)
{
    TToolNode* node = Add("Grid", 100, 100);
    EXPECT_FLOAT_EQ(Object(node).GetSize()[0],
                    WidthOf("Emission Trigger", 10) + WidthOf("Start Transform", 10) + 2 * 5 + 50);
}

TEST_F(TNodeObjTest, ANodeIsAsHighAsItsLargerPortCount)
{
    EXPECT_EQ(Object(Add("Grid", 0, 0)).GetSize()[1], 3 * 15 + 10 + 5);
    EXPECT_EQ(Object(Add("Effect With Controls", 0, 0)).GetSize()[1], 5 * 15 + 10 + 5);
    EXPECT_EQ(Object(Add("Effect", 0, 0)).GetSize()[1], 1 * 15 + 10 + 5);
}

TEST_F(TNodeObjTest, ARenamedNodeMeasuresAnewAndUndoBringsTheOldSizeBack)
{
    TToolNode* node = Add("Effect", 100, 100);
    const TVector2 before = Object(node).GetSize();
    Rename(node, "A much longer name than before");
    EXPECT_GT(Object(node).GetSize()[0], before[0]);
    Document.Undo();
    EXPECT_EQ(Object(node).GetSize(), before);
}

TEST_F(TNodeObjTest, ANewNodeIsCentredOnItsPoint)
{
    TAddGraphNodeOp* op = new TAddGraphNodeOp(Document, App.Type("Grid"), 300, 200);
    Document.ApplyOperation(op);
    const TVector2 size = Object(op->GetNode()).GetSize();
    EXPECT_EQ(op->GetNode()->GetX(), 300 - static_cast<int>(size[0] / 2));
    EXPECT_EQ(op->GetNode()->GetY(), 200 - static_cast<int>(size[1] / 2));
    EXPECT_EQ(Object(op->GetNode()).GetOrigin()[0], static_cast<float>(op->GetNode()->GetX()));
}

TEST_F(TNodeObjTest, LabelsRunNeitherIntoPortsNorIntoEachOther)
{
    for (const char* name : {"Grid", "Collision Plane", "Effect With Controls", "Sphere Surface"}) {
        const TNodeType& type = App.Type(name);
        const float width = MeasureNode(type)[0];
        for (int i = 0; i < type.GetNumInputs(); ++i) {
            const float end = NodeLabelInset + WidthOf(type.GetInput(i)->Name, 10);
            EXPECT_LT(end, width - NodeLabelInset);
            if (i < type.GetNumOutputs()) {
                EXPECT_LT(end + 10, width - NodeLabelInset - WidthOf(type.GetOutput(i).Name, 10));
            }
        }
        EXPECT_LT(WidthOf(type.Name, 12) + 2 * NodeTitleInset, width + 0.01f);
    }
}

TEST_F(TNodeObjTest, TitlesStandClearOfWhatIsBesideThem)
{
    constexpr float Least = 3.0f;
    const TNodeTypeLibrary& library = App.Get().GetNodeTypes();
    for (int i = 0; i < library.GetNumTypes(); ++i) {
        const TNodeType& type = *library.GetType(i);
        const float width = MeasureNode(type)[0];
        const float title = WidthOf(type.Name, 12);
        const float place = GetTitleLeft(type, title, width);
        const float boxEnd = NodeBoxLeft + NodeBoxSize;
        EXPECT_GE(place, (type.HasFlag(FL_BYPASSABLE) ? boxEnd : NodeBoxLeft) + Least) << Text(type.Name);
        EXPECT_LE(place + title, width - boxEnd - Least) << Text(type.Name);
    }
    // With room to spare a title stands in the middle.
    EXPECT_EQ(GetTitleLeft(App.Type("Grid"), 40, 200), 80);
    EXPECT_EQ(GetTitleLeft(App.Type("Gravity"), 40, 200), 80);
}

TEST_F(TNodeObjTest, LettersAreLargerInAViewThatIsZoomedOutAsFarAsThereIsRoom)
{
    const TNodeTypeLibrary& library = App.Get().GetNodeTypes();
    for (int i = 0; i < library.GetNumTypes(); ++i) {
        const TNodeType& type = *library.GetType(i);
        const float width = MeasureNode(type)[0];
        TNodeFonts fonts;
        fonts.Fit(type, width);
        EXPECT_EQ(fonts.GetTitle(1).GetFont()->GetSize(), 12);
        EXPECT_EQ(fonts.GetLabel(1).GetFont()->GetSize(), 10);
        EXPECT_GE(fonts.GetLabel(0.5f).GetFont()->GetSize(), 10) << Text(type.Name);
        TVector2 title;
        fonts.GetTitle(0.5f).GetTextSize(type.Name, title);
        const float boxEnd = NodeBoxLeft + NodeBoxSize;
        EXPECT_GE(title[0], WidthOf(type.Name, 12));
        EXPECT_LE(title[0], width - boxEnd - (type.HasFlag(FL_BYPASSABLE) ? boxEnd : NodeBoxLeft))
            << Text(type.Name);
        for (int row = 0; row < type.GetNumInputs() && row < type.GetNumOutputs(); ++row) {
            TVector2 input;
            TVector2 output;
            fonts.GetLabel(0.5f).GetTextSize(type.GetInput(row)->Name, input);
            fonts.GetLabel(0.5f).GetTextSize(type.GetOutput(row).Name, output);
            EXPECT_LT(input[0] + output[0] + 2 * NodeLabelInset, width) << Text(type.Name);
        }
    }
    TNodeFonts fonts;
    fonts.Fit(App.Type("Velocity Cone"), MeasureNode(App.Type("Velocity Cone"))[0]);
    EXPECT_EQ(fonts.GetTitle(0.5f).GetFont()->GetSize(), 15);
    EXPECT_EQ(fonts.GetLabel(0.5f).GetFont()->GetSize(), 13);
}

TEST_F(TNodeObjTest, AClosedPanelHas25PathsAndAnOpenOne39)
{
    TToolNode* node = Add("Grid", 0, 0);
    TNodeObj& object = Object(node);
    EXPECT_EQ(object.GetBody().GetPanel().GetNumPaths(), 25);
    Open(node);
    EXPECT_EQ(object.GetExpanded().GetPanel().GetNumPaths(), 39);
}

TEST_F(TNodeObjTest, ThePanelHasTheTypesColourShiftedAndTheTones)
{
    TToolNode* node = Add("Grid", 0, 0);
    const TNodePanel& panel = Object(node).GetBody().GetPanel();
    const TVector4 own = GetNodeTypeColour(node->GetNodeType()->Colour);
    EXPECT_EQ(panel.GetPath(0).GetFillColour(), TVector4(0.502f, 0.502f, 0.502f, 0.502f));
    const std::vector<std::pair<int, float>> strips = {{3, -0.06f}, {4, 0.07f},   {5, -0.11f},
                                                       {6, -0.11f}, {7, 0.11f},   {8, 0.07f},
                                                       {9, 0.05f},  {10, -0.06f}, {11, -0.17f}};
    for (const auto& [path, delta] : strips)
        EXPECT_EQ(panel.GetPath(path).GetFillColour(), ShiftColour(own, delta)) << path;
    EXPECT_EQ(panel.GetPath(12).GetFillColour(), TVector4(0.620f, 0.659f, 0.659f, 1));
    EXPECT_EQ(panel.GetPath(13).GetFillColour(), TVector4(0.651f, 0.690f, 0.690f, 1));
    EXPECT_EQ(panel.GetPath(14).GetFillColour(), TVector4(0.737f, 0.784f, 0.784f, 1));
    EXPECT_EQ(panel.GetPath(16).GetFillColour(), TVector4(0.769f, 0.816f, 0.816f, 1));
}

TEST_F(TNodeObjTest, ASelectedNodeHasOrangeStripsOnceItIsDrawnOrTouched)
{
    TToolNode* node = Add("Grid", 100, 100);
    const TVector4 before = FrameOf(Object(node));
    Object(node).SetSelected(true);
    EXPECT_EQ(FrameOf(Object(node)), TVector4(0.831f, 0.267f, 0, 1));
    EXPECT_EQ(Object(node).GetBody().GetPanel().GetPath(4).GetFillColour(), TVector4(0.851f, 0.282f, 0, 1));
    Object(node).SetSelected(false);
    EXPECT_EQ(FrameOf(Object(node)), before);
}

TEST_F(TNodeObjTest, PressingTheExpandButtonSwapsTheTonesAndReleasingBringsThemBack)
{
    TToolNode* node = Add("Effect", 100, 100);
    const TVector4 up = ButtonOfPanel(Object(node));
    Press(ButtonOf(node));
    EXPECT_TRUE(Object(node).IsPressed());
    const TVector4 down = ButtonOfPanel(Object(node));
    EXPECT_LT(down[0], up[0]);
    Release(ButtonOf(node));
    EXPECT_FALSE(Object(node).IsPressed());
    EXPECT_EQ(ButtonOfPanel(Object(node)), up);
}

TEST_F(TNodeObjTest, APressOnTheExpandButtonThatSlidOffAndCameBackStillCounts)
{
    TToolNode* node = Add("Effect", 100, 100);
    const TVector4 up = ButtonOfPanel(Object(node));
    for (const TVector2& away : {TVector2(500, 500), TitleOf(node)}) {
        const bool collapsed = Object(node).IsCollapsed();
        Move(ButtonOf(node));
        Press(ButtonOf(node));
        const TVector4 down = ButtonOfPanel(Object(node));
        Drag(away);
        EXPECT_EQ(ButtonOfPanel(Object(node)), up);
        Drag(ButtonOf(node));
        EXPECT_EQ(ButtonOfPanel(Object(node)), down);
        Release(ButtonOf(node));
        EXPECT_NE(Object(node).IsCollapsed(), collapsed);
        EXPECT_EQ(ButtonOfPanel(Object(node)), up);
    }
}

TEST_F(TNodeObjTest, APressOnTheExpandButtonEndsWithTheMouseAndWithEscape)
{
    TToolNode* node = Add("Effect", 100, 100);
    Press(ButtonOf(node));
    ASSERT_NE(Host.Drag, nullptr);
    Host.Drag->OnCaptureLost();
    EXPECT_FALSE(Object(node).IsPressed());
    Move(ButtonOf(node));
    Release(ButtonOf(node));
    EXPECT_TRUE(Object(node).IsCollapsed());
    Press(ButtonOf(node));
    EXPECT_TRUE(Key(KEY_ESCAPE));
    EXPECT_FALSE(Object(node).IsPressed());
    Release(ButtonOf(node));
    EXPECT_TRUE(Object(node).IsCollapsed());
}

TEST_F(TNodeObjTest, AClickOnTheExpandButtonWithThePointerMovedAwayBeforeReleaseChangesNothing)
{
    TToolNode* node = Add("Effect", 100, 100);
    for (const TVector2& away : {TVector2(500, 500), TitleOf(node)}) {
        Move(ButtonOf(node));
        Press(ButtonOf(node));
        Drag(away);
        EXPECT_FALSE(Object(node).IsPressed());
        Release(away);
        EXPECT_TRUE(Object(node).IsCollapsed());
        // Nor does a release that belongs to no press.
        Move(ButtonOf(node));
        Release(ButtonOf(node));
        EXPECT_TRUE(Object(node).IsCollapsed());
    }
    EXPECT_EQ(Host.NumWarnings, 0);
    EXPECT_EQ(NumOperations(), 1);
    EXPECT_TRUE(Document.GetSelection().empty());
}

TEST_F(TNodeObjTest, ClickingTheBypassBoxAddsOneUndoStepAndDoesNotSelectTheNode)
{
    TToolNode* node = Add("Gravity", 100, 100);
    const int before = NumOperations();
    Click(TVector2(109, 108));
    EXPECT_EQ(NumOperations(), before + 1);
    EXPECT_TRUE(node->GetNodeType()->IsBypassed());
    EXPECT_TRUE(Object(node).GetBypass().IsBypassed());
    EXPECT_TRUE(Document.GetSelection().empty());
    EXPECT_EQ(Host.NumDrags, 0);
    Document.Undo();
    EXPECT_FALSE(node->GetNodeType()->IsBypassed());
    EXPECT_FALSE(Object(node).GetBypass().IsBypassed());
}

TEST_F(TNodeObjTest, ASecondClickOnTheBypassBoxSwitchesTheNodeOnAgain)
{
    TToolNode* node = Add("Gravity", 100, 100);
    Click(TVector2(109, 108));
    Click(TVector2(109, 108));
    EXPECT_FALSE(node->GetNodeType()->IsBypassed());
    EXPECT_FALSE(Object(node).GetBypass().IsBypassed());
}

TEST_F(TNodeObjTest, ANodeThatCannotBeBypassedIsSelectedInstead)
{
    TToolNode* node = Add("Noise", 100, 100);
    const int before = NumOperations();
    Click(TVector2(109, 108));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_FALSE(node->GetNodeType()->IsBypassed());
    EXPECT_EQ(Document.GetSelection().size(), 1);
}

TEST(TBypass, BothSidesOfTheBoxBelongToIt)
{
    TBypass bypass;
    EXPECT_EQ(bypass.HitTest(TVector2(0, 0)), &bypass);
    EXPECT_EQ(bypass.HitTest(TVector2(10, 10)), &bypass);
    EXPECT_EQ(bypass.HitTest(TVector2(10.01f, 5)), nullptr);
    EXPECT_EQ(bypass.HitTest(TVector2(5, -0.01f)), nullptr);
}

TEST_F(TNodeObjTest, AClosedNodeHasItsRegions)
{
    TNode node;
    node.Build(App.Type("Grid"), TVector2(120, 60));
    EXPECT_EQ(node.GetRegion(TVector2(111, 8)), NR_BUTTON);
    EXPECT_EQ(node.GetRegion(TVector2(118, 58)), NR_GRIP);
    EXPECT_EQ(node.GetRegion(TVector2(60, 30)), NR_BODY);
    EXPECT_EQ(node.GetRegion(TVector2(60, 60)), NR_NONE);
    EXPECT_EQ(node.GetRegion(TVector2(-1, 30)), NR_NONE);
}

TEST_F(TNodeObjTest, APressTakesTheFocus)
{
    TToolNode* node = Add("Noise", 100, 100);
    Press(TitleOf(node));
    EXPECT_EQ(TRenderObject::GetFocus(), &Object(node));
    EXPECT_TRUE(Window.Focused);
    Release(TitleOf(node));
}

TEST_F(TNodeObjTest, TheGripMakesTheNodeLargerButNeverSmallerThanItsContents)
{
    TToolNode* node = Add("Noise", 100, 100);
    TToolNode* age = Add("Age", 500, 100);
    TToolEdge* edge = Connect(node, "Value", age, "Age");
    const int before = NumOperations();
    const TVector2 size = Object(node).GetSize();
    const TVector2 grip = TVector2(100, 100) + size - TVector2(5, 3);
    DragTo(grip, grip + TVector2(40, 25));
    EXPECT_NEAR(Object(node).GetSize()[0], size[0] + 40, 1);
    EXPECT_NEAR(Object(node).GetSize()[1], size[1] + 25, 1);
    EXPECT_EQ(Scene().FindEdge(edge)->GetCurve()[0], Output(node, "Value"));
    EXPECT_EQ(NumOperations(), before);
    const TVector2 larger = TVector2(100, 100) + Object(node).GetSize() - TVector2(5, 3);
    DragTo(larger, TVector2(100, 100));
    EXPECT_EQ(Object(node).GetSize(), size);
}

TEST_F(TNodeObjTest, ADragOfTheGripScrollsAtTheEdgesOfTheView)
{
    TToolNode* node = Add("Effect", 100, 100);
    const TVector2 grip = TVector2(100, 100) + Object(node).GetSize() - TVector2(5, 3);
    Press(grip);
    Drag(TVector2(795, 300));
    EXPECT_EQ(Host.NumScrolls, 1);
    EXPECT_EQ(Host.ScrolledAt, std::make_pair(795.0, 300.0));
    Release(TVector2(795, 300));
    EXPECT_EQ(Host.Captured, nullptr);
}

TEST_F(TNodeObjTest, AnOpenNodeFollowsTheGripToo)
{
    TToolNode* node = Add("Noise", 100, 100);
    const TVector2 closed = Object(node).GetSize();
    Open(node);
    const TVector2 open = Object(node).GetSize();
    const TVector2 grip = TVector2(100, 100) + open - TVector2(5, 3);
    DragTo(grip, grip + TVector2(40, 25));
    EXPECT_EQ(Object(node).GetSize(), open + TVector2(40, 25));
    Click(ButtonOf(node));
    EXPECT_EQ(Object(node).GetSize(), TVector2(open[0] + 40, closed[1] + 25));
    TRenderObject::RunTicks(&Renderer);
}

TEST_F(TNodeObjTest, EscapeBringsTheSizeBack)
{
    TToolNode* node = Add("Noise", 100, 100);
    const TVector2 size = Object(node).GetSize();
    const TVector2 grip = TVector2(100, 100) + size - TVector2(5, 3);
    Press(grip);
    Drag(grip + TVector2(40, 25));
    EXPECT_NE(Object(node).GetSize(), size);
    EXPECT_TRUE(Key(KEY_ESCAPE));
    EXPECT_EQ(Object(node).GetSize(), size);
    Release(grip + TVector2(40, 25));
    EXPECT_EQ(Object(node).GetSize(), size);
}

TEST_F(TNodeObjTest, KeysGoToTheGraphWhenTheFocusedControlCannotBeSeen)
{
    TToolNode* node = Add("Scalar Over Life", 500, 100);
    TToolNode* effect = Add("Effect", 100, 100);
    Open(node);
    TNodeParameterControls* controls = &Group(node, "Time");
    const auto open = [&] {
        if (Object(node).IsCollapsed())
            Click(ButtonOf(node));
        TRenderObject::RunTicks(&Renderer);
        ASSERT_FALSE(Object(node).IsCollapsed());
        TRenderObject::SetFocus(controls, &Renderer);
        TRenderObject::SetCapture(controls);
    };
    const auto expectGraphHasThem = [&](const char* what) {
        EXPECT_EQ(TRenderObject::GetFocus(), &Canvas()) << what;
        EXPECT_EQ(TRenderObject::GetCapture(), nullptr) << what;
    };
    open();
    TToolEdge* edge = Connect(effect, "Time", node, "Time");
    expectGraphHasThem("an edge hides them");
    Document.ApplyOperation(new TDeleteGraphEdgeOp(edge));
    open();
    // The press takes the keys for the node.
    Press(ButtonOf(node));
    TRenderObject::SetFocus(controls, &Renderer);
    Release(ButtonOf(node));
    ASSERT_TRUE(Object(node).IsCollapsed());
    expectGraphHasThem("the panel is closed");
    open();
    vector<TToolNode*> nodes;
    nodes.push_back(node);
    Document.ApplyOperation(new TDeleteGraphNodeOp(nodes));
    expectGraphHasThem("the node is deleted");
    Document.SelectNode(effect, true);
    EXPECT_TRUE(Key(KEY_DELETE));
    EXPECT_EQ(Document.GetGraph()->GetNumNodes(), 0);
}

TEST_F(TNodeObjTest, ADeletedNodeComesBackAsItWas)
{
    TToolNode* node = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 500, 100);
    TToolEdge* edge = Connect(node, "Time", curve, "Time");
    Click(ButtonOf(node));
    Document.SelectNode(node, true);
    Press(ButtonOf(node));
    EXPECT_TRUE(Key(KEY_DELETE));
    EXPECT_EQ(Scene().FindNode(node), nullptr);
    Document.Undo();
    EXPECT_FALSE(Object(node).IsCollapsed());
    EXPECT_FALSE(Object(node).IsPressed());
    EXPECT_EQ(Scene().FindEdge(edge)->GetCurve()[0], Output(node, "Time"));
    EXPECT_EQ(OutputPort(node, "Time").GetOrigin()[0], Object(node).GetSize()[0] + 1);
}

TEST_F(TNodeObjTest, HoveringTellsTheBypassState)
{
    TToolNode* node = Add("Gravity", 100, 100);
    EXPECT_EQ(HoverAt(TVector2(109, 108)),
              "Node bypass flag. Set to bypassed to ignore this node. Currently not bypassed.");
    EXPECT_EQ(Scene().GetHelp().GetOrigin(), TVector2(100 + NodeBoxLeft + 5, 100 + NodeBoxTop + 5));
    Document.ApplyOperation(new TBypassFlagOp(node, true));
    EXPECT_EQ(HoverAt(TVector2(109, 108)),
              "Node bypass flag. Set to bypassed to ignore this node. Currently bypassed.");
}

TEST_F(TNodeObjTest, HoveringTellsOfTheButton)
{
    TToolNode* node = Add("Gravity", 100, 100);
    EXPECT_EQ(HoverAt(ButtonOf(node)), "Click to show node properties");
    Click(ButtonOf(node));
    EXPECT_FALSE(Scene().GetHelp().IsShown());
    EXPECT_EQ(HoverAt(ButtonOf(node)), "Click to hide node properties");
    TRenderObject::RunTicks(&Renderer);
}

TEST_F(TNodeObjTest, HoveringTellsNameAndDescriptionOfAPort)
{
    TToolNode* node = Add("Noise", 100, 100);
    EXPECT_EQ(HoverAt(Input(node, "Position")), "Position: Where the noise is read, in world units.");
    EXPECT_EQ(HoverAt(Output(node, "Value")), "Value: The noise, -1 to 1 in each component.");
    EXPECT_EQ(HoverAt(TitleOf(node)), "");
}

TEST_F(TNodeObjTest, TheHelpHidesOnTheNextMoveAndOnTheNextPress)
{
    TToolNode* node = Add("Noise", 100, 100);
    ASSERT_NE(HoverAt(Input(node, "Position")), "");
    Move(TitleOf(node));
    EXPECT_FALSE(Scene().GetHelp().IsShown());
    ASSERT_NE(HoverAt(Input(node, "Position")), "");
    Move(TVector2(700, 500));
    EXPECT_FALSE(Scene().GetHelp().IsShown());
    ASSERT_NE(HoverAt(ButtonOf(node)), "");
    Press(ButtonOf(node));
    EXPECT_FALSE(Scene().GetHelp().IsShown());
}

TEST_F(TNodeObjTest, PortsShowWhatIsConnected)
{
    TToolNode* noise = Add("Noise", 100, 100);
    TToolNode* age = Add("Age", 400, 100);
    EXPECT_FALSE(OutputPort(noise, "Value").IsConnected());
    Connect(noise, "Value", age, "Age");
    EXPECT_TRUE(OutputPort(noise, "Value").IsConnected());
    EXPECT_TRUE(InputPort(age, "Age").IsConnected());
    EXPECT_FALSE(InputPort(age, "Max Age").IsConnected());
    Document.Undo();
    EXPECT_FALSE(OutputPort(noise, "Value").IsConnected());
    EXPECT_FALSE(InputPort(age, "Age").IsConnected());
}

TEST_F(TNodeObjTest, APortIsADiscWithABlackBorder)
{
    TToolNode* node = Add("Noise", 100, 100);
    TPort& port = InputPort(node, "Position");
    EXPECT_EQ(port.GetPath().GetWidth(), 1.0f);
    EXPECT_EQ(port.GetPath().GetStrokeColour(), TVector4(0, 0, 0, 1));
    EXPECT_EQ(port.GetPath().GetFillColour(), TVector4(0.5f, 0, 1, 1));
    port.SetMarked(true);
    EXPECT_GT(port.GetPath().GetFillColour()[0], 0.9f);
    port.SetMarked(false);
    EXPECT_EQ(port.GetPath().GetFillColour(), TVector4(0.5f, 0, 1, 1));
}

TEST_F(TNodeObjTest, OverlapsBoxGoesByTheStateThatIsShown)
{
    TToolNode* node = Add("Effect", 100, 100);
    TNodeObj& object = Object(node);
    const TVector2 size = object.GetSize();
    EXPECT_TRUE(object.OverlapsBox(TVector2(0, 0), TVector2(101, 101)));
    EXPECT_TRUE(object.OverlapsBox(TVector2(110, 110), TVector2(111, 111)));
    EXPECT_FALSE(object.OverlapsBox(TVector2(0, 0), TVector2(99, 99)));
    const TVector2 below = TVector2(120, 100 + size[1] + 10);
    EXPECT_FALSE(object.OverlapsBox(below, below + TVector2(5, 5)));
    Click(ButtonOf(node));
    EXPECT_TRUE(object.OverlapsBox(below, below + TVector2(5, 5)));
    TRenderObject::RunTicks(&Renderer);
}

TEST_F(TNodeObjTest, APictureOfATypeIsAsLargeAsItsNode)
{
    TNodeExp picture;
    for (const char* name : {"Grid", "Effect", "Collision Plane"}) {
        picture.BuildFor(App.Type(name));
        EXPECT_EQ(picture.GetSize(), Object(Add(name, 0, 0)).GetSize());
        EXPECT_EQ(picture.HitTest(TVector2(20, 20)), nullptr);
    }
}

} // namespace
