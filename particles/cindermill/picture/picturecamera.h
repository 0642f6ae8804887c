#pragma once

#include "library/maths/matrix4.h"
#include "library/maths/vector3.h"

struct TPictureOptions;

// Where a picture is seen from: as a new preview is, or from a place that was told.
class TPictureCamera
{
public:
    explicit TPictureCamera(const TPictureOptions& options);

    // `turn` is the part of a whole turn by which the eye has gone round what it looks at.
    void GetView(float turn, TMatrix4& view) const;

private:
    TVector3 Eye;
    TVector3 Target;
};
