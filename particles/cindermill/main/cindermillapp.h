#pragma once

#include "particles/cindermill/main/clipboard.h"
#include "particles/cindermill/main/resourcelocator.h"
#include "particles/cindermill/main/settings.h"
#include "particles/effectgraph/nodetypelibrary.h"

class TErrorList;
class TSettingsStore;

// Makes every class known that files and node types name.
void RegisterAllClasses();

// The one object that lives for the whole run: settings, node types, the resource locator and the clipboard.
class TCindermillApp
{
public:
    // Takes the store over.
    explicit TCindermillApp(TSettingsStore* store);
    ~TCindermillApp();
    TCindermillApp(const TCindermillApp&) = delete;
    TCindermillApp& operator=(const TCindermillApp&) = delete;

    // The instance; asserts that there is one.
    static TCindermillApp& Get();

    // The start without windows and questions. No node types are loaded.
    bool InitHeadless();
    bool IsHeadless() const { return HeadlessMode; }
    // Where the node types lie: the settings' directory, which may be relative to the working directory or to
    // the program. False if there is none.
    bool FindNodeTypesDirectory(TString& path) const;
    void LoadNodeTypes(const char* path, TErrorList& errors);

    // "Cindermill v0.0 (...) Build ...".
    static void GetVersion(TString& version);

    TSettings& GetSettings() { return Settings; }
    TNodeTypeLibrary& GetNodeTypes() { return NodeTypes; }
    TResourceLocator& GetResourceLocator() { return ResourceLocator; }
    TClipboard& GetClipboard() { return Clipboard; }
    // Without a separator at its end.
    const TString& GetProgramDirectory() const { return ProgramDirectory; }

private:
    static TCindermillApp* StaticInstance;

    TSettingsStore* Store;
    TSettings Settings;
    TNodeTypeLibrary NodeTypes;
    TResourceLocator ResourceLocator;
    TClipboard Clipboard;
    TString ProgramDirectory;
    bool HeadlessMode = false;
};
