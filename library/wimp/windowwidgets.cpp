#include "library/wimp/windowwidgets.h"

#include "library/wimp/gdi/gdibitmap.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/sharedgl.h"
#include "library/wimp/wimp.h"

#include <QtGui/QAction>
#include <QtGui/QCloseEvent>
#include <QtGui/QIcon>
#include <QtGui/QMouseEvent>
#include <QtOpenGLWidgets/QOpenGLWidget>
#include <QtWidgets/QDialog>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>
#include <QtWidgets/QMenu>

namespace {

// A widget that lets its window see every event first.
template <class TBase>
class TPeered : public TBase
{
public:
    using TBase::TBase;
    QPointer<TWindowPeer> Peer;

protected:
    bool event(QEvent* event) override
    {
        if (Peer != nullptr && Peer->HandleEvent(event))
            return true;
        return TBase::event(event);
    }
};

class TPlainWidget : public TPeered<QWidget>
{
public:
    using TPeered<QWidget>::TPeered;

protected:
    void paintEvent(QPaintEvent*) override
    {
        if (Peer != nullptr)
            Peer->Paint();
    }
};

class TGlWidget : public TPeered<QOpenGLWidget>
{
public:
    using TPeered<QOpenGLWidget>::TPeered;

protected:
    void paintGL() override
    {
        if (Peer != nullptr && IsGlReady())
            Peer->Paint();
    }
};

class TSharedGlWidget : public TPeered<QWidget>
{
public:
    using TPeered<QWidget>::TPeered;

protected:
    void paintEvent(QPaintEvent*) override
    {
        if (Peer != nullptr)
            PaintShared(*Peer);
    }
};

using TMainWidget = TPeered<QMainWindow>;

// Return presses the default button, Escape closes as the close box does.
class TDialogWidget : public TPeered<QDialog>
{
public:
    using TPeered<QDialog>::TPeered;
    void reject() override
    {
        if (Peer != nullptr)
            Peer->Close();
    }
};

// The frame of a document window.
class TDocumentFrame : public QMdiSubWindow
{
public:
    QPointer<TWindowPeer> Peer;

protected:
    void closeEvent(QCloseEvent* event) override
    {
        event->ignore();
        if (Peer != nullptr)
            Peer->Close();
    }
    void moveEvent(QMoveEvent* event) override
    {
        QMdiSubWindow::moveEvent(event);
        TWindowMap::AlignBelow(this);
        RememberPlace();
    }
    void resizeEvent(QResizeEvent* event) override
    {
        QMdiSubWindow::resizeEvent(event);
        RememberPlace();
    }
    // After a dialog the frame has forgotten which of its boxes the pointer rests on.
    void mousePressEvent(QMouseEvent* event) override
    {
        QMouseEvent rest(QEvent::MouseMove, event->position(), event->globalPosition(), Qt::NoButton,
                         Qt::NoButton, event->modifiers());
        mouseMoveEvent(&rest);
        QMdiSubWindow::mousePressEvent(event);
    }

private:
    // The window system forgets it in a window that is maximised.
    void RememberPlace()
    {
        if (!isMaximized() && !isMinimized())
            setProperty("normalplace", geometry());
    }
};

template <class TWidget>
TWindowPeer* MakePeer(TWindow& window, TWidget* widget)
{
    widget->Peer = new TWindowPeer(&window, widget);
    return widget->Peer;
}

QWidget* OwnerWidget(const TWindowParams& params)
{
    return params.Owner != nullptr ? params.Owner->GetHandle() : nullptr;
}

// A program without OpenGL still edits, saves and exports: its views just stay empty.
TWindowPeer* MakeGlPeer(TWindow& window, QWidget* parent)
{
    if (!HasWorkingGl())
        return MakePeer(window, new TPlainWidget(parent));
    if (IsGlShared())
        return MakePeer(window, new TSharedGlWidget(parent));
    return MakePeer(window, new TGlWidget(parent));
}

TWindowPeer* MakeChild(TWindow& window, const TWindowParams& params)
{
    QWidget* parent = OwnerWidget(params);
    if (parent == nullptr)
        return nullptr;
    if (params.Kind == WK_CHILD)
        return MakePeer(window, new TPlainWidget(parent));
    TWindowPeer* peer = MakeGlPeer(window, parent);
    // So that a frame that comes to the front gives the keys back to its view.
    peer->GetWidget()->setFocusPolicy(Qt::TabFocus);
    return peer;
}

// A frame's own menu closes it by a letter on some systems. What printable keys do is the program's to say.
void TakePrintableShortcuts(const QMenu& menu)
{
    for (QAction* action : menu.actions())
        if (action->shortcuts().contains(QKeySequence(Qt::CTRL | Qt::Key_W)))
            action->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F4));
}

TWindowPeer* MakeDocumentWindow(TWindow& window)
{
    QMdiArea* area = qobject_cast<QMdiArea*>(TWimp::Get().GetMDIClient());
    if (area == nullptr)
        return nullptr;
    TDocumentFrame* frame = new TDocumentFrame;
    TPlainWidget* widget = new TPlainWidget;
    TWindowPeer* peer = MakePeer(window, widget);
    peer->SubWindow = frame;
    frame->Peer = peer;
    frame->setWidget(widget);
    TakePrintableShortcuts(*frame->systemMenu());
    area->addSubWindow(frame);
    return peer;
}

TWindowPeer* MakeMainWindow(TWindow& window)
{
    TMainWidget* widget = new TMainWidget;
    widget->setContextMenuPolicy(Qt::NoContextMenu);
    // The first OpenGL child of a window that is shown already would make the window system build it anew.
    if (HasWorkingGl() && !IsGlShared()) {
        QOpenGLWidget* surface = new QOpenGLWidget(widget);
        surface->setObjectName(QStringLiteral("surface"));
        surface->resize(0, 0);
        surface->hide();
    }
    return MakePeer(window, widget);
}

TWindowPeer* MakeByKind(TWindow& window, const TWindowParams& params)
{
    switch (params.Kind) {
    case WK_MDICHILD:
        return MakeDocumentWindow(window);
    case WK_TOP:
        return MakePeer(window, new TPlainWidget(OwnerWidget(params), Qt::Window));
    case WK_DIALOG:
        return MakePeer(window, new TDialogWidget(OwnerWidget(params)));
    case WK_MAIN:
        return MakeMainWindow(window);
    default:
        return MakeChild(window, params);
    }
}

} // namespace

TWindowPeer* MakeWindowWidget(TWindow& window, const TWindowParams& params)
{
    TWindowPeer* peer = MakeByKind(window, params);
    if (peer == nullptr)
        return nullptr;
    QWidget* widget = peer->GetWidget();
    widget->setMouseTracking(true);
    widget->setAttribute(Qt::WA_InputMethodEnabled);
    if (params.Kind != WK_MAIN && params.Kind != WK_DIALOG) {
        widget->setAttribute(Qt::WA_OpaquePaintEvent);
        widget->setContextMenuPolicy(Qt::PreventContextMenu);
        // Otherwise a window without a pointer of its own shows that of its owner.
        widget->setCursor(Qt::ArrowCursor);
    }
    if (params.Class != nullptr) {
        const QString name = ToQt(params.Class->GetName());
        widget->setObjectName(name);
        if (peer->SubWindow != nullptr)
            peer->SubWindow->setObjectName(name + QStringLiteral("_frame"));
        if (params.Class->GetIcon() != 0)
            peer->GetFrame()->setWindowIcon(LoadPictureIcon(params.Class->GetIcon()));
    }
    return peer;
}
