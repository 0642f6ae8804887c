#pragma once

#include "library/containers/string.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

// The text of the assertion that fails in `work`, or "" if none does.
std::string AssertionOf(const std::function<void()>& work);

// What `work` writes to the log.
std::string LogOf(const std::function<void()>& work);

// The clock stands still where it is set, for as long as this lives.
class TFakeClock
{
public:
    explicit TFakeClock(uint32_t now);
    ~TFakeClock();
    TFakeClock(const TFakeClock&) = delete;
    TFakeClock& operator=(const TFakeClock&) = delete;
    void Set(uint32_t now);
};

// Where the test runs as the superuser, it is somebody without rights while this lives.
class TNobody
{
public:
    TNobody();
    ~TNobody();
    TNobody(const TNobody&) = delete;
    TNobody& operator=(const TNobody&) = delete;

private:
    bool WasSuperuser;
};
// A file of the superuser's that a TNobody may see and not change: one made in the folder, where the test may
// do so, or one of the system's.
std::string MakeForeignFile(const std::string& folder);

// A fresh folder under the system's temporary folder, gone with the object.
class TTempFolder
{
public:
    TTempFolder();
    ~TTempFolder();
    TTempFolder(const TTempFolder&) = delete;
    TTempFolder& operator=(const TTempFolder&) = delete;
    // The path of a file in the folder.
    std::string Path(const std::string& leaf) const { return Folder + "/" + leaf; }
    const std::string& GetFolder() const { return Folder; }

private:
    std::string Folder;
};

// How many seconds a test waits at most for what it needs: far more than that takes under the sanitizers on a
// machine that is busy elsewhere. Only what never comes is waited for this long.
constexpr int Patience = 120;
// Calls `pause` until the condition holds; false once the patience is at an end.
bool WaitFor(const std::function<bool()>& condition, const std::function<void()>& pause);

// Does the work in a process of its own, which has no threads but this one and ends by SIGKILL as soon as it
// is done, with nothing cleared up. False if an assertion failed in it or it ended otherwise.
bool DoAndDie(const std::function<void()>& work);

// A file's bytes; "" if it cannot be read.
std::string ReadBytes(const std::string& path);
void WriteBytes(const std::string& path, const std::string& bytes);
// A file of the repository, by its path from the root.
std::string SourcePath(const std::string& path);

inline std::string Text(const TString& text)
{
    return text.Print();
}
