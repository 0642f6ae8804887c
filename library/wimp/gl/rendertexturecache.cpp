#include "library/wimp/gl/rendertexturecache.h"

#include "library/containers/assertion.h"
#include "library/containers/image/image.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/tintprogram.h"

#include <GL/glew.h>
#include <cstring>

namespace {
struct TTransfer
{
    TTextureFormat Format;
    GLenum InternalFormat;
    GLenum SourceFormat;
    GLenum SourceType;
    int TexelSize;
};

constexpr TTransfer Transfers[] = {
    {TF_RGBA8, GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, 4},
    {TF_RGBA32F, GL_RGBA32F_ARB, GL_RGBA, GL_FLOAT, 16},
    {TF_LUMINANCE32F, GL_LUMINANCE32F_ARB, GL_LUMINANCE, GL_FLOAT, 4},
    {TF_RGBA16F, GL_RGBA16F_ARB, GL_RGBA, GL_HALF_FLOAT_ARB, 8},
};

const TTransfer& GetTransfer(TTextureFormat format)
{
    for (const TTransfer& transfer : Transfers)
        if (transfer.Format == format)
            return transfer;
    AssertFail("0", __FILE__, __LINE__);
}

int Thinned(int side, int step)
{
    return static_cast<int>((int64_t(side) + step - 1) / step);
}

bool DoesDriverTake(const TTransfer& transfer, int width, int height)
{
    if (width > GetMaxTextureSide() || height > GetMaxTextureSide())
        return false;
    glTexImage2D(GL_PROXY_TEXTURE_2D, 0, static_cast<GLint>(transfer.InternalFormat), width, height, 0,
                 transfer.SourceFormat, transfer.SourceType, nullptr);
    GLint taken = 0;
    glGetTexLevelParameteriv(GL_PROXY_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &taken);
    return taken == width;
}

// Of each row and column, every so many-th texel goes to the driver: all of them if it takes so large a
// picture.
int GetStep(const TTransfer& transfer, int width, int height)
{
    int step = 1;
    while ((Thinned(width, step) > 1 || Thinned(height, step) > 1) &&
           !DoesDriverTake(transfer, Thinned(width, step), Thinned(height, step)))
        step *= 2;
    return step;
}

// In place.
void Thin(uint8_t* pixels, int width, int height, int texelSize, int step)
{
    uint8_t* to = pixels;
    for (int y = 0; y < height; y += step) {
        const uint8_t* row = pixels + int64_t(y) * width * texelSize;
        for (int x = 0; x < width; x += step) {
            memmove(to, row + int64_t(x) * texelSize, static_cast<size_t>(texelSize));
            to += texelSize;
        }
    }
}
} // namespace

TRenderTexture::~TRenderTexture()
{
    DeleteGlTexture(Name);
}

bool TRenderTexture::Load(const char* path)
{
    TImage image;
    if (path == nullptr || !image.Load(path))
        return false;
    Set(image.GetWidth(), image.GetHeight(), TF_RGBA8, image.GetPixels());
    return true;
}

void TRenderTexture::Set(int width, int height, TTextureFormat format, const void* data)
{
    const TTransfer& transfer = GetTransfer(format);
    ASSERT_TEXT(width >= 0 && height >= 0, "width >= 0 && height >= 0");
    const int64_t size = int64_t(width) * height * transfer.TexelSize;
    ASSERT_TEXT(size <= INT32_MAX, "size <= INT32_MAX");
    Pixels.clear();
    Pixels.reserve(static_cast<int>(size));
    Pixels.resize(static_cast<int>(size));
    if (size > 0)
        memcpy(Pixels.data(), data, static_cast<size_t>(size));
    Width = width;
    Height = height;
    Format = format;
    NeedsUpload = true;
    if (IsGlCurrent())
        Upload();
}

void TRenderTexture::Upload()
{
    const TTransfer& transfer = GetTransfer(Format);
    if (Name == 0)
        glGenTextures(1, &Name);
    glBindTexture(GL_TEXTURE_2D, Name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    const int step = GetStep(transfer, Width, Height);
    if (step > 1)
        Thin(Pixels.data(), Width, Height, transfer.TexelSize, step);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(transfer.InternalFormat), Thinned(Width, step),
                 Thinned(Height, step), 0, transfer.SourceFormat, transfer.SourceType, Pixels.data());
    CheckGlError();
    vector<uint8_t>().swap(Pixels);
    NeedsUpload = false;
}

unsigned TRenderTexture::Prepare()
{
    if (NeedsUpload)
        Upload();
    return Name;
}

void TRenderTexture::Bind(int unit)
{
    glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + unit));
    glBindTexture(GL_TEXTURE_2D, Prepare());
}

void TRenderTexture::Draw(TRenderer& renderer, const TVector2& min, const TVector2& max,
                          const TVector4& colour, bool alphaOnly)
{
    const unsigned name = Prepare();
    renderer.Begin(PR_QUADS, name, alphaOnly ? GetAlphaTintProgram() : GetTintProgram(), colour);
    // The picture's first row is its lowest.
    renderer.Vertex(min, TVector2(0, 1));
    renderer.Vertex(TVector2(max[0], min[1]), TVector2(1, 1));
    renderer.Vertex(max, TVector2(1, 0));
    renderer.Vertex(TVector2(min[0], max[1]), TVector2(0, 0));
    renderer.End();
}

// Never destroyed: handles may be released after everything else.
vector<TRenderTexture*>& TRenderTextureCache::GetTextures()
{
    static vector<TRenderTexture*>& textures = *new vector<TRenderTexture*>;
    return textures;
}

TRenderTexture* TRenderTextureCache::Find(const char* path)
{
    if (path == nullptr || *path == 0)
        return nullptr;
    for (TRenderTexture* texture : GetTextures())
        if (texture->Path.Compare(path) == 0)
            return texture;
    return nullptr;
}

TRenderTexture* TRenderTextureCache::Get(const char* path)
{
    if (TRenderTexture* cached = Find(path)) {
        AddRef(cached);
        return cached;
    }
    TRenderTexture* texture = new TRenderTexture;
    if (!texture->Load(path)) {
        delete texture;
        return nullptr;
    }
    texture->Path = path;
    texture->RefCount = 1;
    GetTextures().push_back(texture);
    return texture;
}

TRenderTexture* TRenderTextureCache::Create(int width, int height, TTextureFormat format, const void* data)
{
    // Before there is anything to leave behind.
    GetTransfer(format);
    TRenderTexture* texture = new TRenderTexture;
    texture->RefCount = 1;
    GetTextures().push_back(texture);
    texture->Set(width, height, format, data);
    return texture;
}

void TRenderTextureCache::AddRef(TRenderTexture* texture)
{
    ++texture->RefCount;
}

void TRenderTextureCache::Release(TRenderTexture* texture)
{
    vector<TRenderTexture*>& textures = GetTextures();
    vector<TRenderTexture*>::iterator it = textures.find(texture);
    ASSERT_TEXT(it != textures.end(), "it != Textures.end()");
    if (--texture->RefCount > 0)
        return;
    textures.erase(it);
    delete texture;
}

bool TRenderTextureCache::Reload(const char* path)
{
    TRenderTexture* texture = Find(path);
    return texture != nullptr && texture->Load(path);
}

int TRenderTextureCache::GetCount()
{
    return GetTextures().size();
}
