#include "documentfixture.h"
#include "support/randomgraph.h"

#include <csignal>
#include <filesystem>
#include <sys/resource.h>

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
#ifdef CINDERMILL_SANITIZED
    constexpr int numFiles = 100;
#else
    constexpr int numFiles = 300;
#endif
    for (int i = 0; i < numFiles; ++i) {
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

TEST_F(Document, ATextureNameThatIsTooLongForAMessageIsNamed)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    const std::string name = std::string(3000, 'x') + ".dds";
    SetTexture(document, Quads, name.c_str());
    TErrorList errors;
    EXPECT_TRUE(document.CreateSchedule(errors));
    EXPECT_FALSE(document.InitEngine(errors, false));
    ASSERT_EQ(errors.size(), 2);
    EXPECT_EQ(Text(errors.begin()[0]->GetMessage()),
              "Could not resolve path for texture " + name.substr(0, 800) + "... (3004 characters)");
    EXPECT_NE(Text(errors.begin()[1]->GetMessage()).find(" characters): File name too long"),
              std::string::npos);
}

TEST_F(Document, ANameThatNoFileCanHoldIsNamedWhenItIsSaved)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    const std::string name(5000, 'x');
    SetTexture(document, Quads, name.c_str());
    EXPECT_FALSE(document.SaveAs(Path("a.effect").c_str()));
    EXPECT_EQ(Text(document.GetChunks().File.GetFault()),
              "The text \"" + name.substr(0, 100) + "... (5000 characters)\" is longer than 4095 characters");
    EXPECT_FALSE(FileExists(Path("a.effect").c_str()));
}

TEST_F(Document, ATextureThatMayNotBeReadIsToldWithTheReason)
{
    TDocument document(App.Get());
    document.New();
    BuildEffect(document);
    const std::string locked = Path("resources/locked.dds");
    std::filesystem::copy(Path("resources/spark.dds"), locked);
    std::filesystem::permissions(locked, std::filesystem::perms::none);
    std::filesystem::permissions(Path(""), std::filesystem::perms(0755));
    SetTexture(document, Quads, "locked.dds");
    const TNobody nobody;
    TErrorList errors;
    EXPECT_TRUE(document.CreateSchedule(errors));
    EXPECT_FALSE(document.InitEngine(errors, false));
    std::vector<std::string> texts;
    for (const TError* error : errors)
        texts.push_back(error->GetMessage().Print());
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0], "Could not load texture locked.dds\n");
    EXPECT_EQ(texts[1], locked + ": Permission denied");
}
