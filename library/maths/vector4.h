#pragma once

#include <cmath>

// Four floats.
class TVector4
{
public:
    TVector4() = default;
    TVector4(float x, float y, float z, float w) : Component{x, y, z, w} {}

    float operator[](int i) const { return Component[i]; }
    float& operator[](int i) { return Component[i]; }

    TVector4& operator+=(const TVector4& rhs)
    {
        for (int i = 0; i < 4; ++i)
            Component[i] += rhs[i];
        return *this;
    }
    TVector4& operator-=(const TVector4& rhs)
    {
        for (int i = 0; i < 4; ++i)
            Component[i] -= rhs[i];
        return *this;
    }
    TVector4& operator*=(float s)
    {
        for (int i = 0; i < 4; ++i)
            Component[i] *= s;
        return *this;
    }
    TVector4& operator/=(float s)
    {
        for (int i = 0; i < 4; ++i)
            Component[i] /= s;
        return *this;
    }
    TVector4 operator-() const
    {
        return TVector4(-Component[0], -Component[1], -Component[2], -Component[3]);
    }
    bool operator==(const TVector4& rhs) const = default;

    float LengthSquared() const { return Dot(*this, *this); }
    float Length() const
    {
        return static_cast<float>(
            std::sqrt(double(Component[0]) * Component[0] + double(Component[1]) * Component[1] +
                      double(Component[2]) * Component[2] + double(Component[3]) * Component[3]));
    }
    // To length 1. A vector of length 0 becomes not a number.
    void Normalise() { *this /= Length(); }
    friend float Dot(const TVector4& a, const TVector4& b)
    {
        return static_cast<float>(double(a[0]) * b[0] + double(a[1]) * b[1] + double(a[2]) * b[2] +
                                  double(a[3]) * b[3]);
    }

    float Component[4] = {0, 0, 0, 0};
};

inline TVector4 operator+(TVector4 a, const TVector4& b)
{
    return a += b;
}

inline TVector4 operator-(TVector4 a, const TVector4& b)
{
    return a -= b;
}

inline TVector4 operator*(TVector4 v, float s)
{
    return v *= s;
}

inline TVector4 operator/(TVector4 v, float s)
{
    return v /= s;
}

inline TVector4 operator*(float s, TVector4 v)
{
    return v *= s;
}
