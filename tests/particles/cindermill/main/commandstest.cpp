#include "commandsfixture.h"

#include "library/system/clock.h"
#include "library/system/file.h"
#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/bypassflagop.h"
#include "particles/cindermill/main/settingsstore.h"

TEST_F(Commands, NewAppendsADocumentAndAddsNoRecentEntry)
{
    New();
    New();
    EXPECT_EQ(NumDocuments(), 2);
    EXPECT_TRUE(Recent().empty());
    EXPECT_EQ(Host.Taken(), TNames{});
}

TEST_F(Commands, ADocumentWithoutWindowsIsDeleted)
{
    TDocument& first = New();
    Host.FailsDocuments = true;
    EXPECT_FALSE(App.Get().NewDocument());
    EXPECT_EQ(NumDocuments(), 1);
    EXPECT_EQ(App.Get().GetActiveDocument(), &first);
}

TEST_F(Commands, OpenAppendsTheDocumentAndTheRecentEntry)
{
    const std::string path = EffectFile("a.effect");
    ASSERT_TRUE(App.Get().OpenDocument(path.c_str()));
    EXPECT_EQ(NumDocuments(), 1);
    EXPECT_EQ(Text(Newest().GetPath()), path);
    EXPECT_EQ(Recent(), TNames{Kept(path)});
    EXPECT_EQ(Host.Taken(), TNames{"recent 1"});
}

TEST_F(Commands, AFileThatDoesNotLoadLeavesNoDocumentAndNoRecentEntry)
{
    TDocument& first = New();
    WriteBytes(Path("bad.effect"), "CHNX");
    EXPECT_FALSE(App.Get().OpenDocument(Path("bad.effect").c_str()));
    EXPECT_EQ(NumDocuments(), 1);
    EXPECT_TRUE(Recent().empty());
    EXPECT_EQ(App.Get().GetActiveDocument(), &first);
    EXPECT_EQ(Shown.Messages, TNames{Path("bad.effect") + " cannot be opened: Chunkfile missing magic word"});
}

TEST_F(Commands, TheOpenDialogAsksAndOpens)
{
    Host.Choice = "";
    App.Get().OpenDocumentDialog();
    EXPECT_EQ(NumDocuments(), 0);
    Host.Choice = EffectFile("a.effect");
    App.Get().OpenDocumentDialog();
    EXPECT_EQ(NumDocuments(), 1);
    Host.Taken();
    App.Get().OpenDocumentDialog();
    EXPECT_EQ(Host.Taken()[0], OpenEffect);
}

TEST_F(Commands, UntilSomethingWasChosenTheOpenDialogBeginsInTheSamples)
{
    // The test program lies below the folder of the sources.
    const std::string samples = std::string(OpenEffect) + " in ";
    App.Get().OpenDocumentDialog();
    App.Get().OpenDocumentDialog();
    const TNames asked = Host.Taken();
    ASSERT_EQ(asked.size(), 2u);
    for (const std::string& text : asked) {
        EXPECT_EQ(text.substr(0, samples.size()), samples);
        EXPECT_EQ(text.substr(text.size() - 8), "\\samples");
    }
    New();
    Host.Choice = Path("a.effect");
    App.Get().SaveActiveAs();
    Host.Taken();
    Host.Choice = "";
    App.Get().OpenDocumentDialog();
    EXPECT_EQ(Host.Taken(), TNames{OpenEffect});
}

TEST_F(Commands, APathDifferingOnlyInCaseReplacesTheRecentEntryAndIsTheNewest)
{
    App.Get().AddRecentFile("c:/fx/One.effect");
    App.Get().AddRecentFile("c:\\fx\\two.effect");
    App.Get().AddRecentFile("C:\\FX\\one.effect");
    EXPECT_EQ(Recent(), (TNames{"c:\\fx\\two.effect", "C:\\FX\\one.effect"}));
    EXPECT_EQ(Host.Taken(), (TNames{"recent 1", "recent 2", "recent 2"}));
}

TEST_F(Commands, AfterMaxRecentFilesIsLoweredTheListStaysLongUntilTheNextFile)
{
    for (const char* path : {"a", "b", "c", "d"})
        App.Get().AddRecentFile(path);
    App.Get().GetSettings().SetMaxRecentFiles(2);
    EXPECT_EQ(Recent(), (TNames{"a", "b", "c", "d"}));
    App.Get().AddRecentFile("e");
    EXPECT_EQ(Recent(), (TNames{"d", "e"}));
}

