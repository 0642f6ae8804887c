#include "support/testsupport.h"

#include "library/containers/hashindex.h"
#include "library/containers/string.h"

#include <string>
#include <vector>

namespace {

std::vector<int> ItemsOf(const THashIndex& index, uint32_t hash)
{
    std::vector<int> items;
    for (int item = index.FindFirst(hash); item != -1; item = index.FindNext(item))
        items.push_back(item);
    return items;
}

} // namespace

TEST(HashIndex, ItemsOfAHashComeInTheirOrder)
{
    THashIndex index(1000);
    for (int i = 0; i < 1000; ++i)
        index.Add(i, static_cast<uint32_t>(i % 10));
    std::vector<int> expected;
    for (int i = 3; i < 1000; i += 10)
        expected.push_back(i);
    EXPECT_EQ(ItemsOf(index, 3), expected);
    EXPECT_EQ(ItemsOf(index, 10), std::vector<int>());
}

TEST(HashIndex, HashesThatShareAChainAreKeptApart)
{
    // With so few items the chains are told apart by the lowest bits only.
    THashIndex index(4);
    index.Add(0, 1);
    index.Add(1, 1u << 20 | 1);
    index.Add(2, 1);
    index.Add(3, 1u << 21 | 1);
    EXPECT_EQ(ItemsOf(index, 1), (std::vector<int>{0, 2}));
    EXPECT_EQ(ItemsOf(index, 1u << 20 | 1), std::vector<int>{1});
    EXPECT_EQ(ItemsOf(index, 1u << 22 | 1), std::vector<int>());
}

TEST(HashIndex, WhatIsRemovedIsFoundNoMore)
{
    for (int first = 0; first < 3; ++first) {
        THashIndex index(4);
        for (int i = 0; i < 3; ++i)
            index.Add(i, 7);
        index.Remove(first);
        std::vector<int> expected = {0, 1, 2};
        expected.erase(expected.begin() + first);
        EXPECT_EQ(ItemsOf(index, 7), expected);
        index.Add(3, 7);
        expected.push_back(3);
        EXPECT_EQ(ItemsOf(index, 7), expected);
    }
}

TEST(HashIndex, TheFirstThatIsMeantIsFound)
{
    const std::vector<std::string> names = {"One", "two", "ONE", "three", "one"};
    THashIndex index(static_cast<int>(names.size()));
    for (size_t i = 0; i < names.size(); ++i)
        index.Add(static_cast<int>(i), HashText(names[i].c_str()));
    const auto find = [&](const char* name) {
        return index.Find(HashText(name), [&](int i) {
            return CompareText(names[static_cast<size_t>(i)].c_str(), name) == 0;
        });
    };
    EXPECT_EQ(find("oNe"), 0);
    EXPECT_EQ(find("THREE"), 3);
    EXPECT_EQ(find("four"), -1);
    index.Remove(0);
    EXPECT_EQ(find("one"), 2);
}

TEST(HashIndex, TextsThatAreEqualWithoutCaseHaveOneHash)
{
    EXPECT_EQ(HashText("Emission Trigger"), HashText("EMISSION trigger"));
    EXPECT_EQ(HashText(nullptr), HashText(""));
    EXPECT_NE(HashText("a"), HashText("b"));
    // As in comparisons, only the letters of ASCII have two cases.
    EXPECT_NE(HashText("@"), HashText("`"));
    EXPECT_NE(HashText("\xE4"), HashText("\xC4"));
}

TEST(HashIndex, AnEmptyOneFindsNothing)
{
    const THashIndex index(0);
    EXPECT_EQ(index.FindFirst(0), -1);
}
