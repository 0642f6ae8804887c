#include "particles/cindermill/interface/controls/valuetext.h"

#include "support/testsupport.h"

namespace {

std::string Printed(std::initializer_list<float> numbers)
{
    TString text;
    PrintFloats(text, numbers.begin(), static_cast<int>(numbers.size()));
    return Text(text);
}

bool Reads(const char* text, const std::vector<double>& expected)
{
    std::vector<double> numbers(expected.size());
    return ParseNumbers(text, numbers.data(), static_cast<int>(numbers.size())) && numbers == expected;
}

TEST(ValueText, NumbersArePrintedShortAndExact)
{
    EXPECT_EQ(Printed({1, 0.5f, -3}), "1, 0.5, -3");
    EXPECT_EQ(Printed({0.1f}), "0.1");
    EXPECT_EQ(Printed({}), "");
}

TEST(ValueText, NumbersAreReadAsPeopleWriteThem)
{
    for (const char* text : {"1, 2, 3", "1,2,3", "1 2 3", "1; 2; 3", "(1, 2, 3)", "[1 2 3]", "{1,2,3}",
                             "<1, 2, 3>", " 1.0,\t2e0 , +3 \n"})
        EXPECT_TRUE(Reads(text, {1, 2, 3})) << text;
    EXPECT_TRUE(Reads("-0.25", {-0.25}));
    EXPECT_TRUE(Reads(".5", {0.5}));
}

TEST(ValueText, WhatIsNoSuchValueIsRefused)
{
    for (const char* text : {"", " ", "1", "1, 2, 3, 4", "1,2,3,", ",1,2,3", "1,,2,3", "1, 2, x", "1, 2, 3x",
                             "1, 2, inf", "1, 2, nan", "(1, 2, 3", "1.2.3", "0x1, 2, 3", "()"})
        EXPECT_FALSE(Reads(text, {1, 2, 3})) << text;
    double number = 0;
    EXPECT_FALSE(ParseNumbers(nullptr, &number, 1));
}

TEST(ValueText, SwitchesAreWords)
{
    bool set = false;
    EXPECT_TRUE(ParseSwitch(" True ", set));
    EXPECT_TRUE(set);
    EXPECT_TRUE(ParseSwitch("0", set));
    EXPECT_FALSE(set);
    EXPECT_TRUE(ParseSwitch("1", set));
    EXPECT_TRUE(set);
    EXPECT_TRUE(ParseSwitch("FALSE", set));
    EXPECT_FALSE(set);
    for (const char* text : {"", "yes", "2", "tru"})
        EXPECT_FALSE(ParseSwitch(text, set)) << text;
    EXPECT_FALSE(ParseSwitch(nullptr, set));
}

} // namespace
