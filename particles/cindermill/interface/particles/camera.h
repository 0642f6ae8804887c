#pragma once

#include "library/maths/matrix4.h"
#include "library/maths/vector3.h"

// The keys that cameras listen to.
enum TCameraKey
{
    CK_SHIFT,
    CK_CTRL,
    CK_ALT,
    CK_LEFT,
    CK_RIGHT,
    CK_UP,
    CK_DOWN,
    CK_PAGEUP,
    CK_PAGEDOWN,
    CK_NUMKEYS
};

// What has reached the preview's window since the last update.
struct TCameraInput
{
    // The pointer's way in pixels, x to the right and y downwards, with a button held.
    TVector3 Moved = TVector3(0, 0, 0);
    const bool* Keys = nullptr;
    float Seconds = 0;
    // Of the window, in pixels.
    int Height = 1;
};

// A view that can be kept and come back to: what is looked at, from how far, at which angles.
struct TCameraPlace
{
    TVector3 Target = TVector3(0, 0, 0);
    float Distance = 1;
    // Radians: about the upward axis, and upwards from the ground's plane.
    float Yaw = 0;
    float Pitch = 0;
};

// Where the preview is seen from. The view matrix takes row vectors of the world; the eye looks along -z.
class TCamera
{
public:
    // Of the projection that goes with every camera.
    static constexpr float FieldOfView = 0.6f;
    static constexpr float NearPlane = 0.1f;
    static constexpr float FarPlane = 1600.0f;

    virtual ~TCamera() = default;
    // Back to the view that a new window has: the ground grid as a whole, a little from above.
    virtual void Reset() = 0;
    virtual void Update(const TCameraInput& input) = 0;
    virtual TCameraPlace GetPlace() const = 0;
    virtual void SetPlace(const TCameraPlace& place);
    // Straight from an angle at what is seen.
    void LookFrom(float yaw, float pitch);
    // All of a box, from where the camera looks. `aspect` is the window's width by its height.
    void Frame(const TVector3& min, const TVector3& max, float aspect);
    // A turn of the wheel takes effect with the next update; 120 is a notch away from the user.
    void OnWheel(int delta) { Wheel += delta; }
    // TMouseButton bits, as they are held from now on.
    void OnButtons(int buttons) { Buttons = buttons; }
    int GetButtons() const { return Buttons; }
    void GetView(TMatrix4& view) const;

    // Of a window with this many times its height in width.
    static void GetProjection(float aspect, TMatrix4& projection);

protected:
    // Notches since the last call.
    float TakeWheel();
    static bool IsDown(const TCameraInput& input, TCameraKey key);
    // -1, 0 or 1.
    static float GetAxis(const TCameraInput& input, TCameraKey negative, TCameraKey positive);
    // Turns by angles, and keeps the eye from going over the top.
    void Turn(float yaw, float pitch);
    TVector3 GetRight() const;
    TVector3 GetUp() const;
    // From what is seen to the eye.
    TVector3 GetBack() const;

    TVector3 Eye = TVector3(0, 0, 0);
    // Radians: about the upward axis, and upwards from the ground's plane.
    float Yaw = 0;
    float Pitch = 0;

private:
    int Buttons = 0;
    int Wheel = 0;
};

// Circles round a target, as modelling packages do: the left button orbits, the middle one pans, the right
// one and the wheel go nearer and away. For mice without a middle button, Shift with the left one pans and
// Ctrl goes nearer. The arrow keys orbit, Page Up and Page Down go nearer and away.
class TMayaCamera : public TCamera
{
public:
    TMayaCamera() { Reset(); }
    void Reset() override;
    void Update(const TCameraInput& input) override;
    TCameraPlace GetPlace() const override;
    void SetPlace(const TCameraPlace& place) override;
    const TVector3& GetTarget() const { return Target; }
    float GetDistance() const { return Distance; }

private:
    void Pan(const TCameraInput& input);
    // A factor's logarithm.
    void Approach(float amount);

    TVector3 Target = TVector3(0, 0, 0);
    float Distance = 1;
};

// Flies: the arrow keys go ahead, back and sideways, Page Up and Page Down up and down, the mouse looks about
// with a button held, and the wheel goes ahead and back. The middle button shifts the eye. Shift hurries,
// Ctrl slows down.
class TQuakeCamera : public TCamera
{
public:
    TQuakeCamera() { Reset(); }
    void Reset() override;
    void Update(const TCameraInput& input) override;
    TCameraPlace GetPlace() const override;
    const TVector3& GetEye() const { return Eye; }
};
