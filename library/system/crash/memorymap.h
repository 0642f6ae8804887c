#pragma once

#include <cstddef>
#include <cstdint>

// Copies memory that may not be there: false, with nothing to rely on in the buffer, if not all of it can be
// read.
bool ReadMemory(uintptr_t address, void* buffer, size_t size);

enum TMappingFlag
{
    MF_READ = 1,
    MF_WRITE = 2,
    MF_EXECUTE = 4,
    MF_FILE = 8,
    // Is no memory (a device's registers), or its owner does not want it in a dump.
    MF_NODUMP = 16
};

struct TMapping
{
    uintptr_t Begin;
    uintptr_t End;
    // Of a file: what is mapped at the beginning.
    uint64_t Offset;
    uint32_t Name;
    uint32_t Flags;
};

// A file of code that is loaded.
struct TModule
{
    const char* Path;
    uintptr_t Base;
    uintptr_t End;
};

// What the process's memory consists of, by ascending addresses. An object takes megabytes, of which only
// those that are used are ever touched: it belongs into static storage.
class TMemoryMap
{
public:
    // Reads the map as it stands. False if the system does not tell it.
    bool Read();

    int GetCount() const { return Count; }
    const TMapping& Get(int i) const { return Mappings[i]; }
    // The file, or what the system calls the memory; "" for memory without a name.
    const char* GetName(const TMapping& mapping) const { return Names + mapping.Name; }
    // The one that holds the address, or null.
    const TMapping* Find(uintptr_t address) const;
    // The stack that the stack pointer belongs to, or null. A pointer that has run out of its stack stands
    // below it.
    const TMapping* FindStack(uintptr_t stackPointer) const;
    // The next module from mapping `i` on, which moves behind it. False if there is no other.
    bool FindModule(int& i, TModule& module) const;

private:
    bool ReadFrom(const char* path);
    void TakeLine(const char* line);
    void TakeMapping(const char* line);
    void TakeFlags(const char* line);
    uint32_t TakeName(const char* name);

    // As many as the system allows, unless it is told otherwise.
    static constexpr int MaxMappings = 65536;
    static constexpr uint32_t MaxNames = 4u << 20;

    TMapping Mappings[MaxMappings];
    int Count;
    // Each ends with a zero; the first is "".
    char Names[MaxNames];
    uint32_t NamesUsed;
    uint32_t LastName;
};
