#include "library/maths/matrix4.h"

TMatrix4::TMatrix4() : M{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}} {}

TMatrix4::TMatrix4(const TMatrix43& frame) : TMatrix4()
{
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 3; ++c)
            M[r][c] = frame[r][c];
}

TMatrix4& TMatrix4::operator*=(const TMatrix4& rhs)
{
    ASSERT_TEXT(&rhs != this, "&rhs != this");
    const TMatrix4 old = *this;
    Multiply(rhs, old);
    return *this;
}

void TMatrix4::Multiply(const TMatrix4& a, const TMatrix4& b)
{
    ASSERT_TEXT(&a != this, "&a != this");
    ASSERT_TEXT(&b != this, "&b != this");
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            M[r][c] = static_cast<float>(double(a[r][0]) * b[0][c] + double(a[r][1]) * b[1][c] +
                                         double(a[r][2]) * b[2][c] + double(a[r][3]) * b[3][c]);
}

void TMatrix4::Transpose(const TMatrix4& mtrx)
{
    ASSERT_TEXT(&mtrx != this, "&mtrx != this");
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            M[r][c] = mtrx[c][r];
}

TVector4 TMatrix4::Transform(const TVector4& v) const
{
    TVector4 result;
    for (int c = 0; c < 4; ++c)
        result[c] = static_cast<float>(double(v[0]) * M[0][c] + double(v[1]) * M[1][c] +
                                       double(v[2]) * M[2][c] + double(v[3]) * M[3][c]);
    return result;
}
