#include "particles/cindermill/graph/nodes/nodemaths.h"

#include "library/maths/scalar.h"

namespace {

float ToRadians(float degrees)
{
    return static_cast<float>(static_cast<double>(degrees) * DegreesToRadians);
}

} // namespace

TVector3 GetVector(const TPortValue& value, int half)
{
    return TVector3(value[3 * half], value[3 * half + 1], value[3 * half + 2]);
}

void SetVector(TPortValue& value, const TVector3& v, int half)
{
    for (int i = 0; i < 3; ++i)
        value[3 * half + i] = v[i];
}

double ExactDot(const TVector3& a, const TVector3& b)
{
    double sum = 0;
    for (int i = 0; i < 3; ++i)
        sum += static_cast<double>(a[i]) * b[i];
    return sum;
}

TVector3 AddScaled(const TVector3& a, const TVector3& b, double factor)
{
    TVector3 result;
    for (int i = 0; i < 3; ++i)
        result[i] = static_cast<float>(a[i] + b[i] * factor);
    return result;
}

TVector3 Scaled(const TVector3& a, double factor)
{
    TVector3 result;
    for (int i = 0; i < 3; ++i)
        result[i] = static_cast<float>(a[i] * factor);
    return result;
}

TMatrix43 GetTransformMatrix(const TPortValue& transform)
{
    TMatrix43 matrix;
    matrix.SetRotation(ToRadians(transform[3]), ToRadians(transform[4]), ToRadians(transform[5]));
    matrix.SetTranslation(GetVector(transform));
    return matrix;
}

void ScaleFirst(TMatrix43& matrix, float x, float y, float z)
{
    TMatrix43 scale;
    scale.SetScale(x, y, z);
    matrix *= scale;
}

float Lerp(float a, float b, float t)
{
    return static_cast<float>((static_cast<double>(b) - a) * t + a);
}

int64_t DivideOrZero(int64_t a, int64_t b)
{
    return b != 0 ? a / b : 0;
}

int64_t RemainderOrZero(int64_t a, int64_t b)
{
    return b != 0 ? a % b : 0;
}
