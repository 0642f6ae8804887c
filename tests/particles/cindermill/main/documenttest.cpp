#include "support/fakehost.h"
#include "support/randomgraph.h"
#include "support/testapp.h"

#include "library/system/message.h"
#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/graph/operations/nodedisplay.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/operations/valueparamop.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/effectgraph/export/efxfile.h"

#include <csignal>
#include <filesystem>
#include <sys/resource.h>

namespace {

// What was asked and shown, in order.
struct TForms
{
    static TForms& Get()
    {
        static TForms forms;
        return forms;
    }
    TNames Questions;
    TNames Errors;
    bool Answer = false;
};

void TakeErrors(const char* title, const TErrorList& errors)
{
    std::string text = title;
    for (const TError* error : errors) {
        TString line;
        error->GetText(line);
        text += std::string("|") + line.Print();
    }
    TForms::Get().Errors.push_back(text);
}

// A small effect that schedules: an emitter, points, quads.
class Document : public testing::Test
{
protected:
    Document()
    {
        TForms::Get() = TForms();
        SetMessageForms(nullptr, [](const char* text) {
            TForms::Get().Questions.push_back(text);
            return TForms::Get().Answer;
        });
        SetDisplayErrors(&TakeErrors);
    }
    ~Document() override
    {
        SetMessageForms(nullptr, nullptr);
        SetDisplayErrors(nullptr);
    }

    std::string Path(const std::string& leaf) const { return App.Path(leaf); }
    TToolNode* Add(TDocument& document, const TNodeType& type, int x = 0, int y = 0)
    {
        TAddGraphNodeOp* op = new TAddGraphNodeOp(document, type, x, y);
        TToolNode* node = op->GetNode();
        document.ApplyOperation(op);
        return node;
    }
    TToolNode* Add(TDocument& document, const char* type) { return Add(document, App.Type(type)); }
    TToolEdge* Connect(TDocument& document, TToolNode* source, const char* output, TToolNode* destination,
                       const char* input)
    {
        TAddGraphEdgeOp* op = new TAddGraphEdgeOp(document, source, source->GetNodeType()->FindOutput(output),
                                                  destination, destination->GetNodeType()->FindInput(input));
        TToolEdge* edge = op->GetEdge();
        document.ApplyOperation(op);
        return edge;
    }
    void SetTexture(TDocument& document, TToolNode* stage, const char* name)
    {
        document.ApplyOperation(new TTextureParamOp(
            stage->GetNodeType()->FindParameterOf<TNodeTextureParameter>("Texture", PK_TEXTURE), name));
    }
    void BuildEffect(TDocument& document)
    {
        Emitter = Add(document, "Emitter");
        Points = Add(document, "Point Emitter");
        Quads = Add(document, "Quad Render Stage");
        SetTexture(document, Quads, "spark.dds");
        Connect(document, Emitter, "Count", Points, "Emission Trigger");
        Connect(document, Points, "Start Transform", Quads, "Transform");
    }
    // The file of that effect.
    std::string EffectFile(const std::string& leaf)
    {
        TDocument document(App.Get());
        EXPECT_TRUE(document.New());
        BuildEffect(document);
        EXPECT_TRUE(document.SaveAs(Path(leaf).c_str()));
        return Path(leaf);
    }
    // "" when the file loads, otherwise the document's reason.
    std::string LoadErrorOf(const std::string& path)
    {
        TDocument document(App.Get());
        return document.Load(path.c_str()) ? "" : Text(document.GetLoadError());
    }

    TQuiet Quiet;
    TTestApp App;
    TToolNode* Emitter = nullptr;
    TToolNode* Points = nullptr;
    TToolNode* Quads = nullptr;
};

} // namespace

TEST_F(Document, NewMakesStackAndGraphAndOneView)
{
    TFakeHost host;
    TDocument document(App.Get(), &host);
    ASSERT_TRUE(document.New());
    EXPECT_EQ(host.Taken(), (TNames{"create particle window", "create view", "show particle window"}));
    ASSERT_EQ(document.GetChunks().GetNumChunks(), 2);
    EXPECT_EQ(document.GetChunks().GetChunkAt(0), document.GetOperationStack());
    EXPECT_EQ(document.GetChunks().GetChunkAt(1), document.GetGraph());
    EXPECT_TRUE(document.GetPath().IsEmpty());
    EXPECT_FALSE(document.IsModified());
    EXPECT_FALSE(document.CanUndo());
    EXPECT_FALSE(document.CanRedo());
}

TEST_F(Document, NewAndLoadFailWithTheirWindows)
{
    const std::string path = EffectFile("a.effect");
    for (const bool view : {false, true}) {
        TFakeHost host;
        host.FailsView = view;
        host.FailsParticleWindow = !view;
        TDocument fresh(App.Get(), &host);
        EXPECT_FALSE(fresh.New());
        TDocument loaded(App.Get(), &host);
        EXPECT_FALSE(loaded.Load(path.c_str()));
    }
}

TEST_F(Document, LoadGoesThroughItsSteps)
{
    const std::string path = EffectFile("a.effect");
    TFakeHost host;
    TDocument document(App.Get(), &host);
    ASSERT_TRUE(document.Load(path.c_str()));
    EXPECT_EQ(host.Taken(),
              (TNames{"create particle window", "create view", "title", "show particle window", "frame"}));
    EXPECT_EQ(host.NodeObjects, 3);
    EXPECT_EQ(host.EdgeObjects, 2);
    EXPECT_EQ(Text(document.GetPath()), path);
    EXPECT_FALSE(document.IsModified());
    EXPECT_TRUE(document.GetSchedule().IsCreated());
    EXPECT_TRUE(document.GetEngine().IsInited());
    EXPECT_TRUE(document.CanUndo());
    EXPECT_TRUE(TForms::Get().Questions.empty());
    EXPECT_TRUE(TForms::Get().Errors.empty());
}

TEST_F(Document, SaveNeedsAPath)
{
    TDocument document(App.Get());
    document.New();
    EXPECT_EQ(AssertionOf([&] { document.Save(); }), "Path.Len() > 0");
}

TEST_F(Document, SaveAsTakesThePathAndClearsTheStar)
{
    TFakeHost host;
    TDocument document(App.Get(), &host);
    document.New();
    Add(document, "Age");
    EXPECT_TRUE(document.IsModified());
    host.Taken();
    ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    EXPECT_EQ(Text(document.GetPath()), Path("a.effect"));
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(host.Taken(), TNames{"title"});
    // Nothing changed: no title either.
    ASSERT_TRUE(document.Save());
    EXPECT_EQ(host.Taken(), TNames{});
    Add(document, "Age");
    EXPECT_EQ(host.Taken(), TNames{"title*"});
    ASSERT_TRUE(document.Save());
    EXPECT_EQ(host.Taken(), TNames{"title"});
}

