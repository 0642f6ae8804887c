#pragma once

#include "library/wimp/gl/device/rendertexture.h"

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

private:
    static vector<TRenderTexture*>& GetTextures();
    static TRenderTexture* Find(const char* path);
};
