#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

class TDocument;
class TDocWindow;
class TDocumentHost;
class TWindow;

// A line of a chooser's list of kinds.
struct TPathFilter
{
    const char* Description;
    const char* Pattern;
};

// The buttons of the Modified Files dialog.
enum TModifiedAnswer
{
    MA_YES,
    MA_NO,
    MA_CANCEL
};

// The buttons of the question about autosaved effects.
enum TRecoveryAnswer
{
    RA_RESTORE,
    RA_DISCARD,
    RA_LATER
};

// What the application asks of its windows. Messages, questions and error lists have forms of their own:
// ShowMessage, AskQuestion and DisplayErrors.
class TAppHost
{
public:
    virtual ~TAppHost() = default;

    // The windows of a document that is about to be made. The application deletes them with the document,
    // which has told them to close by then.
    virtual TDocumentHost* CreateDocumentHost() = 0;

    // Choosers; false on Cancel. A null directory is the one last chosen from with these filters. The one for
    // opening takes files that exist; the one for saving asks nothing about those that do, and begins with
    // the name that the path holds, if it holds one.
    virtual bool ChooseOpenPath(const char* title, const vector<TPathFilter>& filters, const char* directory,
                                TString& path) = 0;
    virtual bool ChooseSavePath(const char* title, const vector<TPathFilter>& filters, const char* directory,
                                TString& path) = 0;
    virtual bool ChooseFolder(const char* title, TString& path) = 0;
    virtual TModifiedAnswer AskModifiedFiles(const vector<TString>& names) = 0;
    // What to do with effects that were autosaved by a program that has ended.
    virtual TRecoveryAnswer AskRecovery(const vector<TString>& effects)
    {
        (void)effects;
        return RA_LATER;
    }
    // The File Properties dialog: the document's report, and how its preview and its export agree.
    virtual void ShowProperties(TDocument& document, const char* text) = 0;
    // The Options dialog.
    virtual void ShowOptions() = 0;
    virtual void Beep() = 0;

    // Makes the Recent Files menu anew; oldest first, the newest stands on top.
    virtual void RebuildRecentFiles(const vector<TString>& files) = 0;
    virtual void FocusSelected(TDocWindow& window) = 0;
    virtual void FocusAll(TDocWindow& window) = 0;
    // What the delete key does in the graph of the window.
    virtual void DeleteIn(TDocWindow& window) = 0;
    // Whether a control of that graph has the focus that takes the delete key for itself.
    virtual bool TakesDelete(TDocWindow& window) = 0;
    // Places the document windows in a cascade.
    virtual void Cascade() = 0;
    // The window at a position of the screen, or null.
    virtual TWindow* WindowFromPoint(int x, int y) = 0;
    // What was typed and not yet entered is entered, and a drag that still runs is given up: before anything
    // that reads or changes a document.
    virtual void EndInput() {}
    // While the mouse drags something, an edit is under way.
    virtual bool IsDragging() { return false; }
    // Once an idle pass, before those of the documents: what is drawn goes on by itself.
    virtual void RunTicks() {}
    // A line about what has been done, for whoever looks for it.
    virtual void ShowStatus(const char* text) { (void)text; }
    // Whether none was shown since that one.
    virtual bool IsLastStatus(const char* text)
    {
        (void)text;
        return false;
    }
    // Ends the message loop at its next turn.
    virtual void Quit() = 0;
};
