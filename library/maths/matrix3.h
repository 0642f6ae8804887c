#pragma once

#include "library/maths/vector3.h"

class TMatrix43;

// Nine floats, rows in order. Vectors are rows, to the left of the matrix.
class TMatrix3
{
public:
    // The identity.
    TMatrix3();
    // The basis rows of a frame.
    explicit TMatrix3(const TMatrix43& frame);
    float (&operator[](int row))[3] { return M[row]; }
    const float (&operator[](int row) const)[3] { return M[row]; }
    bool operator==(const TMatrix3& rhs) const = default;

    // a acts first: the result is a times this. a must be another object.
    TMatrix3& operator*=(const TMatrix3& a);
    // a times b, neither of which may be this object.
    void Multiply(const TMatrix3& a, const TMatrix3& b);
    // The rows of mtrx, another object, as columns.
    void Transpose(const TMatrix3& mtrx);
    float GetDeterminant() const;
    // The determinant's size must be above 1e-20.
    void Invert();
    TVector3 Transform(const TVector3& v) const;

    float M[3][3];
};
