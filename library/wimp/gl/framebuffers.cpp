#include "library/wimp/gl/framebuffers.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/glcontext.h"

#include <GL/glew.h>

#include <cstddef>

// As many sizes as windows have at a time, mostly.
static constexpr int MaxBuffers = 6;

unsigned TFrameBuffers::Use(int width, int height)
{
    for (int i = Buffers.size() - 1; i >= 0; --i) {
        if (Buffers[i].Width != width || Buffers[i].Height != height)
            continue;
        const TBuffer found = Buffers[i];
        if (i != Buffers.size() - 1) {
            Buffers.erase(Buffers.begin() + i);
            Buffers.push_back(found);
        }
        return found.Name;
    }
    if (Buffers.size() == MaxBuffers) {
        Delete(Buffers[0]);
        Buffers.erase(Buffers.begin());
    }
    TBuffer made;
    made.Width = width;
    made.Height = height;
    Make(made);
    Buffers.push_back(made);
    return made.Name;
}

void TFrameBuffers::Make(TBuffer& buffer)
{
    glGenFramebuffersEXT(1, &buffer.Name);
    glGenRenderbuffersEXT(1, &buffer.Depth);
    glGenTextures(1, &buffer.Colour);
    glBindTexture(GL_TEXTURE_2D, buffer.Colour);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    // Told by the order in which it will be read, the driver keeps the bytes in that order.
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, buffer.Width, buffer.Height, 0, GL_BGRA,
                 GL_UNSIGNED_INT_8_8_8_8_REV, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
    glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, buffer.Depth);
    glRenderbufferStorageEXT(GL_RENDERBUFFER_EXT, GL_DEPTH_COMPONENT24, buffer.Width, buffer.Height);
    glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, 0);
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, buffer.Name);
    glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_TEXTURE_2D, buffer.Colour, 0);
    glFramebufferRenderbufferEXT(GL_FRAMEBUFFER_EXT, GL_DEPTH_ATTACHMENT_EXT, GL_RENDERBUFFER_EXT,
                                 buffer.Depth);
    ASSERT(glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT) == GL_FRAMEBUFFER_COMPLETE_EXT);
    CheckGlError();
}

void TFrameBuffers::Delete(const TBuffer& buffer)
{
    glDeleteFramebuffersEXT(1, &buffer.Name);
    glDeleteRenderbuffersEXT(1, &buffer.Depth);
    glDeleteTextures(1, &buffer.Colour);
}

void TFrameBuffers::Read(int width, int height, uint8_t* pixels)
{
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, Use(width, height));
    // What blending has left as alpha is nobody's wish to see through the window.
    glDisable(GL_SCISSOR_TEST);
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_TRUE);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    const auto read = [width](int y, int rows, uint8_t* to) {
        glReadPixels(0, y, width, rows, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, to);
    };
    // The first row that OpenGL gives is the lowest.
    if (GLEW_MESA_pack_invert) {
        glPixelStorei(GL_PACK_INVERT_MESA, GL_TRUE);
        read(0, height, pixels);
        glPixelStorei(GL_PACK_INVERT_MESA, GL_FALSE);
    } else {
        constexpr size_t dotSize = 4;
        for (int y = 0; y < height; ++y)
            read(height - 1 - y, 1, pixels + static_cast<size_t>(y) * static_cast<size_t>(width) * dotSize);
    }
    CheckGlError();
}

TGlStateScope::TGlStateScope()
{
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
}

TGlStateScope::~TGlStateScope()
{
    glPopClientAttrib();
    glPopAttrib();
}
