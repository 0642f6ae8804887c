#include "commandsfixture.h"

#include "library/system/file.h"

#include <regex>

namespace {

// What was written, when, and how long it is.
bool Tells(const std::string& text, const std::string& what, const std::string& path)
{
    const std::string size = std::to_string(std::filesystem::file_size(path)) + " bytes";
    return std::regex_match(text, std::regex(what + " " + path + " at [0-9]{2}:[0-9]{2}:[0-9]{2}, " + size));
}

// A folder of samples with one effect.
class SampleEffects : public Commands
{
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(Path("share/samples/pictures"));
        Sample = EffectFile("share/samples/comet.effect");
        Bytes = ReadBytes(Sample);
        App.Get().GetSamples().SetFolder(Path("share/samples").c_str());
        setenv("HOME", Path("home").c_str(), 1);
        std::filesystem::create_directories(Path("home"));
    }
    void TearDown() override { setenv("HOME", Home.c_str(), 1); }
    // Opened and changed.
    TDocument& OpenSample(const std::string& path)
    {
        EXPECT_TRUE(App.Get().OpenDocument(path.c_str()));
        Activate(Newest());
        Add(Newest());
        Host.Taken();
        return Newest();
    }

    std::string Home = getenv("HOME") != nullptr ? getenv("HOME") : "";
    std::string Sample;
    std::string Bytes;
};

} // namespace

TEST_F(SampleEffects, TheFirstSaveAsksForAPlaceOfOnesOwn)
{
    TDocument& document = OpenSample(Sample);
    Host.Choice = Path("mine.effect");
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_EQ(Host.Taken(), (TNames{SaveEffect + (" in " + Path("home")), "recent 2"}));
    ASSERT_EQ(Host.Statuses.size(), 2u);
    EXPECT_EQ(Host.Statuses[0], Sample + " came with the program: choose a place for your own.");
    EXPECT_TRUE(Tells(Host.Statuses[1], "Saved", Path("mine.effect"))) << Host.Statuses[1];
    EXPECT_EQ(ReadBytes(Sample), Bytes);
    EXPECT_NE(ReadBytes(Path("mine.effect")), Bytes);
    EXPECT_EQ(Text(document.GetPath()), Path("mine.effect"));
    // From then on it is a file like any other.
    Add(document);
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_EQ(Host.Taken(), TNames{"recent 2"});
    EXPECT_EQ(Host.Statuses.size(), 3u);
    EXPECT_TRUE(Shown.Questions.empty());
}

TEST_F(SampleEffects, NothingIsSavedWithoutAPlace)
{
    TDocument& document = OpenSample(Sample);
    EXPECT_FALSE(App.Get().Save(document));
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(ReadBytes(Sample), Bytes);
    // Nor is it by the question at the end.
    Host.Answer = MA_YES;
    App.Get().CloseDocument(&document);
    EXPECT_EQ(NumDocuments(), 1);
    EXPECT_EQ(ReadBytes(Sample), Bytes);
}

TEST_F(SampleEffects, OneThatMayNotBeWrittenAsksForAPlaceToo)
{
    MakeReadOnly(Sample);
    TDocument& document = OpenSample(Sample);
    Host.Choice = Path("mine.effect");
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_TRUE(Shown.Questions.empty());
    EXPECT_EQ(ReadBytes(Sample), Bytes);
    EXPECT_TRUE(FileExists(Path("mine.effect").c_str()));
}

TEST_F(SampleEffects, WhoeverChoosesItsPlaceIsAskedOnceAndMaySaveThere)
{
    TDocument& document = OpenSample(Sample);
    Host.Choice = Sample;
    Shown.Answers = {true};
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_EQ(Shown.Questions, TNames{Sample + " exists. Overwrite?"});
    EXPECT_NE(ReadBytes(Sample), Bytes);
    Add(document);
    Host.Taken();
    EXPECT_TRUE(App.Get().Save(document));
    EXPECT_EQ(Host.Taken(), TNames{"recent 1"});
    EXPECT_EQ(Shown.Questions.size(), 1u);
}

TEST_F(SampleEffects, AnotherSpellingOfThePathIsTheSameSample)
{
    std::filesystem::create_directory_symlink(Path("share/samples"), Path("linked"));
    TDocument& document = OpenSample(Path("linked/comet.effect"));
    EXPECT_FALSE(App.Get().Save(document));
    EXPECT_EQ(ReadBytes(Sample), Bytes);
}

