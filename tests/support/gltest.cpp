#include "support/gltest.h"

#include "library/wimp/gl/glcontext.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/glew.h>

#include <cmath>
#include <cstdlib>
#include <fstream>

namespace {
EGLDisplay GetDisplay()
{
    static const EGLDisplay display = [] {
        setenv("EGL_PLATFORM", "surfaceless", 1);
        const auto getDisplay =
            reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
        EGLDisplay found = getDisplay != nullptr
                               ? getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr)
                               : eglGetDisplay(EGL_DEFAULT_DISPLAY);
        eglInitialize(found, nullptr, nullptr);
        return found;
    }();
    return display;
}

EGLContext MakeContext(EGLContext shareWith)
{
    eglBindAPI(EGL_OPENGL_API);
    const EGLint wanted[] = {EGL_SURFACE_TYPE, 0, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(GetDisplay(), wanted, &config, 1, &count) || count == 0)
        return EGL_NO_CONTEXT;
    return eglCreateContext(GetDisplay(), config, shareWith, nullptr);
}

// The one that all others share with; lives as long as the process.
EGLContext GetSharedContext()
{
    static const EGLContext context = MakeContext(EGL_NO_CONTEXT);
    return context;
}

uint32_t Crc(const std::string& bytes)
{
    uint32_t crc = 0xFFFFFFFF;
    for (const char c : bytes) {
        crc ^= static_cast<uint8_t>(c);
        for (int i = 0; i < 8; ++i)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

std::string Big32(uint32_t value)
{
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift);
    return bytes;
}

std::string PngChunk(const std::string& type, const std::string& data)
{
    return Big32(static_cast<uint32_t>(data.size())) + type + data + Big32(Crc(type + data));
}

// The compressed form's stored blocks: nothing is compressed.
std::string Stored(const std::string& data)
{
    std::string out("\x78\x01");
    for (size_t at = 0; at < data.size(); at += 65535) {
        const size_t length = std::min<size_t>(65535, data.size() - at);
        out += static_cast<char>(at + length == data.size());
        for (const size_t word : {length, ~length}) {
            out += static_cast<char>(word);
            out += static_cast<char>(word >> 8);
        }
        out.append(data, at, length);
    }
    uint32_t a = 1;
    uint32_t b = 0;
    for (const char c : data) {
        a = (a + static_cast<uint8_t>(c)) % 65521;
        b = (b + a) % 65521;
    }
    return out + Big32(b << 16 | a);
}
} // namespace

std::ostream& operator<<(std::ostream& out, const TPixel& pixel)
{
    return out << "(" << pixel.R << " " << pixel.G << " " << pixel.B << " " << pixel.A << ")";
}

bool IsClose(const TPixel& a, const TPixel& b, int tolerance)
{
    return std::abs(a.R - b.R) <= tolerance && std::abs(a.G - b.G) <= tolerance &&
           std::abs(a.B - b.B) <= tolerance;
}

TPixel TPicture::At(int x, int y) const
{
    if (x < 0 || y < 0 || x >= Width || y >= Height)
        return TPixel();
    const uint8_t* bytes = Bytes.data() + (size_t(y) * Width + x) * 4;
    return TPixel{bytes[0], bytes[1], bytes[2], bytes[3]};
}

int TPicture::Count(const std::function<bool(const TPixel&)>& wanted, int x, int y, int width,
                    int height) const
{
    int count = 0;
    for (int j = y; j < y + height; ++j)
        for (int i = x; i < x + width; ++i)
            count += wanted(At(i, j)) ? 1 : 0;
    return count;
}

int TPicture::Count(const std::function<bool(const TPixel&)>& wanted) const
{
    return Count(wanted, 0, 0, Width, Height);
}

TPicture TPicture::Enlarge(int x, int y, int width, int height, int factor) const
{
    TPicture large(width * factor, height * factor);
    for (int j = 0; j < large.Height; ++j) {
        for (int i = 0; i < large.Width; ++i) {
            const TPixel pixel = At(x + i / factor, y + j / factor);
            uint8_t* bytes = large.Bytes.data() + (size_t(j) * large.Width + i) * 4;
            bytes[0] = static_cast<uint8_t>(pixel.R);
            bytes[1] = static_cast<uint8_t>(pixel.G);
            bytes[2] = static_cast<uint8_t>(pixel.B);
            bytes[3] = static_cast<uint8_t>(pixel.A);
        }
    }
    return large;
}

