#pragma once

#include "library/wimp/gl/offscreen/offscreencontext.h"
#include "library/wimp/gl/renderwindow.h"

#include <cstdint>

// A frame buffer that is drawn into as if it were a window that nobody uses.
class TOffscreenWindow : public TRenderWindow
{
public:
    // The context stays the caller's and outlives the window.
    explicit TOffscreenWindow(TOffscreenContext& context) : Context(context) {}
    ~TOffscreenWindow() override;
    TOffscreenWindow(const TOffscreenWindow&) = delete;
    TOffscreenWindow& operator=(const TOffscreenWindow&) = delete;

    // False if the driver has no frame buffer so large.
    bool Resize(int width, int height);
    // Red, green, blue, in rows from the top.
    void Read(uint8_t* pixels);

    bool MakeCurrent() override { return Context.MakeCurrent(); }
    unsigned GetFrameBuffer() override { return FrameBuffer; }
    void GetSize(int& width, int& height) const override;
    void GetDotSize(int& width, int& height) const override;
    double GetDotsPerPixel() const override { return 1; }
    void Redraw() override {}
    void TakeFocus() override {}
    bool HasFocus() const override { return false; }
    void StartTimer(int, int) override {}
    void StopTimer(int) override {}

private:
    void Release();

    TOffscreenContext& Context;
    int Width = 0;
    int Height = 0;
    unsigned FrameBuffer = 0;
    unsigned ColourBuffer = 0;
    unsigned DepthBuffer = 0;
};
