#include "library/maths/matrix3.h"
#include "library/maths/matrix4.h"
#include "library/maths/matrix43.h"
#include "library/maths/quaternion.h"
#include "library/maths/scalar.h"
#include "library/maths/vector2.h"
#include "library/maths/vector3.h"
#include "library/maths/vector4.h"
#include "support/testsupport.h"

#include <cmath>
#include <limits>

namespace {

constexpr float Pi = 3.1415927f;
constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr float Infinity = std::numeric_limits<float>::infinity();

void ExpectNear(const TVector3& v, float x, float y, float z)
{
    EXPECT_NEAR(v[0], x, 1e-6);
    EXPECT_NEAR(v[1], y, 1e-6);
    EXPECT_NEAR(v[2], z, 1e-6);
}

template <class TMatrix>
void Fill(TMatrix& m, int rows, int columns, float seed)
{
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < columns; ++c)
            m[r][c] = std::sin(seed + static_cast<float>(r * columns + c));
}

TMatrix43 Frame(float x, float y, float z, const TVector3& translation)
{
    TMatrix43 result;
    result.SetRotation(x, y, z);
    result.SetTranslation(translation);
    return result;
}

} // namespace

TEST(Scalar, FloatToIntTruncatesAndCatchesWhatDoesNotFit)
{
    const struct
    {
        double Value;
        int32_t Result;
    } table[] = {
        {1.9, 1},
        {-1.9, -1},
        {0.0, 0},
        {2147483647.0, INT32_MAX},
        {2147483647.9, INT32_MAX},
        {2147483648.0, INT32_MIN},
        {-2147483648.0, INT32_MIN},
        {-2147483648.9, INT32_MIN},
        {-1e30, INT32_MIN},
        {1e30, INT32_MIN},
        {double(NaN), INT32_MIN},
        {double(Infinity), INT32_MIN},
        {-double(Infinity), INT32_MIN},
    };
    for (const auto& row : table)
        EXPECT_EQ(FloatToInt(row.Value), row.Result) << row.Value;
}

TEST(Scalar, DegreesToRadiansIsSinglePrecision)
{
    EXPECT_EQ(DegreesToRadians, 0.017453292f);
    EXPECT_EQ(180 * DegreesToRadians, 3.1415927f);
}

TEST(Vector3, UsualOperators)
{
    const TVector3 a(1, 2, 3);
    const TVector3 b(4, -5, 6);
    EXPECT_EQ(a + b, TVector3(5, -3, 9));
    EXPECT_EQ(a - b, TVector3(-3, 7, -3));
    EXPECT_EQ(-a, TVector3(-1, -2, -3));
    EXPECT_EQ(a * 2, TVector3(2, 4, 6));
    EXPECT_EQ(2 * a, TVector3(2, 4, 6));
    EXPECT_EQ(a / 2, TVector3(0.5f, 1, 1.5f));
    EXPECT_NE(a, b);
    EXPECT_EQ(Dot(a, b), 12);
    EXPECT_EQ(Cross(a, b), TVector3(27, 6, -13));
    EXPECT_EQ(Cross(TVector3(1, 0, 0), TVector3(0, 1, 0)), TVector3(0, 0, 1));
    EXPECT_EQ(TVector3(2, 3, 6).Length(), 7);
    EXPECT_EQ(TVector3(2, 3, 6).LengthSquared(), 49);
    TVector3 unit(2, 3, 6);
    unit.Normalise();
    EXPECT_EQ(unit, TVector3(2.0f / 7, 3.0f / 7, 6.0f / 7));
    EXPECT_EQ(TVector3(), TVector3(0, 0, 0));
}

TEST(Vector3, SumsAreFormedInDoublesAndStoredOnce)
{
    const TVector3 a(1e8f, 1, -1e8f);
    EXPECT_EQ(Dot(a, TVector3(1, 1, 1)), 1);
    EXPECT_EQ(TVector3(1e30f, 0, 0).Length(), 1e30f);
}

