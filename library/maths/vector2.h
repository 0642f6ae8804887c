#pragma once

#include <cmath>

// Two floats.
class TVector2
{
public:
    TVector2() = default;
    TVector2(float x, float y) : Component{x, y} {}

    float operator[](int i) const { return Component[i]; }
    float& operator[](int i) { return Component[i]; }

    TVector2& operator+=(const TVector2& rhs)
    {
        for (int i = 0; i < 2; ++i)
            Component[i] += rhs[i];
        return *this;
    }
    TVector2& operator-=(const TVector2& rhs)
    {
        for (int i = 0; i < 2; ++i)
            Component[i] -= rhs[i];
        return *this;
    }
    TVector2& operator*=(float s)
    {
        for (int i = 0; i < 2; ++i)
            Component[i] *= s;
        return *this;
    }
    TVector2& operator/=(float s)
    {
        for (int i = 0; i < 2; ++i)
            Component[i] /= s;
        return *this;
    }
    TVector2 operator-() const { return TVector2(-Component[0], -Component[1]); }
    bool operator==(const TVector2& rhs) const = default;

    float LengthSquared() const { return Dot(*this, *this); }
    float Length() const
    {
        return static_cast<float>(
            std::sqrt(double(Component[0]) * Component[0] + double(Component[1]) * Component[1]));
    }
    // To length 1. A vector of length 0 becomes not a number.
    void Normalise() { *this /= Length(); }
    friend float Dot(const TVector2& a, const TVector2& b)
    {
        return static_cast<float>(double(a[0]) * b[0] + double(a[1]) * b[1]);
    }

    float Component[2] = {0, 0};
};

inline TVector2 operator+(TVector2 a, const TVector2& b)
{
    return a += b;
}

inline TVector2 operator-(TVector2 a, const TVector2& b)
{
    return a -= b;
}

inline TVector2 operator*(TVector2 v, float s)
{
    return v *= s;
}

inline TVector2 operator/(TVector2 v, float s)
{
    return v /= s;
}

inline TVector2 operator*(float s, TVector2 v)
{
    return v *= s;
}

// Of length 1; zero for points that coincide.
inline TVector2 GetDirection(const TVector2& from, const TVector2& to)
{
    TVector2 direction = to - from;
    if (!(direction.LengthSquared() > 0))
        return TVector2(0, 0);
    direction.Normalise();
    return direction;
}
