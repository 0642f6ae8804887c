#pragma once

#include "library/containers/sortedmap.h"
#include "library/system/filestamp.h"
#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/operationstack.h"
#include "particles/cindermill/main/appservices.h"
#include "particles/cindermill/main/documentproblems.h"
#include "particles/cindermill/main/exportagreement.h"
#include "particles/cindermill/main/previewengine.h"
#include "particles/effectgraph/error.h"

class TCindermillApp;
class TDocumentHost;
class TEffectFile;

// How far a batch export came.
enum TBatchResult
{
    BR_DONE,
    BR_SCHEDULEFAILED,
    BR_EXPORTFAILED
};

class TDocument;

// While one lives, changes of the shape of a document's graph are gathered: types are resolved, but schedule
// and engine follow only once, at the end. No loop may run meanwhile.
class TGraphHold
{
public:
    explicit TGraphHold(TDocument& document);
    ~TGraphHold();
    TGraphHold(const TGraphHold&) = delete;
    TGraphHold& operator=(const TGraphHold&) = delete;

private:
    TDocument& Document;
};

// What messages call the effect of a path, which may be empty: its shown form.
TString GetEffectName(const TString& path);

// One open effect: its chunks, its graph and history, its schedule and engine, its selection. Every edit goes
// through ApplyOperation.
//
// A graph that an artist can build never ends the run: schedule, engine and export are called under a guard,
// and a failed assertion comes back as one more collected error.
class TDocument : public TEditContext
{
public:
    // Without a host the document has no windows. The host stays the caller's and outlives the document.
    explicit TDocument(TCindermillApp& app, TDocumentHost* host = nullptr);
    ~TDocument() override;
    TDocument(const TDocument&) = delete;
    TDocument& operator=(const TDocument&) = delete;

    // On false the document is of no use, and GetLoadError tells why.
    bool New();
    bool Load(const char* path);
    // The same from a recovery file, of what is to be the document of another path, which may be empty. It
    // counts as modified until it is saved. `former` is what GetFormerStates gave with it.
    bool Restore(const char* file, const char* path, const vector<int>& former);
    // Without windows, questions and schedule: the graph as it stands in the file. Anything but a look at it
    // needs CheckLoaded.
    bool BatchLoad(const char* path);
    // Whether what was loaded can be relied on. Links that name nothing are mended, from the library where it
    // knows better, or count as faults too.
    bool CheckLoaded(bool mend = true);
    const TString& GetLoadError() const { return LoadError; }
    // What a load that succeeded had to mend or to drop.
    const TErrorList& GetLoadNotes() const { return LoadNotes; }

    // A file that could not be loaded again is not written: the old one stays, and GetSaveError tells why. It
    // is empty where the writing itself failed.
    bool Save();
    bool SaveAs(const char* path);
    const TString& GetSaveError() const { return SaveError; }
    // Whether another program has written to the document's file since it was loaded or saved.
    bool IsFileChanged() const { return Stamp.HasChanged(Path); }
    // The file as the document knows it; a restored document gets that of the one that was lost.
    const TFileStamp& GetStamp() const { return Stamp; }
    void SetStamp(int64_t size, uint64_t hash) { Stamp.SetContent(Path, size, hash); }
    // Writes the document as it is, for a name where nothing is lost by it. The document does not count as
    // saved.
    bool SaveUnchecked(const char* path);
    // What a save would write, with room for so many bytes behind it.
    bool GetImage(vector<uint8_t>& bytes, int room);
    // What the history of that image remembers beyond it.
    void GetFormerStates(vector<int>& numbers) const;
    // The schedule of the graph as it stands, and an engine: what an export needs. An engine that runs goes
    // on where the effect's shape is what it was.
    bool EnsureSchedule();
    bool Export(const char* path);
    // Schedule, engine, model and file in one; what went wrong is collected.
    TBatchResult BatchExport(const char* path, TErrorList& errors);
    // Writes a batch export's outcome to the log.
    static void LogBatchResult(TBatchResult result, const TErrorList& errors);

    TDocumentHost* GetHost() const { return Host; }
    // The views of the graph hear of it from then on; null for none.
    void SetListener(TGraphListener* listener);
    // The share of the document and its windows in an idle pass.
    void OnIdle();
    const TString& GetPath() const { return Path; }
    bool IsModified() const { return Modified; }
    // Another one after every change of what the preview may show but the time.
    unsigned GetRevision() const { return Revision; }
    void SetModified(bool modified);
    // Another one after every step, done, undone or redone.
    unsigned GetNumEdits() const { return NumEdits; }
    // While it is being loaded or a step is under way, a dialog may stand in the middle of it: history and
    // graph do not fit each other then.
    bool IsInStep() const { return StepDepth > 0; }
    // Asks about nodes whose types differ from the library's, as a load does, and brings those up to date.
    void OfferRefresh();

