#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

// A line of a chooser's list of kinds: what is shown, and patterns such as "*.effect" or "*.dds;*.hvt".
struct TFileFilter
{
    const char* Description;
    const char* Pattern;
};

// The choosers remember the last directory for each list of filters, for the run. False on Cancel. Results
// are in the system's own form. The one for saving begins with the name that the path holds, if any.
bool OpenFileChooser(const char* title, const vector<TFileFilter>& filters, const char* directory,
                     TString& path);
bool SaveFileChooser(const char* title, const vector<TFileFilter>& filters, const char* directory,
                     TString& path);
bool FolderChooser(const char* title, TString& path);
// Whether a directory is remembered for the filters.
bool HasLastDirectory(const vector<TFileFilter>& filters);
// For tests, each of which is a run of its own.
void ForgetLastDirectories();

// Takes the choice of a file to open over; null gives it back.
using TOpenFileChooser = bool (*)(const char* title, const vector<TFileFilter>& filters,
                                  const char* directory, TString& path);
void SetOpenFileChooser(TOpenFileChooser chooser);

// Shows the two message forms as boxes from now on.
void InstallMessageForms();
