#include "support/testsupport.h"

#include "library/containers/nametocrc.h"
#include "library/containers/strtoid.h"
#include "particles/effectgraph/usage.h"
#include "particles/effectgraph/valuetype.h"

TEST(NameToCrc, OfKnownTextsIsTheReflectedCrcWithoutFinalInversion)
{
    EXPECT_EQ(NameToCrc("123456789"), ~0xCBF43926u);
    EXPECT_EQ(NameToCrc(""), 0xFFFFFFFFu);
    EXPECT_EQ(NameToCrc(nullptr), 0xFFFFFFFFu);
    EXPECT_NE(NameToCrc("Wind"), NameToCrc("wind"));
}

TEST(Usage, NamesAreTheWordsOfNodeTypeFiles)
{
    EXPECT_STREQ(GetUsageName(TU_TRIGGER), "trigger");
    EXPECT_STREQ(GetUsageName(TU_EFFECT), "effect");
    EXPECT_NE(AssertionOf([] { GetUsageName(5); }), "");
}

TEST(ValueType, TableOfNamesAndSizes)
{
    const char* names[] = {"Scalar", "Scale",     "Vector3",       "Quaternion",
                           "Colour", "Transform", "TextureCoords", "Polytype"};
    const int sizes[] = {4, 8, 12, 12, 16, 24, 16, 0};
    const int rows[] = {1, 2, 3, 4, 4, 6, 4};
    for (int type = 0; type < TY_NUMTYPES; ++type) {
        EXPECT_STREQ(GetTypeName(type), names[type]);
        EXPECT_EQ(GetTypeSize(type), sizes[type]);
        EXPECT_EQ(GetTypeId(type), StrToID(names[type]));
        EXPECT_EQ(FindTypeOfId(StrToID(names[type])), type);
        if (type < TY_POLYTYPE) {
            EXPECT_EQ(GetTypeRows(type), rows[type]);
        }
    }
    EXPECT_EQ(FindTypeOfId(StrToID("No such type")), -1);
}

TEST(ValueType, NamesAndSizesOfUnknownTypesAssert)
{
    EXPECT_EQ(AssertionOf([] { GetTypeName(8); }), "type >= 0 && type < TY_NUMTYPES");
    EXPECT_EQ(AssertionOf([] { GetTypeSize(-1); }), "type >= 0 && type < TY_NUMTYPES");
}

TEST(ValueType, SingleTypeNeedsExactlyOneBit)
{
    EXPECT_EQ(GetSingleType(0), -1);
    EXPECT_EQ(GetSingleType(1), 0);
    EXPECT_EQ(GetSingleType(0x20), 5);
    EXPECT_EQ(GetSingleType(0x21), -1);
    EXPECT_EQ(GetSingleType(0xFFFFFFFFu), -1);
    EXPECT_EQ(GetSingleType(0x80000000u), 31);
}

TEST(ValueType, ConversionTable)
{
    const char* rows[] = {"11111001", "11111001", "11111101", "00010101",
                          "11101001", "00110101", "00000011", "11111111"};
    for (int from = 0; from < TY_NUMTYPES; ++from)
        for (int to = 0; to < TY_NUMTYPES; ++to)
            EXPECT_EQ(CanConvertType(from, to), rows[from][to] == '1') << from << " to " << to;
    EXPECT_FALSE(CanConvertType(-1, 0));
    EXPECT_FALSE(CanConvertType(0, -1));
}

struct TConversion
{
    int From;
    int To;
    std::vector<float> Result;
};

