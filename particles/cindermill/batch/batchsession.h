#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/batch/project/project.h"
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

    // Takes the options; false with what is wrong with them.
    bool ReadOptions(TArguments& arguments, TString& fault);
    // The options again, as another program of the tool takes them.
    void GetOptionWords(vector<TString>& words) const;
    // Must succeed before all that follows. With a project nothing is taken from the user's settings.
    bool Init();
    // False for a project that is of no use, and with it the whole run. GetProjectErrors tells why.
    bool HasProject() const { return ProjectErrors.empty(); }
    const TErrorList& GetProjectErrors() const { return ProjectErrors; }
    // As it was given, empty for none.
    const TString& GetProjectPath() const { return ProjectPath; }
    // Whether there are the node types that a run works with: those of a directory that was named, and where
    // they are needed, any. Where there are none, GetNodeTypeErrors tells why.
    bool HasNodeTypes(bool areNeeded);
    // Reads the whole library now, and tells on the standard error what is wrong with it.
    void LoadNodeTypes();
    // The same without telling. What is wrong stands in GetNodeTypeErrors.
    void ReadNodeTypes();
    const TErrorList& GetNodeTypeErrors() const { return NodeTypeErrors; }
    // Where the library is read from.
    const TString& GetNodeTypesPath() const { return NodeTypesPath; }
    TCindermillApp& GetApp() { return *App; }
    // One that says nothing where none was given.
    const TProject& GetProject() const { return Project; }
    // Tells on the standard error where the export policies come from, and which they are.
    void TellPolicies();

    // Each of these reports what is wrong on the standard error, naming the file.
    bool LoadFile(TDocument& document, const char* path);
    // A file whose graph is ready to be scheduled.
    bool LoadGraph(TDocument& document, const char* path);
    // The same, and what is wrong stands in the report; it is on the standard error only where the report is
    // text.
    bool LoadGraph(TDocument& document, const char* path, TFindingReport& report);

private:
    void FindNodeTypes();
    bool Load(TDocument& document, const char* path);
    bool CheckLoaded(TDocument& document);

    TOwner<TCindermillApp> App;
    TProject Project;
    TErrorList ProjectErrors;
    bool NodeTypesRead = false;
    TErrorList NodeTypeErrors;
    // As it was given, and as it is.
    TString NodeTypesDirectory;
    TString NodeTypesPath;
    TString ResourcesDirectory;
    TString ProjectPath;
};

// The log of what is told in other ways, or to no one.
void DropLine(const char* text, void* data);
// The first reason that a library gives for refusing a file, for the message about it. `data` is a TString.
void KeepFirstLine(const char* text, void* data);
// The errors in the wording of the batch export.
void PrintErrors(TBatchResult result, const TErrorList& errors);
// The same of one file of several: each line names it.
void PrintErrorsOfFile(const char* path, TBatchResult result, const TErrorList& errors);
// What is wrong with a file, in one line.
void PrintMessage(const char* path, const char* message);
// Each in a line of its own.
void PrintLines(const TErrorList& errors);
