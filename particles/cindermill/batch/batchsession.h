#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

class TArguments;

// What every command of one run works with: the application without windows, and the options that stand
// before the command's word.
class TBatchSession
{
public:
    TBatchSession();
    ~TBatchSession();

    // Takes the options; false where one lacks its directory.
    bool ReadOptions(TArguments& arguments);
    // The options again, as another program of the tool takes them.
    void GetOptionWords(vector<TString>& words) const;
    // Must succeed before all that follows.
    bool Init();
    // Reads the whole library now, and tells on the standard error what is wrong with it.
    void LoadNodeTypes();
    // False where LoadNodeTypes told something.
    bool AreNodeTypesSound() const { return NodeTypesSound; }
    TCindermillApp& GetApp() { return *App; }

    // Each of these reports what is wrong on the standard error, naming the file.
    bool LoadFile(TDocument& document, const char* path);
    // A file whose graph is ready to be scheduled.
    bool LoadGraph(TDocument& document, const char* path);

private:
    void ReadNodeTypes(TErrorList& errors);
    bool CheckLoaded(TDocument& document);

    TOwner<TCindermillApp> App;
    bool NodeTypesRead = false;
    bool NodeTypesSound = true;
    TString NodeTypesDirectory;
    TString ResourcesDirectory;
};

// The log of what is told in other ways, or to no one.
void DropLine(const char* text, void* data);
// The first reason that a library gives for refusing a file, for the message about it. `data` is a TString.
void KeepFirstLine(const char* text, void* data);
// The errors in the wording of the batch export.
void PrintErrors(TBatchResult result, const TErrorList& errors);
