#include "library/wimp/modal.h"

#include "library/wimp/wimp.h"

#include <QtCore/QPointer>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>

// That had the keys last, no modal dialog.
static QPointer<QWidget> LastWindow;

void WatchKeyWindows(QApplication& application)
{
    QObject::connect(&application, &QApplication::focusChanged, [](QWidget*, const QWidget* now) {
        QWidget* window = now != nullptr ? now->window() : nullptr;
        while (window != nullptr && window->isModal())
            window = window->parentWidget() != nullptr ? window->parentWidget()->window() : nullptr;
        if (window != nullptr)
            LastWindow = window;
    });
}

QWidget* ModalParent()
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    // A dialog that has just been closed may still be the active one, and would take its children along.
    QWidget* window = QApplication::activeWindow();
    while (window != nullptr && !window->isVisible())
        window = window->parentWidget() != nullptr ? window->parentWidget()->window() : nullptr;
    if (window != nullptr)
        return window;
    // None has the keys at the moment: one has just gone, or another program is in front.
    if (LastWindow != nullptr && LastWindow->isVisible())
        return LastWindow;
    const QWidget* client = TWimp::Get().GetMDIClient();
    QWidget* main = client != nullptr ? client->window() : nullptr;
    return main != nullptr && main->isVisible() ? main : nullptr;
}

QSize GetScreenRoom(const QWidget& window)
{
    constexpr int FrameWidth = 16;
    constexpr int FrameHeight = 40;
    return window.screen()->availableSize() - QSize(FrameWidth, FrameHeight);
}

void ResizeDialog(QWidget& dialog, const QSize& size)
{
    dialog.resize(size.boundedTo(GetScreenRoom(dialog)));
}

void FreeMouse()
{
    TWimp::Get().LoseMouseDrag();
    TWindow::LoseCapture();
    if (QWidget* grabber = QWidget::mouseGrabber())
        grabber->releaseMouse();
    QApplication::restoreOverrideCursor();
}

// As often as a screen shows another picture.
static constexpr int PassMilliseconds = 16;

TModalScope::TModalScope()
{
    FreeMouse();
    const int depth = TNestedLoopScope::GetDepth();
    QObject::connect(&Passes, &QTimer::timeout, [depth] {
        if (TNestedLoopScope::GetDepth() == depth)
            TWimp::Get().RunWait();
    });
    Passes.start(PassMilliseconds);
}

static int NestedLoops = 0;

TNestedLoopScope::TNestedLoopScope()
{
    ++NestedLoops;
}

TNestedLoopScope::~TNestedLoopScope()
{
    --NestedLoops;
}

int TNestedLoopScope::GetDepth()
{
    return NestedLoops;
}
