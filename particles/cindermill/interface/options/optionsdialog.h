#pragma once

#include "library/wimp/controls/button.h"
#include "library/wimp/controls/listbox.h"
#include "library/wimp/controls/pageframe.h"
#include "library/wimp/dialog.h"
#include "particles/cindermill/interface/options/connectionoptions.h"
#include "particles/cindermill/interface/options/generaloptions.h"
#include "particles/cindermill/interface/options/policyoptions.h"
#include "particles/cindermill/interface/options/resourceoptions.h"

class TResourceLocator;

// The Options dialog: a list of pages, one of which is shown. What was changed is stored by OK, page by page.
class TOptionsDialog : public TDialog
{
public:
    // Both stay the caller's.
    TOptionsDialog(TSettings& settings, TResourceLocator& locator);

    // Waits for the answer. After OK the locator reads its settings anew.
    void Run(TWindow* owner);
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

private:
    bool OnInit() override;
    void OnEscape() override { Cancel(); }
    bool CreateControls();
    void Layout();
    void ShowPage(int page);
    void Accept();
    // Asks before changes are lost. The close box does not.
    void Cancel();
    bool IsModified() const;

    static constexpr int NumPages = 4;

    TResourceLocator& Locator;
    TGeneralOptions General;
    TResourceOptions Resources;
    TConnectionOptions Connection;
    TPolicyOptions Policies;
    TOptionsPage* const Pages[NumPages] = {&General, &Resources, &Connection, &Policies};
    int CurrentPage = -1;
    TListBox List;
    TPageFrame Frame;
    TButton OkButton;
    TButton CancelButton;
};