TEST_F(Document, SavingUnderTheSamePathInOtherCaseKeepsTheOldText)
{
    TDocument document(App.Get());
    document.New();
    ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    Add(document, "Age");
    ASSERT_TRUE(document.SaveAs(Path("A.EFFECT").c_str()));
    EXPECT_EQ(Text(document.GetPath()), Path("a.effect"));
    EXPECT_FALSE(document.IsModified());
}

TEST_F(Document, AFailedSaveChangesNothing)
{
    TDocument document(App.Get());
    document.New();
    Add(document, "Age");
    EXPECT_FALSE(document.SaveAs("/nowhere/at/all.effect"));
    EXPECT_TRUE(document.GetPath().IsEmpty());
    EXPECT_TRUE(document.IsModified());
    EXPECT_FALSE(document.GetOperationStack()->IsAtSavedPosition());
}

namespace {

// A chunk file with some stacks and graphs.
std::string RootsFile(const std::string& path, int stacks, int graphs)
{
    TChunkFile chunks;
    for (int i = 0; i < stacks; ++i)
        chunks.AddChunk(new TOperationStack);
    for (int i = 0; i < graphs; ++i)
        chunks.AddChunk(new TEffectGraph);
    EXPECT_TRUE(chunks.Save(path.c_str()));
    return path;
}

} // namespace

TEST_F(Document, AFileWithoutExactlyOneStackAndOneGraphIsRefused)
{
    EXPECT_EQ(LoadErrorOf(RootsFile(Path("r"), 1, 1)), "");
    EXPECT_EQ(LoadErrorOf(RootsFile(Path("r"), 0, 1)), "The file holds 0 operation stacks in place of one");
    EXPECT_EQ(LoadErrorOf(RootsFile(Path("r"), 2, 1)), "The file holds 2 operation stacks in place of one");
    EXPECT_EQ(LoadErrorOf(RootsFile(Path("r"), 1, 0)), "The file holds 0 effect graphs in place of one");
    EXPECT_EQ(LoadErrorOf(RootsFile(Path("r"), 1, 2)), "The file holds 2 effect graphs in place of one");
}

TEST_F(Document, ABatchLoadNeedsTheGraphOnly)
{
    for (const int stacks : {0, 1, 2}) {
        TDocument document(App.Get());
        EXPECT_TRUE(document.BatchLoad(RootsFile(Path("r"), stacks, 1).c_str())) << stacks;
        EXPECT_EQ(Text(document.GetPath()), Path("r"));
        EXPECT_TRUE(document.CheckLoaded());
    }
    TDocument document(App.Get());
    EXPECT_FALSE(document.BatchLoad(RootsFile(Path("r"), 1, 2).c_str()));
}

TEST_F(Document, FilesThatAreNoChunkFilesAreRefused)
{
    EXPECT_EQ(LoadErrorOf(Path("missing")), "The file does not exist");
    WriteBytes(Path("bad"), "CHNX");
    EXPECT_EQ(LoadErrorOf(Path("bad")), "Chunkfile missing magic word");
    WriteBytes(Path("bad"), "");
    EXPECT_NE(LoadErrorOf(Path("bad")), "");
    WriteBytes(Path("bad"), std::string("CHNK\0\0\0\0", 8));
    EXPECT_EQ(LoadErrorOf(Path("bad")), "The file holds 0 operation stacks in place of one");
    const std::string whole = ReadBytes(EffectFile("a.effect"));
    for (size_t size = 0; size < whole.size(); size += 97) {
        WriteBytes(Path("bad"), whole.substr(0, size));
        EXPECT_NE(LoadErrorOf(Path("bad")), "") << size;
    }
}

TEST_F(Document, ALoadThatAssertsIsRefusedWithTheText)
{
    std::string bytes = ReadBytes(EffectFile("a.effect"));
    // One byte less for the first body: the stack's.
    bytes[12] = static_cast<char>(bytes[12] - 1);
    WriteBytes(Path("bad"), bytes);
    EXPECT_EQ(LoadErrorOf(Path("bad")),
              "File.GetFilePtr() == filepos + chunkdata[i].Size : Inaccurate chunk size");
}

TEST_F(Document, AnUntouchedFileIsSavedAgainByteForByte)
{
    const std::string path = EffectFile("a.effect");
    TDocument document(App.Get());
    ASSERT_TRUE(document.BatchLoad(path.c_str()));
    ASSERT_TRUE(document.SaveAs(Path("b.effect").c_str()));
    EXPECT_EQ(ReadBytes(path), ReadBytes(Path("b.effect")));
}

namespace {

// A file whose "Age" node was made from an older description.
std::string StaleFile(TTestApp& app)
{
    TDocument document(app.Get());
    EXPECT_TRUE(document.New());
    const std::unique_ptr<TNodeType> old(app.Type("Age").Clone());
    old->Description = "Old words";
    document.ApplyOperation(new TAddGraphNodeOp(document, *old, 0, 0));
    document.ApplyOperation(new TAddGraphNodeOp(document, app.Type("Wind"), 0, 0));
    document.ApplyOperation(new TAddGraphNodeOp(document, *old, 0, 0));
    document.Undo();
    EXPECT_TRUE(document.SaveAs(app.Path("stale.effect").c_str()));
    return app.Path("stale.effect");
}

} // namespace

TEST_F(Document, DecliningTheRefreshLoadsTheFileUnchanged)
{
    const std::string path = StaleFile(App);
    TFakeHost host;
    TDocument document(App.Get(), &host);
    ASSERT_TRUE(document.Load(path.c_str()));
    EXPECT_EQ(TForms::Get().Questions, TNames{"1 node types need refreshing. Refresh now?"});
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(Text(document.GetGraph()->GetNode(0)->GetNodeType()->Description), "Old words");
    EXPECT_TRUE(document.CanUndo());
    EXPECT_TRUE(document.CanRedo());
    ASSERT_TRUE(document.SaveAs(Path("again.effect").c_str()));
    EXPECT_EQ(ReadBytes(path), ReadBytes(Path("again.effect")));
}

