#include "library/wimp/keyboardshortcut.h"

#include "library/wimp/wimp.h"
#include "library/wimp/window.h"

static int ModifierOf(int key)
{
    switch (key) {
    case KEY_SHIFT:
        return SM_SHIFT;
    case KEY_CTRL:
        return SM_CTRL;
    case KEY_ALT:
        return SM_ALT;
    default:
        return 0;
    }
}

TKeyboardShortcut::~TKeyboardShortcut()
{
    Detach();
}

void TKeyboardShortcut::Add(int code, THandler handler)
{
    Entries[code].push_back(TEntry{handler, true});
}

void TKeyboardShortcut::AddOnce(int code, THandler handler)
{
    Entries[code].push_back(TEntry{handler, false});
}

void TKeyboardShortcut::Attach(TWindow* window)
{
    Detach();
    Window = window;
    Handle = window->GetHandle();
    TWimp::Get().AddShortcut(Handle, this);
}

void TKeyboardShortcut::Detach()
{
    if (Window == nullptr)
        return;
    TWimp::Get().RemoveShortcut(Handle, this);
    Window = nullptr;
    Handle = nullptr;
}

bool TKeyboardShortcut::OnKey(int key, TWindow*, bool down, bool isRepeat)
{
    if (const int modifier = ModifierOf(key)) {
        Modifiers = down ? Modifiers | modifier : Modifiers & ~modifier;
        return false;
    }
    if (!down)
        return false;
    const int code = key | Modifiers;
    const auto it = Entries.find(code);
    if (it == Entries.end())
        return false;
    // A handler may close the window, and this table with it.
    const vector<TEntry> entries = it->second;
    void* context = Context != nullptr ? Context : Window;
    for (const TEntry& entry : entries)
        if ((entry.Repeats || !isRepeat) && entry.Handler(code, context))
            return true;
    return false;
}
