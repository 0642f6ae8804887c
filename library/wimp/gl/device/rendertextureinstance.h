#pragma once

#include "library/wimp/gl/device/graphicsdevice.h"
#include "library/wimp/gl/device/texturepainter.h"

class TRenderTexture;

// The handle that a user of a texture holds.
class TRenderTextureInstance
{
public:
    TRenderTextureInstance() = default;
    ~TRenderTextureInstance();
    TRenderTextureInstance(const TRenderTextureInstance& rhs);
    TRenderTextureInstance& operator=(const TRenderTextureInstance& rhs);

    // The texture of a picture file, by a path as the system reads it; false, and empty, if it does not load.
    bool Load(const char* path);
    // From memory; the rows are as the upload takes them. Any other format is an assertion.
    void Create(int width, int height, TTextureFormat format, const void* data);
    void Release();
    bool IsEmpty() const { return Texture == nullptr; }

    // These assert "Texture != 0".
    // The picture's own size; the driver may have been given a coarser one, if it takes none so large.
    int GetWidth() const;
    int GetHeight() const;
    // Of a file's picture, as 0xRRGGBB: what it is like from afar.
    uint32_t GetMeanColour() const;
    void Bind(int unit) const;
    // One quad, tinted; alphaOnly shows the alpha channel.
    void Draw(TTexturePainter& painter, const TVector2& min, const TVector2& max, const TVector4& colour,
              bool alphaOnly) const;
    const TRenderTexture* GetTexture() const { return Texture; }

    // Reads a cached file again into the same OpenGL name; false if it is not cached or does not load.
    static bool Reload(const char* path);
    static int GetNumCached();

private:
    TRenderTexture* Texture = nullptr;
};