TEST_F(Document, AcceptingTheRefreshKeepsTheHistoryAndSetsTheStar)
{
    const std::string path = StaleFile(App);
    TForms::Get().Answer = true;
    TFakeHost host;
    TDocument document(App.Get(), &host);
    ASSERT_TRUE(document.Load(path.c_str()));
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(host.Taken()[2], "title*");
    EXPECT_TRUE(document.GetLoadNotes().empty());
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 2);
    EXPECT_FALSE(document.GetGraph()->GetNode(0)->GetNodeType()->NeedsRefresh(App.Get().GetNodeTypes()));
    // The undone node was refreshed along, and comes back as what its type is now.
    document.Redo();
    ASSERT_EQ(document.GetGraph()->GetNumNodes(), 3);
    EXPECT_FALSE(document.GetGraph()->GetNode(2)->GetNodeType()->NeedsRefresh(App.Get().GetNodeTypes()));
    document.Undo();
    // No step leads back to what the file holds.
    EXPECT_TRUE(document.IsModified());
    ASSERT_TRUE(document.Save());
    EXPECT_EQ(LoadErrorOf(path), "");
    EXPECT_EQ(TForms::Get().Questions.size(), 1u);
    while (document.CanUndo())
        document.Undo();
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 0);
}

TEST_F(Document, ARefreshKeepsWiresAtTheirPorts)
{
    // The old type had the ports of the emitter in another order.
    const std::unique_ptr<TNodeType> old(App.Type("Emitter").Clone());
    TOutputPort count = old->GetOutput(0);
    old->GetOutput(0) = old->GetOutput(1);
    old->GetOutput(1) = count;
    {
        TDocument document(App.Get());
        document.New();
        TToolNode* emitter = Add(document, *old);
        TToolNode* points = Add(document, "Point Emitter");
        Connect(document, emitter, "Count", points, "Emission Trigger");
        ASSERT_TRUE(document.SaveAs(Path("old.effect").c_str()));
    }
    TForms::Get().Answer = true;
    TDocument document(App.Get());
    ASSERT_TRUE(document.Load(Path("old.effect").c_str()));
    const TEffectEdge* edge = document.GetGraph()->GetEdge(0);
    EXPECT_EQ(edge->GetSrcPort(), 0);
    EXPECT_EQ(edge->GetSrcNode()->GetOutputEdge(0, 0), edge);
    ASSERT_TRUE(document.Save());
    EXPECT_EQ(LoadErrorOf(Path("old.effect")), "");
}

TEST_F(Document, UndoDownToTheSavedPositionClearsTheStarAndOneMoreSetsIt)
{
    TDocument document(App.Get());
    document.New();
    Add(document, "Age");
    ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    Add(document, "Wind");
    EXPECT_TRUE(document.IsModified());
    document.Undo();
    EXPECT_FALSE(document.IsModified());
    document.Undo();
    EXPECT_TRUE(document.IsModified());
    document.Redo();
    EXPECT_FALSE(document.IsModified());
    document.Redo();
    EXPECT_TRUE(document.IsModified());
}

TEST_F(Document, AMergedEditSetsTheStarThoughThePositionStays)
{
    TDocument document(App.Get());
    document.New();
    TToolNode* node = Add(document, "Age");
    auto* age = static_cast<TNodeScalarParameter*>(node->GetNodeType()->GetInput(1));
    const float values[2] = {100, 200};
    document.ApplyOperation(new TScalarParamOp(age, &values[0]));
    ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    document.ApplyOperation(new TScalarParamOp(age, &values[1]));
    EXPECT_EQ(document.GetOperationStack()->GetNumOperations(), 2);
    EXPECT_TRUE(document.GetOperationStack()->IsAtSavedPosition());
    EXPECT_TRUE(document.IsModified());
}

TEST_F(Document, SelectionKeepsItsOrderAndFlags)
{
    TDocument document(App.Get());
    document.New();
    TToolNode* a = Add(document, "Age");
    TToolNode* b = Add(document, "Age");
    document.SelectNode(b, true);
    document.SelectNode(a, false);
    ASSERT_EQ(document.GetSelection().size(), 2);
    EXPECT_EQ(document.GetSelection()[0], b);
    EXPECT_TRUE(a->IsSelected());
    document.DeselectNode(b);
    document.DeselectNode(b);
    EXPECT_FALSE(b->IsSelected());
    EXPECT_EQ(document.GetSelection().size(), 1);
    document.SelectNode(b, true);
    EXPECT_FALSE(a->IsSelected());
    document.ClearSelection();
    EXPECT_FALSE(b->IsSelected());
    EXPECT_TRUE(document.GetSelection().empty());
}

TEST_F(Document, UndoOfAnAddedNodeTakesItOutOfTheSelection)
{
    TDocument document(App.Get());
    document.New();
    document.SelectNode(Add(document, "Age"), true);
    document.Undo();
    EXPECT_TRUE(document.GetSelection().empty());
}

TEST_F(Document, PasteTwiceLiesTenFurtherInBothAxes)
{
    TDocument document(App.Get());
    document.New();
    TToolNode* age = Add(document, App.Type("Age"), 100, 200);
    document.SelectNode(age, true);
    document.CopySelection();
    for (int times = 1; times <= 2; ++times) {
        document.Paste();
        ASSERT_EQ(document.GetSelection().size(), 1);
        const TToolNode* pasted = document.GetSelection()[0];
        EXPECT_EQ(pasted->GetX(), 100 + 10 * times);
        EXPECT_EQ(pasted->GetY(), 200 + 10 * times);
        EXPECT_TRUE(pasted->IsSelected());
        EXPECT_NE(pasted, age);
    }
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 3);
    EXPECT_FALSE(age->IsSelected());
    document.Undo();
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 2);
}

TEST_F(Document, PastedCopiesHaveTheValuesAndTheInnerWires)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    document.SelectNode(Quads, true);
    document.SelectNode(Points, false);
    document.CopySelection();
    EXPECT_EQ(App.Get().GetClipboard().GetEdges().size(), 1);
    // The clipboard has copies: what happens to the originals is nothing to it.
    SetTexture(document, Quads, "other.dds");
    document.Paste();
    ASSERT_EQ(document.GetGraph()->GetNumNodes(), 5);
    ASSERT_EQ(document.GetGraph()->GetNumEdges(), 3);
    const TToolNode* quads = document.GetSelection()[0];
    const TToolNode* points = document.GetSelection()[1];
    EXPECT_EQ(quads->GetInput(0)->GetSrcNode(), points);
    EXPECT_EQ(points->GetInput(0), nullptr);
    EXPECT_EQ(points->GetOutputEdge(0, 0), quads->GetInput(0));
    EXPECT_EQ(Text(quads->GetNodeType()
                       ->FindParameterOf<TNodeTextureParameter>("Texture", PK_TEXTURE)
                       ->GetFileName()),
              "spark.dds");
}

TEST_F(Document, TheClipboardOutlivesItsDocument)
{
    {
        TDocument document(App.Get());
        document.New();
        document.SelectNode(Add(document, "Age"), true);
        document.CopySelection();
    }
    TDocument document(App.Get());
    document.New();
    document.Paste();
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 1);
}

