#pragma once

#include "library/containers/map.h"
#include "library/containers/vector.h"
#include "library/wimp/wimpcontrol.h"

class TWindow;

// Added to a key's code.
constexpr int SM_SHIFT = 0x10000;
constexpr int SM_CTRL = 0x20000;
constexpr int SM_ALT = 0x40000;

// A table from keys with modifiers to what they do in one window.
class TKeyboardShortcut
{
public:
    // True consumes the key. The context is the attached window, unless a fixed one was given.
    using THandler = bool (*)(int code, void* context);

    TKeyboardShortcut() = default;
    explicit TKeyboardShortcut(void* context) : Context(context) {}
    ~TKeyboardShortcut();
    TKeyboardShortcut(const TKeyboardShortcut&) = delete;
    TKeyboardShortcut& operator=(const TKeyboardShortcut&) = delete;

    void Add(int code, THandler handler);
    // For what is meant once, however long the key is held.
    void AddOnce(int code, THandler handler);
    void Attach(TWindow* window);
    void Detach();
    bool OnKey(int key, TWindow* window, bool down, bool isRepeat = false);

private:
    struct TEntry
    {
        THandler Handler;
        bool Repeats;
    };

    map<int, vector<TEntry>> Entries;
    TWindow* Window = nullptr;
    TWindowHandle Handle = nullptr;
    void* Context = nullptr;
    int Modifiers = 0;
};
