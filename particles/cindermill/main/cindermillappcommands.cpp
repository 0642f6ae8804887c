// What the menus, the choosers, the recent files and dropped files do: which document a command goes to, and
// the questions that stand between a command and the disc.

#include "library/containers/owner.h"
#include "library/system/clock.h"
#include "library/system/file.h"
#include "library/system/message.h"
#include "library/system/path.h"
#include "particles/cindermill/main/apphost.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/cindermill/main/document.h"
#include "particles/cindermill/main/documenthost.h"
#include "particles/cindermill/main/nothingtodo.h"
#include "particles/cindermill/main/openfaults.h"

namespace {

// What an export may wait for the recovery files that were begun before it.
constexpr int MostDiscMilliseconds = 20;

// Each kind stands for itself in the choosers' lists.
vector<TPathFilter> MakeFilters(const char* pattern)
{
    vector<TPathFilter> filters;
    filters.push_back(TPathFilter{pattern, pattern});
    filters.push_back(TPathFilter{"*.*", "*.*"});
    return filters;
}

// The kind of file that was chosen, where the name does not tell one.
void AddMissingExtension(TString& path, const char* extension)
{
    TString name;
    name.SetFileName(path);
    if (name.Find('.') == -1)
        path += extension;
}

TString GetTimeOfDay()
{
    constexpr int Digits = 8;
    TString now;
    FormatLocalTime(GetWallTime(), now);
    TString time;
    time.Right(now, Digits);
    return time;
}

void TellWriteFailed(TDocument& document, const char* path)
{
    ShowMessage("Writing %s failed: %s. What the file held before is untouched, and the effect is not saved.",
                GetShownPath(path).Print(), document.GetChunks().File.GetFault().Print());
}

// What reads or changes the selection or the history.
bool IsEditEntry(int id)
{
    return id == MI_UNDO || id == MI_REDO || id == MI_CUT || id == MI_COPY || id == MI_PASTE;
}

} // namespace

bool TCindermillApp::OnMenu(int id)
{
    switch (id) {
    case MI_NEW:
        NewDocument();
        return true;
    case MI_OPEN:
        OpenDocumentDialog();
        return true;
    case MI_SAVE:
        SaveActive();
        return true;
    case MI_SAVEAS:
        SaveActiveAs();
        return true;
    case MI_EXPORT:
        ExportActive();
        return true;
    case MI_EXIT:
        ExitRequest();
        return true;
    case MI_OPTIONS:
        Host->ShowOptions();
        return true;
    case MI_CASCADE:
        Host->Cascade();
        return true;
    default:
        return OnDocumentMenu(id) || OnRecentFile(id);
    }
}

// The list changes while its entry is opened.
bool TCindermillApp::OnRecentFile(int id)
{
    const int index = id - MI_RECENTFILE;
    if (index < 0 || index >= MaxRecentEntries || index >= Settings.GetRecentFiles().size())
        return false;
    const TString path = Settings.GetRecentFiles()[index];
    OpenDocument(path);
    return true;
}

// Commands to the active document, and to nobody where there is none.
bool TCindermillApp::OnDocumentMenu(int id)
{
    TDocument* document = ActiveDocument;
    if (IsEditEntry(id))
        Host->EndInput();
    // A paste tells by itself what it has found on the clipboard.
    const bool tellsItself = id == MI_PASTE && document != nullptr;
    const char* reason = tellsItself ? nullptr : GetIdleReason(id);
    if (reason != nullptr)
        Host->ShowStatus(reason);
    switch (id) {
    case MI_PROPERTIES:
        if (document != nullptr) {
            TString report;
            document->GetReport(report);
            // What kept it from a comparison may be gone.
            TExportAgreement& agreement = document->GetAgreement();
            if (!agreement.IsRunning() && !agreement.IsKnown())
                agreement.Begin();
            Host->ShowProperties(*document, report.Print());
        }
        return true;
    case MI_UNDO:
        if (document != nullptr && document->CanUndo())
            document->Undo();
        return true;
    case MI_REDO:
        if (document != nullptr && document->CanRedo())
            document->Redo();
        return true;
    case MI_CUT:
        if (document != nullptr)
            document->CutSelection();
        return true;
    case MI_COPY:
        if (document != nullptr)
            document->CopySelection();
        return true;
    case MI_PASTE:
        if (document != nullptr)
            document->Paste();
        return true;
    default:
        return OnViewMenu(id);
    }
}

