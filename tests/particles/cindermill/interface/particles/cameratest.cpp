#include "particles/cindermill/interface/particles/camera.h"

#include "library/wimp/gl/windowmessage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace {

constexpr int WindowHeight = 618;
constexpr float Aspect = 800.0f / WindowHeight;

// Keys, and what has come in besides.
struct TInput
{
    TInput& Press(TCameraKey key)
    {
        Keys[key] = true;
        return *this;
    }
    void To(TCamera& camera, float x, float y, float seconds = 0)
    {
        TCameraInput input;
        input.Moved = TVector3(x, y, 0);
        input.Keys = Keys;
        input.Seconds = seconds;
        input.Height = WindowHeight;
        camera.Update(input);
    }
    bool Keys[CK_NUMKEYS] = {};
};

void Drag(TCamera& camera, int buttons, float x, float y)
{
    camera.OnButtons(buttons);
    TInput().To(camera, x, y);
    camera.OnButtons(0);
}

// In pixels from the window's centre, x to the right and y upwards; the third is 1 in front of the eye.
TVector3 Project(const TCamera& camera, const TVector3& place)
{
    TMatrix4 view;
    TMatrix4 projection;
    camera.GetView(view);
    TCamera::GetProjection(Aspect, projection);
    TMatrix4 both;
    both.Multiply(view, projection);
    const TVector4 clip = both.Transform(TVector4(place[0], place[1], place[2], 1));
    return TVector3(clip[0] / clip[3] * WindowHeight / 2 * Aspect, clip[1] / clip[3] * WindowHeight / 2,
                    clip[3] > 0 ? 1.0f : -1.0f);
}

TVector3 EyeOf(const TCamera& camera)
{
    TMatrix4 view;
    camera.GetView(view);
    TMatrix43 frame;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 3; ++column)
            frame[row][column] = view[row][column];
    EXPECT_TRUE(frame.Invert());
    return frame.GetTranslation();
}

void ExpectNear(const TVector3& a, const TVector3& b, float tolerance = 1e-4f)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(a[i], b[i], tolerance) << i;
}

void ForBothCameras(const std::function<void(TCamera&)>& work)
{
    TMayaCamera maya;
    TQuakeCamera quake;
    work(maya);
    work(quake);
}

TEST(TCamera, TheFirstViewHasTheWholeGroundGridAndRoomAboveIt)
{
    ForBothCameras([](TCamera& camera) {
        for (const float x : {-1.0f, 1.0f})
            for (const float z : {-1.0f, 1.0f})
                for (const float y : {0.0f, 1.5f}) {
                    const TVector3 place = Project(camera, TVector3(x, y, z));
                    EXPECT_LT(std::fabs(place[0]), WindowHeight / 2 * Aspect);
                    EXPECT_LT(std::fabs(place[1]), WindowHeight / 2);
                    EXPECT_EQ(place[2], 1);
                }
        // Seen from above, upright, with +z coming nearer.
        EXPECT_GT(EyeOf(camera)[1], 0);
        EXPECT_GT(Project(camera, TVector3(0, 1, 0))[1], Project(camera, TVector3(0, 0, 0))[1]);
        EXPECT_GT(Project(camera, TVector3(1, 0, 0))[0], Project(camera, TVector3(-1, 0, 0))[0]);
        EXPECT_LT(Project(camera, TVector3(0, 0, 1))[1], Project(camera, TVector3(0, 0, -1))[1]);
    });
}

TEST(TCamera, TheViewIsARigidFrame)
{
    ForBothCameras([](TCamera& camera) {
        for (int i = 0; i < 30; ++i) {
            Drag(camera, i % 3 == 0 ? MB_MIDDLE : MB_LEFT, static_cast<float>(i * 7 - 90),
                 static_cast<float>(i * 3 - 40));
            TMatrix4 view;
            camera.GetView(view);
            TVector3 axes[3];
            for (int column = 0; column < 3; ++column)
                axes[column] = TVector3(view[0][column], view[1][column], view[2][column]);
            for (int a = 0; a < 3; ++a)
                EXPECT_NEAR(axes[a].Length(), 1, 1e-5);
            ExpectNear(Cross(axes[0], axes[1]), axes[2], 1e-5f);
            // Never tilted sideways.
            EXPECT_NEAR(axes[0][1], 0, 1e-6);
            EXPECT_GT(axes[1][1], 0);
        }
    });
}

