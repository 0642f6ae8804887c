#pragma once

#include "library/containers/assertion.h"
#include "library/wimp/windowpeer.h"

#include <QtCore/QTimer>

// This header shows the window system: only the framework includes it.

class QApplication;

// The window that a dialog stands in front of, or null.
QWidget* ModalParent();
// For a moment in which no window has the keys, as after a dialog: who asked that may ask again.
void WatchKeyWindows(QApplication& application);

// What a window of its own can have of its screen, a frame left out.
QSize GetScreenRoom(const QWidget& window);
// A dialog of the size, or as much of it as there is room for.
void ResizeDialog(QWidget& dialog, const QSize& size);

// While a loop of the window system runs inside other work: windows that go wait with their end, a failed
// assertion unwinds nothing, and nothing can be dropped.
class TNestedLoopScope
{
public:
    TNestedLoopScope();
    ~TNestedLoopScope();
    TNestedLoopScope(const TNestedLoopScope&) = delete;
    TNestedLoopScope& operator=(const TNestedLoopScope&) = delete;
    static bool IsActive() { return GetDepth() > 0; }
    // How many live now.
    static int GetDepth();

private:
    TEventScope Scope;
    TAssertPause Pause;
};

// Takes the mouse from whoever has it, for a dialog or a menu.
void FreeMouse();

// While a dialog or a menu waits for its answer. The application may show that it lives meanwhile.
class TModalScope
{
public:
    TModalScope();

private:
    TNestedLoopScope Scope;
    QTimer Passes;
};
