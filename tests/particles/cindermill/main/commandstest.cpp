#include "support/fakehost.h"
#include "support/testapp.h"

#include "library/system/clock.h"
#include "library/system/file.h"
#include "library/system/message.h"
#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/cindermill/main/settingsstore.h"

#include <deque>
#include <filesystem>
#include <sys/stat.h>

namespace {

const char* const OpenEffect = "open Select load path|*.effect|*.effect|*.*|*.*";
const char* const SaveEffect = "save Select save path|*.effect|*.effect|*.*|*.*";
const char* const SaveEfx = "save Select export path|*.efx|*.efx|*.*|*.*";

// What the forms showed and asked. Questions that no answer was laid out for are answered with Cancel.
struct TShown
{
    TNames Messages;
    TNames Questions;
    TNames Errors;
    std::deque<bool> Answers;
};

TShown Shown;

class Commands : public testing::Test
{
protected:
    Commands() : App(&Host)
    {
        Shown = TShown();
        SetMessageForms([](const char* text) { Shown.Messages.push_back(text); },
                        [](const char* text) {
                            Shown.Questions.push_back(text);
                            if (Shown.Answers.empty())
                                return false;
                            const bool answer = Shown.Answers.front();
                            Shown.Answers.pop_front();
                            return answer;
                        });
        SetDisplayErrors([](const char* title, const TErrorList&) { Shown.Errors.push_back(title); });
    }
    ~Commands() override
    {
        const vector<TDocument*> documents = App.Get().GetDocuments();
        for (TDocument* document : documents) {
            Host.Answer = MA_NO;
            App.Get().CloseDocument(document);
        }
        SetMessageForms(nullptr, nullptr);
        SetDisplayErrors(nullptr);
    }

    std::string Path(const std::string& leaf) const { return App.Path(leaf); }
    static std::string Kept(std::string path)
    {
        for (char& c : path)
            c = c == '/' ? '\\' : c;
        return path;
    }
    static TFakeHost& HostOf(TDocument& document) { return *static_cast<TFakeHost*>(document.GetHost()); }
    TDocument& Newest() const { return **(App.Get().GetDocuments().end() - 1); }
    int NumDocuments() const { return App.Get().GetDocuments().size(); }
    // As the views of a document do when they are clicked.
    void Activate(TDocument& document) { App.Get().SetActiveDocWindow(AView(), &document); }
    static TDocWindow* AView()
    {
        static int view;
        return reinterpret_cast<TDocWindow*>(&view);
    }
    static TWindow* AWindow()
    {
        static int window;
        return reinterpret_cast<TWindow*>(&window);
    }
    TDocument& New()
    {
        EXPECT_TRUE(App.Get().NewDocument());
        Activate(Newest());
        return Newest();
    }
    TToolNode* Add(TDocument& document, const char* type = "Age")
    {
        TAddGraphNodeOp* op = new TAddGraphNodeOp(document, App.Type(type), 10, 20);
        document.ApplyOperation(op);
        return op->GetNode();
    }
    std::string EffectFile(const std::string& leaf)
    {
        TDocument document(App.Get());
        EXPECT_TRUE(document.New());
        Add(document);
        EXPECT_TRUE(document.SaveAs(Path(leaf).c_str()));
        return Path(leaf);
    }
    TNames Recent() const
    {
        TNames result;
        for (const TString& path : App.Get().GetSettings().GetRecentFiles())
            result.push_back(path.Print());
        return result;
    }
    // Leads to a file of the kernel's: read-only for the superuser too, and so it stays.
    std::string LockedForever(const std::string& leaf)
    {
        std::filesystem::create_symlink("/proc/self/stat", Path(leaf));
        return Path(leaf);
    }
    void MakeReadOnly(const std::string& path) { ASSERT_EQ(chmod(path.c_str(), 0444), 0); }

    TQuiet Quiet;
    TFakeAppHost Host;
    mutable TTestApp App;
};

} // namespace

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

TEST_F(Commands, SaveOfADocumentWithoutPathIsSaveAs)
{
    TDocument& document = New();
    Add(document);
    Host.Choice = Path("new");
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_EQ(Host.Taken(), (TNames{SaveEffect, "recent 1"}));
    EXPECT_EQ(Text(document.GetPath()), Path("new.effect"));
    EXPECT_TRUE(FileExists(Path("new.effect").c_str()));
    EXPECT_EQ(Recent(), TNames{Kept(Path("new.effect"))});
    EXPECT_FALSE(document.IsModified());
    Add(document);
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_EQ(Host.Taken(), TNames{"recent 1"});
    EXPECT_FALSE(document.IsModified());
    EXPECT_TRUE(Shown.Messages.empty());
    EXPECT_TRUE(Shown.Questions.empty());
}

