#pragma once

// A window as its renderer sees it.
//
// Everything that a person sees is laid out in pixels of one physical size: windows, controls, dialogs, the
// lines and texts of TGDIContext, a graph view at zoom 1, and all positions of the pointer, which can
// therefore be compared with what is drawn. On a scaled screen a pixel is several dots of the screen, and not
// always a whole number of them: GetDotsPerPixel tells how many. Dots matter to what OpenGL fills: viewports,
// targets, copies and scissors are as large as GetDotSize tells, to the dot, and pictures of text are made
// for dots. Who draws asks at every frame, as a window may be moved to a screen of another scale.
class TRenderWindow
{
public:
    virtual ~TRenderWindow() = default;

    // Makes the window's OpenGL context current; false without one.
    virtual bool MakeCurrent() = 0;
    // The name of the frame buffer that the window shows.
    virtual unsigned GetFrameBuffer() = 0;
    // In pixels.
    virtual void GetSize(int& width, int& height) const = 0;
    // The same in dots; that of the frame buffer.
    virtual void GetDotSize(int& width, int& height) const = 0;
    virtual double GetDotsPerPixel() const = 0;
    // Asks for a paint message; any number of calls give one.
    virtual void Redraw() = 0;
    virtual void TakeFocus() = 0;
    virtual bool HasFocus() const = 0;
    // One MT_TIMER with the number after the milliseconds; restarts a running one.
    virtual void StartTimer(int timer, int milliseconds) = 0;
    virtual void StopTimer(int timer) = 0;
};
