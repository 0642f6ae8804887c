#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/window.h"

// How a dialog ended.
enum TDialogResult
{
    DR_NONE = 0,
    DR_OK = 1,
    // The Cancel button, the close box or the Escape key.
    DR_CANCEL = 2
};

// A dialog that a class of its own fills with controls. Its number is found by automation in its name.
//
// While one waits, idle passes go on, but for the time that another dialog or a menu stands over it: it is
// opened by a command, and no work waits for its end.
class TDialog : public TWindow
{
public:
    // In pixels; the size within the frame. Contents that need more get as much as there is room for.
    TDialog(const char* title, int width, int height) : Title(title), Width(width), Height(height) {}

    // Waits until the dialog ends, and returns the result that it ended with; DR_NONE if it could not be
    // made. An owner of null is the window in front.
    int DoModal(int templateId, TWindow* owner);
    // Shows the dialog and returns at once. False if it could not be made.
    bool CreateModeless(int templateId, TWindow* owner);
    // The dialog's window goes.
    void End(int result);
    bool OnMessage(const TMessage& message) override;
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

protected:
    // Makes the controls. False gives the dialog up.
    virtual bool OnInit() { return true; }
    // The Escape key: as the close box, where a dialog does not say otherwise.
    virtual void OnEscape() { OnCommand(this, 0, CC_CLOSE); }
    // While the dialog waits, after each idle pass.
    virtual void OnIdle() {}

private:
    bool CreateDialog(int templateId, TWindow* owner);
    void FitContents();
    void Idle(int depth);

    const char* Title;
    int Width;
    int Height;
    // Of the DoModal that waits.
    int* ModalResult = nullptr;
};

// The dialogs that are made of a text, a list and buttons. Each waits for the answer.

// A list of lines with an OK button.
void ListDialog(int id, const char* title, const vector<TString>& lines);
// A text, a list, and buttons; returns the number of the one chosen. Closing the dialog is the last one.
int ChoiceDialog(int id, const char* title, const char* text, const vector<TString>& lines,
                 const vector<TString>& buttons);
