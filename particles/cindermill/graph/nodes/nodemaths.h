#pragma once

#include "library/maths/matrix43.h"
#include "library/maths/vector3.h"
#include "particles/cindermill/graph/portvalue.h"

// What every random draw of the nodes takes: a fraction in steps of 1 / 65536.
constexpr unsigned RandomSteps = 0x10000;

// The first or the second three floats of a value.
TVector3 GetVector(const TPortValue& value, int half = 0);
void SetVector(TPortValue& value, const TVector3& v, int half = 0);

// Like Dot, before it is rounded to a float.
double ExactDot(const TVector3& a, const TVector3& b);
// a + b * factor, as one expression per component.
TVector3 AddScaled(const TVector3& a, const TVector3& b, double factor);
TVector3 Scaled(const TVector3& a, double factor);

// The frame of a transform value: angles in degrees, then the translation.
TMatrix43 GetTransformMatrix(const TPortValue& transform);
// The scaling acts ahead of what the frame does.
void ScaleFirst(TMatrix43& matrix, float x, float y, float z);

// a + (b - a) * t.
float Lerp(float a, float b, float t);

// Integer division and remainder as C has them, without its traps: by 0 they give 0.
int64_t DivideOrZero(int64_t a, int64_t b);
int64_t RemainderOrZero(int64_t a, int64_t b);
