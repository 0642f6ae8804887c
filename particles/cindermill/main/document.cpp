#include "particles/cindermill/main/document.h"

#include "library/containers/append.h"
#include "library/system/message.h"
#include "library/system/path.h"
#include "particles/cindermill/graph/operations/addgraphnodesop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/formerstates.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/cindermill/main/documenthost.h"
#include "particles/cindermill/main/documentreport.h"
#include "particles/cindermill/main/effectfile.h"
#include "particles/effectgraph/linkmender.h"
#include "particles/effectgraph/pointermap.h"
#include "particles/effectgraph/refreshrecord.h"
#include "particles/effectgraph/runcollecting.h"

namespace {

// While a step is under way.
class TStepScope
{
public:
    explicit TStepScope(int& depth) : Depth(depth) { ++Depth; }
    ~TStepScope() { --Depth; }
    TStepScope(const TStepScope&) = delete;
    TStepScope& operator=(const TStepScope&) = delete;

private:
    int& Depth;
};

} // namespace

TString GetEffectName(const TString& path)
{
    return path.IsEmpty() ? TString("<unsaved document>") : GetShownPath(path);
}

TDocument::TDocument(TCindermillApp& app, TDocumentHost* host)
    : App(app), Host(host), Services(app.GetSettings(), app.GetResourceLocator()),
      Preview(Services, app.GetResourceLocator()), Agreement(app, *this)
{
    Preview.SetGoes(&TDocument::OnEngineGoes, this);
}

TDocument::~TDocument()
{
    if (Host != nullptr)
        Host->DeleteWindows(*this);
    Host = nullptr;
    Agreement.Drop();
    Preview.Clear();
    Chunks.Clear();
}

bool TDocument::New()
{
    if (Host != nullptr && !Host->CreateParticleWindow(*this))
        return false;
    Path = nullptr;
    OperationStack = new TOperationStack;
    Chunks.AddChunk(OperationStack);
    Graph = new TEffectGraph;
    Chunks.AddChunk(Graph);
    Graph->AddCallback(&TDocument::OnGraphChanged, this);
    IsEditable = true;
    if (Host != nullptr && !Host->CreateView(*this))
        return false;
    Modified = false;
    if (Host != nullptr)
        Host->ShowParticleWindow(*this);
    return true;
}

// Takes over what the steps of a load have found so far.
bool TDocument::AdoptLoaded(const TEffectFile& file, bool sound)
{
    Graph = file.GetGraph();
    OperationStack = file.GetOperationStack();
    LoadError = file.GetFault();
    return sound;
}

bool TDocument::BatchLoad(const char* path)
{
    TEffectFile file(Chunks);
    Path = path;
    return AdoptLoaded(file, file.Load(path) && file.FindRoots(false));
}

bool TDocument::CheckLoaded(bool mend)
{
    TEffectFile file(Chunks);
    TLinkMender mender(App.GetNodeTypes(), LoadNotes);
    return AdoptLoaded(file, file.FindRoots(false) && file.Check(mend ? &mender : nullptr));
}

bool TDocument::Load(const char* path)
{
    return LoadFrom(path, path, vector<int>());
}

bool TDocument::Restore(const char* file, const char* path, const vector<int>& former)
{
    if (!LoadFrom(file, path, former))
        return false;
    OperationStack->MarkChanged();
    SetModified(true);
    return true;
}

bool TDocument::LoadFrom(const char* file, const char* path, const vector<int>& former)
{
    const TStepScope step(StepDepth);
    if (Host != nullptr && !Host->CreateParticleWindow(*this))
        return false;
    TEffectFile effect(Chunks);
    TLinkMender mender(App.GetNodeTypes(), LoadNotes);
    // What is written while the load goes on counts as a change.
    Stamp.Take(path);
    if (!AdoptLoaded(effect, effect.Load(file) && effect.FindRoots(true) && effect.Check(&mender) &&
                                 effect.CheckClasses()))
        return false;
    IsEditable = true;
    OperationStack->Recall();
    if (LoadNotes.empty() && SetFormerStates(*OperationStack, Chunks, former))
        OperationStack->RecordTypes(*Graph);
    Graph->AddCallback(&TDocument::OnGraphChanged, this);
    if (Host != nullptr && !Host->CreateView(*this))
        return false;
    // What was mended differs from the file.
    Modified = !LoadNotes.empty();
    if (Modified)
        OperationStack->MarkChanged();
    vector<TEffectNode*> stale;
    if (AskToRefresh(stale, ""))
        RefreshNodes(stale);
    NumEdits += Modified ? 1 : 0;
    AttachObjects();
    TErrorList errors;
    const bool resolved = ResolveTypes(errors);
    if (resolved)
        Graph->NotifyChanged();
    Path = path;
    UpdateTitles();
    if (Host != nullptr) {
        Host->ShowParticleWindow(*this);
        Host->FrameAllNodes(*this);
    }
    // What is wrong with the graph is told when it is edited, not now.
    if (!resolved)
        return true;
    RebuildSchedule(true);
    GraphChanged();
    return true;
}

