#include "particles/cindermill/batch/exportcommand.h"

#include "library/containers/append.h"
#include "library/system/file.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/dependencyfile.h"
#include "particles/cindermill/batch/effectdependencies.h"
#include "particles/cindermill/batch/effectfindings.h"
#include "particles/cindermill/batch/findingarguments.h"
#include "particles/cindermill/main/document.h"

namespace {

// Everything that another export of the effect would read.
void GetExportFiles(TBatchSession& session, TDocument& document, const char* in, vector<TString>& files)
{
    Append(files, in);
    if (session.GetProject().IsLoaded())
        Append(files, session.GetProject().GetPath());
    session.ReadNodeTypes();
    vector<TDependency> dependencies;
    GetEffectDependencies(*document.GetGraph(), session.GetApp(), dependencies);
    for (const TDependency& dependency : dependencies)
        if (!dependency.Path.IsEmpty())
            Append(files, dependency.Path);
}

// No file that is read may be written over.
bool IsAmong(const vector<TString>& files, const char* path)
{
    for (const TString& file : files)
        if (IsSameFile(file, path)) {
            PrintMessage(path, "The effect hangs on this file, which its export would replace");
            return true;
        }
    return false;
}

bool WriteDepfile(const vector<TString>& files, const char* out, const char* depfile)
{
    TString fault;
    if (WriteDependencyFile(depfile, out, files, fault))
        return true;
    TString text("The file cannot be written: ");
    text += fault.Print();
    PrintMessage(depfile, text);
    return false;
}

} // namespace

TExportCommand::TExportCommand()
    : TBatchCommand("export", "FILE OUT.efx [--depfile FILE] [--fail-on S] [--verbose]")
{
}

const char* TExportCommand::GetHelp() const
{
    return "Writes the console file.\n"
           "\n"
           "  --depfile FILE        writes what the export hangs on as a rule for a build system\n"
           "  --fail-on S           status 1 from this severity on: warning (unless told) or error\n"
           "  --verbose             says where the export policies come from\n";
}

int TExportCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    TString depfile;
    bool isVerbose = false;
    TFindingArguments words(Name);
    words.AddValue("--depfile", depfile);
    words.AddSwitch("--verbose", isVerbose);
    TString fault;
    if (!words.Read(arguments, fault))
        return ReportUsage("%s", fault.Print());
    if (words.GetNames().size() != 2 || !words.IsText())
        return ReportUsage("export takes a file and the file to write");
    const TString& in = words.GetNames()[0];
    const TString& out = words.GetNames()[1];
    if (IsSameFile(in, out)) {
        PrintMessage(out, "This is the effect itself, which its export would replace");
        return StatusErrors;
    }
    if (!depfile.IsEmpty() && (depfile.Compare(out, true) == 0 || IsSameFile(depfile, out))) {
        PrintMessage(depfile, "This is the export itself, which its rule would replace");
        return StatusErrors;
    }
    if (isVerbose)
        session.TellPolicies();
    TFindingReport report(Name, session.GetProject());
    words.Prepare(report, session);
    TDocument document(session.GetApp());
    if (!session.LoadGraph(document, in, report))
        return StatusErrors;
    vector<TString> files;
    GetExportFiles(session, document, in, files);
    if (IsAmong(files, out) || (!depfile.IsEmpty() && IsAmong(files, depfile)))
        return StatusErrors;
    // Ahead of the export: with an older rule it would be taken for done, whatever ends the program between
    // the two.
    if (!depfile.IsEmpty() && !WriteDepfile(files, out, depfile))
        return StatusErrors;
    TErrorList errors;
    TBatchResult result;
    {
        TLogCapture quiet(DropLine, nullptr);
        result = document.BatchExport(out, errors);
    }
    PrintErrors(result, errors);
    TEffectFindings(document, in, report).AddErrors("export.warning", errors);
    if (result != BR_DONE)
        return StatusErrors;
    return report.HasFailed() ? StatusErrors : StatusDone;
}
