#include "library/wimp/window.h"

#include "library/containers/assertion.h"
#include "library/wimp/modal.h"
#include "library/wimp/sharedgl.h"
#include "library/wimp/wimp.h"
#include "library/wimp/windowsight.h"
#include "library/wimp/windowwidgets.h"

#include <QtCore/QSignalBlocker>
#include <QtGui/QAccessible>
#include <QtGui/QTextDocument>
#include <QtGui/QWindow>
#include <QtOpenGLWidgets/QOpenGLWidget>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLayout>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QToolTip>

// The window that the mouse stays with.
static TWindow* CaptureWindow = nullptr;

// Since tools have been told last.
static bool HaveContentsChanged = false;

static bool IsMouseMessage(TMessageType type)
{
    return type >= MT_LEFTDOWN && type <= MT_MOUSEMOVE;
}

// A running drag shows its pointer wherever the mouse goes.
static void ShowDragPointer(TCursor cursor, double dotsPerPixel)
{
    if (cursor == CU_CLASS) {
        QApplication::restoreOverrideCursor();
        return;
    }
    const QCursor pointer = GetMousePointer(cursor, dotsPerPixel);
    if (QApplication::overrideCursor() != nullptr)
        QApplication::changeOverrideCursor(pointer);
    else
        QApplication::setOverrideCursor(pointer);
}

static QOpenGLWidget* GlWidgetOf(TWindowHandle handle)
{
    QOpenGLWidget* widget = qobject_cast<QOpenGLWidget*>(handle);
    return widget != nullptr && widget->isValid() ? widget : nullptr;
}

void TWindowClass::Register(int iconId, TGDIColour background, bool, bool, bool)
{
    ASSERT_TEXT(!Registered, "!Registered : Attempt to reregister class atom");
    IconId = iconId;
    Background = background;
    Registered = true;
}

TWindow::~TWindow()
{
    Destroy();
}

bool TWindow::OnMessage(const TMessage&)
{
    return false;
}

void TWindow::OnCommand(TWimpControl*, intptr_t, int code)
{
    if (code != CC_CLOSE)
        return;
    if (Kind == WK_MAIN)
        TWimp::Get().Quit();
    else
        Hide();
}

// What is larger than all the room there is takes what is left of it from its position on; what is not moves
// until all of it can be seen.
static QRect FitInto(const QSize& room, const TWindowParams& params)
{
    int at[2] = {params.X, params.Y};
    int extent[2] = {params.Width, params.Height};
    const int space[2] = {room.width(), room.height()};
    const int least[2] = {480, 300};
    for (int i = 0; i < 2; ++i) {
        if (extent[i] > space[i])
            extent[i] = qMax(space[i] - at[i], qMin(least[i], space[i]));
        // A document window may reach beyond the client area, which can be scrolled.
        else if (params.Kind == WK_MDICHILD)
            continue;
        at[i] = qMax(0, qMin(at[i], space[i] - extent[i]));
    }
    return QRect(at[0], at[1], extent[0], extent[1]);
}

bool TWindow::Create(const TWindowParams& params)
{
    if (Handle != nullptr || !TWimp::Get().IsInited())
        return false;
    Kind = params.Kind;
    Class = params.Class;
    Peer = MakeWindowWidget(*this, params);
    if (Peer == nullptr)
        return false;
    Handle = Peer->GetWidget();
    Owner = params.Owner;
    TWindowMap::Add(this);
    if (params.VerticalScroll)
        Peer->AddScrollBar();
    if (Kind == WK_CHILD || Kind == WK_GLCHILD) {
        Handle->show();
        return true;
    }
    SetTitle(params.Title);
    // The window system finds a dialog's position.
    if (Kind == WK_DIALOG) {
        ResizeDialog(*Handle, QSize(params.Width, params.Height));
        return true;
    }
    // The main window has its place on the whole screen.
    const QRect place = Kind == WK_MAIN ? QRect(params.X, params.Y, params.Width, params.Height)
                                        : FitInto(Peer->GetRoom(), params);
    MoveTo(place.x(), place.y(), place.width(), place.height());
    return true;
}