TEST(Vector3, FromFourDividesByW)
{
    EXPECT_EQ(TVector3(TVector4(2, 4, 6, 2)), TVector3(1, 2, 3));
    EXPECT_EQ(AssertionOf([] { TVector3(TVector4(1, 1, 1, 0)); }), "rhs.Component[3] != 0");
    EXPECT_EQ(AssertionOf([] { TVector3(TVector4(1, 1, 1, -0.0f)); }), "rhs.Component[3] != 0");
}

TEST(Vector2And4, UsualOperators)
{
    EXPECT_EQ(TVector2(1, 2) + TVector2(3, 4), TVector2(4, 6));
    EXPECT_EQ(TVector2(1, 2) - TVector2(3, 5), TVector2(-2, -3));
    EXPECT_EQ(TVector2(3, 4).Length(), 5);
    EXPECT_EQ(Dot(TVector2(1, 2), TVector2(3, 4)), 11);
    EXPECT_EQ(TVector4(1, 2, 3, 4) * 2, TVector4(2, 4, 6, 8));
    EXPECT_EQ(TVector4(2, 4, 6, 8) / 2, TVector4(1, 2, 3, 4));
    EXPECT_EQ(-TVector4(1, 2, 3, 4), TVector4(-1, -2, -3, -4));
    EXPECT_EQ(Dot(TVector4(1, 2, 3, 4), TVector4(1, 1, 1, 1)), 10);
    TVector4 v(1, 1, 1, 1);
    v.Normalise();
    EXPECT_EQ(v, TVector4(0.5f, 0.5f, 0.5f, 0.5f));
}

TEST(Matrix43, RotatingXByTheZMatrixAtNinetyDegreesGivesMinusY)
{
    TMatrix43 m;
    m.SetRotationZ(90 * DegreesToRadians);
    ExpectNear(m.TransformPoint(TVector3(1, 0, 0)), 0, -1, 0);
}

