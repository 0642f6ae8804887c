#pragma once

#include <cstdint>

class QWidget;
class TWindow;

// What identifies a window or control of the window system.
using TWindowHandle = QWidget*;

// The codes by which controls and menus report to their owner's OnCommand.
enum TCommandCode
{
    CC_CLOSE = 0,
    CC_MENU = 1,
    CC_BUTTON = 7,
    CC_SELECTION = 11,
    // A person changed a text or a number.
    CC_EDITED = 12,
    CC_DROP = 34
};

// A window or one of the window system's own controls, with the window that owns it. The handle goes with the
// object.
class TWimpControl
{
public:
    TWimpControl() = default;
    virtual ~TWimpControl();
    TWimpControl(const TWimpControl&) = delete;
    TWimpControl& operator=(const TWimpControl&) = delete;

    virtual void Enable(bool enabled);
    virtual void Show(bool shown);
    virtual void MoveTo(int x, int y, int width, int height);
    virtual void SetFocus();
    // 1 for a window with a frame of its own.
    virtual int GetType() const { return 0; }

    // What is told when the pointer rests on it, and to assistive tools, to which it is the name where no
    // other has been given.
    void SetTip(const char* tip);
    // What assistive tools call it.
    void SetSpokenName(const char* name);
    // The Tab key leads to it too.
    void TakeTab();

    TWindowHandle GetHandle() const { return Handle; }
    TWindow* GetOwner() const { return Owner; }
    // Walks up to the next window of type 1. Asserts "ctrl != 0".
    TWindow* GetTopWindow();
    virtual void GetSize(int& width, int& height) const;

protected:
    friend class TWindow;

    // Makes the control known to its owner. Asserts "Hwnd != 0 : Bad control handle".
    void Bind(TWindowHandle handle, TWindow* owner);
    // Tells the owner, as long as there is one.
    void Report(intptr_t argument, int code);
    // The owner or its widget goes: the control has no handle from now on.
    void Unbind();

    TWindowHandle Handle = nullptr;
    TWindow* Owner = nullptr;
};
