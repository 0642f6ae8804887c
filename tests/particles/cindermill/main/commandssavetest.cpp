#include "commandsfixture.h"

#include "library/system/file.h"

#include <unistd.h>

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

TEST_F(Commands, AFileOfAnotherUsersCannotBeUnlocked)
{
    TDocument& document = New();
    Host.Choice = Path("foreign.effect");
    std::filesystem::create_symlink(MakeForeignFile(Path("")), Host.Choice);
    const std::string before = ReadBytes(Host.Choice);
    Shown.Answers = {true, true};
    {
        const TNobody nobody;
        EXPECT_FALSE(App.Get().SaveAs(document));
    }
    EXPECT_EQ(Shown.Messages, TNames{"Unlock of " + Host.Choice + " failed. Cannot save."});
    EXPECT_EQ(ReadBytes(Host.Choice), before);
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

TEST_F(Commands, AFileThatAnotherProgramChangedIsAskedAbout)
{
    App.Get().OpenDocument(EffectFile("a.effect").c_str());
    TDocument& document = Newest();
    Add(document);
    const std::string question =
        Path("a.effect") + " was changed by another program since it was opened. Overwrite it?";
    WriteBytes(Path("a.effect"), "theirs");
    EXPECT_FALSE(App.Get().Save(document));
    EXPECT_EQ(Shown.Questions, TNames{question});
    EXPECT_EQ(ReadBytes(Path("a.effect")), "theirs");
    EXPECT_TRUE(document.IsModified());
    Shown.Answers = {true};
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_EQ(Shown.Questions, (TNames{question, question}));
    EXPECT_NE(ReadBytes(Path("a.effect")), "theirs");
    EXPECT_FALSE(document.IsModified());
    // Its own writing is no change.
    Add(document);
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_EQ(Shown.Questions.size(), 2u);
    // After a save, too.
    WriteBytes(Path("a.effect"), "theirs again");
    Add(document);
    EXPECT_FALSE(App.Get().Save(document));
    EXPECT_EQ(Shown.Questions.size(), 3u);
}

TEST_F(Commands, AChangeWithTheOldSizeAndTimeIsSeenAndATouchIsNone)
{
    App.Get().OpenDocument(EffectFile("a.effect").c_str());
    TDocument& document = Newest();
    Add(document);
    std::string bytes = ReadBytes(Path("a.effect"));
    WriteBytes(Path("a.effect"), bytes);
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_TRUE(Shown.Questions.empty());
    Add(document);
    bytes = ReadBytes(Path("a.effect"));
    const auto time = std::filesystem::last_write_time(Path("a.effect"));
    bytes[bytes.size() / 2] ^= 1;
    WriteBytes(Path("a.effect"), bytes);
    std::filesystem::last_write_time(Path("a.effect"), time);
    EXPECT_FALSE(App.Get().Save(document));
    EXPECT_EQ(Shown.Questions.size(), 1u);
}

TEST_F(Commands, AFileThatIsGoneIsWrittenAndSaveAsAsksOnlyItsOwnQuestion)
{
    App.Get().OpenDocument(EffectFile("a.effect").c_str());
    TDocument& document = Newest();
    Add(document);
    std::filesystem::remove(Path("a.effect"));
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_TRUE(Shown.Questions.empty());
    EXPECT_TRUE(FileExists(Path("a.effect").c_str()));
    WriteBytes(Path("a.effect"), "theirs");
    Host.Choice = Path("a.effect");
    Shown.Answers = {true};
    EXPECT_TRUE(App.Get().SaveAs(document));
    EXPECT_EQ(Shown.Questions, TNames{Path("a.effect") + " exists. Overwrite?"});
    Add(document);
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_EQ(Shown.Questions.size(), 1u);
}

TEST_F(Commands, ADocumentThatIsNotSavedOverAChangeStaysOpen)
{
    App.Get().OpenDocument(EffectFile("a.effect").c_str());
    Add(Newest());
    WriteBytes(Path("a.effect"), "theirs");
    Host.Answer = MA_YES;
    App.Get().CloseDocument(&Newest());
    EXPECT_EQ(NumDocuments(), 1);
    App.Get().ExitRequest();
    EXPECT_EQ(ReadBytes(Path("a.effect")), "theirs");
    for (const std::string& event : Host.Taken())
        EXPECT_NE(event, "quit");
}

TEST_F(Commands, AnEffectThatIsOpenIsNotReplacedByAnExport)
{
    App.Get().GetResourceLocator().AddSearchDirectory(SourcePath("samples").c_str());
    WriteBytes(Path("a.effect"), ReadBytes(SourcePath("samples/fountain.effect")));
    ASSERT_TRUE(App.Get().OpenDocument(EffectFile("other.effect").c_str()));
    ASSERT_TRUE(App.Get().OpenDocument(Path("a.effect").c_str()));
    Activate(Newest());
    std::filesystem::create_symlink("a.effect", Path("link.efx"));
    const std::string before = ReadBytes(Path("a.effect"));
    for (const std::string& choice :
         {Path("a.effect"), Path("./a.effect"), Path("A.Effect"), Path("link.efx"), Path("other.effect")}) {
        Shown = TShown();
        Shown.Answers = {true, true};
        Host.Choice = choice;
        App.Get().ExportActive();
        ASSERT_TRUE(Shown.Errors.empty()) << Shown.Errors[0];
        EXPECT_EQ(Shown.Messages,
                  TNames{choice +
                         " is an effect that is open, which the export would replace. Choose another name."});
        EXPECT_TRUE(Shown.Questions.empty());
        EXPECT_EQ(ReadBytes(Path("a.effect")), before);
    }
}

TEST_F(Commands, AWriteThatFailsIsToldWithTheReason)
{
    if (getuid() != 0)
        GTEST_SKIP() << "only the superuser can become somebody else";
    App.Get().OpenDocument(EffectFile("a.effect").c_str());
    Add(Newest());
    const std::string before = ReadBytes(Path("a.effect"));
    const std::string folder = std::filesystem::path(Path("a.effect")).parent_path();
    ASSERT_EQ(chmod(folder.c_str(), 0755), 0);
    ASSERT_EQ(chmod(Path("a.effect").c_str(), 0666), 0);
    {
        const TNobody nobody;
        EXPECT_TRUE(App.Get().Save(Newest()));
    }
    EXPECT_EQ(Shown.Messages,
              TNames{"Writing " + Path("a.effect") + " failed: No file can be made in " + folder +
                     ": Permission denied. What the file held before is untouched, and the "
                     "effect is not saved."});
    EXPECT_EQ(ReadBytes(Path("a.effect")), before);
}
