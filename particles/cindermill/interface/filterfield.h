#pragma once

#include "library/containers/string.h"
#include "library/wimp/gdi/gdicontext.h"

class TWindow;
struct TMessage;

// A line that is typed to find something, in a window that draws it and gives it what is typed. What is typed
// goes to its end.
class TFilterField
{
public:
    static constexpr int Height = 24;

    void SetText(const char* text)
    {
        Text = text;
        IsMarked = false;
    }
    const TString& GetText() const { return Text; }
    // Characters, Backspace (with Ctrl a word), Ctrl+V, and Ctrl+A, after which what comes next takes the
    // place of the whole text, and Ctrl+C and Ctrl+X take it along. True if it is to be drawn and used anew.
    bool OnMessage(const TMessage& message);
    // The field's own menu, below a place of the window. What is chosen reports to the window, as of any
    // menu, and is for OnMenu.
    void OpenMenu(TWindow& window, int x, int y) const;
    // True if it is to be drawn and used anew.
    bool OnMenu(int id);
    // The hint stands there while nothing is typed.
    void Paint(TGDIContext& context, int left, int top, int right, const char* hint, bool focused) const;

private:
    bool Erase(bool word);
    bool Add(const char* text);
    bool OnCtrlKey(int key);
    bool Copy() const;
    bool Cut();
    bool Paste();
    bool SelectAll();

    TString Text;
    // All of it.
    bool IsMarked = false;
};
