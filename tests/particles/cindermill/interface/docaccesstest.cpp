#include "docwindowfixture.h"

#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/nodetypelibrary.h"

#include <QtGui/QAccessible>
#include <QtGui/QImage>

namespace {

// What an assistive tool finds.
class DocAccess : public DocWindows
{
protected:
    static QAccessibleInterface& Of(const TWindow& window)
    {
        return *QAccessible::queryAccessibleInterface(window.GetHandle());
    }
    static std::string NameOf(QAccessibleInterface& item)
    {
        return item.text(QAccessible::Name).toStdString();
    }
    // Of a port, without what it is for.
    static std::string Told(QAccessibleInterface& port)
    {
        return port.text(QAccessible::Description).section(QStringLiteral(". "), 0, 0).toStdString();
    }
    static QAccessibleInterface* Find(QAccessibleInterface& parent, const std::string& name)
    {
        for (int i = 0; i < parent.childCount(); ++i)
            if (NameOf(*parent.child(i)) == name)
                return parent.child(i);
        return nullptr;
    }
    static void Press(QAccessibleInterface& item)
    {
        item.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    }
    std::string Selected(TDocument& document)
    {
        std::string names;
        for (const TToolNode* node : document.GetSelection())
            names += "[" + Text(node->GetNodeType()->Name) + "]";
        return names;
    }
};

} // namespace

TEST_F(DocAccess, TheNodesHaveNamesAndPlacesAndTheirPortsTellTheirWires)
{
    TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(document, nullptr);
    QAccessibleInterface& graph = Of(GraphOf(*document));
    EXPECT_EQ(NameOf(graph), "Graph");
    ASSERT_EQ(graph.childCount(), document->GetGraph()->GetNumNodes());
    QAccessibleInterface* gravity = Find(graph, "Gravity");
    ASSERT_NE(gravity, nullptr);
    EXPECT_EQ(gravity->role(), QAccessible::ListItem);
    EXPECT_FALSE(gravity->text(QAccessible::Description).isEmpty());
    EXPECT_EQ(gravity->parent(), &graph);
    QAccessibleInterface* input = Find(*gravity, "Input Velocity");
    ASSERT_NE(input, nullptr);
    EXPECT_EQ(Told(*input), "Vector3, wired from Velocity Cone, Velocity");
    QAccessibleInterface* open = Find(*gravity, "Input Acceleration");
    ASSERT_NE(open, nullptr);
    EXPECT_EQ(Told(*open), "Vector3, not wired");
    QAccessibleInterface* output = Find(*gravity, "Output Velocity");
    ASSERT_NE(output, nullptr);
    EXPECT_EQ(Told(*output), "Vector3, wired to Integrate, Velocity");
    // Where they are seen.
    EXPECT_TRUE(graph.rect().contains(gravity->rect()));
    EXPECT_TRUE(gravity->rect().intersects(input->rect()));
    const QPoint middle = input->rect().center();
    EXPECT_EQ(graph.childAt(middle.x(), middle.y()), input);
    EXPECT_EQ(graph.childAt(graph.rect().right() + 1, middle.y()), nullptr);
    // What stands where in which list.
    for (int i = 0; i < graph.childCount(); ++i)
        EXPECT_EQ(graph.indexOfChild(graph.child(i)), i);
    EXPECT_EQ(graph.indexOfChild(input), -1);
    for (int i = 0; i < gravity->childCount(); ++i)
        EXPECT_EQ(gravity->indexOfChild(gravity->child(i)), i);
    EXPECT_NE(gravity->indexOfChild(input), -1);
    EXPECT_EQ(gravity->indexOfChild(gravity), -1);
}