TEST_F(Document, CopyOfNothingKeepsTheClipboardAndPasteOfNothingDoesNothing)
{
    TDocument document(App.Get());
    document.New();
    document.Paste();
    EXPECT_FALSE(document.IsModified());
    document.SelectNode(Add(document, "Age"), true);
    document.CopySelection();
    document.ClearSelection();
    document.CopySelection();
    EXPECT_EQ(App.Get().GetClipboard().GetNodes().size(), 1);
}

TEST_F(Document, CutCopiesDeletesAndClearsTheSelection)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    document.SelectNode(Points, true);
    document.CutSelection();
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 2);
    EXPECT_EQ(document.GetGraph()->GetNumEdges(), 0);
    EXPECT_TRUE(document.GetSelection().empty());
    EXPECT_FALSE(Points->IsSelected());
    EXPECT_EQ(App.Get().GetClipboard().GetNodes().size(), 1);
    document.Undo();
    EXPECT_EQ(document.GetGraph()->GetNumEdges(), 2);
    const int operations = document.GetOperationStack()->GetNumOperations();
    document.CutSelection();
    EXPECT_EQ(document.GetOperationStack()->GetNumOperations(), operations);
}

namespace {

class TPlainDisplay : public TNodeDisplay
{
};

} // namespace

TEST_F(Document, DisplaysAreEnteredOnce)
{
    TDocument document(App.Get());
    document.New();
    TPlainDisplay display;
    document.AddNodeDisplay(&display);
    EXPECT_EQ(AssertionOf([&] { document.AddNodeDisplay(&display); }),
              "NodeDisplay.find(display) == NodeDisplay.end()");
    document.RemoveNodeDisplay(&display);
    EXPECT_EQ(AssertionOf([&] { document.RemoveNodeDisplay(&display); }), "it != NodeDisplay.end()");
}

TEST_F(Document, AStructuralEditRebuildsARunningEngineOnly)
{
    TFakeHost host;
    TDocument document(App.Get(), &host);
    document.New();
    BuildEffect(document);
    // The stage's texture was named when nothing was connected yet: an engine was tried, in vain.
    EXPECT_EQ(host.Schedules, 1);
    EXPECT_FALSE(document.GetSchedule().IsCreated());
    host.Schedules = 0;
    ASSERT_TRUE(document.EnsureSchedule());
    EXPECT_EQ(host.Schedules, 1);
    EXPECT_TRUE(document.EnsureSchedule());
    EXPECT_EQ(host.Schedules, 1);
    TErrorList errors;
    ASSERT_TRUE(document.UpdateEngine(0.02f, errors));
    EXPECT_GT(document.GetEngine().GetTime(), 0);
    SetTexture(document, Quads, "spark.dds");
    EXPECT_GT(document.GetEngine().GetTime(), 0);
    Connect(document, Emitter, "Time", Add(document, "Event Trigger"), "Trigger");
    EXPECT_EQ(host.Schedules, 2);
    EXPECT_EQ(document.GetEngine().GetTime(), 0);
    EXPECT_TRUE(document.GetEngine().IsInited());
}

TEST_F(Document, AScheduleThatFailsAtLoadShowsNoDialogAndAfterAnEditItDoes)
{
    std::string path;
    {
        TDocument document(App.Get());
        document.New();
        Add(document, "Wind");
        path = Path("bad.effect");
        ASSERT_TRUE(document.SaveAs(path.c_str()));
    }
    TDocument document(App.Get());
    ASSERT_TRUE(document.Load(path.c_str()));
    EXPECT_FALSE(document.GetEngine().IsInited());
    EXPECT_TRUE(TForms::Get().Errors.empty());

    TDocument good(App.Get());
    ASSERT_TRUE(good.Load(EffectFile("good.effect").c_str()));
    vector<TToolNode*> nodes;
    nodes.push_back(static_cast<TToolNode*>(good.GetGraph()->GetNode(1)));
    good.ApplyOperation(new TDeleteGraphNodeOp(nodes));
    EXPECT_EQ(
        TForms::Get().Errors,
        TNames{"Schedule errors|No emitters in graph. Graph must contain an emitter to produce new particle "
               "data"});
    EXPECT_FALSE(good.GetEngine().IsInited());
    // Without an engine nothing is rebuilt, and nothing shown, until it is asked for.
    good.Undo();
    EXPECT_EQ(TForms::Get().Errors.size(), 1u);
    EXPECT_FALSE(good.GetEngine().IsInited());
    EXPECT_TRUE(good.EnsureSchedule());
    EXPECT_TRUE(good.GetEngine().IsInited());
}

TEST_F(Document, AFileGivenToAnEffectThatDoesNotRunForWantOfItStartsIt)
{
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    App.Get().GetResourceLocator().ReadSettings();
    TFakeHost host;
    TDocument document(App.Get(), &host);
    document.New();
    BuildEffect(document);
    SetTexture(document, Quads, "later.dds");
    EXPECT_FALSE(document.EnsureSchedule());
    ASSERT_FALSE(document.GetEngine().IsInited());
    TForms::Get().Errors.clear();
    SetTexture(document, Quads, "also missing.dds");
    EXPECT_FALSE(document.GetEngine().IsInited());
    // What is still missing is not told by a dialog.
    EXPECT_TRUE(TForms::Get().Errors.empty());
    SetTexture(document, Quads, "spark.dds");
    EXPECT_TRUE(document.GetEngine().IsInited());
    EXPECT_TRUE(host.HasSeenEngine);
    // While it runs, another name leaves it running.
    TErrorList errors;
    ASSERT_TRUE(document.UpdateEngine(0.02f, errors));
    SetTexture(document, Quads, "other.dds");
    EXPECT_GT(document.GetEngine().GetTime(), 0);
    document.Undo();
    EXPECT_GT(document.GetEngine().GetTime(), 0);
    // Undone and redone names count as given ones.
    document.ClearEngine();
    document.Undo();
    EXPECT_FALSE(document.GetEngine().IsInited());
    document.Redo();
    EXPECT_TRUE(document.GetEngine().IsInited());
    document.ClearEngine();
    document.Redo();
    EXPECT_FALSE(document.GetEngine().IsInited());
    document.Undo();
    EXPECT_TRUE(document.GetEngine().IsInited());
}

