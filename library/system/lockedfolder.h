#pragma once

#include "library/containers/string.h"

// A folder of files that belongs to one process. However that one ends, another can find out that it lives no
// more and take the folder over, and of several that try at the same moment only one does.
class TLockedFolder
{
public:
    static constexpr const char* LockName = "lock";

    TLockedFolder() = default;
    ~TLockedFolder() { Release(); }
    TLockedFolder(const TLockedFolder&) = delete;
    TLockedFolder& operator=(const TLockedFolder&) = delete;

    // A new folder in `parent`, which is made where it is missing, open to the user alone.
    bool Create(const char* parent);
    // False if the folder belongs to a process that lives, this one included.
    bool TakeOver(const char* path);
    // Leaves the folder and what it holds to whoever takes it over.
    void Release();
    // Takes the folder away; one that holds anything is released.
    void Remove();
    bool IsHeld() const { return Handle >= 0; }
    const TString& GetPath() const { return Path; }

private:
    bool Lock(const char* path);

    int Handle = -1;
    TString Path;
};
