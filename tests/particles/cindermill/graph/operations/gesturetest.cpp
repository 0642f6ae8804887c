#include "particles/cindermill/graph/operations/operationfixture.h"

#include "library/containers/assertion.h"
#include "particles/cindermill/graph/operations/gesture.h"

namespace {

// Writes down what is done and undone. Merges with any other where it is told to, and can say that it does
// not fit any more.
class TStepOp : public TRegistered<TStepOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TGestureTestOp";
    TStepOp() = default;
    TStepOp(std::string& calls, const char* name, bool merges = false)
        : Calls(&calls), Name(name), Merges(merges)
    {
    }

    bool Read(int, int, TChunkFile*) override { return true; }
    bool Write(TChunkFile*) override { return true; }
    int GetSize() override { return 0; }
    void Do(TEditContext&) override { *Calls += "+" + Name; }
    void Undo(TEditContext&) override { *Calls += "-" + Name; }
    void Discard(TEditContext&) override { *Calls += "x" + Name; }
    bool Merge(TOperation&) override { return Merges; }
    bool Fits(const TEffectGraph&, bool undo) const override { return undo ? FitsUndo : FitsRedo; }

    bool FitsUndo = true;
    bool FitsRedo = true;

private:
    std::string* Calls = nullptr;
    std::string Name;
    bool Merges = false;
};

class Gestures : public testing::Test
{
protected:
    TStepOp* Apply(const char* name, bool merges = false)
    {
        TStepOp* op = new TStepOp(Calls, name, merges);
        Doc.Apply(op);
        return op;
    }
    // "a", then "b" and "c" in one gesture, then "d".
    void ApplyFour()
    {
        Apply("a");
        {
            const TGesture gesture(*Doc.Stack);
            Apply("b");
            Apply("c");
        }
        Apply("d");
        Calls.clear();
    }
    std::string Undone()
    {
        Calls.clear();
        Doc.Undo();
        return Calls;
    }
    std::string Redone()
    {
        Calls.clear();
        Doc.Redo();
        return Calls;
    }
    int NumOps() { return Doc.Stack->GetNumOperations(); }

    TFakeClock Clock{10000};
    std::string Calls;
    TFakeDocument Doc;
};

TEST_F(Gestures, TheOperationsOfOneAreUndoneAndRedoneTogether)
{
    ApplyFour();
    EXPECT_EQ(NumOps(), 4);
    EXPECT_EQ(Undone(), "-d");
    EXPECT_EQ(Undone(), "-c-b");
    EXPECT_EQ(Doc.Stack->GetPosition(), 1);
    EXPECT_EQ(Undone(), "-a");
    EXPECT_EQ(Redone(), "+a");
    EXPECT_EQ(Redone(), "+b+c");
    EXPECT_EQ(Redone(), "+d");
    EXPECT_FALSE(Doc.Stack->CanRedo());
}

TEST_F(Gestures, TwoInARowAreTwoSteps)
{
    for (const char* names : {"ab", "cd"}) {
        const TGesture gesture(*Doc.Stack);
        Apply(std::string(names, 1).c_str());
        Apply(names + 1);
    }
    EXPECT_EQ(Undone(), "-d-c");
    EXPECT_EQ(Undone(), "-b-a");
    EXPECT_EQ(Redone(), "+a+b");
}

TEST_F(Gestures, OneWithinOneBelongsToIt)
{
    {
        const TGesture outer(*Doc.Stack);
        Apply("a");
        {
            const TGesture inner(*Doc.Stack);
            Apply("b");
        }
        const TGesture goesOn(*Doc.Stack, TGesture::CONTINUED);
        Apply("c");
    }
    Apply("d");
    EXPECT_EQ(Undone(), "-d");
    EXPECT_EQ(Undone(), "-c-b-a");
}

TEST_F(Gestures, OneWithoutOperationsChangesNothing)
{
    Apply("a");
    {
        const TGesture gesture(*Doc.Stack);
    }
    EXPECT_EQ(NumOps(), 1);
    EXPECT_EQ(Undone(), "-a");
}

TEST_F(Gestures, AnEndWithoutABeginIsAsserted)
{
    EXPECT_NE(AssertionOf([&] { Doc.Stack->EndGesture(); }).find("GestureDepth > 0"), std::string::npos);
}

