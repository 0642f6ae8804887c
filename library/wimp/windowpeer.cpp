#include "library/wimp/windowpeer.h"

#include "library/containers/assertion.h"
#include "library/containers/sortedmap.h"
#include "library/system/message.h"
#include "library/wimp/accessiblecontents.h"
#include "library/wimp/gdi/gdibitmap.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/modal.h"
#include "library/wimp/wimp.h"
#include "library/wimp/windowsight.h"

#include <QtCore/QTimer>
#include <QtGui/QCursor>
#include <QtGui/QIcon>
#include <QtGui/QInputMethodEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QOffscreenSurface>
#include <QtGui/QOpenGLContext>
#include <QtGui/QPainter>
#include <QtGui/QResizeEvent>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>
#include <QtWidgets/QScrollBar>

#include <cstring>

namespace {

int EventDepth = 0;

// What took the last press. Only compared: it may have gone.
const TWindowPeer* LastPressed = nullptr;

sortedmap<TWindowHandle, TWindow*>& Windows()
{
    static sortedmap<TWindowHandle, TWindow*> windows;
    return windows;
}

struct TKeyCode
{
    int Qt;
    int Key;
};

constexpr TKeyCode NamedKeys[] = {
    {Qt::Key_Backspace, KEY_BACKSPACE}, {Qt::Key_Tab, KEY_TAB},           {Qt::Key_Backtab, KEY_TAB},
    {Qt::Key_Return, KEY_RETURN},       {Qt::Key_Enter, KEY_RETURN},      {Qt::Key_Shift, KEY_SHIFT},
    {Qt::Key_Control, KEY_CTRL},        {Qt::Key_Alt, KEY_ALT},           {Qt::Key_Escape, KEY_ESCAPE},
    {Qt::Key_PageUp, KEY_PAGEUP},       {Qt::Key_PageDown, KEY_PAGEDOWN}, {Qt::Key_End, KEY_END},
    {Qt::Key_Home, KEY_HOME},           {Qt::Key_Left, KEY_LEFT},         {Qt::Key_Up, KEY_UP},
    {Qt::Key_Right, KEY_RIGHT},         {Qt::Key_Down, KEY_DOWN},         {Qt::Key_Insert, KEY_INSERT},
    {Qt::Key_Delete, KEY_DELETE},       {Qt::Key_Menu, KEY_MENU},
};

constexpr bool AreNamedKeysApart()
{
    for (const TKeyCode& named : NamedKeys)
        if (IsLetterOrDigit(named.Key))
            return false;
    for (int key = KEY_F1; key <= KEY_F24; ++key)
        if (IsLetterOrDigit(key))
            return false;
    return true;
}
static_assert(AreNamedKeysApart(), "a printable key would be taken for a named one");

// 0 for a key without a code.
int ToKey(int key)
{
    for (const TKeyCode& named : NamedKeys)
        if (named.Qt == key)
            return named.Key;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24)
        return KEY_F1 + key - Qt::Key_F1;
    return IsLetterOrDigit(key) ? key : 0;
}

// Letters by their places on the keyboard.
struct TKeyRow
{
    int First;
    const char* Letters;
};

constexpr TKeyRow KeyRows[] = {{16, "QWERTYUIOP"}, {30, "ASDFGHJKL"}, {44, "ZXCVBNM"}};

// Signs, such as those on the third level of a keyboard, are of no script.
bool IsLetterOfAnotherScript(int character)
{
    constexpr int LastCharacter = 0x10FFFF;
    if (character <= Qt::Key_AsciiTilde || character > LastCharacter)
        return false;
    const char32_t letter = static_cast<char32_t>(character);
    const QChar::Script script = QChar::script(letter);
    return QChar::isLetter(letter) && script != QChar::Script_Latin && script != QChar::Script_Common;
}

// With a keyboard of another script a key is the Latin letter of its place, so that shortcuts work all the
// same.
int ToKey(const QKeyEvent& event)
{
    const int key = ToKey(event.key());
    if (key != 0 || !IsLetterOfAnotherScript(event.key()))
        return key;
    // Places are counted from 8 on but on one platform.
    const int first = QGuiApplication::platformName() == QLatin1String("windows") ? 0 : 8;
    const int place = static_cast<int>(event.nativeScanCode()) - first;
    for (const TKeyRow& row : KeyRows)
        if (place >= row.First && place < row.First + static_cast<int>(strlen(row.Letters)))
            return row.Letters[place - row.First];
    return 0;
}

