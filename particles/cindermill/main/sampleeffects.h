#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

// The effects that come with the program: examples to open and to begin from, and not a place for a person's
// own work.
class TSampleEffects
{
public:
    // The folder that they lie in, with its pictures below it; null or empty where there is none.
    void SetFolder(const char* folder) { Folder = folder; }
    const TString& GetFolder() const { return Folder; }
    // One of the folders in which the examples have their files; empty if there is none of that name.
    void GetFolderBeside(const char* leaf, TString& folder) const;
    // Paths, in the order of their names.
    void List(vector<TString>& effects) const;
    // The file of an effect's picture, whether or not it is there.
    static void GetPicture(const char* effect, TString& path);

    // Whether the file lies among the examples.
    bool Holds(const char* path) const;
    // Whether a save there would take an example from everybody: the file is one, and nobody has chosen its
    // place for saving in this run.
    bool IsProtected(const char* path) const;
    // A person has chosen the place for saving, and knows what it is.
    void Release(const char* path);
    // Where a person's own effects are likely to lie: beside the newest one that is no example, otherwise in
    // the home folder. Empty if there is neither. The files are oldest first.
    void GetOwnFolder(const vector<TString>& recentFiles, TString& folder) const;

private:
    TString Folder;
    vector<TString> Released;
};