TEST_F(DocAccess, ANodeIsSelectedByIt)
{
    TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(document, nullptr);
    QAccessibleInterface& graph = Of(GraphOf(*document));
    QAccessibleInterface* gravity = Find(graph, "Gravity");
    ASSERT_NE(gravity, nullptr);
    EXPECT_FALSE(gravity->state().selected);
    Press(*gravity);
    EXPECT_TRUE(gravity->state().selected);
    EXPECT_EQ(Selected(*document), "[Gravity]");
    QAccessibleInterface* age = Find(graph, "Age");
    ASSERT_NE(age, nullptr);
    Press(*age);
    EXPECT_EQ(Selected(*document), "[Age]");
    const int before = graph.childCount();
    GraphOf(*document).PressDelete();
    EXPECT_EQ(graph.childCount(), before - 1);
    EXPECT_EQ(Find(graph, "Age"), nullptr);
}

TEST_F(DocAccess, TheTabsAreFoundAndShowTheirGroups)
{
    TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(document, nullptr);
    QAccessibleInterface& tabs = Of(ViewOf(*document).GetHeader());
    ASSERT_EQ(tabs.childCount(), 2);
    EXPECT_EQ(NameOf(*tabs.child(0)), "All");
    EXPECT_EQ(tabs.child(0)->role(), QAccessible::PageTab);
    SetView(GraphOf(*document), 50000, 50000, 1);
    Press(*tabs.child(0));
    EXPECT_LT(fabs(GraphOf(*document).GetView().GetOffset()[0]), 40000);
}

TEST_F(DocAccess, ATypeOfThePaletteBecomesANode)
{
    TDocument* document = NewDocument();
    ASSERT_NE(document, nullptr);
    QAccessibleInterface& palette = Of(ViewOf(*document).GetTool());
    QAccessibleInterface* forces = Find(palette, "Forces");
    ASSERT_NE(forces, nullptr);
    EXPECT_EQ(forces->role(), QAccessible::List);
    QAccessibleInterface* gravity = Find(*forces, "Gravity");
    ASSERT_NE(gravity, nullptr);
    EXPECT_FALSE(gravity->text(QAccessible::Description).isEmpty());
    Press(*forces);
    EXPECT_EQ(document->GetGraph()->GetNumNodes(), 0);
    Press(*gravity);
    ASSERT_EQ(document->GetGraph()->GetNumNodes(), 1);
    EXPECT_EQ(Text(document->GetGraph()->GetNode(0)->GetNodeType()->Name), "Gravity");
    EXPECT_TRUE(document->CanUndo());
}

TEST_F(DocAccess, TheNodesAreWalkedByKeysFromLeftToRightAndBack)
{
    TDocument* document = NewDocument();
    ASSERT_NE(document, nullptr);
    AddNode(*document, "Integrate", 600, 0);
    AddNode(*document, "Age", 0, 300);
    AddNode(*document, "Gravity", 0, 0);
    TGraphWindow& graph = GraphOf(*document);
    Frame.BringToTop();
    graph.TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return graph.HasFocus(); }));
    const char* const order[] = {"[Gravity]", "[Age]", "[Integrate]"};
    document->ClearSelection();
    for (const char* name : order) {
        Key(graph, Qt::Key_PageDown, Qt::ControlModifier);
        EXPECT_EQ(Selected(*document), name);
    }
    // It ends there.
    Key(graph, Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(Selected(*document), order[2]);
    Key(graph, Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(Selected(*document), order[1]);
    document->ClearSelection();
    Key(graph, Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(Selected(*document), order[2]);
    // Whoever is walked to is seen.
    SetView(graph, 50000, 50000, 1);
    Key(graph, Qt::Key_PageUp, Qt::ControlModifier);
    const TVector2 min = graph.PixelToWorld(0, 0);
    EXPECT_GT(0, min[0]);
    EXPECT_GT(min[0], -3000);
}

// Once each, and only where something may be done.
TEST_F(DocAccess, WhatMayNotBeDoneRedrawsNothing)
{
    TDocument* document = NewDocument();
    ASSERT_NE(document, nullptr);
    AddNode(*document, "Gravity", 0, 0);
    TGraphWindow& graph = GraphOf(*document);
    QAccessibleInterface* node = Find(Of(graph), "Gravity");
    ASSERT_NE(node, nullptr);
    QAccessibleInterface* properties = Find(*node, "Properties");
    ASSERT_NE(properties, nullptr);
    Press(*node);
    SetView(graph, 100, 100, 1);
    const unsigned before = graph.GetContentsRevision();
    // A node has no value.
    node->setText(QAccessible::Value, "5");
    DocWindows::Press(graph, QPoint(5, 5));
    ASSERT_NE(TWimp::Get().GetMouseDrag(), nullptr);
    const unsigned dragged = graph.GetContentsRevision();
    Press(*properties);
    properties->setText(QAccessible::Value, "5");
    EXPECT_EQ(graph.GetContentsRevision(), dragged);
    EXPECT_FALSE(properties->state().checked);
    Release(graph, QPoint(5, 5));
    EXPECT_LE(dragged, before + 3);
}

TEST_F(DocAccess, TheNodeThatIsWalkedToHasTheKeys)
{
    TDocument* document = NewDocument();
    ASSERT_NE(document, nullptr);
    AddNode(*document, "Gravity", 0, 0);
    AddNode(*document, "Age", 300, 0);
    document->ClearSelection();
    TGraphWindow& graph = GraphOf(*document);
    Frame.BringToTop();
    graph.TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return graph.HasFocus(); }));
    EXPECT_EQ(Of(graph).focusChild(), &Of(graph));
    for (const char* name : {"Gravity", "Age"}) {
        Key(graph, Qt::Key_PageDown, Qt::ControlModifier);
        ASSERT_NE(Of(graph).focusChild(), nullptr);
        EXPECT_EQ(NameOf(*Of(graph).focusChild()), name);
    }
}