TEST(TCamera, TheProjectionHasTheFieldOfViewAndThePlanes)
{
    TMatrix4 projection;
    TCamera::GetProjection(2, projection);
    const auto project = [&](float x, float y, float z) {
        const TVector4 clip = projection.Transform(TVector4(x, y, z, 1));
        return TVector3(clip[0] / clip[3], clip[1] / clip[3], clip[2] / clip[3]);
    };
    EXPECT_NEAR(project(0, 0, -0.1f)[2], -1, 1e-4);
    EXPECT_NEAR(project(0, 0, -1600)[2], 1, 1e-4);
    const float edge = std::tan(0.3f) * 10;
    EXPECT_NEAR(project(0, edge, -10)[1], 1, 1e-4);
    EXPECT_NEAR(project(2 * edge, 0, -10)[0], 1, 1e-4);
}

TEST(TCamera, WithoutButtonsTheMouseDoesNothing)
{
    ForBothCameras([](TCamera& camera) {
        TMatrix4 before;
        TMatrix4 after;
        camera.GetView(before);
        TInput().To(camera, 100, 50);
        camera.GetView(after);
        EXPECT_EQ(before, after);
    });
}

TEST(TCamera, ResetGoesBackToTheFirstView)
{
    ForBothCameras([](TCamera& camera) {
        TMatrix4 first;
        TMatrix4 after;
        camera.GetView(first);
        Drag(camera, MB_LEFT, 100, 50);
        Drag(camera, MB_MIDDLE, -30, 70);
        camera.OnWheel(360);
        TInput().Press(CK_PAGEUP).To(camera, 0, 0, 1);
        camera.GetView(after);
        EXPECT_NE(first, after);
        camera.Reset();
        camera.GetView(after);
        EXPECT_EQ(first, after);
    });
}

TEST(TMayaCamera, TheLeftButtonOrbitsRoundTheTarget)
{
    TMayaCamera camera;
    const TVector3 target = camera.GetTarget();
    const float distance = camera.GetDistance();
    const TVector3 before = EyeOf(camera);
    Drag(camera, MB_LEFT, 40, 0);
    const TVector3 after = EyeOf(camera);
    EXPECT_NEAR((after - target).Length(), distance, 1e-3);
    EXPECT_NEAR(after[1], before[1], 1e-4);
    // The scene follows the pointer: what is in front goes to the right.
    TMayaCamera other;
    const TVector3 front = target + (before - target) * 0.2f;
    EXPECT_GT(Project(camera, front)[0], Project(other, front)[0]);
    ExpectNear(Project(camera, target), TVector3(0, 0, 1), 1e-2f);
    Drag(camera, MB_LEFT, 0, 40);
    EXPECT_GT(EyeOf(camera)[1], after[1]);
}

TEST(TMayaCamera, TheOrbitStopsOverTheTop)
{
    TMayaCamera camera;
    Drag(camera, MB_LEFT, 0, 10000);
    const TVector3 top = EyeOf(camera) - camera.GetTarget();
    EXPECT_NEAR(top[1], camera.GetDistance(), 0.01);
    Drag(camera, MB_LEFT, 0, -20000);
    EXPECT_LT(EyeOf(camera)[1] - camera.GetTarget()[1], 0);
}

TEST(TMayaCamera, TheMiddleButtonPansWithThePointer)
{
    TMayaCamera camera;
    const TVector3 target = camera.GetTarget();
    Drag(camera, MB_MIDDLE, 37, -21);
    ExpectNear(Project(camera, target), TVector3(37, 21, 1), 0.1f);
    TMayaCamera shifted;
    shifted.OnButtons(MB_LEFT);
    TInput().Press(CK_SHIFT).To(shifted, 37, -21);
    ExpectNear(shifted.GetTarget(), camera.GetTarget());
}

