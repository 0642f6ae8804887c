#include "support/testsupport.h"

#include "library/system/clock.h"
#include "particles/cindermill/main/changenotify.h"

#include <chrono>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

uint32_t Now;
std::vector<std::string> Calls;

void Note(const char* path, void* context)
{
    TString leaf;
    leaf.SetFileName(path);
    Calls.push_back(std::string(leaf.Print()) +
                    (context != nullptr ? static_cast<const char*>(context) : ""));
}

class ChangeNotify : public testing::Test
{
public:
    ChangeNotify()
    {
        Now = 10000;
        Calls.clear();
        SetTickCountSource([] { return Now; });
        for (const char* leaf : {"a", "b"})
            WriteBytes(Path(leaf), "old");
        fs::create_directory(Path("sub"));
        WriteBytes(Path("sub/c"), "old");
    }
    ~ChangeNotify() override { SetTickCountSource(nullptr); }

    std::string Path(const std::string& leaf) const { return Folder.Path(leaf); }
    void Add(const std::string& leaf, const char* context = nullptr)
    {
        Notify.Add(Path(leaf).c_str(), &Note, const_cast<char*>(context));
    }
    void Remove(const std::string& leaf, const char* context = nullptr)
    {
        Notify.Remove(Path(leaf).c_str(), &Note, const_cast<char*>(context));
    }
    // Gives the file a time so many seconds later than it has.
    void Touch(const std::string& leaf, int seconds = 2)
    {
        fs::last_write_time(Path(leaf), fs::last_write_time(Path(leaf)) + std::chrono::seconds(seconds));
    }
    // The calls of one poll after 100 milliseconds.
    std::vector<std::string> Poll()
    {
        Now += 100;
        Notify.Poll();
        std::vector<std::string> result;
        result.swap(Calls);
        return result;
    }

    TTempFolder Folder;
    TChangeNotify Notify;
};

using TCalls = std::vector<std::string>;

} // namespace

TEST_F(ChangeNotify, AWrittenFileCallsBackOnce)
{
    Add("a");
    EXPECT_EQ(Poll(), TCalls{});
    Touch("a");
    EXPECT_EQ(Poll(), TCalls{"a"});
    EXPECT_EQ(Poll(), TCalls{});
    Remove("a");
}

TEST_F(ChangeNotify, AFileThatIsReplacedByAnotherCallsBack)
{
    Add("a");
    WriteBytes(Path("new"), "new");
    Touch("new");
    fs::rename(Path("new"), Path("a"));
    EXPECT_EQ(Poll(), TCalls{"a"});
    Remove("a");
}

TEST_F(ChangeNotify, OnlyWatchedFilesCallBack)
{
    Add("a");
    Touch("b");
    EXPECT_EQ(Poll(), TCalls{});
    Remove("a");
}

TEST_F(ChangeNotify, TwoContextsOnOneFileAreBothCalledOnChange)
{
    Add("a", "1");
    Add("a", "2");
    Touch("a");
    EXPECT_EQ(Poll(), (TCalls{"a1", "a2"}));
    Remove("a", "1");
    Touch("a");
    EXPECT_EQ(Poll(), TCalls{"a2"});
    Remove("a", "2");
}

TEST_F(ChangeNotify, ATouchedFileWithAnUnchangedTimeCallsNeither)
{
    Add("a", "1");
    Add("a", "2");
    Touch("a", 0);
    EXPECT_EQ(Poll(), TCalls{});
    Touch("a", -5);
    EXPECT_EQ(Poll(), TCalls{});
    Remove("a", "1");
    Remove("a", "2");
}

TEST_F(ChangeNotify, NothingIsLookedAtBeforeAHundredMilliseconds)
{
    Add("a");
    Poll();
    Touch("a");
    Now += 99;
    Notify.Poll();
    EXPECT_EQ(Calls, TCalls{});
    Now += 1;
    Notify.Poll();
    EXPECT_EQ(Calls, TCalls{"a"});
    Remove("a");
}

TEST_F(ChangeNotify, EachPollLooksAtOneDirectoryInTurn)
{
    Add("sub/c");
    Add("a");
    Add("b");
    Touch("a");
    Touch("b");
    Touch("sub/c");
    TCalls first = Poll();
    TCalls second = Poll();
    EXPECT_EQ(first.size() + second.size(), 3u);
    EXPECT_TRUE(first == TCalls{"c"} || second == TCalls{"c"});
    Touch("a");
    Touch("sub/c");
    EXPECT_EQ(Poll(), first == TCalls{"c"} ? TCalls{"c"} : TCalls{"a"});
    Remove("a");
    Remove("b");
    Remove("sub/c");
}