// Beginning with what it is about, where that is not clear.
bool TDocument::AskToRefresh(vector<TEffectNode*>& stale, const char* about)
{
    const TNodeTypeLibrary& library = App.GetNodeTypes();
    for (int i = 0; i < Graph->GetNumNodes(); ++i)
        if (Graph->GetNode(i)->GetNodeType()->NeedsRefresh(library))
            Append(stale, Graph->GetNode(i));
    return !stale.empty() &&
           AskQuestion("%s%d node types need refreshing. Refresh now?", about, stale.size());
}

// Nodes that only the history holds are not asked about, but may come back: they are refreshed along.
void TDocument::RefreshNodes(vector<TEffectNode*>& stale)
{
    const TNodeTypeLibrary& library = App.GetNodeTypes();
    vector<TChunk*> all;
    Chunks.GetChunksOfClass(TToolNode::NameID(), all);
    for (TChunk* chunk : all) {
        TToolNode* node = static_cast<TToolNode*>(chunk);
        if (!Graph->Has(node) && node->GetNodeType()->NeedsRefresh(library))
            Append(stale, node);
    }
    TRefreshRecord record;
    for (TEffectNode* node : stale)
        node->GetNodeType()->Refresh(node, library, Chunks, *Graph, record);
    record.MoveEdges(Chunks, *Graph);
    const int steps = OperationStack->GetNumOperations();
    const int dropped = OperationStack->AdaptTo(record, *this);
    if (dropped > 0)
        LoadNotes.Add(new TError("%d of the %d steps of the undo history do not fit the refreshed nodes and "
                                 "were dropped",
                                 dropped, steps));
    Modified = true;
}

// What views, traces and displays hold of the nodes is made anew: their parameters are replaced.
void TDocument::OfferRefresh()
{
    if (IsInStep())
        return;
    TString about = "doc";
    if (!Path.IsEmpty())
        about = GetShownPath(Path);
    about += ": ";
    vector<TEffectNode*> stale;
    if (!AskToRefresh(stale, about))
        return;
    const TStepScope step(StepDepth);
    const bool wasRunning = Preview.IsInited();
    LoadNotes.Clear();
    BeginEdit();
    Preview.DropSchedule();
    DetachObjects();
    RefreshNodes(stale);
    vector<TChunk*> all;
    Chunks.GetChunksOfClass(TToolNode::NameID(), all);
    for (TChunk* chunk : all)
        static_cast<TToolNode*>(chunk)->Attach(this);
    AttachObjects();
    OperationStack->MarkChanged();
    UpdateTitles();
    GraphChanged();
    if (wasRunning)
        RebuildSchedule(false);
    if (!LoadNotes.empty())
        DisplayErrors("Load errors", LoadNotes);
}

void TDocument::DetachObjects()
{
    ClearSelection();
    vector<TChunk*> all;
    Chunks.GetChunksOfClass(TToolEdge::NameID(), all);
    for (TChunk* chunk : all)
        Listener->EdgeGoes(static_cast<TToolEdge*>(chunk));
    all.clear();
    Chunks.GetChunksOfClass(TToolNode::NameID(), all);
    for (TChunk* chunk : all) {
        TToolNode* node = static_cast<TToolNode*>(chunk);
        if (Graph->Has(node))
            node->Removed(this);
        Listener->NodeGoes(node);
        node->Detach();
    }
}

