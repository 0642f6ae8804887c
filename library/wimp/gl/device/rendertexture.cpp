#include "library/wimp/gl/device/rendertexture.h"

#include "library/containers/assertion.h"
#include "library/containers/image/image.h"

#include <cstring>

int TRenderTexture::GetTexelSize(TTextureFormat format)
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
    MeanColour = image.GetMeanColour();
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
