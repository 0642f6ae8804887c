#include "particles/cindermill/interface/particles/camera.h"

#include "library/maths/scalar.h"
#include "library/wimp/gl/windowmessage.h"

#include <cmath>

namespace {

// Just short of a quarter turn.
constexpr float MaxPitch = 1.55f;

// The first view.
constexpr float StartYaw = 0.45f;
constexpr float StartPitch = 0.32f;
constexpr float StartDistance = 5.6f;
constexpr float StartHeight = 0.6f;

constexpr float RadiansPerPixel = 0.008f;
constexpr float RadiansPerSecond = 1.2f;
constexpr float ApproachPerPixel = 0.006f;
constexpr float ApproachPerSecond = 1.0f;
constexpr float ApproachPerNotch = 0.15f;
constexpr float MinDistance = 0.02f;
constexpr float MaxDistance = 1000.0f;

constexpr float LookPerPixel = 0.004f;
constexpr float FlySpeed = 2.0f;
constexpr float FlyPerNotch = 0.4f;
constexpr float ShiftPerPixel = 0.005f;
constexpr float Hurry = 4.0f;
constexpr float Slow = 0.25f;

} // namespace

float TCamera::TakeWheel()
{
    const float notches = static_cast<float>(Wheel) / WheelNotch;
    Wheel = 0;
    return notches;
}

bool TCamera::IsDown(const TCameraInput& input, TCameraKey key)
{
    return input.Keys != nullptr && input.Keys[key];
}

float TCamera::GetAxis(const TCameraInput& input, TCameraKey negative, TCameraKey positive)
{
    return (IsDown(input, positive) ? 1.0f : 0.0f) - (IsDown(input, negative) ? 1.0f : 0.0f);
}

void TCamera::SetPlace(const TCameraPlace& place)
{
    Yaw = place.Yaw;
    Pitch = place.Pitch;
    Eye = place.Target + GetBack() * place.Distance;
}

void TCamera::LookFrom(float yaw, float pitch)
{
    TCameraPlace place = GetPlace();
    place.Yaw = yaw;
    place.Pitch = pitch;
    SetPlace(place);
}

// A box turns as it is looked at, so room is made for the ball around it.
void TCamera::Frame(const TVector3& min, const TVector3& max, float aspect)
{
    constexpr float leastRadius = 0.05f;
    const TVector3 half = (max - min) * 0.5f;
    const float radius = std::sqrt(Dot(half, half));
    const float tangent = std::tan(FieldOfView / 2) * (aspect < 1 ? aspect : 1.0f);
    TCameraPlace place = GetPlace();
    place.Target = min + half;
    place.Distance = (radius > leastRadius ? radius : leastRadius) / std::sin(std::atan(tangent));
    SetPlace(place);
}

// Who looks straight down stays there until the camera is turned.
void TCamera::Turn(float yaw, float pitch)
{
    if (yaw == 0 && pitch == 0)
        return;
    constexpr float wholeTurn = 6.2831853f;
    Yaw = std::remainder(Yaw + yaw, wholeTurn);
    Pitch = ClampNumber(Pitch + pitch, -MaxPitch, MaxPitch);
}

TVector3 TCamera::GetRight() const
{
    return TVector3(std::cos(Yaw), 0, -std::sin(Yaw));
}

TVector3 TCamera::GetUp() const
{
    return Cross(GetBack(), GetRight());
}

TVector3 TCamera::GetBack() const
{
    const float level = std::cos(Pitch);
    return TVector3(std::sin(Yaw) * level, std::sin(Pitch), std::cos(Yaw) * level);
}

void TCamera::GetView(TMatrix4& view) const
{
    const TVector3 axes[3] = {GetRight(), GetUp(), GetBack()};
    view = TMatrix4();
    for (int column = 0; column < 3; ++column) {
        for (int row = 0; row < 3; ++row)
            view[row][column] = axes[column][row];
        view[3][column] = -Dot(Eye, axes[column]);
    }
}

