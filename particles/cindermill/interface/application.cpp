#include "particles/cindermill/interface/application.h"

#include "library/system/message.h"
#include "library/system/statefolder.h"
#include "library/wimp/dialog.h"
#include "library/wimp/filechooser.h"
#include "particles/cindermill/interface/controls/controls.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/errordialog.h"
#include "particles/cindermill/interface/graphwindow.h"
#include "particles/cindermill/interface/options/filepropertiesdialog.h"
#include "particles/cindermill/interface/options/optionsdialog.h"
#include "particles/cindermill/interface/particles/displays.h"
#include "particles/cindermill/interface/trace/attributetracewindow.h"
#include "particles/cindermill/main/document.h"
#include "particles/cindermill/main/settingsstore.h"

namespace {

constexpr int ModifiedFilesDialog = 110;
constexpr int RecoveryDialog = 130;

vector<TFileFilter> ToFileFilters(const vector<TPathFilter>& filters)
{
    vector<TFileFilter> result;
    for (const TPathFilter& filter : filters)
        result.push_back(TFileFilter{filter.Description, filter.Pattern});
    return result;
}

// Where the environment tells no place, windows come back nowhere.
TSettingsStore* OpenPlaces()
{
    TString path;
    if (!GetStateFolder(path) || !MakeFolders(path))
        return nullptr;
    path += "/windows.ini";
    return OpenSettingsFile(path);
}

} // namespace

TApplication::TApplication() : App(OpenSettingsStore(), this), Places(OpenPlaces())
{
    InstallMessageForms();
    InstallErrorDialog();
    RegisterDisplayClasses();
    RegisterControlClasses();
    App.GetResourceLocator().SetHost(&ResourceDialog);
    App.GetSharedClipboard().SetExchange(&Exchange);
}

TApplication::~TApplication()
{
    TWimp::Get().ClearApp();
    TAttributeTraceWindow::CloseAll();
    MainWindow.Reset();
}

bool TApplication::Init()
{
    if (!App.InitSettings())
        return false;
    MainWindow.Reset(new TMainWindow(App));
    if (!MainWindow->Create()) {
        ShowMessage("Failed to create window");
        return false;
    }
    MainWindow->SetPlace(Places.GetMain());
    MainWindow->Show();
    if (!App.InitNodeTypes())
        return false;
    TWimp::Get().SetIdle(true);
    TWimp::Get().SetApp(this);
    if (!LoadNodeBitmaps())
        return false;
    Activation.Start("org.cindermill.Cindermill", *this);
    return true;
}

bool TApplication::LoadNodeBitmaps()
{
    constexpr int Ids[NumNodeBitmaps] = {104, 105, 107, 108};
    for (int i = 0; i < NumNodeBitmaps; ++i)
        if (!NodeBitmaps[i].Load(Ids[i]))
            return false;
    return true;
}

void TApplication::StartAutosave()
{
    TString folder;
    if (!GetStateFolder(folder)) {
        DebugPrintf("Nothing is autosaved: neither XDG_STATE_HOME nor HOME tells a folder for it.\n");
        return;
    }
    folder += "/recovery";
    App.StartAutosave(folder);
}

void TApplication::OnIdle()
{
    App.OnIdle();
}

void TApplication::OnWait()
{
    App.OnWait();
}

void TApplication::OnClock()
{
    App.OnClock();
}

void TApplication::OnActivation(const vector<TString>& files, const TLaunch& launch)
{
    MainWindow->BringToTop(launch);
    App.OpenDocuments(files);
}

void TApplication::KeepPlaces()
{
    TString main;
    if (MainWindow != nullptr)
        MainWindow->GetPlace(main);
    if (main.IsEmpty())
        return;
    Places.SetMain(main);
    for (TDocument* document : App.GetDocuments())
        static_cast<TDocumentWindows*>(document->GetHost())->KeepPlaces(*document);
    Places.Save();
}

void TApplication::EndUnasked()
{
    KeepPlaces();
    App.EndUnasked();
}

void TApplication::OnEnding()
{
    App.OnEnding();
}

TDocumentHost* TApplication::CreateDocumentHost()
{
    return new TDocumentWindows(MainWindow.Get(), &Places);
}

bool TApplication::ChooseOpenPath(const char* title, const vector<TPathFilter>& filters,
                                  const char* directory, TString& path)
{
    return OpenFileChooser(title, ToFileFilters(filters), directory, path);
}

bool TApplication::ChooseSavePath(const char* title, const vector<TPathFilter>& filters,
                                  const char* directory, TString& path)
{
    return SaveFileChooser(title, ToFileFilters(filters), directory, path);
}

bool TApplication::ChooseFolder(const char* title, TString& path)
{
    return FolderChooser(title, path);
}

TModifiedAnswer TApplication::AskModifiedFiles(const vector<TString>& names)
{
    vector<TString> buttons;
    buttons.push_back("Yes");
    buttons.push_back("No");
    buttons.push_back("Cancel");
    switch (ChoiceDialog(ModifiedFilesDialog, "Modified Files", "Save changes to the following files?", names,
                         buttons)) {
    case 0:
        return MA_YES;
    case 1:
        return MA_NO;
    default:
        return MA_CANCEL;
    }
}

TRecoveryAnswer TApplication::AskRecovery(const vector<TString>& effects)
{
    vector<TString> buttons;
    buttons.push_back("Restore");
    buttons.push_back("Discard");
    buttons.push_back("Later");
    switch (ChoiceDialog(RecoveryDialog, "Recovery",
                         "These effects had changes that were not saved when the program ended. They were "
                         "autosaved at these times:",
                         effects, buttons)) {
    case 0:
        return RA_RESTORE;
    case 1:
        return RA_DISCARD;
    default:
        return RA_LATER;
    }
}

void TApplication::ShowProperties(TDocument& document, const char* text)
{
    TFilePropertiesDialog dialog(document, text);
    if (TToolNode* node = dialog.Run(MainWindow.Get()))
        static_cast<TDocumentWindows*>(document.GetHost())->ShowNode(*node);
}

void TApplication::ShowOptions()
{
    TOptionsDialog dialog(App.GetSettings(), App.GetResourceLocator());
    dialog.Run(MainWindow.Get());
}

void TApplication::Beep()
{
    ::Beep();
}

void TApplication::RebuildRecentFiles(const vector<TString>& files)
{
    MainWindow->RebuildRecentFiles(files);
}

void TApplication::FocusSelected(TDocWindow& window)
{
    window.FocusSelected(false);
}

void TApplication::FocusAll(TDocWindow& window)
{
    window.FocusAll(false);
}

void TApplication::DeleteIn(TDocWindow& window)
{
    window.GetGraph().PressDelete();
}

bool TApplication::TakesDelete(TDocWindow& window)
{
    return window.GetGraph().TakesDelete();
}

void TApplication::Cascade()
{
    MainWindow->Cascade();
}

TWindow* TApplication::WindowFromPoint(int x, int y)
{
    return TWindow::FromPoint(x, y);
}

void TApplication::EndInput()
{
    TGraphWindow::EndInput();
}

bool TApplication::IsDragging()
{
    return TWimp::Get().GetMouseDrag() != nullptr;
}

void TApplication::RunTicks()
{
    TRenderObject::RunTicks(nullptr);
}

void TApplication::ShowStatus(const char* text)
{
    MainWindow->ShowNote(text);
}

bool TApplication::IsLastStatus(const char* text)
{
    return MainWindow->IsLastNote(text);
}

void TApplication::Quit()
{
    KeepPlaces();
    TWimp::Get().Quit();
}
