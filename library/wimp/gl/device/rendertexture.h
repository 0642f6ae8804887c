#pragma once

#include "library/containers/string.h"
#include "library/wimp/gl/device/graphicsdevice.h"
#include "library/wimp/gl/device/texturepainter.h"

// A picture in OpenGL, shared by file name or made from memory. Without a ready OpenGL it is read and checked
// only; its OpenGL name is made at the first Bind, and its pixels are held until there is a context to take
// them.
class TRenderTexture
{
public:
    // Asserts "0" for a format that there is none of.
    static int GetTexelSize(TTextureFormat format);

    TRenderTexture() = default;
    ~TRenderTexture();
    TRenderTexture(const TRenderTexture&) = delete;
    TRenderTexture& operator=(const TRenderTexture&) = delete;

    // False if the file does not load; the texture is then as it was.
    bool Load(const char* path);
    void Set(int width, int height, TTextureFormat format, const void* data);

    const TString& GetPath() const { return Path; }
    int GetWidth() const { return Width; }
    int GetHeight() const { return Height; }
    // Of a file's picture, as 0xRRGGBB: what it is like from afar.
    uint32_t GetMeanColour() const { return MeanColour; }
    int GetRefCount() const { return RefCount; }
    // OpenGL's name; 0 before the first Bind without a context. Stays for the texture's life.
    unsigned GetName() const { return Name; }
    // The name with the picture in it; needs a current context.
    unsigned Prepare();
    void Bind(int unit);
    void Draw(TTexturePainter& painter, const TVector2& min, const TVector2& max, const TVector4& colour,
              bool alphaOnly);

private:
    friend class TRenderTextureCache;

    void Upload();

    TString Path;
    int Width = 0;
    int Height = 0;
    uint32_t MeanColour = 0;
    int RefCount = 0;
    unsigned Name = 0;
    TTextureFormat Format = TF_RGBA8;
    vector<uint8_t> Pixels;
    bool NeedsUpload = false;
};