TEST_F(SampleEffects, TheChooserBeginsBesideTheNewestEffectOfOnesOwn)
{
    std::filesystem::create_directories(Path("work"));
    OpenSample(EffectFile("work/own.effect"));
    TDocument& document = OpenSample(Sample);
    EXPECT_FALSE(App.Get().Save(document));
    EXPECT_EQ(Host.Taken().back(), SaveEffect + (" in " + Kept(Path("work"))));
}

// An effect that was begun after a look at the samples does not belong among them.
TEST_F(SampleEffects, ANewEffectIsNotOfferedThePlaceOfTheSamples)
{
    Host.Choice = Sample;
    App.Get().OpenDocumentDialog();
    TDocument& document = New();
    Host.Choice.clear();
    Host.Taken();
    EXPECT_FALSE(App.Get().Save(document));
    EXPECT_EQ(Host.Taken(), TNames{SaveEffect + (" in " + Path("home"))});
}

TEST_F(SampleEffects, TheyAreListedByNameWithTheirPictures)
{
    EffectFile("share/samples/aura.effect");
    WriteBytes(Path("share/samples/notes.txt"), "x");
    vector<TString> effects;
    App.Get().GetSamples().List(effects);
    ASSERT_EQ(effects.size(), 2);
    EXPECT_TRUE(FileExists(effects[0]));
    EXPECT_EQ(Kept(Text(effects[0])), Kept(Path("share/samples/aura.effect")));
    TString picture;
    TSampleEffects::GetPicture(effects[1], picture);
    EXPECT_EQ(Kept(Text(picture)), Kept(Path("share/samples/pictures/comet.png")));
}

TEST_F(SampleEffects, TheFilesOfTheSamplesLieInFoldersBesideThem)
{
    std::filesystem::create_directories(Path("share/samples/textures"));
    TString folder;
    App.Get().GetSamples().GetFolderBeside("textures", folder);
    EXPECT_EQ(Kept(Text(folder)), Kept(Path("share/samples/textures")));
    App.Get().GetSamples().GetFolderBeside("animations", folder);
    EXPECT_TRUE(folder.IsEmpty());
    App.Get().GetSamples().SetFolder(nullptr);
    App.Get().GetSamples().GetFolderBeside("textures", folder);
    EXPECT_TRUE(folder.IsEmpty());
}

TEST_F(SampleEffects, ItsExportIsNotOfferedAPlaceAmongThem)
{
    std::filesystem::copy_file(SourcePath("samples/fountain.effect"), Path("share/samples/fountain.effect"));
    App.Get().GetResourceLocator().AddSearchDirectory(SourcePath("samples").c_str());
    OpenSample(Path("share/samples/fountain.effect"));
    App.Get().ExportActive();
    EXPECT_EQ(Host.Taken(), TNames{SaveEfx + (" in " + Path("home"))});
    EXPECT_EQ(Host.Offered, "fountain.efx");
}

TEST_F(Commands, AnExportIsOfferedTheNameOfItsEffectAndTheFirstOneThePlaceToo)
{
    std::filesystem::create_directories(Path("work"));
    std::filesystem::copy_file(SourcePath("samples/fountain.effect"), Path("work/fire.big.effect"));
    ASSERT_TRUE(App.Get().OpenDocument(Path("work/fire.big.effect").c_str()));
    Activate(Newest());
    Host.Taken();
    Host.Choice = Path("out");
    App.Get().ExportActive();
    EXPECT_EQ(Host.Taken(), TNames{SaveEfx + (" in " + Path("work"))});
    EXPECT_EQ(Host.Offered, "fire.big.efx");
    // From then on the chooser remembers.
    App.Get().ExportActive();
    EXPECT_EQ(Host.Taken(), TNames{SaveEfx});
    EXPECT_EQ(Host.Offered, "fire.big.efx");
}

TEST_F(Commands, SaveAsBeginsWithTheNameThatTheEffectHas)
{
    New();
    App.Get().SaveActiveAs();
    EXPECT_EQ(Host.Offered, "");
    ASSERT_TRUE(App.Get().OpenDocument(EffectFile("fire.effect").c_str()));
    Activate(Newest());
    App.Get().SaveActiveAs();
    EXPECT_EQ(Host.Offered, "fire.effect");
}

TEST_F(Commands, WhatIsExportedIsTold)
{
    ASSERT_TRUE(App.Get().OpenDocument(SourcePath("samples/fountain.effect").c_str()));
    Activate(Newest());
    Host.Choice = Path("out");
    App.Get().ExportActive();
    ASSERT_EQ(Host.Statuses.size(), 1u);
    EXPECT_TRUE(Tells(Host.Statuses[0], "Exported", Path("out.efx"))) << Host.Statuses[0];
    Host.Choice.clear();
    App.Get().ExportActive();
    EXPECT_EQ(Host.Statuses.size(), 1u);
}
