#include "particles/effectgraph/pointermap.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

TEST(TPointerMap, KeepsTheNumberOfTheFirstInsertion)
{
    const int objects[2] = {};
    TPointerMap map;
    EXPECT_EQ(map.Find(&objects[0]), -1);
    EXPECT_FALSE(map.Remove(&objects[0]));
    EXPECT_TRUE(map.Insert(&objects[0], 7));
    EXPECT_FALSE(map.Insert(&objects[0], 8));
    EXPECT_EQ(map.Find(&objects[0]), 7);
    EXPECT_EQ(map.Find(&objects[1]), -1);
    EXPECT_EQ(map.Find(nullptr), -1);
    EXPECT_EQ(map.size(), 1);
}

// Objects that lie close together, so that many of them compete for the same slots.
TEST(TPointerMap, WhatIsRemovedHidesNoOther)
{
    for (unsigned seed = 0; seed < 20; ++seed) {
        std::mt19937 dice(seed);
        const std::vector<char> objects(400);
        TPointerMap map;
        std::map<const void*, int> expected;
        for (int step = 0; step < 4000; ++step) {
            const void* object = &objects[dice() % objects.size()];
            if (dice() % 2 == 0)
                EXPECT_EQ(map.Insert(object, step), expected.emplace(object, step).second);
            else
                EXPECT_EQ(map.Remove(object), expected.erase(object) == 1);
            ASSERT_EQ(map.size(), static_cast<int>(expected.size()));
        }
        for (const char& object : objects) {
            const auto it = expected.find(&object);
            ASSERT_EQ(map.Find(&object), it != expected.end() ? it->second : -1) << seed;
        }
    }
}
