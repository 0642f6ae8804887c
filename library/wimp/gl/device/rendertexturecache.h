#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/gl/device/rendertexture.h"

class TImage;

// A picture in OpenGL. Its pixels are held until there is a context to take them.
class TRenderTexture
{
public:
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
    int RefCount = 0;
    unsigned Name = 0;
    TTextureFormat Format = TF_RGBA8;
    vector<uint8_t> Pixels;
    bool NeedsUpload = false;
};

// Hears of the files whose textures are in use.
class TRenderTextureListener
{
public:
    virtual ~TRenderTextureListener() = default;
    // The first user of the path has come, the last one has gone.
    virtual void OnTextureLoaded(const char* path) = 0;
    virtual void OnTextureGone(const char* path) = 0;
};

// The textures of the run. Those of files are shared by path, without regard to ASCII case.
class TRenderTextureCache
{
public:
    // Counted up, or null if the file does not load.
    static TRenderTexture* Get(const char* path);
    static TRenderTexture* Create(int width, int height, TTextureFormat format, const void* data);
    static void AddRef(TRenderTexture* texture);
    // The last user's release deletes the texture.
    static void Release(TRenderTexture* texture);
    static bool Reload(const char* path);
    static int GetCount();
    // Null for none. The listener stays the caller's; it is told at once of what is in use already.
    static void SetListener(TRenderTextureListener* listener);

private:
    static TRenderTextureListener* Listener;
    static vector<TRenderTexture*>& GetTextures();
    static TRenderTexture* Find(const char* path);
};
