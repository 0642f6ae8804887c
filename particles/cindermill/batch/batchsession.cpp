#include "particles/cindermill/batch/batchsession.h"

#include "library/containers/shortentext.h"
#include "library/system/file.h"
#include "particles/cindermill/batch/arguments.h"
#include "particles/cindermill/batch/effectfindings.h"
#include "particles/cindermill/main/document.h"
#include "particles/cindermill/main/settingsstore.h"

#include <cstdio>

TBatchSession::TBatchSession() = default;

TBatchSession::~TBatchSession() = default;

bool TBatchSession::ReadOptions(TArguments& arguments, TString& fault)
{
    for (;;) {
        const char* word = arguments.Peek();
        const bool isProject = arguments.TakeIf("--project");
        TString* option = isProject                          ? &ProjectPath
                          : arguments.TakeIf("--node-types") ? &NodeTypesDirectory
                          : arguments.TakeIf("--resources")  ? &ResourcesDirectory
                                                             : nullptr;
        if (option == nullptr)
            return true;
        if (arguments.IsEmpty() || *arguments.Peek() == 0) {
            fault.Format("%s lacks its %s", word, isProject ? "file" : "directory");
            return false;
        }
        *option = arguments.Take();
    }
}

void TBatchSession::GetOptionWords(vector<TString>& words) const
{
    const auto add = [&](const char* option, const TString& value) {
        if (value.IsEmpty())
            return;
        words.push_back(option);
        words.push_back(value);
    };
    add("--project", ProjectPath);
    add("--node-types", NodeTypesDirectory);
    add("--resources", ResourcesDirectory);
}

bool TBatchSession::Init()
{
    if (!ProjectPath.IsEmpty() && !Project.Load(ProjectPath, ProjectErrors))
        return true;
    App.Reset(new TCindermillApp(Project.IsLoaded() ? OpenNoSettings() : OpenSettingsStore()));
    if (!App->InitHeadless())
        return false;
    if (Project.IsLoaded()) {
        TSettings& settings = App->GetSettings();
        settings.SetPolicyFailurePreventsExport(Project.GetPolicies().FailurePreventsExport);
        settings.SetPolicyMustHaveBoundingBox(Project.GetPolicies().MustHaveBoundingBox);
        settings.SetPolicyNoMixedBoundingBoxes(Project.GetPolicies().NoMixedBoundingBoxes);
    }
    if (!ResourcesDirectory.IsEmpty() && !IsDirectory(ResourcesDirectory))
        PrintMessage(ResourcesDirectory, "This is no folder: nothing is found in it");
    if (!ResourcesDirectory.IsEmpty())
        App->GetResourceLocator().AddSearchDirectory(ResourcesDirectory);
    if (!Project.GetResources().IsEmpty())
        App->GetResourceLocator().AddSearchDirectory(Project.GetResources());
    if (NodeTypesDirectory.IsEmpty())
        NodeTypesDirectory = Project.GetNodeTypes();
    return true;
}

// A directory that somebody names is meant to hold types.
bool TBatchSession::HasNodeTypes(bool areNeeded)
{
    if (NodeTypesDirectory.IsEmpty() && !areNeeded)
        return true;
    ReadNodeTypes();
    return App->GetNodeTypes().GetNumTypes() > 0;
}

void TBatchSession::TellPolicies()
{
    const TSettings& settings = App->GetSettings();
    const struct
    {
        bool IsOn;
        const char* Text;
    } policies[] = {
        {settings.GetPolicyFailurePreventsExport(), "policy failure prevents export"},
        {settings.GetPolicyMustHaveBoundingBox(), "effects must have bounding box"},
        {settings.GetPolicyNoMixedBoundingBoxes(), "effects cannot mix static and dynamic bounding boxes"},
    };
    if (Project.IsLoaded())
        std::fprintf(stderr,
                     "The export policies are those of the project %s: ", OneLineText(ProjectPath).Print());
    else
        std::fprintf(stderr, "The export policies are those of the user's settings: ");
    const char* between = "";
    for (const auto& policy : policies) {
        if (!policy.IsOn)
            continue;
        std::fprintf(stderr, "%s%s", between, policy.Text);
        between = "; ";
    }
    std::fputs(*between == 0 ? "none\n" : "\n", stderr);
}