bool TCindermillApp::OnViewMenu(int id)
{
    switch (id) {
    case MI_DELETE:
        if (ActiveDocWindow != nullptr)
            Host->DeleteIn(*ActiveDocWindow);
        return true;
    case MI_FOCUSSELECTED:
        if (ActiveDocWindow != nullptr)
            Host->FocusSelected(*ActiveDocWindow);
        return true;
    case MI_FOCUSALL:
        if (ActiveDocWindow != nullptr)
            Host->FocusAll(*ActiveDocWindow);
        return true;
    case MI_NEWVIEW:
        if (ActiveDocument != nullptr)
            ActiveDocument->GetHost()->NewView(*ActiveDocument);
        return true;
    case MI_SHOWPARTICLES:
        if (ActiveDocument != nullptr)
            ActiveDocument->GetHost()->ShowParticleWindow(*ActiveDocument);
        return true;
    default:
        return false;
    }
}

void TCindermillApp::AddRecentFile(const char* path)
{
    Settings.AddRecentFile(path);
    Host->RebuildRecentFiles(Settings.GetRecentFiles());
}

bool TCindermillApp::NewDocument()
{
    TString fault;
    return MakeDocument(nullptr, nullptr, fault) != nullptr;
}

bool TCindermillApp::OpenDocument(const char* path)
{
    TOpenFaults faults;
    const bool opened = AddDocument(path, faults);
    faults.Tell();
    return opened;
}

void TCindermillApp::OpenDocuments(const vector<TString>& files)
{
    TOpenFaults faults;
    for (const TString& file : files)
        AddDocument(file, faults);
    faults.Tell();
}

bool TCindermillApp::AddDocument(const char* path, TOpenFaults& faults)
{
    const TString kept(path);
    TString fault;
    if (MakeDocument(kept, nullptr, fault) == nullptr) {
        faults.Add(kept, fault);
        return false;
    }
    AddRecentFile(kept);
    return true;
}

// The views of a document make themselves the active ones while it is made.
TDocument* TCindermillApp::MakeDocument(const char* path, const TLostEffect* recovery, TString& fault)
{
    TDocWindow* const activeWindow = ActiveDocWindow;
    TDocument* const activeDocument = ActiveDocument;
    TDocument* document = new TDocument(*this, Host->CreateDocumentHost());
    const bool made = recovery != nullptr ? document->Restore(recovery->File, path, recovery->Note.Former)
                      : path != nullptr   ? document->Load(path)
                                          : document->New();
    if (made) {
        Documents.push_back(document);
        // Before the notes: the system may end the program while they are shown.
        if (recovery != nullptr)
            Autosave.OnRestored(*document, recovery->File);
        if (!document->GetLoadNotes().empty())
            DisplayErrors("Load errors", document->GetLoadNotes());
        return document;
    }
    fault = document->GetLoadError();
    DeleteDocument(document);
    SetActiveDocWindow(activeWindow, activeDocument);
    return nullptr;
}

void TCindermillApp::OpenDocumentDialog()
{
    TString path;
    const char* directory = ChosenEffect.IsEmpty() ? Samples.GetFolder().c_str() : nullptr;
    if (ChooseEffect(true, "Select load path", directory, path))
        OpenDocument(path);
}

bool TCindermillApp::ChooseEffect(bool open, const char* title, const char* directory, TString& path)
{
    const vector<TPathFilter> filters = MakeFilters("*.effect");
    const bool chosen = open ? Host->ChooseOpenPath(title, filters, directory, path)
                             : Host->ChooseSavePath(title, filters, directory, path);
    if (chosen)
        ChosenEffect = path;
    return chosen;
}

// Not among the samples, where the person may not even be allowed to write.
bool TCindermillApp::ChooseSavePlace(const TDocument& document, TString& path)
{
    TString own;
    const bool isSample = Samples.IsProtected(document.GetPath());
    path.SetFileName(document.GetPath());
    if (isSample || Samples.Holds(ChosenEffect))
        Samples.GetOwnFolder(Settings.GetRecentFiles(), own);
    return ChooseEffect(false, "Select save path", own, path);
}

// Under the effect's name, and the first time beside it, where that is a person's own place.
bool TCindermillApp::ChooseExportPlace(const TDocument& document, TString& path)
{
    TString own;
    if (ChosenExport.IsEmpty() && Samples.IsProtected(document.GetPath()))
        Samples.GetOwnFolder(Settings.GetRecentFiles(), own);
    else if (ChosenExport.IsEmpty())
        own.SetDirectory(document.GetPath());
    path.SetFileName(document.GetPath());
    path.TruncateAtLast('.');
    if (!path.IsEmpty())
        path += ".efx";
    if (!Host->ChooseSavePath("Select export path", MakeFilters("*.efx"), own, path))
        return false;
    ChosenExport = path;
    return true;
}

