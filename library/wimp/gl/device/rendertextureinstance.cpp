#include "library/wimp/gl/device/rendertextureinstance.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/device/rendertexturecache.h"

namespace {
TRenderTexture& Used(TRenderTexture* texture)
{
    ASSERT_TEXT(texture != nullptr, "Texture != 0");
    return *texture;
}
} // namespace

TRenderTextureInstance::~TRenderTextureInstance()
{
    Release();
}

TRenderTextureInstance::TRenderTextureInstance(const TRenderTextureInstance& rhs) : Texture(rhs.Texture)
{
    if (Texture != nullptr)
        TRenderTextureCache::AddRef(Texture);
}

TRenderTextureInstance& TRenderTextureInstance::operator=(const TRenderTextureInstance& rhs)
{
    // The other may be this one.
    TRenderTexture* texture = rhs.Texture;
    if (texture != nullptr)
        TRenderTextureCache::AddRef(texture);
    Release();
    Texture = texture;
    return *this;
}

bool TRenderTextureInstance::Load(const char* path)
{
    TRenderTexture* texture = TRenderTextureCache::Get(path);
    Release();
    Texture = texture;
    return Texture != nullptr;
}

void TRenderTextureInstance::Create(int width, int height, TTextureFormat format, const void* data)
{
    TRenderTexture* texture = TRenderTextureCache::Create(width, height, format, data);
    Release();
    Texture = texture;
}

void TRenderTextureInstance::Release()
{
    TRenderTexture* texture = Texture;
    Texture = nullptr;
    if (texture != nullptr)
        TRenderTextureCache::Release(texture);
}

int TRenderTextureInstance::GetWidth() const
{
    return Used(Texture).GetWidth();
}

int TRenderTextureInstance::GetHeight() const
{
    return Used(Texture).GetHeight();
}

uint32_t TRenderTextureInstance::GetMeanColour() const
{
    return Used(Texture).GetMeanColour();
}

void TRenderTextureInstance::Bind(int unit) const
{
    Used(Texture).Bind(unit);
}

void TRenderTextureInstance::Draw(TTexturePainter& painter, const TVector2& min, const TVector2& max,
                                  const TVector4& colour, bool alphaOnly) const
{
    Used(Texture).Draw(painter, min, max, colour, alphaOnly);
}

bool TRenderTextureInstance::Reload(const char* path)
{
    return TRenderTextureCache::Reload(path);
}

int TRenderTextureInstance::GetNumCached()
{
    return TRenderTextureCache::GetCount();
}
