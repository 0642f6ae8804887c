#pragma once

#include "library/wimp/waitdialog.h"
#include "particles/cindermill/main/resourcehost.h"

// The Find Resource dialog, which a long search of the disc shows, and the chooser with which the person
// points at a file.
//
// While a search runs, no other window takes input, so that nothing is edited, closed or left under the work
// that waits for the file. Closing the dialog ends the search without a file.
class TResourceDialog : public TResourceHost
{
public:
    TResourceDialog();

    void BeginSearch() override;
    void EndSearch() override;
    void ShowSearch(const char* name) override;
    void ListDirectories(const vector<TString>& directories) override;
    TSearchAnswer Step() override;
    bool ChooseResource(const char* title, const vector<TPathFilter>& filters, TString& path) override;

private:
    void GetFirstFolder(TString& folder) const;

    TWaitDialog Dialog;
    // Where a resource was pointed at last.
    TString LastFolder;
};
