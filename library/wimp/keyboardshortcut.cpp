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
    Handlers[code].push_back(handler);
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

bool TKeyboardShortcut::OnKey(int key, TWindow*, bool down)
{
    if (const int modifier = ModifierOf(key)) {
        Modifiers = down ? Modifiers | modifier : Modifiers & ~modifier;
        return false;
    }
    if (!down)
        return false;
    const int code = key | Modifiers;
    const auto it = Handlers.find(code);
    if (it == Handlers.end())
        return false;
    // A handler may close the window, and this table with it.
    const vector<THandler> handlers = it->second;
    void* context = Context != nullptr ? Context : Window;
    for (const THandler handler : handlers)
        if (handler(code, context))
            return true;
    return false;
}
