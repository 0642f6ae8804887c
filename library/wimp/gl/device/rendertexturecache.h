#pragma once

#include "library/wimp/gl/device/rendertexture.h"

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
