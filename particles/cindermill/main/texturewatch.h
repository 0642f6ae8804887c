#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/gl/device/rendertexturecache.h"

class TChangeNotify;
class TSettings;

// Keeps the textures in use as their files are on disc. A file is watched from its texture's first user to
// its last, whoever they are, so that one change asks once however many nodes and pictures show it.
class TTextureWatch : public TRenderTextureListener
{
public:
    TTextureWatch(const TSettings& settings, TChangeNotify& notify) : Settings(settings), Notify(notify) {}
    ~TTextureWatch() override;
    TTextureWatch(const TTextureWatch&) = delete;
    TTextureWatch& operator=(const TTextureWatch&) = delete;

    // From here on. What shows textures is drawn anew by the function after each reload.
    using TReloaded = void (*)(void* context);
    void Start(TReloaded reloaded, void* context);

    void OnTextureLoaded(const char* path) override;
    void OnTextureGone(const char* path) override;

private:
    static void OnChanged(const char* path, void* context);
    // Whether the person, or the setting for him, wants the new picture.
    bool IsWanted(const char* path) const;
    void Reload(const char* path);

    const TSettings& Settings;
    TChangeNotify& Notify;
    TReloaded Reloaded = nullptr;
    void* Context = nullptr;
    bool Started = false;
    // Those that could be watched.
    vector<TString> Watched;
};
