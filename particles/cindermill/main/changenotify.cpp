#include "particles/cindermill/main/changenotify.h"

#include "library/containers/assertion.h"
#include "library/containers/log.h"
#include "library/system/clock.h"
#include "library/system/path.h"

namespace {

constexpr uint32_t PollInterval = 100;

void SplitPath(const char* path, TString& directory, TString& name)
{
    TString kept;
    ToKeptPath(path, kept);
    directory.SetDirectory(kept);
    if (directory.IsEmpty() && *kept.Print() != '\\')
        directory = ".";
    name.SetFileName(kept);
}

} // namespace

int TChangeNotify::FindDirectory(const char* path) const
{
    for (int i = 0; i < Directories.size(); ++i)
        if (Directories[i]->Path.Compare(path) == 0)
            return i;
    return -1;
}

int TChangeNotify::FindFile(int directory, const char* name) const
{
    if (directory == -1)
        return -1;
    const vector<TWatchedFile>& files = Directories[directory]->Files;
    for (int i = 0; i < files.size(); ++i)
        if (files[i].Name.Compare(name) == 0)
            return i;
    return -1;
}

int TChangeNotify::AddDirectory(const TString& path)
{
    int error = 0;
    const int number = Watcher.Add(GetListablePath(path), error);
    if (number == -1) {
        DebugPrintf("Failed to open a notify handle to %s. Error = %d\n", path.Print(), error);
        return -1;
    }
    int index = 0;
    while (index < Directories.size() && Directories[index]->Path.Compare(path) < 0)
        ++index;
    TDirectory* added = new TDirectory;
    added->Path = path;
    added->Number = number;
    Directories.insert(index, added);
    if (index <= Position && Directories.size() > 1)
        ++Position;
    return index;
}

bool TChangeNotify::Add(const char* path, TCallback callback, void* context)
{
    TString directory;
    TString name;
    SplitPath(path, directory, name);
    int index = FindDirectory(directory);
    if (index == -1)
        index = AddDirectory(directory);
    if (index == -1)
        return false;
    int file = FindFile(index, name);
    if (file == -1) {
        TWatchedFile added;
        added.Name = name;
        GetFileWriteTime(path, added.WriteTime);
        vector<TWatchedFile>& files = Directories[index]->Files;
        for (file = 0; file < files.size() && files[file].Name.Compare(name) < 0;)
            ++file;
        files.insert(files.begin() + file, added);
    }
    Directories[index]->Files[file].Listeners.push_back(TListener{callback, context});
    return true;
}

void TChangeNotify::Remove(const char* path, TCallback callback, void* context)
{
    TString directory;
    TString name;
    SplitPath(path, directory, name);
    const int index = FindDirectory(directory);
    const int file = FindFile(index, name);
    bool found = false;
    if (file != -1) {
        vector<TWatchedFile>& files = Directories[index]->Files;
        vector<TListener>& listeners = files[file].Listeners;
        TListener* it = listeners.find(TListener{callback, context});
        found = it != listeners.end();
        if (found)
            listeners.erase(it);
        if (listeners.empty())
            files.erase(files.begin() + file);
        if (files.empty()) {
            Watcher.Remove(Directories[index]->Number);
            Directories.erase(index);
        }
        Position = 0;
    }
    ASSERT(found);
}

void TChangeNotify::TakeChange(const char* path)
{
    TString directory;
    TString name;
    SplitPath(path, directory, name);
    const int index = FindDirectory(directory);
    const int file = FindFile(index, name);
    if (file != -1)
        GetFileWriteTime(path, Directories[index]->Files[file].WriteTime);
}

void TChangeNotify::Poll()
{
    if (Polling)
        return;
    const uint32_t now = GetTickCount();
    if (now - LastPoll < PollInterval)
        return;
    LastPoll = now;
    if (Directories.empty())
        return;
    const int looked = Position;
    Position = (Position + 1) % Directories.size();
    if (!Watcher.TakeSignal(Directories[looked]->Number))
        return;
    struct TPolling
    {
        bool& Flag;
        explicit TPolling(bool& flag) : Flag(flag) { Flag = true; }
        ~TPolling() { Flag = false; }
    } polling(Polling);
    CheckDirectory(looked);
}

// What is called may add and remove files, so the changes are gathered first.
void TChangeNotify::CheckDirectory(int index)
{
    vector<TString> changed;
    for (TWatchedFile& file : Directories[index]->Files) {
        TString path;
        JoinPath(Directories[index]->Path, file.Name, path);
        int64_t time = 0;
        if (!GetFileWriteTime(path, time) || time <= file.WriteTime)
            continue;
        file.WriteTime = time;
        changed.push_back(path);
    }
    for (const TString& path : changed)
        Call(path);
}

void TChangeNotify::Call(const char* path)
{
    TString directory;
    TString name;
    SplitPath(path, directory, name);
    int index = FindDirectory(directory);
    int file = FindFile(index, name);
    if (file == -1)
        return;
    const vector<TListener> called = Directories[index]->Files[file].Listeners;
    for (const TListener& listener : called) {
        index = FindDirectory(directory);
        file = FindFile(index, name);
        if (file == -1)
            return;
        vector<TListener>& listeners = Directories[index]->Files[file].Listeners;
        if (listeners.find(listener) != listeners.end())
            listener.Callback(path, listener.Context);
    }
}
