#pragma once

#include "support/changedlibrary.h"

#include <map>
#include <string>
#include <vector>

class TCindermillApp;
class TDocument;
class TErrorList;

// Takes a random document with its history through libraries that change from one run of the program to the
// next, the refresh accepted or declined, and sees whether the document keeps what it must keep: it loads,
// its checks hold, every value that the new type still knows is there, undo and redo reach both ends of the
// history, and what is saved loads again, asks for no second refresh, and is saved with the same bytes.
//
// Failed assertions and questions are the trial's while it runs.
class TRefreshTrial
{
public:
    // The trial works in the folder, which must be there; several trials may use the same one after another.
    TRefreshTrial(const std::string& folder, const TChangedLibrary& library, TDice& dice);

    // Effects that some of the trials begin with.
    void SetSamples(const std::vector<std::string>& paths) { Samples = paths; }
    // False: GetFault tells what did not hold.
    bool Run();
    const std::string& GetFault() const { return Fault; }
    // What was done, a line each.
    const std::string& GetStory() const { return Story; }
    // How often this and that was met.
    const std::map<std::string, int>& GetCounts() const { return Counts; }

private:
    bool Build();
    bool Round();
    bool LoadChanged(TDocument& before, TDocument& after);
    bool CheckRefreshed(TDocument& before, TDocument& after);
    bool CheckReopened(TCindermillApp& app, TDocument& document);
    bool CheckHistory(TDocument& document, const char* where);
    // To one end of the history.
    bool Walk(TDocument& document, bool (TDocument::*canStep)() const, void (TDocument::*step)(),
              const char* where);
    bool CheckSound(TDocument& document, const char* where);
    // The document need not be good for a schedule, but then errors tell of it.
    bool CheckRuns(TDocument& document, std::string& exported);
    bool Save(TDocument& document, const std::string& path);
    int CountStale(TDocument& document) const;
    void LikeTypesOf(TDocument& document);
    void CountErrors(const char* what, const TErrorList& errors);
    bool Fail(const std::string& what);

    std::string Path(const char* leaf) const { return Folder + "/" + leaf; }

    std::string Folder;
    TChangedLibrary Library;
    TDice& Dice;
    std::vector<std::string> Samples;
    // The names of the types that the document uses.
    std::vector<std::string> Liked;
    bool Accepts = false;
    // Whether the last load asked, and was told to refresh.
    bool Refreshed = false;
    std::string Fault;
    std::string Story;
    std::map<std::string, int> Counts;
};
