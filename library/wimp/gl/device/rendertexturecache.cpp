#include "library/wimp/gl/device/rendertexturecache.h"

#include "library/containers/assertion.h"
#include "library/containers/owner.h"

namespace {
// Both separators lead to one file.
void ToCachedPath(const char* path, TString& out)
{
    out = path;
    out.Replace('/', '\\');
}
} // namespace

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
    TOwner<TRenderTexture> texture(new TRenderTexture);
    if (!texture->Load(path))
        return nullptr;
    ToCachedPath(path, texture->Path);
    texture->RefCount = 1;
    GetTextures().push_back(texture.Get());
    if (Listener != nullptr)
        Listener->OnTextureLoaded(texture->Path);
    return texture.Release();
}

TRenderTexture* TRenderTextureCache::Create(int width, int height, TTextureFormat format, const void* data)
{
    // Before there is anything to leave behind.
    TRenderTexture::GetTexelSize(format);
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
