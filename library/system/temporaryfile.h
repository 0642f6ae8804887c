#pragma once

#include "library/containers/string.h"

struct stat;

// From now on the signals that end a program take its temporary files' names away first, but for those that
// whoever started the program had it ignore. For a program that has nothing else to do then.
void RemoveTemporaryFilesAtEnd();

// A file that is being written and will take the place of another. Where the file system knows such files it
// has no name until it is whole, so that nothing stays behind however the program ends. Elsewhere, and for
// the moment in which it takes its place, it has a name beside its target, which a program that is killed
// leaves behind: each file that is begun takes away what dead programs left in its folder. A lock, which ends
// with its program, tells the living.
class TTemporaryFile
{
public:
    TTemporaryFile() = default;
    ~TTemporaryFile() { Drop(); }
    TTemporaryFile(const TTemporaryFile&) = delete;
    TTemporaryFile& operator=(const TTemporaryFile&) = delete;

    // For a target in the system's own form, which no link stands in the place of. `old` is the file that is
    // there, whose owner, group and rights the new one takes over, or null. False with the system's reason.
    bool Create(const char* target, const struct stat* old);
    // The same for file systems that know no files without a name.
    bool CreateNamed(const char* target, const struct stat* old);
    // Closes the file, which is now the target; or drops it, with the system's reason.
    bool Replace();
    void Drop();

    bool IsOpen() const { return Handle >= 0; }
    int GetHandle() const { return Handle; }
    // Where the file can be opened for reading until then.
    const TString& GetPath() const { return Path; }
    const TString& GetTarget() const { return Target; }
    int GetError() const { return Error; }

private:
    bool OpenNameless(unsigned mode);
    bool OpenNamed(unsigned mode);
    bool Resemble(const struct stat* old);
    bool Link();
    void TakeName();
    void LeaveName();
    bool Fail(int error);

    int Handle = -1;
    bool IsNamed = false;
    int Slot = -1;
    int Error = 0;
    TString Target;
    TString Path;
};
