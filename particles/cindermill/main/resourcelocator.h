#pragma once

#include "library/containers/list.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"

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
class TResourceLocator
{
public:
    explicit TResourceLocator(const TSettings& settings) : Settings(settings) {}

    // `directory` is where searches start: the program's.
    bool Init(const char* directory, bool headless);
    // Takes mode and base path over; after the settings changed.
    void ReadSettings();
    // Directories that are searched with all below them ahead of everything else, whatever the mode.
    void AddSearchDirectory(const char* directory);

    // Makes the stored form of a chosen file; false, with a message shown, if it has none.
    bool PrepareName(TString& path);
    TFindResult Find(const char* name, TString& path);

    const list<TString>& GetKnownDirectories() const { return KnownDirectories; }

private:
    bool IsKnown(const char* directory) const;
    void Remember(const char* directory);
    bool FindInSearchDirectories(const char* name, TString& path) const;
    bool FindInKnownDirectories(const char* name, TString& path) const;
    bool Search(const char* name, const char* directory, const char* excluded, bool climb, TString& path);
    bool SearchBelow(const char* name, const char* directory, const char* excluded, TString& path);
    TFindResult FindPath(const char* path, TString& result) const;

    const TSettings& Settings;
    TString StartDirectory;
    list<TString> KnownDirectories;
    vector<TString> SearchDirectories;
    bool Headless = true;
    int Mode = 0;
    TString BasePath;
};
