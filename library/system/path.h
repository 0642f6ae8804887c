#pragma once

#include "library/containers/string.h"

// The system's own paths may hold "\\" or "/". Whatever goes to the operating system goes through here first.

// The path in the system's own form. Where no file of the exact name exists, one that differs only in the
// case of ASCII letters is taken.
void ToSystemPath(const char* path, TString& out);

// The path as a person reads it: the system's own separators, nothing looked up.
TString GetShownPath(const char* path);

// "/" to "\\", as paths are kept and compared.
void ToKeptPath(const char* path, TString& out);

// The name of a file in a directory, both as they are kept.
void JoinPath(const char* directory, const char* name, TString& path);

// A kept directory as it can be listed and watched: the top of a file system is the empty path.
const char* GetListablePath(const TString& directory);

// Full path of the running program.
void GetProgramPath(TString& out);

struct TDirectoryEntry
{
    TString Name;
    bool IsDirectory;
};

// The names in a directory that begin so, of whatever kind; nothing but the directory is looked at.
void ListNames(const char* path, const char* start, vector<TString>& result);

// What a directory holds, without "." and ".." and other file systems, in the order of names without case. A
// symbolic link to a file is a file; others are left out. False, with the system's code, if it cannot be
// listed.
bool ListDirectory(const char* path, vector<TDirectoryEntry>& result, int* error = nullptr);
