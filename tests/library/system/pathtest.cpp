#include "library/system/path.h"

#include "support/testsupport.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

static std::string System(const std::string& path)
{
    TString result;
    ToSystemPath(path.c_str(), result);
    return Text(result);
}

static std::string Listed(const std::string& path)
{
    vector<TDirectoryEntry> entries;
    if (!ListDirectory(path.c_str(), entries))
        return "failed";
    std::string result;
    for (const TDirectoryEntry& entry : entries)
        result += Text(entry.Name) + (entry.IsDirectory ? "/ " : " ");
    return result;
}

TEST(Path, SeparatorsBecomeTheSystemsOwn)
{
    TTempFolder folder;
    fs::create_directories(folder.Path("a/b"));
    WriteBytes(folder.Path("a/b/c.xml"), "x");
    EXPECT_EQ(System(folder.Path("a\\b\\c.xml")), folder.Path("a/b/c.xml"));
    EXPECT_EQ(System(folder.Path("a\\b/")), folder.Path("a/b/"));
}

TEST(Path, ANameThatDiffersInCaseIsFoundInEveryComponent)
{
    TTempFolder folder;
    fs::create_directories(folder.Path("Nodes/Forces"));
    WriteBytes(folder.Path("Nodes/Forces/Gravity.xml"), "x");
    EXPECT_EQ(System(folder.Path("nodes\\FORCES\\gravity.XML")), folder.Path("Nodes/Forces/Gravity.xml"));
}

TEST(Path, TheExactNameWinsOverOneOfOtherCase)
{
    TTempFolder folder;
    WriteBytes(folder.Path("name"), "1");
    WriteBytes(folder.Path("NAME"), "2");
    EXPECT_EQ(System(folder.Path("name")), folder.Path("name"));
    EXPECT_EQ(System(folder.Path("NAME")), folder.Path("NAME"));
}

TEST(Path, OfSeveralNamesOfOtherCaseTheFirstByBytesIsTaken)
{
    TTempFolder folder;
    WriteBytes(folder.Path("naMe"), "1");
    WriteBytes(folder.Path("NamE"), "2");
    WriteBytes(folder.Path("nAme"), "3");
    EXPECT_EQ(System(folder.Path("name")), folder.Path("NamE"));
}

TEST(Path, TheUnresolvedRestStaysAsGiven)
{
    TTempFolder folder;
    fs::create_directories(folder.Path("Dir"));
    EXPECT_EQ(System(folder.Path("dir\\New\\File.efx")), folder.Path("Dir/New/File.efx"));
    EXPECT_EQ(System(folder.Path("none//x")), folder.Path("none//x"));
}

TEST(Path, OnlyAsciiLettersLoseTheirCase)
{
    TTempFolder folder;
    WriteBytes(folder.Path("\xc3\x84.dds"), "x");
    EXPECT_EQ(System(folder.Path("\xc3\x84.DDS")), folder.Path("\xc3\x84.dds"));
    EXPECT_EQ(System(folder.Path("\xc3\xa4.dds")), folder.Path("\xc3\xa4.dds"));
}

TEST(Path, ARelativeNameIsLookedForInTheWorkingDirectory)
{
    TTempFolder folder;
    WriteBytes(folder.Path("Local.xml"), "x");
    const fs::path before = fs::current_path();
    fs::current_path(folder.GetFolder());
    EXPECT_EQ(System("local.XML"), "Local.xml");
    EXPECT_EQ(System(".\\local.XML"), "./Local.xml");
    fs::current_path(before);
}

TEST(Path, EmptyStaysEmpty)
{
    TString result = "old";
    ToSystemPath("", result);
    EXPECT_TRUE(result.IsEmpty());
    ToSystemPath(nullptr, result);
    EXPECT_TRUE(result.IsEmpty());
}

TEST(Path, TheResultMayBeTheArgument)
{
    TString path = "no\\such\\place";
    ToSystemPath(path, path);
    EXPECT_EQ(Text(path), "no/such/place");
    ToKeptPath(path, path);
    EXPECT_EQ(Text(path), "no\\such\\place");
}

