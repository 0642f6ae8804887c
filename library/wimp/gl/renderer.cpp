#include "library/wimp/gl/renderer.h"

#include "library/containers/assertion.h"
#include "library/containers/wholenumbers.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/gl/renderbatch.h"
#include "library/wimp/gl/rendererwatch.h"
#include "library/wimp/gl/renderobject.h"
#include "library/wimp/gl/renderpath.h"
#include "library/wimp/gl/renderwindow.h"
#include "library/wimp/gl/tintprogram.h"

#include <GL/glew.h>
#include <algorithm>
#include <cmath>

namespace {
// A view lies on a multiple of this part of a dot: a pan by whole dots then moves the picture by whole dots,
// whatever has been rounded on the way.
constexpr int PlacesPerDot = 16;

// It holds a frame only while that is painted, and keeps its memory for the next, whichever window's it is.
TRenderBatch& GetBatch()
{
    static TRenderBatch batch;
    return batch;
}

} // namespace

TRenderer::~TRenderer()
{
    TRendererWatch::Forget(this);
    TRenderObject::ForgetRenderer(this);
    Release();
}

bool TRenderer::Init(TRenderWindow* window, const TRenderer* shareWith)
{
    // All contexts of the program share their objects; only a first renderer has none to share with.
    (void)shareWith;
    Release();
    Window = window;
    Targets.Init(window);
    return window != nullptr;
}

void TRenderer::Release()
{
    Targets.Release();
    Tiles.Forget();
}

void TRenderer::Render(TRenderObject& root)
{
    if (Window == nullptr || !Window->MakeCurrent() || !InitGl())
        return;
    DropGlErrors();
    FlushGlDeletions();
    int width = 0;
    int height = 0;
    Window->GetDotSize(width, height);
    DotsPerPixel = Window->GetDotsPerPixel();
    if (width != GetWidth() || height != GetHeight()) {
        Tiles.Forget();
        Targets.Resize(width, height);
    }
    if (GetWidth() <= 0 || GetHeight() <= 0)
        return;

    PlaceView();
    List.Clear(GetWidth() * GetSupersampling(), GetHeight() * GetSupersampling());
    Drawing = true;
    DrawObjects(root);
    Drawing = false;
    Paint();
}

void TRenderer::PlaceView()
{
    const int parts = TRenderList::PartsPerDot * GetSupersampling();
    Place.Width = GetWidth();
    Place.Height = GetHeight();
    Place.Supersampling = GetSupersampling();
    for (int i = 0; i < 2; ++i) {
        constexpr double limit = 1e9;
        const double dotsPerUnit = double(Scale[i]) * DotsPerPixel;
        const int64_t place = NearestWhole(Offset[i] * dotsPerUnit * PlacesPerDot, limit);
        Place.Moved[i] = static_cast<int>(FloorOfQuotient(place, PlacesPerDot));
        ViewPlace[i] = static_cast<double>(place * (parts / PlacesPerDot));
        PartsPerUnit[i] = dotsPerUnit * parts;
        DrawnOffset[i] = static_cast<double>(place) / (PlacesPerDot * dotsPerUnit);
    }
}

// Whatever goes wrong in between, the next frame paints everything.
void TRenderer::Paint()
{
    Tiles.Compare(List, Place);
    const int* shift = Tiles.GetShift();
    if (shift[0] != 0 || shift[1] != 0)
        Targets.MovePicture(shift);
    if (!Tiles.GetParts().empty())
        Targets.BindTarget();
    TRenderBatch& batch = GetBatch();
    batch.BeginFrame(GetWidth() * GetSupersampling(), GetHeight() * GetSupersampling());
    for (const TDotRectangle& part : Tiles.GetParts())
        batch.DrawPart(List, part.Enlarge(GetSupersampling()));
    batch.EndFrame();
    NumCalls = batch.GetNumCalls();
    if (!Tiles.GetParts().empty())
        Targets.TakeParts(Tiles.GetParts());
    Targets.Present();
    Tiles.Keep();
}

void TRenderer::DrawObjects(TRenderObject& root)
{
    WindowStack.clear();
    OriginStack.clear();
    PushOrigin(TVector2(0, 0));
    const TVector2 size(static_cast<float>(GetWidth() / (Scale[0] * DotsPerPixel)),
                        static_cast<float>(GetHeight() / (Scale[1] * DotsPerPixel)));
    PushWindow(-Offset, size - Offset);
    glEnable(GL_SCISSOR_TEST);
    CheckGlError();

    root.Render(*this);
    CheckGlError();
    if (TRenderObject* overlay = TRenderObject::FindOverlay(*this, root)) {
        PushOrigin(overlay->GetAbsolutePosition());
        overlay->Render(*this);
        PopOrigin();
        CheckGlError();
    }
    ASSERT_TEXT(WindowStack.size() == 1, "WindowStack.size() == 1");
    ASSERT_TEXT(OriginStack.size() == 1, "OriginStack.size() == 1");
}

TVector2 TRenderer::PixelToWorld(double x, double y) const
{
    return TVector2(static_cast<float>(x / Scale[0] - Offset[0]),
                    static_cast<float>(y / Scale[1] - Offset[1]));
}

TVector2 TRenderer::GetResolution() const
{
    return TVector2(static_cast<float>(Scale[0] * DotsPerPixel), static_cast<float>(Scale[1] * DotsPerPixel));
}

void TRenderer::PushOrigin(const TVector2& delta)
{
    OriginStack.push_back(OriginStack.empty() ? delta : OriginStack.back() + delta);
}

void TRenderer::PopOrigin()
{
    ASSERT_TEXT(!OriginStack.empty(), "!OriginStack.empty()");
    OriginStack.pop_back();
}

