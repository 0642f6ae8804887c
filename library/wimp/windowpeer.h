#pragma once

#include "library/wimp/window.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QRect>
#include <QtGui/QSurfaceFormat>
#include <QtWidgets/QWidget>

class QInputMethodEvent;
class QKeyEvent;
class QMdiSubWindow;
class QMouseEvent;
class QPaintEvent;
class QPainter;
class QScrollBar;
class QTimer;
class QWheelEvent;

// This header shows the window system: only the framework and its controls include it.

// Between a window and its widget: turns the widget's events into messages. It belongs to the widget, and
// outlives the window when the window goes while one of its messages is handled.
class TWindowPeer : public QObject
{
public:
    TWindowPeer(TWindow* window, QWidget* widget);
    ~TWindowPeer() override;

    // True for an event that is dealt with; the others are the widget's own business.
    bool HandleEvent(QEvent* event);
    void Paint();
    // The person's wish to close the window; true if it may go on to be hidden.
    void Close();
    // The window has gone.
    void Forget() { Window = nullptr; }
    bool Send(const TMessage& message);

    TWindow* GetWindow() const { return Window; }
    QWidget* GetWidget() const { return Widget; }
    // The widget with the frame: that of the window, but for a document window.
    QWidget* GetFrame() const;
    // What a new window can fill at most.
    QSize GetRoom() const;

    void StartTimer(int timer, int milliseconds);
    void StopTimer(int timer);
    // Of a window inside another.
    void Place(const QRect& place);
    // A window that OpenGL draws gives up a last pixel that its dots would not quite cover where it stands
    // now.
    void AlignToDots();
    void AddScrollBar();
    void LayoutScrollBar();

    QMdiSubWindow* SubWindow = nullptr;
    QScrollBar* ScrollBar = nullptr;
    int ScrollLine = 1;

private:
    // As HandleEvent, with a window: what becomes of the window, and what the mouse and the keys do.
    bool HandleFrameEvent(QEvent* event);
    bool HandleInput(QEvent* event);
    // A message without more than its type.
    void SendPlain(TMessageType type);
    void SendFocus(TMessageType type);
    // Whether the key goes no further.
    bool IsKeyTaken(const QKeyEvent& event);
    void LoseMouse();
    void ActivateDocument();
    void SendSize();
    void PaintBehindGl(QPainter& painter) const;
    void SendMouse(TMessageType type, const QMouseEvent& event);
    void SendButton(const QMouseEvent& event);
    bool IsStrayClick(const QMouseEvent& event);
    bool SendWheel(const QWheelEvent& event);
    // True for a key that was consumed.
    bool SendKey(const QKeyEvent& event, bool down);
    // The key's code. It repeats and comes up as what it went down, whatever Shift and the keypad's lock make
    // of it meanwhile.
    int PressKey(const QKeyEvent& event);
    int ReleaseKey(const QKeyEvent& event);
    // As the key typed them.
    void SendCharacters(const QString& text, const TMessage& key);

    TWindow* Window;
    QWidget* Widget;
    // What the owner has given, of which AlignToDots may leave a little free.
    QRect Given;
    vector<QTimer*> Timers;
    // The press under way belongs to a click that began elsewhere.
    bool HasStrayPress = false;
    // The codes of the keys that are down, by their places on the keyboard.
    sortedmap<quint32, int> KeysDown;
};

// While one lives, code of the program runs under an event of the window system, and widgets that go are
// deleted when the event is over.
class TEventScope
{
public:
    TEventScope();
    ~TEventScope();
    TEventScope(const TEventScope&) = delete;
    TEventScope& operator=(const TEventScope&) = delete;
    static bool IsActive();
};

// Deletes a widget, as soon as no event is being handled.
void DisposeWidget(QWidget* widget);

// All windows by their handles.
class TWindowMap
{
public:
    // Asserts "Windows.find(window->GetHandle()) == Windows.end() : Attempt to add window twice".
    static void Add(TWindow* window);
    // Asserts "0 : Attempt to remove non-registered window".
    static void Remove(TWindow* window);
    static TWindow* Find(TWindowHandle handle);
    // A window whose widget stands somewhere below this one, or null.
    static TWindow* FindBelow(TWindowHandle handle);
    // To be called when a widget has moved: the windows below it that OpenGL draws stand on other dots.
    static void AlignBelow(const QWidget* widget);
    // No window leaves its keys to this one any more.
    static void ForgetKeyOwner(const TWindow* window);
    // To assistive tools, of windows whose contents may have changed.
    static void TellContents();
    static bool IsEmpty();
};

// What every drawing window's context is made of.
QSurfaceFormat GetGlFormat();
// Whether windows can be drawn by OpenGL. The first time it is found that they cannot, a message tells it,
// once the loop runs.
bool HasWorkingGl();

// A mouse pointer for a screen of so many dots a pixel.
QCursor GetMousePointer(TCursor cursor, double dotsPerPixel);

// Texts and paths of the system are UTF-8.
inline QString ToQt(const char* text)
{
    return QString::fromUtf8(text);
}