TEST(ValueType, ConvertsEachPair)
{
    const std::vector<float> sources[] = {{2},       {3, 4},       {2, 3, 6},
                                          {5, 6, 7}, {1, 2, 6, 8}, {1, 2, 3, 4, 5, 6}};
    const TConversion table[] = {
        {0, 1, {2, 2}},
        {0, 2, {2, 2, 2}},
        {0, 3, {2, 0, 0}},
        {0, 4, {2, 2, 2, 2}},
        {0, 5, {0, 0, 0, 0, 0, 0}},
        {1, 0, {5}},
        {1, 2, {3, 4, 0}},
        {1, 3, {3, 4, 0}},
        {1, 4, {3, 4, 0, 1}},
        {1, 5, {0, 0, 0, 0, 0, 0}},
        {2, 0, {7}},
        {2, 1, {2, 3}},
        {2, 3, {2, 3, 6}},
        {2, 4, {2, 3, 6, 1}},
        {2, 5, {2, 3, 6, 0, 0, 0}},
        {3, 0, {0}},
        {3, 1, {0, 0}},
        {3, 2, {0, 0, 0}},
        {3, 4, {0, 0, 0, 0}},
        {3, 5, {0, 0, 0, 5, 6, 7}},
        {4, 0, {3}},
        {4, 1, {1, 2}},
        {4, 2, {1, 2, 6}},
        {4, 3, {1, 2, 6}},
        {4, 5, {0, 0, 0, 0, 0, 0}},
        {5, 0, {0}},
        {5, 1, {0, 0}},
        {5, 2, {1, 2, 3}},
        {5, 3, {4, 5, 6}},
        {5, 4, {0, 0, 0, 0}},
    };
    for (const TConversion& conversion : table) {
        float dest[MaxValueFloats] = {9, 9, 9, 9, 9, 9};
        ConvertValue(conversion.From, conversion.To, sources[conversion.From].data(), dest);
        for (int i = 0; i < MaxValueFloats; ++i) {
            const bool isPart = i < static_cast<int>(conversion.Result.size());
            EXPECT_EQ(dest[i], isPart ? conversion.Result[static_cast<size_t>(i)] : 9.0f)
                << conversion.From << " to " << conversion.To << " [" << i << "]";
        }
    }
}

TEST(ValueType, EqualTypesCopy)
{
    const float source[MaxValueFloats] = {1, 2, 3, 4, 5, 6};
    for (int type = 0; type < TY_NUMTYPES; ++type) {
        float dest[MaxValueFloats] = {9, 9, 9, 9, 9, 9};
        ConvertValue(type, type, source, dest);
        for (int i = 0; i < MaxValueFloats; ++i)
            EXPECT_EQ(dest[i], i < GetTypeFloats(type) ? source[i] : 9.0f);
    }
}

TEST(ValueType, TextureCoordsOnOneSideLeaveTheTargetUntouched)
{
    const float source[MaxValueFloats] = {1, 2, 3, 4, 5, 6};
    for (int type = 0; type < TY_NUMTYPES; ++type) {
        if (type == TY_TEXCOORDS)
            continue;
        float dest[MaxValueFloats] = {9, 9, 9, 9, 9, 9};
        ConvertValue(type, TY_TEXCOORDS, source, dest);
        ConvertValue(TY_TEXCOORDS, type, source, dest);
        for (float value : dest)
            EXPECT_EQ(value, 9.0f);
    }
}

TEST(ValueType, ConvertsInPlace)
{
    float value[MaxValueFloats] = {1, 2, 3, 4, 5, 6};
    ConvertValue(TY_TRANSFORM, TY_QUATERNION, value, value);
    EXPECT_EQ(value[0], 4.0f);
    EXPECT_EQ(value[2], 6.0f);
    ConvertValue(TY_QUATERNION, TY_TRANSFORM, value, value);
    EXPECT_EQ(value[0], 0.0f);
    EXPECT_EQ(value[3], 4.0f);
}

TEST(ConvertValue, PassesPlainFloatsOnWithZerosBehind)
{
    for (int from = TY_SCALAR; from < TY_NUMTYPES; ++from) {
        for (int to = TY_SCALAR; to < TY_NUMTYPES; ++to) {
            const float source[MaxValueFloats] = {2, 3, 5, 7, 11, 13};
            float dest[MaxValueFloats] = {};
            ConvertValue(from, to, source, dest);
            int plain = 0;
            while (plain < GetTypeFloats(to) && dest[plain] == source[plain])
                ++plain;
            bool isPlain = true;
            for (int c = plain; c < MaxValueFloats; ++c)
                isPlain = isPlain && dest[c] == 0;
            EXPECT_EQ(GetPlainFloats(from, to), isPlain ? plain : -1)
                << GetTypeName(from) << " " << GetTypeName(to);
        }
    }
    EXPECT_NE(AssertionOf([] { GetPlainFloats(-1, TY_SCALAR); }), "");
    EXPECT_NE(AssertionOf([] { GetPlainFloats(TY_SCALAR, TY_NUMTYPES); }), "");
}
