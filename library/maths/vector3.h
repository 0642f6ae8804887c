#pragma once

#include "library/containers/assertion.h"
#include "library/maths/vector4.h"

#include <cmath>

// Three floats.
class TVector3
{
public:
    TVector3() = default;
    TVector3(float x, float y, float z) : Component{x, y, z} {}
    // Divides by w, which must not be 0.
    explicit TVector3(const TVector4& rhs)
    {
        ASSERT_TEXT(rhs.Component[3] != 0, "rhs.Component[3] != 0");
        for (int i = 0; i < 3; ++i)
            Component[i] = rhs[i] / rhs[3];
    }

    float operator[](int i) const { return Component[i]; }
    float& operator[](int i) { return Component[i]; }

    TVector3& operator+=(const TVector3& rhs)
    {
        for (int i = 0; i < 3; ++i)
            Component[i] += rhs[i];
        return *this;
    }
    TVector3& operator-=(const TVector3& rhs)
    {
        for (int i = 0; i < 3; ++i)
            Component[i] -= rhs[i];
        return *this;
    }
    TVector3& operator*=(float s)
    {
        for (int i = 0; i < 3; ++i)
            Component[i] *= s;
        return *this;
    }
    TVector3& operator/=(float s)
    {
        for (int i = 0; i < 3; ++i)
            Component[i] /= s;
        return *this;
    }
    TVector3 operator-() const { return TVector3(-Component[0], -Component[1], -Component[2]); }
    bool operator==(const TVector3& rhs) const = default;

    float LengthSquared() const { return Dot(*this, *this); }
    float Length() const
    {
        return static_cast<float>(std::sqrt(double(Component[0]) * Component[0] +
                                            double(Component[1]) * Component[1] +
                                            double(Component[2]) * Component[2]));
    }
    // To length 1. A vector of length 0 becomes not a number.
    void Normalise() { *this /= Length(); }
    friend float Dot(const TVector3& a, const TVector3& b)
    {
        return static_cast<float>(double(a[0]) * b[0] + double(a[1]) * b[1] + double(a[2]) * b[2]);
    }

    float Component[3] = {0, 0, 0};
};

inline TVector3 operator+(TVector3 a, const TVector3& b)
{
    return a += b;
}

inline TVector3 operator-(TVector3 a, const TVector3& b)
{
    return a -= b;
}

inline TVector3 operator*(TVector3 v, float s)
{
    return v *= s;
}

inline TVector3 operator/(TVector3 v, float s)
{
    return v /= s;
}

inline TVector3 operator*(float s, TVector3 v)
{
    return v *= s;
}

inline TVector3 Cross(const TVector3& a, const TVector3& b)
{
    return TVector3(static_cast<float>(double(a[1]) * b[2] - double(a[2]) * b[1]),
                    static_cast<float>(double(a[2]) * b[0] - double(a[0]) * b[2]),
                    static_cast<float>(double(a[0]) * b[1] - double(a[1]) * b[0]));
}

inline bool IsFinite(const TVector3& v)
{
    return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}
