#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/batch/arguments.h"
#include "particles/cindermill/main/cindermillapp.h"

class TDocument;
class TErrorList;

// The tool without its windows: one command for each run. It holds no logic of its own, only what turns a
// command line into calls and their results into text. docs/batch.md lists the commands.
//
// Results go to the standard output, messages to the standard error. The exit status is 0 when done with
// nothing to report, 1 when errors were reported, 2 when the command line is wrong.
class TBatchProgram
{
public:
    TBatchProgram();
    ~TBatchProgram();

    int Run(int argc, char** argv);

private:
    using TCommand = int (TBatchProgram::*)(TArguments& arguments);

    struct TCommandEntry
    {
        const char* Name;
        const char* Usage;
        TCommand Function;
        bool NeedsNodeTypes;
    };

    static const TCommandEntry Commands[];

    static int ReportUsage(const char* format, ...) CINDERMILL_PRINTF(1, 2);
    bool ReadOptions(TArguments& arguments);
    int Start(const TCommandEntry& command, TArguments& arguments);
    void ReadNodeTypes(TErrorList& errors);
    bool LoadNodeTypes();

    int Types(TArguments& arguments);
    int Check(TArguments& arguments);
    int Report(TArguments& arguments);
    int Dump(TArguments& arguments);
    int Export(TArguments& arguments);
    int RunEngine(TArguments& arguments);
    int Efx(TArguments& arguments);
    int Translate(TArguments& arguments);
    int Image(TArguments& arguments);
    int Resave(TArguments& arguments);
    int Hash(TArguments& arguments);

    // Each of these reports what is wrong on the standard error, naming the file.
    bool LoadFile(TDocument& document, const char* path);
    bool LoadGraph(TDocument& document, const char* path);
    bool CheckLoaded(TDocument& document);
    bool CheckFile(const char* path);

    TOwner<TCindermillApp> App;
    bool NodeTypesRead = false;
    bool NodeTypesSound = true;
    TString NodeTypesDirectory;
    TString ResourcesDirectory;
};