TEST_F(Commands, OldRecentValuesAreReadBackUpToTheFirstGap)
{
    TTempFolder folder;
    const std::string path = folder.Path("settings.ini");
    const auto filesOf = [&path] {
        const std::unique_ptr<TSettingsStore> store(OpenSettingsFile(path.c_str()));
        TSettings settings(store.get());
        settings.Load();
        TNames files;
        for (const TString& file : settings.GetRecentFiles())
            files.push_back(file.Print());
        return files;
    };
    {
        const std::unique_ptr<TSettingsStore> store(OpenSettingsFile(path.c_str()));
        TSettings settings(store.get());
        for (const char* file : {"a", "b", "c", "d"})
            settings.AddRecentFile(file);
        settings.SetMaxRecentFiles(1);
        settings.AddRecentFile("e");
        ASSERT_EQ(settings.GetRecentFiles().size(), 1);
    }
    EXPECT_EQ(filesOf(), (TNames{"e", "b", "c", "d"}));
    std::string bytes = ReadBytes(path);
    const size_t line = bytes.find("RecentFile_2");
    ASSERT_NE(line, std::string::npos);
    bytes.erase(line, bytes.find('\n', line) + 1 - line);
    WriteBytes(path, bytes);
    EXPECT_EQ(filesOf(), (TNames{"e", "b"}));
}

TEST_F(Commands, TheRecentFilesMenuOpensItsEntry)
{
    App.Get().AddRecentFile(Path("other.effect").c_str());
    App.Get().AddRecentFile(EffectFile("a.effect").c_str());
    App.Get().AddRecentFile("third");
    EXPECT_TRUE(App.Get().OnMenu(40010 + 1));
    ASSERT_EQ(NumDocuments(), 1);
    EXPECT_EQ(Recent(), (TNames{Kept(Path("other.effect")), "third", Kept(Path("a.effect"))}));
    EXPECT_FALSE(App.Get().OnMenu(40010 + 3));
    EXPECT_FALSE(App.Get().OnMenu(40009));
}

TEST_F(Commands, ALongListOfRecentFilesShadowsNoCommand)
{
    // A list from the store may be of any length; ids of its entries would meet those of commands.
    {
        const std::unique_ptr<TSettingsStore> store(OpenSettingsFile(Path("settings.ini").c_str()));
        store->WriteInt("RegVersion", 0);
        for (int i = 0; i < 300; ++i)
            store->WriteString(("RecentFile_" + std::to_string(i)).c_str(), "/no/such.effect");
        store->Flush();
    }
    App.Get().GetSettings().Load();
    ASSERT_EQ(Recent().size(), 300u);
    New();
    Host.Taken();
    App.Get().OnMenu(40211);
    EXPECT_EQ(Host.Taken()[0].substr(0, 10), "properties");
    App.Get().OnMenu(40213);
    App.Get().OnMenu(40214);
    EXPECT_EQ(Host.Taken(), (TNames{"focus selected", "focus all"}));
    EXPECT_TRUE(Shown.Messages.empty());
    EXPECT_TRUE(App.Get().OnMenu(40010 + 199));
    EXPECT_EQ(Shown.Messages.size(), 1u);
    // The next id is that of the options.
    Host.Taken();
    EXPECT_TRUE(App.Get().OnMenu(40010 + 200));
    EXPECT_EQ(Host.Taken(), TNames{"options"});
    EXPECT_EQ(Shown.Messages.size(), 1u);
}

TEST_F(Commands, CommandsWithoutADocumentDoNothing)
{
    for (const int id :
         {57603, 57604, 40006, 40211, 57643, 57644, 57635, 57634, 57637, 40002, 40213, 40214, 40004, 40005})
        EXPECT_TRUE(App.Get().OnMenu(id)) << id;
    EXPECT_EQ(Host.Taken(), TNames{});
    EXPECT_TRUE(Shown.Messages.empty());
    EXPECT_FALSE(App.Get().OnMenu(1));
}

TEST_F(Commands, TheMenusReachTheApplicationAndItsWindows)
{
    EXPECT_TRUE(App.Get().OnMenu(57600));
    ASSERT_EQ(NumDocuments(), 1);
    TDocument& document = Newest();
    Activate(document);
    HostOf(document).Taken();
    App.Get().OnMenu(57601);
    App.Get().OnMenu(57604);
    App.Get().OnMenu(57650);
    App.Get().OnMenu(40213);
    EXPECT_EQ(Host.Focused, AView());
    App.Get().OnMenu(40214);
    App.Get().OnMenu(40001);
    const TNames events = Host.Taken();
    ASSERT_EQ(events.size(), 6u);
    EXPECT_EQ(events[0].substr(0, 4), "open");
    EXPECT_EQ(TNames(events.begin() + 1, events.end()),
              (TNames{SaveEffect, "cascade", "focus selected", "focus all", "quit"}));
    App.Get().OnMenu(40004);
    App.Get().OnMenu(40005);
    EXPECT_EQ(HostOf(document).Taken(), (TNames{"new view", "show particle window"}));
    App.Get().OnMenu(40211);
    EXPECT_EQ(Host.Taken()[0].substr(0, 23), "properties Effect File:");
}

