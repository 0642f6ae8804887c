#include "library/maths/matrix43.h"

#include "library/maths/matrix3.h"

#include <cmath>

TMatrix43::TMatrix43() : M{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}} {}

TMatrix43& TMatrix43::operator*=(const TMatrix43& rhs)
{
    ASSERT_TEXT(&rhs != this, "&rhs != this");
    const TMatrix43 old = *this;
    Multiply(rhs, old);
    return *this;
}

void TMatrix43::Multiply(const TMatrix43& a, const TMatrix43& b)
{
    ASSERT_TEXT(&a != this, "&a != this");
    ASSERT_TEXT(&b != this, "&b != this");
    for (int c = 0; c < 3; ++c) {
        for (int r = 0; r < 3; ++r)
            M[r][c] = static_cast<float>(double(a[r][0]) * b[0][c] + double(a[r][1]) * b[1][c] +
                                         double(a[r][2]) * b[2][c]);
        M[3][c] = static_cast<float>(double(a[3][0]) * b[0][c] + double(a[3][1]) * b[1][c] +
                                     double(a[3][2]) * b[2][c] + b[3][c]);
    }
}

void TMatrix43::SetRotationX(float r)
{
    const float c = static_cast<float>(std::cos(double(r)));
    const float s = static_cast<float>(std::sin(double(r)));
    SetRows({1, 0, 0}, {0, c, -s}, {0, s, c});
}

void TMatrix43::SetRotationY(float r)
{
    const float c = static_cast<float>(std::cos(double(r)));
    const float s = static_cast<float>(std::sin(double(r)));
    SetRows({c, 0, -s}, {0, 1, 0}, {s, 0, c});
}

void TMatrix43::SetRotationZ(float r)
{
    const float c = static_cast<float>(std::cos(double(r)));
    const float s = static_cast<float>(std::sin(double(r)));
    SetRows({c, -s, 0}, {s, c, 0}, {0, 0, 1});
}

void TMatrix43::SetRotation(float x, float y, float z)
{
    TMatrix43 rotation;
    SetRotationX(x);
    rotation.SetRotationY(y);
    *this *= rotation;
    rotation.SetRotationZ(z);
    *this *= rotation;
}

// Of what rounding has brought just beyond 1, a quarter turn: otherwise a rotation by 90 degrees would, now
// and then, be no number.
static float ArcSine(double sine)
{
    constexpr double MaxRounding = 1e-3;
    const double size = std::fabs(sine);
    return static_cast<float>(
        std::asin(size > 1 && size < 1 + MaxRounding ? std::copysign(1.0, sine) : sine));
}

void TMatrix43::GetRotation(float& x, float& y, float& z) const
{
    const float k = static_cast<float>(std::sqrt(1 - double(M[2][0]) * M[2][0]));
    y = ArcSine(M[2][0]);
    x = ArcSine(double(M[2][1]) / k);
    z = ArcSine(double(M[1][0]) / k);
}

void TMatrix43::SetScale(float x, float y, float z)
{
    SetRows({x, 0, 0}, {0, y, 0}, {0, 0, z});
}

void TMatrix43::SetTranslation(const TVector3& t)
{
    for (int c = 0; c < 3; ++c)
        M[3][c] = t[c];
}

TVector3 TMatrix43::TransformPoint(const TVector3& v) const
{
    TVector3 result;
    for (int c = 0; c < 3; ++c)
        result[c] = static_cast<float>(double(v[0]) * M[0][c] + double(v[1]) * M[1][c] +
                                       double(v[2]) * M[2][c] + M[3][c]);
    return result;
}

TVector3 TMatrix43::TransformDirection(const TVector3& v) const
{
    return TMatrix3(*this).Transform(v);
}

bool TMatrix43::Invert()
{
    TMatrix3 basis(*this);
    if (!(std::fabs(basis.GetDeterminant()) > 1e-20))
        return false;
    basis.Invert();
    const TVector3 translation = -basis.Transform(GetTranslation());
    SetRows({basis[0][0], basis[0][1], basis[0][2]}, {basis[1][0], basis[1][1], basis[1][2]},
            {basis[2][0], basis[2][1], basis[2][2]});
    SetTranslation(translation);
    return true;
}

void TMatrix43::SetRows(const TVector3& x, const TVector3& y, const TVector3& z)
{
    for (int c = 0; c < 3; ++c) {
        M[0][c] = x[c];
        M[1][c] = y[c];
        M[2][c] = z[c];
        M[3][c] = 0;
    }
}