int ToButtons(Qt::MouseButtons buttons)
{
    return (buttons.testFlag(Qt::LeftButton) ? MB_LEFT : 0) |
           (buttons.testFlag(Qt::MiddleButton) ? MB_MIDDLE : 0) |
           (buttons.testFlag(Qt::RightButton) ? MB_RIGHT : 0);
}

int ToKeyFlags(Qt::KeyboardModifiers modifiers)
{
    return (modifiers.testFlag(Qt::ShiftModifier) ? KF_SHIFT : 0) |
           (modifiers.testFlag(Qt::ControlModifier) ? KF_CTRL : 0) |
           (modifiers.testFlag(Qt::AltModifier) ? KF_ALT : 0);
}

// A named key gives none, nor one that is a command by Ctrl. With Alt besides, a key is on the third level of
// the keyboard.
QString GetText(const QKeyEvent& event, int key)
{
    const bool isCommand =
        event.modifiers().testFlag(Qt::ControlModifier) && !event.modifiers().testFlag(Qt::AltModifier);
    return isCommand || (key != 0 && !IsLetterOrDigit(key)) ? QString() : event.text();
}

bool IsTab(const QKeyEvent& event)
{
    return event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab;
}

bool IsModifier(int key)
{
    return key == KEY_SHIFT || key == KEY_CTRL || key == KEY_ALT;
}

// The window's own tables, then those of the windows that it leaves its keys to.
bool OfferKey(TWindow* window, const TMessage& message)
{
    while (window != nullptr) {
        // The windows behind a dialog have no say.
        const bool goesOn = window->GetKind() != WK_DIALOG && !window->KeepsKeys();
        TWindow* owner = goesOn ? window->GetKeyOwner() : nullptr;
        if (!IsModifier(message.Key))
            TWimp::Get().SyncModifiers(*window, message.KeyFlags);
        if (TWimp::Get().HandleKey(*window, message))
            return true;
        window = owner;
    }
    return false;
}

// The message form waits for an answer, which must not happen while a window is being made.
void TellGlFault()
{
    QTimer::singleShot(0, QCoreApplication::instance(), [] {
        const char* fault = GetGlFault();
        ShowMessage("OpenGL cannot be used: the graph and the preview stay empty.\n%s",
                    fault != nullptr ? fault : "");
    });
}

bool ProbeGl()
{
    QOffscreenSurface surface;
    surface.setFormat(GetGlFormat());
    QOpenGLContext* context = QOpenGLContext::globalShareContext();
    const bool isValid = context != nullptr && context->isValid();
    if (isValid) {
        surface.create();
        context->makeCurrent(&surface);
    }
    const bool works = InitGl();
    if (isValid)
        context->doneCurrent();
    if (!works)
        TellGlFault();
    return works;
}

// As large on every screen, and of its dots.
QCursor LoadPointer(int picture, double dotsPerPixel, Qt::CursorShape otherwise)
{
    static constexpr int Size = 32;
    static constexpr int HotSpot = 1;
    const QIcon icon = LoadPictureIcon(picture);
    if (icon.isNull())
        return QCursor(otherwise);
    // X counts the hot spot in dots, and nobody brings it there.
    const int spot =
        QGuiApplication::platformName() == QLatin1String("xcb") ? qRound(HotSpot * dotsPerPixel) : HotSpot;
    return QCursor(icon.pixmap(QSize(Size, Size), dotsPerPixel), spot, spot);
}

} // namespace

TEventScope::TEventScope()
{
    ++EventDepth;
}

TEventScope::~TEventScope()
{
    --EventDepth;
}

bool TEventScope::IsActive()
{
    return EventDepth > 0;
}

void DisposeWidget(QWidget* widget)
{
    // The keys go to nobody rather than to a neighbour that may be about to go too.
    if (QWidget* focus = QApplication::focusWidget())
        if (focus == widget || widget->isAncestorOf(focus))
            focus->clearFocus();
    if (!TEventScope::IsActive()) {
        delete widget;
        return;
    }
    widget->hide();
    widget->setObjectName(QString());
    widget->deleteLater();
}

