#include "library/maths/matrix3.h"

#include "library/maths/matrix43.h"

#include <cmath>

TMatrix3::TMatrix3() : M{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}} {}

TMatrix3::TMatrix3(const TMatrix43& frame)
{
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            M[r][c] = frame[r][c];
}

TMatrix3& TMatrix3::operator*=(const TMatrix3& a)
{
    ASSERT_TEXT(&a != this, "&a != this");
    const TMatrix3 old = *this;
    Multiply(a, old);
    return *this;
}

void TMatrix3::Multiply(const TMatrix3& a, const TMatrix3& b)
{
    ASSERT_TEXT(&a != this, "&a != this");
    ASSERT_TEXT(&b != this, "&b != this");
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            M[r][c] = static_cast<float>(double(a[r][0]) * b[0][c] + double(a[r][1]) * b[1][c] +
                                         double(a[r][2]) * b[2][c]);
}

void TMatrix3::Transpose(const TMatrix3& mtrx)
{
    ASSERT_TEXT(&mtrx != this, "&mtrx != this");
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            M[r][c] = mtrx[c][r];
}

float TMatrix3::GetDeterminant() const
{
    return static_cast<float>(M[0][0] * (double(M[1][1]) * M[2][2] - double(M[1][2]) * M[2][1]) -
                              M[0][1] * (double(M[1][0]) * M[2][2] - double(M[1][2]) * M[2][0]) +
                              M[0][2] * (double(M[1][0]) * M[2][1] - double(M[1][1]) * M[2][0]));
}

void TMatrix3::Invert()
{
    const float det = GetDeterminant();
    ASSERT_TEXT(std::fabs(det) > 1e-20, "FAbs(det) > 1e-20");
    const TMatrix3 m = *this;
    // The cofactors by cyclic indices carry their signs in them.
    for (int r = 0; r < 3; ++r) {
        const int r1 = (r + 1) % 3;
        const int r2 = (r + 2) % 3;
        for (int c = 0; c < 3; ++c) {
            const int c1 = (c + 1) % 3;
            const int c2 = (c + 2) % 3;
            M[r][c] =
                static_cast<float>((double(m[c1][r1]) * m[c2][r2] - double(m[c1][r2]) * m[c2][r1]) / det);
        }
    }
}

TVector3 TMatrix3::Transform(const TVector3& v) const
{
    TVector3 result;
    for (int c = 0; c < 3; ++c)
        result[c] =
            static_cast<float>(double(v[0]) * M[0][c] + double(v[1]) * M[1][c] + double(v[2]) * M[2][c]);
    return result;
}
