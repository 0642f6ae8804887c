#include "autosavefixture.h"

#include <sys/resource.h>

TEST_F(Autosaves, AChangeIsWrittenWhenItIsTwoMinutesOld)
{
    Start();
    TDocument& document = New();
    IdleAt(0);
    Add(document);
    IdleAt(5000);
    IdleAt(5000 + 119999);
    EXPECT_TRUE(Files(true).empty());
    IdleAt(5000 + 120000);
    EXPECT_EQ(Leaves(), TNames{"unsaved-1.effect"});
}

TEST_F(Autosaves, TheFirstOfManyChangesCounts)
{
    Start();
    TDocument& document = New();
    for (uint32_t time = 0; time < 120000; time += 1000) {
        Add(document);
        IdleAt(time);
        EXPECT_TRUE(Files().empty());
    }
    IdleAt(120000);
    const std::string first = ReadBytes(TheFile());
    EXPECT_FALSE(first.empty());
    // What came since then has two minutes of its own.
    Add(document);
    IdleAt(121000);
    IdleAt(121000 + 119999);
    EXPECT_TRUE(ReadBytes(TheFile()) == first);
    IdleAt(121000 + 120000);
    EXPECT_GT(ReadBytes(TheFile()).size(), first.size());
}

TEST_F(Autosaves, NothingIsWrittenDuringADrag)
{
    Start();
    TDocument& document = New();
    Add(document);
    IdleAt(0);
    Host.Drags = true;
    IdleAt(130000);
    EXPECT_TRUE(Files().empty());
    Host.Drags = false;
    IdleAt(130001);
    EXPECT_EQ(Files().size(), 1u);
}

// Under a dialog or a menu no idle pass may come for hours.
TEST_F(Autosaves, TheClockWritesWhatIsDueWhileSomethingWaits)
{
    Start();
    TDocument& document = New();
    Add(document);
    IdleAt(0);
    Clock.Set(Begin + 119999);
    App.Get().OnClock();
    Autosave().WaitForDisc();
    EXPECT_TRUE(Files().empty());
    Host.Drags = true;
    Clock.Set(Begin + 120000);
    App.Get().OnClock();
    Autosave().WaitForDisc();
    EXPECT_TRUE(Files().empty());
    Host.Drags = false;
    App.Get().OnClock();
    Autosave().WaitForDisc();
    EXPECT_EQ(Files().size(), 1u);
}

TEST_F(Autosaves, TheClockShowsNothing)
{
    Start();
    Add(New());
    IdleAt(0);
    WriteBytes(Path("state"), "no folder");
    Clock.Set(Begin + 120000);
    App.Get().OnClock();
    Autosave().WaitForDisc();
    App.Get().OnClock();
    EXPECT_TRUE(Shown.Messages.empty());
    App.Get().OnIdle();
    EXPECT_EQ(Shown.Messages.size(), 1u);
}

TEST_F(Autosaves, OfSeveralThatAreDueOneIsWrittenInAPass)
{
    Start();
    for (int i = 0; i < 3; ++i)
        Add(New());
    IdleAt(0);
    for (size_t i = 1; i <= 3; ++i) {
        IdleAt(120000);
        EXPECT_EQ(Files().size(), i);
    }
}

TEST_F(Autosaves, AFolderThatWasTakenAwayIsMadeAnew)
{
    Start();
    TDocument& document = New();
    Add(document);
    Autosave().SaveModified(App.Get().GetDocuments());
    Autosave().WaitForDisc();
    EXPECT_EQ(Files().size(), 1u);
    std::filesystem::remove_all(Path("state"));
    Add(document);
    Autosave().SaveModified(App.Get().GetDocuments());
    Autosave().WaitForDisc();
    EXPECT_EQ(Files().size(), 1u);
    EXPECT_TRUE(Shown.Messages.empty());
}

TEST_F(Autosaves, WhatIsNotModifiedIsNotWritten)
{
    const std::string path = EffectFile("whole.effect");
    Start();
    TDocument& document = Open(path);
    IdleAt(0);
    IdleAt(200000);
    Autosave().SaveModified(App.Get().GetDocuments());
    IdleAt(400000);
    EXPECT_TRUE(Files(true).empty());
    // Neither is what was done and undone.
    Add(document);
    document.Undo();
    IdleAt(400001);
    IdleAt(600000);
    EXPECT_TRUE(Files().empty());
}