void TCamera::GetProjection(float aspect, TMatrix4& projection)
{
    const float scale = 1.0f / std::tan(FieldOfView / 2);
    projection = TMatrix4();
    projection[0][0] = scale / aspect;
    projection[1][1] = scale;
    projection[2][2] = (FarPlane + NearPlane) / (NearPlane - FarPlane);
    projection[2][3] = -1;
    projection[3][2] = 2 * FarPlane * NearPlane / (NearPlane - FarPlane);
    projection[3][3] = 0;
}

void TMayaCamera::Reset()
{
    Target = TVector3(0, StartHeight, 0);
    Distance = StartDistance;
    Yaw = StartYaw;
    Pitch = StartPitch;
    Eye = Target + GetBack() * Distance;
}

TCameraPlace TMayaCamera::GetPlace() const
{
    return TCameraPlace{Target, Distance, Yaw, Pitch};
}

void TMayaCamera::SetPlace(const TCameraPlace& place)
{
    TCamera::SetPlace(place);
    Target = place.Target;
    Distance = ClampNumber(place.Distance, MinDistance, MaxDistance);
}

void TMayaCamera::Update(const TCameraInput& input)
{
    const TVector3& moved = input.Moved;
    const bool left = (GetButtons() & MB_LEFT) != 0;
    if ((GetButtons() & MB_MIDDLE) != 0 || (left && IsDown(input, CK_SHIFT)))
        Pan(input);
    else if ((GetButtons() & MB_RIGHT) != 0 || (left && IsDown(input, CK_CTRL)))
        Approach((moved[0] - moved[1]) * ApproachPerPixel);
    else if (left)
        Turn(-moved[0] * RadiansPerPixel, moved[1] * RadiansPerPixel);
    const float step = RadiansPerSecond * input.Seconds;
    Turn(GetAxis(input, CK_LEFT, CK_RIGHT) * step, GetAxis(input, CK_DOWN, CK_UP) * step);
    Approach(GetAxis(input, CK_PAGEDOWN, CK_PAGEUP) * ApproachPerSecond * input.Seconds);
    Approach(TakeWheel() * ApproachPerNotch);
    Eye = Target + GetBack() * Distance;
}

// What the pointer is on goes along with it.
void TMayaCamera::Pan(const TCameraInput& input)
{
    const float height = 2 * Distance * std::tan(FieldOfView / 2);
    const float perPixel = height / static_cast<float>(input.Height > 0 ? input.Height : 1);
    Target += GetUp() * (input.Moved[1] * perPixel) - GetRight() * (input.Moved[0] * perPixel);
}

void TMayaCamera::Approach(float amount)
{
    Distance = ClampNumber(Distance * std::exp(-amount), MinDistance, MaxDistance);
}

void TQuakeCamera::Reset()
{
    Yaw = StartYaw;
    Pitch = StartPitch;
    Eye = TVector3(0, StartHeight, 0) + GetBack() * StartDistance;
}

TCameraPlace TQuakeCamera::GetPlace() const
{
    return TCameraPlace{Eye - GetBack() * StartDistance, StartDistance, Yaw, Pitch};
}

void TQuakeCamera::Update(const TCameraInput& input)
{
    const TVector3& moved = input.Moved;
    if ((GetButtons() & MB_MIDDLE) != 0)
        Eye += GetRight() * (moved[0] * ShiftPerPixel) - GetUp() * (moved[1] * ShiftPerPixel);
    else if (GetButtons() != 0)
        Turn(-moved[0] * LookPerPixel, moved[1] * LookPerPixel);
    float speed = FlySpeed;
    if (IsDown(input, CK_SHIFT))
        speed *= Hurry;
    if (IsDown(input, CK_CTRL))
        speed *= Slow;
    const float step = speed * input.Seconds;
    const float ahead = GetAxis(input, CK_DOWN, CK_UP) * step + TakeWheel() * FlyPerNotch;
    Eye -= GetBack() * ahead;
    Eye += GetRight() * (GetAxis(input, CK_LEFT, CK_RIGHT) * step);
    Eye[1] += GetAxis(input, CK_PAGEDOWN, CK_PAGEUP) * step;
}