// The area that a document window fills, null if it does not.
static QMdiArea* FindMaximisedArea(const QMdiSubWindow* frame)
{
    const bool fills = frame != nullptr && frame->isMaximized() && frame->isVisible();
    return fills ? frame->mdiArea() : nullptr;
}

// The document that was used before takes the place of the one that has gone as it was. That one may be there
// still, hidden.
static void KeepMaximised(QMdiArea* area)
{
    if (area == nullptr)
        return;
    const QList<QMdiSubWindow*> frames = area->subWindowList(QMdiArea::ActivationHistoryOrder);
    for (auto frame = frames.rbegin(); frame != frames.rend(); ++frame) {
        if (!(*frame)->isVisible() || (*frame)->isMinimized())
            continue;
        area->setActiveSubWindow(*frame);
        (*frame)->showMaximized();
        return;
    }
}

void TWindow::Destroy()
{
    if (Handle == nullptr)
        return;
    TWimp::Get().LoseMouseDragIn(*this);
    ReleaseCapture();
    if (TWimp::Get().IsMDIApp() && Kind == WK_MAIN)
        TWimp::Get().ClearMDIClient(TWimp::Get().GetMDIClient());
    QWidget* frame = Peer->GetFrame();
    while (TWindow* below = TWindowMap::FindBelow(frame == Handle ? Handle : frame)) {
        if (below == this)
            break;
        below->Destroy();
    }
    const QPointer<QMdiArea> area = FindMaximisedArea(Peer->SubWindow);
    Peer->Forget();
    ForgetWidget();
    DisposeWidget(frame);
    KeepMaximised(area);
}

void TWindow::ForgetWidget()
{
    for (const auto& entry : SubControls)
        entry.second->Unbind();
    SubControls.clear();
    TWimp::Get().RemoveShortcuts(Handle);
    TWindowMap::Remove(this);
    TWindowMap::ForgetKeyOwner(this);
    KeyOwner = nullptr;
    Peer = nullptr;
    Unbind();
}

int TWindow::GetType() const
{
    return Kind == WK_CHILD || Kind == WK_GLCHILD ? 0 : 1;
}

void TWindow::Show(bool shown)
{
    if (Peer != nullptr)
        Peer->GetFrame()->setVisible(shown);
}

bool TWindow::IsShown() const
{
    return Peer != nullptr && Peer->GetFrame()->isVisible();
}

bool TWindow::IsInSight() const
{
    if (Handle == nullptr || !Handle->isVisible())
        return false;
    const QWidget& top = *Handle->window();
    return top.windowHandle() != nullptr && top.windowHandle()->isExposed() && !IsCovered(top);
}

void TWindow::MoveTo(int x, int y, int width, int height)
{
    if (Peer == nullptr)
        return;
    if (Kind == WK_TOP || Kind == WK_MAIN || Kind == WK_DIALOG) {
        Handle->move(x, y);
        Handle->resize(width, height);
        return;
    }
    if (Kind == WK_GLCHILD) {
        Peer->Place(QRect(x, y, width, height));
        return;
    }
    Peer->GetFrame()->setGeometry(x, y, width, height);
    // The inside of a frame that is not yet shown follows at once, for those who lay out by its size.
    if (Peer->SubWindow != nullptr && Peer->SubWindow->layout() != nullptr)
        Peer->SubWindow->layout()->activate();
}

void TWindow::SetFocus()
{
    TakeFocus();
}

void TWindow::BringToTop(const TLaunch& launch)
{
    if (Peer == nullptr)
        return;
    QWidget* frame = Peer->GetFrame();
    if (frame->isMinimized())
        frame->showNormal();
    if (Peer->SubWindow != nullptr && Peer->SubWindow->mdiArea() != nullptr)
        Peer->SubWindow->mdiArea()->setActiveSubWindow(Peer->SubWindow);
    frame->raise();
    if (frame->isWindow())
        launch.Activate(*frame);
}

void TWindow::SetTitle(const char* text)
{
    if (Peer != nullptr)
        Peer->GetFrame()->setWindowTitle(ToQt(text));
}

void TWindow::SetAccessible(TAccessibleContents* contents, const char* name)
{
    Accessible = contents;
    ContentsChanged();
    if (Handle == nullptr)
        return;
    // To be shown, or to be named, made it known as a window without contents.
    if (QAccessibleInterface* former = QAccessible::queryAccessibleInterface(Handle))
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(former));
    Handle->setAccessibleName(ToQt(name));
}

