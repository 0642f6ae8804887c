#pragma once

#include "library/containers/owner.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"

class TNestedLoopScope;
class TWaitBox;

enum TWaitAnswer
{
    WA_NONE,
    WA_BUTTON,
    // The dialog was closed, or the program is ending.
    WA_CLOSED
};

// A dialog that tells of work under way: a line under a label, a list, and one button.
//
// From Begin to End the program waits for the work. Its windows are drawn, and hear nothing else: what the
// person does before the dialog is shown is left for after the wait, and while it is shown only the dialog
// takes it. No idle pass runs.
class TWaitDialog
{
public:
    TWaitDialog(int id, const char* title, const char* label, const char* button);
    ~TWaitDialog();

    void Begin();
    void Show(const char* line);
    // Takes the place of what was listed.
    void SetList(const vector<TString>& lines);
    // One turn of the message loop; what the person did in it.
    TWaitAnswer Step();
    void End();
    bool IsShown() const { return Box != nullptr; }

private:
    const int Id;
    const char* const Title;
    const char* const Label;
    const char* const Button;
    TOwner<TNestedLoopScope> Scope;
    TOwner<TWaitBox> Box;
};
