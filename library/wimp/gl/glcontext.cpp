#include "library/wimp/gl/glcontext.h"

#include "library/containers/assertion.h"
#include "library/containers/log.h"
#include "library/containers/string.h"
#include "library/wimp/gl/gldevice.h"

#include <GL/glew.h>

#include <cstring>

namespace {
struct TGlState
{
    bool Ready = false;
    bool VendorPrograms = false;
    bool ProcessorDraws = false;
    int MaxTextureSide = 0;
    TString Fault;
    // Made when ready; kept for the life of the process.
    TGlDevice* Device = nullptr;
};

TGlState& GetState()
{
    static TGlState& state = *new TGlState;
    return state;
}

bool Fail(const char* fault)
{
    GetState().Fault = fault;
    return false;
}

// An extension may be announced by a driver whose entry points the loader does not give, and the loader gives
// entry points of extensions that the driver does not announce.
const char* FindMissing()
{
    struct TNeed
    {
        const char* Name;
        bool Present;
    };
    const TNeed needs[] = {
        {"GL_ARB_vertex_program", glewGetExtension("GL_ARB_vertex_program") &&
                                      glProgramStringARB != nullptr && glGenProgramsARB != nullptr &&
                                      glBindProgramARB != nullptr && glDeleteProgramsARB != nullptr},
        {"GL_ARB_fragment_program", glewGetExtension("GL_ARB_fragment_program") &&
                                        glProgramLocalParameter4fvARB != nullptr &&
                                        glProgramEnvParameter4fvARB != nullptr},
        {"GL_EXT_framebuffer_object",
         glewGetExtension("GL_EXT_framebuffer_object") && glGenFramebuffersEXT != nullptr &&
             glBindFramebufferEXT != nullptr && glFramebufferTexture2DEXT != nullptr &&
             glCheckFramebufferStatusEXT != nullptr && glDeleteFramebuffersEXT != nullptr &&
             glIsFramebufferEXT != nullptr && glGetFramebufferAttachmentParameterivEXT != nullptr},
        {"vertex attribute arrays", glVertexAttribPointer != nullptr &&
                                        glEnableVertexAttribArray != nullptr &&
                                        glDisableVertexAttribArray != nullptr},
        {"buffer objects", glBindBuffer != nullptr && glGenBuffers != nullptr && glBufferData != nullptr},
        {"several texture units", glActiveTexture != nullptr},
    };
    for (const TNeed& need : needs)
        if (!need.Present)
            return need.Name;
    return nullptr;
}
// The least of what limits a picture that is drawn into and then shown.
int QueryMaxTextureSide()
{
    GLint texture = 0;
    GLint viewport[2] = {};
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &texture);
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
    GLint side = texture;
    for (const GLint limit : viewport)
        side = limit < side ? limit : side;
    return side;
}

// By the names of the drivers that do.
bool IsProcessor(const char* renderer)
{
    constexpr const char* names[] = {"llvmpipe", "softpipe", "Software Rasterizer", "SwiftShader"};
    for (const char* name : names)
        if (renderer != nullptr && strstr(renderer, name) != nullptr)
            return true;
    return false;
}
} // namespace

bool InitGl()
{
    TGlState& state = GetState();
    if (state.Ready)
        return true;
    if (glGetString(GL_VERSION) == nullptr)
        return Fail("There is no OpenGL context.");
    glewExperimental = GL_TRUE;
    const GLenum result = glewInit();
    // Without an X display the window system's own extensions cannot be listed; OpenGL's are there all the
    // same.
    if (result != GLEW_OK && result != GLEW_ERROR_NO_GLX_DISPLAY)
        return Fail(reinterpret_cast<const char*>(glewGetErrorString(result)));
    // Listing extensions can leave an error behind in some contexts.
    glGetError();
    if (const char* missing = FindMissing()) {
        TString fault;
        fault.Format("The OpenGL driver lacks %s.", missing);
        return Fail(fault);
    }
    state.VendorPrograms = glewIsSupported("GL_NV_vertex_program3 GL_NV_fragment_program2") != 0;
    state.ProcessorDraws = IsProcessor(reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    state.MaxTextureSide = QueryMaxTextureSide();
    state.Fault = nullptr;
    state.Ready = true;
    state.Device = new TGlDevice;
    SetGraphicsDevice(state.Device);
    return true;
}

bool IsGlReady()
{
    return GetState().Ready;
}

const char* GetGlFault()
{
    return GetState().Fault.Print();
}

bool HasVendorPrograms()
{
    return GetState().VendorPrograms;
}

bool DoesProcessorDraw()
{
    return GetState().ProcessorDraws;
}

int GetMaxTextureSide()
{
    return GetState().MaxTextureSide;
}

bool IsGlCurrent()
{
    return GetState().Ready && glGetString(GL_VERSION) != nullptr;
}

void DeleteGlTexture(unsigned name)
{
    if (GetState().Ready)
        GetState().Device->DeleteTexture(name);
}

void FlushGlDeletions()
{
    if (IsGlCurrent())
        GetState().Device->FlushDeletions();
}

void DropGlErrors()
{
    // A context that has been lost may have no end of them.
    constexpr int MaxErrors = 16;
    for (int i = 0; i < MaxErrors && glGetError() != GL_NO_ERROR; ++i) {
    }
}

void CheckGlError()
{
    const unsigned err = glGetError();
    const bool isFine = err == GL_NO_ERROR || err == GL_INVALID_OPERATION;
    // A guard may keep the assertion's text to itself.
    if (!isFine)
        DebugPrintf("OpenGL error 0x%x\n", err);
    ASSERT_TEXT_MSG(isFine, "err == GL_NO_ERROR || err == GL_INVALID_OPERATION",
                    TempFormat("OpenGL error 0x%x\n", err));
}
