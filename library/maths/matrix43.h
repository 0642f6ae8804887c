#pragma once

#include "library/maths/vector3.h"

// A rigid or scaled frame: three basis rows, then the translation row. Vectors are rows, to the left of the
// matrix.
class TMatrix43
{
public:
    // The identity.
    TMatrix43();
    float (&operator[](int row))[3] { return M[row]; }
    const float (&operator[](int row) const)[3] { return M[row]; }
    bool operator==(const TMatrix43& rhs) const = default;

    // rhs acts first: the result is rhs times this. rhs must be another object.
    TMatrix43& operator*=(const TMatrix43& rhs);
    // a times b, neither of which may be this object.
    void Multiply(const TMatrix43& a, const TMatrix43& b);
    // About single axes, in radians; translation 0.
    void SetRotationX(float r);
    void SetRotationY(float r);
    void SetRotationZ(float r);
    // X, then *= Y, then *= Z, in radians; translation 0.
    void SetRotation(float x, float y, float z);
    // Reads the three angles back; no test for a gimbal lock.
    void GetRotation(float& x, float& y, float& z) const;
    void SetScale(float x, float y, float z);
    void SetTranslation(const TVector3& t);
    TVector3 GetTranslation() const { return TVector3(M[3][0], M[3][1], M[3][2]); }
    // v as a point: basis and translation.
    TVector3 TransformPoint(const TVector3& v) const;
    // v by the basis alone.
    TVector3 TransformDirection(const TVector3& v) const;
    // False if the basis has no inverse (the determinant's size is at most 1e-20 or no number); then
    // unchanged.
    bool Invert();

    float M[4][3];

private:
    void SetRows(const TVector3& x, const TVector3& y, const TVector3& z);
};
