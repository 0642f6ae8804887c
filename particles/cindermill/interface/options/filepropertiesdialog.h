#pragma once

#include "library/wimp/controls/button.h"
#include "library/wimp/controls/edit.h"
#include "library/wimp/controls/gridlayout.h"
#include "library/wimp/dialog.h"

class TDocument;
class TToolNode;

// The File Properties dialog: the report of a document, and below it how its preview and its export agree,
// which may still be found out while it is read.
class TFilePropertiesDialog : public TDialog
{
public:
    // The document outlives the dialog.
    TFilePropertiesDialog(TDocument& document, const char* report);

    // Waits until it is closed. The node that the person wants to see, or null.
    TToolNode* Run(TWindow* owner);
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

private:
    bool OnInit() override;
    void OnIdle() override { ShowAgreement(); }
    void ShowAgreement();
    TToolNode* GetFirstNode() const;

    TDocument& Document;
    const TString Report;
    TEdit Page;
    TEdit Agreement;
    TButton NodeButton;
    TButton OkButton;
    TString ShownText;
};