void TDocument::AttachObjects()
{
    for (int i = 0; i < Graph->GetNumNodes(); ++i) {
        if (!IsClassA(FindClassByNameID(Graph->GetNode(i)->GetClassId()), TToolNode::ClassId()))
            continue;
        TToolNode* node = static_cast<TToolNode*>(Graph->GetNode(i));
        node->Attach(this);
        Listener->NodeAdded(node);
        node->Added(this);
    }
    for (int i = 0; i < Graph->GetNumEdges(); ++i) {
        if (!IsClassA(FindClassByNameID(Graph->GetEdge(i)->GetClassId()), TToolEdge::ClassId()))
            continue;
        Listener->EdgeAdded(static_cast<TToolEdge*>(Graph->GetEdge(i)));
    }
}

bool TDocument::Save()
{
    ASSERT_TEXT(Path.Length() > 0, "Path.Len() > 0");
    const TString path = Path;
    return SaveAs(path);
}

// Asks of the written file what a load will ask.
bool TDocument::CheckWritten(const char* path, void* data)
{
    TDocument& document = *static_cast<TDocument*>(data);
    document.WrittenStamp.Take(path);
    TChunkFile chunks;
    TEffectFile file(chunks);
    if (file.Load(path) && file.FindRoots(document.IsEditable) && file.Check() &&
        (!document.IsEditable || file.CheckClasses()))
        return true;
    document.SaveError = file.GetFault();
    return false;
}

bool TDocument::SaveUnchecked(const char* path)
{
    return Chunks.Save(path);
}

// What cannot be written must not end the work that it is to save.
bool TDocument::GetImage(vector<uint8_t>& bytes, int room)
{
    bool written = false;
    TString text;
    return RunGuarded([&] { written = Chunks.SaveToMemory(bytes, room); }, text) && written;
}

void TDocument::GetFormerStates(vector<int>& numbers) const
{
    ::GetFormerStates(*OperationStack, Chunks, numbers);
}

bool TDocument::SaveAs(const char* path)
{
    SaveError = nullptr;
    if (!Chunks.Save(path, &TDocument::CheckWritten, this))
        return false;
    Stamp = WrittenStamp;
    Stamp.MoveTo(path);
    if (OperationStack != nullptr)
        OperationStack->MarkSaved();
    App.GetAutosave().OnSaved(*this);
    if (Path.Compare(path) != 0) {
        Modified = false;
        Path = path;
        UpdateTitles();
    } else if (Modified) {
        Modified = false;
        UpdateTitles();
    }
    return true;
}

void TDocument::SetModified(bool modified)
{
    if (Modified == modified)
        return;
    Modified = modified;
    UpdateTitles();
}

// Before any node changes or goes.
void TDocument::BeginEdit()
{
    ++Revision;
    ++NumEdits;
    Agreement.Drop();
}

void TDocument::ApplyOperation(TOperation* op)
{
    const TStepScope step(StepDepth);
    // The stack may delete it.
    const bool changesEffect = op->ChangesEffect();
    BeginEdit();
    OperationStack->Apply(*this, op);
    SetModified(true);
    if (changesEffect)
        ReviewProblems();
}

void TDocument::Undo()
{
    const TStepScope step(StepDepth);
    BeginEdit();
    bool fits = false;
    {
        const TGraphHold hold(*this);
        fits = OperationStack->Undo(*this);
    }
    DropStaleSchedule();
    FinishStep(fits);
    ReviewProblems();
}

void TDocument::Redo()
{
    const TStepScope step(StepDepth);
    BeginEdit();
    bool fits = false;
    {
        const TGraphHold hold(*this);
        fits = OperationStack->Redo(*this);
    }
    FinishStep(fits);
    ReviewProblems();
}

void TDocument::FinishStep(bool fits)
{
    if (fits) {
        SetModified(!OperationStack->IsAtSavedPosition());
        return;
    }
    OperationStack->Clear(*this);
    OperationStack->MarkChanged();
    SetModified(true);
    ShowMessage("The undo history does not fit the effect and was cleared");
}

// Taking the addition of a node back is no change of the graph's shape, but what was scheduled since the
// addition refers to the node, which the next edit may free.
void TDocument::DropStaleSchedule()
{
    if (GetSchedule().GetNumNodes() == 0)
        return;
    TPointerMap nodes;
    for (int i = 0; i < Graph->GetNumNodes(); ++i)
        nodes.Insert(Graph->GetNode(i));
    for (int i = 0; i < GetSchedule().GetNumNodes(); ++i) {
        if (nodes.Has(GetSchedule().GetNode(i)))
            continue;
        OnGraphChanged();
        return;
    }
}