TEST_F(Commands, SaveAsCancelledSavesNothing)
{
    TDocument& document = New();
    Add(document);
    EXPECT_FALSE(App.Get().SaveAs(document));
    EXPECT_TRUE(document.IsModified());
    EXPECT_TRUE(Recent().empty());
}

TEST_F(Commands, SaveAsWithANameThatHoldsAPointAddsNoExtension)
{
    TDocument& document = New();
    Host.Choice = Path("my.fx");
    EXPECT_TRUE(App.Get().SaveAs(document));
    EXPECT_EQ(Text(document.GetPath()), Path("my.fx"));
    std::filesystem::create_directory(Path("v1.2"));
    Host.Choice = Path("v1.2/plain");
    EXPECT_TRUE(App.Get().SaveAs(document));
    EXPECT_EQ(Text(document.GetPath()), Path("v1.2/plain.effect"));
}

TEST_F(Commands, SaveAsAsksBeforeItOverwrites)
{
    TDocument& document = New();
    Add(document);
    WriteBytes(Path("a.effect"), "old");
    Host.Choice = Path("a");
    EXPECT_FALSE(App.Get().SaveAs(document));
    EXPECT_EQ(Shown.Questions, TNames{Path("a.effect") + " exists. Overwrite?"});
    EXPECT_EQ(ReadBytes(Path("a.effect")), "old");
    EXPECT_TRUE(Recent().empty());
    Shown.Answers = {true};
    EXPECT_TRUE(App.Get().SaveAs(document));
    EXPECT_NE(ReadBytes(Path("a.effect")), "old");
}

