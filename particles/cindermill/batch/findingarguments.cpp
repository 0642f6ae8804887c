#include "particles/cindermill/batch/findingarguments.h"

#include "library/system/path.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/effectpaths.h"

#include <cstring>

// With a place in a file where an error tells one.
static void AddErrorsOfFile(const char* id, const char* path, const TErrorList& errors,
                            TFindingReport& report)
{
    report.AddFile(path);
    for (const TError* error : errors) {
        const TFileError* ofFile = dynamic_cast<const TFileError*>(error);
        const TString shown = ofFile != nullptr ? GetShownPath(ofFile->GetFileName()) : TString(path);
        TFinding finding = MakeFinding(id, shown, error->GetMessage());
        finding.Line = ofFile != nullptr ? ofFile->GetLine() : 0;
        report.Add(finding);
    }
}

bool TFindingArguments::Read(TArguments& arguments, TString& fault)
{
    bool onlyNames = false;
    while (const char* word = arguments.Take()) {
        if (*word == 0) {
            fault = "The name of a file is empty";
            return false;
        }
        if (onlyNames || std::strncmp(word, "--", 2) != 0)
            Append(Names, word);
        else if (word[2] == 0)
            onlyNames = true;
        else if (!TakeOption(word, arguments, fault))
            return false;
    }
    return true;
}

bool TFindingArguments::TakeOption(const char* word, TArguments& arguments, TString& fault)
{
    if (std::strcmp(word, "--format") == 0) {
        if (ParseFindingFormat(arguments.Take(), Format))
            return true;
        fault = "--format takes text, json, junit or sarif";
        return false;
    }
    if (std::strcmp(word, "--fail-on") == 0) {
        FailOnGiven = true;
        if (ParseSeverity(arguments.Take(), FailOn) && FailOn != FS_NOTE)
            return true;
        fault = "--fail-on takes warning or error";
        return false;
    }
    return TakeOwn(word, arguments, fault);
}

bool TFindingArguments::TakeOwn(const char* word, TArguments& arguments, TString& fault)
{
    for (const TOwnWord& option : Own) {
        if (std::strcmp(word, option.Word) != 0)
            continue;
        if (option.Switch != nullptr) {
            *option.Switch = true;
            return true;
        }
        *option.Value = arguments.Take();
        if (option.Value->Print()[0] != 0)
            return true;
        fault = word;
        fault += " needs a word behind it";
        return false;
    }
    fault = Command;
    fault += " does not know \"";
    fault += word;
    fault += "\"";
    return false;
}

void TFindingArguments::GetFiles(vector<TString>& files) const
{
    for (const TString& name : Names)
        ExpandEffectPaths(name, files);
}

void TFindingArguments::Prepare(TFindingReport& report, const TBatchSession& session) const
{
    report.SetFormat(Format);
    report.SetFailOn(FailOn);
    report.SetProject(session.GetProjectPath());
}

bool TFindingArguments::CheckSetup(TBatchSession& session, bool areTypesNeeded) const
{
    if (session.HasProject() && session.HasNodeTypes(areTypesNeeded))
        return true;
    TellSetup(session);
    return false;
}

void TFindingArguments::TellSetup(const TBatchSession& session) const
{
    if (IsText()) {
        PrintLines(session.GetProjectErrors());
        PrintLines(session.GetNodeTypeErrors());
        return;
    }
    // No project can allow what ends the run.
    const TProject none;
    TFindingReport report(Command, none);
    Prepare(report, session);
    if (session.HasProject())
        AddNodeTypeFindings(session, report);
    else
        AddErrorsOfFile("project.error", session.GetProjectPath(), session.GetProjectErrors(), report);
    report.Write(stdout);
}

void TellNodeTypes(TBatchSession& session, TFindingReport& report)
{
    session.ReadNodeTypes();
    if (session.GetNodeTypeErrors().empty())
        return;
    AddNodeTypeFindings(session, report);
    if (report.IsText())
        PrintLines(session.GetNodeTypeErrors());
}

void AddNodeTypeFindings(const TBatchSession& session, TFindingReport& report)
{
    AddErrorsOfFile("type.error", GetShownPath(session.GetNodeTypesPath()), session.GetNodeTypeErrors(),
                    report);
}
