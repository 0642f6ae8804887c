#pragma once

// A window as its renderer sees it.
class TRenderWindow
{
public:
    virtual ~TRenderWindow() = default;

    // Makes the window's OpenGL context current; false without one.
    virtual bool MakeCurrent() = 0;
    // The name of the frame buffer that the window shows.
    virtual unsigned GetFrameBuffer() = 0;
    virtual void GetSize(int& width, int& height) const = 0;
    // Asks for a paint message; any number of calls give one.
    virtual void Redraw() = 0;
    virtual void TakeFocus() = 0;
    virtual bool HasFocus() const = 0;
    // One MT_TIMER with the number after the milliseconds; restarts a running one.
    virtual void StartTimer(int timer, int milliseconds) = 0;
    virtual void StopTimer(int timer) = 0;
};