TEST_F(Document, AScheduleStandsThoughTheTextureIsMissingAndFollowsTheGraph)
{
    std::string path;
    {
        TDocument document(App.Get());
        document.New();
        BuildEffect(document);
        SetTexture(document, Quads, "later.dds");
        path = Path("missing.effect");
        ASSERT_TRUE(document.SaveAs(path.c_str()));
    }
    // No search of the whole disc.
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    App.Get().GetResourceLocator().ReadSettings();
    TFakeHost host;
    TDocument document(App.Get(), &host);
    ASSERT_TRUE(document.Load(path.c_str()));
    EXPECT_FALSE(document.GetEngine().IsInited());
    ASSERT_TRUE(document.GetSchedule().IsCreated());
    EXPECT_EQ(document.GetSchedule().GetNumGroups(), 2);
    EXPECT_EQ(document.GetSchedule().GetNumNodes(), 3);
    EXPECT_TRUE(TForms::Get().Errors.empty());
    // An edit that takes nodes out: the schedule must not go on naming them, and still nothing is shown.
    host.Schedules = 0;
    TToolNode* emitter = static_cast<TToolNode*>(document.GetGraph()->GetNode(0));
    Connect(document, emitter, "Time", Add(document, "Event Trigger"), "Trigger");
    EXPECT_EQ(document.GetSchedule().GetNumNodes(), 4);
    EXPECT_EQ(host.Schedules, 1);
    vector<TToolNode*> nodes;
    nodes.push_back(static_cast<TToolNode*>(document.GetGraph()->GetNode(3)));
    document.ApplyOperation(new TDeleteGraphNodeOp(nodes));
    EXPECT_EQ(document.GetSchedule().GetNumNodes(), 3);
    for (int i = 0; i < 3; ++i)
        document.Undo();
    EXPECT_EQ(document.GetSchedule().GetNumNodes(), 3);
    EXPECT_FALSE(document.GetEngine().IsInited());
    EXPECT_TRUE(TForms::Get().Errors.empty());
    // With the file that was named before, the effect runs again.
    document.Undo();
    EXPECT_TRUE(document.GetEngine().IsInited());
    while (document.CanUndo())
        document.Undo();
    EXPECT_FALSE(document.GetSchedule().IsCreated());
    EXPECT_EQ(document.GetSchedule().GetNumNodes(), 0);
    EXPECT_FALSE(document.GetEngine().IsInited());
    while (document.CanRedo())
        document.Redo();
    // A schedule is no engine: it is tried again.
    EXPECT_FALSE(document.EnsureSchedule());
    EXPECT_FALSE(document.Export(Path("out.efx").c_str()));
    std::filesystem::copy_file(Path("resources/spark.dds"), Path("resources/later.dds"));
    EXPECT_TRUE(document.EnsureSchedule());
    EXPECT_TRUE(document.Export(Path("out.efx").c_str()));
}

TEST_F(Document, EnsureScheduleShowsWhatIsWrong)
{
    TDocument document(App.Get());
    document.New();
    EXPECT_FALSE(document.EnsureSchedule());
    EXPECT_EQ(TForms::Get().Errors, TNames{"Schedule errors|Graph contains no nodes"});
    BuildEffect(document);
    EXPECT_TRUE(document.EnsureSchedule());
    EXPECT_TRUE(document.EnsureSchedule());
    EXPECT_EQ(TForms::Get().Errors.size(), 1u);
}

TEST_F(Document, EnsureScheduleTriesAgainWhatHadNoEngine)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    SetTexture(document, Quads, "later.dds");
    // No search of the whole disc.
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    App.Get().GetResourceLocator().ReadSettings();
    EXPECT_FALSE(document.EnsureSchedule());
    EXPECT_TRUE(document.GetSchedule().IsCreated());
    EXPECT_FALSE(document.EnsureSchedule());
    std::filesystem::copy_file(Path("resources/spark.dds"), Path("resources/later.dds"));
    EXPECT_TRUE(document.EnsureSchedule());
    EXPECT_TRUE(document.GetEngine().IsInited());
}

TEST_F(Document, AFailedAssertionInTheScheduleComesBackAsAnError)
{
    TDocument document(App.Get());
    document.New();
    TToolNode* points = Add(document, "Point Emitter");
    TToolNode* quads = Add(document, "Quad Render Stage");
    Connect(document, points, "Start Transform", quads, "Transform");
    TErrorList errors;
    EXPECT_FALSE(document.CreateSchedule(errors));
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(Text((*errors.begin())->GetMessage()), "j < groups.size()");
    EXPECT_FALSE(document.GetSchedule().IsCreated());
    EXPECT_EQ(document.GetSchedule().GetNumGroups(), 0);
    EXPECT_FALSE(document.EnsureSchedule());
    EXPECT_EQ(TForms::Get().Errors, TNames{"Schedule errors|j < groups.size()"});
    EXPECT_EQ(document.BatchExport(Path("out.efx").c_str(), errors), BR_SCHEDULEFAILED);
    TString report;
    document.GetReport(report);
    EXPECT_NE(Text(report).find("Graph does not create valid schedule\r\n"), std::string::npos);
}

namespace {

// Fails its assertions when told so.
class TFaultyNode : public TRegistered<TFaultyNode, TEffectExecNode>
{
public:
    static constexpr const char* RegisteredName = "TDocumentTestFaultyNode";
    static int Register()
    {
        static const int id = TFaultyNode::ClassId();
        return id;
    }
    bool Init(TErrorList&) override
    {
        ASSERT_TEXT(FailsIn != 'i', "Init of a faulty node");
        return true;
    }
    void Execute(int, float) override { ASSERT_TEXT(FailsIn != 'x', "Execute of a faulty node"); }
    void Export(TExportData&, TErrorList&) override
    {
        ASSERT_TEXT(FailsIn != 'e', "Export of a faulty node");
    }

    static char FailsIn;
};

char TFaultyNode::FailsIn = 0;

// Resets the fault, and gives a type of the class.
struct TFaulty
{
    explicit TFaulty(TTestApp& app) : Type(app.Type("Constant").Clone())
    {
        TFaultyNode::Register();
        TFaultyNode::FailsIn = 0;
        Type->ClassName = "TDocumentTestFaultyNode";
    }
    std::unique_ptr<TNodeType> Type;
};

} // namespace

TEST_F(Document, AFailedAssertionInTheEngineClearsIt)
{
    const TFaulty faulty(App);
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    Add(document, *faulty.Type);
    TFaultyNode::FailsIn = 'i';
    EXPECT_FALSE(document.EnsureSchedule());
    EXPECT_EQ(TForms::Get().Errors, TNames{"Schedule errors|Init of a faulty node"});
    EXPECT_FALSE(document.GetEngine().IsInited());
    TFaultyNode::FailsIn = 0;
    document.RebuildSchedule(false);
    ASSERT_TRUE(document.GetEngine().IsInited());
    TErrorList errors;
    EXPECT_TRUE(document.UpdateEngine(0.02f, errors));
    TFaultyNode::FailsIn = 'x';
    EXPECT_FALSE(document.UpdateEngine(0.02f, errors));
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(Text((*errors.begin())->GetMessage()), "Execute of a faulty node");
    // The preview is empty until the next rebuild.
    EXPECT_FALSE(document.GetEngine().IsInited());
    EXPECT_TRUE(document.UpdateEngine(0.02f, errors));
    TFaultyNode::FailsIn = 0;
    document.RebuildSchedule(false);
    EXPECT_TRUE(document.GetEngine().IsInited());
}

