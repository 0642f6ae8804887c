#pragma once

#include "library/containers/sortedmap.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/gdi/gdicontext.h"
#include "library/wimp/gl/renderwindow.h"
#include "library/wimp/gl/windowmessage.h"
#include "library/wimp/launch.h"
#include "library/wimp/wimpcontrol.h"

class TAccessibleContents;
class TMenu;

// A class of windows by name; a static of the window that uses it. The name is the object name by which tests
// and automation find the windows.
class TWindowClass
{
public:
    explicit TWindowClass(const char* name) : Name(name) {}
    // Registered.
    TWindowClass(const char* name, int iconId, TGDIColour background, bool ownDC = false) : Name(name)
    {
        Register(iconId, background, ownDC);
    }
    // Once: asserts "!Registered : Attempt to reregister class atom".
    void Register(int iconId, TGDIColour background, bool ownDC = false, bool doubleClicks = false,
                  bool saveBits = false);
    bool IsRegistered() const { return Registered; }
    const char* GetName() const { return Name; }
    int GetIcon() const { return IconId; }
    TGDIColour GetBackground() const { return Background; }

private:
    const char* Name;
    int IconId = 0;
    TGDIColour Background = 0xFFFFFF;
    bool Registered = false;
};

enum TWindowKind
{
    // Inside its owner.
    WK_CHILD,
    // A window inside its owner that OpenGL draws.
    WK_GLCHILD,
    // A document's window in the main window's client area.
    WK_MDICHILD,
    // A window of its own on the screen.
    WK_TOP,
    // A window of its own with controls, in front of its owner.
    WK_DIALOG,
    // The application's main window: menu, status bar, MDI client.
    WK_MAIN
};

struct TWindowParams
{
    const TWindowClass* Class = nullptr;
    const char* Title = "";
    TWindow* Owner = nullptr;
    TWindowKind Kind = WK_CHILD;
    // Ignored for children, which their owner lays out.
    int X = 0;
    int Y = 0;
    int Width = 100;
    int Height = 100;
    bool VerticalScroll = false;
};

// Edges on the screen, in pixels; the right and the bottom one are excluded.
struct TWindowArea
{
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;
};

// The numbers of the mouse pointers; 1 and 2 are the program's own for a running drag.
enum TCursor
{
    CU_CLASS = 0,
    CU_DRAG = 1,
    CU_DROP = 2,
    CU_HAND = 3,
    CU_SPLITX = 4,
    CU_SPLITY = 5,
    CU_TEXT = 6,
    CU_UPDOWN = 7,
    CU_SCRUB = 8,
    CU_FINGER = 9
};

// The base of all windows.
class TWindow : public TWimpControl, public TRenderWindow
{
public:
    TWindow() = default;
    ~TWindow() override;

    // The window's procedure; false passes the message on to what the window system does by itself. A close
    // message that is consumed leaves the window open; otherwise it is reported as code 0 to the window
    // itself.
    virtual bool OnMessage(const TMessage& message);
    // What controls, menus and the drop target report: the control (null for a menu), an argument, the code.
    // By itself a window answers code 0 by hiding, and the main window by ending the run.
    virtual void OnCommand(TWimpControl* control, intptr_t argument, int code);

