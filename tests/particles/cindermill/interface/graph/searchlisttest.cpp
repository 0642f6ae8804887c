#include "support/testsupport.h"

#include "particles/cindermill/interface/graph/searchlist.h"

#include <gtest/gtest.h>

namespace {

class SearchList : public testing::Test
{
protected:
    void Add(const char* name, const char* folder = "", const char* help = "")
    {
        TSearchEntry entry;
        entry.Name = name;
        entry.Folder = folder;
        entry.Help = help;
        entry.Item = List.GetNumEntries();
        List.Add(entry);
    }
    std::vector<std::string> Find(const char* text)
    {
        List.Filter(text);
        std::vector<std::string> names;
        for (int i = 0; i < List.GetNumMatches(); ++i)
            names.push_back(List.GetMatch(i).Name.Print());
        return names;
    }
    using TNames = std::vector<std::string>;

    TSearchList List;
};

TEST_F(SearchList, WithoutATextAllEntriesStandAsTheyCame)
{
    Add("Gravity");
    Add("Add");
    EXPECT_EQ(Find(""), (TNames{"Gravity", "Add"}));
    EXPECT_EQ(Find("  "), (TNames{"Gravity", "Add"}));
    EXPECT_EQ(List.GetMatch(1).Item, 1);
}

TEST_F(SearchList, LettersInTheirOrderFindAName)
{
    Add("Gravity");
    Add("Velocity Trail Render Stage");
    EXPECT_EQ(Find("grv"), TNames{"Gravity"});
    EXPECT_EQ(Find("VELTRAIL"), TNames{"Velocity Trail Render Stage"});
    EXPECT_EQ(Find("vtrs"), TNames{"Velocity Trail Render Stage"});
    EXPECT_EQ(Find("yg"), TNames{});
}

TEST_F(SearchList, TheCloserToTheNameTheEarlier)
{
    Add("Collision Plane", "Forces", "Keeps out what would add up");
    Add("Fading");
    Add("Random Add Value");
    Add("Add More");
    Add("Add");
    EXPECT_EQ(Find("add"), (TNames{"Add", "Add More", "Random Add Value", "Collision Plane"}));
    Add("Paddle");
    EXPECT_EQ(Find("add")[3], "Paddle");
}

TEST_F(SearchList, FoldersAndHelpAreSearchedToo)
{
    Add("Gravity", "Forces", "Pulls down");
    Add("Age", "Life", "Counts seconds");
    EXPECT_EQ(Find("forc"), TNames{"Gravity"});
    EXPECT_EQ(Find("seconds"), TNames{"Age"});
    // Of these no scattered letters count.
    EXPECT_EQ(Find("scnds"), TNames{});
}

TEST_F(SearchList, EveryWordMustBeFound)
{
    Add("Scalar Over Life", "Curves");
    Add("Scale Over Life", "Curves");
    Add("Scalar", "Maths");
    EXPECT_EQ(Find("scalar cur"), TNames{"Scalar Over Life"});
    EXPECT_EQ(Find("life sc").size(), 2u);
}

} // namespace
