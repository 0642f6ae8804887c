#include "particles/cindermill/interface/particles/particlerenderwindow.h"

#include "library/system/clock.h"
#include "library/wimp/gdi/rgbpicture.h"
#include "library/wimp/gl/device/sceneview.h"
#include "library/wimp/gl/framebuffers.h"
#include "library/wimp/gl/framepixels.h"
#include "library/wimp/gl/glcontext.h"
#include "particles/cindermill/interface/particles/previewcommands.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

#include <GL/glew.h>

#include <cmath>

static constexpr TGDIColour RenderBackground = 0xCCCCCC;
static TWindowClass RenderClass("cindermill_particlewindow_render", 0, RenderBackground, true);

// The settings' camera modes.
enum TCameraMode
{
    CM_MAYA,
    CM_QUAKE
};

// By TCameraKey.
static constexpr int KeyCodes[CK_NUMKEYS] = {KEY_SHIFT, KEY_CTRL, KEY_ALT,    KEY_LEFT,    KEY_RIGHT,
                                             KEY_UP,    KEY_DOWN, KEY_PAGEUP, KEY_PAGEDOWN};

// A flight does not leap after a stall.
static constexpr uint32_t MaxCameraStep = 100;

bool TParticleRenderWindow::Create(TWindow* owner, TDocument& document)
{
    Doc = &document;
    LastUpdate = GetTickCount();
    TWindowParams params;
    params.Class = &RenderClass;
    params.Owner = owner;
    params.Kind = WK_GLCHILD;
    if (!TWindow::Create(params))
        return false;
    SetSpokenName("Preview of the effect");
    return true;
}

void TParticleRenderWindow::Tick()
{
    SetActiveCamera();
    const uint32_t now = GetTickCount();
    const uint32_t elapsed = now - LastUpdate;
    LastUpdate = now;
    UpdateCamera(static_cast<float>((elapsed < MaxCameraStep ? elapsed : MaxCameraStep) / 1000.0));
    // What changed while nothing is drawn is still to be seen afterwards.
    DisplaysChanged = Scene.Tick(*Doc) || DisplaysChanged;
}

// A long way to another time is shown in steps.
bool TParticleRenderWindow::IsPictureDue() const
{
    constexpr uint32_t longestHold = 250;
    return !PictureHeld || GetTickCount() - LastPaint > longestHold;
}

void TParticleRenderWindow::RedrawChanged()
{
    if (!IsInSight())
        return;
    if ((!DisplaysChanged && GetPicture() == Painted) || !IsPictureDue())
        return;
    if (!NeedsRedraw)
        Redraw();
    NeedsRedraw = true;
}

TParticleRenderWindow::TPicture TParticleRenderWindow::GetPicture() const
{
    TPicture picture;
    Camera->GetView(picture.View);
    GetDotSize(picture.Width, picture.Height);
    picture.Time = Doc->GetEngine().GetTime();
    picture.HasEffect = Doc->GetEngine().IsInited();
    picture.Revision = Doc->GetRevision();
    picture.Look = Scene.GetLook();
    picture.Picture = Scene.GetBackdrop().GetNumPictures();
    return picture;
}

void TParticleRenderWindow::SetActiveCamera()
{
    TCamera* wanted = &MayaCamera;
    if (TCindermillApp::Get().GetSettings().GetCameraMode() == CM_QUAKE)
        wanted = &QuakeCamera;
    if (wanted != Camera)
        wanted->OnButtons(Camera->GetButtons());
    Camera = wanted;
}

void TParticleRenderWindow::UpdateCamera(float seconds)
{
    TCameraInput input;
    input.Moved = Moved;
    input.Keys = Keys;
    input.Seconds = seconds;
    int width = 0;
    GetSize(width, input.Height);
    Camera->Update(input);
    Moved = TVector3(0, 0, 0);
}

bool TParticleRenderWindow::OnMessage(const TMessage& message)
{
    switch (message.Type) {
    case MT_PAINT:
        Paint();
        return true;
    case MT_SIZE:
        Redraw();
        return true;
    case MT_KEYDOWN:
        OnKey(message.Key, true);
        if (Commands != nullptr)
            Commands->OnPreviewKey(message);
        return message.Key != KEY_TAB;
    case MT_KEYUP:
        OnKey(message.Key, false);
        return true;
    case MT_CHAR:
        return Commands != nullptr && Commands->OnPreviewKey(message);
    case MT_LEFTDOWN:
    case MT_MIDDLEDOWN:
    case MT_RIGHTDOWN:
    case MT_LEFTUP:
    case MT_MIDDLEUP:
    case MT_RIGHTUP:
        OnButtons(message, message.Type == MT_LEFTDOWN || message.Type == MT_MIDDLEDOWN ||
                               message.Type == MT_RIGHTDOWN);
        if (message.Type == MT_RIGHTUP)
            OnRightUp(message);
        return true;
    case MT_MOUSEMOVE:
        OnMouseMove(message);
        return true;
    case MT_CAPTURELOST:
        EndDrag();
        return true;
    case MT_WHEEL:
        Camera->OnWheel(message.Delta);
        UpdateCamera(0);
        return true;
    case MT_FOCUSLOST:
        // Nobody will tell when the keys are let go.
        for (bool& key : Keys)
            key = false;
        return true;
    default:
        return TWindow::OnMessage(message);
    }
}