// The host sees to it that the engine still stands when it is told that it goes.
TEST_F(Document, TheWindowsHearOfTheEngineWheneverItGoesOrComes)
{
    const TFaulty faulty(App);
    TFakeHost host;
    TDocument document(App.Get(), &host);
    document.New();
    BuildEffect(document);
    Add(document, *faulty.Type);
    int gone = 0;
    const auto expectGone = [&](const char* when) {
        EXPECT_EQ(host.GoneEngines, ++gone) << when;
        EXPECT_EQ(host.HasSeenEngine, document.GetEngine().IsInited()) << when;
    };
    const auto expectSeen = [&](const char* when) {
        EXPECT_EQ(host.GoneEngines, gone) << when;
        EXPECT_TRUE(document.GetEngine().IsInited()) << when;
        EXPECT_TRUE(host.HasSeenEngine) << when;
    };
    ASSERT_TRUE(document.EnsureSchedule());
    expectSeen("first demand");
    document.RebuildSchedule(true);
    expectGone("update");
    expectSeen("update");

    TErrorList errors;
    TFaultyNode::FailsIn = 'x';
    EXPECT_FALSE(document.UpdateEngine(0.02f, errors));
    expectGone("a fault in a frame");
    EXPECT_FALSE(host.HasSeenEngine);
    TFaultyNode::FailsIn = 0;
    TString report;
    document.GetReport(report);
    expectSeen("the report starts an engine");
    Add(document, "Wind");
    document.GetReport(report);
    expectGone("the report has a node more");
    expectSeen("the report has a node more");
    document.GetReport(report);
    expectSeen("the report leaves the engine alone");

    TFaultyNode::FailsIn = 'i';
    document.RebuildSchedule(true);
    expectGone("no engine after an update");
    EXPECT_FALSE(host.HasSeenEngine);
    // There is none that could go.
    document.RebuildSchedule(true);
    EXPECT_EQ(host.GoneEngines, gone);
    TFaultyNode::FailsIn = 0;
    ASSERT_TRUE(document.EnsureSchedule());
    expectSeen("mended");

    const std::unique_ptr<TNodeType> lost(App.Type("Random Value").Clone());
    lost->GetInput(0)->Name = "Lost";
    TToolNode* random = Add(document, *lost);
    TToolNode* wind = Add(document, "Wind");
    const int schedules = host.Schedules;
    Connect(document, random, "Value", wind, "Strength");
    expectGone("types that cannot be settled");
    EXPECT_FALSE(host.HasSeenEngine);
    EXPECT_GT(host.Schedules, schedules) << "the schedule has gone, too";
}

TEST_F(Document, TheWindowsHearThatAScheduleWithoutAnEngineHasGone)
{
    TFakeHost host;
    TDocument document(App.Get(), &host);
    document.New();
    BuildEffect(document);
    SetTexture(document, Quads, "");
    EXPECT_FALSE(document.EnsureSchedule());
    ASSERT_TRUE(document.GetSchedule().IsCreated());
    const int schedules = host.Schedules;
    vector<TToolNode*> nodes;
    nodes.push_back(Points);
    document.ApplyOperation(new TDeleteGraphNodeOp(nodes));
    EXPECT_FALSE(document.GetSchedule().IsCreated());
    EXPECT_EQ(host.Schedules, schedules + 1);
    EXPECT_EQ(host.GoneEngines, 0);
}

TEST_F(Document, AFailedAssertionInTheExportLeavesNoFileAndTheOldOne)
{
    const TFaulty faulty(App);
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    Add(document, *faulty.Type);
    ASSERT_TRUE(document.EnsureSchedule());
    WriteBytes(Path("out.efx"), "old");
    TFaultyNode::FailsIn = 'e';
    EXPECT_FALSE(document.Export(Path("out.efx").c_str()));
    EXPECT_EQ(TForms::Get().Errors, TNames{"Export errors|Export of a faulty node"});
    EXPECT_EQ(ReadBytes(Path("out.efx")), "old");
    TErrorList errors;
    EXPECT_EQ(document.BatchExport(Path("new.efx").c_str(), errors), BR_EXPORTFAILED);
    EXPECT_FALSE(std::filesystem::exists(Path("new.efx")));
    TString report;
    document.GetReport(report);
    EXPECT_NE(Text(report).find("Schedule does not create valid efx file\r\n"), std::string::npos);
    TFaultyNode::FailsIn = 0;
    EXPECT_TRUE(document.Export(Path("out.efx").c_str()));
    EXPECT_NE(ReadBytes(Path("out.efx")), "old");
}

TEST_F(Document, TypesThatCannotBeSettledAreAnErrorAndNotTheEnd)
{
    // An input that follows one that is not there.
    const std::unique_ptr<TNodeType> type(App.Type("Random Value").Clone());
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    ASSERT_TRUE(document.EnsureSchedule());
    type->GetInput(0)->Name = "Lost";
    TToolNode* random = Add(document, *type);
    EXPECT_TRUE(TForms::Get().Errors.empty());
    Connect(document, random, "Value", Add(document, "Wind"), "Strength");
    EXPECT_EQ(TForms::Get().Errors, TNames{"Schedule errors|i < node->GetNodeType()->GetNumInputs()"});
    EXPECT_FALSE(document.GetEngine().IsInited());
    document.Undo();
    document.Undo();
    document.Undo();
    EXPECT_TRUE(document.EnsureSchedule());
}

TEST_F(Document, ExportWithoutAnEngineIsAnError)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    EXPECT_FALSE(document.Export(Path("out.efx").c_str()));
    EXPECT_EQ(TForms::Get().Errors, TNames{"Export errors|EffectExecSchedule.IsInited()"});
}

TEST_F(Document, ExportWritesTheFileAndShowsNothingWithoutWarnings)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    ASSERT_TRUE(document.EnsureSchedule());
    EXPECT_TRUE(document.Export(Path("out.efx").c_str()));
    EXPECT_TRUE(TForms::Get().Errors.empty());
    TEfxFile file;
    TString fault;
    EXPECT_TRUE(file.Load(Path("out.efx").c_str(), fault)) << fault.Print();
    EXPECT_FALSE(document.Export("/nowhere/at/all.efx"));
    EXPECT_EQ(TForms::Get().Errors.size(), 1u);
}