TEST_F(Commands, TheEditMenuEditsTheActiveDocument)
{
    TDocument& first = New();
    TDocument& second = New();
    TToolNode* node = Add(second);
    Activate(second);
    App.Get().OnMenu(57643);
    EXPECT_EQ(second.GetGraph()->GetNumNodes(), 0);
    EXPECT_FALSE(second.IsModified());
    App.Get().OnMenu(57643);
    App.Get().OnMenu(57644);
    EXPECT_EQ(second.GetGraph()->GetNumNodes(), 1);
    EXPECT_TRUE(second.IsModified());
    App.Get().OnMenu(57644);
    second.SelectNode(node, true);
    App.Get().OnMenu(57634);
    App.Get().OnMenu(57637);
    EXPECT_EQ(second.GetGraph()->GetNumNodes(), 2);
    App.Get().OnMenu(57635);
    EXPECT_EQ(second.GetGraph()->GetNumNodes(), 1);
    EXPECT_EQ(first.GetGraph()->GetNumNodes(), 0);
}

TEST_F(Commands, DeleteGoesToTheActiveView)
{
    TDocument& document = New();
    Activate(document);
    Host.Taken();
    App.Get().OnMenu(40002);
    EXPECT_EQ(Host.Taken(), TNames{"delete"});
    EXPECT_EQ(Host.Focused, AView());
}

TEST_F(Commands, APasteIsToBeSeen)
{
    TDocument& document = New();
    Activate(document);
    document.SelectNode(Add(document, "Emitter"), true);
    App.Get().OnMenu(57634);
    App.Get().OnMenu(57637);
    const TFakeHost& host = *static_cast<TFakeHost*>(document.GetHost());
    ASSERT_EQ(host.Sought.size(), 1);
    EXPECT_EQ(host.Sought[0], document.GetSelection()[0]);
}

TEST_F(Commands, NodesTravelBetweenDocumentsByTheClipboard)
{
    TDocument& first = New();
    TToolNode* emitter = Add(first, "Emitter");
    TToolNode* points = Add(first, "Point Emitter");
    first.ApplyOperation(new TAddGraphEdgeOp(first, emitter, 0, points, 0));
    vector<TToolNode*> nodes;
    nodes.push_back(emitter);
    nodes.push_back(points);
    App.Get().CopyToClipboard(nodes);
    TDocument& second = New();
    second.Paste();
    second.Paste();
    ASSERT_EQ(second.GetGraph()->GetNumNodes(), 4);
    ASSERT_EQ(second.GetGraph()->GetNumEdges(), 2);
    EXPECT_EQ(static_cast<TToolNode*>(second.GetGraph()->GetNode(0))->GetX(), emitter->GetX() + 10);
    EXPECT_EQ(static_cast<TToolNode*>(second.GetGraph()->GetNode(2))->GetX(), emitter->GetX() + 20);
    EXPECT_EQ(static_cast<TToolNode*>(second.GetGraph()->GetNode(2))->GetY(), emitter->GetY() + 20);
}

TEST_F(Commands, ExportNeedsASchedule)
{
    // Particles without anything that makes them.
    Add(New(), "Quad Render Stage");
    App.Get().ExportActive();
    EXPECT_EQ(Shown.Errors, TNames{"Schedule errors"});
    EXPECT_EQ(Host.Taken(), TNames{});
}

