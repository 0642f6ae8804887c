#include "library/wimp/gl/offscreen/offscreencontext.h"

#include "library/wimp/gl/glcontext.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstring>

namespace {

bool HasExtension(EGLDisplay display, const char* name)
{
    const char* extensions = eglQueryString(display, EGL_EXTENSIONS);
    return extensions != nullptr && std::strstr(extensions, name) != nullptr;
}

EGLDisplay GetPlatformDisplay(EGLenum platform, void* native)
{
    const auto get =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    return get != nullptr ? get(platform, native, nullptr) : EGL_NO_DISPLAY;
}

constexpr int MaxDevices = 16;

// The graphics cards of the machine, of whoever made their drivers.
int ListDevices(EGLDeviceEXT* devices)
{
    const auto query = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
    EGLint count = 0;
    return query != nullptr && query(MaxDevices, devices, &count) ? count : 0;
}

} // namespace

TOffscreenContext::~TOffscreenContext()
{
    Destroy();
}

// Without surfaces where a driver knows them, otherwise on each graphics card, and in the end on whatever the
// system takes for its display.
bool TOffscreenContext::Create()
{
    Fault = "There is no OpenGL driver.";
    if (HasExtension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless") &&
        CreateOn(GetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY)))
        return true;
    EGLDeviceEXT devices[MaxDevices];
    const int numDevices = HasExtension(EGL_NO_DISPLAY, "EGL_EXT_platform_device") ? ListDevices(devices) : 0;
    for (int i = 0; i < numDevices; ++i)
        if (CreateOn(GetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, devices[i])))
            return true;
    return CreateOn(eglGetDisplay(EGL_DEFAULT_DISPLAY));
}

bool TOffscreenContext::CreateOn(void* display)
{
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr))
        return false;
    if (CreateContext(display) && MakeCurrent() && InitGl())
        return true;
    if (Context != nullptr && *GetGlFault() != '\0')
        Fault = GetGlFault();
    Destroy();
    return false;
}

bool TOffscreenContext::CreateContext(void* display)
{
    Display = display;
    const bool needsSurface = !HasExtension(display, "EGL_KHR_surfaceless_context");
    const EGLint wanted[] = {EGL_SURFACE_TYPE, needsSurface ? EGL_PBUFFER_BIT : 0, EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglBindAPI(EGL_OPENGL_API) || !eglChooseConfig(display, wanted, &config, 1, &count) || count == 0)
        return false;
    Context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    if (needsSurface) {
        const EGLint size[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
        Surface = eglCreatePbufferSurface(display, config, size);
    }
    return Context != EGL_NO_CONTEXT;
}

bool TOffscreenContext::MakeCurrent()
{
    return Context != nullptr && eglMakeCurrent(Display, Surface, Surface, Context);
}

void TOffscreenContext::Destroy()
{
    if (Display == nullptr)
        return;
    eglMakeCurrent(Display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (Surface != nullptr)
        eglDestroySurface(Display, Surface);
    if (Context != nullptr)
        eglDestroyContext(Display, Context);
    eglTerminate(Display);
    Surface = nullptr;
    Context = nullptr;
    Display = nullptr;
}
