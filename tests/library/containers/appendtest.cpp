#include "library/containers/append.h"

#include <gtest/gtest.h>
#include <string>

TEST(Append, DoublesTheRoom)
{
    vector<int> numbers;
    int growths = 0;
    for (int i = 0; i < 100000; ++i) {
        const int before = numbers.capacity();
        Append(numbers, i);
        growths += numbers.capacity() != before ? 1 : 0;
    }
    EXPECT_EQ(numbers.size(), 100000);
    EXPECT_EQ(numbers[99999], 99999);
    EXPECT_LE(growths, 20);
}

TEST(Append, LeavesTheVectorsOwnGrowthAlone)
{
    vector<int> numbers;
    for (int i = 0; i < 9; ++i)
        numbers.push_back(i);
    EXPECT_EQ(numbers.capacity(), 16);
}

// The value that is appended may lie in the block that gives way.
TEST(Append, TakesAnElementOfTheVectorItself)
{
    vector<std::string> words;
    Append(words, "a word that is too long for a short string's own room");
    while (words.size() < 100)
        Append(words, words[0]);
    for (const std::string& word : words)
        EXPECT_EQ(word, words[0]);
}

TEST(Append, ExtendsByMany)
{
    vector<char> text;
    for (int i = 0; i < 1000; ++i) {
        char* to = Extend(text, 3);
        to[0] = 'a';
        to[1] = 'b';
        to[2] = 'c';
    }
    EXPECT_EQ(text.size(), 3000);
    EXPECT_EQ(std::string(text.begin(), text.end()).substr(2994), "abcabc");
    char* end = Extend(text, 0);
    EXPECT_EQ(end, text.end());
}

TEST(Append, MakesRoomForAtLeastWhatIsAskedFor)
{
    vector<int> numbers;
    MakeRoom(numbers, 500);
    EXPECT_GE(numbers.capacity(), 500);
    const int capacity = numbers.capacity();
    MakeRoom(numbers, 400);
    EXPECT_EQ(numbers.capacity(), capacity);
}
