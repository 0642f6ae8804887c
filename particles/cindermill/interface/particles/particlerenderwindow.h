#pragma once

#include "library/wimp/window.h"
#include "particles/cindermill/interface/particles/camera.h"
#include "particles/cindermill/interface/particles/particlescene.h"

class TDocument;
class TPreviewCommands;
class TRgbPicture;

// The preview's view of the effect, with a camera that the mouse and the keys move.
class TParticleRenderWindow : public TWindow
{
public:
    // False if the window system refuses.
    bool Create(TWindow* owner, TDocument& document);
    // Moves the camera that the settings choose by what has come in.
    void Tick();
    // Asks for a repaint where the picture would be another than the last.
    void RedrawChanged();
    // What a frame shows now, in a picture of the window's dots. False without OpenGL.
    bool ReadPicture(TRgbPicture& picture);
    const TCamera& GetCamera() const { return *Camera; }
    // The active one, to be moved.
    TCamera& UseCamera() { return *Camera; }
    // Who takes the keys that are no camera's, and opens the menu; null for none.
    void SetCommands(TPreviewCommands* commands) { Commands = commands; }
    // What it draws, and how.
    TParticleScene& GetScene() { return Scene; }
    const TPreviewLook& GetLook() const { return Scene.GetLook(); }
    // While the effect is on its way to another time its picture stands still, but not for long.
    void HoldPicture(bool held) { PictureHeld = held; }
    // The engine's and the stages' time for the last picture, in milliseconds.
    float GetDrawCost() const { return DrawCost; }

    bool OnMessage(const TMessage& message) override;

private:
    // All that a picture depends on.
    struct TPicture
    {
        TMatrix4 View;
        int Width = 0;
        int Height = 0;
        float Time = 0;
        bool HasEffect = false;
        unsigned Revision = 0;
        TPreviewLook Look;
        // Of the backdrop's file.
        unsigned Picture = 0;
        bool operator==(const TPicture& rhs) const = default;
    };

    TPicture GetPicture() const;
    void SetActiveCamera();
    void UpdateCamera(float seconds);
    void OnKey(int key, bool down);
    void OnButtons(const TMessage& message, bool down);
    void EndDrag();
    void OnMouseMove(const TMessage& message);
    void OnRightUp(const TMessage& message);
    bool IsPictureDue() const;
    void Paint();

    TDocument* Doc = nullptr;
    TQuakeCamera QuakeCamera;
    TMayaCamera MayaCamera;
    TCamera* Camera = &MayaCamera;
    TParticleScene Scene;
    // Since the last update, in pixels.
    TVector3 Moved = TVector3(0, 0, 0);
    bool Keys[CK_NUMKEYS] = {};
    TPicture Painted;
    TPreviewCommands* Commands = nullptr;
    bool DisplaysChanged = false;
    bool PictureHeld = false;
    uint32_t LastPaint = 0;
    float DrawCost = 0;
    // Where the right button went down, and whether the pointer has left that place with it.
    double RightX = 0;
    double RightY = 0;
    bool RightDragged = false;
    // A repaint has been asked for and has not come yet.
    bool NeedsRedraw = false;
    uint32_t LastUpdate = 0;
    double LastX = 0;
    double LastY = 0;
};
