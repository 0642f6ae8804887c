#include "particles/cindermill/graph/operations/operationfixture.h"

namespace {

// Writes down what the stack asks of it. Merges with an operation of its own class when told so.
class TTestOp : public TRegistered<TTestOp, TOperation>
{
public:
    static constexpr const char* RegisteredName = "TStackTestOp";
    TTestOp() = default;
    TTestOp(std::string& calls, const char* name, bool merges = false)
        : Calls(&calls), Name(name), Merges(merges)
    {
    }
    ~TTestOp() override { Tell("delete"); }

    bool Read(int, int, TChunkFile*) override { return true; }
    bool Write(TChunkFile*) override { return true; }
    int GetSize() override { return 0; }
    void Do(TEditContext&) override { Tell("do"); }
    void Undo(TEditContext&) override { Tell("undo"); }
    void Discard(TEditContext& doc) override
    {
        Tell(static_cast<TFakeDocument&>(doc).Holds(this) ? "discard held" : "discard");
    }
    bool Merge(TOperation& previous) override
    {
        Tell(("merge into " + static_cast<TTestOp&>(previous).Name + " of").c_str());
        return Merges;
    }

private:
    void Tell(const char* what) const
    {
        if (Calls != nullptr)
            *Calls += (Calls->empty() ? "" : ", ") + std::string(what) + " " + Name;
    }

    std::string* Calls = nullptr;
    std::string Name;
    bool Merges = false;
};

std::string Taken(std::string& calls)
{
    std::string result;
    result.swap(calls);
    return result;
}

} // namespace

TEST(TOperation, IsAbstractAndBelowTChunk)
{
    TFakeDocument doc;
    const int id = FindClassByName("TOperation");
    ASSERT_NE(id, -1);
    EXPECT_EQ(CreateClass(id), nullptr);
    EXPECT_EQ(GetClassParent(id), TChunk::ClassId());
}

TEST(TOperation, EveryClassIsRegisteredBelowItUnderItsName)
{
    TFakeDocument doc;
    const char* names[] = {
        "TAddGraphNodeOp",   "TAddGraphNodesOp",      "TMoveGraphNodeOp",    "TDeleteGraphNodeOp",
        "TAddGraphEdgeOp",   "TChangeGraphEdgeOp",    "TDeleteGraphEdgeOp",  "TBypassFlagOp",
        "TNodePropertiesOp", "TBoolParamOp",          "TScalarParamOp",      "TScaleParamOp",
        "TVector3ParamOp",   "TQuaternionParamOp",    "TColourParamOp",      "TTransformParamOp",
        "TTexCoordParamOp",  "TPolytypeUserTypeOp",   "TEnumParamOp",        "TIntParamOp",
        "TTextureParamOp",   "TRampMovePointParamOp", "TRampChangePointsOp", "TRampChangeAllPointsOp",
        "TRampLockOp",       "TRampLinearOp",         "TGroupParamOp",       "TAnimNameParamOp",
        "TAnimFlagsParamOp"};
    for (const char* name : names) {
        const int id = FindClassByName(name);
        ASSERT_NE(id, -1) << name;
        EXPECT_EQ(GetClassParent(id), TOperation::ClassId()) << name;
        const std::unique_ptr<TOperation> op(static_cast<TOperation*>(static_cast<TChunk*>(CreateClass(id))));
        ASSERT_NE(op, nullptr) << name;
        EXPECT_EQ(op->GetClassId(), GetClassNameID(id)) << name;
        EXPECT_EQ(op->GetVersion(), std::string(name) == "TNodePropertiesOp" ? 1 : 0) << name;
    }
    EXPECT_EQ(GetClassParent(FindClassByName("TOperationStack")), TChunk::ClassId());
}

// A class that is in no list is not in the program either, so what is asked here is the document's table.
TEST(TOperation, EveryRegisteredClassStandsInTheDescriptionOfTheFile)
{
    TFakeDocument doc;
    const std::string description = ReadBytes(SourcePath("docs/effect-file.md"));
    for (int id = 0; id < GetNumClasses(); ++id) {
        const std::string name = GetClassName(id);
        if (GetClassParent(id) == TOperation::ClassId() && name.find("Test") == std::string::npos) {
            EXPECT_NE(description.find("`" + name + "`"), std::string::npos) << name;
        }
    }
}

TEST(TOperationStack, ApplyAddsTheOperationAndDoesIt)
{
    std::string calls;
    TFakeDocument doc;
    EXPECT_FALSE(doc.Stack->CanUndo());
    EXPECT_FALSE(doc.Stack->CanRedo());
    TTestOp* op = new TTestOp(calls, "a");
    doc.Apply(op);
    EXPECT_EQ(calls, "do a");
    EXPECT_TRUE(doc.Holds(op));
    EXPECT_TRUE(doc.Stack->CanUndo());
    EXPECT_FALSE(doc.Stack->CanRedo());
    EXPECT_EQ(doc.Stack->GetPosition(), 1);
}