void TWindowMap::Add(TWindow* window)
{
    ASSERT_TEXT(Windows().find(window->GetHandle()) == Windows().end(),
                "Windows.find(window->GetHandle()) == Windows.end() : Attempt to add window twice");
    Windows()[window->GetHandle()] = window;
}

void TWindowMap::Remove(TWindow* window)
{
    const auto it = Windows().find(window->GetHandle());
    if (it == Windows().end()) {
        ASSERT_TEXT(IsAssertUnwinding(), "0 : Attempt to remove non-registered window");
        return;
    }
    Windows().erase(it);
}

TWindow* TWindowMap::Find(TWindowHandle handle)
{
    const auto it = Windows().find(handle);
    return it != Windows().end() ? it->second : nullptr;
}

TWindow* TWindowMap::FindBelow(TWindowHandle handle)
{
    for (const auto& entry : Windows())
        for (const QObject* above = entry.first->parent(); above != nullptr; above = above->parent())
            if (above == handle)
                return entry.second;
    return nullptr;
}

void TWindowMap::AlignBelow(const QWidget* widget)
{
    for (const auto& entry : Windows())
        if (entry.second->GetKind() == WK_GLCHILD && entry.first != widget &&
            widget->isAncestorOf(entry.first))
            entry.second->Peer->AlignToDots();
}

void TWindowMap::ForgetKeyOwner(const TWindow* window)
{
    for (const auto& entry : Windows())
        if (entry.second->GetKeyOwner() == window)
            entry.second->SetKeyOwner(nullptr);
}

void TWindowMap::TellContents()
{
    for (const auto& entry : Windows()) {
        TWindow& window = *entry.second;
        if (window.ToldRevision == window.ContentsRevision)
            continue;
        window.ToldRevision = window.ContentsRevision;
        if (window.Accessible != nullptr)
            window.Accessible->TellChanges(window);
    }
}

bool TWindowMap::IsEmpty()
{
    return Windows().empty();
}

QSurfaceFormat GetGlFormat()
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setVersion(2, 1);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    return format;
}

bool HasWorkingGl()
{
    static const bool Works = ProbeGl();
    return Works;
}

QCursor GetMousePointer(TCursor cursor, double dotsPerPixel)
{
    switch (cursor) {
    case CU_DRAG:
        return LoadPointer(PI_DRAG, dotsPerPixel, Qt::ForbiddenCursor);
    case CU_DROP:
        return LoadPointer(PI_DROP, dotsPerPixel, Qt::DragCopyCursor);
    case CU_HAND:
        return QCursor(Qt::ClosedHandCursor);
    case CU_SPLITX:
        return QCursor(Qt::SplitHCursor);
    case CU_SPLITY:
        return QCursor(Qt::SplitVCursor);
    case CU_TEXT:
        return QCursor(Qt::IBeamCursor);
    case CU_UPDOWN:
        return QCursor(Qt::SizeVerCursor);
    case CU_SCRUB:
        return QCursor(Qt::SizeHorCursor);
    case CU_FINGER:
        return QCursor(Qt::PointingHandCursor);
    default:
        return QCursor(Qt::ArrowCursor);
    }
}

TWindowPeer::TWindowPeer(TWindow* window, QWidget* widget) : QObject(widget), Window(window), Widget(widget)
{
}

TWindowPeer::~TWindowPeer()
{
    if (Window != nullptr)
        Window->ForgetWidget();
}

QWidget* TWindowPeer::GetFrame() const
{
    return SubWindow != nullptr ? SubWindow : Widget;
}

QSize TWindowPeer::GetRoom() const
{
    if (SubWindow == nullptr)
        return GetScreenRoom(*Widget);
    const QMdiArea* area = SubWindow->mdiArea();
    // One that is not on the screen has not its size yet.
    return area != nullptr && area->isVisible() ? area->maximumViewportSize()
                                                : QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
}

bool TWindowPeer::Send(const TMessage& message)
{
    if (Window == nullptr)
        return false;
    TEventScope scope;
    return Window->Dispatch(message);
}

