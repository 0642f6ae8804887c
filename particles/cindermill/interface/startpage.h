#pragma once

#include "library/wimp/controls/entrypage.h"

class TCindermillApp;

// What the main window shows as long as no document is open: how to begin. A new effect, a file, one of those
// opened last, or one of the samples by its picture. Below stands the tool's version.
class TStartPage : public TEntryPage
{
public:
    explicit TStartPage(TCindermillApp& app) : App(app) {}
    // The owner hands on what the page reports.
    bool Create(TWindow* owner);
    // What an entry does. False for an id that is none of the page's.
    bool OnEntry(int id);

protected:
    void Fill() override;

private:
    void AddBeginnings();
    void AddRecentFiles();
    void AddSamples();

    TCindermillApp& App;
};