void TWindow::SetCursor(TCursor cursor)
{
    if (Handle == nullptr)
        return;
    Handle->setCursor(GetMousePointer(cursor, GetDotsPerPixel()));
    if (CaptureWindow == this)
        ShowDragPointer(cursor, GetDotsPerPixel());
}

void TWindow::ContentsChanged()
{
    ++ContentsRevision;
    HaveContentsChanged = true;
}

void TWindow::TellContents()
{
    if (!HaveContentsChanged)
        return;
    HaveContentsChanged = false;
    TWindowMap::TellContents();
}

void TWindow::Redraw()
{
    ContentsChanged();
    if (Handle != nullptr)
        Handle->update();
}

void TWindow::GetSize(int& width, int& height) const
{
    TWimpControl::GetSize(width, height);
    if (Peer != nullptr && Peer->ScrollBar != nullptr && !Peer->ScrollBar->isHidden())
        width -= Peer->ScrollBar->width();
    if (width < 0)
        width = 0;
}

void TWindow::GetDotSize(int& width, int& height) const
{
    // Rounded as the window system does for the frame buffer, so that nothing of it is left out.
    const QSize size = Handle != nullptr ? Handle->size() * Handle->devicePixelRatio() : QSize(0, 0);
    width = size.width();
    height = size.height();
}

double TWindow::GetDotsPerPixel() const
{
    return Handle != nullptr ? Handle->devicePixelRatio() : 1.0;
}

void TWindow::ClientToScreen(double& x, double& y) const
{
    if (Handle == nullptr)
        return;
    const QPointF place = Handle->mapToGlobal(QPointF(x, y));
    x = place.x();
    y = place.y();
}

void TWindow::ScreenToClient(double& x, double& y) const
{
    if (Handle == nullptr)
        return;
    const QPointF place = Handle->mapFromGlobal(QPointF(x, y));
    x = place.x();
    y = place.y();
}

void TWindow::ClientToScreen(int& x, int& y) const
{
    if (Handle == nullptr)
        return;
    const QPoint place = Handle->mapToGlobal(QPoint(x, y));
    x = place.x();
    y = place.y();
}

void TWindow::ScreenToClient(int& x, int& y) const
{
    if (Handle == nullptr)
        return;
    const QPoint place = Handle->mapFromGlobal(QPoint(x, y));
    x = place.x();
    y = place.y();
}

bool TWindow::HasFocus() const
{
    return Handle != nullptr && Handle->hasFocus();
}

void TWindow::TakeFocus()
{
    if (Handle != nullptr)
        Handle->setFocus(Qt::OtherFocusReason);
}

void TWindow::SetCapture()
{
    if (Handle == nullptr)
        return;
    CaptureWindow = this;
    if (Handle->isVisible() && QWidget::mouseGrabber() != Handle)
        Handle->grabMouse();
}

void TWindow::ReleaseCapture()
{
    if (CaptureWindow != this)
        return;
    CaptureWindow = nullptr;
    QApplication::restoreOverrideCursor();
    if (QWidget::mouseGrabber() == Handle)
        Handle->releaseMouse();
}

void TWindow::LoseCapture()
{
    if (CaptureWindow != nullptr)
        CaptureWindow->LoseOwnCapture();
}

void TWindow::LoseOwnCapture()
{
    if (CaptureWindow != this || TWimp::Get().GetMouseDrag() != nullptr)
        return;
    ReleaseCapture();
    TMessage message;
    message.Type = MT_CAPTURELOST;
    Peer->Send(message);
}

void TWindow::StartTimer(int timer, int milliseconds)
{
    if (Peer != nullptr)
        Peer->StartTimer(timer, milliseconds);
}

void TWindow::StopTimer(int timer)
{
    if (Peer != nullptr)
        Peer->StopTimer(timer);
}

void TWindow::ShowTip(int x, int y, const char* text)
{
    if (text == nullptr)
        QToolTip::hideText();
    else if (Handle != nullptr)
        QToolTip::showText(Handle->mapToGlobal(QPoint(x, y)),
                           Qt::convertFromPlainText(ToQt(text), Qt::WhiteSpaceNormal), Handle);
}

