#include "library/maths/quaternion.h"

#include <cmath>

TQuaternion::TQuaternion(const TVector3& axis, float angle)
{
    for (int i = 0; i < 3; ++i)
        Component[i] = static_cast<float>(axis[i] * std::sin(double(angle) / 2));
    Component[3] = static_cast<float>(std::cos(double(angle) / 2));
    Normalise();
}

TQuaternion::TQuaternion(const TMatrix3& m)
{
    const float trace = static_cast<float>(double(m[0][0]) + m[1][1] + m[2][2]);
    if (trace > 0) {
        const float t = static_cast<float>(std::sqrt(double(trace) + 1));
        const float f = static_cast<float>(0.5 / t);
        Component[0] = static_cast<float>((double(m[1][2]) - m[2][1]) * f);
        Component[1] = static_cast<float>((double(m[2][0]) - m[0][2]) * f);
        Component[2] = static_cast<float>((double(m[0][1]) - m[1][0]) * f);
        Component[3] = t / 2;
        return;
    }
    int i = m[1][1] > m[0][0] ? 1 : 0;
    if (m[2][2] > m[i][i])
        i = 2;
    const int j = (i + 1) % 3;
    const int k = (i + 2) % 3;
    const float t = static_cast<float>(std::sqrt(m[i][i] - (double(m[j][j]) + m[k][k]) + 1));
    const float f = t != 0 ? static_cast<float>(0.5 / t) : 0;
    Component[i] = t / 2;
    Component[j] = static_cast<float>((double(m[i][j]) + m[j][i]) * f);
    Component[k] = static_cast<float>((double(m[i][k]) + m[k][i]) * f);
    Component[3] = static_cast<float>((double(m[j][k]) - m[k][j]) * f);
}

float TQuaternion::Length() const
{
    double sum = 0;
    for (const float component : Component)
        sum += double(component) * component;
    return static_cast<float>(std::sqrt(sum));
}

void TQuaternion::Normalise()
{
    const float length = Length();
    for (float& component : Component)
        component /= length;
}

TQuaternion TQuaternion::GetInverse() const
{
    const auto& [x, y, z, w] = Component;
    const float c = static_cast<float>(double(x) * x + double(y) * y + double(z) * z + double(w) * w);
    ASSERT_TEXT(c > 1e-6, "c > 1e-6");
    return TQuaternion(-x / c, -y / c, -z / c, w / c);
}

TMatrix3 TQuaternion::GetMatrix() const
{
    const double x = Component[0];
    const double y = Component[1];
    const double z = Component[2];
    const double w = Component[3];
    const double rows[3][3] = {{1 - 2 * (y * y + z * z), 2 * (x * y + w * z), 2 * (x * z - w * y)},
                               {2 * (x * y - w * z), 1 - 2 * (x * x + z * z), 2 * (y * z + w * x)},
                               {2 * (x * z + w * y), 2 * (y * z - w * x), 1 - 2 * (x * x + y * y)}};
    TMatrix3 result;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            result[r][c] = static_cast<float>(rows[r][c]);
    return result;
}

TQuaternion operator*(const TQuaternion& a, const TQuaternion& b)
{
    const double x = a[0];
    const double y = a[1];
    const double z = a[2];
    const double w = a[3];
    return TQuaternion(static_cast<float>(w * b[0] + x * b[3] + y * b[2] - z * b[1]),
                       static_cast<float>(w * b[1] - x * b[2] + y * b[3] + z * b[0]),
                       static_cast<float>(w * b[2] + x * b[1] - y * b[0] + z * b[3]),
                       static_cast<float>(w * b[3] - x * b[0] - y * b[1] - z * b[2]));
}