// With the time, as the line may be read later.
TString TCindermillApp::TellWritten(const char* what, const char* path)
{
    TString text;
    text.Format("%s %s at %s, %u bytes", what, GetShownPath(path).Print(), GetTimeOfDay().Print(),
                GetFileSize(path));
    Host->ShowStatus(text);
    return text;
}

void TCindermillApp::SaveActive()
{
    Host->EndInput();
    if (ActiveDocument != nullptr)
        Save(*ActiveDocument);
}

void TCindermillApp::SaveActiveAs()
{
    Host->EndInput();
    if (ActiveDocument != nullptr)
        SaveAs(*ActiveDocument);
}

// False if the file is locked and stays so.
bool TCindermillApp::MakeWritable(const char* path, const char* purpose)
{
    if (!FileExists(path) || FileIsWritable(path))
        return true;
    if (!AskQuestion("%s is locked. Unlock and overwrite?", GetShownPath(path).Print()))
        return false;
    if (ClearReadOnly(path))
        return true;
    ShowMessage("Unlock of %s failed. Cannot %s.", GetShownPath(path).Print(), purpose);
    return false;
}

bool TCindermillApp::ConfirmOverwrite(const char* path)
{
    return !FileExists(path) || AskQuestion("%s exists. Overwrite?", GetShownPath(path).Print());
}

bool TCindermillApp::ConfirmChanged(const TDocument& document)
{
    return !document.IsFileChanged() ||
           AskQuestion("%s was changed by another program since it was opened. Overwrite it?",
                       GetShownPath(document.GetPath()).Print());
}

// An export in the place of an effect would leave nothing of it but the memory of this program.
bool TCindermillApp::IsOpenEffect(const char* path)
{
    for (const TDocument* document : Documents) {
        if (document->GetPath().IsEmpty() || !IsSameFile(document->GetPath(), path))
            continue;
        ShowMessage("%s is an effect that is open, which the export would replace. Choose another name.",
                    GetShownPath(path).Print());
        return true;
    }
    return false;
}

// The result of the write is told to the user and counts for nothing here.
bool TCindermillApp::Save(TDocument& document)
{
    const TString path = document.GetPath();
    if (path.IsEmpty())
        return SaveAs(document);
    if (Samples.IsProtected(path)) {
        TString text;
        text.Format("%s came with the program: choose a place for your own.", GetShownPath(path).Print());
        Host->ShowStatus(text);
        return SaveAs(document);
    }
    if (!ConfirmChanged(document) || !MakeWritable(path, "save"))
        return false;
    AddRecentFile(path);
    if (document.Save())
        TellWritten("Saved", path);
    else
        TellNotSaved(document, path);
    return true;
}

bool TCindermillApp::SaveAs(TDocument& document)
{
    TString path;
    if (!ChooseSavePlace(document, path))
        return false;
    AddMissingExtension(path, ".effect");
    if (!ConfirmOverwrite(path) || !MakeWritable(path, "save"))
        return false;
    Samples.Release(path);
    AddRecentFile(path);
    if (document.SaveAs(path))
        TellWritten("Saved", path);
    else
        TellNotSaved(document, path);
    return true;
}

// An effect that could not be opened again is never written over a file, but its work need not be lost
// either.
void TCindermillApp::TellNotSaved(TDocument& document, const char* path)
{
    if (document.GetSaveError().IsEmpty()) {
        TellWriteFailed(document, path);
        return;
    }
    TString other;
    if (!AskQuestion("%s was not written, as it could not be opened again: %s. What the file held before is "
                     "untouched, and the effect is not saved. Write it as it is under another name?",
                     GetShownPath(path).Print(), document.GetSaveError().Print()) ||
        !ChooseSavePlace(document, other))
        return;
    AddMissingExtension(other, ".effect");
    if (FileExists(other))
        ShowMessage("%s exists and was left as it is. The effect is not saved.", GetShownPath(other).Print());
    else if (!document.SaveUnchecked(other))
        TellWriteFailed(document, other);
}