TEST_F(DocAccess, WindowsThatGoAreAskedNothing)
{
    TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(document, nullptr);
    QAccessibleInterface& graph = Of(GraphOf(*document));
    EXPECT_GT(graph.childCount(), 0);
    graph.child(0)->text(QAccessible::Name);
    App.Get().CloseDocument(document);
    Settle();
    EXPECT_TRUE(App.Get().GetDocuments().empty());
}

TEST_F(DocAccess, F6LeadsThroughThePartsOfTheWindowAndEscapeBackToTheGraph)
{
    TDocument* document = NewDocument();
    ASSERT_NE(document, nullptr);
    TDocWindow& view = ViewOf(*document);
    TGraphWindow& graph = GraphOf(*document);
    Frame.BringToTop();
    graph.TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return graph.HasFocus(); }));
    // No problems are shown.
    TWindow* const parts[] = {&graph, &view.GetTool(), &view.GetHeader(), &graph};
    for (int i = 1; i < 4; ++i) {
        const QImage before = parts[i]->GetHandle()->grab().toImage();
        Key(*parts[i - 1], Qt::Key_F6);
        ASSERT_TRUE(parts[i]->HasFocus()) << i;
        if (parts[i] != &graph) {
            EXPECT_NE(parts[i]->GetHandle()->grab().toImage(), before) << i;
        }
    }
    for (int i = 3; i > 0; --i) {
        Key(*parts[i], Qt::Key_F6, Qt::ShiftModifier);
        ASSERT_TRUE(parts[i - 1]->HasFocus()) << i;
    }
    for (TWindow* part : {static_cast<TWindow*>(&view.GetTool()), static_cast<TWindow*>(&view.GetHeader())}) {
        part->TakeFocus();
        Key(*part, Qt::Key_Escape);
        EXPECT_TRUE(graph.HasFocus());
    }
    // The preview, which offers its keys here, has a use of its own for this one.
    graph.GetHandle()->clearFocus();
    EXPECT_FALSE(view.WalkPanes(1));
    EXPECT_FALSE(view.GetTool().HasFocus());
}

