#include "graphwindowfixture.h"

#include "particles/effectgraph/nodetypelibrary.h"

#include <QtGui/QClipboard>
#include <QtWidgets/QToolTip>

namespace {

class PaletteFilter : public GraphWindow
{
protected:
    TDocTool& Tool() { return View().GetTool(); }
    std::vector<std::string> Types()
    {
        const TNodeTypeLibrary& library = App.Get().GetNodeTypes();
        std::vector<std::string> names;
        for (const TPaletteRow& row : Tool().GetPalette().GetRows())
            if (row.Type != -1)
                names.push_back(library.GetType(row.Type)->Name.Print());
        return names;
    }
    void TypeText(const char* text)
    {
        for (; *text != 0; ++text)
            Type(Tool(), Qt::Key_unknown, QString(QLatin1Char(*text)), Qt::NoModifier);
    }
};

} // namespace

TEST_F(PaletteFilter, WhatIsTypedIntoThePaletteLeavesWhatItFinds)
{
    const size_t all = Types().size();
    const QPoint field(30, Tool().GetHandle()->height() - 8);
    Press(Tool(), field);
    Release(Tool(), field);
    TypeText("noi");
    EXPECT_EQ(Text(Tool().GetFilter()), "noi");
    EXPECT_EQ(Types(), std::vector<std::string>{"Noise"});
    // Its category stands above it.
    ASSERT_EQ(Tool().GetPalette().GetRows().size(), 2);
    EXPECT_EQ(Tool().GetPalette().GetRows()[0].Type, -1);
    Key(Tool(), Qt::Key_Backspace);
    TypeText("xyz");
    EXPECT_TRUE(Types().empty());
    Key(Tool(), Qt::Key_Escape);
    EXPECT_EQ(Text(Tool().GetFilter()), "");
    EXPECT_EQ(Types().size(), all);
}

TEST_F(PaletteFilter, LettersOfAnyScriptAreTypedAndErasedWhole)
{
    for (const char* letter : {"h", "\xC3\xB6", "\xE6\x97\xA5", "\xF0\x9F\x94\xA5"})
        Type(Tool(), Qt::Key_unknown, QString::fromUtf8(letter), Qt::NoModifier);
    EXPECT_EQ(Text(Tool().GetFilter()), "h\xC3\xB6\xE6\x97\xA5\xF0\x9F\x94\xA5");
    for (const char* left : {"h\xC3\xB6\xE6\x97\xA5", "h\xC3\xB6", "h", ""}) {
        Key(Tool(), Qt::Key_Backspace);
        EXPECT_EQ(Text(Tool().GetFilter()), left);
    }
}

