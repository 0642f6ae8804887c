#include "library/wimp/gl/framepixels.h"

#include "library/wimp/gl/glcontext.h"

#include <GL/glew.h>

#include <cstddef>

void ReadFramePixels(unsigned frameBuffer, int width, int height, uint8_t* pixels)
{
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, frameBuffer);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    // The first row that OpenGL gives is the lowest.
    for (int y = 0; y < height; ++y)
        glReadPixels(0, height - 1 - y, width, 1, GL_RGB, GL_UNSIGNED_BYTE,
                     pixels + static_cast<size_t>(y) * static_cast<size_t>(width) * 3);
    constexpr int usual = 4;
    glPixelStorei(GL_PACK_ALIGNMENT, usual);
    CheckGlError();
}