void TCindermillApp::ExportActive()
{
    Host->EndInput();
    TDocument* document = ActiveDocument;
    if (document == nullptr)
        return;
    // Schedule, engine and export do what nothing before them did with the graph.
    Autosave.SaveModified(Documents);
    if (!document->EnsureSchedule())
        return;
    TString path;
    if (!ChooseExportPlace(*document, path))
        return;
    AddMissingExtension(path, ".efx");
    if (IsOpenEffect(path) || !ConfirmOverwrite(path) || !MakeWritable(path, "export"))
        return;
    Autosave.WaitForDisc(MostDiscMilliseconds);
    if (document->Export(path))
        document->GetAgreement().BeginForFile(path, TellWritten("Exported", path));
}

void TCindermillApp::CloseDocument(TDocument* document)
{
    Host->EndInput();
    if (document->IsModified()) {
        vector<TDocument*> documents;
        documents.push_back(document);
        if (!SettleModified(documents))
            return;
    }
    if (document == ActiveDocument)
        SetActiveDocWindow(nullptr, nullptr);
    TDocument** it = Documents.find(document);
    ASSERT_TEXT(it != Documents.end(), "it != Documents.end()");
    Documents.erase(it);
    DeleteDocument(document);
}

void TCindermillApp::DeleteDocument(TDocument* document)
{
    // The windows go after their document, which takes leave of them.
    const TOwner<TDocumentHost> host(document->GetHost());
    Autosave.OnClosed(*document);
    TOwner<TDocument>(document).Reset();
}

void TCindermillApp::ExitRequest()
{
    Host->EndInput();
    vector<TDocument*> modified;
    for (TDocument* document : Documents)
        if (document->IsModified())
            modified.push_back(document);
    if (!modified.empty()) {
        Host->Beep();
        if (!SettleModified(modified))
            return;
    }
    Autosave.End();
    Host->Quit();
}

// Whether the documents may go. One that was to be saved and could not be written stays: its work is nowhere
// else.
bool TCindermillApp::SettleModified(const vector<TDocument*>& documents)
{
    vector<TString> names;
    for (const TDocument* document : documents)
        names.push_back(GetEffectName(document->GetPath()));
    const TModifiedAnswer answer = Host->AskModifiedFiles(names);
    if (answer != MA_YES)
        return answer == MA_NO;
    for (TDocument* document : documents)
        if (!Save(*document) || document->IsModified())
            return false;
    return true;
}

void TCindermillApp::OnDropFiles(int x, int y, const vector<TString>& files)
{
    TOpenFaults faults;
    bool isStray = false;
    for (int i = 0; i < files.size() && !isStray; ++i) {
        TString extension;
        extension.SetExtension(files[i]);
        if (extension.Compare("effect") == 0)
            AddDocument(files[i], faults);
        else
            isStray = extension.Compare("vori") == 0 && !DropAnimation(x, y, files[i]);
    }
    faults.Tell();
    if (isStray)
        ShowMessage("Drag vori file onto document window to load");
}

bool TCindermillApp::DropAnimation(int x, int y, const char* file)
{
    TWindow* window = Host->WindowFromPoint(x, y);
    for (int i = 0; window != nullptr && i < Documents.size(); ++i) {
        TDocumentHost* host = Documents[i]->GetHost();
        if (!host->OwnsWindow(window))
            continue;
        host->OnDrop(*Documents[i], window, x, y, file);
        return true;
    }
    return false;
}

void TCindermillApp::CopyToClipboard(const vector<TToolNode*>& nodes)
{
    Clipboard.Copy(nodes);
}

const char* TCindermillApp::GetIdleReason(int menuId)
{
    if (menuId == MI_DELETE && ActiveDocWindow != nullptr && Host->TakesDelete(*ActiveDocWindow))
        return nullptr;
    // Only a paste is worth the question to whoever has the clipboard.
    const bool isEmpty = menuId == MI_PASTE && ActiveDocument != nullptr && !Clipboard.HasNodes();
    return GetNothingToDo(ActiveDocument, menuId, isEmpty);
}

bool TCindermillApp::PreparePaste()
{
    const TPasteState state = Clipboard.Fetch();
    if (state == PS_REFUSED)
        ShowMessage("The nodes on the clipboard cannot be pasted. %s", Clipboard.GetFault().Print());
    else if (state == PS_NOTHING && Host != nullptr)
        Host->ShowStatus(Clipboard.GetFault().Print());
    return state == PS_READY;
}

// The clipboard's own nodes move along, so that repeated pasting cascades.
void TCindermillApp::PasteFromClipboard(TDocument& document, vector<TToolNode*>& nodes)
{
    constexpr int Step = 10;
    vector<TToolEdge*> edges;
    GetClipboard().MoveBy(Step, Step);
    GetClipboard().MakeCopies(&document, nodes, edges);
}