TEST_F(Document, WarningsAreShownAndTheExportStands)
{
    App.Get().GetSettings().SetPolicyMustHaveBoundingBox(true);
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    ASSERT_TRUE(document.EnsureSchedule());
    EXPECT_TRUE(document.Export(Path("out.efx").c_str()));
    ASSERT_EQ(TForms::Get().Errors.size(), 1u);
    EXPECT_EQ(TForms::Get().Errors[0].find("Export errors|"), 0u);
    App.Get().GetSettings().SetPolicyFailurePreventsExport(true);
    EXPECT_FALSE(document.Export(Path("other.efx").c_str()));
    EXPECT_FALSE(std::filesystem::exists(Path("other.efx")));
}

namespace {

std::string BatchLog(TDocument& document, const std::string& path)
{
    TErrorList errors;
    TBatchResult result;
    LogOf([&] { result = document.BatchExport(path.c_str(), errors); });
    return LogOf([&] { TDocument::LogBatchResult(result, errors); });
}

} // namespace

TEST_F(Document, TheLogOfABatchExport)
{
    TDocument document(App.Get());
    document.New();
    EXPECT_EQ(BatchLog(document, Path("out.efx")),
              "Schedule creation failed:\nError 0 : Graph contains no nodes\n");
    BuildEffect(document);
    EXPECT_EQ(BatchLog(document, Path("out.efx")), "");
    EXPECT_EQ(BatchLog(document, "/nowhere/at/all.efx").find("Export failed:\nError 0 : "), 0u);
    App.Get().GetSettings().SetPolicyMustHaveBoundingBox(true);
    const std::string log = BatchLog(document, Path("out.efx"));
    EXPECT_EQ(log.find("1 warnings:\n"), 0u);
    EXPECT_EQ(log.find("Error"), std::string::npos);
    EXPECT_EQ(log.back(), '\n');
    SetTexture(document, Quads, "");
    EXPECT_EQ(BatchLog(document, Path("out.efx")),
              "Schedule creation failed:\nError 0 : No texture specified in Quad Render Stage\n");
}

TEST_F(Document, LogNumbersEachError)
{
    TErrorList errors;
    errors.Add(new TError("one"));
    errors.Add(new TError("two"));
    EXPECT_EQ(LogOf([&] { TDocument::LogBatchResult(BR_EXPORTFAILED, errors); }),
              "Export failed:\nError 0 : one\nError 1 : two\n");
    EXPECT_EQ(LogOf([&] { TDocument::LogBatchResult(BR_DONE, errors); }), "2 warnings:\none\ntwo\n");
}

TEST_F(Document, TheReportOfAnEmptyDocument)
{
    TDocument document(App.Get());
    document.New();
    TString report;
    document.GetReport(report);
    EXPECT_EQ(Text(report),
              "Effect File:\r\n------------\r\n\r\n"
              "Save path: <none>\r\nModified: no\r\nSize on disc: 48 bytes\r\nChunks in file: 2\r\n"
              "Graph nodes: 0\r\nGraph edges: 0\r\n"
              "\r\nSchedule:\r\n------------\r\n\r\n"
              "Graph does not create valid schedule\r\n");
}

TEST_F(Document, TheReportOfAnEffect)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    Add(document, "Wind");
    document.BatchExport(Path("out.efx").c_str(), *std::make_unique<TErrorList>());
    const auto size = std::to_string(document.GetChunks().GetFileSize());
    const auto chunks = std::to_string(document.GetChunks().GetNumChunks());
    TString report;
    document.GetReport(report);
    EXPECT_EQ(Text(report),
              "Effect File:\r\n------------\r\n\r\nSave path: " + Path("a.effect") +
                  "\r\nModified: yes\r\nSize on disc: " + size + " bytes\r\nChunks in file: " + chunks +
                  "\r\nGraph nodes: 4\r\nGraph edges: 2\r\n"
                  "\r\nSchedule:\r\n------------\r\n\r\n"
                  "Graph creates valid schedule\r\nGroups in schedule: 2\r\nNodes in schedule: 4\r\n"
                  "Tied nodes in group 0: 2\r\nTied nodes in group 1: 2\r\n"
                  "\r\nEfx File:\r\n------------\r\n\r\n"
                  "Schedule creates valid efx file\r\nSize on disc: " +
                  std::to_string(std::filesystem::file_size(Path("out.efx"))) + " bytes\r\n");
}

TEST_F(Document, TheReportShowsThePathInTheSystemsOwnForm)
{
    TDocument document(App.Get());
    document.New();
    std::string kept = Path("a.effect");
    std::replace(kept.begin(), kept.end(), '/', '\\');
    ASSERT_TRUE(document.SaveAs(kept.c_str()));
    TString report;
    document.GetReport(report);
    EXPECT_NE(Text(report).find("Save path: " + Path("a.effect") + "\r\n"), std::string::npos);
}

TEST_F(Document, TheReportLeavesARunningPreviewAloneWhereItCan)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    ASSERT_TRUE(document.EnsureSchedule());
    TErrorList errors;
    ASSERT_TRUE(document.UpdateEngine(0.02f, errors));
    const float time = document.GetEngine().GetTime();
    TString report;
    document.GetReport(report);
    EXPECT_EQ(document.GetEngine().GetTime(), time);
    // A further node is no graph change, but the report's schedule has it: the engine starts anew.
    Add(document, "Wind");
    document.GetReport(report);
    EXPECT_TRUE(document.GetEngine().IsInited());
    EXPECT_EQ(document.GetEngine().GetTime(), 0);
    EXPECT_TRUE(document.UpdateEngine(0.02f, errors));
}

TEST_F(Document, UndoOfAScheduledAdditionForgetsTheNode)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    ASSERT_TRUE(document.EnsureSchedule());
    TToolNode* wind = Add(document, "Wind");
    Connect(document, Emitter, "Time", Add(document, "Event Trigger"), "Trigger");
    auto isScheduled = [&] {
        for (int i = 0; i < document.GetSchedule().GetNumNodes(); ++i)
            if (document.GetSchedule().GetNode(i) == wind)
                return true;
        return false;
    };
    EXPECT_TRUE(isScheduled());
    document.Undo();
    document.Undo();
    EXPECT_TRUE(isScheduled());
    document.Undo();
    EXPECT_FALSE(isScheduled());
    EXPECT_TRUE(document.GetEngine().IsInited());
    // The next edit frees the node.
    Add(document, "Age");
    TErrorList errors;
    EXPECT_TRUE(document.UpdateEngine(0.02f, errors));
}

