#pragma once

#include "library/containers/sortedmap.h"
#include "library/containers/vector.h"
#include "library/wimp/wimpcontrol.h"

class TKeyboardShortcut;
class TWindow;
struct TMessage;

// What the framework knows of the application.
class TWimpApp
{
public:
    // One idle pass: the loop found nothing to do.
    virtual void OnIdle() = 0;
    // About once a second, whatever the loop waits for: also under dialogs, choosers, message boxes and
    // menus, and in the middle of what opened them.
    virtual void OnClock() {}
    // A pass while a dialog or a menu waits, which may stand in the middle of work: for what goes on by
    // itself, touches nothing else and asks nothing.
    virtual void OnWait() {}
    // The system ends the program, and something may still be under way: TEndWatch.
    virtual void OnEnding() {}
    virtual ~TWimpApp() = default;
};

// Who gets the mouse during a drag, before any window.
class TMouseDrag
{
public:
    TMouseDrag() = default;
    virtual ~TMouseDrag();
    TMouseDrag(const TMouseDrag&) = delete;
    TMouseDrag& operator=(const TMouseDrag&) = delete;
    // Pixels of the drag's window; TMouseButton bits.
    virtual void OnMouseMove(double x, double y, int buttons) = 0;
    // OnMouseMove, and what it was told is kept.
    void Follow(double x, double y, int buttons);
    // The same once more, for what goes on while the mouse rests. Nothing before the drag's first move.
    void FollowAgain();
    // A dialog or a menu has taken the mouse away, another window has come to the front, or the drag's own is
    // hidden or goes. The release may never be heard of.
    virtual void OnCaptureLost() {}
    // The window that the drag runs in, null while it does not run.
    TWindow* GetDragWindow() const { return DragWindow; }

private:
    friend class TWimp;
    TWindow* DragWindow = nullptr;
    bool HasMoved = false;
    double LastX = 0;
    double LastY = 0;
    int LastButtons = 0;
};

// The window framework: one message loop, one drag at a time.
class TWimp
{
public:
    static TWimp& Get();

    // Starts the window system; the arguments stay the caller's. False without a display.
    bool Init(int& argc, char** argv);
    // Asserts "IsInited() : Wimp not initialised".
    void* GetInstance() const;
    bool IsInited() const;
    // Ends the window system; all windows must have gone.
    void Shutdown();

    // Asserts "WimpApp == 0".
    void SetApp(TWimpApp* app);
    void ClearApp() { WimpApp = nullptr; }
    TWimpApp* GetApp() const { return WimpApp; }
    void SetIdle(bool idle);
    // One idle pass, for a dialog that waits: false, with none run, where idle passes are off or where what
    // waits was begun by one.
    bool RunIdle();
    // One pass of what goes on under a dialog or a menu, unless idle passes do.
    void RunWait();
    void Run();
    // One turn of the loop, for code that keeps the windows alive during a long wait; does not block. False
    // once to quit.
    bool Step();
    // The same for a wait inside other work: no idle pass runs, and without `input` what the person does is
    // left for later turns.
    bool StepInside(bool input);
    void Quit();
    bool IsQuitting() const;

    // The drag runs in the window, which captures the mouse, until it is cleared or lost. Asserts
    // "MouseDrag == 0".
    void SetMouseDrag(TMouseDrag* drag, TWindow& window);
    void ClearMouseDrag();
    // Ends a running drag, which hears of it.
    void LoseMouseDrag();
    // For a window that goes.
    void LoseMouseDragIn(const TWindow& window);
    TMouseDrag* GetMouseDrag() const { return MouseDrag; }

    // Assert "!IsMDIApp()", and "IsMDIApp()" and "hwnd == MDIClientHwnd".
    void SetMDIClient(TWindowHandle handle);
    void ClearMDIClient(TWindowHandle handle);
    bool IsMDIApp() const;
    TWindowHandle GetMDIClient() const { return MDIClientHwnd; }

    void AddShortcut(TWindowHandle window, TKeyboardShortcut* shortcut);
    void RemoveShortcut(TWindowHandle window, TKeyboardShortcut* shortcut);
    // For a window that goes.
    void RemoveShortcuts(TWindowHandle window);
    // Key messages go to the window's tables first; true if one consumed the key.
    bool HandleKey(TWindow& window, const TMessage& message);
    // The modifiers as they stand, for tables of the window that missed a change while another had the keys.
    void SyncModifiers(TWindow& window, int keyFlags);

private:
    enum TFlag
    {
        FL_IDLE = 1,
        FL_QUIT = 2,
        FL_INITED = 4,
        FL_MDIAPP = 8
    };

    TWimp() = default;

    bool OfferKey(TWindow& window, int key, bool down, bool isRepeat = false);
    bool Turn(bool mayWait);

    void* Instance = nullptr;
    int Flags = 0;
    TWimpApp* WimpApp = nullptr;
    TMouseDrag* MouseDrag = nullptr;
    TWindowHandle MDIClientHwnd = nullptr;
    sortedmap<TWindowHandle, vector<TKeyboardShortcut*>> Shortcuts;
    bool InIdle = false;
    // By the performance counter.
    uint64_t LastIdle = 0;
    int EmptyTurns = 0;
};

// The system's warning sound.
void Beep();
using TBeepHook = void (*)();
// Another warning than the system's; null for that.
void SetBeep(TBeepHook beep);
