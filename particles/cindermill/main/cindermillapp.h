#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/main/autosave.h"
#include "particles/cindermill/main/changenotify.h"
#include "particles/cindermill/main/comparisonturns.h"
#include "particles/cindermill/main/resourcelocator.h"
#include "particles/cindermill/main/sampleeffects.h"
#include "particles/cindermill/main/settings.h"
#include "particles/cindermill/main/sharedclipboard.h"
#include "particles/cindermill/main/texturewatch.h"
#include "particles/effectgraph/nodetypelibrary.h"

class TAppHost;
class TDocument;
class TDocWindow;
class TErrorList;
class TOpenFaults;
class TSettingsStore;

// Makes every class known that files and node types name.
void RegisterAllClasses();

// The commands of the menus, by their ids.
enum TMenuId
{
    MI_NEW = 57600,
    MI_OPEN = 57601,
    MI_SAVE = 57603,
    MI_SAVEAS = 57604,
    MI_EXPORT = 40006,
    MI_PROPERTIES = 40211,
    MI_RECENTFILES = 40009,
    // The first of the recent files; the others follow.
    MI_RECENTFILE = 40010,
    MI_EXIT = 40001,
    MI_UNDO = 57643,
    MI_REDO = 57644,
    MI_CUT = 57635,
    MI_COPY = 57634,
    MI_PASTE = 57637,
    MI_DELETE = 40002,
    MI_FOCUSSELECTED = 40213,
    MI_FOCUSALL = 40214,
    MI_NEWVIEW = 40004,
    MI_SHOWPARTICLES = 40005,
    MI_OPTIONS = 40210,
    MI_CASCADE = 57650
};

// The store may hold any number of recent files. Those beyond this many would share their ids with commands.
constexpr int MaxRecentEntries = 200;

// The one object that lives for the whole run: open documents, settings, node types, the resource locator,
// the change watcher and the clipboard. The windows stand above it and are reached through the host.
class TCindermillApp
{
public:
    // Takes the store over. Without a host there are no windows: a batch run.
    explicit TCindermillApp(TSettingsStore* store, TAppHost* host = nullptr);
    // Open documents are left as they are: a program that ends has asked about them.
    ~TCindermillApp();

    // The instance; asserts that there is one.
    static TCindermillApp& Get();

    // The start without windows and questions. No node types are loaded.
    bool InitHeadless();
    // The first steps of the start with windows: the settings, then the locator. Failures are shown.
    bool InitSettings();
    // The later steps, once the main window stands: node types are found, with a question where they lie, and
    // loaded. False to end the program.
    bool InitNodeTypes();
    bool IsHeadless() const { return HeadlessMode; }
    // Where the node types lie: the settings' directory, which may be relative to the working directory, to
    // the program, or to one of the folders that the program lies in. False if there is none.
    bool FindNodeTypesDirectory(TString& path) const;
    void LoadNodeTypes(const char* path, TErrorList& errors);
    // The node types as they stand in their files now, with the errors shown. Each open document asks about
    // its nodes as it does when it is opened. Nothing happens while an edit is under way.
    void ReloadNodeTypes();

    // "Cindermill v0.0 (...) Build ...".
    static void GetVersion(TString& version);
    // True if there is no such file, or else if the user agrees.
    static bool ConfirmOverwrite(const char* path);

    // One idle pass: every document's, then the change watcher's.
    void OnIdle();
    // About once a second, also while something waits for an answer.
    void OnClock();
    // A pass while a dialog or a menu waits: the effects go on whose documents nothing is being done to.
    void OnWait();
    // The view that commands go to, and its document; nulls for none. Views call it when they are clicked.
    void SetActiveDocWindow(TDocWindow* window, TDocument* document);
    TDocWindow* GetActiveDocWindow() const { return ActiveDocWindow; }
    TDocument* GetActiveDocument() const { return ActiveDocument; }
    // In the order in which they were opened.
    const vector<TDocument*>& GetDocuments() const { return Documents; }

