#pragma once

#include "library/containers/owner.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "particles/cindermill/main/settingsstore.h"

class TWindow;

// Where the windows of an effect stood when it was closed, as texts of TWindow::GetPlace.
struct TEffectPlaces
{
    TString Path;
    TString View;
    // Of a second view, which is opened by hand.
    TString Second;
    TString Display;
};

// Where windows stood, from one run to the next: the main one, and those of the effects that were closed
// last. No setting and no part of an effect, so it has a store of its own.
class TWindowPlaces
{
public:
    static constexpr int MaxEffects = 40;

    // Takes the store over; null for one that forgets.
    explicit TWindowPlaces(TSettingsStore* store);

    const TString& GetMain() const { return Main; }
    void SetMain(const char* place) { Main = place; }
    // Of the trace that was closed last, of whatever effect.
    TString& UseTrace() { return Trace; }
    // Null for one that is not known.
    const TEffectPlaces* FindEffect(const char* path) const;
    // Becomes the newest; the oldest beyond the limit go.
    void SetEffect(const TEffectPlaces& places);
    // To the store; what fails is forgotten.
    void Save();

private:
    void Load();

    TOwner<TSettingsStore> Store;
    TString Main;
    TString Trace;
    // Oldest first.
    vector<TEffectPlaces> Effects;
};
