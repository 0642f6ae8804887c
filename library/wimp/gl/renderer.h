#pragma once

#include "library/containers/vector.h"
#include "library/maths/vector2.h"
#include "library/maths/vector4.h"
#include "library/wimp/gl/device/rendertextureinstance.h"
#include "library/wimp/gl/nearestwhole.h"
#include "library/wimp/gl/painttiles.h"
#include "library/wimp/gl/renderlist.h"
#include "library/wimp/gl/rendertargets.h"

class TRenderObject;
class TRenderWindow;

struct TClipRectangle
{
    TVector2 Min;
    TVector2 Max;
};

// Draws the tree of render objects into a window, at twice its size and then scaled down. World units times
// Scale are pixels, as TRenderWindow tells them from the screen's dots; y grows downwards; Offset is added to
// a world position before scaling. Each frame asks all objects in sight, but only those parts of the window
// are painted where they drew something else than before; what a pan leaves in sight is moved.
class TRenderer : public TTexturePainter
{
public:
    TRenderer() = default;
    ~TRenderer() override;
    TRenderer(const TRenderer&) = delete;
    TRenderer& operator=(const TRenderer&) = delete;

    // The window stays the caller's. The renderer it shares with tells which context's objects it can use.
    bool Init(TRenderWindow* window, const TRenderer* shareWith = nullptr);
    TRenderWindow* GetWindow() const { return Window; }
    // One frame. Called while the window is painted. Draws nothing without a context or into an empty window.
    void Render(TRenderObject& root);
    // Gives OpenGL's objects back; the next frame makes them anew. Called when the window goes.
    void Release();

    void SetOffset(const TVector2& offset) { Offset = offset; }
    void SetScale(const TVector2& scale) { Scale = scale; }
    const TVector2& GetOffset() const { return Offset; }
    const TVector2& GetScale() const { return Scale; }
    TVector2 PixelToWorld(double x, double y) const;
    // Dots to a world unit, of the window that is being drawn: what fine detail is made for, while Scale is
    // what a person sees of a size.
    TVector2 GetResolution() const;

    // Relative to the origin on top.
    void PushOrigin(const TVector2& delta);
    void PopOrigin();
    // The origin on top; zeros on an empty stack.
    TVector2 GetOrigin() const { return OriginStack.empty() ? TVector2(0, 0) : OriginStack.back(); }
    void PushWindow(const TVector2& min, const TVector2& max);
    void PopWindow();
    // The clip rectangle on top, in world units.
    void GetVisibleRect(TVector2& min, TVector2& max) const;

    // The nearest position for the start of a text, so that it looks sharp: across on a dot of the doubled
    // target, down on one of the window.
    TVector2 Snap(const TVector2& point) const;
    // The nearest place across, relative to the current origin, that is a dot of the window.
    double SnapAcross(double place) const;
    // Red, green, blue, alpha, for the vertices that follow; each may have its own.
    void SetColour(const TVector4& colour) { List.SetColour(colour); }
    // One primitive, drawn once all of the frame has been seen.
    void Begin(TPrimitive primitive) { List.Begin(primitive); }
    // The same with a texture, through a fragment program that takes the local parameter; vertices then have
    // positions in the texture.
    void Begin(TPrimitive primitive, unsigned texture, const TArbProgram& program, const TVector4& local)
    {
        List.Begin(primitive, texture, program, local);
    }
    void Vertex(const TVector2& point) { Vertex(point, TVector2(0, 0)); }
    void Vertex(const TVector2& point, const TVector2& texCoord)
    {
        int place[2];
        GetPlace(point, place);
        List.Vertex(place, texCoord);
    }
    void End() { List.End(); }
    void DrawRectangle(const TVector2& min, const TVector2& max);
    void DrawLine(const TVector2& from, const TVector2& to, float width);
    // Four control points.
    void DrawCurve(const TVector2* bezier, float width);
    void DrawTexture(unsigned texture, const TVector2& min, const TVector2& max, const TVector4& colour,
                     bool alphaOnly) override;
    // Draw calls of the last frame, and the parts of the window that it painted, in dots.
    int GetNumCalls() const { return NumCalls; }
    const vector<TDotRectangle>& GetPainted() const { return Tiles.GetParts(); }

    // Dots of the target to one of the window, across and down.
    int GetSupersampling() const { return Targets.GetSupersampling(); }
    // Of the window, in dots.
    int GetWidth() const { return Targets.GetWidth(); }
    int GetHeight() const { return Targets.GetHeight(); }
    // The scissor rectangle last set, in dots of the doubled target: x, y from the bottom, width, height.
    const int* GetScissor() const { return Scissor; }

private:
    void PlaceView();
    void DrawObjects(TRenderObject& root);
    void Paint();
    // The one place that maps a point, relative to the current origin, to the target: to its place there in
    // the parts of dots that lists count in.
    void GetPlace(const TVector2& point, int* place) const
    {
        const TVector2 origin = GetOrigin();
        for (int i = 0; i < 2; ++i) {
            // Nothing is drawn from so far away that it would not fit.
            constexpr double farAway = 1 << 29;
            place[i] = static_cast<int>(
                NearestWhole((double(origin[i]) + point[i]) * PartsPerUnit[i] + ViewPlace[i], farAway));
        }
    }
    void SetScissor(const TClipRectangle& rectangle);
    void SetWholeScissor();
    void ApplyScissor();

    TRenderWindow* Window = nullptr;
    TRenderTargets Targets;
    TVector2 Offset = TVector2(0, 0);
    TVector2 Scale = TVector2(1, 1);
    double DotsPerPixel = 1;
    // Where the view lies, in parts of the target's dots, and those for each unit of the world.
    double ViewPlace[2] = {0, 0};
    double PartsPerUnit[2] = {1, 1};
    // Offset as it is drawn: in the window's dots a multiple of a small fraction of one.
    double DrawnOffset[2] = {0, 0};
    TPaintPlace Place;
    vector<TClipRectangle> WindowStack;
    vector<TVector2> OriginStack;
    int Scissor[4] = {};
    // Between the beginning and the end of a frame: OpenGL may be called.
    bool Drawing = false;
    TRenderList List;
    TPaintTiles Tiles;
    int NumCalls = 0;
    vector<TVector2> CurvePoints;
    vector<TVector2> CurveStrip;
};