TEST_F(DocAccess, ThePaletteIsWalkedAndUsedByKeys)
{
    TDocument* document = NewDocument();
    ASSERT_NE(document, nullptr);
    TDocTool& tool = ViewOf(*document).GetTool();
    const vector<TPaletteRow>& rows = tool.GetPalette().GetRows();
    QAccessibleInterface& palette = Of(tool);
    Frame.BringToTop();
    tool.TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return tool.HasFocus(); }));
    ASSERT_NE(palette.focusChild(), nullptr);
    EXPECT_EQ(palette.focusChild(), palette.child(0));
    // A category is closed and opened; the first of its types becomes a node.
    const int all = rows.size();
    ASSERT_EQ(rows[0].Type, -1);
    Key(tool, Qt::Key_Left);
    EXPECT_LT(rows.size(), all);
    Key(tool, Qt::Key_Right);
    EXPECT_EQ(rows.size(), all);
    Key(tool, Qt::Key_Return);
    EXPECT_LT(rows.size(), all);
    Key(tool, Qt::Key_Return);
    int type = 0;
    for (; rows[type].Type == -1; ++type)
        Key(tool, Qt::Key_Down);
    EXPECT_EQ(tool.GetMarked(), type);
    Key(tool, Qt::Key_Return);
    ASSERT_EQ(document->GetGraph()->GetNumNodes(), 1);
    const std::string name = Text(App.Get().GetNodeTypes().GetType(rows[type].Type)->Name);
    EXPECT_EQ(Text(document->GetGraph()->GetNode(0)->GetNodeType()->Name), name);
    EXPECT_EQ(NameOf(*palette.focusChild()), name);
    Key(tool, Qt::Key_Left);
    EXPECT_EQ(tool.GetMarked(), rows[type].Parent);
    // The mark is in sight at both ends.
    for (const int key : {int(Qt::Key_End), int(Qt::Key_Home)}) {
        Key(tool, key);
        const int top = rows[tool.GetMarked()].Top - tool.GetScroll();
        EXPECT_GE(top, 0);
        EXPECT_LE(top + TPalette::RowHeight, tool.GetListHeight());
        EXPECT_EQ(tool.GetMarked(), key == Qt::Key_End ? rows.size() - 1 : 0);
    }
    // What is typed marks what it finds.
    QAccessibleInterface& field = *palette.child(palette.childCount() - 1);
    EXPECT_EQ(NameOf(field), "Filter");
    field.setText(QAccessible::Value, "gravity");
    EXPECT_EQ(NameOf(*palette.focusChild()), "Gravity");
    Key(tool, Qt::Key_Return);
    EXPECT_EQ(document->GetGraph()->GetNumNodes(), 2);
    Key(tool, Qt::Key_Escape);
    EXPECT_EQ(rows.size(), all);
    EXPECT_TRUE(tool.HasFocus());
}

TEST_F(DocAccess, TheTabsAreWalkedAndPressedByKeys)
{
    TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(document, nullptr);
    TDocGraphHeader& header = ViewOf(*document).GetHeader();
    QAccessibleInterface& tabs = Of(header);
    EXPECT_EQ(tabs.role(), QAccessible::PageTabList);
    Frame.BringToTop();
    header.TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return header.HasFocus(); }));
    const auto isFar = [&] { return fabs(GraphOf(*document).GetView().GetOffset()[0]) > 40000; };
    EXPECT_EQ(tabs.focusChild(), tabs.child(0));
    SetView(GraphOf(*document), 50000, 50000, 1);
    Type(header, Qt::Key_Space, " ", Qt::NoModifier);
    EXPECT_FALSE(isFar());
    Key(header, Qt::Key_Right);
    EXPECT_EQ(tabs.focusChild(), tabs.child(1));
    Key(header, Qt::Key_Right);
    EXPECT_EQ(tabs.focusChild(), tabs.child(1));
    SetView(GraphOf(*document), 50000, 50000, 1);
    Key(header, Qt::Key_Return);
    EXPECT_FALSE(isFar());
    Key(header, Qt::Key_Home);
    EXPECT_EQ(tabs.focusChild(), tabs.child(0));
}