void TBatchSession::FindNodeTypes()
{
    NodeTypesPath = NodeTypesDirectory;
    if (!NodeTypesPath.IsEmpty() || App->FindNodeTypesDirectory(NodeTypesPath))
        return;
    NodeTypesPath = App->GetProgramDirectory();
    NodeTypesPath += "\\NodeTypes";
}

void TBatchSession::ReadNodeTypes()
{
    if (NodeTypesRead)
        return;
    NodeTypesRead = true;
    FindNodeTypes();
    App->LoadNodeTypes(NodeTypesPath, NodeTypeErrors);
}

void TBatchSession::LoadNodeTypes()
{
    ReadNodeTypes();
    PrintLines(NodeTypeErrors);
}

bool TBatchSession::Load(TDocument& document, const char* path)
{
    TLogCapture quiet(DropLine, nullptr);
    return document.BatchLoad(path) && CheckLoaded(document);
}

bool TBatchSession::LoadFile(TDocument& document, const char* path)
{
    const bool loaded = Load(document, path);
    if (!loaded)
        PrintMessage(path, document.GetLoadError());
    for (const TError* note : document.GetLoadNotes())
        PrintMessage(path, note->GetMessage());
    return loaded;
}

// The library is read only for a file whose own links may need it; what is wrong with it is told by "types".
bool TBatchSession::CheckLoaded(TDocument& document)
{
    if (document.CheckLoaded(false))
        return true;
    ReadNodeTypes();
    return document.CheckLoaded();
}

// The types of polytype ports are not in the file: they are settled once, here.
static bool SettleTypes(TDocument& document, TString& text)
{
    return RunGuarded([&] { document.GetGraph()->GraphChanged(); }, text);
}

bool TBatchSession::LoadGraph(TDocument& document, const char* path)
{
    if (!LoadFile(document, path))
        return false;
    TString text;
    if (SettleTypes(document, text))
        return true;
    PrintMessage(path, text);
    return false;
}

bool TBatchSession::LoadGraph(TDocument& document, const char* path, TFindingReport& report)
{
    TEffectFindings findings(document, path, report);
    const bool loaded = report.IsText() ? LoadFile(document, path) : Load(document, path);
    if (!loaded)
        findings.Add("load.failed", document.GetLoadError().Print());
    if (document.GetGraph() != nullptr)
        findings.AddErrors("load.mended", document.GetLoadNotes());
    if (!loaded)
        return false;
    TString text;
    if (SettleTypes(document, text))
        return true;
    findings.Add("load.failed", text);
    if (report.IsText())
        PrintMessage(path, text);
    return false;
}

void DropLine(const char* text, void* data)
{
    (void)text;
    (void)data;
}

void KeepFirstLine(const char* text, void* data)
{
    TString& line = *static_cast<TString*>(data);
    if (line.IsEmpty()) {
        line = text;
        line.Trim();
    }
}

void PrintErrors(TBatchResult result, const TErrorList& errors)
{
    TDocument::LogBatchResult(result, errors);
}

// A line of the log, with the file ahead that it is about.
static void PrintOfFile(const char* text, void* data)
{
    PrintMessage(*static_cast<const TString*>(data), text);
}

void PrintErrorsOfFile(const char* path, TBatchResult result, const TErrorList& errors)
{
    TString file(path);
    const TLogCapture capture(PrintOfFile, &file);
    PrintErrors(result, errors);
}

void PrintMessage(const char* path, const char* message)
{
    TString text(message);
    text.Trim();
    std::fprintf(stderr, "%s: %s\n", *path != 0 ? OneLineText(path).Print() : "\"\"",
                 OneLineText(text).Print());
}

void PrintLines(const TErrorList& errors)
{
    for (const TError* error : errors) {
        TString text;
        error->GetText(text);
        text.Trim();
        std::fprintf(stderr, "%s\n", OneLineText(text).Print());
    }
}
