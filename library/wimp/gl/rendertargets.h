#pragma once

#include "library/containers/vector.h"
#include "library/wimp/gl/dotrectangle.h"

class TRenderWindow;

// What a renderer draws into: a target with several dots for each of the window, which windows of one size
// share, and the picture that comes out of it, which is kept from frame to frame. Its owner makes the
// window's context current.
class TRenderTargets
{
public:
    TRenderTargets() = default;
    ~TRenderTargets() { Release(); }
    TRenderTargets(const TRenderTargets&) = delete;
    TRenderTargets& operator=(const TRenderTargets&) = delete;

    // The window stays the caller's.
    void Init(TRenderWindow* window);
    // Gives OpenGL's objects back.
    void Release();
    // For a window of so many dots. What the picture showed is lost.
    void Resize(int width, int height);
    // To draw into the target.
    void BindTarget();
    // Moves the picture by so many dots; what comes into sight is anything.
    void MovePicture(const int* shift);
    // Scales the parts, which are in dots of the window, of the target down into the picture.
    void TakeParts(const vector<TDotRectangle>& parts);
    // Shows the picture in the window.
    void Present();

    // 2, unless the driver takes no target so large.
    int GetSupersampling() const { return Supersampling; }
    int GetWidth() const { return Width; }
    int GetHeight() const { return Height; }

private:
    bool HasOwnFrameBuffer() const;
    void Bind(unsigned texture);
    void MakePicture(unsigned& picture);

    TRenderWindow* Window = nullptr;
    unsigned FrameBuffer = 0;
    // What the frame buffer has attached.
    unsigned Attached = 0;
    unsigned ColourTexture = 0;
    unsigned Picture = 0;
    int Width = 0;
    int Height = 0;
    int Supersampling = 2;
};