bool TWindowPeer::HandleEvent(QEvent* event)
{
    return Window != nullptr && (HandleFrameEvent(event) || HandleInput(event));
}

bool TWindowPeer::HandleFrameEvent(QEvent* event)
{
    switch (event->type()) {
    case QEvent::Close:
        event->ignore();
        Close();
        return true;
    case QEvent::Resize:
        SendSize();
        return false;
    case QEvent::Move:
        TWindowMap::AlignBelow(Widget);
        return false;
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
    case QEvent::DevicePixelRatioChange:
#else
    case QEvent::ScreenChangeInternal:
#endif
        // Moved to a screen of another scale: laid out and drawn anew, though its size in pixels may be the
        // same.
        AlignToDots();
        SendSize();
        Widget->update();
        return false;
    case QEvent::WinIdChange:
        if (Widget->isWindow())
            WatchSight(*Widget);
        return false;
    case QEvent::FocusIn:
        SendFocus(MT_FOCUSGAINED);
        return false;
    case QEvent::FocusOut:
        SendFocus(MT_FOCUSLOST);
        return false;
    // A release may go to the window that is in front now.
    case QEvent::WindowDeactivate:
    case QEvent::Hide:
        LoseMouse();
        return false;
    default:
        return false;
    }
}

bool TWindowPeer::HandleInput(QEvent* event)
{
    switch (event->type()) {
    case QEvent::Leave:
        SendPlain(MT_MOUSELEAVE);
        return false;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        if (!IsKeyTaken(*static_cast<QKeyEvent*>(event)))
            return false;
        break;
    case QEvent::InputMethod:
        SendCharacters(static_cast<QInputMethodEvent*>(event)->commitString(), TMessage());
        break;
    case QEvent::MouseMove:
        SendMouse(MT_MOUSEMOVE, *static_cast<QMouseEvent*>(event));
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
        SendButton(*static_cast<QMouseEvent*>(event));
        break;
    case QEvent::Wheel:
        // What no one takes goes on to the owner.
        event->setAccepted(SendWheel(*static_cast<QWheelEvent*>(event)));
        return true;
    default:
        return false;
    }
    event->accept();
    return true;
}

void TWindowPeer::SendPlain(TMessageType type)
{
    TMessage message;
    message.Type = type;
    Send(message);
}

void TWindowPeer::SendFocus(TMessageType type)
{
    KeysDown.clear();
    Window->ContentsChanged();
    SendPlain(type);
}

// A dialog has its own answers to Return and Escape, also for the windows inside it. The Tab key goes on to
// the next control where it has no other use.
bool TWindowPeer::IsKeyTaken(const QKeyEvent& event)
{
    return SendKey(event, event.type() == QEvent::KeyPress) || Window == nullptr ||
           (!IsTab(event) && Window->GetTopWindow()->GetKind() != WK_DIALOG);
}

void TWindowPeer::Paint()
{
    if (Window == nullptr)
        return;
    TMessage message;
    if (Window->GetKind() == WK_GLCHILD && HasWorkingGl()) {
        Send(message);
        return;
    }
    QPainter painter(Widget);
    const TWindowClass* windowClass = Window->GetClass();
    const TGDIColour background = windowClass != nullptr ? windowClass->GetBackground() : ButtonColour;
    painter.fillRect(Widget->rect(), QColor::fromRgb(static_cast<QRgb>(GetThemeColour(background))));
    PaintBehindGl(painter);
    if (Window->GetKind() == WK_GLCHILD)
        return;
    TGDIContext context(painter);
    message.Context = &context;
    Send(message);
}

// What the windows inside that OpenGL draws have left free has their colour.
void TWindowPeer::PaintBehindGl(QPainter& painter) const
{
    for (const QObject* child : Widget->children()) {
        const TWindow* window = TWindowMap::Find(qobject_cast<QWidget*>(const_cast<QObject*>(child)));
        if (window == nullptr || window->GetKind() != WK_GLCHILD || window->GetClass() == nullptr)
            continue;
        if (window->Peer->Given != window->GetHandle()->geometry())
            painter.fillRect(window->Peer->Given,
                             QColor::fromRgb(static_cast<QRgb>(window->GetClass()->GetBackground())));
    }
}

