#include "docwindowfixture.h"

#include "library/wimp/accessiblecontents.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/panelaccess.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/nodetypelibrary.h"

#include <QtGui/QAccessible>

#include <set>

namespace {

// What an assistive tool finds of open panels, and what it is told.
class PanelAccess : public DocWindows
{
protected:
    struct TTold
    {
        TAccessibleChange Change;
        std::string Name;
        std::string Value;
    };

    void SetUp() override
    {
        DocWindows::SetUp();
        Document = NewDocument();
        ASSERT_NE(Document, nullptr);
        Told.clear();
        SetAccessibleHook(&PanelAccess::Hear);
    }
    void TearDown() override
    {
        SetAccessibleHook(nullptr);
        DocWindows::TearDown();
    }
    static void Hear(const TAccessibleItem& item, TAccessibleChange change)
    {
        Told.push_back({change, Text(item.Name), Text(item.Value)});
    }
    QAccessibleInterface& Graph()
    {
        return *QAccessible::queryAccessibleInterface(GraphOf(*Document).GetHandle());
    }
    TToolNode* Open(const char* type)
    {
        TToolNode* node = AddNode(*Document, type, 100, 100);
        WindowsOf(*Document).GetScene().FindNode(node)->ToggleOpen();
        return node;
    }
    static QAccessibleInterface* Find(QAccessibleInterface& parent, const std::string& name)
    {
        for (int i = 0; i < parent.childCount(); ++i) {
            if (parent.child(i)->text(QAccessible::Name).toStdString() == name)
                return parent.child(i);
            if (QAccessibleInterface* found = Find(*parent.child(i), name))
                return found;
        }
        return nullptr;
    }
    QAccessibleInterface& Item(const std::string& name)
    {
        QAccessibleInterface* item = Find(Graph(), name);
        if (item == nullptr)
            throw std::runtime_error("no item " + name);
        return *item;
    }
    static void Do(QAccessibleInterface& item, const QString& action)
    {
        item.actionInterface()->doAction(action);
    }
    // What folds open in a panel: groups, colours, transforms.
    static void OpenAll(TNodeExp& panel)
    {
        std::set<const TRenderObject*> pressed;
        for (bool found = true; found;) {
            found = false;
            vector<TPanelControl> controls;
            ListPanelControls(panel, controls);
            for (const TPanelControl& control : controls) {
                const bool opens = control.Traits.IsCheckable && !control.Traits.IsChecked;
                if (!opens || !pressed.insert(control.Object).second)
                    continue;
                control.Object->Activate();
                found = true;
                break;
            }
        }
    }
    void Idle()
    {
        TWindow::TellContents();
        Told.clear();
    }
    TDocument* Document = nullptr;
    static inline std::vector<TTold> Told;
};

} // namespace

TEST_F(PanelAccess, EveryControlOfEveryKindOfNodeHasANameAndARole)
{
    const TNodeTypeLibrary& library = App.Get().GetNodeTypes();
    std::set<int> roles;
    int controls = 0;
    for (int i = 0; i < library.GetNumTypes(); ++i) {
        TToolNode* node = Open(library.GetType(i)->Name);
        TNodeObj* object = WindowsOf(*Document).GetScene().FindNode(node);
        OpenAll(object->GetExpanded());
        QAccessibleInterface* item = Find(Graph(), Text(node->GetNodeType()->Name));
        ASSERT_NE(item, nullptr);
        for (int k = 0; k < item->childCount(); ++k) {
            QAccessibleInterface& child = *item->child(k);
            EXPECT_FALSE(child.text(QAccessible::Name).trimmed().isEmpty())
                << Text(node->GetNodeType()->Name) << " " << k;
            EXPECT_NE(child.role(), QAccessible::NoRole);
            EXPECT_NE(child.role(), QAccessible::ListItem);
            EXPECT_TRUE(child.rect().isValid()) << child.text(QAccessible::Name).toStdString();
            if (child.state().editable || child.role() == QAccessible::SpinBox) {
                EXPECT_TRUE(child.state().focusable || child.state().readOnly);
            }
            roles.insert(child.role());
            ++controls;
        }
        Document->SelectNode(node, true);
        WindowsOf(*Document).GetWindow(0)->GetGraph().PressDelete();
    }
    EXPECT_GT(controls, 300);
    for (const QAccessible::Role role :
         {QAccessible::SpinBox, QAccessible::ComboBox, QAccessible::CheckBox, QAccessible::Button,
          QAccessible::Chart, QAccessible::ColorChooser, QAccessible::Graphic})
        EXPECT_EQ(roles.count(role), 1u) << role;
}

TEST_F(PanelAccess, ANumberHasItsValueAndTakesAnother)
{
    Open("Gravity");
    QAccessibleInterface& y = Item("Acceleration Y");
    ASSERT_EQ(y.role(), QAccessible::SpinBox);
    ASSERT_NE(y.valueInterface(), nullptr);
    const double before = y.valueInterface()->currentValue().toDouble();
    Idle();
    y.valueInterface()->setCurrentValue(before + 2.5);
    EXPECT_EQ(y.valueInterface()->currentValue().toDouble(), before + 2.5);
    // An edit like any other, and told as one.
    EXPECT_TRUE(Document->CanUndo());
    TWindow::TellContents();
    ASSERT_EQ(Told.size(), 1u);
    EXPECT_EQ(Told[0].Change, AC_VALUE);
    EXPECT_EQ(Told[0].Name, "Acceleration Y");
    Told.clear();
    Document->Undo();
    TWindow::TellContents();
    ASSERT_EQ(Told.size(), 1u);
    EXPECT_EQ(Told[0].Name, "Acceleration Y");
    EXPECT_EQ(y.valueInterface()->currentValue().toDouble(), before);
    // What is no number changes nothing.
    y.setText(QAccessible::Value, "fast");
    EXPECT_EQ(y.valueInterface()->currentValue().toDouble(), before);
    // Nothing has changed: nothing is told.
    Told.clear();
    GraphOf(*Document).Redraw();
    TWindow::TellContents();
    EXPECT_TRUE(Told.empty());
}

TEST_F(PanelAccess, TheKeysGoToAControlByItsName)
{
    Open("Gravity");
    Frame.BringToTop();
    GraphOf(*Document).TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return GraphOf(*Document).HasFocus(); }));
    Idle();
    Do(Item("Acceleration Z"), QAccessibleActionInterface::setFocusAction());
    ASSERT_NE(TTextEdit::GetFocused(), nullptr);
    EXPECT_TRUE(Item("Acceleration Z").state().focused);
    TWindow::TellContents();
    ASSERT_FALSE(Told.empty());
    EXPECT_EQ(Told[0].Change, AC_FOCUS);
    EXPECT_EQ(Told[0].Name, "Acceleration Z");
    // Tab goes on from there.
    Key(GraphOf(*Document), Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_TRUE(Item("Acceleration Y").state().focused);
}

TEST_F(PanelAccess, TheBoxAndTheButtonOfANodeArePressed)
{
    TToolNode* node = AddNode(*Document, "Gravity", 100, 100);
    QAccessibleInterface& properties = Item("Properties");
    EXPECT_FALSE(properties.state().checked);
    EXPECT_EQ(Find(Graph(), "Acceleration X"), nullptr);
    Do(properties, QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(Item("Properties").state().checked);
    EXPECT_NE(Find(Graph(), "Acceleration X"), nullptr);
    EXPECT_FALSE(Item("Bypass").state().checked);
    Do(Item("Bypass"), QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(Item("Bypass").state().checked);
    EXPECT_TRUE(node->GetNodeType()->IsBypassed());
}
