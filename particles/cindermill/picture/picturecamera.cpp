#include "particles/cindermill/picture/picturecamera.h"

#include "particles/cindermill/interface/particles/camera.h"
#include "particles/cindermill/picture/pictureoptions.h"

#include <cmath>

namespace {

// The eye of a view matrix.
TVector3 GetEye(const TMatrix4& view)
{
    TVector3 eye(0, 0, 0);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            eye[row] -= view[3][column] * view[row][column];
    return eye;
}

TVector3 GetDirection(const TVector3& v)
{
    return v * (1.0f / std::sqrt(Dot(v, v)));
}

} // namespace

TPictureCamera::TPictureCamera(const TPictureOptions& options) : Eye(options.Eye), Target(options.Target)
{
    if (options.HasCamera)
        return;
    const TMayaCamera camera;
    TMatrix4 view;
    camera.GetView(view);
    Eye = GetEye(view);
    Target = camera.GetTarget();
}

void TPictureCamera::GetView(float turn, TMatrix4& view) const
{
    constexpr float wholeTurn = 6.2831853f;
    // What is all but overhead is seen with its far side up.
    constexpr float steepest = 0.9999f;
    const float sine = std::sin(turn * wholeTurn);
    const float cosine = std::cos(turn * wholeTurn);
    const TVector3 arm = Eye - Target;
    const TVector3 turned(arm[0] * cosine + arm[2] * sine, arm[1], arm[2] * cosine - arm[0] * sine);
    const TVector3 back = GetDirection(turned);
    const bool isOverhead = std::fabs(back[1]) > steepest;
    const TVector3 up = isOverhead ? TVector3(0, 0, back[1] > 0 ? -1.0f : 1.0f) : TVector3(0, 1, 0);
    const TVector3 right = GetDirection(Cross(up, back));
    const TVector3 axes[3] = {right, Cross(back, right), back};
    const TVector3 eye = Target + turned;
    view = TMatrix4();
    for (int column = 0; column < 3; ++column) {
        for (int row = 0; row < 3; ++row)
            view[row][column] = axes[column][row];
        view[3][column] = -Dot(eye, axes[column]);
    }
}