TEST(TOperationStack, UndoAndRedoStep)
{
    std::string calls;
    TFakeDocument doc;
    doc.Apply(new TTestOp(calls, "a"));
    doc.Apply(new TTestOp(calls, "b"));
    Taken(calls);
    doc.Undo();
    doc.Undo();
    doc.Undo();
    EXPECT_EQ(Taken(calls), "undo b, undo a");
    EXPECT_FALSE(doc.Stack->CanUndo());
    doc.Redo();
    doc.Redo();
    doc.Redo();
    EXPECT_EQ(Taken(calls), "do a, do b");
    EXPECT_FALSE(doc.Stack->CanRedo());
}

TEST(TOperationStack, LikeEditsMergeUnderTwoSecondsAndNotAtTwoSeconds)
{
    TFakeClock clock(10000);
    std::string calls;
    TFakeDocument doc;
    doc.Apply(new TTestOp(calls, "a"));
    Taken(calls);
    clock.Set(11999);
    doc.Apply(new TTestOp(calls, "b", true));
    EXPECT_EQ(Taken(calls), "merge into a of b, delete b");
    EXPECT_EQ(doc.Stack->GetNumOperations(), 1);
    // The merge has started the time anew.
    clock.Set(13998);
    doc.Apply(new TTestOp(calls, "c", true));
    EXPECT_EQ(Taken(calls), "merge into a of c, delete c");
    clock.Set(15998);
    doc.Apply(new TTestOp(calls, "d", true));
    EXPECT_EQ(Taken(calls), "do d");
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
}

TEST(TOperationStack, AMergeThatDeclinesAppends)
{
    TFakeClock clock(10000);
    std::string calls;
    TFakeDocument doc;
    doc.Apply(new TTestOp(calls, "a"));
    doc.Apply(new TTestOp(calls, "b", false));
    EXPECT_EQ(Taken(calls), "do a, merge into a of b, do b");
}

TEST(TOperationStack, AMergedOperationNeverEntersTheChunkList)
{
    TFakeClock clock(10000);
    std::string calls;
    TFakeDocument doc;
    doc.Apply(new TTestOp(calls, "a"));
    const int chunks = doc.Chunks.GetNumChunks();
    doc.Apply(new TTestOp(calls, "b", true));
    EXPECT_EQ(doc.Chunks.GetNumChunks(), chunks);
}

TEST(TOperationStack, AfterAnUndoANewEditDropsTheTailOldestFirstAndNeverMerges)
{
    TFakeClock clock(10000);
    std::string calls;
    TFakeDocument doc;
    for (const char* name : {"a", "b", "c"})
        doc.Apply(new TTestOp(calls, name));
    doc.Undo();
    doc.Undo();
    Taken(calls);
    doc.Apply(new TTestOp(calls, "d", true));
    EXPECT_EQ(Taken(calls), "discard b, delete b, discard c, delete c, do d");
    EXPECT_EQ(doc.Stack->GetNumOperations(), 2);
    EXPECT_EQ(doc.Stack->GetPosition(), 2);
}

TEST(TOperationStack, AnEditRightAfterARedoMayMergeWithTheRedoneOperation)
{
    TFakeClock clock(10000);
    std::string calls;
    TFakeDocument doc;
    doc.Apply(new TTestOp(calls, "a"));
    doc.Apply(new TTestOp(calls, "b"));
    doc.Undo();
    // The undo has set the time to 0, and the redo leaves it there: at a clock under 2 seconds it shows.
    clock.Set(1999);
    doc.Redo();
    Taken(calls);
    doc.Apply(new TTestOp(calls, "c", true));
    EXPECT_EQ(Taken(calls), "merge into b of c, delete c");
    clock.Set(2100);
    doc.Redo();
    doc.Apply(new TTestOp(calls, "d", true));
    EXPECT_EQ(Taken(calls), "merge into b of d, delete d");
}

TEST(TOperationStack, ASuccessfulMergeLeavesThePositions)
{
    TFakeClock clock(10000);
    std::string calls;
    TFakeDocument doc;
    doc.Apply(new TTestOp(calls, "a"));
    EXPECT_FALSE(doc.Stack->IsAtSavedPosition());
    doc.Stack->MarkSaved();
    doc.Apply(new TTestOp(calls, "b", true));
    EXPECT_TRUE(doc.Stack->IsAtSavedPosition());
    EXPECT_EQ(doc.Stack->GetPosition(), 1);
}

TEST(TOperationStack, UndoOnAnEmptyStackOnlyForgetsTheTime)
{
    TFakeClock clock(10000);
    std::string calls;
    TFakeDocument doc;
    doc.Undo();
    doc.Redo();
    EXPECT_EQ(doc.Stack->GetPosition(), 0);
    doc.Apply(new TTestOp(calls, "a"));
    doc.Undo();
    doc.Redo();
    Taken(calls);
    doc.Apply(new TTestOp(calls, "b", true));
    EXPECT_EQ(Taken(calls), "do b");
}

