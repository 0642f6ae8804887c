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
class TDialog : public TWindow
{
public:
    // In pixels; the size within the frame.
    TDialog(const char* title, int width, int height) : Title(title), Width(width), Height(height) {}

    // Waits until the dialog ends, and returns the result that it ended with; DR_NONE if it could not be
    // made. An owner of null is the window in front.
    int DoModal(int templateId, TWindow* owner);
    // Shows the dialog and returns at once. False if it could not be made.
    bool CreateModeless(int templateId, TWindow* owner);
    // The dialog's window goes.
    void End(int result);
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

protected:
    // Makes the controls. False gives the dialog up.
    virtual bool OnInit() { return true; }

private:
    bool CreateDialog(int templateId, TWindow* owner);

    const char* Title;
    int Width;
    int Height;
    // Of the DoModal that waits.
    int* ModalResult = nullptr;
};

// The dialogs that are made of a text, a list and buttons. Each waits for the answer.

// A list of lines with an OK button.
void ListDialog(int id, const char* title, const vector<TString>& lines);
// A read-only text with an OK button.
void TextDialog(int id, const char* title, const char* text);
// A text, a list, and buttons; returns the number of the one chosen. Closing the dialog is the last one.
int ChoiceDialog(int id, const char* title, const char* text, const vector<TString>& lines,
                 const vector<TString>& buttons);
