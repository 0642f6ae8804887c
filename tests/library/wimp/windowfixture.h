#pragma once

#include "support/windowtest.h"

#include "library/wimp/wimp.h"
#include "library/wimp/window.h"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

class TTestControl : public TWimpControl
{
public:
    using TWimpControl::Bind;
    using TWimpControl::Unbind;
};

class TRecordedDrag : public TMouseDrag
{
public:
    explicit TRecordedDrag(TWindow& window) { TWimp::Get().SetMouseDrag(this, window); }
    void OnCaptureLost() override { ++NumLosses; }
    void OnMouseMove(double x, double y, int buttons) override
    {
        Calls.push_back({x, y, static_cast<double>(buttons)});
        if (Action)
            Action();
    }
    std::vector<std::array<double, 3>> Calls;
    int NumLosses = 0;
    std::function<void()> Action;
};

class TWindowClassTest : public TWindowTest
{
protected:
    void SetUp() override { ShowTopWindow(Window, Class); }
    QWidget* Widget() { return Window.GetHandle(); }
    bool MakeChild(TWindow& child, TWindowKind kind = WK_CHILD)
    {
        TWindowParams params;
        params.Class = &ChildClass;
        params.Owner = &Window;
        params.Kind = kind;
        return child.Create(params);
    }
    // As the window system tells it: the text goes with the key.
    void Send(QEvent::Type type, int key, Qt::KeyboardModifiers modifiers, const QString& text, quint32 place)
    {
        QKeyEvent event(type, key, modifiers, place, 0, 0, text);
        QApplication::sendEvent(Widget(), &event);
    }
    void Click(int key, Qt::KeyboardModifiers modifiers, const QString& text, quint32 place = 0)
    {
        Send(QEvent::KeyPress, key, modifiers, text, place);
        Send(QEvent::KeyRelease, key, modifiers, text, place);
    }

    TWindowClass Class{"test_window"};
    TWindowClass ChildClass{"test_child"};
    TWindowClass OtherClass{"test_other"};
    TRecordingWindow Window;
};
