#include "particles/cindermill/main/cindermillapp.h"

#include "library/system/file.h"
#include "library/system/path.h"
#include "particles/cindermill/graph/graphoperations.h"
#include "particles/cindermill/graph/nodes/nodes.h"
#include "particles/cindermill/main/settingsstore.h"
#include "particles/effectgraph/effectgraph.h"

TCindermillApp* TCindermillApp::StaticInstance = nullptr;

void RegisterAllClasses()
{
    RegisterEffectGraphClasses();
    RegisterOperations();
    RegisterExecNodes();
}

TCindermillApp::TCindermillApp(TSettingsStore* store)
    : Store(store), Settings(store), ResourceLocator(Settings)
{
    StaticInstance = this;
    RegisterAllClasses();
    TString program;
    GetProgramPath(program);
    program.Replace('/', '\\');
    ProgramDirectory.SetDirectory(program);
}

TCindermillApp::~TCindermillApp()
{
    StaticInstance = nullptr;
    Clipboard.Clear();
    delete Store;
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

bool TCindermillApp::FindNodeTypesDirectory(TString& path) const
{
    const TString& directory = Settings.GetNodeTypesDirectory();
    path = directory;
    if (IsDirectory(path))
        return true;
    const char first = *directory.Print();
    if (first == 0 || first == '/' || first == '\\' || directory.IsAbsolutePath())
        return false;
    path = ProgramDirectory;
    path += "\\";
    path += directory;
    return IsDirectory(path);
}

void TCindermillApp::LoadNodeTypes(const char* path, TErrorList& errors)
{
    NodeTypes.Load(path, errors);
}

void TCindermillApp::GetVersion(TString& version)
{
    version.Format("Cindermill v0.0 (Mar 18 2008, 17:35:08) Build %d", 3879);
}
