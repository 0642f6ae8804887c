#include "library/wimp/gl/rendertargets.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/gl/renderwindow.h"

#include <GL/glew.h>

namespace {
// Drawing is 2 by 2 supersampled.
constexpr int FullSupersampling = 2;

void MakeTexture(unsigned& texture, int width, int height, int filter)
{
    if (texture == 0)
        glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    CheckGlError();
}

// Only in use while one window is painted: windows of one size share it. The target is so many times as
// large.
struct TSharedTarget
{
    int Width;
    int Height;
    int Supersampling;
    unsigned Texture;
    // What a picture is moved to, as large as the window. Made when one is first moved; where that was is
    // then of no use any more, and becomes this.
    unsigned Spare;
    int NumUsers;
};

vector<TSharedTarget>& GetSharedTargets()
{
    static vector<TSharedTarget> targets;
    return targets;
}

unsigned TakeTarget(int width, int height, int supersampling)
{
    for (TSharedTarget& target : GetSharedTargets())
        if (target.Width == width && target.Height == height && target.Supersampling == supersampling) {
            ++target.NumUsers;
            return target.Texture;
        }
    TSharedTarget made{width, height, supersampling, 0, 0, 1};
    MakeTexture(made.Texture, width * supersampling, height * supersampling, GL_LINEAR);
    GetSharedTargets().push_back(made);
    return made.Texture;
}

void GiveTargetBack(unsigned& texture)
{
    vector<TSharedTarget>& targets = GetSharedTargets();
    for (int i = targets.size() - 1; i >= 0; --i) {
        if (texture == 0 || targets[i].Texture != texture || --targets[i].NumUsers > 0)
            continue;
        DeleteGlTexture(texture);
        DeleteGlTexture(targets[i].Spare);
        targets.erase(targets.begin() + i);
    }
    texture = 0;
}

unsigned& UseSpare(unsigned target)
{
    for (TSharedTarget& shared : GetSharedTargets())
        if (shared.Texture == target)
            return shared.Spare;
    AssertFail("0", __FILE__, __LINE__);
}

void Forget(unsigned& texture)
{
    DeleteGlTexture(texture);
    texture = 0;
}

// All of a texture, over all of what is drawn into.
void DrawWhole(unsigned texture)
{
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, texture);
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
    CheckGlError();
}
} // namespace

void TRenderTargets::Init(TRenderWindow* window)
{
    Release();
    Window = window;
}

void TRenderTargets::Release()
{
    if (FrameBuffer != 0 && Window != nullptr && Window->MakeCurrent() && HasOwnFrameBuffer())
        glDeleteFramebuffersEXT(1, &FrameBuffer);
    FrameBuffer = 0;
    Attached = 0;
    GiveTargetBack(ColourTexture);
    Forget(Picture);
    Width = 0;
    Height = 0;
}

// Frame buffers belong to one context, and a window may get a new one in which the name is free or another's.
bool TRenderTargets::HasOwnFrameBuffer() const
{
    if (FrameBuffer == 0 || FrameBuffer == Window->GetFrameBuffer() || !glIsFramebufferEXT(FrameBuffer))
        return false;
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, FrameBuffer);
    GLint attached = 0;
    glGetFramebufferAttachmentParameterivEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT,
                                             GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME_EXT, &attached);
    return attached != 0 && static_cast<unsigned>(attached) == Attached;
}

void TRenderTargets::Resize(int width, int height)
{
    Width = width;
    Height = height;
    const int longest = Width > Height ? Width : Height;
    Supersampling = longest <= GetMaxTextureSide() / FullSupersampling ? FullSupersampling : 1;
    GiveTargetBack(ColourTexture);
    ColourTexture = TakeTarget(Width, Height, Supersampling);
    MakePicture(Picture);
}

void TRenderTargets::MakePicture(unsigned& picture)
{
    MakeTexture(picture, Width, Height, GL_NEAREST);
    // The target's alpha is what blending has left; the window itself is opaque.
    if (Width <= 0 || Height <= 0)
        return;
    glDisable(GL_SCISSOR_TEST);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    Bind(picture);
    glClear(GL_COLOR_BUFFER_BIT);
}

void TRenderTargets::Bind(unsigned texture)
{
    if (!HasOwnFrameBuffer())
        glGenFramebuffersEXT(1, &FrameBuffer);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, FrameBuffer);
    CheckGlError();
    glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_TEXTURE_2D, texture, 0);
    Attached = texture;
    CheckGlError();
    const unsigned fbostat = glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT);
    ASSERT_TEXT_MSG(fbostat == GL_FRAMEBUFFER_COMPLETE_EXT, "fbostat == GL_FRAMEBUFFER_COMPLETE_EXT",
                    TempFormat("FBO incomplete 0x%x\n", fbostat));
    CheckGlError();
}

void TRenderTargets::BindTarget()
{
    Bind(ColourTexture);
}

void TRenderTargets::MovePicture(const int* shift)
{
    const TDotRectangle window{{0, 0}, {Width, Height}};
    const TDotRectangle to =
        TDotRectangle{{shift[0], shift[1]}, {Width + shift[0], Height + shift[1]}}.Intersect(window);
    if (to.IsEmpty())
        return;
    unsigned& spare = UseSpare(ColourTexture);
    if (spare == 0)
        MakePicture(spare);
    Bind(Picture);
    glDisable(GL_SCISSOR_TEST);
    glBindTexture(GL_TEXTURE_2D, spare);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, to.Min[0], Height - to.Max[1], to.Min[0] - shift[0],
                        Height - (to.Max[1] - shift[1]), to.Max[0] - to.Min[0], to.Max[1] - to.Min[1]);
    glBindTexture(GL_TEXTURE_2D, 0);
    CheckGlError();
    const unsigned moved = spare;
    spare = Picture;
    Picture = moved;
}

void TRenderTargets::TakeParts(const vector<TDotRectangle>& parts)
{
    Bind(Picture);
    glViewport(0, 0, Width, Height);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
    glEnable(GL_SCISSOR_TEST);
    for (const TDotRectangle& part : parts) {
        glScissor(part.Min[0], Height - part.Max[1], part.Max[0] - part.Min[0], part.Max[1] - part.Min[1]);
        DrawWhole(ColourTexture);
    }
    glDisable(GL_SCISSOR_TEST);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

void TRenderTargets::Present()
{
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Window->GetFrameBuffer());
    CheckGlError();
    glViewport(0, 0, Width, Height);
    glDisable(GL_SCISSOR_TEST);
    DrawWhole(Picture);
}
