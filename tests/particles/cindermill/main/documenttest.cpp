#include "documentfixture.h"

#include "particles/cindermill/graph/operations/gesture.h"
#include "particles/cindermill/graph/operations/nodedisplay.h"
#include "particles/cindermill/graph/operations/valueparamop.h"

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

// The file holds what was undone before another edit took its place in the history.
TEST_F(Document, WhatWasSavedAndThenLeftBehindIsNotReachedByCountingSteps)
{
    TDocument document(App.Get());
    document.New();
    Add(document, "Age");
    ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    document.Undo();
    Add(document, "Wind");
    EXPECT_TRUE(document.IsModified());
    Add(document, "Damping");
    document.Undo();
    EXPECT_TRUE(document.IsModified()) << "one operation is done as at the save, but another";
    document.Redo();
    document.Undo();
    EXPECT_TRUE(document.IsModified());
    ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    EXPECT_FALSE(document.IsModified());
}

TEST_F(Document, AnEditThatMergedAfterASaveIsNotTakenForWhatWasSaved)
{
    TDocument document(App.Get());
    document.New();
    TToolNode* node = Add(document, "Age");
    auto* age = static_cast<TNodeScalarParameter*>(node->GetNodeType()->GetInput(1));
    const float values[2] = {100, 200};
    document.ApplyOperation(new TScalarParamOp(age, &values[0]));
    ASSERT_TRUE(document.SaveAs(Path("a.effect").c_str()));
    document.ApplyOperation(new TScalarParamOp(age, &values[1]));
    ASSERT_EQ(document.GetOperationStack()->GetNumOperations(), 2);
    document.Redo();
    EXPECT_TRUE(document.IsModified()) << "there was nothing to redo";
    document.Undo();
    document.Redo();
    EXPECT_TRUE(document.IsModified());
    ASSERT_TRUE(document.Save());
    document.Undo();
    document.Redo();
    EXPECT_FALSE(document.IsModified());
}

TEST_F(Document, AGestureIsOneStepAndTheStarFollowsIt)
{
    TFakeHost host;
    TDocument document(App.Get(), &host);
    ASSERT_TRUE(document.New());
    Add(document, App.Type("Emitter"));
    ASSERT_TRUE(document.SaveAs(Path("gesture.effect").c_str()));
    {
        const TGesture gesture(*document.GetOperationStack());
        Add(document, App.Type("Gravity"));
        Add(document, App.Type("Age"));
    }
    EXPECT_TRUE(document.IsModified());
    document.Undo();
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 1);
    EXPECT_FALSE(document.IsModified());
    document.Redo();
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 3);
    EXPECT_TRUE(document.IsModified());
    ASSERT_TRUE(document.Save());
    document.Undo();
    EXPECT_TRUE(document.IsModified());
    document.Redo();
    EXPECT_FALSE(document.IsModified());
    // What is loaded has steps of single operations.
    TDocument loaded(App.Get());
    ASSERT_TRUE(loaded.Load(Path("gesture.effect").c_str()));
    EXPECT_FALSE(loaded.IsModified());
    loaded.Undo();
    EXPECT_EQ(loaded.GetGraph()->GetNumNodes(), 2);
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