TEST(TOperationStack, ClearDiscardsWhatIsUndoneAndOnlyDeletesWhatIsDone)
{
    std::string calls;
    TFakeDocument doc;
    for (const char* name : {"a", "b", "c", "d"})
        doc.Apply(new TTestOp(calls, name));
    doc.Stack->MarkSaved();
    doc.Undo();
    doc.Undo();
    Taken(calls);
    const int chunks = doc.Chunks.GetNumChunks();
    doc.Stack->Clear(doc);
    EXPECT_EQ(Taken(calls), "discard c, delete c, discard d, delete d, delete b, delete a");
    EXPECT_EQ(doc.Chunks.GetNumChunks(), chunks - 4);
    EXPECT_EQ(doc.Stack->GetNumOperations(), 0);
    EXPECT_EQ(doc.Stack->GetPosition(), 0);
    EXPECT_TRUE(doc.Stack->IsAtSavedPosition());
}

TEST(TOperationStack, BodyIsTheOperationsThenThePosition)
{
    std::string calls;
    TFakeDocument doc;
    EXPECT_EQ(SavedChunk(doc.Chunks, doc.Stack).Body, I32(0) + I32(0));
    TTestOp* a = new TTestOp(calls, "a");
    TTestOp* b = new TTestOp(calls, "b");
    doc.Apply(a);
    doc.Apply(b);
    doc.Undo();
    EXPECT_EQ(doc.Stack->GetSize(), 16);
    const TChunkFileBytes::TEntry entry = SavedChunk(doc.Chunks, doc.Stack);
    EXPECT_EQ(entry.Body, I32(2) + Ref(a) + Ref(b) + I32(1));
    EXPECT_EQ(entry.Version, 0u);
}

TEST(TOperationStack, ALoadedStackOffersRedoAtOnceAndStandsWhereItWasSaved)
{
    const TTempFolder folder;
    const std::string path = folder.Path("stack");
    {
        TFakeDocument doc;
        const TNodeType& type = GetPlainType();
        doc.AddNode("a", type);
        doc.AddNode("b", type);
        doc.Undo();
        ASSERT_TRUE(doc.Chunks.Save(path.c_str()));
    }
    TChunkFile loaded;
    ASSERT_TRUE(loaded.Load(path.c_str()));
    vector<TChunk*> stacks;
    loaded.GetChunksOfClass(TOperationStack::NameID(), stacks);
    ASSERT_EQ(stacks.size(), 1);
    TOperationStack* stack = static_cast<TOperationStack*>(stacks[0]);
    EXPECT_EQ(stack->GetNumOperations(), 2);
    EXPECT_TRUE(stack->CanUndo());
    EXPECT_TRUE(stack->CanRedo());
    EXPECT_TRUE(stack->IsAtSavedPosition());
    EXPECT_TRUE(stack->Check());
}

namespace {

// What Check says of the stack after its body is replaced.
bool CheckBody(const std::string& body)
{
    const TTempFolder folder;
    const std::string path = folder.Path("stack");
    TChunkFileBytes bytes;
    {
        TFakeDocument doc;
        doc.AddNode("a", GetPlainType());
        doc.AddNode("b", GetPlainType());
        doc.Chunks.Save(path.c_str());
        bytes = TChunkFileBytes::Parse(ReadBytes(path));
    }
    for (TChunkFileBytes::TEntry& entry : bytes.Entries)
        if (entry.NameID == TOperationStack::NameID())
            entry.Body = body;
    WriteBytes(path, bytes.Join());
    TChunkFile loaded;
    if (!loaded.Load(path.c_str()))
        throw std::runtime_error("not a chunk file");
    vector<TChunk*> stacks;
    loaded.GetChunksOfClass(TOperationStack::NameID(), stacks);
    return static_cast<TOperationStack*>(stacks[0])->Check();
}

// The positions of the two operations in that file.
std::pair<int, int> OperationPositions()
{
    TFakeDocument doc;
    doc.AddNode("a", GetPlainType());
    doc.AddNode("b", GetPlainType());
    return {doc.Stack->GetOperation(0)->ChunkIdx, doc.Stack->GetOperation(1)->ChunkIdx};
}

} // namespace

TEST(TOperationStack, CheckRefusesWhatCannotBeStepped)
{
    const auto [a, b] = OperationPositions();
    EXPECT_TRUE(CheckBody(I32(2) + I32(a) + I32(b) + I32(2)));
    EXPECT_FALSE(CheckBody(I32(2) + I32(a) + I32(b) + I32(3)));
    EXPECT_FALSE(CheckBody(I32(2) + I32(a) + I32(b) + I32(-1)));
    EXPECT_FALSE(CheckBody(I32(2) + I32(a) + I32(-1) + I32(1)));
    EXPECT_FALSE(CheckBody(I32(2) + I32(a) + I32(a) + I32(1)));
}