TEST_F(Gestures, OneThatGoesOnJoinsWhatWasDoneLast)
{
    Apply("a");
    Apply("b");
    for (const char* name : {"c", "d"}) {
        const TGesture gesture(*Doc.Stack, TGesture::CONTINUED);
        Apply(name);
    }
    Apply("e");
    EXPECT_EQ(Undone(), "-e");
    EXPECT_EQ(Undone(), "-d-c-b");
    EXPECT_EQ(Undone(), "-a");
    // With nothing to go on from it is one of its own.
    {
        const TGesture gesture(*Doc.Stack, TGesture::CONTINUED);
        Apply("f");
        Apply("g");
    }
    EXPECT_EQ(Undone(), "-g-f");
}

TEST_F(Gestures, WithinOneLikeEditsMergeAsEver)
{
    {
        const TGesture gesture(*Doc.Stack);
        Apply("a");
        Clock.Set(11999);
        Apply("b", true);
        EXPECT_EQ(NumOps(), 1);
        Clock.Set(13999);
        Apply("c", true);
    }
    EXPECT_EQ(NumOps(), 2);
    EXPECT_EQ(Undone(), "-c-a");
}

// What is taken back with the gesture must be all of it and nothing else.
TEST_F(Gestures, NothingMergesAcrossTheBordersOfOne)
{
    Apply("a");
    {
        const TGesture gesture(*Doc.Stack);
        Apply("b", true);
        Apply("c");
    }
    Apply("d", true);
    EXPECT_EQ(NumOps(), 4);
    EXPECT_EQ(Undone(), "-d");
    EXPECT_EQ(Undone(), "-c-b");
}

