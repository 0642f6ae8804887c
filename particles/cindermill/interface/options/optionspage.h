#pragma once

#include "library/containers/vector.h"
#include "library/wimp/controls/gridlayout.h"
#include "library/wimp/controls/label.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/options/option.h"

// A page of the Options dialog. A page derived from it makes its controls and lists its options.
class TOptionsPage : public TWindow
{
public:
    // The name by which automation finds the page; its line in the list of pages.
    TOptionsPage(const char* windowName, const char* title)
        : PageClass(windowName, 0, ButtonColour), Title(title)
    {
    }

    // Inside the dialog, with the settings as they stand.
    bool Create(TWindow& dialog);
    const char* GetTitle() const { return Title; }
    // Text that is being typed counts now.
    void EndEdit();
    // Whether a person changed anything on it.
    bool IsModified() const;
    // Stores what a person changed.
    void Apply();
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

protected:
    virtual bool CreateControls() = 0;
    // The controls show the settings.
    virtual void OnShown() {}
    // A person has used the control.
    virtual void OnUsed(TWimpControl* control) { (void)control; }

    // One of the settings of the page, which are stored in this order.
    void AddOption(TOption& option) { Options.push_back(&option); }
    // Rows from the top on: a label with what it names, a control alone, several side by side.
    void AddRow(TLabel& label, TWimpControl& control);
    void AddRow(TWimpControl& control) { Grid.Add(control, Rows++, 0, Columns); }
    void AddRow(TGridLayout& part) { Grid.Add(part, Rows++, 0, Columns); }
    // In the row before, of which only one is shown.
    void AddToLastRow(TGridLayout& part) { Grid.Add(part, Rows - 1, 0, Columns); }

private:
    // Labels, what they name, and the room that is left over.
    static constexpr int Columns = 3;

    TWindowClass PageClass;
    const char* const Title;
    vector<TOption*> Options;
    TGridLayout Grid;
    int Rows = 0;
};