TEST(TMayaCamera, TheRightButtonAndTheWheelGoNearer)
{
    TMayaCamera camera;
    const float start = camera.GetDistance();
    Drag(camera, MB_RIGHT, 50, 0);
    const float nearer = camera.GetDistance();
    EXPECT_LT(nearer, start);
    Drag(camera, MB_RIGHT, 0, 50);
    EXPECT_NEAR(camera.GetDistance(), start, 1e-3);
    const float before = camera.GetDistance();
    camera.OnWheel(120);
    EXPECT_EQ(camera.GetDistance(), before) << "until the update";
    TInput().To(camera, 0, 0);
    EXPECT_LT(camera.GetDistance(), start);
    camera.OnWheel(-120);
    TInput().To(camera, 0, 0);
    EXPECT_NEAR(camera.GetDistance(), start, 1e-3);
    TInput().To(camera, 0, 0);
    EXPECT_NEAR(camera.GetDistance(), start, 1e-3) << "a notch counts once";
    TMayaCamera held;
    held.OnButtons(MB_LEFT);
    TInput().Press(CK_CTRL).To(held, 50, 0);
    EXPECT_NEAR(held.GetDistance(), nearer, 1e-4);
}

TEST(TMayaCamera, TheDistanceHasLimits)
{
    TMayaCamera camera;
    camera.OnWheel(120 * 1000);
    TInput().To(camera, 0, 0);
    EXPECT_GT(camera.GetDistance(), 0);
    camera.OnWheel(-120 * 10000);
    TInput().To(camera, 0, 0);
    EXPECT_LT(camera.GetDistance(), TCamera::FarPlane);
}

TEST(TMayaCamera, KeysMoveWithTheTime)
{
    TMayaCamera slow;
    TMayaCamera quick;
    for (int i = 0; i < 10; ++i)
        TInput().Press(CK_RIGHT).Press(CK_PAGEUP).To(slow, 0, 0, 0.02f);
    for (int i = 0; i < 2; ++i)
        TInput().Press(CK_RIGHT).Press(CK_PAGEUP).To(quick, 0, 0, 0.1f);
    ExpectNear(EyeOf(slow), EyeOf(quick), 1e-3f);
    EXPECT_LT(slow.GetDistance(), TMayaCamera().GetDistance());
    EXPECT_GT(EyeOf(slow)[0], EyeOf(TMayaCamera())[0]);
}

TEST(TQuakeCamera, ArrowKeysFlyAheadAndSideways)
{
    TQuakeCamera camera;
    const TVector3 start = camera.GetEye();
    TMatrix4 view;
    camera.GetView(view);
    const TVector3 right(view[0][0], view[1][0], view[2][0]);
    const TVector3 ahead(-view[0][2], -view[1][2], -view[2][2]);
    TInput().Press(CK_UP).To(camera, 0, 0, 0.5f);
    const TVector3 flown = camera.GetEye() - start;
    EXPECT_NEAR(Dot(flown, ahead), flown.Length(), 1e-4);
    EXPECT_GT(flown.Length(), 0.1f);
    TInput().Press(CK_DOWN).To(camera, 0, 0, 0.5f);
    ExpectNear(camera.GetEye(), start);
    TInput().Press(CK_RIGHT).To(camera, 0, 0, 0.5f);
    EXPECT_NEAR(Dot(camera.GetEye() - start, right), flown.Length(), 1e-4);
    TInput().Press(CK_LEFT).To(camera, 0, 0, 0.5f);
    ExpectNear(camera.GetEye(), start);
    TInput().Press(CK_UP).Press(CK_DOWN).To(camera, 0, 0, 0.5f);
    ExpectNear(camera.GetEye(), start);
}