TEST(Path, AFilesPathIsItsDirectoryAndItsNameAlsoAtTheTop)
{
    TString path;
    JoinPath("\\art\\fire", "Spark.dds", path);
    EXPECT_EQ(Text(path), "\\art\\fire\\Spark.dds");
    EXPECT_EQ(Text(GetShownPath(path)), "/art/fire/Spark.dds");
    JoinPath("", "Spark.dds", path);
    EXPECT_EQ(Text(path), "\\Spark.dds");
    EXPECT_STREQ(GetListablePath(""), "\\");
    EXPECT_STREQ(GetListablePath("\\art"), "\\art");
}

TEST(Path, KeptAndShownFormsLookNothingUp)
{
    TTempFolder folder;
    WriteBytes(folder.Path("A"), "x");
    TString result;
    EXPECT_EQ(Text(GetShownPath((folder.GetFolder() + "\\a").c_str())), folder.Path("a"));
    ToKeptPath("x/y\\z", result);
    EXPECT_EQ(Text(result), "x\\y\\z");
}

TEST(Path, ProgramPathIsThisProgram)
{
    TString path;
    GetProgramPath(path);
    EXPECT_EQ(Text(path), fs::read_symlink("/proc/self/exe").string());
}

TEST(Path, DirectoryIsListedWithoutCaseThenByBytes)
{
    TTempFolder folder;
    for (const char* name : {"b", "A", "a", "C", ".hidden", "B2"})
        WriteBytes(folder.Path(name), "x");
    fs::create_directories(folder.Path("bb"));
    EXPECT_EQ(Listed(folder.GetFolder()), ".hidden A a b B2 bb/ C ");
}

TEST(Path, SymbolicLinksAreListedOnlyIfTheyLeadToFiles)
{
    TTempFolder folder;
    WriteBytes(folder.Path("file"), "x");
    fs::create_directories(folder.Path("dir"));
    fs::create_symlink("file", folder.Path("filelink"));
    fs::create_symlink("filelink", folder.Path("again"));
    fs::create_directory_symlink(".", folder.Path("loop"));
    fs::create_symlink("nowhere", folder.Path("broken"));
    fs::create_symlink("circle", folder.Path("circle"));
    fs::create_symlink("/dev/null", folder.Path("device"));
    EXPECT_EQ(Listed(folder.GetFolder()), "again dir/ file filelink ");
}

TEST(Path, OtherFileSystemsAreNotListed)
{
    const std::string listed = " " + Listed("/");
    ASSERT_NE(listed, " failed");
    EXPECT_EQ(listed.find(" proc/ "), std::string::npos);
}

TEST(Path, WhatIsNoDirectoryCannotBeListed)
{
    TTempFolder folder;
    WriteBytes(folder.Path("file"), "x");
    EXPECT_EQ(Listed(folder.Path("file")), "failed");
    EXPECT_EQ(Listed(folder.Path("none")), "failed");
}

TEST(Path, ListingReplacesWhatTheResultHeld)
{
    TTempFolder folder;
    vector<TDirectoryEntry> entries;
    entries.push_back(TDirectoryEntry{"old", false});
    EXPECT_TRUE(ListDirectory(folder.GetFolder().c_str(), entries));
    EXPECT_EQ(entries.size(), 0);
}

TEST(Path, NamesThatBeginSoAreListed)
{
    TTempFolder folder;
    for (const char* name : {"mark-1", "mark-", "Mark-2", "a-mark-3", "mar"})
        WriteBytes(folder.Path(name), "x");
    fs::create_directory(folder.Path("mark-folder"));
    fs::create_symlink("nowhere", folder.Path("mark-link"));
    vector<TString> names;
    names.push_back("old");
    ListNames(folder.GetFolder().c_str(), "mark-", names);
    std::vector<std::string> found;
    for (const TString& name : names)
        found.push_back(Text(name));
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, (std::vector<std::string>{"mark-", "mark-1", "mark-folder", "mark-link"}));
    ListNames(folder.Path("none").c_str(), "", names);
    EXPECT_TRUE(names.empty());
}
