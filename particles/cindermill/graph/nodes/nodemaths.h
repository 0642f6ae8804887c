#pragma once

#include "library/maths/matrix43.h"
#include "library/maths/vector3.h"
#include "particles/cindermill/graph/engine/portvalue.h"

// What every random draw of the nodes takes: a fraction in steps of 1 / 65536.
constexpr unsigned RandomSteps = 0x10000;

// The first or the second three floats of a value.
inline TVector3 GetVector(const TPortValue& value, int half = 0)
{
    return TVector3(value[3 * half], value[3 * half + 1], value[3 * half + 2]);
}

inline void SetVector(TPortValue& value, const TVector3& v, int half = 0)
{
    for (int i = 0; i < 3; ++i)
        value[3 * half + i] = v[i];
}

// Like Dot, before it is rounded to a float.
inline double ExactDot(const TVector3& a, const TVector3& b)
{
    double sum = 0;
    for (int i = 0; i < 3; ++i)
        sum += static_cast<double>(a[i]) * b[i];
    return sum;
}

// a + b * factor, as one expression per component.
inline TVector3 AddScaled(const TVector3& a, const TVector3& b, double factor)
{
    TVector3 result;
    for (int i = 0; i < 3; ++i)
        result[i] = static_cast<float>(a[i] + b[i] * factor);
    return result;
}

inline TVector3 Scaled(const TVector3& a, double factor)
{
    TVector3 result;
    for (int i = 0; i < 3; ++i)
        result[i] = static_cast<float>(a[i] * factor);
    return result;
}

// The frame of a transform value: angles in degrees, then the translation.
TMatrix43 GetTransformMatrix(const TPortValue& transform);
// The scaling acts ahead of what the frame does.
void ScaleFirst(TMatrix43& matrix, float x, float y, float z);

// a + (b - a) * t.
inline float Lerp(float a, float b, float t)
{
    return static_cast<float>((static_cast<double>(b) - a) * t + a);
}

// Integer division and remainder as C has them, without its traps: by 0 they give 0.
inline int64_t DivideOrZero(int64_t a, int64_t b)
{
    return b != 0 ? a / b : 0;
}

inline int64_t RemainderOrZero(int64_t a, int64_t b)
{
    return b != 0 ? a % b : 0;
}
