#include "library/wimp/gl/device/rendertexturecache.h"

#include "library/containers/assertion.h"
#include "library/containers/image/image.h"

#include <cstring>

namespace {
int GetTexelSize(TTextureFormat format)
{
    switch (format) {
    case TF_RGBA8:
    case TF_LUMINANCE32F:
        return 4;
    case TF_RGBA16F:
        return 8;
    case TF_RGBA32F:
        return 16;
    }
    AssertFail("0", __FILE__, __LINE__);
}

// Both separators lead to one file.
void ToCachedPath(const char* path, TString& out)
{
    out = path;
    out.Replace('/', '\\');
}
} // namespace

TRenderTexture::~TRenderTexture()
{
    if (Name != 0)
        GetGraphicsDevice()->DeleteTexture(Name);
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
    const int texelSize = GetTexelSize(format);
    ASSERT_TEXT(width >= 0 && height >= 0, "width >= 0 && height >= 0");
    const int64_t size = int64_t(width) * height * texelSize;
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
    if (GetGraphicsDevice() != nullptr && GetGraphicsDevice()->IsCurrent())
        Upload();
}

void TRenderTexture::Upload()
{
    GetGraphicsDevice()->UploadTexture(Name, Format, Width, Height, Pixels.data());
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
    GetGraphicsDevice()->BindTexture(unit, Prepare());
}

void TRenderTexture::Draw(TTexturePainter& painter, const TVector2& min, const TVector2& max,
                          const TVector4& colour, bool alphaOnly)
{
    painter.DrawTexture(Prepare(), min, max, colour, alphaOnly);
}

TRenderTextureListener* TRenderTextureCache::Listener = nullptr;

void TRenderTextureCache::SetListener(TRenderTextureListener* listener)
{
    Listener = listener;
    if (Listener == nullptr)
        return;
    for (const TRenderTexture* texture : GetTextures())
        if (!texture->Path.IsEmpty())
            Listener->OnTextureLoaded(texture->Path);
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
    TString kept;
    ToCachedPath(path, kept);
    for (TRenderTexture* texture : GetTextures())
        if (texture->Path.Compare(kept) == 0)
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
    ToCachedPath(path, texture->Path);
    texture->RefCount = 1;
    GetTextures().push_back(texture);
    if (Listener != nullptr)
        Listener->OnTextureLoaded(texture->Path);
    return texture;
}

TRenderTexture* TRenderTextureCache::Create(int width, int height, TTextureFormat format, const void* data)
{
    // Before there is anything to leave behind.
    GetTexelSize(format);
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
    if (Listener != nullptr && !texture->Path.IsEmpty())
        Listener->OnTextureGone(texture->Path);
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
