#include "particles/cindermill/interface/errordialog.h"

#include "library/wimp/dialog.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/effectgraph/error.h"

namespace {

constexpr int DialogId = 103;

void ShowErrorDialog(const char* title, const TErrorList& errors)
{
    // While the dialog waits, the program goes on: the caller's list may change.
    vector<TString> lines;
    for (const TError* error : errors) {
        TString text = GetErrorLine(*error);
        text.Trim();
        lines.push_back(text);
    }
    Beep();
    ListDialog(DialogId, title, lines);
}

} // namespace

void InstallErrorDialog()
{
    SetDisplayErrors(&ShowErrorDialog);
}
