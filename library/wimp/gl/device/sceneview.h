#pragma once

#include "library/maths/matrix4.h"
#include "library/maths/vector3.h"

// The camera of a frame of the preview, as render stages and displays need it. Vectors are rows, to the left
// of a matrix; clip space is OpenGL's.
class TSceneView
{
public:
    void Set(const TMatrix4& worldView, const TMatrix4& projection);
    const TMatrix4& GetWorldView() const { return WorldView; }
    const TMatrix4& GetProjection() const { return Projection; }
    const TMatrix4& GetWorldViewProjection() const { return WorldViewProjection; }
    const TVector3& GetEye() const { return Eye; }

private:
    TMatrix4 WorldView;
    TMatrix4 Projection;
    TMatrix4 WorldViewProjection;
    TVector3 Eye = TVector3(0, 0, 0);
};