TEST_F(Autosaves, TheNameTellsTheDocument)
{
    Start();
    const std::string letters(120, 'x');
    // Two bytes each, the last of them across the longest name.
    std::string umlauts = "y";
    for (int i = 0; i < 60; ++i)
        umlauts += "\xC3\xA4";
    for (const std::string& leaf :
         {std::string("fire.effect"), std::string("a b.old"), letters + ".effect", umlauts})
        Add(Open(EffectFile(leaf)));
    Add(New());
    Autosave().SaveModified(App.Get().GetDocuments());
    Autosave().WaitForDisc();
    TNames expected = {"fire-1.effect", "a b.old-2.effect", letters.substr(0, 100) + "-3.effect",
                       umlauts.substr(0, 99) + "-4.effect", "unsaved-5.effect"};
    std::sort(expected.begin(), expected.end());
    TNames leaves = Leaves();
    std::sort(leaves.begin(), leaves.end());
    EXPECT_EQ(leaves, expected);
}

TEST_F(Autosaves, TheFileIsAWholeEffectWithItsHistoryAndPath)
{
    const std::string path = EffectFile("fire.effect");
    const std::string before = ReadBytes(path);
    Start();
    TDocument& document = Open(path);
    for (int i = 0; i < 5; ++i)
        Add(document);
    document.Undo();
    Autosave().SaveModified(App.Get().GetDocuments());
    Autosave().WaitForDisc();
    const std::string file = TheFile();
    const std::string image = ImageOf(document);
    EXPECT_TRUE(ReadBytes(file).substr(0, image.size()) == image);
    TRecoveryNote note;
    TString fault;
    EXPECT_TRUE(ReadRecoveryNote(file.c_str(), note, fault)) << fault.Print();
    EXPECT_EQ(Text(note.Path), Text(document.GetPath()));
    EXPECT_NEAR(static_cast<double>(note.Time), static_cast<double>(time(nullptr)), 5);
    TDocument read(App.Get());
    ASSERT_TRUE(read.Load(file.c_str())) << read.GetLoadError().Print();
    EXPECT_EQ(read.GetOperationStack()->GetNumOperations(), document.GetOperationStack()->GetNumOperations());
    EXPECT_TRUE(ReadBytes(path) == before);
    EXPECT_TRUE(document.IsModified());
}

TEST_F(Autosaves, TheFileGoesWhenTheDocumentIsSaved)
{
    Start();
    TDocument& document = Open(EffectFile("fire.effect"));
    Add(document);
    Autosave().SaveModified(App.Get().GetDocuments());
    Autosave().WaitForDisc();
    EXPECT_EQ(Files().size(), 1u);
    EXPECT_TRUE(App.Get().Save(document));
    Autosave().WaitForDisc();
    EXPECT_TRUE(Files().empty());
    // What is done after it begins anew.
    Add(document);
    IdleAt(1000);
    IdleAt(1000 + 119999);
    EXPECT_TRUE(Files().empty());
    IdleAt(1000 + 120000);
    EXPECT_EQ(Files().size(), 1u);
}

TEST_F(Autosaves, TheFileStaysWhenASaveFails)
{
    Start();
    TDocument& document = Open(EffectFile("fire.effect"));
    Add(document);
    Autosave().SaveModified(App.Get().GetDocuments());
    EXPECT_FALSE(document.SaveAs(Path("missing/fire.effect").c_str()));
    Autosave().WaitForDisc();
    EXPECT_EQ(Files().size(), 1u);
}

TEST_F(Autosaves, TheFileGoesWhenTheDocumentIsClosedOnPurpose)
{
    Start();
    TDocument& document = Open(EffectFile("fire.effect"));
    Add(document);
    Autosave().SaveModified(App.Get().GetDocuments());
    Host.Answer = MA_CANCEL;
    App.Get().CloseDocument(&document);
    Autosave().WaitForDisc();
    EXPECT_EQ(Files().size(), 1u);
    Host.Answer = MA_NO;
    App.Get().CloseDocument(&document);
    Autosave().WaitForDisc();
    EXPECT_TRUE(Files().empty());
}

