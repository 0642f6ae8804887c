#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/graph/operations/operations.h"
#include "particles/effectgraph/effectgraphclasses.h"

#include "library/system/file.h"
#include "library/system/message.h"
#include "library/system/path.h"
#include "particles/cindermill/graph/nodes/nodes.h"
#include "particles/cindermill/main/apphost.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/cindermill/main/document.h"
#include "particles/cindermill/main/documenthost.h"
#include "particles/cindermill/main/settingsstore.h"
#include "particles/effectgraph/effectgraph.h"

namespace {
bool IsFolder(const TString& directory, const char* between, const char* name, TString& path)
{
    path = directory;
    path += between;
    path += name;
    return IsDirectory(path);
}
} // namespace

TCindermillApp* TCindermillApp::StaticInstance = nullptr;

void RegisterAllClasses()
{
    RegisterEffectGraphClasses();
    RegisterOperations();
    RegisterExecNodes();
}

TCindermillApp::TCindermillApp(TSettingsStore* store, TAppHost* host)
    : Host(host), Store(store), Settings(store), ResourceLocator(Settings),
      TextureWatch(Settings, ChangeNotify)
{
    StaticInstance = this;
    RegisterAllClasses();
    TString program;
    GetProgramPath(program);
    program.Replace('/', '\\');
    ProgramDirectory.SetDirectory(program);
    // A folder of that name may hold something else.
    TString samples;
    if (FindFolder("samples\\textures", samples)) {
        samples.TruncateAtLast('\\');
        Samples.SetFolder(samples);
    }
}

TCindermillApp::~TCindermillApp()
{
    StaticInstance = nullptr;
    Clipboard.GetClipboard().Clear();
}

TCindermillApp& TCindermillApp::Get()
{
    ASSERT_TEXT(StaticInstance != nullptr, "StaticInstance != 0");
    return *StaticInstance;
}

bool TCindermillApp::InitHeadless()
{
    HeadlessMode = true;
    Settings.Load();
    if (ResourceLocator.Init(ProgramDirectory, true))
        return true;
    DebugPrintf("Failed to initialise resource locator");
    return false;
}

bool TCindermillApp::InitSettings()
{
    Settings.Load();
    TextureWatch.Start([](void* app) { static_cast<TCindermillApp*>(app)->RedrawDocuments(); }, this);
    if (ResourceLocator.Init(ProgramDirectory, false))
        return true;
    ShowMessage("Failed to initialise resource locator");
    return false;
}

// A directory that the user points at serves for this run only.
bool TCindermillApp::InitNodeTypes()
{
    TString directory;
    if (!FindNodeTypesDirectory(directory)) {
        ShowMessage("Could not scan node types directory - please locate");
        if (!Host->ChooseFolder("Select nodes directory", directory))
            return false;
    }
    TErrorList errors;
    LoadNodeTypes(directory, errors);
    if (!errors.empty())
        DisplayErrors("Loading node types", errors);
    return true;
}

bool TCindermillApp::FindNodeTypesDirectory(TString& path) const
{
    const TString& directory = Settings.GetNodeTypesDirectory();
    path = directory;
    if (IsDirectory(path))
        return true;
    const char first = *directory.Print();
    if (first == 0 || first == '/' || first == '\\' || directory.IsAbsolutePath())
        return false;
    return FindFolder(directory, path);
}

// A program that was installed in the prefix's bin, or in libexec/cindermill, has its data in share; one that
// was not lies some levels below the root of its sources.
bool TCindermillApp::FindFolder(const char* name, TString& path) const
{
    constexpr int Levels = 4;
    constexpr int InstalledLevels = 2;
    TString directory = ProgramDirectory;
    for (int level = 0; level < Levels && !directory.IsEmpty(); ++level) {
        if (IsFolder(directory, "\\", name, path))
            return true;
        directory.TruncateAtLast('\\');
        if (level < InstalledLevels && IsFolder(directory, "\\share\\cindermill\\", name, path))
            return true;
    }
    return false;
}

void TCindermillApp::LoadNodeTypes(const char* path, TErrorList& errors)
{
    NodeTypes.Load(path, errors);
}

// Whoever drags a type, or shows the palette, holds pieces of the library until then.
void TCindermillApp::ReloadNodeTypes()
{
    for (const TDocument* document : Documents)
        if (document->IsInStep())
            return;
    TString directory;
    if (!FindNodeTypesDirectory(directory)) {
        ShowMessage("The node types are not there any more");
        return;
    }
    if (Host != nullptr)
        Host->EndInput();
    for (TDocument* document : Documents)
        if (document->GetHost() != nullptr)
            document->GetHost()->NodeTypesGo(*document);
    TErrorList errors;
    NodeTypes.Clear();
    LoadNodeTypes(directory, errors);
    for (TDocument* document : Documents)
        if (document->GetHost() != nullptr)
            document->GetHost()->NodeTypesCame(*document);
    if (!errors.empty())
        DisplayErrors("Loading node types", errors);
    for (int i = 0; i < Documents.size(); ++i)
        Documents[i]->OfferRefresh();
}

void TCindermillApp::GetVersion(TString& version)
{
    version.Format("Cindermill v0.0 (Mar 18 2008, 17:35:08) Build %d", 3879);
}

void TCindermillApp::SetActiveDocWindow(TDocWindow* window, TDocument* document)
{
    ActiveDocWindow = window;
    ActiveDocument = document;
}

void TCindermillApp::RedrawDocuments()
{
    for (TDocument* document : Documents)
        document->RedrawWindows();
}

void TCindermillApp::OnIdle()
{
    if (Host != nullptr)
        Host->RunTicks();
    for (int i = 0; i < Documents.size(); ++i)
        Documents[i]->OnIdle();
    if (Host == nullptr || !Host->IsDragging()) {
        Autosave.OnIdle(Documents);
        ComparisonTurns.OnIdle(Documents, Host);
    }
    if (Settings.GetAutoCheckUpdate() != 0)
        ChangeNotify.Poll();
}

void TCindermillApp::OnWait()
{
    if (ResourceLocator.IsAsking())
        return;
    for (TDocument* document : Documents)
        if (document->GetHost() != nullptr && !document->IsInStep())
            document->GetHost()->OnWait(*document);
}

void TCindermillApp::OnClock()
{
    if (Host == nullptr || !Host->IsDragging())
        Autosave.SaveDue(Documents);
}