TEST(Matrix43, SingleAxisRotationRows)
{
    const float r = 0.3f;
    const float c = static_cast<float>(std::cos(double(r)));
    const float s = static_cast<float>(std::sin(double(r)));
    const float expected[3][3][3] = {{{1, 0, 0}, {0, c, -s}, {0, s, c}},
                                     {{c, 0, -s}, {0, 1, 0}, {s, 0, c}},
                                     {{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
    for (int axis = 0; axis < 3; ++axis) {
        TMatrix43 m;
        m.SetTranslation(TVector3(1, 2, 3));
        if (axis == 0)
            m.SetRotationX(r);
        else if (axis == 1)
            m.SetRotationY(r);
        else
            m.SetRotationZ(r);
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 3; ++column)
                EXPECT_EQ(m[row][column], expected[axis][row][column]) << axis << row << column;
        EXPECT_EQ(m.GetTranslation(), TVector3(0, 0, 0));
    }
}

TEST(Matrix43, TheRightSideOfAProductActsFirst)
{
    TMatrix43 scale;
    scale.SetScale(2, 3, 4);
    TMatrix43 frame = Frame(0, 0, 90 * DegreesToRadians, TVector3(10, 20, 30));
    frame *= scale;
    // (1, 1, 1) is scaled to (2, 3, 4), then turned to (3, -2, 4), then moved.
    ExpectNear(frame.TransformPoint(TVector3(1, 1, 1)), 13, 18, 34);
    ExpectNear(frame.TransformDirection(TVector3(1, 1, 1)), 3, -2, 4);
    TMatrix43 moved;
    moved.SetScale(2, 2, 2);
    TMatrix43 translation;
    translation.SetTranslation(TVector3(1, 2, 3));
    moved *= translation;
    EXPECT_EQ(moved.GetTranslation(), TVector3(2, 4, 6));
}

TEST(Matrix43, ProductKeepsAnInfiniteTranslationOutOfTheBasis)
{
    TMatrix43 a;
    a.SetTranslation(TVector3(Infinity, NaN, 0));
    const TMatrix43 turn = Frame(0.1f, 0.2f, 0.3f, TVector3());
    a *= turn;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            EXPECT_EQ(a[r][c], turn[r][c]);
}

TEST(Matrix43, ProductsAssertTheirOperands)
{
    TMatrix43 m;
    const TMatrix43 other;
    EXPECT_EQ(AssertionOf([&] { m *= m; }), "&rhs != this");
    EXPECT_EQ(AssertionOf([&] { m.Multiply(m, other); }), "&a != this");
    EXPECT_EQ(AssertionOf([&] { m.Multiply(other, m); }), "&b != this");
}

TEST(Matrix43, SetRotationAppliesZThenYThenX)
{
    const float x = 0.3f;
    const float y = -0.7f;
    const float z = 1.1f;
    TMatrix43 expected;
    expected.SetRotationX(x);
    TMatrix43 factor;
    factor.SetRotationY(y);
    expected *= factor;
    factor.SetRotationZ(z);
    expected *= factor;
    TMatrix43 m;
    m.SetTranslation(TVector3(1, 2, 3));
    m.SetRotation(x, y, z);
    EXPECT_EQ(m, expected);
    TMatrix43 step;
    step.SetRotationZ(z);
    TVector3 v = step.TransformPoint(TVector3(1, 2, 3));
    step.SetRotationY(y);
    v = step.TransformPoint(v);
    step.SetRotationX(x);
    v = step.TransformPoint(v);
    ExpectNear(m.TransformPoint(TVector3(1, 2, 3)), v[0], v[1], v[2]);
}

TEST(Matrix43, GetRotationReadsTheAnglesBack)
{
    for (const float x : {-1.4f, 0.0f, 0.9f})
        for (const float y : {-1.2f, 0.0f, 1.3f})
            for (const float z : {-0.5f, 0.0f, 1.5f}) {
                TMatrix43 m;
                m.SetRotation(x, y, z);
                float a = 9;
                float b = 9;
                float c = 9;
                m.GetRotation(a, b, c);
                EXPECT_NEAR(a, x, 2e-5);
                EXPECT_NEAR(b, y, 2e-5);
                EXPECT_NEAR(c, z, 2e-5);
            }
}

TEST(Matrix43, GetRotationReadsQuarterTurnsBackWhateverWayTheyAreRounded)
{
    for (int degrees = -89; degrees <= 89; ++degrees)
        for (const float turn : {-90.0f, 90.0f}) {
            const float y = static_cast<float>(degrees) * DegreesToRadians;
            const float quarter = turn * DegreesToRadians;
            float a = 9;
            float b = 9;
            float c = 9;
            TMatrix43 m;
            m.SetRotation(quarter, y, 0);
            m.GetRotation(a, b, c);
            EXPECT_NEAR(a, quarter, 0.03) << degrees;
            EXPECT_NEAR(b, y, 1e-4) << degrees;
            m.SetRotation(0, y, quarter);
            m.GetRotation(a, b, c);
            EXPECT_NEAR(c, quarter, 0.03) << degrees;
        }
}

TEST(Matrix43, GetRotationDoesNoTestForAGimbalLock)
{
    TMatrix43 m;
    m[2][0] = 1;
    m[2][1] = 0;
    m[1][0] = 0;
    float x = 0;
    float y = 0;
    float z = 0;
    m.GetRotation(x, y, z);
    EXPECT_TRUE(std::isnan(x));
    EXPECT_FLOAT_EQ(y, Pi / 2);
    EXPECT_TRUE(std::isnan(z));
}

TEST(Matrix43, InvertUndoesTheFrame)
{
    TMatrix43 m = Frame(0.4f, -0.2f, 0.9f, TVector3(5, -6, 7));
    TMatrix43 scale;
    scale.SetScale(2, 0.5f, 3);
    m *= scale;
    TMatrix43 inverse = m;
    ASSERT_TRUE(inverse.Invert());
    const TVector3 v = inverse.TransformPoint(m.TransformPoint(TVector3(1, 2, 3)));
    EXPECT_NEAR(v[0], 1, 1e-5);
    EXPECT_NEAR(v[1], 2, 1e-5);
    EXPECT_NEAR(v[2], 3, 1e-5);
}

TEST(Matrix43, WithoutAnInverseStaysUnchanged)
{
    const struct
    {
        float Scale;
        bool Invertible;
    } table[] = {{0, false}, {1e-7f, false}, {1e-6f, true}, {NaN, false}, {Infinity, false}};
    for (const auto& row : table) {
        TMatrix43 m;
        m.SetScale(row.Scale, row.Scale, row.Scale);
        m.SetTranslation(TVector3(1, 2, 3));
        EXPECT_EQ(m.Invert(), row.Invertible) << row.Scale;
        if (!row.Invertible) {
            EXPECT_EQ(m.GetTranslation(), TVector3(1, 2, 3));
        }
    }
}

TEST(Matrix3, ProductTransposeAndTransform)
{
    TMatrix3 a;
    TMatrix3 b;
    Fill(a, 3, 3, 0.5f);
    Fill(b, 3, 3, 2.5f);
    TMatrix3 product;
    product.Multiply(a, b);
    const TVector3 v(1, 2, 3);
    const TVector3 expected = b.Transform(a.Transform(v));
    const TVector3 result = product.Transform(v);
    ExpectNear(result, expected[0], expected[1], expected[2]);
    TMatrix3 inPlace = b;
    inPlace *= a;
    EXPECT_EQ(inPlace, product);
    TMatrix3 transposed;
    transposed.Transpose(a);
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            EXPECT_EQ(transposed[r][c], a[c][r]);
    EXPECT_EQ(AssertionOf([&] { a *= a; }), "&a != this");
    EXPECT_EQ(AssertionOf([&] { a.Multiply(a, b); }), "&a != this");
    EXPECT_EQ(AssertionOf([&] { a.Multiply(b, a); }), "&b != this");
    EXPECT_EQ(AssertionOf([&] { a.Transpose(a); }), "&mtrx != this");
}

TEST(Matrix3, InvertIsTheAdjugateOverTheDeterminant)
{
    TMatrix3 m;
    const float rows[3][3] = {{2, 1, 0}, {0, 3, 1}, {1, 0, 4}};
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            m[r][c] = rows[r][c];
    EXPECT_EQ(m.GetDeterminant(), 25);
    m.Invert();
    const float adjugate[3][3] = {{12, -4, 1}, {1, 8, -2}, {-3, 1, 6}};
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            EXPECT_EQ(m[r][c], adjugate[r][c] / 25) << r << c;
}

TEST(Matrix3, InvertAssertsTheDeterminant)
{
    TMatrix3 m;
    m[2][2] = 0;
    EXPECT_EQ(AssertionOf([&] { m.Invert(); }), "FAbs(det) > 1e-20");
    m[2][2] = 1e-20f;
    EXPECT_EQ(AssertionOf([&] { m.Invert(); }), "FAbs(det) > 1e-20");
    m[2][2] = NaN;
    EXPECT_EQ(AssertionOf([&] { m.Invert(); }), "FAbs(det) > 1e-20");
    m[2][2] = -2e-20f;
    EXPECT_EQ(AssertionOf([&] { m.Invert(); }), "");
}

TEST(Matrix4, ProductsAndTransform)
{
    TMatrix4 a;
    TMatrix4 b;
    Fill(a, 4, 4, 0.5f);
    Fill(b, 4, 4, 2.5f);
    TMatrix4 product;
    product.Multiply(a, b);
    const TVector4 v(1, 2, 3, 4);
    const TVector4 expected = b.Transform(a.Transform(v));
    const TVector4 result = product.Transform(v);
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(result[i], expected[i], 1e-5);
    TMatrix4 inPlace = b;
    inPlace *= a;
    EXPECT_EQ(inPlace, product);
    EXPECT_EQ(AssertionOf([&] { a *= a; }), "&rhs != this");
    EXPECT_EQ(AssertionOf([&] { a.Multiply(a, b); }), "&a != this");
    EXPECT_EQ(AssertionOf([&] { a.Multiply(b, a); }), "&b != this");
    EXPECT_EQ(AssertionOf([&] { a.Transpose(a); }), "&mtrx != this");
    const TMatrix43 frame = Frame(0.1f, 0.2f, 0.3f, TVector3(4, 5, 6));
    const TVector4 point = TMatrix4(frame).Transform(TVector4(1, 2, 3, 1));
    EXPECT_EQ(TVector3(point), frame.TransformPoint(TVector3(1, 2, 3)));
    EXPECT_EQ(point[3], 1);
}

TEST(Quaternion, FromAxisAndAngleIsNormalised)
{
    const TQuaternion q(TVector3(0, 0, 1), Pi / 2);
    EXPECT_NEAR(q[2], std::sin(Pi / 4), 1e-6);
    EXPECT_NEAR(q[3], std::cos(Pi / 4), 1e-6);
    const TQuaternion longAxis(TVector3(0, 3, 0), Pi / 2);
    EXPECT_NEAR(longAxis.Length(), 1, 1e-6);
    EXPECT_NEAR(longAxis[1] / longAxis[3], 3, 1e-5);
}

TEST(Quaternion, InverseTable)
{
    EXPECT_EQ(TQuaternion(1, 2, 3, 4).GetInverse(),
              TQuaternion(-1.0f / 30, -2.0f / 30, -3.0f / 30, 4.0f / 30));
    const TQuaternion q(TVector3(1, 2, 3), 0.8f);
    const TQuaternion one = q * q.GetInverse();
    EXPECT_NEAR(one[0], 0, 1e-6);
    EXPECT_NEAR(one[1], 0, 1e-6);
    EXPECT_NEAR(one[2], 0, 1e-6);
    EXPECT_NEAR(one[3], 1, 1e-6);
}

TEST(Quaternion, InverseOfAZeroQuaternionAsserts)
{
    EXPECT_EQ(AssertionOf([] { TQuaternion(0, 0, 0, 0).GetInverse(); }), "c > 1e-6");
    EXPECT_EQ(AssertionOf([] { TQuaternion(0, 0, 0, 0.0009f).GetInverse(); }), "c > 1e-6");
    EXPECT_EQ(AssertionOf([] { TQuaternion(0, 0, 0, 0.0011f).GetInverse(); }), "");
}

TEST(Quaternion, FromAMatrixWithAPositiveTrace)
{
    TMatrix43 frame;
    frame.SetRotationZ(Pi / 2);
    const TQuaternion q{TMatrix3(frame)};
    EXPECT_NEAR(q[0], 0, 1e-6);
    EXPECT_NEAR(q[1], 0, 1e-6);
    EXPECT_NEAR(q[2], -std::sin(Pi / 4), 1e-6);
    EXPECT_NEAR(q[3], std::cos(Pi / 4), 1e-6);
    EXPECT_EQ(TQuaternion(TMatrix3()), TQuaternion(0, 0, 0, 1));
}

TEST(Quaternion, FromAMatrixTakesTheGreatestDiagonalElement)
{
    for (int axis = 0; axis < 3; ++axis) {
        TMatrix3 m;
        for (int i = 0; i < 3; ++i)
            m[i][i] = i == axis ? 1.0f : -1.0f;
        const TQuaternion q(m);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(q[i], i == axis ? 1.0f : 0.0f) << axis << i;
    }
    TMatrix3 zero;
    for (int i = 0; i < 3; ++i)
        zero[i][i] = 0;
    zero[0][1] = 0.25f;
    zero[1][0] = 0.5f;
    zero[1][2] = 1;
    EXPECT_EQ(TQuaternion(zero), TQuaternion(0.5f, 0.375f, 0, 0.5f));
}

TEST(Quaternion, MatrixAndBack)
{
    for (const float x : {-1.4f, 0.3f, 3.0f})
        for (const float z : {-3.0f, 0.1f, 1.5f}) {
            TMatrix43 frame;
            frame.SetRotation(x, 0.4f, z);
            const TMatrix3 m(frame);
            const TMatrix3 back = TQuaternion(m).GetMatrix();
            for (int r = 0; r < 3; ++r)
                for (int c = 0; c < 3; ++c)
                    EXPECT_NEAR(back[r][c], m[r][c], 1e-6);
        }
}
