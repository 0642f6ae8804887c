#include "library/wimp/wimp.h"

#include "library/containers/assertion.h"
#include "library/system/clock.h"
#include "library/wimp/accessiblewindow.h"
#include "library/wimp/desktoptheme.h"
#include "library/wimp/fieldmenus.h"
#include "library/wimp/focusstyle.h"
#include "library/wimp/keyboardshortcut.h"
#include "library/wimp/modal.h"
#include "library/wimp/sessionbus.h"
#include "library/wimp/windowpeer.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtGui/QPalette>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleFactory>

#include <clocale>
#include <cstdio>
#include <cstdlib>

// Every turn without an event may be followed by an idle pass; from the second in a row on the loop takes a
// breath, so that a tool at rest leaves the processor alone.
static constexpr int BreathMilliseconds = 1;
static constexpr int ClockMilliseconds = 1000;
static constexpr int EmptyTurnsBeforeBreath = 2;

static bool HasDisplay()
{
    return qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || qEnvironmentVariableIsSet("DISPLAY") ||
           qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

static void PrepareEnvironment()
{
    // Windows that place themselves and take the mouse want the X server, where there is one.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && qEnvironmentVariableIsSet("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "xcb");
    if (LeaveMuteSessionBus())
        fprintf(stderr, "The session's bus does not answer; the program goes on without it.\n");
}

// Without a display that can be opened the window system ends the process: then with a line that says so.
static void OnStartMessage(QtMsgType type, const QMessageLogContext&, const QString&)
{
    if (type != QtFatalMsg)
        return;
    fprintf(stderr, "The display \"%s\" cannot be opened.\n", qgetenv("DISPLAY").constData());
    _Exit(1);
}

// The window system paints on a screen of fewer colours as if there were none.
static bool HasColours()
{
    constexpr int leastDepth = 15;
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (screen == nullptr || screen->depth() >= leastDepth)
        return true;
    fprintf(stderr, "The display \"%s\" has %d bits of colour; windows need %d or more.\n",
            qgetenv("DISPLAY").constData(), screen->depth(), leastDepth);
    return false;
}

static void ShowAssertBox(const char* title, const char* text)
{
    // Windows belong to the main thread, which may wait for this one. The debug output has the text.
    if (QThread::currentThread() != QCoreApplication::instance()->thread())
        return;
    if (QWidget* grabber = QWidget::mouseGrabber())
        grabber->releaseMouse();
    QMessageBox box(QMessageBox::Warning, ToQt(title), QString(), QMessageBox::Ok, ModalParent());
    box.setObjectName(QStringLiteral("assertfailure"));
    box.setTextFormat(Qt::PlainText);
    box.setText(ToQt(text));
    box.exec();
}

TMouseDrag::~TMouseDrag()
{
    if (TWimp::Get().GetMouseDrag() == this)
        TWimp::Get().ClearMouseDrag();
}

void TMouseDrag::Follow(double x, double y, int buttons)
{
    HasMoved = true;
    LastX = x;
    LastY = y;
    LastButtons = buttons;
    OnMouseMove(x, y, buttons);
}

void TMouseDrag::FollowAgain()
{
    if (HasMoved)
        OnMouseMove(LastX, LastY, LastButtons);
}

TWimp& TWimp::Get()
{
    static TWimp wimp;
    return wimp;
}

bool TWimp::Init(int& argc, char** argv)
{
    if (IsInited())
        return true;
    if (!HasDisplay())
        return false;
    PrepareEnvironment();
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    // The toolkit maps the programs that it has kept and believes the length that they tell: one that a full
    // disc has cut off ends this start or the next. The drivers' own keeping checks what it reads.
    QCoreApplication::setAttribute(Qt::AA_DisableShaderDiskCache);
    QSurfaceFormat::setDefaultFormat(GetGlFormat());
    const QtMessageHandler before = qInstallMessageHandler(OnStartMessage);
    QApplication* application = new QApplication(argc, argv);
    qInstallMessageHandler(before);
    // The window system has taken over the user's own way of writing numbers. Files are not in that.
    setlocale(LC_NUMERIC, "C");
    if (!HasColours())
        _Exit(1);
    QApplication::setQuitOnLastWindowClosed(false);
    const QPalette found = QApplication::palette();
    QApplication::setStyle(new TFocusStyle(QStyleFactory::create(QStringLiteral("Fusion"))));
    // Belongs to the application.
    new TDesktopTheme(found);
    InstallAccessibleWindows();
    InstallFieldMenus(*application);
    WatchKeyWindows(*application);
    Instance = application;
    Flags |= FL_INITED;
    SetAssertBox(ShowAssertBox);
    return true;
}

void* TWimp::GetInstance() const
{
    ASSERT_TEXT(IsInited(), "IsInited() : Wimp not initialised");
    return Instance;
}

bool TWimp::IsInited() const
{
    return (Flags & FL_INITED) != 0;
}

void TWimp::Shutdown()
{
    if (!IsInited())
        return;
    SetAssertBox(nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    delete static_cast<QApplication*>(Instance);
    Instance = nullptr;
    Flags = 0;
    WimpApp = nullptr;
    MouseDrag = nullptr;
}

void TWimp::SetApp(TWimpApp* app)
{
    ASSERT_TEXT(WimpApp == nullptr, "WimpApp == 0");
    WimpApp = app;
}

void TWimp::SetIdle(bool idle)
{
    Flags = idle ? Flags | FL_IDLE : Flags & ~FL_IDLE;
}

void TWimp::Run()
{
    QTimer clock;
    QObject::connect(&clock, &QTimer::timeout, [this] {
        if (WimpApp != nullptr && !IsQuitting())
            WimpApp->OnClock();
    });
    clock.start(ClockMilliseconds);
    while (!IsQuitting())
        Turn(true);
    Flags &= ~FL_QUIT;
}

bool TWimp::Step()
{
    if (!IsQuitting())
        Turn(false);
    return !IsQuitting();
}

bool TWimp::StepInside(bool input)
{
    if (!IsQuitting())
        QAbstractEventDispatcher::instance()->processEvents(input ? QEventLoop::AllEvents
                                                                  : QEventLoop::ExcludeUserInputEvents);
    return !IsQuitting();
}

bool TWimp::Turn(bool mayWait)
{
    QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
    QEventLoop::ProcessEventsFlags flags = QEventLoop::AllEvents;
    if (mayWait && (Flags & FL_IDLE) == 0)
        flags |= QEventLoop::WaitForMoreEvents;
    const bool found = dispatcher->processEvents(flags);
    // Nothing else takes these when no loop of the window system's own runs.
    if (!TEventScope::IsActive())
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (found) {
        EmptyTurns = 0;
        return true;
    }
    RunIdle();
    if (++EmptyTurns >= EmptyTurnsBeforeBreath)
        QThread::msleep(BreathMilliseconds);
    return false;
}

bool TWimp::RunIdle()
{
    // A long wait inside an idle pass runs the loop, and must not begin another.
    if ((Flags & FL_IDLE) == 0 || WimpApp == nullptr || InIdle || IsQuitting())
        return false;
    struct TInside
    {
        bool& Flag;
        explicit TInside(bool& flag) : Flag(flag) { Flag = true; }
        ~TInside() { Flag = false; }
    } inside(InIdle);
    WimpApp->OnIdle();
    TWindow::TellContents();
    LastIdle = GetPerformanceCounter();
    return true;
}

void TWimp::RunWait()
{
    constexpr uint64_t recently = 50000000;
    if ((Flags & FL_IDLE) == 0 || WimpApp == nullptr || InIdle || IsQuitting() ||
        GetPerformanceCounter() - LastIdle < recently)
        return;
    const TEventScope scope;
    WimpApp->OnWait();
}

void TWimp::Quit()
{
    Flags |= FL_QUIT;
    if (QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance())
        dispatcher->wakeUp();
}

bool TWimp::IsQuitting() const
{
    return (Flags & FL_QUIT) != 0;
}

void TWimp::SetMouseDrag(TMouseDrag* drag, TWindow& window)
{
    ASSERT_TEXT(MouseDrag == nullptr, "MouseDrag == 0");
    MouseDrag = drag;
    drag->DragWindow = &window;
    drag->HasMoved = false;
    window.SetCapture();
}

void TWimp::ClearMouseDrag()
{
    if (MouseDrag == nullptr)
        return;
    TWindow* window = MouseDrag->DragWindow;
    MouseDrag->DragWindow = nullptr;
    MouseDrag = nullptr;
    window->ReleaseCapture();
}

void TWimp::LoseMouseDrag()
{
    TMouseDrag* drag = MouseDrag;
    if (drag != nullptr)
        drag->OnCaptureLost();
    if (MouseDrag == drag)
        ClearMouseDrag();
}

void TWimp::LoseMouseDragIn(const TWindow& window)
{
    if (MouseDrag != nullptr && MouseDrag->DragWindow == &window)
        LoseMouseDrag();
}

void TWimp::SetMDIClient(TWindowHandle handle)
{
    ASSERT_TEXT(!IsMDIApp(), "!IsMDIApp()");
    MDIClientHwnd = handle;
    Flags |= FL_MDIAPP;
}

void TWimp::ClearMDIClient(TWindowHandle handle)
{
    ASSERT_TEXT(IsMDIApp(), "IsMDIApp()");
    ASSERT_TEXT(handle == MDIClientHwnd, "hwnd == MDIClientHwnd");
    MDIClientHwnd = nullptr;
    Flags &= ~FL_MDIAPP;
}

bool TWimp::IsMDIApp() const
{
    return (Flags & FL_MDIAPP) != 0;
}

void TWimp::AddShortcut(TWindowHandle window, TKeyboardShortcut* shortcut)
{
    Shortcuts[window].push_back(shortcut);
}

void TWimp::RemoveShortcut(TWindowHandle window, TKeyboardShortcut* shortcut)
{
    const auto it = Shortcuts.find(window);
    if (it == Shortcuts.end())
        return;
    TKeyboardShortcut** table = it->second.find(shortcut);
    if (table != it->second.end())
        it->second.erase(table);
    if (it->second.empty())
        Shortcuts.erase(it);
}

void TWimp::RemoveShortcuts(TWindowHandle window)
{
    const auto it = Shortcuts.find(window);
    if (it != Shortcuts.end())
        Shortcuts.erase(it);
}

bool TWimp::HandleKey(TWindow& window, const TMessage& message)
{
    return OfferKey(window, message.Key, message.Type == MT_KEYDOWN, message.IsRepeat);
}

void TWimp::SyncModifiers(TWindow& window, int keyFlags)
{
    OfferKey(window, KEY_SHIFT, (keyFlags & KF_SHIFT) != 0);
    OfferKey(window, KEY_CTRL, (keyFlags & KF_CTRL) != 0);
    OfferKey(window, KEY_ALT, (keyFlags & KF_ALT) != 0);
}

bool TWimp::OfferKey(TWindow& window, int key, bool down, bool isRepeat)
{
    const TWindowHandle handle = window.GetHandle();
    auto it = Shortcuts.find(handle);
    if (it == Shortcuts.end())
        return false;
    // A handler may close the window or take tables away.
    const vector<TKeyboardShortcut*> tables = it->second;
    for (TKeyboardShortcut* table : tables) {
        it = Shortcuts.find(handle);
        if (it == Shortcuts.end())
            return false;
        if (it->second.find(table) != it->second.end() && table->OnKey(key, &window, down, isRepeat))
            return true;
    }
    return false;
}

static TBeepHook BeepHook = nullptr;

void Beep()
{
    if (BeepHook != nullptr)
        BeepHook();
    else if (TWimp::Get().IsInited())
        QApplication::beep();
}

void SetBeep(TBeepHook beep)
{
    BeepHook = beep;
}
