#include "scenetest.h"

#include "particles/cindermill/interface/graph/selboxrender.h"
#include "particles/effectgraph/canconnect.h"

namespace {

class TGraphCanvasTest : public TSceneTest
{
};

TEST_F(TGraphCanvasTest, TakesWhatItsChildrenDoNot)
{
    TVector2 min;
    TVector2 max;
    Canvas().GetBounds(min, max);
    EXPECT_EQ(min, TVector2(-1e30f, -1e30f));
    EXPECT_EQ(max, TVector2(1e30f, 1e30f));
    EXPECT_EQ(Scene().GetRoot().HitTest(TVector2(-5000, 7000)), &Canvas());
    EXPECT_FALSE(Press(TVector2(700, 500)));
}

TEST_F(TGraphCanvasTest, TheRootHoldsBackgroundAndCanvasInThisOrder)
{
    ASSERT_EQ(Scene().GetRoot().GetObjects().size(), 2);
    EXPECT_EQ(Scene().GetRoot().GetObjects()[1], &Canvas());
}

TEST_F(TGraphCanvasTest, APressSelectsTheNodeAlone)
{
    TToolNode* a = Add("Noise", 100, 100);
    TToolNode* b = Add("Age", 400, 100);
    Click(TitleOf(a));
    Click(TitleOf(b));
    ASSERT_EQ(Document.GetSelection().size(), 1);
    EXPECT_EQ(Document.GetSelection()[0], b);
    EXPECT_FALSE(Object(a).IsSelected());
    EXPECT_TRUE(Object(b).IsSelected());
}

TEST_F(TGraphCanvasTest, APressWithShiftAddsToTheSelection)
{
    TToolNode* a = Add("Noise", 100, 100);
    TToolNode* b = Add("Age", 400, 100);
    Click(TitleOf(a));
    KeyFlags = KF_SHIFT;
    Click(TitleOf(b));
    EXPECT_EQ(Document.GetSelection().size(), 2);
    // Once is enough.
    Click(TitleOf(b));
    EXPECT_EQ(Document.GetSelection().size(), 2);
}

TEST_F(TGraphCanvasTest, APressOnASelectedNodeKeepsTheSelection)
{
    TToolNode* a = Add("Noise", 100, 100);
    TToolNode* b = Add("Age", 400, 100);
    Document.SelectNode(a, true);
    Document.SelectNode(b, false);
    Click(TitleOf(a));
    EXPECT_EQ(Document.GetSelection().size(), 2);
}

TEST_F(TGraphCanvasTest, APressedNodeComesToTheFront)
{
    TToolNode* a = Add("Noise", 100, 100);
    TToolNode* b = Add("Noise", 120, 110);
    EXPECT_EQ(Scene().NodeAt(TVector2(150, 120)), &Object(b));
    Click(TVector2(110, 104));
    EXPECT_EQ(Scene().NodeAt(TVector2(150, 120)), &Object(a));
    EXPECT_EQ(Scene().NodeAt(TVector2(700, 500)), nullptr);
}

TEST_F(TGraphCanvasTest, ADragWithNoMovementAddsNoOperation)
{
    TToolNode* node = Add("Noise", 100, 100);
    const int before = NumOperations();
    Press(TitleOf(node));
    Drag(TitleOf(node));
    Drag(TitleOf(node) + TVector2(7, 3));
    Drag(TitleOf(node));
    Release(TitleOf(node));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_EQ(node->GetX(), 100);
    EXPECT_EQ(Host.Drag, nullptr);
}

TEST_F(TGraphCanvasTest, ADragMovesTheWholeSelectionInOneStep)
{
    TToolNode* a = Add("Noise", 100, 100);
    TToolNode* b = Add("Age", -50, 300);
    TToolNode* c = Add("Age", 500, 300);
    Document.SelectNode(a, true);
    Document.SelectNode(b, false);
    const int before = NumOperations();
    DragTo(TitleOf(a), TitleOf(a) + TVector2(41, -23));
    EXPECT_EQ(NumOperations(), before + 1);
    EXPECT_EQ(a->GetX(), 141);
    EXPECT_EQ(a->GetY(), 77);
    EXPECT_EQ(b->GetX(), -9);
    EXPECT_EQ(b->GetY(), 277);
    EXPECT_EQ(c->GetX(), 500);
    EXPECT_EQ(Object(a).GetOrigin(), TVector2(141, 77));
    EXPECT_EQ(Object(b).GetOrigin(), TVector2(-9, 277));
    Document.Undo();
    EXPECT_EQ(a->GetX(), 100);
    EXPECT_EQ(Object(b).GetOrigin(), TVector2(-50, 300));
}

TEST_F(TGraphCanvasTest, DuringADragPlacesChangeAtOnceAndNothingIsRecorded)
{
    TToolNode* node = Add("Noise", 100, 100);
    const int before = NumOperations();
    Press(TitleOf(node));
    Drag(TitleOf(node) + TVector2(30, 20));
    EXPECT_EQ(Object(node).GetOrigin(), TVector2(130, 120));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_EQ(Host.ScrolledAt, std::make_pair(160.0, 127.0));
    Release(TitleOf(node) + TVector2(30, 20));
    EXPECT_EQ(NumOperations(), before + 1);
}

TEST_F(TGraphCanvasTest, AClickMovesNoNodeWhereverItAndThePointerAre)
{
    TToolNode* node = Add("Noise", -100, -7);
    for (float zoom : {0.3f, 0.77f, 1.7f, 3.3f}) {
        Renderer.SetScale(TVector2(zoom, zoom));
        Renderer.SetOffset(TVector2(130.37f, 60.91f));
        const int before = NumOperations();
        for (int x = -95; x < 20; x += 3)
            for (int y = -5; y < 5; y += 3) {
                const TVector2 pixel((static_cast<float>(x) + 130.37f) * zoom,
                                     (static_cast<float>(y) + 60.91f) * zoom);
                Click(pixel);
            }
        EXPECT_EQ(NumOperations(), before);
        EXPECT_EQ(node->GetX(), -100);
        EXPECT_EQ(node->GetY(), -7);
    }
}

TEST_F(TGraphCanvasTest, NodesThatLeaveTheSelectionDuringADragGoOnWithIt)
{
    TToolNode* a = Add("Noise", 100, 100);
    TToolNode* b = Add("Age", 400, 100);
    Document.SelectNode(a, true);
    Document.SelectNode(b, false);
    Press(TitleOf(a));
    Drag(TitleOf(a) + TVector2(30, 20));
    Document.ClearSelection();
    Canvas().CancelDrag();
    EXPECT_EQ(Object(a).GetOrigin(), TVector2(100, 100));
    EXPECT_EQ(Object(b).GetOrigin(), TVector2(400, 100));
    Document.SelectNode(a, true);
    Document.SelectNode(b, false);
    Press(TitleOf(a));
    Drag(TitleOf(a) + TVector2(30, 20));
    Document.ClearSelection();
    Release(TitleOf(a) + TVector2(30, 20));
    EXPECT_EQ(a->GetX(), 130);
    EXPECT_EQ(b->GetX(), 430);
    EXPECT_EQ(Object(b).GetOrigin(), TVector2(430, 120));
}

TEST_F(TGraphCanvasTest, APressWhoseReleaseWasNeverHeardGoesOnWithTheFirstDrag)
{
    TToolNode* node = Add("Noise", 100, 100);
    Press(TitleOf(node));
    Drag(TitleOf(node) + TVector2(30, 20));
    Press(TitleOf(node) + TVector2(40, 20));
    Drag(TitleOf(node) + TVector2(40, 20));
    EXPECT_EQ(Object(node).GetOrigin(), TVector2(140, 120));
    Release(TitleOf(node) + TVector2(40, 20));
    EXPECT_EQ(node->GetX(), 140);
    EXPECT_EQ(Host.Drag, nullptr);
}

TEST_F(TGraphCanvasTest, ADraggedNodeComesToRestAtWholePlaces)
{
    TToolNode* node = Add("Noise", 10, 10);
    Renderer.SetScale(TVector2(3, 3));
    Press(TVector2(120, 51));
    Drag(TVector2(131, 60));
    EXPECT_EQ(Object(node).GetOrigin(), TVector2(13, 13));
    Release(TVector2(131, 60));
    EXPECT_EQ(node->GetX(), 13);
    EXPECT_EQ(node->GetY(), 13);
}

TEST_F(TGraphCanvasTest, MovingANodeLaysOutItsEdgesAtBothEndsOfEach)
{
    TToolNode* noise = Add("Noise", 100, 100);
    TToolNode* add = Add("Add", 300, 100);
    TToolNode* age = Add("Age", 500, 100);
    TToolEdge* in = Connect(noise, "Value", add, "A");
    TToolEdge* out = Connect(add, "Sum", age, "Age");
    add->SetPosition(310, 250);
    EXPECT_EQ(Scene().FindEdge(in)->GetCurve()[0], Output(noise, "Value"));
    EXPECT_EQ(Scene().FindEdge(in)->GetCurve()[3], Input(add, "A"));
    EXPECT_EQ(Scene().FindEdge(out)->GetCurve()[0], Output(add, "Sum"));
    EXPECT_EQ(Scene().FindEdge(out)->GetCurve()[3], Input(age, "Age"));
    Press(TitleOf(add));
    Drag(TitleOf(add) + TVector2(-40, 60));
    EXPECT_EQ(Scene().FindEdge(in)->GetCurve()[3], Input(add, "A"));
    EXPECT_EQ(Scene().FindEdge(out)->GetCurve()[0], Output(add, "Sum"));
    Canvas().CancelDrag();
    EXPECT_EQ(Scene().FindEdge(out)->GetCurve()[0], Output(add, "Sum"));
}

TEST_F(TGraphCanvasTest, EscapeEndsADragAsIfItHadNotBeen)
{
    TToolNode* node = Add("Noise", 100, 100);
    const int before = NumOperations();
    Press(TitleOf(node));
    Drag(TitleOf(node) + TVector2(30, 20));
    EXPECT_TRUE(Key(KEY_ESCAPE));
    EXPECT_EQ(Object(node).GetOrigin(), TVector2(100, 100));
    EXPECT_EQ(Host.Drag, nullptr);
    Release(TitleOf(node) + TVector2(30, 20));
    EXPECT_EQ(NumOperations(), before);
    EXPECT_FALSE(Key(KEY_ESCAPE));
}

TEST_F(TGraphCanvasTest, UndoDuringADragEndsIt)
{
    TToolNode* node = Add("Noise", 100, 100);
    Press(TitleOf(node));
    Drag(TitleOf(node) + TVector2(30, 20));
    Document.Undo();
    EXPECT_FALSE(Canvas().IsDragging());
    EXPECT_EQ(Host.Drag, nullptr);
    EXPECT_EQ(Scene().FindNode(node), nullptr);
    Document.Redo();
    EXPECT_EQ(Object(node).GetOrigin(), TVector2(100, 100));
}

TEST_F(TGraphCanvasTest, DeleteAndBackspaceDeleteTheSelection)
{
    for (int key : {KEY_DELETE, KEY_BACKSPACE}) {
        TToolNode* a = Add("Noise", 100, 100);
        TToolNode* b = Add("Age", 400, 100);
        TToolEdge* edge = Connect(a, "Value", b, "Age");
        Click(TitleOf(a));
        const int before = NumOperations();
        EXPECT_TRUE(Key(key));
        EXPECT_EQ(NumOperations(), before + 1);
        EXPECT_EQ(Scene().FindNode(a), nullptr);
        EXPECT_EQ(Scene().FindEdge(edge), nullptr);
        EXPECT_FALSE(InputPort(b, "Age").IsConnected());
        EXPECT_TRUE(Document.GetSelection().empty());
        Document.Undo();
        EXPECT_TRUE(InputPort(b, "Age").IsConnected());
        EXPECT_TRUE(OutputPort(a, "Value").IsConnected());
        EXPECT_EQ(Scene().FindEdge(edge)->GetStyle(), TToolEdgeRenderer::ES_NORMAL);
        EXPECT_EQ(Scene().FindEdge(edge)->GetCurve()[3], Input(b, "Age"));
        Document.Redo();
        EXPECT_FALSE(InputPort(b, "Age").IsConnected());
        Document.ClearSelection();
        Document.SelectNode(b, true);
        Key(key);
    }
}

TEST_F(TGraphCanvasTest, KeysStillReachTheCanvasAfterTheFocusedNodeHasGone)
{
    TToolNode* a = Add("Noise", 100, 100);
    TToolNode* b = Add("Age", 400, 100);
    Click(TitleOf(a));
    Key(KEY_DELETE);
    Document.SelectNode(b, true);
    EXPECT_TRUE(Key(KEY_DELETE));
    EXPECT_EQ(Document.GetGraph()->GetNumNodes(), 0);
}

TEST_F(TGraphCanvasTest, KeysReachTheCanvasThroughTheFocusedRoot)
{
    Document.SelectNode(Add("Noise", 100, 100), true);
    TRenderObject::SetFocus(&Scene().GetRoot(), &Renderer);
    EXPECT_FALSE(Key(KEY_LEFT));
    EXPECT_TRUE(Key(KEY_DELETE));
    EXPECT_EQ(Document.GetGraph()->GetNumNodes(), 0);
}

TEST_F(TGraphCanvasTest, DeleteWithNothingSelectedDoesNothing)
{
    Add("Noise", 100, 100);
    const int before = NumOperations();
    TRenderObject::SetFocus(&Scene().GetRoot(), &Renderer);
    EXPECT_FALSE(Key(KEY_DELETE));
    EXPECT_EQ(NumOperations(), before);
}

TEST_F(TGraphCanvasTest, TheRedrawNotificationRepaintsAllGraphViews)
{
    const int before = Host.NumRedraws;
    TRenderEvent event;
    event.Source = &Canvas();
    event.Code = RE_REDRAW;
    EXPECT_TRUE(Canvas().Event(event));
    EXPECT_EQ(Host.NumRedraws, before + 1);
}

TEST_F(TGraphCanvasTest, NodesThatWereUndoneAndForgottenLeaveNothingBehind)
{
    TToolNode* node = Add("Noise", 100, 100);
    Document.Undo();
    EXPECT_EQ(Scene().FindNode(node), nullptr);
    // Frees the first node; the next may lie where it was.
    for (int i = 0; i < 10; ++i) {
        TToolNode* other = Add("Grid", 10 * i, 50);
        EXPECT_EQ(Object(other).GetNumPorts(true), 3);
        EXPECT_EQ(Object(other).GetToolNode(), other);
        Document.Undo();
    }
}

TEST_F(TGraphCanvasTest, APastedPartComesWithItsEdges)
{
    TToolNode* a = Add("Noise", 100, 100);
    TToolNode* b = Add("Age", 400, 100);
    Connect(a, "Value", b, "Age");
    Document.SelectNode(b, true);
    Document.SelectNode(a, false);
    Document.CopySelection();
    Document.Paste();
    ASSERT_EQ(Document.GetGraph()->GetNumEdges(), 2);
    TToolEdge* edge = static_cast<TToolEdge*>(Document.GetGraph()->GetEdge(1));
    TToolNode* source = static_cast<TToolNode*>(edge->GetSrcNode());
    TToolNode* destination = static_cast<TToolNode*>(edge->GetDstNode());
    EXPECT_EQ(Scene().FindEdge(edge)->GetCurve()[0], Output(source, "Value"));
    EXPECT_EQ(Scene().FindEdge(edge)->GetCurve()[3], Input(destination, "Age"));
    EXPECT_TRUE(InputPort(destination, "Age").IsConnected());
    EXPECT_TRUE(Object(source).IsSelected());
}

TEST_F(TGraphCanvasTest, EdgesLieUnderAllNodes)
{
    TToolNode* a = Add("Noise", 100, 100);
    TToolNode* b = Add("Age", 400, 100);
    TToolEdge* edge = Connect(a, "Value", b, "Age");
    EXPECT_EQ(Canvas().GetObjects()[0], Scene().FindEdge(edge));
}

TEST_F(TGraphCanvasTest, EdgesGridAndSelectionBoxTakeNoHits)
{
    TToolNode* a = Add("Noise", 100, 100);
    TToolNode* b = Add("Age", 500, 100);
    TToolEdge* edge = Connect(a, "Value", b, "Age");
    const TVector2* curve = Scene().FindEdge(edge)->GetCurve();
    EXPECT_EQ(Scene().FindEdge(edge)->HitTest((curve[0] + curve[3]) * 0.5f), nullptr);
    EXPECT_EQ(Scene().GetRoot().HitTest((curve[0] + curve[3]) * 0.5f), &Canvas());
    TSelBoxRender box;
    box.Begin(TVector2(10, 40));
    EXPECT_EQ(box.GetDiagonal(), 0.0f);
    box.Extend(TVector2(-20, 80));
    EXPECT_EQ(box.GetDiagonal(), 50.0f);
    EXPECT_EQ(box.HitTest(TVector2(0, 50)), nullptr);
    TVector2 min;
    TVector2 max;
    box.GetBox(min, max);
    EXPECT_EQ(min, TVector2(-20, 40));
    EXPECT_EQ(max, TVector2(10, 80));
    TGridRender grid;
    EXPECT_EQ(grid.HitTest(TVector2(0, 0)), nullptr);
}

TEST_F(TGraphCanvasTest, ADragWhoseViewHasGoneEndsQuietly)
{
    TToolNode* node = Add("Noise", 100, 100);
    {
        TPlainWindow window;
        TRenderer other;
        other.Init(&window);
        TMessage message;
        message.Type = MT_LEFTDOWN;
        message.X = 130;
        message.Y = 107;
        TRenderObject::Route(other, Scene().GetRoot(), message);
        ASSERT_TRUE(Canvas().IsDragging());
    }
    Canvas().OnMouseMove(300, 300, MB_LEFT);
    EXPECT_FALSE(Canvas().IsDragging());
    EXPECT_EQ(Object(node).GetOrigin(), TVector2(100, 100));
}

TEST_F(TGraphCanvasTest, AViewThatGoesLeavesTheDragOfAnotherAlone)
{
    TToolNode* node = Add("Noise", 100, 100);
    Press(TitleOf(node));
    {
        TPlainWindow window;
        TRenderer other;
        other.Init(&window);
        TMessage message;
        message.Type = MT_MOUSEMOVE;
        TRenderObject::Route(other, Scene().GetRoot(), message);
    }
    Drag(TitleOf(node) + TVector2(30, 20));
    EXPECT_TRUE(Canvas().IsDragging());
    EXPECT_EQ(Object(node).GetOrigin(), TVector2(130, 120));
    Release(TitleOf(node) + TVector2(30, 20));
}

} // namespace