namespace {

// No file may grow beyond a size, and nobody is told by a signal.
class TFileLimit
{
public:
    explicit TFileLimit(rlim_t size)
    {
        OldHandler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &Old);
        rlimit limit = Old;
        limit.rlim_cur = size;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~TFileLimit()
    {
        setrlimit(RLIMIT_FSIZE, &Old);
        std::signal(SIGXFSZ, OldHandler);
    }

private:
    rlimit Old;
    void (*OldHandler)(int);
};

int CountFiles(const std::string& folder)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        count += entry.is_regular_file() ? 1 : 0;
    return count;
}

} // namespace

TEST_F(Document, ADiscThatIsFullInTheMiddleOfASaveLeavesTheOldFile)
{
    const std::string path = EffectFile("a.effect");
    const std::string old = ReadBytes(path);
    TDocument document(App.Get());
    ASSERT_TRUE(document.Load(path.c_str()));
    Add(document, "Wind");
    const std::string folder = std::filesystem::path(path).parent_path().string();
    const int files = CountFiles(folder);
    for (const rlim_t size : {rlim_t{0}, rlim_t{100}, static_cast<rlim_t>(old.size())}) {
        bool saved = true;
        {
            const TFileLimit limit(size);
            saved = document.Save();
        }
        EXPECT_FALSE(saved);
        EXPECT_EQ(ReadBytes(path), old);
        EXPECT_TRUE(document.IsModified());
        EXPECT_EQ(CountFiles(folder), files);
    }
    ASSERT_TRUE(document.Save());
    EXPECT_NE(ReadBytes(path), old);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(Document, ADiscThatIsFullInTheMiddleOfAnExportLeavesTheOldFile)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    ASSERT_TRUE(document.EnsureSchedule());
    const std::string path = Path("out.efx");
    ASSERT_TRUE(document.Export(path.c_str()));
    const std::string old = ReadBytes(path);
    const std::string folder = std::filesystem::path(path).parent_path().string();
    const int files = CountFiles(folder);
    bool exported = true;
    TErrorList errors;
    TBatchResult result = BR_DONE;
    {
        const TFileLimit limit(old.size() / 2);
        exported = document.Export(path.c_str());
        result = document.BatchExport(path.c_str(), errors);
    }
    EXPECT_FALSE(exported);
    EXPECT_EQ(result, BR_EXPORTFAILED);
    EXPECT_FALSE(errors.empty());
    EXPECT_EQ(TForms::Get().Errors.size(), 1u);
    EXPECT_EQ(ReadBytes(path), old);
    EXPECT_EQ(CountFiles(folder), files);
}

TEST_F(Document, DamagedFilesAreRefusedOrHarmless)
{
    std::string whole;
    {
        TDocument document(App.Get());
        document.New();
        BuildEffect(document);
        TDice dice(7);
        TRandomGraph graph(App.Get(), document, dice);
        graph.Build(30);
        ASSERT_TRUE(document.SaveAs(Path("whole").c_str()));
        whole = ReadBytes(Path("whole"));
    }
    // A damaged name is looked for nowhere else.
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    App.Get().GetResourceLocator().ReadSettings();
    std::mt19937 random(1);
    int loadedCount = 0;
    for (int i = 0; i < 300; ++i) {
        std::string bytes = whole;
        for (auto n = random() % 3; n < 3; ++n)
            bytes[random() % bytes.size()] = static_cast<char>(random() % 4 == 0 ? random() : random() % 8);
        WriteBytes(Path("damaged"), bytes);
        TDocument document(App.Get());
        if (!document.Load(Path("damaged").c_str())) {
            EXPECT_FALSE(document.GetLoadError().IsEmpty());
            continue;
        }
        ++loadedCount;
        TErrorList errors;
        document.UpdateEngine(0.02f, errors);
        EXPECT_TRUE(document.SaveAs(Path("again").c_str()));
        // A history that does not fit is forgotten when its turn comes.
        for (int steps = static_cast<int>(random() % 40); steps > 0; --steps)
            random() % 3 == 0 ? document.Redo() : document.Undo();
        Add(document, "Age");
        while (document.CanUndo())
            document.Undo();
        while (document.CanRedo())
            document.Redo();
        EXPECT_TRUE(document.SaveAs(Path("again").c_str()));
    }
    EXPECT_GT(loadedCount, 0);
}

TEST(TCindermillApp, ThereIsOneInstance)
{
    EXPECT_EQ(AssertionOf([] { TCindermillApp::Get(); }), "StaticInstance != 0");
    {
        TTestApp app;
        EXPECT_EQ(&TCindermillApp::Get(), &app.Get());
        EXPECT_TRUE(app.Get().IsHeadless());
    }
    EXPECT_EQ(AssertionOf([] { TCindermillApp::Get(); }), "StaticInstance != 0");
}

TEST(TCindermillApp, VersionText)
{
    TString version;
    TCindermillApp::GetVersion(version);
    EXPECT_EQ(Text(version), "Cindermill v0.0 (Mar 18 2008, 17:35:08) Build 3879");
}

TEST(TCindermillApp, NodeTypesAreLookedForInTheWorkingDirectoryAndBesideTheProgram)
{
    TTestApp app;
    TSettings& settings = app.Get().GetSettings();
    TString path;
    settings.SetNodeTypesDirectory(SourcePath("NodeTypes").c_str());
    EXPECT_TRUE(app.Get().FindNodeTypesDirectory(path));
    EXPECT_EQ(Text(path), SourcePath("NodeTypes"));
    // The tests' own folder has subfolders: one of them stands beside this program.
    const std::filesystem::path beside =
        std::filesystem::canonical("/proc/self/exe").parent_path() / "cindermill-types-of-this-test";
    std::filesystem::create_directory(beside);
    settings.SetNodeTypesDirectory("cindermill-types-of-this-test");
    EXPECT_TRUE(app.Get().FindNodeTypesDirectory(path));
    std::filesystem::remove(beside);
    EXPECT_FALSE(app.Get().FindNodeTypesDirectory(path));
    settings.SetNodeTypesDirectory("/no/such/place");
    EXPECT_FALSE(app.Get().FindNodeTypesDirectory(path));
    settings.SetNodeTypesDirectory("");
    EXPECT_FALSE(app.Get().FindNodeTypesDirectory(path));
}

TEST(DisplayErrors, GoToTheLogWithoutAWindowSystem)
{
    TErrorList errors;
    errors.Add(new TError("first"));
    errors.Add(new TError("second"));
    EXPECT_EQ(LogOf([&] { DisplayErrors("Title", errors); }), "Title:\nfirst\nsecond\n");
}
