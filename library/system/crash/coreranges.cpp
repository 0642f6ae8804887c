#include "library/system/crash/coreranges.h"

#include <algorithm>

#include <link.h>
#include <string.h>

namespace {

// Enough to see how a recursion without end began.
constexpr uintptr_t MaxStack = 16u << 20;
// The processor's rule: so much below the stack pointer may be in use.
constexpr uintptr_t RedZone = 128;
// Data of the system's library that its file does not hold: it lies behind that which it does.
constexpr uintptr_t MaxZeroData = 64 * 1024;

bool IsDumped(const TMapping& mapping)
{
    return (mapping.Flags & MF_READ) != 0 && (mapping.Flags & MF_NODUMP) == 0;
}

bool IsData(const TMapping& mapping)
{
    return (mapping.Flags & (MF_FILE | MF_EXECUTE)) == MF_FILE;
}

bool EndsWith(const char* text, const char* end)
{
    const size_t length = strlen(text);
    return length >= strlen(end) && strcmp(text + length - strlen(end), end) == 0;
}

// Where a debugger looks for it too: in the program's own table.
const r_debug* FindLinkerList()
{
    for (const ElfW(Dyn)* entry = _DYNAMIC; entry->d_tag != DT_NULL; ++entry)
        if (entry->d_tag == DT_DEBUG)
            return reinterpret_cast<const r_debug*>(entry->d_un.d_ptr);
    return nullptr;
}

} // namespace

void TCoreRanges::Take(const TCrash& crash, TCoreContents contents)
{
    Crash = &crash;
    Count = 0;
    if (contents == CC_ALL) {
        TakeAll();
        return;
    }
    TakeThread(crash.Failure.Thread);
    for (int i = 0; i < crash.Others.GetCount(); ++i)
        if (const TThreadState* state = crash.Others.Get(i))
            TakeThread(*state);
    TakeModules();
    TakeLoader();
}

void TCoreRanges::TakeAll()
{
    const TMemoryMap& map = Crash->Map;
    for (int i = 0; i < map.GetCount() && Count < MaxRanges; ++i)
        if (IsDumped(map.Get(i)))
            Ranges[Count++] = TCoreRange{map.Get(i).Begin, map.Get(i).End, &map.Get(i)};
}

void TCoreRanges::TakeThread(const TThreadState& thread)
{
    const uintptr_t pointer = thread.GetStackPointer();
    if (const TMapping* stack = Crash->Map.FindStack(pointer)) {
        const uintptr_t begin = std::max(stack->Begin, std::max(pointer, RedZone) - RedZone);
        Add(begin, std::min(stack->End, begin + MaxStack));
    }
    // Code that no file holds.
    const TMapping* code = Crash->Map.Find(thread.GetInstructionPointer());
    if (code != nullptr && (code->Flags & MF_FILE) == 0)
        Add(thread.GetInstructionPointer(), thread.GetInstructionPointer() + 1);
    if (thread.GetThreadPointer() != 0)
        Add(thread.GetThreadPointer(), thread.GetThreadPointer() + PageSize);
}

// Their headers, by which a debugger knows whether it has the right file.
void TCoreRanges::TakeModules()
{
    TModule module;
    for (int i = 0; Crash->Map.FindModule(i, module);)
        Add(module.Base, module.Base + 1);
}

// What the system lends to each program, and the data of the linker and the system's library: the list of
// what is loaded, and that of the threads. Both may be broken like all else.
void TCoreRanges::TakeLoader()
{
    constexpr int MaxModules = 4096;
    const TMemoryMap& map = Crash->Map;
    const r_debug* list = FindLinkerList();
    const TMapping* data = map.Find(reinterpret_cast<uintptr_t>(list));
    const char* linker = data != nullptr ? map.GetName(*data) : "";
    for (int i = 0; i < map.GetCount(); ++i) {
        const TMapping& mapping = map.Get(i);
        const char* name = map.GetName(mapping);
        if (strcmp(name, "[vdso]") == 0 || (IsData(mapping) && strcmp(name, linker) == 0))
            Add(mapping.Begin, mapping.End);
        else if (IsData(mapping) && (mapping.Flags & MF_WRITE) != 0 && EndsWith(name, "/libc.so.6"))
            Add(mapping.Begin, mapping.End + MaxZeroData);
    }
    r_debug head;
    if (!ReadMemory(reinterpret_cast<uintptr_t>(list), &head, sizeof(head)))
        return;
    uintptr_t place = reinterpret_cast<uintptr_t>(head.r_map);
    for (int i = 0; place != 0 && i < MaxModules; ++i) {
        link_map node;
        if (!ReadMemory(place, &node, sizeof(node)))
            return;
        Add(place, place + sizeof(node));
        const uintptr_t name = reinterpret_cast<uintptr_t>(node.l_name);
        Add(name, name + PageSize);
        // The program's own table leads to the list.
        const uintptr_t table = reinterpret_cast<uintptr_t>(node.l_ld);
        if (i == 0)
            Add(table, table + PageSize);
        place = reinterpret_cast<uintptr_t>(node.l_next);
    }
}

// Whole pages, each within its mapping.
void TCoreRanges::Add(uintptr_t begin, uintptr_t end)
{
    begin &= ~(PageSize - 1);
    end = (end + PageSize - 1) & ~(PageSize - 1);
    while (begin < end) {
        const TMapping* mapping = Crash->Map.Find(begin);
        const uintptr_t part = mapping != nullptr ? std::min(end, mapping->End) : begin + PageSize;
        if (mapping != nullptr && IsDumped(*mapping))
            Insert(TCoreRange{begin, part, mapping});
        begin = part;
    }
}

// Ranges that touch become one.
void TCoreRanges::Insert(const TCoreRange& range)
{
    int first = 0;
    while (first < Count && (Ranges[first].Mapping < range.Mapping ||
                             (Ranges[first].Mapping == range.Mapping && Ranges[first].End < range.Begin)))
        ++first;
    TCoreRange joined = range;
    int last = first;
    while (last < Count && Ranges[last].Mapping == range.Mapping && Ranges[last].Begin <= range.End) {
        joined.Begin = std::min(joined.Begin, Ranges[last].Begin);
        joined.End = std::max(joined.End, Ranges[last].End);
        ++last;
    }
    if (last == first && Count == MaxRanges)
        return;
    memmove(&Ranges[first + 1], &Ranges[last], static_cast<size_t>(Count - last) * sizeof(TCoreRange));
    Count += 1 - (last - first);
    Ranges[first] = joined;
}
