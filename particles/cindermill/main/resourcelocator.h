#pragma once

#include "library/containers/list.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"

#include <cstdint>

class TEvent;
class TResourceHost;
class TResourceSearch;
class TSettings;

enum TFindResult
{
    FR_NOTFOUND,
    FR_FOUND,
    // With the user's help.
    FR_LOCATED
};

// Turns the stored name of a texture or an animation into a real path, searching the disc if it must. A
// stored name is a leaf name, a path under a base directory, or a full path, as the settings say.
//
// While a search runs on a thread of its own, Find turns the message loop through the host. Whoever calls
// Find must stand it that windows are drawn meanwhile; nothing else happens to them.
class TResourceLocator
{
public:
    explicit TResourceLocator(const TSettings& settings) : Settings(settings) {}

    // `directory` is where searches start: the program's.
    bool Init(const char* directory, bool headless);
    // Who shows the dialog and the chooser; null for nobody. The host stays the caller's.
    void SetHost(TResourceHost* host) { Host = host; }
    // Takes mode and base path over; after the settings changed.
    void ReadSettings();
    // Directories that are searched with all below them ahead of everything else, whatever the mode.
    void AddSearchDirectory(const char* directory);
    // Milliseconds that a search lasts before its dialog is shown.
    void SetShowDelay(int milliseconds) { ShowDelay = static_cast<uint32_t>(milliseconds); }
    // On a disc without end, for tests: a search under the dialog that has found nothing begins anew until it
    // is ended.
    void SetEndless(bool endless) { Endless = endless; }

    // Makes the stored form of a chosen file; false, with a message shown, if it has none. Of several files
    // of a leaf name the chosen one is found from then on.
    bool PrepareName(TString& path);
    // Asks the person, where there is a host, for what cannot be found without.
    TFindResult Find(const char* name, TString& path);
    // Only where it can be known at once: nothing is searched, and nobody is asked or told.
    bool FindKnown(const char* name, TString& path) const;
    // What could not be found is looked and asked for again: a new round. Until then nothing is searched for,
    // and nobody is asked, twice, however many nodes name the file.
    void ForgetMissing();
    // The directories that names are to lie in: those that are searched first, and the base of relative
    // paths.
    void GetBases(vector<TString>& directories) const;
    // A TResourceMode.
    int GetMode() const { return Mode; }
    // A new round also begins where a choice may lead names to other files.
    int GetRound() const { return Round; }
    // Whether Find is waiting for a search or for the person.
    bool IsAsking() const { return Asking; }

    const list<TString>& GetKnownDirectories() const { return KnownDirectories; }

private:
    bool CanAsk() const { return !Headless && Host != nullptr; }
    void GetFullPath(const char* name, TString& path) const;
    bool IsKnown(const char* directory) const;
    void Remember(const char* directory);
    void RememberFirst(const char* directory);
    void RememberDirectoryOf(const char* path);
    void RememberChosen(const char* path);
    void RememberLocated(const char* name, const char* path);
    bool FindLocated(const char* name, TString& path) const;
    // Only while it is there: a leaf name whose file has gone is searched for like any other.
    bool FindLocatedFile(const char* name, TString& path) const;
    bool FindInSearchDirectories(const char* name, TString& path) const;
    bool FindInKnownDirectories(const char* name, TString& path) const;
    TFindResult FindLeaf(const char* name, TString& path);
    TFindResult FindPath(const char* name, const char* path, TString& result);
    TFindResult Ask(const char* name, TString& path);
    bool IsMissing(const char* name) const;
    TFindResult EndAlone(const char* name, bool found);
    bool Choose(const char* name, TString& path);
    bool Search(const char* name, TString& path);
    TFindResult SearchWithDialog(const char* name, TString& path);
    bool Await(TResourceSearch& search, TEvent& done, const char* name, TString& path);

    struct TLocated
    {
        TString Name;
        TString Path;
    };

    const TSettings& Settings;
    TResourceHost* Host = nullptr;
    TString StartDirectory;
    list<TString> KnownDirectories;
    vector<TLocated> Located;
    vector<TString> SearchDirectories;
    // What was found there, so that a thousand effects with one texture do not walk the folders a thousand
    // times.
    mutable vector<TLocated> FoundBelow;
    vector<TString> Missing;
    int Round = 0;
    bool Headless = true;
    bool Asking = false;
    int Mode = 0;
    TString BasePath;
    uint32_t ShowDelay = 2000;
    bool Endless = false;
};