TEST_F(Commands, ExportAsksLikeSaveAndAddsNoRecentEntry)
{
    App.Get().GetResourceLocator().AddSearchDirectory(SourcePath("samples").c_str());
    std::string sample;
    for (const auto& entry : std::filesystem::directory_iterator(SourcePath("samples")))
        if (entry.path().extension() == ".effect")
            sample = entry.path().string();
    App.Get().GetSamples().SetFolder(nullptr);
    ASSERT_TRUE(App.Get().OpenDocument(sample.c_str()));
    Activate(Newest());
    Shown = TShown();
    Host.Taken();
    App.Get().ExportActive();
    EXPECT_EQ(Host.Taken(), TNames{SaveEfx + (" in " + SourcePath("samples"))});
    Host.Choice = Path("out");
    App.Get().ExportActive();
    ASSERT_TRUE(FileExists(Path("out.efx").c_str()));
    EXPECT_EQ(Recent().size(), 1u);
    const std::string whole = ReadBytes(Path("out.efx"));
    WriteBytes(Path("out.efx"), "old");
    App.Get().ExportActive();
    EXPECT_EQ(Shown.Questions, TNames{Path("out.efx") + " exists. Overwrite?"});
    EXPECT_EQ(ReadBytes(Path("out.efx")), "old");
    MakeReadOnly(Path("out.efx"));
    Shown.Answers = {true, false};
    App.Get().ExportActive();
    EXPECT_EQ(Shown.Questions.back(), Path("out.efx") + " is locked. Unlock and overwrite?");
    EXPECT_EQ(ReadBytes(Path("out.efx")), "old");
    Shown.Answers = {true, true};
    App.Get().ExportActive();
    EXPECT_EQ(ReadBytes(Path("out.efx")), whole);
    Host.Choice = LockedForever("locked.efx");
    Shown.Answers = {true, true};
    App.Get().ExportActive();
    EXPECT_EQ(Shown.Messages, TNames{"Unlock of " + Host.Choice + " failed. Cannot export."});
}

TEST_F(Commands, DroppedEffectsAreOpenedInOrderAndOthersSkipped)
{
    vector<TString> files;
    files.push_back(EffectFile("b.EFFECT").c_str());
    files.push_back("/somewhere/picture.dds");
    files.push_back("/somewhere/effect");
    files.push_back(EffectFile("a.effect").c_str());
    App.Get().OnDropFiles(5, 6, files);
    EXPECT_EQ(Recent(), (TNames{Kept(Path("b.EFFECT")), Kept(Path("a.effect"))}));
    EXPECT_TRUE(Shown.Messages.empty());
}

TEST_F(Commands, WhatCannotBeOpenedOfManyFilesIsToldOnce)
{
    vector<TString> files;
    std::string told = "1000 files cannot be opened, among them:";
    for (int i = 0; i < 1000; ++i) {
        const std::string gone = Path("gone" + std::to_string(i) + ".effect");
        files.push_back(gone.c_str());
        if (i < 10)
            told += "\n" + gone + " cannot be opened: The file does not exist";
    }
    files.push_back(EffectFile("a.effect").c_str());
    App.Get().OnDropFiles(5, 6, files);
    EXPECT_EQ(Shown.Messages, TNames{told});
    EXPECT_EQ(NumDocuments(), 1);
    App.Get().OpenDocuments(files);
    EXPECT_EQ(Shown.Messages, (TNames{told, told}));
    EXPECT_EQ(NumDocuments(), 2);
}

TEST_F(Commands, AnAnimationDroppedOutsideAllDocumentsShowsTheMessageAndDropsTheRemainingFiles)
{
    New();
    vector<TString> files;
    files.push_back("walk.VORI");
    files.push_back(EffectFile("a.effect").c_str());
    App.Get().OnDropFiles(5, 6, files);
    Host.UnderPoint = AWindow();
    App.Get().OnDropFiles(5, 6, files);
    EXPECT_EQ(Shown.Messages, (TNames{"Drag vori file onto document window to load",
                                      "Drag vori file onto document window to load"}));
    EXPECT_TRUE(Recent().empty());
}

TEST_F(Commands, AnAnimationGoesToTheDocumentUnderThePointAndTheRemainingFilesFollow)
{
    TDocument& first = New();
    TDocument& second = New();
    HostOf(second).Window = AWindow();
    HostOf(first).Taken();
    HostOf(second).Taken();
    Host.UnderPoint = AWindow();
    vector<TString> files;
    files.push_back("/a/walk.vori");
    files.push_back(EffectFile("a.effect").c_str());
    App.Get().OnDropFiles(5, 6, files);
    EXPECT_EQ(HostOf(second).Taken(), TNames{"drop 5 6 /a/walk.vori"});
    EXPECT_EQ(HostOf(first).Taken(), TNames{});
    EXPECT_EQ(NumDocuments(), 3);
    EXPECT_TRUE(Shown.Messages.empty());
}

TEST_F(Commands, AnIdlePassReachesEveryDocument)
{
    TDocument& first = New();
    TDocument& second = New();
    HostOf(first).Taken();
    HostOf(second).Taken();
    App.Get().OnIdle();
    EXPECT_EQ(HostOf(first).Taken(), TNames{"idle"});
    EXPECT_EQ(HostOf(second).Taken(), TNames{"idle"});
}

