#pragma once

#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/renderobject.h"
#include "library/wimp/gl/renderwindow.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

// OpenGL for tests, without a display: software rendering into frame buffers of its own, so that tests run
// beside one another.

// Red, green, blue, alpha.
struct TPixel
{
    int R = 0;
    int G = 0;
    int B = 0;
    int A = 0;
    bool operator==(const TPixel& rhs) const = default;
};
std::ostream& operator<<(std::ostream& out, const TPixel& pixel);
// Whether red, green and blue differ by no more than the tolerance.
bool IsClose(const TPixel& a, const TPixel& b, int tolerance = 2);

// What a window shows; the first row is the topmost.
class TPicture
{
public:
    TPicture(int width, int height) : Width(width), Height(height), Bytes(size_t(width) * height * 4) {}
    int GetWidth() const { return Width; }
    int GetHeight() const { return Height; }
    TPixel At(int x, int y) const;
    // How many pixels of the rectangle, or of all, are as wanted.
    int Count(const std::function<bool(const TPixel&)>& wanted, int x, int y, int width, int height) const;
    int Count(const std::function<bool(const TPixel&)>& wanted) const;
    // The part, each pixel shown as a square of so many, to look at.
    TPicture Enlarge(int x, int y, int width, int height, int factor) const;
    bool SavePng(const std::string& path) const;
    uint8_t* GetBytes() { return Bytes.data(); }

private:
    int Width;
    int Height;
    std::vector<uint8_t> Bytes;
};

// A context of its own, sharing its objects with all others of the process. Current when made.
class TTestContext
{
public:
    TTestContext();
    ~TTestContext();
    TTestContext(const TTestContext&) = delete;
    TTestContext& operator=(const TTestContext&) = delete;
    bool MakeCurrent();
    static void ClearCurrent();

private:
    void* Context = nullptr;
};

// A window without OpenGL that notes what is asked of it. Its size is told in the screen's dots.
class TFakeWindow : public TRenderWindow
{
public:
    TFakeWindow(int width, int height) : Width(width), Height(height) {}

    bool MakeCurrent() override { return false; }
    unsigned GetFrameBuffer() override { return 0; }
    void GetSize(int& width, int& height) const override;
    void GetDotSize(int& width, int& height) const override;
    double GetDotsPerPixel() const override { return DotsPerPixel; }
    void Redraw() override { ++NumRedraws; }
    void TakeFocus() override;
    bool HasFocus() const override { return Focused; }
    void StartTimer(int timer, int milliseconds) override { Timers[timer] = milliseconds; }
    void StopTimer(int timer) override { Timers.erase(timer); }

    double DotsPerPixel = 1;
    bool Focused = false;
    int NumRedraws = 0;
    int NumFocusTakes = 0;
    std::map<int, int> Timers;
    // Called by TakeFocus, as a platform tells the window that loses the focus.
    std::function<void()> OnTakeFocus;

protected:
    int Width;
    int Height;
};

// A window that is a frame buffer in a context of its own.
class TTestWindow : public TFakeWindow
{
public:
    TTestWindow(int width, int height);
    ~TTestWindow() override;

    bool MakeCurrent() override;
    unsigned GetFrameBuffer() override { return FrameBuffer; }

    void Resize(int width, int height);
    // As when a window is put under another: the old context and its frame buffers are gone.
    void RecreateContext();
    TPicture Read();

    bool HasContext = true;

private:
    void MakeFrameBuffer();
    void DeleteFrameBuffer();

    TTestContext* Context = nullptr;
    unsigned FrameBuffer = 0;
    unsigned ColourBuffer = 0;
    unsigned DepthBuffer = 0;
};

// A window with its renderer.
class TGlTest : public testing::Test
{
protected:
    static constexpr int Width = 200;
    static constexpr int Height = 150;

    void SetUp() override;
    // Paints the tree and reads the window.
    TPicture Paint(TRenderObject& root);

    TTestWindow Window{Width, Height};
    TRenderer Renderer;
};

// A render object that draws by a function, and notes its events.
class TDrawnObject : public TRenderObject
{
public:
    TDrawnObject() = default;
    explicit TDrawnObject(std::function<void(TRenderer&)> draw) : Draw(std::move(draw)) {}
    void Render(TRenderer& renderer) override;
    void GetBounds(TVector2& min, TVector2& max) override;
    bool Event(const TRenderEvent& event) override;
    void Tick(TRenderer* renderer) override;
    std::vector<int> GetCodes() const;

    std::function<void(TRenderer&)> Draw;
    std::function<bool(const TRenderEvent&)> OnEvent;
    std::function<void()> OnTick;
    TVector2 Min = TVector2(0, 0);
    TVector2 Max = TVector2(1000, 1000);
    std::vector<TRenderEvent> Events;
    int NumRenders = 0;
    int NumTicks = 0;
    // What Event answers without OnEvent; otherwise events go on to the parent.
    bool Consumes = true;
};
