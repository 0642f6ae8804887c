#include "library/wimp/gl/offscreen/offscreenwindow.h"

#include "library/wimp/gl/framepixels.h"
#include "library/wimp/gl/glcontext.h"

#include <GL/glew.h>

TOffscreenWindow::~TOffscreenWindow()
{
    Release();
}

void TOffscreenWindow::Release()
{
    if (FrameBuffer == 0 || !MakeCurrent())
        return;
    glDeleteFramebuffersEXT(1, &FrameBuffer);
    glDeleteRenderbuffersEXT(1, &ColourBuffer);
    glDeleteRenderbuffersEXT(1, &DepthBuffer);
    FrameBuffer = 0;
}

bool TOffscreenWindow::Resize(int width, int height)
{
    if (FrameBuffer != 0 && width == Width && height == Height)
        return true;
    Release();
    if (!MakeCurrent() || width > GetMaxTextureSide() || height > GetMaxTextureSide())
        return false;
    Width = width;
    Height = height;
    glGenFramebuffersEXT(1, &FrameBuffer);
    glGenRenderbuffersEXT(1, &ColourBuffer);
    glGenRenderbuffersEXT(1, &DepthBuffer);
    glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, ColourBuffer);
    glRenderbufferStorageEXT(GL_RENDERBUFFER_EXT, GL_RGBA8, Width, Height);
    glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, DepthBuffer);
    glRenderbufferStorageEXT(GL_RENDERBUFFER_EXT, GL_DEPTH_COMPONENT24, Width, Height);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, FrameBuffer);
    glFramebufferRenderbufferEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_RENDERBUFFER_EXT,
                                 ColourBuffer);
    glFramebufferRenderbufferEXT(GL_FRAMEBUFFER_EXT, GL_DEPTH_ATTACHMENT_EXT, GL_RENDERBUFFER_EXT,
                                 DepthBuffer);
    const bool isWhole = glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT) == GL_FRAMEBUFFER_COMPLETE_EXT;
    DropGlErrors();
    return isWhole;
}

void TOffscreenWindow::Read(uint8_t* pixels)
{
    if (MakeCurrent())
        ReadFramePixels(FrameBuffer, Width, Height, pixels);
}

void TOffscreenWindow::GetSize(int& width, int& height) const
{
    width = Width;
    height = Height;
}

void TOffscreenWindow::GetDotSize(int& width, int& height) const
{
    width = Width;
    height = Height;
}
