#include "particles/effectgraph/export/rowmaker.h"

#include "particles/effectgraph/export/exporttestgraph.h"

#include "particles/effectgraph/valuetype.h"

#include <cmath>

namespace {
using TTexts = std::vector<std::string>;

// A row of the conversion, computed from floats.
float ValueOf(const TRowConversion& conversion, int row, const float* source, int sourceFloats)
{
    const double z = sourceFloats > 2 ? source[2] : 0;
    switch (const int from = conversion[row]) {
    case TRowConversion::Zero:
        return 0;
    case TRowConversion::One:
        return 1;
    case TRowConversion::Length:
        return static_cast<float>(
            std::sqrt(double(source[0]) * source[0] + double(source[1]) * source[1] + z * z));
    case TRowConversion::Mean:
        return static_cast<float>((double(source[0]) + source[1] + z) / 3);
    default:
        return source[from];
    }
}
} // namespace

TEST(TRowConversion, RowsAreWhatValuesBecome)
{
    const float source[MaxValueFloats] = {1.5f, -2, 7, 0.25f, 3, -11};
    for (int from = TY_SCALAR; from <= TY_TEXCOORDS; ++from)
        for (int to = TY_SCALAR; to <= TY_TEXCOORDS; ++to) {
            // What has no conversion leaves this.
            float expected[MaxValueFloats] = {};
            ConvertValue(from, to, source, expected);
            const TRowConversion conversion(from, to);
            ASSERT_EQ(conversion.GetNumRows(), GetTypeRows(to));
            for (int row = 0; row < GetTypeFloats(to); ++row)
                EXPECT_EQ(ValueOf(conversion, row, source, GetTypeFloats(from)), expected[row])
                    << GetTypeName(from) << " to " << GetTypeName(to) << ", row " << row;
            EXPECT_EQ(conversion.IsNeeded(), from != to);
            EXPECT_EQ(conversion.Exists(), from == to || (from != TY_TEXCOORDS && to != TY_TEXCOORDS));
            EXPECT_EQ(conversion[GetTypeRows(to)], TRowConversion::Zero);
        }
}

TEST(TRowConversion, AQuaternionsFourthRowIsZero)
{
    for (int from = TY_SCALAR; from <= TY_TRANSFORM; ++from)
        if (from != TY_QUATERNION) {
            EXPECT_EQ(TRowConversion(from, TY_QUATERNION)[3], TRowConversion::Zero);
        }
    EXPECT_EQ(TRowConversion(TY_QUATERNION, TY_QUATERNION)[3], 3);
}

TEST(TRowConversion, KnowsWhichRowsItUses)
{
    const TRowConversion length(TY_SCALE, TY_SCALAR);
    EXPECT_TRUE(length.Uses(0));
    EXPECT_TRUE(length.Uses(1));
    EXPECT_FALSE(length.Uses(2));
    const TRowConversion rotation(TY_TRANSFORM, TY_QUATERNION);
    EXPECT_FALSE(rotation.Uses(2));
    EXPECT_TRUE(rotation.ComesFrom(0, 3));
    EXPECT_FALSE(rotation.ComesFrom(1, 3));
    EXPECT_EQ(TRowConversion(TY_VECTOR3, TY_TRANSFORM).CountSetRows(), 3);
    EXPECT_EQ(TRowConversion(TY_SCALAR, TY_TRANSFORM).CountSetRows(), 0);
    EXPECT_EQ(TRowConversion(TY_VECTOR3, TY_COLOUR).CountSetRows(), 4);
}

TEST(TRowMaker, ConstantsComeFirstAndOnce)
{
    int temps = 5;
    TRowMaker maker(temps);
    const uint32_t source[3] = {1, 2, 3};
    maker.Convert(TRowConversion(TY_VECTOR3, TY_SCALAR), 0, source, 7);
    maker.Convert(TRowConversion(TY_SCALE, TY_SCALAR), 0, source, 8);
    maker.CopyRow(1, 9);
    maker.CopyRow(1, 1);
    maker.SetRow(4, 1);
    maker.SetRow(5, 2);
    maker.CopyRow(2, 10);
    EXPECT_FALSE(maker.IsEmpty());
    TCommandStream stream;
    maker.Flush(stream);
    EXPECT_TRUE(maker.IsEmpty());
    ASSERT_EQ(stream.Commands.size(), 6);
    EXPECT_EQ(CommandText(stream.Commands[0]), "IdConstantEmitter out t5 t6 data 000000003f800000");
    EXPECT_EQ(stream.Commands[1].Name, NameToCrc("IdLength"));
    EXPECT_EQ(CommandText(stream.Commands[1]), "? in 1 2 3 out 7 data 00000000");
    EXPECT_EQ(CommandText(stream.Commands[2]), "? in 1 2 t5 out 8 data 00000000");
    EXPECT_EQ(stream.Commands[3].Name, NameToCrc("IdMul"));
    EXPECT_EQ(CommandText(stream.Commands[3]), "? in 1 t6 out 9");
    EXPECT_EQ(CommandText(stream.Commands[4]), "IdConstantEmitter out 4 5 data 3f80000040000000");
    EXPECT_EQ(CommandText(stream.Commands[5]), "? in 2 t6 out 10");
    EXPECT_EQ(temps, 7);
    maker.CopyRow(3, 11);
    TCommandStream second;
    maker.Flush(second);
    EXPECT_EQ(second.Commands.size(), 1) << "the constant is still there";
}

TEST(TRowMaker, AMeanIsAThirdOfTheSum)
{
    int temps = 1;
    TRowMaker maker(temps);
    const uint32_t source[4] = {1, 2, 3, 4};
    maker.Convert(TRowConversion(TY_COLOUR, TY_SCALAR), 0, source, 7);
    TCommandStream stream;
    maker.Flush(stream);
    ASSERT_EQ(stream.Commands.size(), 4);
    EXPECT_EQ(CommandText(stream.Commands[0]), "IdConstantEmitter out t3 data 3eaaaaab");
    EXPECT_EQ(CommandText(stream.Commands[1]), "IdAdd in 1 2 out t1");
    EXPECT_EQ(CommandText(stream.Commands[2]), "IdAdd in t1 3 out t2");
    EXPECT_EQ(stream.Commands[3].Name, NameToCrc("IdMul"));
    EXPECT_EQ(CommandText(stream.Commands[3]), "? in t2 t3 out 7");
}