namespace {

int Changes;

} // namespace

TEST_F(Commands, TheIdlePassPollsForChangesUnlessThatIsOff)
{
    WriteBytes(Path("watched"), "a");
    Changes = 0;
    const auto count = [](const char*, void*) { ++Changes; };
    App.Get().GetChangeNotify().Add(Path("watched").c_str(), count, nullptr);
    std::filesystem::last_write_time(Path("watched"),
                                     std::filesystem::file_time_type::clock::now() + std::chrono::seconds(5));
    static uint32_t time = 0;
    time = 5000;
    SetTickCountSource([] { return time += 200; });
    App.Get().GetSettings().SetAutoCheckUpdate(0);
    App.Get().OnIdle();
    EXPECT_EQ(Changes, 0);
    App.Get().GetSettings().SetAutoCheckUpdate(1);
    App.Get().OnIdle();
    EXPECT_EQ(Changes, 1);
    SetTickCountSource(nullptr);
    App.Get().GetChangeNotify().Remove(Path("watched").c_str(), count, nullptr);
}

TEST_F(Commands, AMissingNodeTypesDirectoryIsAskedForAndCancelEndsTheStart)
{
    App.Get().GetSettings().SetNodeTypesDirectory("/no/such/folder");
    EXPECT_FALSE(App.Get().InitNodeTypes());
    EXPECT_EQ(Shown.Messages, TNames{"Could not scan node types directory - please locate"});
    EXPECT_EQ(Host.Taken(), TNames{"folder Select nodes directory"});
    Host.Choice = SourcePath("NodeTypes");
    EXPECT_TRUE(App.Get().InitNodeTypes());
    EXPECT_EQ(Text(App.Get().GetSettings().GetNodeTypesDirectory()), "/no/such/folder");
}

TEST_F(Commands, ErrorsOfTheNodeTypesAreShownAndTheStartGoesOn)
{
    std::filesystem::create_directory(Path("types"));
    WriteBytes(Path("types/broken.xml"), "<nodetype><name>");
    App.Get().GetSettings().SetNodeTypesDirectory(Path("types").c_str());
    EXPECT_TRUE(App.Get().InitNodeTypes());
    EXPECT_EQ(Shown.Errors, TNames{"Loading node types"});
}

TEST_F(Commands, NodeTypesAreFoundFromAnywhere)
{
    // Below the folder of the sources, wherever the program was started.
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path("/");
    TString path;
    EXPECT_TRUE(App.Get().FindNodeTypesDirectory(path));
    std::filesystem::current_path(before);
    App.Get().GetSettings().SetNodeTypesDirectory("NoSuchNodeTypes");
    EXPECT_FALSE(App.Get().FindNodeTypesDirectory(path));
}

TEST_F(Commands, TheOptionsNeedNoDocument)
{
    EXPECT_TRUE(App.Get().OnMenu(40210));
    EXPECT_EQ(Host.Taken(), TNames{"options"});
}

TEST_F(Commands, WhatIsBeingTypedIsEnteredBeforeItCounts)
{
    TDocument& document = New();
    Add(document);
    const int ids[] = {MI_SAVE, MI_SAVEAS, MI_EXPORT, MI_UNDO, MI_REDO, MI_CUT, MI_COPY, MI_PASTE, MI_EXIT};
    for (const int id : ids) {
        const int before = Host.NumInputEnds;
        App.Get().OnMenu(id);
        EXPECT_EQ(Host.NumInputEnds, before + 1) << id;
    }
    const int before = Host.NumInputEnds;
    App.Get().OnMenu(MI_NEWVIEW);
    EXPECT_EQ(Host.NumInputEnds, before);
    App.Get().CloseDocument(&document);
    EXPECT_EQ(Host.NumInputEnds, before + 1);
}

TEST_F(Commands, WhatIsEnteredByAnUndoIsWhatItTakesBack)
{
    TDocument& document = New();
    TToolNode* node = Add(document);
    bool entered = false;
    Host.OnEndInput = [&] {
        if (!entered)
            document.ApplyOperation(new TBypassFlagOp(node, true));
        entered = true;
    };
    const int steps = document.GetOperationStack()->GetNumOperations();
    App.Get().OnMenu(MI_UNDO);
    Host.OnEndInput = nullptr;
    EXPECT_EQ(document.GetOperationStack()->GetNumOperations(), steps + 1);
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 1);
    EXPECT_FALSE(node->GetNodeType()->IsBypassed());
}