void TWindow::SetScrollRange(int whole, int page, int line)
{
    if (Peer == nullptr || Peer->ScrollBar == nullptr)
        return;
    {
        const QSignalBlocker quiet(Peer->ScrollBar);
        Peer->ScrollBar->setRange(0, whole > page ? whole - page : 0);
        Peer->ScrollBar->setPageStep(page);
        Peer->ScrollBar->setSingleStep(line);
    }
    UpdateScrollBar(whole > page);
}

void TWindow::UpdateScrollBar(bool shown)
{
    if (Peer->ScrollBar->isHidden() != shown)
        return;
    Peer->ScrollBar->setVisible(shown);
    Redraw();
    TMessage message;
    message.Type = MT_SIZE;
    int width = 0;
    int height = 0;
    GetSize(width, height);
    message.X = width;
    message.Y = height;
    Peer->Send(message);
}

void TWindow::SetScrollPosition(int position)
{
    if (Peer == nullptr || Peer->ScrollBar == nullptr)
        return;
    const QSignalBlocker quiet(Peer->ScrollBar);
    Peer->ScrollBar->setValue(position);
}

int TWindow::GetScrollPosition() const
{
    return Peer != nullptr && Peer->ScrollBar != nullptr ? Peer->ScrollBar->value() : 0;
}

bool TWindow::MakeCurrent()
{
    // To free what it has drawn with, too, when its widget has gone.
    if (Kind == WK_GLCHILD && IsGlShared())
        return MakeSharedGlCurrent();
    QOpenGLWidget* widget = GlWidgetOf(Handle);
    if (widget == nullptr)
        return false;
    widget->makeCurrent();
    return true;
}

unsigned TWindow::GetFrameBuffer()
{
    if (Kind == WK_GLCHILD && IsGlShared()) {
        int width = 0;
        int height = 0;
        GetDotSize(width, height);
        return UseSharedFrameBuffer(width, height);
    }
    QOpenGLWidget* widget = GlWidgetOf(Handle);
    return widget != nullptr ? widget->defaultFramebufferObject() : 0;
}

void TWindow::AddSubControl(TWimpControl* control)
{
    ASSERT_TEXT(SubControls.find(control->GetHandle()) == SubControls.end(),
                "SubControls.find(hwnd) == SubControls.end() : Attempt to add sub control twice");
    SubControls[control->GetHandle()] = control;
}

void TWindow::RemoveSubControl(TWimpControl* control)
{
    const auto it = SubControls.find(control->GetHandle());
    if (it == SubControls.end()) {
        ASSERT_TEXT(IsAssertUnwinding(), "0 : Attempt to remove non-registered sub control");
        return;
    }
    SubControls.erase(it);
}

TWindow* TWindow::Find(TWindowHandle handle)
{
    return TWindowMap::Find(handle);
}

TWindow* TWindow::FromPoint(int x, int y)
{
    QWidget* widget = QApplication::widgetAt(x, y);
    while (widget != nullptr) {
        if (TWindow* window = Find(widget))
            return window;
        if (const QMdiSubWindow* frame = qobject_cast<QMdiSubWindow*>(widget))
            if (TWindow* window = Find(frame->widget()))
                return window;
        widget = widget->isWindow() ? nullptr : widget->parentWidget();
    }
    return nullptr;
}

bool TWindow::Dispatch(const TMessage& message)
{
    if (!IsMouseMessage(message.Type))
        return OnMessage(message);
    MouseX = message.X;
    MouseY = message.Y;
    Buttons = message.Buttons;
    KeyFlags = message.KeyFlags;
    if (TMouseDrag* drag = TWimp::Get().GetMouseDrag()) {
        double x = message.X;
        double y = message.Y;
        if (drag->GetDragWindow() != this) {
            ClientToScreen(x, y);
            drag->GetDragWindow()->ScreenToClient(x, y);
        }
        const QPointer<TWindowPeer> peer(Peer);
        drag->Follow(x, y, message.Buttons);
        if (peer == nullptr || peer->GetWindow() == nullptr)
            return true;
    }
    return OnMessage(message);
}