    // False, with no window, if the window system refuses.
    bool Create(const TWindowParams& params);
    // Takes the windows and controls inside along: their objects stay, without a handle.
    void Destroy();
    const TWindowClass* GetClass() const { return Class; }
    TWindowKind GetKind() const { return Kind; }
    int GetType() const override;
    void Show(bool shown = true) override;
    // Of a window with a frame, the frame's position and the size inside it.
    void MoveTo(int x, int y, int width, int height) override;
    void SetFocus() override;
    void Hide() { Show(false); }
    bool IsShown() const;
    // False if the window system has told that nothing of it can be seen: it is minimised, on another
    // desktop, or other windows cover it.
    bool IsInSight() const;
    // Where a click of the desktop asks for it, in its name.
    void BringToTop(const TLaunch& launch = TLaunch());
    // Where a window with a frame stands, whether it is maximised, as a text to keep; empty for one that has
    // never been seen.
    void GetPlace(TString& place) const;
    // Stands where it stood, as far as the screens of today allow; one that was maximised is so on any.
    // False, with nothing done, for a text that is no place of such a window.
    bool SetPlace(const char* place);
    // Whether what GetPlace gave fills the screen.
    static bool IsMaximisedPlace(const char* place);
    bool IsMaximised() const;
    // Of the frame, on the screen.
    void GetFrameArea(TWindowArea& area) const;
    // What the screen that the window stands on leaves to windows.
    void GetScreenArea(TWindowArea& area) const;
    // A window of its own, not yet seen, stays in front of the other one from now on, whichever has the keys.
    void StayOver(TWindow& window);
    // Seen, and in front, while the keys stay with the window that has them.
    void ShowWithoutKeys();
    void SetTitle(const char* text);
    void SetCursor(TCursor cursor);
    void Redraw() override;
    void GetSize(int& width, int& height) const override;
    void GetDotSize(int& width, int& height) const override;
    double GetDotsPerPixel() const override;
    void ClientToScreen(int& x, int& y) const;
    void ScreenToClient(int& x, int& y) const;
    // Of the pointer, between pixels too.
    void ClientToScreen(double& x, double& y) const;
    void ScreenToClient(double& x, double& y) const;
    bool HasFocus() const override;
    void TakeFocus() override;
    // While captured, mouse messages come here wherever the pointer is.
    void SetCapture();
    void ReleaseCapture();
    // For who takes the mouse away: whoever has captured it hears of it, as the release may go elsewhere.
    static void LoseCapture();
    // Only if the window has captured it, not for a drag.
    void LoseOwnCapture();
    // Whose tables are offered the keys that this window and its tables leave: by itself its owner. Null, or
    // a window that goes, gives them back to the owner.
    void SetKeyOwner(TWindow* window) { KeyOwner = window; }
    TWindow* GetKeyOwner() const { return KeyOwner != nullptr ? KeyOwner : Owner; }
    // What assistive tools find in a window that draws its own contents; stays the caller's. The name is that
    // of the whole.
    void SetAccessible(TAccessibleContents* contents, const char* name);
    TAccessibleContents* GetAccessible() const { return Accessible; }
    // What they find there may be another. Said by each redraw, by a change of the size and of who has the
    // keys.
    void ContentsChanged();
    // Another after each of these.
    unsigned GetContentsRevision() const { return ContentsRevision; }
    // Tells the tools what has become of windows for which that was said. In a quiet moment, in which
    // contents can be listed.
    static void TellContents();
    // Whether other windows' tables are not offered the keys that this window and its tables leave.
    virtual bool KeepsKeys() const { return false; }
    void StartTimer(int timer, int milliseconds) override;
    void StopTimer(int timer) override;
    // Until a pointer at rest is told something.
    static constexpr int TipMilliseconds = 600;
    // A text at a pixel, in several lines if it is long, until the pointer moves away; null ends it.
    void ShowTip(int x, int y, const char* text);
    // For a window with a vertical scroll bar; a page of the whole hides it.
    void SetScrollRange(int whole, int page, int line);
    void SetScrollPosition(int position);
    int GetScrollPosition() const;

    // Of windows that OpenGL draws.
    bool MakeCurrent() override;
    unsigned GetFrameBuffer() override;

    // By the last mouse message.
    double GetMouseX() const { return MouseX; }
    double GetMouseY() const { return MouseY; }
    int GetButtons() const { return Buttons; }
    int GetKeyFlags() const { return KeyFlags; }

    // For controls: asserts "SubControls.find(hwnd) == SubControls.end() : Attempt to add sub control twice"
    // and "0 : Attempt to remove non-registered sub control".
    void AddSubControl(TWimpControl* control);
    void RemoveSubControl(TWimpControl* control);

    // The window of a handle, or null. The innermost window at a position on the screen, or null.
    static TWindow* Find(TWindowHandle handle);
    static TWindow* FromPoint(int x, int y);

private:
    friend class TWindowMap;
    friend class TWindowPeer;

    // What the framework calls for each message: keeps the mouse's state, serves a running drag first.
    bool Dispatch(const TMessage& message);

    void ForgetWidget();
    void UpdateScrollBar(bool shown);

    sortedmap<TWindowHandle, TWimpControl*> SubControls;
    class TWindowPeer* Peer = nullptr;
    TWindow* KeyOwner = nullptr;
    TAccessibleContents* Accessible = nullptr;
    unsigned ContentsRevision = 0;
    unsigned ToldRevision = 0;
    const TWindowClass* Class = nullptr;
    TWindowKind Kind = WK_CHILD;
    double MouseX = 0;
    double MouseY = 0;
    int Buttons = 0;
    int KeyFlags = 0;
};
