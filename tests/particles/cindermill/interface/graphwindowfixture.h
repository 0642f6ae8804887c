#pragma once

#include "docwindowfixture.h"
#include "support/menutext.h"

#include "library/system/clock.h"

#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

constexpr int PanLeft = 0;
constexpr int PanMiddle = 1;
constexpr int PanRight = 2;

// A document with two nodes in a view at scale 1.
class GraphWindow : public DocWindows
{
protected:
    void SetUp() override
    {
        DocWindows::SetUp();
        Document = NewDocument();
        ASSERT_NE(Document, nullptr);
        First = AddNode(*Document, "Emitter", 200, 200);
        Second = AddNode(*Document, "Gravity", 200, 400);
        SetView(Graph(), 0, 0, 1);
        Settle();
    }
    TGraphWindow& Graph() { return GraphOf(*Document); }
    TDocWindow& View() { return ViewOf(*Document); }
    TVector2 Offset() { return Graph().GetView().GetOffset(); }
    // Milliseconds, and what an idle pass does then.
    void Pass(uint32_t time)
    {
        Clock.Set(GetTickCount() + time);
        Document->OnIdle();
    }
    bool IsSelected(const TToolNode* node) const
    {
        return Document->GetSelection().index_of(const_cast<TToolNode*>(node)) != -1;
    }
    int NumSelected() const { return Document->GetSelection().size(); }
    void SetPanButton(int button) { App.Get().GetSettings().SetGraphPanButton(button); }
    int NumUndoSteps() const
    {
        int steps = 0;
        while (Document->CanUndo()) {
            Document->Undo();
            ++steps;
        }
        for (int i = 0; i < steps; ++i)
            Document->Redo();
        return steps;
    }
    // The texts of the menu that the work opens, which is closed again; "" for none.
    static std::string MenuOf(const std::function<void()>& work)
    {
        std::string texts;
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, [&] {
            QMenu* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu == nullptr)
                return;
            for (const QAction* action : menu->actions())
                texts += ShownText(*action) + "|" + action->objectName().toStdString() + "\n";
            menu->close();
        });
        watch.start(20);
        work();
        if (texts.empty())
            Settle();
        return texts;
    }
    std::string RightClick(const QPoint& at)
    {
        return MenuOf([&] {
            Press(Graph(), at, Qt::RightButton);
            Release(Graph(), at, Qt::RightButton);
        });
    }

    TDocument* Document = nullptr;
    TToolNode* First = nullptr;
    TToolNode* Second = nullptr;
    static inline const QPoint Empty = QPoint(600, 100);
};
