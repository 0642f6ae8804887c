#include "particles/cindermill/interface/windowplaces.h"

namespace {

constexpr const char* MainName = "Main";
constexpr const char* TraceName = "Trace";
constexpr const char* PathName = "Effect_%d";
constexpr const char* ViewName = "EffectView_%d";
constexpr const char* SecondName = "EffectSecondView_%d";
constexpr const char* DisplayName = "EffectDisplay_%d";

} // namespace

TWindowPlaces::TWindowPlaces(TSettingsStore* store) : Store(store)
{
    if (Store != nullptr)
        Load();
}

void TWindowPlaces::Load()
{
    Store->ReadString(MainName, Main);
    Store->ReadString(TraceName, Trace);
    for (int i = 0; i < MaxEffects; ++i) {
        TEffectPlaces places;
        if (!Store->ReadString(TempFormat(PathName, i), places.Path))
            return;
        Store->ReadString(TempFormat(ViewName, i), places.View);
        Store->ReadString(TempFormat(SecondName, i), places.Second);
        Store->ReadString(TempFormat(DisplayName, i), places.Display);
        Effects.push_back(places);
    }
}

const TEffectPlaces* TWindowPlaces::FindEffect(const char* path) const
{
    for (const TEffectPlaces& places : Effects)
        if (places.Path.Compare(path, true) == 0)
            return &places;
    return nullptr;
}

void TWindowPlaces::SetEffect(const TEffectPlaces& places)
{
    for (int i = Effects.size() - 1; i >= 0; --i)
        if (Effects[i].Path.Compare(places.Path, true) == 0)
            Effects.erase(Effects.begin() + i);
    Effects.push_back(places);
    while (Effects.size() > MaxEffects)
        Effects.erase(Effects.begin());
}

void TWindowPlaces::Save()
{
    if (Store == nullptr)
        return;
    Store->WriteString(MainName, Main);
    Store->WriteString(TraceName, Trace);
    for (int i = 0; i < Effects.size(); ++i) {
        Store->WriteString(TempFormat(PathName, i), Effects[i].Path);
        Store->WriteString(TempFormat(ViewName, i), Effects[i].View);
        Store->WriteString(TempFormat(SecondName, i), Effects[i].Second);
        Store->WriteString(TempFormat(DisplayName, i), Effects[i].Display);
    }
    Store->Flush();
}