void TRenderer::PushWindow(const TVector2& min, const TVector2& max)
{
    if (WindowStack.empty()) {
        WindowStack.push_back(TClipRectangle{min, max});
        SetWholeScissor();
        return;
    }
    TClipRectangle clip{min + GetOrigin(), max + GetOrigin()};
    const TClipRectangle& top = WindowStack.back();
    for (int i = 0; i < 2; ++i) {
        clip.Min[i] = std::max(top.Min[i], clip.Min[i]);
        clip.Max[i] = std::min(top.Max[i], clip.Max[i]);
    }
    WindowStack.push_back(clip);
    SetScissor(clip);
}

void TRenderer::PopWindow()
{
    if (WindowStack.size() <= 1) {
        WindowStack.clear();
        SetWholeScissor();
        return;
    }
    WindowStack.pop_back();
    if (WindowStack.size() == 1)
        SetWholeScissor();
    else
        SetScissor(WindowStack.back());
}

void TRenderer::GetVisibleRect(TVector2& min, TVector2& max) const
{
    min = max = TVector2(0, 0);
    if (WindowStack.empty())
        return;
    min = WindowStack.back().Min;
    max = WindowStack.back().Max;
}

void TRenderer::SetScissor(const TClipRectangle& rectangle)
{
    // Edges are rounded, not sizes, so that what touches in the world touches on the screen.
    int low[2];
    int size[2];
    for (int i = 0; i < 2; ++i) {
        constexpr double limit = 1e6;
        const double dots = Scale[i] * DotsPerPixel * GetSupersampling();
        const double from = (rectangle.Min[i] + DrawnOffset[i]) * dots;
        const double to = (rectangle.Max[i] + DrawnOffset[i]) * dots;
        low[i] = static_cast<int>(NearestWhole(from, limit));
        size[i] = static_cast<int>(NearestWhole(to, limit)) - low[i];
        if (size[i] < 0)
            size[i] = 0;
    }
    Scissor[0] = low[0];
    Scissor[1] = GetHeight() * GetSupersampling() - (low[1] + size[1]);
    Scissor[2] = size[0];
    Scissor[3] = size[1];
    List.SetClip(TDotRectangle{{low[0], low[1]}, {low[0] + size[0], low[1] + size[1]}});
    ApplyScissor();
}

void TRenderer::SetWholeScissor()
{
    Scissor[0] = 0;
    Scissor[1] = 0;
    Scissor[2] = GetWidth() * GetSupersampling();
    Scissor[3] = GetHeight() * GetSupersampling();
    List.SetClip(TDotRectangle{{0, 0}, {Scissor[2], Scissor[3]}});
    ApplyScissor();
}

void TRenderer::ApplyScissor()
{
    if (!Drawing)
        return;
    glScissor(Scissor[0], Scissor[1], Scissor[2], Scissor[3]);
    CheckGlError();
}

TVector2 TRenderer::Snap(const TVector2& point) const
{
    const TVector2 origin = GetOrigin();
    const double dots[2] = {Scale[0] * DotsPerPixel * GetSupersampling(), Scale[1] * DotsPerPixel};
    TVector2 result;
    for (int i = 0; i < 2; ++i) {
        const double fixed = DrawnOffset[i] + origin[i];
        result[i] = static_cast<float>(std::floor((fixed + point[i]) * dots[i] + 0.5) / dots[i] - fixed);
    }
    return result;
}

double TRenderer::SnapAcross(double place) const
{
    const double dots = Scale[0] * DotsPerPixel;
    const double fixed = DrawnOffset[0] + GetOrigin()[0];
    return std::floor((fixed + place) * dots + 0.5) / dots - fixed;
}

void TRenderer::DrawRectangle(const TVector2& min, const TVector2& max)
{
    int low[2];
    int high[2];
    GetPlace(min, low);
    GetPlace(max, high);
    List.Box(low, high);
}

void TRenderer::DrawLine(const TVector2& from, const TVector2& to, float width)
{
    TVector2 direction = to - from;
    if (!(direction.LengthSquared() > 0.0f))
        return;
    direction.Normalise();
    const TVector2 side = TVector2(-direction[1], direction[0]) * (width * 0.5f);
    if (from[0] == to[0] || from[1] == to[1]) {
        DrawRectangle(from + side, to - side);
        return;
    }
    Begin(PR_QUADS);
    Vertex(from + side);
    Vertex(to + side);
    Vertex(to - side);
    Vertex(from - side);
    End();
}

void TRenderer::DrawTexture(unsigned texture, const TVector2& min, const TVector2& max,
                            const TVector4& colour, bool alphaOnly)
{
    Begin(PR_QUADS, texture, alphaOnly ? GetAlphaTintProgram() : GetTintProgram(), colour);
    // The grey has its own brightness as alpha: blended, it would come out darker.
    if (alphaOnly)
        List.SetOpaque();
    Vertex(min, TVector2(0, 1));
    Vertex(TVector2(max[0], min[1]), TVector2(1, 1));
    Vertex(max, TVector2(1, 0));
    Vertex(TVector2(min[0], max[1]), TVector2(0, 0));
    End();
}

void TRenderer::DrawCurve(const TVector2* bezier, float width)
{
    const int parts = GetNumCurveParts(bezier, GetResolution(), 1.0f);
    CurvePoints.clear();
    CurvePoints.reserve(parts + 1);
    for (int i = 0; i <= parts; ++i)
        CurvePoints.push_back(EvaluateCurve(bezier, static_cast<float>(i / double(parts))));
    MakeStroke(CurvePoints, false, width, CurveStrip);
    Begin(PR_STRIP);
    for (const TVector2& point : CurveStrip)
        Vertex(point);
    End();
}