void TDocument::SelectNode(TToolNode* node, bool clearFirst)
{
    if (clearFirst)
        ClearSelection();
    ++Revision;
    Append(Selected, node);
    node->SetSelected(true);
    Listener->NodeChanged(node);
}

void TDocument::DeselectNode(TToolNode* node)
{
    TToolNode** it = Selected.find(node);
    if (it == Selected.end())
        return;
    ++Revision;
    Selected.erase(it);
    node->SetSelected(false);
    Listener->NodeChanged(node);
}

void TDocument::ClearSelection()
{
    ++Revision;
    vector<TToolNode*> nodes;
    nodes.swap(Selected);
    for (TToolNode* node : nodes) {
        node->SetSelected(false);
        Listener->NodeChanged(node);
    }
}

void TDocument::CopySelection()
{
    if (!Selected.empty())
        App.CopyToClipboard(Selected);
}

void TDocument::CutSelection()
{
    if (Selected.empty())
        return;
    CopySelection();
    ApplyOperation(new TDeleteGraphNodeOp(Selected));
    ClearSelection();
}

void TDocument::Paste()
{
    if (!App.PreparePaste())
        return;
    vector<TToolNode*> nodes;
    App.PasteFromClipboard(*this, nodes);
    ClearSelection();
    for (TToolNode* node : nodes)
        SelectNode(node, false);
    ApplyOperation(new TAddGraphNodesOp(*this, nodes));
    if (Host != nullptr)
        Host->BringIntoSight(*this, nodes);
}

void TDocument::OnIdle()
{
    if (Host != nullptr)
        Host->OnIdle(*this);
}

void TDocument::OnGraphChanged(void* data)
{
    static_cast<TDocument*>(data)->OnGraphChanged();
}

// The schedule is built first at load or at first demand; until then a change of the graph has nothing to
// rebuild. One that is there without an engine must not go on naming nodes that the change took out: it
// follows, and what is wrong with it is told when an engine is asked for.
void TDocument::OnGraphChanged()
{
    if (Preview.IsInited()) {
        RebuildSchedule(false);
        return;
    }
    ReviewProblems();
    if (!GetSchedule().IsCreated())
        return;
    TErrorList errors;
    if (!CreateSchedule(errors))
        TakeProblems(errors, true);
    TellScheduleChanged();
}

bool TDocument::ResolveTypes(TErrorList& errors)
{
    if (!IsAcyclic(*Graph)) {
        errors.Add(new TError("The edges of the graph run in a circle"));
        return false;
    }
    return RunCollecting(errors, [&] {
        Graph->ResolveTypes();
        return true;
    });
}

TGraphHold::TGraphHold(TDocument& document) : Document(document)
{
    ++Document.GraphHolds;
}

TGraphHold::~TGraphHold()
{
    if (--Document.GraphHolds > 0)
        return;
    if (Document.GraphChangeWaits)
        Document.FinishGraphChange();
    if (Document.ReviewWaits)
        Document.ReviewProblems();
}

// Once for each change, held or not: settling types again may settle them otherwise, and redo and undo are
// held where the operations may not have been.
void TDocument::GraphChanged()
{
    TypeErrors.Clear();
    ResolveTypes(TypeErrors);
    GraphChangeWaits = true;
    if (GraphHolds == 0)
        FinishGraphChange();
}

// A graph whose types cannot be settled has no preview.
void TDocument::FinishGraphChange()
{
    const TErrorList errors(static_cast<TErrorList&&>(TypeErrors));
    GraphChangeWaits = false;
    Listener->GraphChanged();
    if (errors.empty()) {
        Graph->NotifyChanged();
        return;
    }
    Preview.DropSchedule();
    TellScheduleChanged();
    TakeProblems(errors, true);
    DisplayErrors("Schedule errors", errors);
}

void TDocument::OnEngineGoes(void* data)
{
    TDocument& document = *static_cast<TDocument*>(data);
    if (document.Host != nullptr && document.Preview.IsInited())
        document.Host->EngineGoes(document);
    ++document.Revision;
}

void TDocument::RebuildSchedule(bool suppressDialog)
{
    ClearEngine();
    const int groups = GetSchedule().GetNumGroups();
    TErrorList errors;
    const bool created = CreateSchedule(errors);
    if (created)
        InitEngine(errors, true);
    TakeProblems(errors, !created);
    if (GetSchedule().GetNumGroups() != groups)
        RedrawWindows();
    if (!suppressDialog && !errors.empty())
        DisplayErrors("Schedule errors", errors);
    TellScheduleChanged();
}

