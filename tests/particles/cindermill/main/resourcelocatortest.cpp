#include "support/testsupport.h"

#include "library/system/message.h"
#include "particles/cindermill/main/resourcelocator.h"
#include "particles/cindermill/main/settings.h"
#include "particles/cindermill/main/settingsstore.h"

#include <algorithm>
#include <filesystem>
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

} // namespace

TEST_F(ResourceLocator, FindsALeafBelowTheProgramAndRemembersItsDirectory)
{
    EXPECT_EQ(Find("spark.dds"), Kept(Path("home/program/near/deep/spark.dds")));
    EXPECT_EQ(Known(), TNames{Kept(Path("home/program/near/deep"))});
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