    // What a menu entry does. False for an id that is none of the menus'.
    bool OnMenu(int id);
    bool NewDocument();
    bool OpenDocument(const char* path);
    // What cannot be opened is told once for all of them.
    void OpenDocuments(const vector<TString>& files);
    void OpenDocumentDialog();
    void SaveActive();
    void SaveActiveAs();
    // False: nothing was saved, and the caller must stop what it is doing. A write that failed was told to
    // the user, leaves the document modified, and counts as true.
    bool Save(TDocument& document);
    bool SaveAs(TDocument& document);
    void TellNotSaved(TDocument& document, const char* path);
    // In the status bar: what was done with a file that is written now. Returns the line; only with a host.
    TString TellWritten(const char* what, const char* path);
    void ExportActive();
    // Asks about unsaved work, then deletes the document with its windows: a window that calls this from its
    // own message may not be touched after it.
    void CloseDocument(TDocument* document);
    // The Exit command and the main window's close box.
    void ExitRequest();
    // Begins to keep recovery files in the state folder, and asks about those of programs that have ended:
    // after the start, once documents can be opened.
    void StartAutosave(const char* folder);
    // The system ends the program, and nobody can be asked any more. What is in the middle of something is
    // kept in the second call, when the message loop has ended.
    void OnEnding();
    void EndUnasked();
    // A position of the screen.
    void OnDropFiles(int x, int y, const vector<TString>& files);
    void AddRecentFile(const char* path);
    void CopyToClipboard(const vector<TToolNode*>& nodes);
    // Whether there are nodes to paste now; if not, the reason is told.
    bool PreparePaste();
    // Why an entry of the Edit menu has nothing to do now; null if it has.
    const char* GetIdleReason(int menuId);
    // New nodes of the document, connected as the copied ones were, not yet in its graph.
    void PasteFromClipboard(TDocument& document, vector<TToolNode*>& nodes);

    TSettings& GetSettings() { return Settings; }
    TNodeTypeLibrary& GetNodeTypes() { return NodeTypes; }
    TResourceLocator& GetResourceLocator() { return ResourceLocator; }
    TChangeNotify& GetChangeNotify() { return ChangeNotify; }
    TSharedClipboard& GetSharedClipboard() { return Clipboard; }
    TClipboard& GetClipboard() { return Clipboard.GetClipboard(); }
    TAutosave& GetAutosave() { return Autosave; }
    TSampleEffects& GetSamples() { return Samples; }
    // Without a separator at its end.
    const TString& GetProgramDirectory() const { return ProgramDirectory; }

private:
    static TCindermillApp* StaticInstance;

    bool FindFolder(const char* name, TString& path) const;
    bool OnRecentFile(int id);
    bool OnDocumentMenu(int id);
    bool OnViewMenu(int id);
    bool AddDocument(const char* path, TOpenFaults& faults);
    // Null, with the reason, if the document cannot be had. No path is a new one.
    TDocument* MakeDocument(const char* path, const TLostEffect* recovery, TString& fault);
    void Restore(const vector<TLostEffect>& lost);
    void TellDamaged(const TDamagedEffect& damaged);
    void DeleteDocument(TDocument* document);
    bool ChooseEffect(bool open, const char* title, const char* directory, TString& path);
    bool ChooseSavePlace(const TDocument& document, TString& path);
    bool ChooseExportPlace(const TDocument& document, TString& path);
    bool MakeWritable(const char* path, const char* purpose);
    bool ConfirmChanged(const TDocument& document);
    bool IsOpenEffect(const char* path);
    bool SettleModified(const vector<TDocument*>& documents);
    void RedrawDocuments();
    bool DropAnimation(int x, int y, const char* file);

    TAppHost* Host;
    vector<TDocument*> Documents;
    TDocWindow* ActiveDocWindow = nullptr;
    TDocument* ActiveDocument = nullptr;
    TOwner<TSettingsStore> Store;
    TSettings Settings;
    TNodeTypeLibrary NodeTypes;
    TResourceLocator ResourceLocator;
    TChangeNotify ChangeNotify;
    TTextureWatch TextureWatch;
    TSharedClipboard Clipboard{NodeTypes};
    TAutosave Autosave;
    TComparisonTurns ComparisonTurns;
    TString ProgramDirectory;
    bool HeadlessMode = false;
    TSampleEffects Samples;
    // The last one that a person chose. Until then, effects to open are looked for among the samples.
    TString ChosenEffect;
    // Likewise.
    TString ChosenExport;
};
