#include "particles/cindermill/main/texturewatch.h"

#include "library/system/message.h"
#include "library/system/path.h"
#include "particles/cindermill/main/changenotify.h"
#include "particles/cindermill/main/settings.h"

TTextureWatch::~TTextureWatch()
{
    if (Started)
        TRenderTextureCache::SetListener(nullptr);
    for (const TString& path : Watched)
        Notify.Remove(path, &TTextureWatch::OnChanged, this);
}

void TTextureWatch::Start(TReloaded reloaded, void* context)
{
    Reloaded = reloaded;
    Context = context;
    Started = true;
    TRenderTextureCache::SetListener(this);
}

void TTextureWatch::OnTextureLoaded(const char* path)
{
    if (Notify.Add(path, &TTextureWatch::OnChanged, this))
        Watched.push_back(path);
}

void TTextureWatch::OnTextureGone(const char* path)
{
    TString* it = Watched.find(path);
    if (it == Watched.end())
        return;
    Watched.erase(it);
    Notify.Remove(path, &TTextureWatch::OnChanged, this);
}

void TTextureWatch::OnChanged(const char* path, void* context)
{
    static_cast<TTextureWatch*>(context)->Reload(path);
}

bool TTextureWatch::IsWanted(const char* path) const
{
    return Settings.GetAutoCheckUpdate() != 1 ||
           AskQuestion("File %s has changed on disc. Reload?", GetShownPath(path).Print());
}

void TTextureWatch::Reload(const char* path)
{
    const bool wanted = IsWanted(path);
    // What was written while the question stood is answered by it.
    Notify.TakeChange(path);
    // A file that is being written, say, leaves the old picture; its next change comes here again.
    if (wanted && TRenderTextureCache::Reload(path) && Reloaded != nullptr)
        Reloaded(Context);
}