void TWindowPeer::Place(const QRect& place)
{
    Given = place;
    Widget->setGeometry(place);
    AlignToDots();
}

void TWindowPeer::AlignToDots()
{
    if (Window == nullptr || Window->GetKind() != WK_GLCHILD || Given.isNull())
        return;
    // The window system rounds a frame buffer's size by itself, but keeps its place free from edge to edge.
    // What lies between would be black.
    const double dots = Widget->devicePixelRatio();
    const QPoint start = Widget->parentWidget()->mapTo(Widget->window(), Given.topLeft());
    auto fit = [dots](int at, int length) {
        while (length > 0 && qRound(at * dots) + qRound(length * dots) < qRound((at + length) * dots))
            --length;
        return length;
    };
    const QSize size(fit(start.x(), Given.width()), fit(start.y(), Given.height()));
    if (size == Widget->size())
        return;
    Widget->resize(size);
    Widget->parentWidget()->update();
}

void TWindowPeer::Close()
{
    TMessage message;
    message.Type = MT_CLOSE;
    const QPointer<TWindowPeer> self(this);
    TEventScope scope;
    if (!Send(message) && self != nullptr && Window != nullptr)
        Window->OnCommand(Window, 0, CC_CLOSE);
}

void TWindowPeer::SendSize()
{
    LayoutScrollBar();
    Window->ContentsChanged();
    int width = 0;
    int height = 0;
    Window->GetSize(width, height);
    TMessage message;
    message.Type = MT_SIZE;
    message.X = width;
    message.Y = height;
    Send(message);
}

void TWindowPeer::SendMouse(TMessageType type, const QMouseEvent& event)
{
    TMessage message;
    message.Type = type;
    message.X = event.position().x();
    message.Y = event.position().y();
    message.Buttons = ToButtons(event.buttons());
    message.KeyFlags = ToKeyFlags(event.modifiers());
    Send(message);
}

void TWindowPeer::LoseMouse()
{
    const QPointer<TWindowPeer> self(this);
    TEventScope scope;
    TWimp::Get().LoseMouseDragIn(*Window);
    if (self != nullptr && Window != nullptr)
        Window->LoseOwnCapture();
}

// A press anywhere inside brings a document window to the front.
void TWindowPeer::ActivateDocument()
{
    for (const TWindow* window = Window; window != nullptr; window = window->GetOwner()) {
        QMdiSubWindow* frame = window->Peer != nullptr ? window->Peer->SubWindow : nullptr;
        if (frame == nullptr)
            continue;
        if (QMdiArea* area = frame->mdiArea())
            if (area->activeSubWindow() != frame)
                area->setActiveSubWindow(frame);
        return;
    }
}

// The second click of two on what opens at the first one, such as a picture of the start page, falls on what
// has come up there, and is not meant for it.
bool TWindowPeer::IsStrayClick(const QMouseEvent& event)
{
    if (event.type() == QEvent::MouseButtonRelease) {
        const bool isStray = HasStrayPress;
        HasStrayPress = false;
        return isStray;
    }
    HasStrayPress = event.type() == QEvent::MouseButtonDblClick && LastPressed != this;
    LastPressed = this;
    return HasStrayPress;
}

void TWindowPeer::SendButton(const QMouseEvent& event)
{
    if (IsStrayClick(event))
        return;
    const bool down = event.type() != QEvent::MouseButtonRelease;
    if (down)
        ActivateDocument();
    if (event.button() == Qt::LeftButton)
        SendMouse(down ? MT_LEFTDOWN : MT_LEFTUP, event);
    else if (event.button() == Qt::MiddleButton)
        SendMouse(down ? MT_MIDDLEDOWN : MT_MIDDLEUP, event);
    else if (event.button() == Qt::RightButton)
        SendMouse(down ? MT_RIGHTDOWN : MT_RIGHTUP, event);
}

bool TWindowPeer::SendWheel(const QWheelEvent& event)
{
    TMessage message;
    message.Type = MT_WHEEL;
    message.X = event.position().x();
    message.Y = event.position().y();
    message.Delta = event.angleDelta().y();
    message.Buttons = ToButtons(event.buttons());
    message.KeyFlags = ToKeyFlags(event.modifiers());
    return message.Delta != 0 && Send(message);
}