void TParticleRenderWindow::OnKey(int key, bool down)
{
    for (int i = 0; i < CK_NUMKEYS; ++i)
        if (KeyCodes[i] == key)
            Keys[i] = down;
    if (key == 'R' && down)
        Camera->Reset();
}

// What was moved before belongs to the buttons that were held until now.
void TParticleRenderWindow::OnButtons(const TMessage& message, bool down)
{
    UpdateCamera(0);
    LastX = message.X;
    LastY = message.Y;
    if (down) {
        TakeFocus();
        SetCapture();
    } else if (message.Buttons == 0) {
        ReleaseCapture();
    }
    Keys[CK_SHIFT] = (message.KeyFlags & KF_SHIFT) != 0;
    Keys[CK_CTRL] = (message.KeyFlags & KF_CTRL) != 0;
    Keys[CK_ALT] = (message.KeyFlags & KF_ALT) != 0;
    Camera->OnButtons(message.Buttons);
    if (message.Type == MT_RIGHTDOWN) {
        RightX = message.X;
        RightY = message.Y;
        RightDragged = message.Buttons != MB_RIGHT;
    }
}

// A click that has moved nothing asks for the menu.
void TParticleRenderWindow::OnRightUp(const TMessage& message)
{
    if (!RightDragged && message.Buttons == 0 && Commands != nullptr)
        Commands->OpenPreviewMenu(*this, message.GetPixelX(), message.GetPixelY());
}

// Whatever buttons are held: their releases may never be heard of.
void TParticleRenderWindow::EndDrag()
{
    UpdateCamera(0);
    Camera->OnButtons(0);
    RightDragged = true;
    ReleaseCapture();
}

void TParticleRenderWindow::OnMouseMove(const TMessage& message)
{
    // Another program may have taken the release.
    if (message.Buttons == 0 && Camera->GetButtons() != 0)
        EndDrag();
    if (Camera->GetButtons() != 0) {
        Moved[0] += static_cast<float>(message.X - LastX);
        Moved[1] += static_cast<float>(message.Y - LastY);
    }
    LastX = message.X;
    LastY = message.Y;
    constexpr double clickReach = 2;
    if (std::fabs(message.X - RightX) > clickReach || std::fabs(message.Y - RightY) > clickReach)
        RightDragged = true;
}

void TParticleRenderWindow::Paint()
{
    NeedsRedraw = false;
    DisplaysChanged = false;
    LastPaint = GetTickCount();
    // What drawing itself changes, by a fault, is for the next picture.
    Painted = GetPicture();
    const int width = Painted.Width;
    const int height = Painted.Height;
    if (width <= 0 || height <= 0 || !MakeCurrent() || !InitGl())
        return;
    DropGlErrors();
    FlushGlDeletions();
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, GetFrameBuffer());
    glViewport(0, 0, width, height);
    // Grids and displays are as bold on every screen.
    glLineWidth(static_cast<float>(GetDotsPerPixel()));
    Scene.GetBackdrop().SetDotsPerPixel(GetDotsPerPixel());
    TMatrix4 projection;
    TCamera::GetProjection(static_cast<float>(width) / static_cast<float>(height), projection);
    TSceneView view;
    view.Set(Painted.View, projection);
    const uint64_t begin = GetPerformanceCounter();
    Scene.Draw(*Doc, view);
    constexpr double nanoseconds = 1e6;
    DrawCost = static_cast<float>(static_cast<double>(GetPerformanceCounter() - begin) / nanoseconds);
}

bool TParticleRenderWindow::ReadPicture(TRgbPicture& picture)
{
    int width = 0;
    int height = 0;
    GetDotSize(width, height);
    ASSERT(picture.GetWidth() == width && picture.GetHeight() == height);
    if (!MakeCurrent() || !InitGl())
        return false;
    {
        const TGlStateScope scope;
        Paint();
    }
    ReadFramePixels(GetFrameBuffer(), width, height, picture.GetPixels());
    return true;
}
