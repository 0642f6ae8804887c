#include "graphwindowfixture.h"

#include "particles/cindermill/graph/operations/addgraphnodeop.h"

#include <QtGui/QKeyEvent>

TEST_F(GraphWindow, ShortcutsUndoAndRedo)
{
    Document->ApplyOperation(new TAddGraphNodeOp(*Document, App.Type("Gravity"), 0, 0));
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    Key(Graph(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 2);
    Key(Graph(), Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
}

TEST_F(GraphWindow, ShortcutsCopyCutAndPaste)
{
    Document->SelectNode(First, true);
    Key(Graph(), Qt::Key_C, Qt::ControlModifier);
    Key(Graph(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    Key(Graph(), Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 2);
}

TEST_F(GraphWindow, CtrlATakesAllNodesButNotWhileOneIsDragged)
{
    const int steps = Document->GetOperationStack()->GetNumOperations();
    Key(Graph(), Qt::Key_A, Qt::ControlModifier);
    ASSERT_EQ(Document->GetSelection().size(), 2);
    Key(Graph(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Document->GetSelection().size(), 2);
    EXPECT_EQ(Document->GetOperationStack()->GetNumOperations(), steps);
    Document->ClearSelection();
    const QPoint at = MiddleOf(*Document, First);
    Press(Graph(), at);
    Move(Graph(), at + QPoint(40, 0));
    Key(Graph(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Document->GetSelection().size(), 1);
    Release(Graph(), at + QPoint(40, 0));
}

TEST_F(GraphWindow, DeleteOfTheMenuIsTheKeyInTheView)
{
    const int steps = Document->GetOperationStack()->GetNumOperations();
    Document->SelectNode(First, true);
    View().GetTool().TakeFocus();
    Graph().PressDelete();
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 1);
    EXPECT_EQ(Document->GetOperationStack()->GetNumOperations(), steps + 1);
    Graph().PressDelete();
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 1);
}

TEST_F(GraphWindow, APasteOutOfSightMovesTheViewAndKeepsItsZoom)
{
    Document->SelectNode(First, true);
    Document->CopySelection();
    SetView(Graph(), -5000, 3000, 2);
    Document->Paste();
    TToolNode* pasted = Document->GetSelection()[0];
    EXPECT_EQ(pasted->GetX(), 210);
    EXPECT_EQ(pasted->GetY(), 210);
    EXPECT_EQ(Graph().GetView().GetScale(), TVector2(2, 2));
    const QPoint middle = MiddleOf(*Document, pasted);
    EXPECT_TRUE(Graph().GetHandle()->rect().contains(middle)) << middle.x() << " " << middle.y();
    // What is in sight, if only with a corner, moves nothing.
    SetView(Graph(), -225, -225, 2);
    Document->Paste();
    EXPECT_EQ(Offset(), TVector2(-225, -225));
}

TEST_F(GraphWindow, OfAPasteThatIsLargerThanTheViewThereIsSomethingInSight)
{
    AddNode(*Document, "Emitter", 90000, 90000);
    for (int i = 0; i < 3; ++i)
        Document->SelectNode(static_cast<TToolNode*>(Document->GetGraph()->GetNode(i)), false);
    Document->CopySelection();
    SetView(Graph(), 9000, 9000, 1);
    Document->Paste();
    bool seen = false;
    for (const TToolNode* node : Document->GetSelection())
        seen = seen || Graph().GetHandle()->rect().contains(MiddleOf(*Document, node));
    EXPECT_TRUE(seen);
    EXPECT_EQ(Graph().GetView().GetScale(), TVector2(1, 1));
}

TEST_F(GraphWindow, APasteMovesTheViewThatWasUsedLast)
{
    ASSERT_TRUE(Document->GetHost()->NewView(*Document));
    TGraphWindow& second = GraphOf(*Document, 1);
    Document->SelectNode(First, true);
    Document->CopySelection();
    for (TGraphWindow* graph : {&Graph(), &second})
        SetView(*graph, -5000, -5000, 1);
    ViewOf(*Document, 1).Activate();
    Document->Paste();
    EXPECT_EQ(Offset(), TVector2(-5000, -5000));
    EXPECT_NE(second.GetView().GetOffset(), TVector2(-5000, -5000));
}

TEST_F(GraphWindow, ShortcutsOfFilesActOnThisDocument)
{
    TDocument* other = NewDocument();
    ASSERT_EQ(App.Get().GetActiveDocument(), other);
    Host.Taken();
    Host.Choice = App.Path("shortcut.effect");
    Key(Graph(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Text(Document->GetPath()), Host.Choice);
    EXPECT_EQ(App.Get().GetActiveDocument(), Document);
    Host.Choice = App.Path("as.effect");
    Key(Graph(), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Text(Document->GetPath()), Host.Choice);
    Host.Choice = App.Path("shortcut.effect");
    Key(Graph(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(App.Get().GetDocuments().size(), 3);
    Key(Graph(), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(App.Get().GetDocuments().size(), 4);
}

// The way back and forth through many steps would be a key for each.
TEST_F(GraphWindow, HeldKeysOfUndoRedoAndPasteGoOn)
{
    Document->SelectNode(First, true);
    Document->CopySelection();
    const int before = Document->GetGraph()->GetNumNodes();
    HoldKey(Graph(), Qt::Key_V, 3, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), before + 3);
    HoldKey(Graph(), Qt::Key_Z, 2, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), before + 1);
    HoldKey(Graph(), Qt::Key_Y, 2, Qt::ControlModifier);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), before + 3);
}

TEST_F(GraphWindow, AHeldKeyMakesOneDocument)
{
    HoldKey(Graph(), Qt::Key_N, 3, Qt::ControlModifier);
    EXPECT_EQ(App.Get().GetDocuments().size(), 2);
}

TEST_F(GraphWindow, PrintableKeysLeaveTheGraphAlone)
{
    struct TShortcut
    {
        Qt::KeyboardModifiers With;
        const char* Keys;
    };
    const TShortcut told[] = {{Qt::NoModifier, " "},
                              {Qt::ShiftModifier, " "},
                              {Qt::ControlModifier, "ZYSONCVXAFGDBETM"},
                              {Qt::ControlModifier | Qt::ShiftModifier, "SFAD"}};
    const Qt::KeyboardModifiers with[] = {Qt::NoModifier,      Qt::ShiftModifier,
                                          Qt::ControlModifier, Qt::ControlModifier | Qt::ShiftModifier,
                                          Qt::KeypadModifier,  Qt::KeypadModifier | Qt::ControlModifier};
    const auto isTold = [&told](int key, Qt::KeyboardModifiers modifiers) {
        modifiers.setFlag(Qt::KeypadModifier, false);
        for (const TShortcut& shortcut : told)
            if (shortcut.With == modifiers && strchr(shortcut.Keys, key) != nullptr)
                return true;
        return false;
    };
    const QPoint at = MiddleOf(*Document, First);
    Press(Graph(), at);
    Release(Graph(), at);
    ASSERT_TRUE(IsSelected(First));
    const int steps = NumUndoSteps();
    Document->SelectNode(First, true);
    TRenderObject::SetFocus(WindowsOf(*Document).GetScene().FindNode(First), &Graph().GetRenderer());
    const TRenderObject* focus = TRenderObject::GetFocus();
    const TGraphView view = Graph().GetView();
    for (int key = Qt::Key_Space; key <= Qt::Key_ydiaeresis; ++key)
        for (const Qt::KeyboardModifiers modifiers : with) {
            if (!QChar::isPrint(static_cast<char32_t>(key)) || isTold(key, modifiers))
                continue;
            Type(Graph(), key, QString(QChar(key)), modifiers);
            ASSERT_EQ(Document->GetGraph()->GetNumNodes(), 2) << key << " " << int(modifiers);
            EXPECT_TRUE(IsSelected(First)) << key << " " << int(modifiers);
            EXPECT_EQ(NumSelected(), 1) << key << " " << int(modifiers);
            EXPECT_EQ(Graph().GetView(), view) << key << " " << int(modifiers);
            EXPECT_EQ(TRenderObject::GetFocus(), focus) << key << " " << int(modifiers);
        }
    EXPECT_EQ(App.Get().GetDocuments().size(), 1);
    EXPECT_EQ(NumUndoSteps(), steps);
    // It was within the keys' reach all the while.
    Document->SelectNode(First, true);
    Key(Graph(), Qt::Key_Delete);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 1);
}

TEST_F(GraphWindow, UndoOfTheFocusedNodeLeavesTheKeyboardWhereItWas)
{
    TDocument* other = NewDocument();
    ASSERT_NE(other, nullptr);
    AddNode(*other, "Gravity", 200, 200);
    Frame.BringToTop();
    TToolNode* node = AddNode(*Document, "Gravity", 500, 200);
    const QPoint at = MiddleOf(*Document, node);
    Press(Graph(), at);
    Release(Graph(), at);
    ASSERT_EQ(TRenderObject::GetFocus(), WindowsOf(*Document).GetScene().FindNode(node));
    ASSERT_TRUE(WaitFor([&] { return Graph().HasFocus(); }));
    const auto expectKeysHere = [&](const char* what) {
        Settle();
        EXPECT_TRUE(Graph().HasFocus()) << what;
        EXPECT_FALSE(GraphOf(*other).HasFocus()) << what;
        EXPECT_EQ(App.Get().GetActiveDocument(), Document) << what;
        EXPECT_EQ(other->GetGraph()->GetNumNodes(), 1) << what;
    };
    // The other view hears of the mouse and is painted while the keys go down.
    const auto undo = [&] {
        QWidget* keyboard = QApplication::focusWidget();
        ASSERT_NE(keyboard, nullptr);
        QTest::keyPress(keyboard, Qt::Key_Control);
        for (const TMessageType type : {MT_MOUSEMOVE, MT_PAINT}) {
            TMessage message;
            message.Type = type;
            GraphOf(*other).OnMessage(message);
        }
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Z, Qt::ControlModifier);
        QApplication::sendEvent(keyboard, &press);
        QTest::keyRelease(keyboard, Qt::Key_Control);
    };
    undo();
    undo();
    EXPECT_EQ(WindowsOf(*Document).GetScene().FindNode(node), nullptr);
    expectKeysHere("undo");
    undo();
    EXPECT_NE(Second->GetY(), 400);
    expectKeysHere("another undo");
    // The keys are the graph's again.
    EXPECT_EQ(TRenderObject::GetFocus(), &WindowsOf(*Document).GetScene().GetCanvas());
    Document->SelectNode(First, true);
    Key(Graph(), Qt::Key_Delete);
    EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 1);
    expectKeysHere("delete");
}