bool TPicture::SavePng(const std::string& path) const
{
    std::string rows;
    for (int y = 0; y < Height; ++y) {
        rows += '\0';
        for (int x = 0; x < Width; ++x) {
            const TPixel pixel = At(x, y);
            for (const int part : {pixel.R, pixel.G, pixel.B})
                rows += static_cast<char>(part);
        }
    }
    std::string header = Big32(static_cast<uint32_t>(Width)) + Big32(static_cast<uint32_t>(Height));
    header += std::string("\x08\x02\x00\x00\x00", 5);
    std::ofstream out(path, std::ios::binary);
    out << "\x89PNG\r\n\x1a\n"
        << PngChunk("IHDR", header) << PngChunk("IDAT", Stored(rows)) << PngChunk("IEND", "");
    return out.good();
}

TTestContext::TTestContext()
{
    Context = MakeContext(GetSharedContext());
    MakeCurrent();
}

TTestContext::~TTestContext()
{
    if (eglGetCurrentContext() == Context)
        ClearCurrent();
    eglDestroyContext(GetDisplay(), Context);
}

bool TTestContext::MakeCurrent()
{
    return Context != nullptr && eglMakeCurrent(GetDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, Context);
}

void TTestContext::ClearCurrent()
{
    eglMakeCurrent(GetDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

TTestWindow::TTestWindow(int width, int height) : TFakeWindow(width, height), Context(new TTestContext)
{
    MakeCurrent();
    InitGl();
    MakeFrameBuffer();
}

TTestWindow::~TTestWindow()
{
    HasContext = true;
    MakeCurrent();
    DeleteFrameBuffer();
    delete Context;
}

bool TTestWindow::MakeCurrent()
{
    return HasContext && Context->MakeCurrent();
}

void TFakeWindow::GetSize(int& width, int& height) const
{
    width = static_cast<int>(std::lround(Width / DotsPerPixel));
    height = static_cast<int>(std::lround(Height / DotsPerPixel));
}

void TFakeWindow::GetDotSize(int& width, int& height) const
{
    width = Width;
    height = Height;
}

void TFakeWindow::TakeFocus()
{
    ++NumFocusTakes;
    Focused = true;
    if (OnTakeFocus)
        OnTakeFocus();
}

void TTestWindow::MakeFrameBuffer()
{
    if (!IsGlReady() || Width <= 0 || Height <= 0)
        return;
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
    // Nothing of it may be taken for what a test has drawn.
    glClearColor(1, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
}

void TTestWindow::DeleteFrameBuffer()
{
    if (FrameBuffer == 0)
        return;
    glDeleteFramebuffersEXT(1, &FrameBuffer);
    glDeleteRenderbuffersEXT(1, &ColourBuffer);
    glDeleteRenderbuffersEXT(1, &DepthBuffer);
    FrameBuffer = 0;
}

void TTestWindow::Resize(int width, int height)
{
    MakeCurrent();
    DeleteFrameBuffer();
    Width = width;
    Height = height;
    MakeFrameBuffer();
}

void TTestWindow::RecreateContext()
{
    MakeCurrent();
    DeleteFrameBuffer();
    delete Context;
    Context = new TTestContext;
    MakeFrameBuffer();
}

TPicture TTestWindow::Read()
{
    TPicture picture(Width, Height);
    if (FrameBuffer == 0 || !MakeCurrent())
        return picture;
    glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, FrameBuffer);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    // The first row that OpenGL gives is the lowest.
    for (int y = 0; y < Height; ++y)
        glReadPixels(0, Height - 1 - y, Width, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                     picture.GetBytes() + size_t(y) * Width * 4);
    return picture;
}

void TGlTest::SetUp()
{
    ASSERT_TRUE(IsGlReady()) << GetGlFault();
    ASSERT_TRUE(Renderer.Init(&Window));
}

TPicture TGlTest::Paint(TRenderObject& root)
{
    Renderer.Render(root);
    return Window.Read();
}

void TDrawnObject::Render(TRenderer& renderer)
{
    ++NumRenders;
    if (Draw)
        Draw(renderer);
}

void TDrawnObject::GetBounds(TVector2& min, TVector2& max)
{
    min = Min;
    max = Max;
}

bool TDrawnObject::Event(const TRenderEvent& event)
{
    Events.push_back(event);
    if (OnEvent)
        return OnEvent(event);
    return Consumes || TRenderObject::Event(event);
}

void TDrawnObject::Tick(TRenderer*)
{
    ++NumTicks;
    if (OnTick)
        OnTick();
}

std::vector<int> TDrawnObject::GetCodes() const
{
    std::vector<int> codes;
    for (const TRenderEvent& event : Events)
        codes.push_back(event.Code);
    return codes;
}
