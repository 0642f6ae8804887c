#include "particles/cindermill/batch/typescommand.h"

#include "library/containers/shortentext.h"
#include "library/system/path.h"
#include "particles/cindermill/batch/batchsession.h"
#include "particles/cindermill/batch/findingarguments.h"
#include "particles/cindermill/batch/findings/jsontext.h"

#include <cstdio>

namespace {

void PrintPorts(const char* name, int type, bool& first)
{
    std::printf("%s%s:%s", first ? "" : ", ", OneLineText(name).Print(), GetTypeName(type));
    first = false;
}

void PrintTypes(const TNodeTypeLibrary& library)
{
    for (int i = 0; i < library.GetNumTypes(); ++i) {
        const TNodeType& type = *library.GetType(i);
        std::printf("%s\t%s\t%s\t", OneLineText(type.Name).Print(), GetUsageName(type.Category),
                    OneLineText(type.ClassName).Print());
        bool first = true;
        for (int p = 0; p < type.GetNumInputs(); ++p)
            PrintPorts(type.GetInput(p)->Name.Print(), type.GetBasicInputType(p), first);
        std::putchar('\t');
        first = true;
        for (int p = 0; p < type.GetNumOutputs(); ++p)
            PrintPorts(type.GetOutput(p).Name.Print(), type.GetOutput(p).Type, first);
        std::putchar('\n');
    }
}

void WritePort(TJsonText& json, const char* name, int type)
{
    json.BeginObject();
    json.Text("name", name);
    json.Text("type", GetTypeName(type));
    json.EndObject();
}

// The one file that such a run looks at is the library's directory.
class TTypesReport final : public TFindingReport
{
public:
    TTypesReport(const TFindingJudge& judge, const TNodeTypeLibrary& library)
        : TFindingReport("types", judge), Library(library)
    {
    }
    void WriteFacts(TJsonText& json) const override
    {
        json.BeginArray("types");
        for (int i = 0; i < Library.GetNumTypes(); ++i)
            WriteType(json, i);
        json.EndArray();
    }

private:
    void WriteType(TJsonText& json, int index) const
    {
        const TNodeType& type = *Library.GetType(index);
        TString path;
        Library.GetTypePath(index, path);
        json.BeginObject();
        json.Text("name", type.Name);
        json.Text("category", GetUsageName(type.Category));
        json.Text("class", type.ClassName);
        json.Text("file", GetShownPath(path));
        json.BeginArray("inputs");
        for (int p = 0; p < type.GetNumInputs(); ++p)
            WritePort(json, type.GetInput(p)->Name, type.GetBasicInputType(p));
        json.EndArray();
        json.BeginArray("outputs");
        for (int p = 0; p < type.GetNumOutputs(); ++p)
            WritePort(json, type.GetOutput(p).Name, type.GetOutput(p).Type);
        json.EndArray();
        json.EndObject();
    }

    const TNodeTypeLibrary& Library;
};

} // namespace

TTypesCommand::TTypesCommand() : TBatchCommand("types", "[--format F] [--fail-on S]") {}

const char* TTypesCommand::GetHelp() const
{
    return "Prints one line for each node type: name, category, run-time class, inputs and outputs, "
           "separated\n"
           "by tabs.\n"
           "\n"
           "  --format F            text, json, junit or sarif; text unless told\n"
           "  --fail-on S           status 1 from this severity on: warning (unless told) or error\n";
}

int TTypesCommand::Run(TBatchSession& session, TArguments& arguments) const
{
    TFindingArguments words(Name);
    TString fault;
    if (!words.Read(arguments, fault))
        return ReportUsage("%s", fault.Print());
    if (!words.GetNames().empty())
        return ReportUsage("types takes no arguments");
    if (!words.CheckSetup(session))
        return StatusErrors;
    const TNodeTypeLibrary& library = session.GetApp().GetNodeTypes();
    TTypesReport report(session.GetProject(), library);
    words.Prepare(report, session);
    session.ReadNodeTypes();
    AddNodeTypeFindings(session, report);
    if (words.IsText()) {
        PrintLines(session.GetNodeTypeErrors());
        PrintTypes(library);
    }
    report.Write(stdout);
    return report.HasFailed() ? StatusErrors : StatusDone;
}
