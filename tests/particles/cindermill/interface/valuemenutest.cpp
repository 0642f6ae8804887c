#include "particles/cindermill/interface/valuemenu.h"

#include "docwindowfixture.h"
#include "support/fakecontrolhost.h"
#include "support/menutext.h"

#include "library/wimp/textclipboard.h"
#include "particles/cindermill/interface/controls/numberparametercontrols.h"
#include "particles/effectgraph/valueparameters.h"

#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

#include <memory>

namespace {

// The controls of a vector in a graph view, beside a node.
class ValueMenu : public DocWindows
{
protected:
    void SetUp() override
    {
        DocWindows::SetUp();
        Document = NewDocument();
        ASSERT_NE(Document, nullptr);
        Node = AddNode(*Document, "Gravity", 100, 300);
        const int port = Node->GetNodeType()->FindInput("Acceleration");
        ASSERT_NE(port, -1);
        Gravity = static_cast<TNodeValueParameter*>(Node->GetNodeType()->GetInput(port));
        Group.reset(CreateParameterControls(*Document, *Node, *Gravity, Host));
        ASSERT_NE(Group, nullptr);
        Group->SetOrigin(TVector2(120, 60));
        WindowsOf(*Document).GetScene().GetRoot().AddObject(Group.get());
        SetView(GraphOf(*Document), 0, 0, 1);
        Settle();
    }
    void TearDown() override
    {
        Group.reset();
        DocWindows::TearDown();
    }

    // Opens the menu over the place and chooses the entry, or closes it. What it held, with an asterisk where
    // an entry can be chosen.
    std::string RightClick(const QPoint& at, int entry = 0)
    {
        std::string texts;
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, [&] {
            QMenu* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu == nullptr)
                return;
            for (QAction* action : menu->actions()) {
                texts +=
                    (action->isEnabled() && !action->isSeparator() ? "*" : "") + ShownText(*action) + "\n";
                if (entry != 0 && action->objectName() == QStringLiteral("menu%1").arg(entry))
                    action->trigger();
            }
            menu->close();
        });
        watch.start(20);
        Press(GraphOf(*Document), at, Qt::RightButton);
        Release(GraphOf(*Document), at, Qt::RightButton);
        return texts;
    }
    QPoint OnLabel() { return QPoint(120 + static_cast<int>(Group->GetLabelRect()[0]) + 3, 70); }
    std::vector<float> Value() const
    {
        return std::vector<float>(Gravity->GetFloats(), Gravity->GetFloats() + 3);
    }
    int NumOps() const { return Document->GetOperationStack()->GetNumOperations(); }

    TDocument* Document = nullptr;
    TToolNode* Node = nullptr;
    TNodeValueParameter* Gravity = nullptr;
    TFakeControlHost Host;
    std::unique_ptr<TNodeParameterControls> Group;
};

TEST_F(ValueMenu, ARightClickOnControlsOpensTheMenuOfTheirValue)
{
    SetClipboardText("");
    const std::string nothing = "*Copy Value\nPaste Value\n\nReset to Default\n";
    EXPECT_EQ(RightClick(OnLabel()), nothing);
    // On a child too.
    EXPECT_EQ(RightClick(QPoint(160, 70)), nothing);
    SetClipboardText("1, 2, 3");
    Group->PasteValue("7, 8, 9");
    EXPECT_EQ(RightClick(OnLabel()), "*Copy Value\n*Paste Value\n\n*Reset to Default\n");
    // Beside the controls, the node's own menu.
    EXPECT_EQ(RightClick(MiddleOf(*Document, Node)).find("Copy"), std::string::npos);
}

TEST_F(ValueMenu, ItsEntriesCopyPasteAndResetTheValue)
{
    const std::vector<float> before = Value();
    const int numBefore = NumOps();
    SetClipboardText("1, 2, 3");
    RightClick(OnLabel(), VM_PASTE);
    EXPECT_EQ(Value(), (std::vector<float>{1, 2, 3}));
    EXPECT_EQ(NumOps(), numBefore + 1);
    Group->PasteValue("4, 5.5, 6");
    RightClick(OnLabel(), VM_COPY);
    TString text;
    EXPECT_TRUE(GetClipboardText(text));
    EXPECT_EQ(Text(text), "4, 5.5, 6");
    RightClick(OnLabel(), VM_RESET);
    EXPECT_EQ(Value(), before);
}

TEST_F(ValueMenu, WhatIsBeingTypedBelongsToTheValue)
{
    auto& numbers = static_cast<TNumberParameterControls&>(*Group);
    numbers.FocusField(1);
    TRenderEvent event;
    event.Source = &numbers.GetInput(1).GetEdit();
    event.Code = RE_CHARACTER;
    event.Detail = '8';
    numbers.GetInput(1).GetEdit().Event(event);
    RightClick(OnLabel(), VM_COPY);
    EXPECT_EQ(Value()[1], 8.0f);
    TString text;
    EXPECT_TRUE(GetClipboardText(text));
    EXPECT_NE(Text(text).find(", 8, "), std::string::npos);
}

TEST_F(ValueMenu, OfGroupsWithinGroupsTheInnermostIsMeant)
{
    EXPECT_EQ(FindControlsAt(WindowsOf(*Document).GetScene().GetRoot(), TVector2(160, 70)), Group.get());
    EXPECT_EQ(FindControlsAt(WindowsOf(*Document).GetScene().GetRoot(), TVector2(160, 20)), nullptr);
    EXPECT_FALSE(DoValueCommand(VM_RESET + 1, *Group));
}

} // namespace