TEST(TQuakeCamera, PageKeysGoUpAndDown)
{
    TQuakeCamera camera;
    const TVector3 start = camera.GetEye();
    TInput().Press(CK_PAGEUP).To(camera, 0, 0, 0.5f);
    EXPECT_GT(camera.GetEye()[1], start[1]);
    EXPECT_EQ(camera.GetEye()[0], start[0]);
    TInput().Press(CK_PAGEDOWN).To(camera, 0, 0, 0.5f);
    ExpectNear(camera.GetEye(), start);
}

TEST(TQuakeCamera, ShiftHurriesAndCtrlSlowsDown)
{
    const auto fly = [](TInput input) {
        TQuakeCamera camera;
        const TVector3 start = camera.GetEye();
        input.Press(CK_UP).To(camera, 0, 0, 0.5f);
        return (camera.GetEye() - start).Length();
    };
    EXPECT_GT(fly(TInput().Press(CK_SHIFT)), fly(TInput()));
    EXPECT_LT(fly(TInput().Press(CK_CTRL)), fly(TInput()));
}

TEST(TQuakeCamera, TheMouseLooksAboutFromWhereTheEyeIs)
{
    for (const int button : {MB_LEFT, MB_RIGHT}) {
        TQuakeCamera camera;
        const TVector3 start = camera.GetEye();
        Drag(camera, button, 40, 20);
        ExpectNear(camera.GetEye(), start);
        TQuakeCamera other;
        // To the right and down: the scene goes to the left and up.
        EXPECT_LT(Project(camera, TVector3(0, 0, 0))[0], Project(other, TVector3(0, 0, 0))[0] - 10);
        EXPECT_GT(Project(camera, TVector3(0, 0, 0))[1], Project(other, TVector3(0, 0, 0))[1] + 10);
    }
}

TEST(TQuakeCamera, TheWheelGoesAhead)
{
    TQuakeCamera camera;
    const TVector3 start = camera.GetEye();
    camera.OnWheel(240);
    TInput().To(camera, 0, 0);
    EXPECT_LT(camera.GetEye().Length(), start.Length());
}

} // namespace

namespace {

TVector3 BackOf(const TCamera& camera)
{
    TMatrix4 view;
    camera.GetView(view);
    return TVector3(view[0][2], view[1][2], view[2][2]);
}

void ExpectClose(const TVector3& a, const TVector3& b)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(a[i], b[i], 1e-5f);
}

} // namespace

TEST(CameraPlace, FrontSideAndTopLookStraightAtTheSamePlace)
{
    constexpr float quarter = 1.57079633f;
    TMayaCamera maya;
    TQuakeCamera quake;
    for (TCamera* camera : {static_cast<TCamera*>(&maya), static_cast<TCamera*>(&quake)}) {
        const TCameraPlace before = camera->GetPlace();
        camera->LookFrom(0, 0);
        ExpectClose(BackOf(*camera), TVector3(0, 0, 1));
        camera->LookFrom(quarter, 0);
        ExpectClose(BackOf(*camera), TVector3(1, 0, 0));
        camera->LookFrom(0, quarter);
        ExpectClose(BackOf(*camera), TVector3(0, 1, 0));
        ExpectClose(camera->GetPlace().Target, before.Target);
        EXPECT_NEAR(camera->GetPlace().Distance, before.Distance, 1e-4f);
        // It stays so as long as nobody turns it.
        TInput().To(*camera, 0, 0, 0.02f);
        ExpectClose(BackOf(*camera), TVector3(0, 1, 0));
    }
}

TEST(CameraPlace, APlaceIsComeBackTo)
{
    TMayaCamera maya;
    TQuakeCamera quake;
    for (TCamera* camera : {static_cast<TCamera*>(&maya), static_cast<TCamera*>(&quake)}) {
        Drag(*camera, MB_LEFT, 40, 25);
        Drag(*camera, MB_MIDDLE, -30, 15);
        TMatrix4 there;
        camera->GetView(there);
        const TCameraPlace place = camera->GetPlace();
        camera->Reset();
        camera->SetPlace(place);
        TMatrix4 back;
        camera->GetView(back);
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column)
                EXPECT_NEAR(back[row][column], there[row][column], 1e-4f);
    }
}
