#include "support/testsupport.h"

#include "library/system/clock.h"
#include "library/system/message.h"
#include "particles/cindermill/main/resourcehost.h"
#include "particles/cindermill/main/resourcelocator.h"
#include "particles/cindermill/main/resourcesearch.h"
#include "particles/cindermill/main/settings.h"
#include "particles/cindermill/main/settingsstore.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>

namespace {

std::string Kept(std::string path)
{
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

std::vector<std::string>& Messages()
{
    static std::vector<std::string> texts;
    return texts;
}

// A tree of folders; the program stands in "home/program".
class ResourceLocator : public testing::Test
{
protected:
    ResourceLocator()
        : Store(OpenSettingsFile(Folder.Path("settings.ini").c_str())), Settings(Store.get()),
          Locator(Settings)
    {
        Messages().clear();
        SetMessageForms([](const char* text) { Messages().push_back(text); }, nullptr);
        Make("home/program/near/deep/spark.dds");
        Make("home/beside/smoke.dds");
        Make("home/program/spark2.dds");
        EXPECT_TRUE(Locator.Init(Path("home/program").c_str(), true));
    }
    ~ResourceLocator() override { SetMessageForms(nullptr, nullptr); }

    std::string Path(const std::string& path) const { return Folder.Path(path); }
    void Make(const std::string& path) const
    {
        std::filesystem::create_directories(std::filesystem::path(Path(path)).parent_path());
        WriteBytes(Path(path), path);
    }
    void SetMode(int mode, const std::string& base = "")
    {
        Settings.SetResourceMode(mode);
        Settings.SetResourcePath(base.c_str());
        Locator.ReadSettings();
    }
    // The path found, or "".
    std::string Find(const std::string& name)
    {
        TString path;
        return Locator.Find(name.c_str(), path) == FR_FOUND ? Text(path) : "";
    }
    std::vector<std::string> Known() const
    {
        std::vector<std::string> result;
        for (const TString& directory : Locator.GetKnownDirectories())
            result.push_back(Text(directory));
        return result;
    }

    TTempFolder Folder;
    std::unique_ptr<TSettingsStore> Store;
    TSettings Settings;
    TResourceLocator Locator;
};

using TNames = std::vector<std::string>;

uint32_t Now;

// Stands for the person, and writes down what is asked. Turns in which nothing is to be done say SA_NONE.
class TFakeResourceHost : public TResourceHost
{
public:
    void BeginSearch() override { Events.push_back("begin"); }
    void EndSearch() override { Events.push_back("end"); }
    void ShowSearch(const char* name) override { Events.push_back(At("show ") + name); }
    void ListDirectories(const vector<TString>& directories) override
    {
        Events.push_back(At("list"));
        Stacks.emplace_back();
        for (const TString& directory : directories)
            Stacks.back().push_back(directory.Print());
    }
    TSearchAnswer Step() override
    {
        if (!Turn)
            return SA_NONE;
        Now += 100;
        return Turn();
    }
    bool ChooseResource(const char* title, const vector<TPathFilter>& filters, TString& path) override
    {
        std::string text = title;
        for (const TPathFilter& filter : filters)
            text += std::string("|") + filter.Description + "|" + filter.Pattern;
        Events.push_back(text);
        path = Choice.c_str();
        return !Choice.empty();
    }
    TNames Taken()
    {
        TNames result;
        result.swap(Events);
        return result;
    }

    TNames Events;
    std::vector<TNames> Stacks;
    std::function<TSearchAnswer()> Turn;
    // "" is Cancel.
    std::string Choice;

private:
    static std::string At(const char* what)
    {
        return what + std::string(Now != 0 ? std::to_string(Now) : "");
    }
};

// A locator that may ask. A file that is nowhere keeps it searching until the host ends the search.
class AskingLocator : public ResourceLocator
{
protected:
    AskingLocator()
    {
        Now = 0;
        SetTickCountSource([] { return Now; });
        EXPECT_TRUE(Locator.Init(Path("home/program").c_str(), false));
        Locator.SetHost(&Host);
        Locator.SetEndless(true);
        Stop();
    }
    ~AskingLocator() override { SetTickCountSource(nullptr); }

    // After so many turns of a search.
    void Stop(int turns = 0)
    {
        Host.Turn = [turns]() mutable { return turns-- > 0 ? SA_NONE : SA_STOP; };
    }
    TFindResult FindNow(const std::string& name)
    {
        Found = TString();
        return Locator.Find(name.c_str(), Found);
    }

    TFakeResourceHost Host;
    TString Found;
};

} // namespace

TEST_F(ResourceLocator, FindsALeafBelowTheProgramAndRemembersItsDirectory)
{
    EXPECT_EQ(Find("spark.dds"), Kept(Path("home/program/near/deep/spark.dds")));
    EXPECT_EQ(Known(), TNames{Kept(Path("home/program/near/deep"))});
}

TEST_F(ResourceLocator, AFileChosenThroughALinkIsFoundAgainByItsLeafName)
{
    Make("elsewhere/flame.dds");
    std::filesystem::create_directories(Path("chosen"));
    std::filesystem::create_symlink(Path("elsewhere/flame.dds"), Path("chosen/glow.dds"));
    TString name(Path("chosen/glow.dds").c_str());
    ASSERT_TRUE(Locator.PrepareName(name));
    EXPECT_EQ(Text(name), "glow.dds");
    EXPECT_EQ(Find("glow.dds"), Kept(Path("chosen/glow.dds")));
    // A walk finds it too, but goes through no link to a directory.
    std::filesystem::create_symlink(Path("elsewhere/flame.dds"), Path("home/program/near/ember.dds"));
    EXPECT_EQ(Find("ember.dds"), Kept(Path("home/program/near/ember.dds")));
    Make(".hidden/ash.dds");
    std::filesystem::create_directory_symlink(Path(".hidden"), Path("home/program/hidden"));
    EXPECT_EQ(Find("ash.dds"), "");
}

TEST_F(ResourceLocator, WhereANameLeadsIsKnownWithoutASearch)
{
    TString path;
    EXPECT_FALSE(Locator.FindKnown("spark.dds", path));
    EXPECT_NE(Find("spark.dds"), "");
    EXPECT_TRUE(Locator.FindKnown("SPARK.dds", path));
    EXPECT_EQ(Text(path), Kept(Path("home/program/near/deep/spark.dds")));
    EXPECT_FALSE(Locator.FindKnown("", path));
    SetMode(RM_RELATIVEPATH, Path("home"));
    EXPECT_TRUE(Locator.FindKnown("/beside\\smoke.dds", path));
    EXPECT_EQ(Text(path), Kept(Path("home/beside/smoke.dds")));
    EXPECT_FALSE(Locator.FindKnown("smoke.dds", path));
    SetMode(RM_FULLPATH);
    EXPECT_TRUE(Locator.FindKnown(Path("home/beside/smoke.dds").c_str(), path));
    EXPECT_FALSE(Locator.FindKnown("smoke.dds", path));
}

TEST_F(ResourceLocator, TellsWhereNamesAreToLie)
{
    vector<TString> bases;
    Locator.GetBases(bases);
    EXPECT_TRUE(bases.empty());
    // A base counts for the names that begin there alone.
    SetMode(RM_LEAFNAME, Path("home/base"));
    Locator.GetBases(bases);
    EXPECT_TRUE(bases.empty());
    SetMode(RM_RELATIVEPATH, Path("home/base/"));
    EXPECT_EQ(Locator.GetMode(), RM_RELATIVEPATH);
    Locator.AddSearchDirectory(Path("home/beside").c_str());
    Locator.GetBases(bases);
    ASSERT_EQ(bases.size(), 2);
    EXPECT_EQ(Kept(Path("home/beside")), bases[0].Print());
    EXPECT_EQ(Kept(Path("home/base")), bases[1].Print());
}

TEST_F(ResourceLocator, ClimbsToTheParentWhenNothingIsBelow)
{
    EXPECT_EQ(Find("smoke.dds"), Kept(Path("home/beside/smoke.dds")));
}

TEST_F(ResourceLocator, NamesAreComparedWithoutCaseAndGivenAsTheyStand)
{
    EXPECT_EQ(Find("SPARK.DDS"), Kept(Path("home/program/near/deep/spark.dds")));
}

TEST_F(ResourceLocator, ASecondRequestInAKnownDirectoryDoesNoWalk)
{
    Find("spark.dds");
    Make("home/program/near/deep/other.dds");
    // A walk would meet this one first.
    Make("home/program/other.dds");
    EXPECT_EQ(Find("other.dds"), Kept(Path("home/program/near/deep/other.dds")));
}

TEST_F(ResourceLocator, FilesOfADirectoryComeBeforeThoseBelowIt)
{
    Make("home/program/near/twice.dds");
    Make("home/program/near/a/twice.dds");
    EXPECT_EQ(Find("twice.dds"), Kept(Path("home/program/near/twice.dds")));
}

TEST_F(ResourceLocator, DirectoriesThatBeginWithAPointAreNotSearched)
{
    Make("home/program/.hidden/veiled.dds");
    Make("home/veiled.dds");
    EXPECT_EQ(Find("veiled.dds"), Kept(Path("home/veiled.dds")));
}

TEST_F(ResourceLocator, ADirectoryOfTheNameIsNoFile)
{
    std::filesystem::create_directory(Path("home/program/flame.dds"));
    Make("home/flame.dds");
    EXPECT_EQ(Find("flame.dds"), Kept(Path("home/flame.dds")));
}

TEST_F(ResourceLocator, AnEmptyNameIsNeverFound)
{
    TString path;
    for (const int mode : {RM_LEAFNAME, RM_RELATIVEPATH, RM_FULLPATH}) {
        SetMode(mode, Path("home"));
        EXPECT_EQ(Locator.Find("", path), FR_NOTFOUND);
        EXPECT_EQ(Locator.Find(nullptr, path), FR_NOTFOUND);
    }
}

TEST_F(ResourceLocator, PrepareNameCutsToTheLeafAndRemembersTheDirectory)
{
    TString path(Path("home/beside/smoke.dds").c_str());
    EXPECT_TRUE(Locator.PrepareName(path));
    EXPECT_EQ(Text(path), "smoke.dds");
    EXPECT_EQ(Known(), TNames{Kept(Path("home/beside"))});
    path = Path("HOME/beside/ash.dds").c_str();
    EXPECT_TRUE(Locator.PrepareName(path));
    // The same directory in other case is not entered again.
    EXPECT_EQ(Known().size(), 1u);
}

TEST_F(ResourceLocator, OfSeveralFilesOfANameTheChosenOneIsFoundFromThenOn)
{
    Make("home/a/fire.dds");
    Make("home/a/ash.dds");
    Make("home/b/fire.dds");
    for (const char* chosen : {"home/a/ash.dds", "home/beside/smoke.dds", "home/b/fire.dds"}) {
        TString path(Path(chosen).c_str());
        EXPECT_TRUE(Locator.PrepareName(path));
    }
    EXPECT_EQ(Known(), (TNames{Kept(Path("home/b")), Kept(Path("home/a")), Kept(Path("home/beside"))}));
    EXPECT_EQ(Find("fire.dds"), Kept(Path("home/b/fire.dds")));
    TString path(Path("home/a/fire.dds").c_str());
    EXPECT_TRUE(Locator.PrepareName(path));
    EXPECT_EQ(Known(), (TNames{Kept(Path("home/a")), Kept(Path("home/b")), Kept(Path("home/beside"))}));
    EXPECT_EQ(Find("fire.dds"), Kept(Path("home/a/fire.dds")));
}

TEST_F(ResourceLocator, AChosenFileThatIsFoundAnywayLeavesTheOrder)
{
    Make("home/a/fire.dds");
    for (const char* chosen : {"home/a/fire.dds", "home/beside/smoke.dds", "home/a/fire.dds"}) {
        TString path(Path(chosen).c_str());
        EXPECT_TRUE(Locator.PrepareName(path));
    }
    EXPECT_EQ(Known(), (TNames{Kept(Path("home/a")), Kept(Path("home/beside"))}));
}

TEST_F(ResourceLocator, FindKnownWalksNowhere)
{
    TString path;
    EXPECT_FALSE(Locator.FindKnown("spark.dds", path));
    EXPECT_FALSE(Locator.FindKnown("", path));
    EXPECT_FALSE(Locator.FindKnown(nullptr, path));
    EXPECT_TRUE(Known().empty());
    Find("spark.dds");
    EXPECT_TRUE(Locator.FindKnown("Spark.dds", path));
    EXPECT_EQ(Text(path), Kept(Path("home/program/near/deep/spark.dds")));
    SetMode(RM_RELATIVEPATH, Path("home"));
    EXPECT_TRUE(Locator.FindKnown("beside\\smoke.dds", path));
    EXPECT_EQ(Text(path), Kept(Path("home/beside/smoke.dds")));
    EXPECT_FALSE(Locator.FindKnown("smoke.dds", path));
    SetMode(RM_FULLPATH);
    EXPECT_TRUE(Locator.FindKnown(Path("home/beside/smoke.dds").c_str(), path));
    EXPECT_FALSE(Locator.FindKnown(Path("home/smoke.dds").c_str(), path));
}

TEST_F(ResourceLocator, PrepareNameCutsTheBasePathOff)
{
    SetMode(RM_RELATIVEPATH, Path("home"));
    TString path(Path("home/beside/smoke.dds").c_str());
    EXPECT_TRUE(Locator.PrepareName(path));
    EXPECT_EQ(Text(path), "beside\\smoke.dds");
    path = (Folder.GetFolder() + "/HOME/x.dds").c_str();
    EXPECT_TRUE(Locator.PrepareName(path));
    EXPECT_EQ(Text(path), "x.dds");
    EXPECT_TRUE(Messages().empty());
}

TEST_F(ResourceLocator, AFileOutsideTheBasePathIsRefusedAndItsNameUnchanged)
{
    SetMode(RM_RELATIVEPATH, "/art/base");
    TString path("/art/basement/x.dds");
    EXPECT_FALSE(Locator.PrepareName(path));
    EXPECT_EQ(Text(path), "/art/basement/x.dds");
    EXPECT_EQ(Messages(),
              TNames{"File /art/basement/x.dds does not fall under your resource base path /art/base/"});
}

TEST_F(ResourceLocator, WithoutABasePathEveryFileIsPreparedAndFoundAgain)
{
    SetMode(RM_RELATIVEPATH);
    const std::string file = Path("home/beside/smoke.dds");
    TString name(file.c_str());
    EXPECT_TRUE(Locator.PrepareName(name));
    EXPECT_TRUE(Messages().empty());
    // Nothing is cut off.
    EXPECT_EQ(Text(name), Kept(file));
    EXPECT_EQ(Find(Text(name)), Kept(file));
    TString path;
    EXPECT_TRUE(Locator.FindKnown(name, path));
    EXPECT_EQ(Text(path), Kept(file));
}

TEST_F(ResourceLocator, PrepareNameLeavesAFullPathAlone)
{
    SetMode(RM_FULLPATH);
    TString path("/some/where/x.dds");
    EXPECT_TRUE(Locator.PrepareName(path));
    EXPECT_EQ(Text(path), "/some/where/x.dds");
    EXPECT_TRUE(Known().empty());
}

TEST_F(ResourceLocator, ARelativeNameIsFoundUnderTheBasePath)
{
    SetMode(RM_RELATIVEPATH, Path("home"));
    const std::string expected = Kept(Path("home/beside/smoke.dds"));
    EXPECT_EQ(Find("beside\\smoke.dds"), expected);
    EXPECT_EQ(Find("beside/smoke.dds"), expected);
    EXPECT_EQ(Find("/beside/smoke.dds"), expected);
    EXPECT_EQ(Find("\\beside\\smoke.dds"), expected);
    // Only one separator is skipped: the second stays in the path.
    EXPECT_EQ(Find("//beside/smoke.dds"), Kept(Path("home")) + "\\\\beside\\smoke.dds");
    EXPECT_EQ(Find("smoke.dds"), "");
}

TEST_F(ResourceLocator, ABasePathWithItsSeparatorGetsNoSecondOne)
{
    SetMode(RM_RELATIVEPATH, Path("home/"));
    EXPECT_EQ(Find("beside/smoke.dds"), Kept(Path("home/beside/smoke.dds")));
}

TEST_F(ResourceLocator, AFullPathIsFoundWhereItIs)
{
    SetMode(RM_FULLPATH);
    EXPECT_EQ(Find(Path("home/beside/smoke.dds")), Kept(Path("home/beside/smoke.dds")));
    EXPECT_EQ(Find(Path("home/smoke.dds")), "");
}

TEST_F(ResourceLocator, AHeadlessLocatorReturnsNotFoundWithoutAMessage)
{
    TString path;
    SetMode(RM_RELATIVEPATH, Path("home"));
    EXPECT_EQ(Locator.Find("missing.dds", path), FR_NOTFOUND);
    SetMode(RM_FULLPATH);
    EXPECT_EQ(Locator.Find("/missing.dds", path), FR_NOTFOUND);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(ResourceLocator, SettingsCountOnlyAfterTheyAreReadAgain)
{
    Settings.SetResourceMode(RM_FULLPATH);
    EXPECT_EQ(Find("spark.dds"), Kept(Path("home/program/near/deep/spark.dds")));
    Locator.ReadSettings();
    EXPECT_EQ(Find("spark.dds"), "");
}

TEST_F(ResourceLocator, SearchDirectoriesComeFirstWhateverTheMode)
{
    Make("extra/sub/spark.dds");
    Make("extra/beside/smoke.dds");
    Locator.AddSearchDirectory(Path("extra/").c_str());
    for (const int mode : {RM_LEAFNAME, RM_RELATIVEPATH, RM_FULLPATH}) {
        SetMode(mode, Path("home"));
        EXPECT_EQ(Find("spark.dds"), Kept(Path("extra/sub/spark.dds"))) << mode;
        // A stored path as it stands, then by its leaf.
        EXPECT_EQ(Find("beside\\smoke.dds"), Kept(Path("extra/beside/smoke.dds"))) << mode;
        EXPECT_EQ(Find("c:\\elsewhere\\spark.dds"), Kept(Path("extra/sub/spark.dds"))) << mode;
    }
    // What they give is not what later searches go by.
    EXPECT_TRUE(Known().empty());
}

TEST_F(ResourceLocator, WhatIsMissingIsSearchedForOnceUntilItIsForgotten)
{
    EXPECT_EQ(Find("late.dds"), "");
    Make("home/program/far/late.dds");
    // Only another walk could find it.
    EXPECT_EQ(Find("late.dds"), "");
    EXPECT_EQ(Find("LATE.dds"), Kept(Path("home/program/far/late.dds")));
    Locator.ForgetMissing();
    EXPECT_EQ(Find("late.dds"), Kept(Path("home/program/far/late.dds")));
    // What has come to a known directory is there at once.
    EXPECT_EQ(Find("later.dds"), "");
    Make("home/program/far/later.dds");
    EXPECT_EQ(Find("later.dds"), Kept(Path("home/program/far/later.dds")));
}

TEST_F(ResourceLocator, SearchDirectoriesAreWalkedOnceForWhatIsMissing)
{
    Make("extra/sub/other.dds");
    Locator.AddSearchDirectory(Path("extra").c_str());
    for (const int mode : {RM_LEAFNAME, RM_RELATIVEPATH, RM_FULLPATH}) {
        SetMode(mode, Path("home"));
        const std::string file = "extra/sub/late" + std::to_string(mode) + ".dds";
        const std::string name = "late" + std::to_string(mode) + ".dds";
        EXPECT_EQ(Find(name), "");
        Make(file);
        EXPECT_EQ(Find(name), "") << mode;
        Locator.ForgetMissing();
        EXPECT_EQ(Find(name), Kept(Path(file))) << mode;
    }
}

TEST_F(AskingLocator, ASearchFinishedWithinTwoSecondsShowsNoDialog)
{
    Host.Turn = nullptr;
    EXPECT_EQ(FindNow("spark.dds"), FR_FOUND);
    EXPECT_EQ(Text(Found), Kept(Path("home/program/near/deep/spark.dds")));
    EXPECT_EQ(Known(), TNames{Kept(Path("home/program/near/deep"))});
    EXPECT_EQ(Host.Taken(), (TNames{"begin", "end"}));
    Stop(19);
    EXPECT_EQ(FindNow("nowhere.dds"), FR_NOTFOUND);
    EXPECT_EQ(Host.Taken(), (TNames{"begin", "end"}));
}

TEST_F(AskingLocator, ALongerSearchShowsItsDialogAndRefreshesItThreeTimesASecond)
{
    Now = 5000;
    Stop(27);
    EXPECT_EQ(FindNow("nowhere.dds"), FR_NOTFOUND);
    EXPECT_EQ(Host.Taken(),
              (TNames{"begin", "show 7000nowhere.dds", "list7000", "list7300", "list7600", "end"}));
}

TEST_F(AskingLocator, TheDirectoriesListedAreThoseBeingSearched)
{
    Locator.SetShowDelay(0);
    Host.Turn = [this] { return !Host.Stacks.empty() && Host.Stacks.back().size() > 2 ? SA_STOP : SA_NONE; };
    FindNow("nowhere.dds");
    ASSERT_FALSE(Host.Stacks.empty());
    size_t deepest = 0;
    for (const TNames& stack : Host.Stacks) {
        for (size_t i = 1; i < stack.size(); ++i)
            EXPECT_EQ(stack[i].find(stack[i - 1] + "\\"), 0u) << stack[i];
        deepest = std::max(deepest, stack.size());
    }
    EXPECT_GT(deepest, 2u);
}

TEST_F(AskingLocator, AKnownDirectoryNeedsNoSearch)
{
    Host.Turn = nullptr;
    FindNow("spark.dds");
    Make("home/program/near/deep/other.dds");
    Host.Taken();
    EXPECT_EQ(FindNow("other.dds"), FR_FOUND);
    EXPECT_EQ(Host.Taken(), TNames{});
}

// It lies where no search comes.
TEST_F(AskingLocator, ThePersonsFileEndsTheSearch)
{
    Make(".elsewhere/nowhere.dds");
    Make(".elsewhere/second.dds");
    Host.Choice = Path(".elsewhere/nowhere.dds");
    std::deque<TSearchAnswer> answers = {SA_NONE, SA_LOCATE};
    Host.Turn = [&] {
        const TSearchAnswer answer = answers.empty() ? SA_NONE : answers.front();
        if (!answers.empty())
            answers.pop_front();
        return answer;
    };
    EXPECT_EQ(FindNow("nowhere.dds"), FR_LOCATED);
    EXPECT_EQ(Text(Found), Kept(Path(".elsewhere/nowhere.dds")));
    EXPECT_EQ(Host.Taken(), (TNames{"begin", "Find resource nowhere.dds|*.dds|*.dds|*.*|*.*", "end"}));
    EXPECT_EQ(Known(), TNames{Kept(Path(".elsewhere"))});
    // Its directory is known from now on.
    EXPECT_EQ(FindNow("nowhere.dds"), FR_FOUND);
    EXPECT_EQ(FindNow("second.dds"), FR_FOUND);
    EXPECT_EQ(Host.Taken(), TNames{});
}

TEST_F(AskingLocator, APersonsFileOfAnotherNameIsRememberedForTheRun)
{
    Make(".elsewhere/renamed.dds");
    Host.Choice = Path(".elsewhere/renamed.dds");
    bool asked = false;
    Host.Turn = [&] {
        const TSearchAnswer answer = asked ? SA_NONE : SA_LOCATE;
        asked = true;
        return answer;
    };
    EXPECT_EQ(FindNow("nowhere.dds"), FR_LOCATED);
    Host.Taken();
    EXPECT_EQ(FindNow("NOWHERE.dds"), FR_LOCATED);
    EXPECT_EQ(Text(Found), Kept(Path(".elsewhere/renamed.dds")));
    EXPECT_EQ(Host.Taken(), TNames{});
}

TEST_F(AskingLocator, APersonsFileThatHasGoneIsSearchedForAnew)
{
    Make(".elsewhere/renamed.dds");
    Make(".elsewhere/again.dds");
    Host.Choice = Path(".elsewhere/renamed.dds");
    bool asked = false;
    Host.Turn = [&] {
        const TSearchAnswer answer = asked ? SA_NONE : SA_LOCATE;
        asked = true;
        return answer;
    };
    ASSERT_EQ(FindNow("nowhere.dds"), FR_LOCATED);
    std::filesystem::remove(Path(".elsewhere/renamed.dds"));
    TString path;
    EXPECT_FALSE(Locator.FindKnown("nowhere.dds", path));
    Host.Choice = Path(".elsewhere/again.dds");
    Host.Taken();
    asked = false;
    EXPECT_EQ(FindNow("nowhere.dds"), FR_LOCATED);
    EXPECT_EQ(Text(Found), Kept(Path(".elsewhere/again.dds")));
    EXPECT_EQ(Host.Taken().size(), 3u);
    // The new one stands for it from now on, also once the old one is back.
    Make(".elsewhere/renamed.dds");
    EXPECT_EQ(FindNow("nowhere.dds"), FR_LOCATED);
    EXPECT_EQ(Text(Found), Kept(Path(".elsewhere/again.dds")));
    EXPECT_EQ(Host.Taken(), TNames{});
}

TEST_F(AskingLocator, CancelOfTheChooserLetsTheSearchGoOn)
{
    std::deque<TSearchAnswer> answers = {SA_LOCATE, SA_NONE, SA_LOCATE, SA_STOP};
    Host.Turn = [&] {
        const TSearchAnswer answer = answers.front();
        if (answers.size() > 1)
            answers.pop_front();
        return answer;
    };
    EXPECT_EQ(FindNow("nowhere"), FR_NOTFOUND);
    EXPECT_EQ(Host.Taken(),
              (TNames{"begin", "Find resource nowhere|*.*|*.*", "Find resource nowhere|*.*|*.*", "end"}));
    EXPECT_TRUE(Known().empty());
}

TEST_F(AskingLocator, WhatIsMissingIsSearchedForOnceUntilItIsForgotten)
{
    EXPECT_EQ(FindNow("nowhere.dds"), FR_NOTFOUND);
    Host.Taken();
    EXPECT_EQ(FindNow("nowhere.dds"), FR_NOTFOUND);
    EXPECT_EQ(Host.Taken(), TNames{});
    Locator.ForgetMissing();
    EXPECT_EQ(FindNow("nowhere.dds"), FR_NOTFOUND);
    EXPECT_EQ(Host.Taken(), (TNames{"begin", "end"}));
    Locator.ReadSettings();
    EXPECT_EQ(FindNow("nowhere.dds"), FR_NOTFOUND);
    EXPECT_EQ(Host.Taken(), (TNames{"begin", "end"}));
    // What has come to a known directory is there at once.
    Host.Turn = nullptr;
    FindNow("spark.dds");
    Make("home/program/near/deep/nowhere.dds");
    EXPECT_EQ(FindNow("nowhere.dds"), FR_FOUND);
}

TEST_F(AskingLocator, WhileOneFileIsWaitedForNobodyIsAskedForAnother)
{
    Make("elsewhere/known.dds");
    TString known(Path("elsewhere/known.dds").c_str());
    Locator.PrepareName(known);
    EXPECT_FALSE(Locator.IsAsking());
    Host.Turn = [this] {
        TString path;
        EXPECT_TRUE(Locator.IsAsking());
        EXPECT_EQ(Locator.Find("other.dds", path), FR_NOTFOUND);
        EXPECT_EQ(Locator.Find("known.dds", path), FR_FOUND);
        return SA_STOP;
    };
    EXPECT_EQ(FindNow("nowhere.dds"), FR_NOTFOUND);
    EXPECT_FALSE(Locator.IsAsking());
    EXPECT_EQ(Host.Taken(), (TNames{"begin", "end"}));
    // The other one was not looked for, so it is not missing.
    Stop();
    FindNow("other.dds");
    EXPECT_EQ(Host.Taken(), (TNames{"begin", "end"}));
}

TEST_F(AskingLocator, PathsThatLeadNowhereAreAskedFor)
{
    Make("elsewhere/ash.dds");
    for (const int mode : {RM_RELATIVEPATH, RM_FULLPATH}) {
        SetMode(mode, Path("home"));
        const std::string name = mode == RM_FULLPATH ? Path("home\\ash.dds") : "beside\\ash.dds";
        const std::string chooser = "Find resource " +
                                    (mode == RM_FULLPATH ? Path("home/ash.dds") : "beside/ash.dds") +
                                    "|*.dds|*.dds|*.*|*.*";
        Host.Choice = "";
        EXPECT_EQ(FindNow(name), FR_NOTFOUND);
        EXPECT_EQ(Host.Taken(), TNames{chooser});
        EXPECT_EQ(FindNow(name), FR_NOTFOUND);
        EXPECT_EQ(Host.Taken(), TNames{});
        Locator.ForgetMissing();
        Host.Choice = Path("elsewhere/ash.dds");
        EXPECT_EQ(FindNow(name), FR_LOCATED);
        EXPECT_EQ(Text(Found), Kept(Path("elsewhere/ash.dds")));
        EXPECT_EQ(Host.Taken(), TNames{chooser});
        Host.Choice = "";
        EXPECT_EQ(FindNow(name), FR_LOCATED);
        EXPECT_EQ(Text(Found), Kept(Path("elsewhere/ash.dds")));
        EXPECT_EQ(Host.Taken(), TNames{});
    }
    // Only searches make directories known.
    EXPECT_TRUE(Known().empty());
}

TEST_F(AskingLocator, PathsThatLeadToAFileAreNotAskedFor)
{
    SetMode(RM_RELATIVEPATH, Path("home"));
    EXPECT_EQ(FindNow("beside/smoke.dds"), FR_FOUND);
    SetMode(RM_FULLPATH);
    EXPECT_EQ(FindNow(Path("home/beside/smoke.dds")), FR_FOUND);
    EXPECT_EQ(Host.Taken(), TNames{});
}

TEST_F(AskingLocator, AHeadlessLocatorNeverShowsAChooserAndFindsNothing)
{
    Host.Choice = Path("home/beside/smoke.dds");
    EXPECT_TRUE(Locator.Init(Path("home/program").c_str(), true));
    SetMode(RM_RELATIVEPATH, Path("home"));
    EXPECT_EQ(FindNow("missing.dds"), FR_NOTFOUND);
    SetMode(RM_FULLPATH);
    EXPECT_EQ(FindNow("/missing.dds"), FR_NOTFOUND);
    SetMode(RM_LEAFNAME);
    EXPECT_EQ(FindNow("spark.dds"), FR_FOUND);
    EXPECT_EQ(Host.Taken(), TNames{});
}

TEST_F(ResourceLocator, ASearchThatIsStoppedFindsNothing)
{
    list<TString> known;
    TResourceSearch search("spark.dds", known);
    search.Stop();
    EXPECT_FALSE(search.Run(Kept(Path("home/program")).c_str()));
}

TEST_F(ResourceLocator, ASearchEndsWithTheFileLocated)
{
    list<TString> known;
    TResourceSearch search("spark.dds", known);
    search.Locate("\\elsewhere\\spark.dds");
    EXPECT_TRUE(search.Run(Kept(Path("home/program")).c_str()));
    EXPECT_EQ(Text(search.GetPath()), "\\elsewhere\\spark.dds");
}

TEST_F(ResourceLocator, ASearchLeavesKnownDirectoriesOut)
{
    list<TString> known;
    known.push_back(Kept(Path("home/program/NEAR")).c_str());
    Make("home/beside/spark.dds");
    TResourceSearch search("spark.dds", known);
    EXPECT_TRUE(search.Run(Kept(Path("home/program")).c_str()));
    EXPECT_EQ(Text(search.GetPath()), Kept(Path("home/beside/spark.dds")));
    vector<TString> stack;
    search.GetSearchStack(stack);
    EXPECT_TRUE(stack.empty());
}