int TWindowPeer::PressKey(const QKeyEvent& event)
{
    const quint32 place = event.nativeScanCode();
    const auto it = KeysDown.find(place);
    if (event.isAutoRepeat() && it != KeysDown.end())
        return it->second;
    const int key = ToKey(event);
    if (place != 0)
        KeysDown[place] = key;
    return key;
}

int TWindowPeer::ReleaseKey(const QKeyEvent& event)
{
    const auto it = KeysDown.find(event.nativeScanCode());
    if (it == KeysDown.end())
        return ToKey(event);
    const int key = it->second;
    KeysDown.erase(it);
    return key;
}

bool TWindowPeer::SendKey(const QKeyEvent& event, bool down)
{
    // A key that repeats goes down again and again, and comes up once.
    if (!down && event.isAutoRepeat())
        return true;
    const QPointer<TWindowPeer> self(this);
    TEventScope scope;
    TMessage message;
    message.Type = down ? MT_KEYDOWN : MT_KEYUP;
    message.Key = down ? PressKey(event) : ReleaseKey(event);
    message.IsRepeat = event.isAutoRepeat();
    // What Return enters, chooses or presses is meant once.
    if (message.IsRepeat && message.Key == KEY_RETURN)
        return true;
    message.KeyFlags = ToKeyFlags(event.modifiers());
    message.Buttons = ToButtons(QApplication::mouseButtons());
    const QString text = down ? GetText(event, message.Key) : QString();
    bool consumed = false;
    if (message.Key != 0) {
        if (OfferKey(Window, message) || self == nullptr || Window == nullptr)
            return true;
        consumed = Send(message);
        if (!consumed && self != nullptr && down && message.Key == KEY_F10 && message.KeyFlags == KF_SHIFT) {
            message.Key = KEY_MENU;
            message.KeyFlags = 0;
            consumed = Send(message);
        }
    }
    if (self == nullptr)
        return true;
    SendCharacters(text, message);
    return consumed || self == nullptr;
}

void TWindowPeer::SendCharacters(const QString& text, const TMessage& key)
{
    const QPointer<TWindowPeer> self(this);
    for (const uint character : text.toUcs4()) {
        if (character < 32 || character == 127)
            continue;
        if (self == nullptr)
            return;
        TMessage message;
        message.Type = MT_CHAR;
        message.Character = character;
        message.KeyFlags = key.KeyFlags;
        message.IsRepeat = key.IsRepeat;
        Send(message);
    }
}

void TWindowPeer::StartTimer(int timer, int milliseconds)
{
    for (QTimer* running : Timers)
        if (running->property("number").toInt() == timer) {
            running->start(milliseconds);
            return;
        }
    QTimer* made = new QTimer(this);
    made->setSingleShot(true);
    made->setProperty("number", timer);
    QObject::connect(made, &QTimer::timeout, this, [this, timer] {
        TMessage message;
        message.Type = MT_TIMER;
        message.Timer = timer;
        Send(message);
    });
    Timers.push_back(made);
    made->start(milliseconds);
}

void TWindowPeer::StopTimer(int timer)
{
    for (QTimer* running : Timers)
        if (running->property("number").toInt() == timer)
            running->stop();
}

void TWindowPeer::AddScrollBar()
{
    ScrollBar = new QScrollBar(Qt::Vertical, Widget);
    ScrollBar->setObjectName(Widget->objectName() + QStringLiteral("_scroll"));
    ScrollBar->setCursor(Qt::ArrowCursor);
    ScrollBar->hide();
    QObject::connect(ScrollBar, &QScrollBar::valueChanged, this, [this](int value) {
        TMessage message;
        message.Type = MT_SCROLL;
        message.X = value;
        Send(message);
    });
    LayoutScrollBar();
}

void TWindowPeer::LayoutScrollBar()
{
    if (ScrollBar == nullptr)
        return;
    const int width = ScrollBar->sizeHint().width();
    ScrollBar->setGeometry(Widget->width() - width, 0, width, Widget->height());
}
