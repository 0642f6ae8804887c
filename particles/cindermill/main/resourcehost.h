#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "particles/cindermill/main/apphost.h"

// What the person did in the dialog of a search.
enum TSearchAnswer
{
    SA_NONE,
    // Wants to point at the file.
    SA_LOCATE,
    // Closed the dialog, or the program is ending.
    SA_STOP
};

// What the resource locator asks of the windows: the Find Resource dialog and a chooser. Without a host the
// locator asks nobody.
class TResourceHost
{
public:
    virtual ~TResourceHost() = default;

    // A search of the disc begins, and ends. In between, shown or not, nothing but the dialog may hear of
    // what the person does.
    virtual void BeginSearch() = 0;
    virtual void EndSearch() = 0;
    // The search lasts: its dialog comes up.
    virtual void ShowSearch(const char* name) = 0;
    virtual void ListDirectories(const vector<TString>& directories) = 0;
    // One turn of the message loop; does not block.
    virtual TSearchAnswer Step() = 0;
    // False on Cancel. Takes a file that exists.
    virtual bool ChooseResource(const char* title, const vector<TPathFilter>& filters, TString& path) = 0;
};