TEST_F(Autosaves, NothingIsLeftAfterAnExit)
{
    Start();
    Add(New());
    Add(Open(EffectFile("fire.effect")));
    Autosave().SaveModified(App.Get().GetDocuments());
    Host.Answer = MA_CANCEL;
    App.Get().ExitRequest();
    Autosave().WaitForDisc();
    EXPECT_EQ(Files().size(), 2u);
    Host.Answer = MA_NO;
    App.Get().ExitRequest();
    EXPECT_TRUE(Files(true).empty());
}

TEST_F(Autosaves, TheFileGoesTwoMinutesAfterAllWasUndone)
{
    Start();
    TDocument& document = Open(EffectFile("fire.effect"));
    Add(document);
    Autosave().SaveModified(App.Get().GetDocuments());
    document.Undo();
    IdleAt(1000);
    IdleAt(1000 + 119999);
    EXPECT_EQ(Files().size(), 1u);
    IdleAt(1000 + 120000);
    EXPECT_TRUE(Files().empty());
}

TEST_F(Autosaves, AnExportWritesAllThatIsModifiedFirst)
{
    Start();
    TDocument& first = New();
    Add(first);
    Add(New());
    Host.Choice = "";
    App.Get().ExportActive();
    Autosave().WaitForDisc();
    EXPECT_EQ(Files().size(), 2u);
}

TEST_F(Autosaves, NothingIsWrittenBeforeTheStart)
{
    TDocument& document = New();
    Add(document);
    IdleAt(0);
    IdleAt(200000);
    Autosave().SaveModified(App.Get().GetDocuments());
    Autosave().End();
    EXPECT_FALSE(std::filesystem::exists(Path("state")));
}

// An operation in whose middle the loop runs, as for a question.
class TAskingOp : public TOperation
{
public:
    explicit TAskingOp(std::function<void()> ask) : Ask(std::move(ask)) {}
    void Do(TEditContext&) override { Ask(); }
    void Undo(TEditContext&) override { Ask(); }
    bool Read(int, int, TChunkFile*) override { return true; }
    bool Write(TChunkFile*) override { return true; }
    int GetSize() override { return 0; }
    uint32_t GetClassId() const override { return 0; }

private:
    std::function<void()> Ask;
};

TEST_F(Autosaves, ADocumentInTheMiddleOfAStepIsNotWritten)
{
    Start();
    TDocument& document = New();
    Add(document);
    IdleAt(0);
    int asked = 0;
    const auto ask = [&] {
        ++asked;
        IdleAt(200000);
        Autosave().SaveModified(App.Get().GetDocuments());
        Autosave().WaitForDisc();
        EXPECT_TRUE(Files().empty());
    };
    document.ApplyOperation(new TAskingOp(ask));
    document.Undo();
    document.Redo();
    document.Undo();
    EXPECT_EQ(asked, 4);
    // The step over, it is.
    Autosave().SaveModified(App.Get().GetDocuments());
    Autosave().WaitForDisc();
    EXPECT_EQ(Files().size(), 1u);
}

TEST_F(Autosaves, AFailureIsToldOnceAndTriedAgain)
{
    // A file where the folders were to be.
    WriteBytes(Path("state"), "");
    Start();
    TDocument& document = Open(EffectFile("fire.effect"));
    Add(document);
    IdleAt(0);
    IdleAt(120000);
    ASSERT_EQ(Shown.Messages.size(), 1u);
    EXPECT_EQ(Shown.Messages[0].find(Path("fire.effect") + " could not be autosaved: Not a directory"), 0u)
        << Shown.Messages[0];
    Add(document);
    for (uint32_t time = 130000; time < 600000; time += 10000)
        IdleAt(time);
    EXPECT_EQ(Shown.Messages.size(), 1u);
    std::filesystem::remove(Path("state"));
    for (uint32_t time = 600000; time < 800000; time += 10000)
        IdleAt(time);
    EXPECT_EQ(Shown.Messages.size(), 1u);
    EXPECT_EQ(Leaves(), TNames{"fire-1.effect"});
}