TEST_F(Commands, AReadOnlyFileIsUnlockedOnDemand)
{
    TDocument& document = New();
    Host.Choice = Path("a.effect");
    ASSERT_TRUE(App.Get().SaveAs(document));
    Add(document);
    const std::string before = ReadBytes(Path("a.effect"));
    MakeReadOnly(Path("a.effect"));
    EXPECT_FALSE(App.Get().Save(document));
    EXPECT_EQ(Shown.Questions, TNames{Path("a.effect") + " is locked. Unlock and overwrite?"});
    EXPECT_EQ(ReadBytes(Path("a.effect")), before);
    EXPECT_TRUE(document.IsModified());
    Shown.Answers = {true};
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_NE(ReadBytes(Path("a.effect")), before);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(Commands, SaveAsOntoAReadOnlyFileAsksBothQuestions)
{
    TDocument& document = New();
    WriteBytes(Path("a.effect"), "old");
    MakeReadOnly(Path("a.effect"));
    Host.Choice = Path("a.effect");
    Shown.Answers = {true, false};
    EXPECT_FALSE(App.Get().SaveAs(document));
    EXPECT_EQ(Shown.Questions, (TNames{Path("a.effect") + " exists. Overwrite?",
                                       Path("a.effect") + " is locked. Unlock and overwrite?"}));
    EXPECT_EQ(ReadBytes(Path("a.effect")), "old");
    Shown.Answers = {true, true};
    EXPECT_TRUE(App.Get().SaveAs(document));
    EXPECT_NE(ReadBytes(Path("a.effect")), "old");
}

TEST_F(Commands, AFileThatCannotBeUnlockedIsNotSaved)
{
    const std::string locked = LockedForever("a.effect");
    TDocument& document = New();
    Host.Choice = locked;
    Shown.Answers = {true, true};
    EXPECT_FALSE(App.Get().SaveAs(document));
    EXPECT_EQ(Shown.Messages, TNames{"Unlock of " + locked + " failed. Cannot save."});
    EXPECT_TRUE(Recent().empty());
}

TEST_F(Commands, AnEffectThatWouldNotOpenAgainIsNotSavedAndOfferedAnotherName)
{
    App.Get().OpenDocument(EffectFile("a.effect").c_str());
    TDocument& document = Newest();
    const std::string good = ReadBytes(Path("a.effect"));
    Add(document, "Wind")->GetNodeType()->Colour = 9;
    Host.Taken();
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_EQ(Shown.Questions,
              TNames{Path("a.effect") +
                     " was not written, as it could not be opened again: Node \"Wind\": "
                     "\"Wind\" has an unknown colour. What the file held before is untouched, and "
                     "the effect is not saved. Write it as it is under another name?"});
    EXPECT_EQ(ReadBytes(Path("a.effect")), good);
    EXPECT_TRUE(document.IsModified());
    // Nothing is written over a file.
    Shown.Answers.push_back(true);
    Host.Choice = EffectFile("other.effect");
    const std::string other = ReadBytes(Path("other.effect"));
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_EQ(Shown.Messages,
              TNames{Path("other.effect") + " exists and was left as it is. The effect is not saved."});
    EXPECT_EQ(ReadBytes(Path("other.effect")), other);
    Shown.Answers.push_back(true);
    Host.Choice = Path("kept");
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_TRUE(std::filesystem::exists(Path("kept.effect")));
    EXPECT_EQ(Shown.Messages.size(), 1u);
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(Text(document.GetPath()), Path("a.effect"));
    EXPECT_EQ(ReadBytes(Path("a.effect")), good);
    // What was written is all there, and says itself why it does not open.
    EXPECT_FALSE(App.Get().OpenDocument(Path("kept.effect").c_str()));
    EXPECT_EQ(Shown.Messages.back(),
              Path("kept.effect") + " cannot be opened: Node \"Wind\": \"Wind\" has an unknown colour");
}

TEST_F(Commands, WhatALoadMendedIsShownInOneList)
{
    {
        TDocument document(App.Get());
        document.New();
        Add(document, "Random Value")->GetNodeType()->GetOutput(0).LinkInput = 7;
        ASSERT_TRUE(document.SaveUnchecked(Path("a.effect").c_str()));
    }
    EXPECT_TRUE(App.Get().OpenDocument(Path("a.effect").c_str()));
    EXPECT_EQ(Shown.Errors, TNames{"Load errors"});
    EXPECT_TRUE(Newest().IsModified());
    EXPECT_TRUE(App.Get().Save(Newest()));
    EXPECT_TRUE(App.Get().OpenDocument(Path("a.effect").c_str()));
    EXPECT_EQ(Shown.Errors.size(), 1u);
    EXPECT_TRUE(Shown.Messages.empty());
}

TEST_F(Commands, AFailedWriteIsToldReportsTrueAndLeavesTheDocumentModified)
{
    TDocument& document = New();
    Add(document);
    Host.Choice = Path("nowhere/at/all.effect");
    EXPECT_TRUE(App.Get().SaveAs(document));
    ASSERT_EQ(Shown.Messages.size(), 1u);
    EXPECT_NE(Shown.Messages[0].find(Path("nowhere/at/all.effect")), std::string::npos);
    EXPECT_TRUE(document.IsModified());
    EXPECT_TRUE(document.GetPath().IsEmpty());
    EXPECT_EQ(Recent(), TNames{Kept(Path("nowhere/at/all.effect"))});
}

TEST_F(Commands, AFolderThatHasGoneFailsTheSaveOfTheSamePath)
{
    std::filesystem::create_directory(Path("gone"));
    TDocument& document = New();
    Host.Choice = Path("gone/a.effect");
    ASSERT_TRUE(App.Get().SaveAs(document));
    Add(document);
    std::filesystem::remove_all(Path("gone"));
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_EQ(Shown.Messages.size(), 1u);
    EXPECT_TRUE(document.IsModified());
    // Closing with Yes must not lose what could not be written.
    Host.Answer = MA_YES;
    App.Get().CloseDocument(&document);
    EXPECT_EQ(NumDocuments(), 1);
    App.Get().ExitRequest();
    for (const std::string& event : Host.Taken())
        EXPECT_NE(event, "quit");
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

TEST_F(Commands, TheOptionsNeedNoDocument)
{
    EXPECT_TRUE(App.Get().OnMenu(40210));
    EXPECT_EQ(Host.Taken(), TNames{"options"});
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
    second.SelectNode(node, true);
    App.Get().OnMenu(40002);
    EXPECT_EQ(second.GetGraph()->GetNumNodes(), 1);
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

TEST_F(Commands, CloseOfAnUnchangedDocumentAsksNothing)
{
    TDocument& document = New();
    App.Get().CloseDocument(&document);
    EXPECT_EQ(NumDocuments(), 0);
    EXPECT_EQ(App.Get().GetActiveDocument(), nullptr);
    EXPECT_EQ(App.Get().GetActiveDocWindow(), nullptr);
    EXPECT_EQ(Host.Taken(), TNames{});
}

TEST_F(Commands, CloseLeavesAnotherActiveDocumentActive)
{
    TDocument& first = New();
    TDocument& second = New();
    App.Get().CloseDocument(&first);
    EXPECT_EQ(App.Get().GetActiveDocument(), &second);
    EXPECT_EQ(App.Get().GetDocuments()[0], &second);
}

TEST_F(Commands, CloseOfAModifiedDocumentAsks)
{
    TDocument& document = New();
    Add(document);
    Host.Answer = MA_CANCEL;
    App.Get().CloseDocument(&document);
    EXPECT_EQ(Host.Taken(), TNames{"modified|<unsaved document>"});
    ASSERT_EQ(NumDocuments(), 1);
    // Yes, then Cancel in the chooser.
    Host.Answer = MA_YES;
    App.Get().CloseDocument(&document);
    EXPECT_EQ(Host.Taken(), (TNames{"modified|<unsaved document>", SaveEffect}));
    ASSERT_EQ(NumDocuments(), 1);
    Host.Choice = Path("a");
    App.Get().CloseDocument(&document);
    EXPECT_EQ(NumDocuments(), 0);
    EXPECT_TRUE(FileExists(Path("a.effect").c_str()));
}

TEST_F(Commands, CloseWithNoDropsTheWork)
{
    TDocument& document = New();
    Host.Choice = Path("a");
    App.Get().SaveAs(document);
    const std::string before = ReadBytes(Path("a.effect"));
    Add(document);
    Host.Taken();
    Host.Answer = MA_NO;
    App.Get().CloseDocument(&document);
    EXPECT_EQ(Host.Taken(), TNames{"modified|" + Path("a.effect")});
    EXPECT_EQ(NumDocuments(), 0);
    EXPECT_EQ(ReadBytes(Path("a.effect")), before);
}

TEST_F(Commands, CloseOfADocumentThatIsNotOpenAsserts)
{
    TDocument document(App.Get());
    document.New();
    EXPECT_EQ(AssertionOf([&] { App.Get().CloseDocument(&document); }), "it != Documents.end()");
}

TEST_F(Commands, ExitWithoutChangesQuitsAtOnce)
{
    New();
    App.Get().ExitRequest();
    EXPECT_EQ(Host.Taken(), TNames{"quit"});
    EXPECT_EQ(NumDocuments(), 1);
}

TEST_F(Commands, ExitWithAModifiedNeverSavedDocumentOffersItAndYesRunsSaveAsWhoseCancelCancelsTheExit)
{
    Add(New());
    Host.Answer = MA_YES;
    App.Get().ExitRequest();
    EXPECT_EQ(Host.Taken(), (TNames{"beep", "modified|<unsaved document>", SaveEffect}));
    Host.Choice = Path("a");
    App.Get().ExitRequest();
    EXPECT_EQ(Host.Taken(), (TNames{"beep", "modified|<unsaved document>", SaveEffect, "recent 1", "quit"}));
}

TEST_F(Commands, ExitWithNoSavesNothingAndCancelStays)
{
    Add(New());
    Host.Answer = MA_CANCEL;
    App.Get().ExitRequest();
    EXPECT_EQ(Host.Taken(), (TNames{"beep", "modified|<unsaved document>"}));
    Host.Answer = MA_NO;
    App.Get().ExitRequest();
    EXPECT_EQ(Host.Taken(), (TNames{"beep", "modified|<unsaved document>", "quit"}));
    EXPECT_TRUE(Newest().IsModified());
}

TEST_F(Commands, ExitStopsAtTheFirstDocumentThatIsNotSavedAndKeepsThoseThatAre)
{
    TDocument& first = New();
    Host.Choice = Path("a");
    App.Get().SaveAs(first);
    Add(first);
    New();
    Add(New());
    Host.Choice = "";
    Host.Taken();
    Host.Answer = MA_YES;
    App.Get().ExitRequest();
    EXPECT_EQ(Host.Taken(), (TNames{"beep", "modified|" + Path("a.effect") + "|<unsaved document>",
                                    "recent 1", SaveEffect}));
    EXPECT_FALSE(first.IsModified());
    EXPECT_TRUE(Newest().IsModified());
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
    ASSERT_TRUE(App.Get().OpenDocument(sample.c_str()));
    Activate(Newest());
    Shown = TShown();
    Host.Taken();
    App.Get().ExportActive();
    EXPECT_EQ(Host.Taken(), TNames{SaveEfx});
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
