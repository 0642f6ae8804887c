#include "library/system/crash/memorymap.h"

#include <initializer_list>

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <string.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

// How far below its stack a stack pointer may be: a function may need much at once.
constexpr uintptr_t MaxOverrun = 16u << 20;

// Lines of a file of /proc, one after the other. What does not fit a line is cut off.
class TProcLines
{
public:
    explicit TProcLines(const char* path) : Handle(open(path, O_RDONLY | O_CLOEXEC)) {}
    ~TProcLines()
    {
        if (Handle >= 0)
            close(Handle);
    }
    TProcLines(const TProcLines&) = delete;
    TProcLines& operator=(const TProcLines&) = delete;

    // Null at the end.
    const char* GetNext()
    {
        size_t length = 0;
        char c = 0;
        bool any = false;
        while (GetCharacter(c)) {
            any = true;
            if (c == '\n')
                break;
            if (length + 1 < sizeof(Line))
                Line[length++] = c;
        }
        Line[length] = 0;
        return any ? Line : nullptr;
    }

private:
    bool GetCharacter(char& c)
    {
        while (Place == Filled) {
            const ssize_t got = Handle >= 0 ? read(Handle, Buffer, sizeof(Buffer)) : 0;
            if (got < 0 && errno == EINTR)
                continue;
            if (got <= 0)
                return false;
            Place = 0;
            Filled = static_cast<size_t>(got);
        }
        c = Buffer[Place++];
        return true;
    }

    int Handle;
    size_t Place = 0;
    size_t Filled = 0;
    char Buffer[4096];
    char Line[PATH_MAX + 256];
};

bool IsHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
}

uint64_t ReadHex(const char*& text)
{
    uint64_t number = 0;
    for (; IsHexDigit(*text); ++text)
        number = number * 16 + static_cast<uint64_t>(*text <= '9' ? *text - '0' : *text - 'a' + 10);
    return number;
}

const char* SkipBlanks(const char* text)
{
    while (*text == ' ')
        ++text;
    return text;
}

const char* SkipWord(const char* text)
{
    while (*text != 0 && *text != ' ')
        ++text;
    return SkipBlanks(text);
}

// Where the system forbids the other way. What cannot be read does not get into a pipe.
bool ReadThroughPipe(uintptr_t address, void* buffer, size_t size)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return false;
    const ssize_t length = static_cast<ssize_t>(size);
    const bool done =
        syscall(SYS_write, ends[1], address, size) == length && read(ends[0], buffer, size) == length;
    close(ends[0]);
    close(ends[1]);
    return done;
}

} // namespace

// Without the library's functions in between, some of which look at what they are given.
bool ReadMemory(uintptr_t address, void* buffer, size_t size)
{
    const iovec local = {buffer, size};
    const iovec remote = {reinterpret_cast<void*>(address), size};
    const ssize_t got = syscall(SYS_process_vm_readv, getpid(), &local, 1, &remote, 1, 0);
    if (got < 0 && errno != EFAULT)
        return ReadThroughPipe(address, buffer, size);
    return got == static_cast<ssize_t>(size);
}

// The longer file tells what must not be dumped, and may be missing.
bool TMemoryMap::Read()
{
    return ReadFrom("/proc/self/smaps") || ReadFrom("/proc/self/maps");
}

bool TMemoryMap::ReadFrom(const char* path)
{
    Count = 0;
    Names[0] = 0;
    NamesUsed = 1;
    LastName = 0;
    TProcLines lines(path);
    while (const char* line = lines.GetNext())
        TakeLine(line);
    return Count > 0;
}

void TMemoryMap::TakeLine(const char* line)
{
    if (IsHexDigit(*line))
        TakeMapping(line);
    else if (strncmp(line, "VmFlags:", 8) == 0)
        TakeFlags(line + 8);
}

// "begin-end rwxp offset device inode name".
void TMemoryMap::TakeMapping(const char* line)
{
    if (Count == MaxMappings)
        return;
    TMapping& mapping = Mappings[Count++];
    mapping.Begin = ReadHex(line);
    line += *line == '-';
    mapping.End = ReadHex(line);
    line = SkipBlanks(line);
    mapping.Flags = 0;
    constexpr const char* Rights = "rwx";
    for (unsigned i = 0; i < 3 && line[0] != 0; ++i, ++line)
        if (*line == Rights[i])
            mapping.Flags |= 1u << i;
    line = SkipWord(line);
    mapping.Offset = ReadHex(line);
    line = SkipWord(SkipBlanks(line));
    if (*line != '0')
        mapping.Flags |= MF_FILE;
    mapping.Name = TakeName(SkipWord(line));
}

void TMemoryMap::TakeFlags(const char* line)
{
    for (line = SkipBlanks(line); *line != 0; line = SkipWord(line))
        for (const char* flag : {"io", "pf", "dd"})
            if (Count > 0 && strncmp(line, flag, 2) == 0)
                Mappings[Count - 1].Flags |= MF_NODUMP;
}

// The parts of a file mostly follow each other.
uint32_t TMemoryMap::TakeName(const char* name)
{
    const size_t size = strlen(name) + 1;
    if (size == 1 || NamesUsed + size > MaxNames)
        return 0;
    if (strcmp(Names + LastName, name) == 0)
        return LastName;
    LastName = NamesUsed;
    memcpy(Names + NamesUsed, name, size);
    NamesUsed += static_cast<uint32_t>(size);
    return LastName;
}

const TMapping* TMemoryMap::Find(uintptr_t address) const
{
    for (int i = 0; i < Count && Mappings[i].Begin <= address; ++i)
        if (address < Mappings[i].End)
            return &Mappings[i];
    return nullptr;
}

const TMapping* TMemoryMap::FindStack(uintptr_t stackPointer) const
{
    for (int i = 0; i < Count; ++i) {
        const TMapping& mapping = Mappings[i];
        if (mapping.End <= stackPointer || (mapping.Flags & MF_WRITE) == 0)
            continue;
        return mapping.Begin <= stackPointer || mapping.Begin - stackPointer <= MaxOverrun ? &mapping
                                                                                           : nullptr;
    }
    return nullptr;
}

// Pictures, fonts and caches are mapped too: code that can run, and the linker's mark at the beginning, make
// a module.
bool TMemoryMap::FindModule(int& i, TModule& module) const
{
    while (i < Count) {
        const TMapping& first = Mappings[i];
        bool executable = false;
        uintptr_t end = first.End;
        for (++i; (first.Flags & MF_FILE) != 0; ++i) {
            executable |= (Mappings[i - 1].Flags & MF_EXECUTE) != 0;
            // Memory without a name may lie between the parts of one file.
            int next = i;
            while (next < Count && next < i + 4 && (Mappings[next].Flags & MF_FILE) == 0)
                ++next;
            if (next == Count || (Mappings[next].Flags & MF_FILE) == 0 || Mappings[next].Offset == 0 ||
                strcmp(GetName(Mappings[next]), GetName(first)) != 0)
                break;
            i = next;
            end = Mappings[next].End;
        }
        char mark[4];
        if (!executable || first.Offset != 0 || !ReadMemory(first.Begin, mark, sizeof(mark)) ||
            memcmp(mark, "\177ELF", sizeof(mark)) != 0)
            continue;
        module.Path = GetName(first);
        module.Base = first.Begin;
        module.End = end;
        return true;
    }
    return false;
}
