#include "particles/cindermill/batch/batchsession.h"

#include "particles/cindermill/batch/arguments.h"
#include "particles/cindermill/main/document.h"
#include "particles/cindermill/main/settingsstore.h"

#include <cstdio>

TBatchSession::TBatchSession() = default;

TBatchSession::~TBatchSession() = default;

bool TBatchSession::ReadOptions(TArguments& arguments)
{
    for (;;) {
        TString* option = arguments.TakeIf("--node-types")  ? &NodeTypesDirectory
                          : arguments.TakeIf("--resources") ? &ResourcesDirectory
                                                            : nullptr;
        if (option == nullptr)
            return true;
        if (arguments.IsEmpty())
            return false;
        *option = arguments.Take();
    }
}

void TBatchSession::GetOptionWords(vector<TString>& words) const
{
    const auto add = [&](const char* option, const TString& directory) {
        if (directory.IsEmpty())
            return;
        words.push_back(option);
        words.push_back(directory);
    };
    add("--node-types", NodeTypesDirectory);
    add("--resources", ResourcesDirectory);
}

bool TBatchSession::Init()
{
    App.Reset(new TCindermillApp(OpenSettingsStore()));
    if (!App->InitHeadless())
        return false;
    if (!ResourcesDirectory.IsEmpty())
        App->GetResourceLocator().AddSearchDirectory(ResourcesDirectory);
    return true;
}

void TBatchSession::ReadNodeTypes(TErrorList& errors)
{
    TString directory = NodeTypesDirectory;
    if (directory.IsEmpty() && !App->FindNodeTypesDirectory(directory)) {
        directory = App->GetProgramDirectory();
        directory += "\\NodeTypes";
    }
    App->LoadNodeTypes(directory, errors);
    NodeTypesRead = true;
}

void TBatchSession::LoadNodeTypes()
{
    TErrorList errors;
    ReadNodeTypes(errors);
    for (const TError* error : errors) {
        TString text;
        error->GetText(text);
        text.Trim();
        std::fprintf(stderr, "%s\n", text.Print());
    }
    NodeTypesSound = errors.empty();
}

bool TBatchSession::LoadFile(TDocument& document, const char* path)
{
    bool loaded = false;
    {
        TLogCapture quiet(DropLine, nullptr);
        loaded = document.BatchLoad(path) && CheckLoaded(document);
    }
    if (!loaded)
        std::fprintf(stderr, "%s: %s\n", path, document.GetLoadError().Print());
    for (const TError* note : document.GetLoadNotes())
        std::fprintf(stderr, "%s: %s\n", path, note->GetMessage().Print());
    return loaded;
}

// The library is read only for a file whose own links may need it; what is wrong with it is told by "types".
bool TBatchSession::CheckLoaded(TDocument& document)
{
    if (document.CheckLoaded(false))
        return true;
    TErrorList ignored;
    if (!NodeTypesRead)
        ReadNodeTypes(ignored);
    return document.CheckLoaded();
}

// The types of polytype ports are not in the file: they are settled once, here.
bool TBatchSession::LoadGraph(TDocument& document, const char* path)
{
    if (!LoadFile(document, path))
        return false;
    TString text;
    if (RunGuarded([&] { document.GetGraph()->GraphChanged(); }, text))
        return true;
    std::fprintf(stderr, "%s: %s\n", path, text.Print());
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
