#include "support/testsupport.h"

#include "library/system/statefolder.h"

#include <cstdlib>
#include <filesystem>

namespace {

// A variable of the environment, put back in the end.
class TVariable
{
public:
    TVariable(const char* name, const char* value) : Name(name)
    {
        const char* before = std::getenv(name);
        WasSet = before != nullptr;
        Before = WasSet ? before : "";
        if (value != nullptr)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~TVariable()
    {
        if (WasSet)
            setenv(Name, Before.c_str(), 1);
        else
            unsetenv(Name);
    }
    TVariable(const TVariable&) = delete;
    TVariable& operator=(const TVariable&) = delete;

private:
    const char* Name;
    bool WasSet;
    std::string Before;
};

std::string StateFolder()
{
    TString path;
    return GetStateFolder(path) ? path.Print() : "none";
}

} // namespace

TEST(StateFolder, IsToldByTheEnvironment)
{
    const TVariable home("HOME", "/home/artist");
    {
        const TVariable state("XDG_STATE_HOME", "/var/state");
        EXPECT_EQ(StateFolder(), "/var/state/cindermill");
    }
    for (const char* none : {static_cast<const char*>(nullptr), "", "relative"}) {
        const TVariable state("XDG_STATE_HOME", none);
        EXPECT_EQ(StateFolder(), "/home/artist/.local/state/cindermill");
    }
    const TVariable state("XDG_STATE_HOME", nullptr);
    const TVariable homeless("HOME", nullptr);
    EXPECT_EQ(StateFolder(), "none");
}

TEST(StateFolder, FoldersAreMadeAsFarAsTheyAreMissing)
{
    const TTempFolder folder;
    EXPECT_TRUE(MakeFolders(folder.Path("a/b/c").c_str()));
    EXPECT_TRUE(std::filesystem::is_directory(folder.Path("a/b/c")));
    EXPECT_TRUE(MakeFolders(folder.Path("a/b/c").c_str()));
    WriteBytes(folder.Path("file"), "");
    EXPECT_FALSE(MakeFolders(folder.Path("file").c_str()));
    EXPECT_FALSE(MakeFolders(folder.Path("file/a").c_str()));
}