TEST_F(ChangeNotify, PathsAreComparedWithoutCase)
{
    Add("a", "1");
    std::string other = Path("A");
    for (char& c : other)
        c = c == '/' ? '\\' : c;
    Notify.Add(other.c_str(), &Note, const_cast<char*>("2"));
    Touch("a");
    EXPECT_EQ(Poll(), (TCalls{"a1", "a2"}));
    Remove("A", "1");
    Remove("a", "2");
}

TEST_F(ChangeNotify, RemoveOfAnUnknownEntryAsserts)
{
    EXPECT_EQ(AssertionOf([&] { Remove("a"); }), "found");
    Add("a", "1");
    EXPECT_EQ(AssertionOf([&] { Remove("a", "2"); }), "found");
    EXPECT_EQ(AssertionOf([&] { Remove("b", "1"); }), "found");
    Remove("a", "1");
    EXPECT_EQ(AssertionOf([&] { Remove("a", "1"); }), "found");
}

TEST_F(ChangeNotify, ADirectoryThatIsNotThereIsLoggedAndNotWatched)
{
    const std::string log = LogOf([&] { Add("missing/file"); });
    EXPECT_EQ(log.find("Failed to open a notify handle to "), 0u);
    EXPECT_NE(log.find("Error = 2\n"), std::string::npos);
    EXPECT_EQ(Poll(), TCalls{});
    EXPECT_EQ(AssertionOf([&] { Remove("missing/file"); }), "found");
}

TEST_F(ChangeNotify, ADirectoryThatGoesAndComesBackIsWatchedAgain)
{
    Add("sub/c");
    fs::remove_all(Path("sub"));
    EXPECT_EQ(Poll(), TCalls{});
    fs::create_directory(Path("sub"));
    WriteBytes(Path("sub/c"), "new");
    Touch("sub/c");
    EXPECT_EQ(Poll(), TCalls{"c"});
    Touch("sub/c");
    EXPECT_EQ(Poll(), TCalls{"c"});
    Remove("sub/c");
}

TEST_F(ChangeNotify, ACallbackMayRemoveItselfAndOthers)
{
    struct TRemover
    {
        static void Call(const char* path, void* context)
        {
            static_cast<ChangeNotify*>(context)->Remove("a", "2");
            static_cast<ChangeNotify*>(context)->Notify.Remove(path, &TRemover::Call, context);
        }
    };
    Notify.Add(Path("a").c_str(), &TRemover::Call, this);
    Add("a", "2");
    Touch("a");
    EXPECT_EQ(Poll(), TCalls{});
    Touch("a");
    EXPECT_EQ(Poll(), TCalls{});
}

TEST_F(ChangeNotify, AddTellsWhetherItWatches)
{
    EXPECT_TRUE(Notify.Add(Path("a").c_str(), &Note, nullptr));
    LogOf([&] { EXPECT_FALSE(Notify.Add(Path("missing/file").c_str(), &Note, nullptr)); });
    // A file that is not there yet lies in a directory that is.
    EXPECT_TRUE(Notify.Add(Path("later").c_str(), &Note, nullptr));
    WriteBytes(Path("later"), "new");
    EXPECT_EQ(Poll(), TCalls{"later"});
    Remove("a");
    Remove("later");
}

TEST_F(ChangeNotify, AChangeThatIsTakenIsNotToldAgain)
{
    Add("a");
    Touch("a");
    Notify.TakeChange(Path("a").c_str());
    EXPECT_EQ(Poll(), TCalls{});
    Touch("a");
    EXPECT_EQ(Poll(), TCalls{"a"});
    Notify.TakeChange(Path("b").c_str());
    Remove("a");
}

TEST_F(ChangeNotify, ACallbackThatPollsIsNotCalledOverAgain)
{
    struct TPoller
    {
        static void Call(const char* path, void* context)
        {
            ChangeNotify& test = *static_cast<ChangeNotify*>(context);
            Note(path, nullptr);
            test.Touch("a");
            Now += 100;
            test.Notify.Poll();
        }
    };
    Notify.Add(Path("a").c_str(), &TPoller::Call, this);
    Touch("a");
    EXPECT_EQ(Poll(), TCalls{"a"});
    EXPECT_EQ(Poll(), TCalls{"a"});
    Notify.Remove(Path("a").c_str(), &TPoller::Call, this);
}

TEST_F(ChangeNotify, FilesOfADirectoryAreToldInTheOrderOfTheirNames)
{
    Add("b");
    Add("a");
    Touch("a");
    Touch("b");
    EXPECT_EQ(Poll(), (TCalls{"a", "b"}));
    Remove("a");
    Remove("b");
}