    // Takes ownership.
    void ApplyOperation(TOperation* op);
    void Undo();
    void Redo();
    bool CanUndo() const { return OperationStack->CanUndo(); }
    bool CanRedo() const { return OperationStack->CanRedo(); }
    TOperationStack* GetOperationStack() const { return OperationStack; }

    void SelectNode(TToolNode* node, bool clearFirst);
    void DeselectNode(TToolNode* node) override;
    void ClearSelection();
    const vector<TToolNode*>& GetSelection() const { return Selected; }
    void CopySelection();
    void CutSelection();
    void Paste();

    void RebuildSchedule(bool suppressDialog);
    // Settles the types of the graph's polytype ports. Whoever schedules after a BatchLoad calls it once.
    bool ResolveTypes(TErrorList& errors);
    // The schedule and the engine, with errors collected.
    bool CreateSchedule(TErrorList& errors) { return Preview.CreateSchedule(*Graph, errors); }
    bool InitEngine(TErrorList& errors, bool toolMode) { return Preview.Init(errors, toolMode); }
    bool InitEngineWithoutRender(TErrorList& errors) { return Preview.InitWithoutRender(errors); }
    // One frame of the preview. A fault clears the engine, so that the preview is empty until the next
    // rebuild.
    bool UpdateEngine(float dt, TErrorList& errors) { return Preview.Update(dt, errors); }
    // The windows let go of the engine's nodes first.
    void ClearEngine() { Preview.Clear(); }
    const TEffectSchedule& GetSchedule() const { return Preview.GetSchedule(); }
    TEffectExec& GetEngine() { return Preview.GetExec(); }
    // The bytes that an export of the engine would have.
    bool GetExportSize(int& size, TErrorList& errors) { return Preview.GetExportSize(size, errors); }
    // What has kept the effect from running since it last tried, until it is mended.
    const TDocumentProblems& GetProblems() const { return Problems; }
    // Whether preview and export agree, where it was asked since the last edit.
    TExportAgreement& GetAgreement() { return Agreement; }
    // The text of the File Properties dialog. Replaces the live schedule.
    void GetReport(TString& report);

    // What operations need.
    TEffectGraph* GetGraph() override { return Graph; }
    TChunkFile& GetChunks() override { return Chunks; }
    void GraphChanged() override;
    TGraphListener& GetListener() override { return *Listener; }
    // What the preview shows of the nodes in the graph.
    const sortedmap<TNodeDisplay*, bool>& GetNodeDisplays() const { return NodeDisplay; }
    void AddNodeDisplay(TNodeDisplay* display) override;
    void RemoveNodeDisplay(TNodeDisplay* display) override;
    void FileNamed() override;
    void RedrawWindows() override;

private:
    friend class TGraphHold;

    bool LoadFrom(const char* file, const char* path, const vector<int>& former);
    bool AdoptLoaded(const TEffectFile& file, bool sound);
    static bool CheckWritten(const char* path, void* data);
    // The nodes whose types differ from the library's, if a person wants them refreshed.
    bool AskToRefresh(vector<TEffectNode*>& stale, const char* about);
    void RefreshNodes(vector<TEffectNode*>& stale);
    void DetachObjects();
    void AttachObjects();
    void UpdateTitles();
    void TellScheduleChanged();
    void BeginEdit();
    void FinishStep(bool fits);
    void DropStaleSchedule();
    void FinishGraphChange();
    void TakeProblems(const TErrorList& errors, bool ofGraph);
    void ReviewProblems();
    static void OnEngineGoes(void* data);
    void OnGraphChanged();
    static void OnGraphChanged(void* data);

    TCindermillApp& App;
    TDocumentHost* Host;
    TGraphListener NoViews;
    TGraphListener* Listener = &NoViews;
    TEffectGraph* Graph = nullptr;
    TOperationStack* OperationStack = nullptr;
    TChunkFile Chunks;
    TAppServices Services;
    TPreviewEngine Preview;
    TDocumentProblems Problems;
    TExportAgreement Agreement;
    // In the order of the displays' addresses.
    sortedmap<TNodeDisplay*, bool> NodeDisplay;
    vector<TToolNode*> Selected;
    TString Path;
    TString LoadError;
    TErrorList LoadNotes;
    TString SaveError;
    // The file as it was loaded or saved, and as it is being saved.
    TFileStamp Stamp;
    TFileStamp WrittenStamp;
    bool Modified = false;
    unsigned Revision = 0;
    unsigned NumEdits = 0;
    int StepDepth = 0;
    // How many wait for the graph's change, whether there was one or an edit, and what came of its types.
    int GraphHolds = 0;
    bool GraphChangeWaits = false;
    bool ReviewWaits = false;
    TErrorList TypeErrors;
    // Made or loaded to be edited, and not only to be looked at.
    bool IsEditable = false;
};