TEST_F(PaletteFilter, AfterCtrlAWhatIsTypedOrErasedStandsForAllOfIt)
{
    TypeText("noi");
    Key(Tool(), Qt::Key_Delete);
    EXPECT_EQ(Text(Tool().GetFilter()), "noi");
    Key(Tool(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Text(Tool().GetFilter()), "noi");
    TypeText("da");
    EXPECT_EQ(Text(Tool().GetFilter()), "da");
    for (const int key : {Qt::Key_Delete, Qt::Key_Backspace}) {
        TypeText("mp");
        Key(Tool(), Qt::Key_A, Qt::ControlModifier);
        Key(Tool(), key);
        EXPECT_EQ(Text(Tool().GetFilter()), "");
    }
    Key(Tool(), Qt::Key_A, Qt::ControlModifier);
    TypeText("noi");
    EXPECT_EQ(Text(Tool().GetFilter()), "noi");
}

TEST_F(PaletteFilter, WhatIsFoldedShowsItsFindsAndIsFoldedAfterwards)
{
    const TPaletteRow category = Tool().GetPalette().GetRows()[0];
    const QPoint box(category.Indent + 4, category.Top + 10);
    Press(Tool(), box);
    Release(Tool(), box);
    const size_t folded = Types().size();
    const std::string first = Text(App.Get().GetNodeTypes().GetType(0)->Name);
    TypeText(first.c_str());
    EXPECT_FALSE(Types().empty());
    EXPECT_EQ(Types()[0], first);
    // What would be folded could not be seen.
    Press(Tool(), box);
    Release(Tool(), box);
    Key(Tool(), Qt::Key_Escape);
    EXPECT_EQ(Types().size(), folded);
}

TEST_F(PaletteFilter, ATypeIsDraggedOutOfWhatWasFound)
{
    const QPoint field(30, Tool().GetHandle()->height() - 8);
    Press(Tool(), field);
    Release(Tool(), field);
    TypeText("turbu");
    ASSERT_EQ(Types().size(), 1u);
    const TPaletteRow row = Tool().GetPalette().GetRows()[1];
    const QPoint at(60, row.Top + 10);
    const QPoint to = InWindow(Graph(), QPoint(500, 400), Tool());
    Drag(Tool(), at, to);
    ASSERT_EQ(Document->GetGraph()->GetNumNodes(), 3);
    EXPECT_EQ(Text(Document->GetGraph()->GetNode(2)->GetNodeType()->Name), "Turbulence");
}

// What has just been brought is what one goes on with.
TEST_F(PaletteFilter, ATypeThatIsDroppedIsWhatIsSelectedThen)
{
    Document->SelectNode(First, true);
    TypeText("turbu");
    const TPaletteRow row = Tool().GetPalette().GetRows()[1];
    Drag(Tool(), QPoint(60, row.Top + 10), InWindow(Graph(), QPoint(500, 400), Tool()));
    ASSERT_EQ(Document->GetSelection().size(), 1);
    EXPECT_EQ(Document->GetSelection()[0], Document->GetGraph()->GetNode(2));
}

TEST_F(PaletteFilter, TypesAddedByKeyStandNotUponEachOther)
{
    TypeText("turbu");
    for (int i = 0; i < 3; ++i)
        Key(Tool(), Qt::Key_Return);
    ASSERT_EQ(Document->GetGraph()->GetNumNodes(), 5);
    ASSERT_EQ(Document->GetSelection().size(), 1);
    EXPECT_EQ(Document->GetSelection()[0], Document->GetGraph()->GetNode(4));
    for (int i = 2; i < 4; ++i) {
        const TToolNode& node = *static_cast<const TToolNode*>(Document->GetGraph()->GetNode(i));
        const TToolNode& next = *static_cast<const TToolNode*>(Document->GetGraph()->GetNode(i + 1));
        EXPECT_GE(next.GetX(), node.GetX() + 10);
        EXPECT_GE(next.GetY(), node.GetY() + 10);
    }
}

TEST_F(PaletteFilter, TheFilterHasAMenuForTheClipboard)
{
    const QPoint field(30, Tool().GetHandle()->height() - 8);
    const auto choose = [&](const char* entry) {
        std::string enabled;
        MeetMenu([&](QMenu& menu) {
            for (QAction* action : menu.actions()) {
                const std::string text = ShownText(*action);
                if (action->isEnabled() && !action->isSeparator())
                    enabled += text.substr(0, text.find('\t')) + "|";
                if (text.rfind(entry, 0) == 0)
                    action->trigger();
            }
            menu.close();
        });
        Press(Tool(), field, Qt::RightButton);
        Release(Tool(), field, Qt::RightButton);
        return enabled;
    };
    QApplication::clipboard()->setText("noi");
    EXPECT_EQ(choose("Paste"), "Paste|");
    EXPECT_EQ(Types(), std::vector<std::string>{"Noise"});
    EXPECT_EQ(choose("Cut"), "Cut|Copy|Paste|Select All|");
    EXPECT_EQ(Text(Tool().GetFilter()), "");
    EXPECT_GT(Types().size(), 10u);
    EXPECT_EQ(QApplication::clipboard()->text(), QString("noi"));
    TypeText("turbu");
    choose("Copy");
    EXPECT_EQ(QApplication::clipboard()->text(), QString("turbu"));
    choose("Select All");
    TypeText("noi");
    EXPECT_EQ(Text(Tool().GetFilter()), "noi");
    // By keys it is the text that was marked.
    Key(Tool(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QString("turbu"));
    Key(Tool(), Qt::Key_A, Qt::ControlModifier);
    Key(Tool(), Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QString("noi"));
    EXPECT_EQ(Text(Tool().GetFilter()), "");
    // And the menu too.
    MeetMenu([&](QMenu& menu) { menu.close(); });
    Key(Tool(), Qt::Key_Menu);
}

// A click on a category must not keep Ctrl+S and Ctrl+Z from the effect.
TEST_F(PaletteFilter, TheKeysOfTheMenusAreTheGraphsWhereTheFilterHasNoUseForThem)
{
    TWindow* const panes[] = {&Tool(), &View().GetHeader()};
    for (TWindow* pane : panes) {
        Key(*pane, Qt::Key_A, Qt::ControlModifier);
        EXPECT_EQ(NumSelected(), 2);
        Key(*pane, Qt::Key_C, Qt::ControlModifier);
        // Copied nodes are on the clipboard as text too, which is no filter.
        QApplication::clipboard()->setText("cindermill effect 1\n");
        Key(*pane, Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 4);
        EXPECT_EQ(Text(Tool().GetFilter()), "");
        Key(*pane, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(Document->GetGraph()->GetNumNodes(), 2);
        Document->ClearSelection();
    }
    // What is only copied leaves the list where it is.
    TypeText("a");
    for (int i = 0; i < 3; ++i)
        Key(Tool(), Qt::Key_Down);
    const int marked = Tool().GetMarked();
    Key(Tool(), Qt::Key_A, Qt::ControlModifier);
    Key(Tool(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(Tool().GetMarked(), marked);
    Key(Tool(), Qt::Key_Escape);
    TypeText("noi");
    Key(Tool(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(NumSelected(), 0);
    Key(Tool(), Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(Text(Tool().GetFilter()), "");
    Key(Tool(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Text(Tool().GetFilter()), "noi");
}

TEST_F(PaletteFilter, ThePointerAtRestIsToldWhatATypeIsFor)
{
    int row = 0;
    while (Tool().GetPalette().GetRows()[row].Type == -1)
        ++row;
    const TPaletteRow& shown = Tool().GetPalette().GetRows()[row];
    Move(Tool(), QPoint(60, shown.Top + 10), Qt::NoButton);
    ASSERT_TRUE(WaitFor([] { return QToolTip::isVisible(); }));
    const TNodeType& type = *App.Get().GetNodeTypes().GetType(shown.Type);
    EXPECT_NE(QToolTip::text().toStdString().find(type.Name.Print()), std::string::npos);
    EXPECT_NE(QToolTip::text().toStdString().find(type.Description.Print()), std::string::npos);
    Press(Tool(), QPoint(60, shown.Top + 10));
    EXPECT_TRUE(WaitFor([] { return !QToolTip::isVisible(); }));
    Release(Tool(), QPoint(60, shown.Top + 10));
}
