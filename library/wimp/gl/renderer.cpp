#include "library/wimp/gl/renderer.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/gl/rendererwatch.h"
#include "library/wimp/gl/renderobject.h"
#include "library/wimp/gl/renderpath.h"
#include "library/wimp/gl/renderwindow.h"
#include "library/wimp/gl/tintprogram.h"

#include <GL/glew.h>
#include <cmath>

namespace {
// Drawing is 2 by 2 supersampled.
constexpr int FullSupersampling = 2;

// Neither not a number nor beyond what the scissor takes.
int ToDot(double value)
{
    constexpr double limit = 1e6;
    if (!(value > -limit))
        return static_cast<int>(-limit);
    return static_cast<int>(std::lround(value < limit ? value : limit));
}

float Larger(float a, float b)
{
    return a > b ? a : b;
}

float Smaller(float a, float b)
{
    return a < b ? a : b;
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
    return window != nullptr;
}

void TRenderer::Release()
{
    if (FrameBuffer != 0 && Window != nullptr && Window->MakeCurrent() && HasOwnFrameBuffer())
        glDeleteFramebuffersEXT(1, &FrameBuffer);
    FrameBuffer = 0;
    DeleteGlTexture(ColourTexture);
    ColourTexture = 0;
    Width = 0;
    Height = 0;
}

// Frame buffers belong to one context, and a window may get a new one in which the name is free or another's.
bool TRenderer::HasOwnFrameBuffer() const
{
    if (FrameBuffer == 0 || FrameBuffer == Window->GetFrameBuffer() || !glIsFramebufferEXT(FrameBuffer))
        return false;
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, FrameBuffer);
    GLint attached = 0;
    glGetFramebufferAttachmentParameterivEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT,
                                             GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME_EXT, &attached);
    return static_cast<unsigned>(attached) == ColourTexture;
}

void TRenderer::Resize(int width, int height)
{
    Width = width;
    Height = height;
    const int longest = Width > Height ? Width : Height;
    Supersampling = longest <= GetMaxTextureSide() / FullSupersampling ? FullSupersampling : 1;
    if (ColourTexture == 0)
        glGenTextures(1, &ColourTexture);
    glBindTexture(GL_TEXTURE_2D, ColourTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, Width * Supersampling, Height * Supersampling, 0, GL_RGBA,
                 GL_UNSIGNED_BYTE, nullptr);
    CheckGlError();
}

void TRenderer::BindTarget()
{
    if (!HasOwnFrameBuffer())
        glGenFramebuffersEXT(1, &FrameBuffer);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, FrameBuffer);
    CheckGlError();
    glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_TEXTURE_2D, ColourTexture, 0);
    CheckGlError();
    glViewport(0, 0, Width * Supersampling, Height * Supersampling);
    CheckGlError();
    const unsigned fbostat = glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT);
    ASSERT_TEXT_MSG(fbostat == GL_FRAMEBUFFER_COMPLETE_EXT, "fbostat == GL_FRAMEBUFFER_COMPLETE_EXT",
                    TempFormat("FBO incomplete 0x%x\n", fbostat));
    CheckGlError();
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
    if (width != Width || height != Height)
        Resize(width, height);
    if (Width <= 0 || Height <= 0)
        return;

    BindTarget();
    WorldToClip = TVector2(static_cast<float>(2.0 * Scale[0] * DotsPerPixel / Width),
                           static_cast<float>(2.0 * Scale[1] * DotsPerPixel / Height));
    glDisable(GL_SCISSOR_TEST);
    Batch.BeginFrame();
    CheckGlError();
    glClearColor(1.0f, 1.0f, 0.95f, 0.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    CheckGlError();
    Drawing = true;
    DrawObjects(root);
    Drawing = false;
    Batch.EndFrame();
    Present();
}

void TRenderer::DrawObjects(TRenderObject& root)
{
    WindowStack.clear();
    OriginStack.clear();
    PushOrigin(TVector2(0, 0));
    const TVector2 size(static_cast<float>(Width / (Scale[0] * DotsPerPixel)),
                        static_cast<float>(Height / (Scale[1] * DotsPerPixel)));
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

void TRenderer::Present()
{
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Window->GetFrameBuffer());
    CheckGlError();
    glViewport(0, 0, Width, Height);
    glDisable(GL_SCISSOR_TEST);
    CheckGlError();
    // The picture's alpha is what blending has left; the window itself is opaque.
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, ColourTexture);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0);
    glVertex2f(-1, -1);
    glTexCoord2f(1, 0);
    glVertex2f(1, -1);
    glTexCoord2f(1, 1);
    glVertex2f(1, 1);
    glTexCoord2f(0, 1);
    glVertex2f(-1, 1);
    glEnd();
    glDisable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, 0);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    CheckGlError();
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

TVector2 TRenderer::GetOrigin() const
{
    return OriginStack.empty() ? TVector2(0, 0) : OriginStack.back();
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
        clip.Min[i] = Larger(clip.Min[i], top.Min[i]);
        clip.Max[i] = Smaller(clip.Max[i], top.Max[i]);
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
        const double dots = Scale[i] * DotsPerPixel * Supersampling;
        const double from = (double(rectangle.Min[i]) + Offset[i]) * dots;
        const double to = (double(rectangle.Max[i]) + Offset[i]) * dots;
        low[i] = ToDot(from);
        size[i] = ToDot(to) - low[i];
        if (size[i] < 0)
            size[i] = 0;
    }
    Scissor[0] = low[0];
    Scissor[1] = Height * Supersampling - (low[1] + size[1]);
    Scissor[2] = size[0];
    Scissor[3] = size[1];
    ApplyScissor();
}

void TRenderer::SetWholeScissor()
{
    Scissor[0] = 0;
    Scissor[1] = 0;
    Scissor[2] = Width * Supersampling;
    Scissor[3] = Height * Supersampling;
    ApplyScissor();
}

void TRenderer::ApplyScissor()
{
    if (!Drawing)
        return;
    Batch.Flush();
    glScissor(Scissor[0], Scissor[1], Scissor[2], Scissor[3]);
    CheckGlError();
}

TVector2 TRenderer::ToClip(const TVector2& point) const
{
    const TVector2 origin = GetOrigin();
    return TVector2(static_cast<float>((double(Offset[0]) + origin[0] + point[0]) * WorldToClip[0] - 1.0),
                    static_cast<float>(1.0 - (double(Offset[1]) + origin[1] + point[1]) * WorldToClip[1]));
}

TVector2 TRenderer::Snap(const TVector2& point) const
{
    const TVector2 origin = GetOrigin();
    const double dots[2] = {Scale[0] * DotsPerPixel * Supersampling, Scale[1] * DotsPerPixel};
    TVector2 result;
    for (int i = 0; i < 2; ++i) {
        const double fixed = double(Offset[i]) + origin[i];
        result[i] = static_cast<float>(std::floor((fixed + point[i]) * dots[i] + 0.5) / dots[i] - fixed);
    }
    return result;
}

void TRenderer::DrawRectangle(const TVector2& min, const TVector2& max)
{
    Begin(PR_QUADS);
    Vertex(min);
    Vertex(TVector2(max[0], min[1]));
    Vertex(max);
    Vertex(TVector2(min[0], max[1]));
    End();
}

void TRenderer::DrawLine(const TVector2& from, const TVector2& to, float width)
{
    TVector2 direction = to - from;
    if (!(direction.LengthSquared() > 0.0f))
        return;
    direction.Normalise();
    const TVector2 side = TVector2(-direction[1], direction[0]) * (width * 0.5f);
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
        Batch.SetOpaque();
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
