#pragma once

#include "library/maths/matrix43.h"
#include "library/maths/vector4.h"

// Sixteen floats, rows in order. Vectors are rows, to the left of the matrix.
class TMatrix4
{
public:
    // The identity.
    TMatrix4();
    // The frame with a last column of 0, 0, 0, 1.
    explicit TMatrix4(const TMatrix43& frame);
    float (&operator[](int row))[4] { return M[row]; }
    const float (&operator[](int row) const)[4] { return M[row]; }
    bool operator==(const TMatrix4& rhs) const = default;

    // rhs acts first: the result is rhs times this. rhs must be another object.
    TMatrix4& operator*=(const TMatrix4& rhs);
    // a times b, neither of which may be this object.
    void Multiply(const TMatrix4& a, const TMatrix4& b);
    // The rows of mtrx, another object, as columns.
    void Transpose(const TMatrix4& mtrx);
    TVector4 Transform(const TVector4& v) const;

    float M[4][4];
};