TEST_F(Gestures, AnEditMayMergeWithOneOfASingleOperation)
{
    {
        const TGesture gesture(*Doc.Stack);
        Apply("a");
    }
    Apply("b", true);
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(Gestures, AfterAnUndoTheTailOfOneGoesWhole)
{
    ApplyFour();
    Doc.Undo();
    Doc.Undo();
    Calls.clear();
    Apply("e");
    EXPECT_EQ(Calls, "xbxcxd+e");
    EXPECT_EQ(NumOps(), 2);
    EXPECT_EQ(Undone(), "-e");
}

TEST_F(Gestures, AnUndoWithinOneTakesBackWhatItHasDoneSoFar)
{
    Apply("a");
    {
        const TGesture gesture(*Doc.Stack);
        Apply("b");
        Apply("c");
        EXPECT_EQ(Undone(), "-c-b");
        EXPECT_EQ(Redone(), "+b+c");
        Apply("d");
        EXPECT_EQ(Undone(), "-d-c-b");
        Apply("e");
        Apply("f");
    }
    EXPECT_EQ(Undone(), "-f-e");
    EXPECT_EQ(Undone(), "-a");
}

TEST_F(Gestures, AnUndoWithinOneThatHasDoneNothingIsTheStepBefore)
{
    Apply("a");
    Apply("b");
    {
        const TGesture gesture(*Doc.Stack);
        EXPECT_EQ(Undone(), "-b");
    }
    Apply("c");
    EXPECT_EQ(Undone(), "-c");
    EXPECT_EQ(Undone(), "-a");
}

TEST_F(Gestures, ClearingWithinOneForgetsItAndItGoesOn)
{
    {
        const TGesture gesture(*Doc.Stack);
        Apply("a");
        Doc.Stack->Clear(Doc);
        EXPECT_EQ(NumOps(), 0);
        Apply("b");
        Apply("c");
    }
    EXPECT_EQ(Undone(), "-c-b");
    EXPECT_FALSE(Doc.Stack->CanUndo());
    ApplyFour();
    Doc.Stack->Clear(Doc);
    EXPECT_EQ(NumOps(), 0);
    EXPECT_EQ(Undone(), "");
}

TEST_F(Gestures, TheSavedPlaceIsBetweenSteps)
{
    ApplyFour();
    Doc.Undo();
    Doc.Stack->MarkSaved();
    Doc.Undo();
    EXPECT_FALSE(Doc.Stack->IsAtSavedPosition());
    Doc.Redo();
    EXPECT_TRUE(Doc.Stack->IsAtSavedPosition());
    Doc.Redo();
    EXPECT_FALSE(Doc.Stack->IsAtSavedPosition());
    // What was saved within a gesture is never reached again by steps.
    {
        const TGesture gesture(*Doc.Stack);
        Apply("e");
        Doc.Stack->MarkSaved();
        Apply("f");
    }
    EXPECT_FALSE(Doc.Stack->IsAtSavedPosition());
    Doc.Undo();
    EXPECT_FALSE(Doc.Stack->IsAtSavedPosition());
    Doc.Redo();
    EXPECT_FALSE(Doc.Stack->IsAtSavedPosition());
}

// Two nodes, in one gesture or not.
std::string SavedBytes(const std::string& path, bool inGesture)
{
    TFakeDocument doc;
    std::unique_ptr<TGesture> gesture;
    if (inGesture)
        gesture = std::make_unique<TGesture>(*doc.Stack);
    doc.AddNode("a", GetPlainType());
    doc.AddNode("b", GetPlainType());
    gesture.reset();
    if (!doc.Chunks.Save(path.c_str()))
        throw std::runtime_error("not saved");
    return ReadBytes(path);
}

// The stack of a file, which stays its file's.
TOperationStack* LoadStack(TChunkFile& chunks, const std::string& path)
{
    vector<TChunk*> stacks;
    if (chunks.Load(path.c_str()))
        chunks.GetChunksOfClass(TOperationStack::NameID(), stacks);
    if (stacks.size() != 1)
        throw std::runtime_error("no history");
    return static_cast<TOperationStack*>(stacks[0]);
}

TEST_F(Gestures, TheFileDoesNotKnowOfThemAndEachOfItsOperationsIsAStep)
{
    const TTempFolder folder;
    const std::string path = folder.Path("gesture");
    const std::string without = SavedBytes(path, false);
    EXPECT_EQ(SavedBytes(path, true), without);
    TChunkFile loaded;
    const TOperationStack* stack = LoadStack(loaded, path);
    ASSERT_EQ(stack->GetNumOperations(), 2);
    EXPECT_EQ(stack->GetOperation(0)->GetGesture(), 0u);
    EXPECT_EQ(stack->GetOperation(1)->GetGesture(), 0u);
}

// With a history that came from a file, whose steps are asked whether they fit.
class LoadedGestures : public Gestures
{
protected:
    LoadedGestures()
    {
        const TTempFolder folder;
        const std::string path = folder.Path("empty");
        TFakeDocument empty;
        if (!empty.Chunks.Save(path.c_str()))
            throw std::runtime_error("not saved");
        Doc.Stack = LoadStack(Loaded, path);
    }
    // "a", "b" and "c" in one gesture.
    void ApplyThree()
    {
        const TGesture gesture(*Doc.Stack);
        for (int i = 0; i < 3; ++i)
            Ops[i] = Apply(std::string(1, static_cast<char>('a' + i)).c_str());
        Calls.clear();
    }

    TChunkFile Loaded;
    TStepOp* Ops[3] = {};
};

TEST_F(LoadedGestures, WhatIsAppliedToALoadedHistoryHasItsGestures)
{
    ApplyThree();
    EXPECT_EQ(Undone(), "-c-b-a");
    EXPECT_EQ(Redone(), "+a+b+c");
}

TEST_F(LoadedGestures, WhereOneOperationDoesNotFitNothingOfItsStepIsUndone)
{
    ApplyThree();
    Ops[0]->FitsUndo = false;
    EXPECT_FALSE(Doc.Stack->Undo(Doc));
    EXPECT_EQ(Calls, "-c-b+b+c");
    EXPECT_EQ(Doc.Stack->GetPosition(), 3);
}

TEST_F(LoadedGestures, WhereOneOperationDoesNotFitNothingOfItsStepIsRedone)
{
    ApplyThree();
    Doc.Undo();
    Calls.clear();
    Ops[2]->FitsRedo = false;
    EXPECT_FALSE(Doc.Stack->Redo(Doc));
    EXPECT_EQ(Calls, "+a+b-b-a");
    EXPECT_EQ(Doc.Stack->GetPosition(), 0);
}

// A damaged history may refuse the way back too: it ends all the same.
TEST_F(LoadedGestures, AnOperationThatFitsNeitherWayEndsTheStep)
{
    ApplyThree();
    Ops[0]->FitsUndo = false;
    Ops[1]->FitsRedo = false;
    EXPECT_FALSE(Doc.Stack->Undo(Doc));
    EXPECT_EQ(Calls, "-c-b");
}

} // namespace
