#pragma once

#include "library/maths/matrix3.h"

// A rotation as x, y, z, w.
class TQuaternion
{
public:
    // No rotation.
    TQuaternion() = default;
    TQuaternion(float x, float y, float z, float w) : Component{x, y, z, w} {}
    // The angle in radians; the result is normalised.
    TQuaternion(const TVector3& axis, float angle);
    // The basis must be a rotation.
    explicit TQuaternion(const TMatrix3& m);
    float operator[](int i) const { return Component[i]; }
    float& operator[](int i) { return Component[i]; }
    bool operator==(const TQuaternion& rhs) const = default;

    float Length() const;
    void Normalise();
    // The square of the length must be above 1e-6.
    TQuaternion GetInverse() const;
    // Back to a matrix; the quaternion must have length 1.
    TMatrix3 GetMatrix() const;

    float Component[4] = {0, 0, 0, 1};
};

TQuaternion operator*(const TQuaternion& a, const TQuaternion& b);
