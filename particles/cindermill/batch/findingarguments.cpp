#include "particles/cindermill/batch/findingarguments.h"

#include "library/system/path.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/effectpaths.h"

#include <cstring>

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
    report.SetProject(session.GetProject().GetPath());
}

bool TFindingArguments::CheckNodeTypes(TBatchSession& session, bool areNeeded) const
{
    if (session.HasNodeTypes(areNeeded))
        return true;
    if (IsText()) {
        PrintLines(session.GetNodeTypeErrors());
        return false;
    }
    // No project can allow what ends the run.
    const TProject none;
    TFindingReport report(Command, none);
    Prepare(report, session);
    AddNodeTypeFindings(session, report);
    report.Write(stdout);
    return false;
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
    TString directory;
    ToShownPath(session.GetNodeTypesPath(), directory);
    report.AddFile(directory);
    for (const TError* error : session.GetNodeTypeErrors()) {
        TString path;
        const TFileError* ofFile = dynamic_cast<const TFileError*>(error);
        ToShownPath(ofFile != nullptr ? ofFile->GetFileName().Print() : directory.Print(), path);
        TFinding finding = MakeFinding("type.error", path, error->GetMessage());
        finding.Line = ofFile != nullptr ? ofFile->GetLine() : 0;
        report.Add(finding);
    }
}