// The engine of an effect whose files are not all there has not been made.
void TDocument::FileNamed()
{
    if (!Preview.IsInited())
        RebuildSchedule(true);
}

// Counts and life times stand in the schedule, and no edit of a parameter rebuilds it. An engine that could
// not be made is tried again: what was missing may have come.
bool TDocument::EnsureSchedule()
{
    TErrorList errors;
    const bool created = CreateSchedule(errors);
    if (created && Preview.IsInited())
        return true;
    const bool ready = created && InitEngine(errors, true);
    TakeProblems(errors, !created);
    TellScheduleChanged();
    if (!ready)
        DisplayErrors("Schedule errors", errors);
    return ready;
}

bool TDocument::Export(const char* path)
{
    TErrorList errors;
    const bool done = Preview.WriteExport(path, errors);
    if (!done || !errors.empty())
        DisplayErrors("Export errors", errors);
    return done;
}

TBatchResult TDocument::BatchExport(const char* path, TErrorList& errors)
{
    if (!CreateSchedule(errors) || !InitEngine(errors, false))
        return BR_SCHEDULEFAILED;
    return Preview.WriteExport(path, errors) ? BR_DONE : BR_EXPORTFAILED;
}

void TDocument::LogBatchResult(TBatchResult result, const TErrorList& errors)
{
    if (result == BR_DONE && errors.empty())
        return;
    if (result == BR_DONE)
        DebugPrintf("%d warnings:\n", errors.size());
    else
        DebugPrintf(result == BR_SCHEDULEFAILED ? "Schedule creation failed:\n" : "Export failed:\n");
    int number = 0;
    for (const TError* error : errors) {
        const TString text = GetErrorLine(*error);
        if (result == BR_DONE)
            DebugPrintf("%s\n", text.Print());
        else
            DebugPrintf("Error %d : %s\n", number++, text.Print());
    }
}

void TDocument::GetReport(TString& report)
{
    report = nullptr;
    TDocumentReport text(report);
    text.AddFile(Path, Modified);
    text.AddGraph(Chunks, *Graph);
    TErrorList errors;
    const bool created = CreateSchedule(errors);
    const bool ready = created && (Preview.IsInited() || InitEngine(errors, true));
    TellScheduleChanged();
    text.AddSchedule(created, GetSchedule());
    if (!created)
        return;
    int size = 0;
    const bool valid = ready && Preview.GetExportSize(size, errors);
    text.AddExport(valid, size);
}

void TDocument::TakeProblems(const TErrorList& errors, bool ofGraph)
{
    if (errors.empty() && Problems.empty())
        return;
    Problems.Take(*Graph, errors, ofGraph);
    if (Host != nullptr)
        Host->ProblemsChanged(*this);
}

// Takes a schedule, so that many operations of one step have one together.
void TDocument::ReviewProblems()
{
    ReviewWaits = GraphHolds > 0;
    if (!ReviewWaits && Problems.Review(*Graph) && Host != nullptr)
        Host->ProblemsChanged(*this);
}

void TDocument::TellScheduleChanged()
{
    if (Host != nullptr)
        Host->ScheduleChanged(*this);
}

void TDocument::UpdateTitles()
{
    if (Host != nullptr)
        Host->UpdateTitles(*this);
}

void TDocument::SetListener(TGraphListener* listener)
{
    Listener = listener != nullptr ? listener : &NoViews;
}

void TDocument::AddNodeDisplay(TNodeDisplay* display)
{
    ASSERT_TEXT(NodeDisplay.find(display) == NodeDisplay.end(),
                "NodeDisplay.find(display) == NodeDisplay.end()");
    ++Revision;
    NodeDisplay[display] = true;
}

void TDocument::RemoveNodeDisplay(TNodeDisplay* display)
{
    auto it = NodeDisplay.find(display);
    ASSERT_TEXT(it != NodeDisplay.end(), "it != NodeDisplay.end()");
    ++Revision;
    NodeDisplay.erase(it);
}

void TDocument::RedrawWindows()
{
    ++Revision;
    if (Host != nullptr)
        Host->RedrawWindows(*this);
}
