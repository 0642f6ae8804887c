#include "library/system/crash/coredump.h"

#include "library/containers/wholenumbers.h"
#include "library/system/crash/crashfile.h"
#include "library/system/crash/crashwriter.h"

#include <algorithm>

#include <elf.h>
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr const char NoteName[] = "CORE";

// A note: its header, its name and so many bytes.
constexpr size_t GetNoteSize(size_t size)
{
    return sizeof(Elf64_Nhdr) + RoundUp(sizeof(NoteName), 4) + RoundUp(size, 4);
}

// Which pages of memory without a file hold anything.
class TPageTable
{
public:
    TPageTable() : Handle(open("/proc/self/pagemap", O_RDONLY | O_CLOEXEC)) {}
    ~TPageTable()
    {
        if (Handle >= 0)
            close(Handle);
    }
    TPageTable(const TPageTable&) = delete;
    TPageTable& operator=(const TPageTable&) = delete;

    // How far from `begin` on the pages are as the first one, and whether that one is used.
    uintptr_t FindRun(uintptr_t begin, uintptr_t end, bool& isUsed)
    {
        isUsed = IsUsed(begin, end);
        uintptr_t place = begin + PageSize;
        while (place < end && IsUsed(place, end) == isUsed)
            place += PageSize;
        return std::min(place, end);
    }

private:
    // What the system does not tell counts as used.
    bool IsUsed(uintptr_t address, uintptr_t end)
    {
        constexpr uint64_t Present = 1ull << 63;
        constexpr uint64_t Swapped = 1ull << 62;
        const uintptr_t page = address / PageSize;
        if (page < First || page >= First + Known)
            Load(page, end / PageSize);
        return page >= First + Known || (Entries[page - First] & (Present | Swapped)) != 0;
    }
    void Load(uintptr_t page, uintptr_t end)
    {
        const size_t count = std::min<uintptr_t>(end - page, MaxEntries);
        const ssize_t got = Handle < 0 ? 0
                                       : pread(Handle, Entries, count * sizeof(uint64_t),
                                               static_cast<off_t>(page * sizeof(uint64_t)));
        First = page;
        Known = got > 0 ? static_cast<size_t>(got) / sizeof(uint64_t) : 0;
    }

    static constexpr size_t MaxEntries = 1024;

    int Handle;
    uintptr_t First = 0;
    size_t Known = 0;
    uint64_t Entries[MaxEntries];
};

// Lays the parts down one after the other: header, table of parts, notes, memory.
class TCoreFile
{
public:
    bool Write(int file, const TCrash& crash, TCoreContents contents);

private:
    void TakeThreads();
    size_t GetThreadNotesSize(const TThreadState& thread) const;
    size_t GetFileNoteSize() const;
    size_t GetNotesSize() const;
    void WriteHeader(TCrashWriter& out) const;
    void WriteParts(TCrashWriter& out) const;
    void WriteNotes(TCrashWriter& out) const;
    void WriteNote(TCrashWriter& out, unsigned type, const void* data, size_t size) const;
    void WriteNoteHeader(TCrashWriter& out, unsigned type, size_t size) const;
    void WriteThreadStatus(TCrashWriter& out, const TThreadState& thread) const;
    void WriteThreadFloats(TCrashWriter& out, const TThreadState& thread) const;
    void WriteProcess(TCrashWriter& out) const;
    void WriteFiles(TCrashWriter& out) const;
    bool WriteMemory(const TCoreRange& range);
    bool WritePages(uintptr_t begin, uintptr_t end);
    bool Skip(uintptr_t size);

    int File;
    const TCrash* Crash;
    const TThreadState* Threads[TThreadStopper::MaxThreads];
    int NumThreads;
    TCoreRanges Ranges;
    size_t AuxiliarySize;
    char Auxiliary[4096];
    size_t MemoryPlace;
};

// Too large for the stack of a handler.
TCoreFile CoreFile;

// Once: a thread may answer late, or fail itself, when the notes have their size already. Of two answers of
// one thread the later one counts.
void TCoreFile::TakeThreads()
{
    NumThreads = 0;
    for (int i = 0; i < Crash->Others.GetCount(); ++i) {
        const TThreadState* state = Crash->Others.Get(i);
        if (state == nullptr)
            continue;
        int place = 0;
        while (place < NumThreads && Threads[place]->Id != state->Id)
            ++place;
        Threads[place] = state;
        NumThreads = std::max(NumThreads, place + 1);
    }
}

size_t TCoreFile::GetThreadNotesSize(const TThreadState& thread) const
{
    return GetNoteSize(sizeof(elf_prstatus)) + (thread.HasFloats ? GetNoteSize(sizeof(elf_fpregset_t)) : 0);
}

// A count, the size of a page, three numbers for each mapping, and the names.
size_t TCoreFile::GetFileNoteSize() const
{
    size_t size = 2 * sizeof(uint64_t);
    for (int i = 0; i < Crash->Map.GetCount(); ++i) {
        const TMapping& mapping = Crash->Map.Get(i);
        if ((mapping.Flags & MF_FILE) != 0)
            size += 3 * sizeof(uint64_t) + strlen(Crash->Map.GetName(mapping)) + 1;
    }
    return size;
}

size_t TCoreFile::GetNotesSize() const
{
    size_t size = GetThreadNotesSize(Crash->Failure.Thread) + GetNoteSize(sizeof(elf_prpsinfo)) +
                  GetNoteSize(sizeof(siginfo_t)) + GetNoteSize(AuxiliarySize) +
                  GetNoteSize(GetFileNoteSize());
    for (int i = 0; i < NumThreads; ++i)
        size += GetThreadNotesSize(*Threads[i]);
    return size;
}

bool TCoreFile::Write(int file, const TCrash& crash, TCoreContents contents)
{
    File = file;
    Crash = &crash;
    TakeThreads();
    Ranges.Take(crash, contents);
    AuxiliarySize = ReadSmallFile("/proc/self/auxv", Auxiliary, sizeof(Auxiliary));
    const size_t notes =
        sizeof(Elf64_Ehdr) + (1 + static_cast<size_t>(Ranges.GetCount())) * sizeof(Elf64_Phdr);
    MemoryPlace = RoundUp(notes + GetNotesSize(), PageSize);
    {
        TCrashWriter out(file);
        WriteHeader(out);
        WriteParts(out);
        WriteNotes(out);
        out.Fill(MemoryPlace - notes - GetNotesSize());
        if (!out.Flush())
            return false;
    }
    for (int i = 0; i < Ranges.GetCount(); ++i)
        if (!WriteMemory(Ranges.Get(i)))
            return false;
    // A hole at the end is none until the file is as long.
    const off_t end = lseek(file, 0, SEEK_CUR);
    return end >= 0 && ftruncate(file, end) == 0 && fsync(file) == 0;
}

void TCoreFile::WriteHeader(TCrashWriter& out) const
{
    Elf64_Ehdr header = {};
    memcpy(header.e_ident, ELFMAG, SELFMAG);
    header.e_ident[EI_CLASS] = ELFCLASS64;
    header.e_ident[EI_DATA] = ELFDATA2LSB;
    header.e_ident[EI_VERSION] = EV_CURRENT;
    header.e_type = ET_CORE;
    header.e_machine = EM_X86_64;
    header.e_version = EV_CURRENT;
    header.e_phoff = sizeof(header);
    header.e_ehsize = sizeof(header);
    header.e_phentsize = sizeof(Elf64_Phdr);
    header.e_phnum = static_cast<Elf64_Half>(1 + Ranges.GetCount());
    out.Write(&header, sizeof(header));
}

void TCoreFile::WriteParts(TCrashWriter& out) const
{
    Elf64_Phdr notes = {};
    notes.p_type = PT_NOTE;
    notes.p_offset = sizeof(Elf64_Ehdr) + (1 + static_cast<size_t>(Ranges.GetCount())) * sizeof(Elf64_Phdr);
    notes.p_filesz = GetNotesSize();
    notes.p_align = 4;
    out.Write(&notes, sizeof(notes));
    size_t place = MemoryPlace;
    for (int i = 0; i < Ranges.GetCount(); ++i) {
        const TCoreRange& range = Ranges.Get(i);
        Elf64_Phdr part = {};
        part.p_type = PT_LOAD;
        const uint32_t flags = range.Mapping->Flags;
        part.p_flags = ((flags & MF_READ) != 0 ? PF_R : 0u) | ((flags & MF_WRITE) != 0 ? PF_W : 0u) |
                       ((flags & MF_EXECUTE) != 0 ? PF_X : 0u);
        part.p_offset = place;
        part.p_vaddr = range.Begin;
        part.p_filesz = range.End - range.Begin;
        part.p_memsz = part.p_filesz;
        part.p_align = PageSize;
        out.Write(&part, sizeof(part));
        place += part.p_filesz;
    }
}

// The failing thread comes first: a debugger begins with it.
void TCoreFile::WriteNotes(TCrashWriter& out) const
{
    const TFailure& failure = Crash->Failure;
    WriteThreadStatus(out, failure.Thread);
    WriteProcess(out);
    WriteNote(out, NT_SIGINFO, &failure.Info, sizeof(siginfo_t));
    WriteNote(out, NT_AUXV, Auxiliary, AuxiliarySize);
    WriteFiles(out);
    WriteThreadFloats(out, failure.Thread);
    for (int i = 0; i < NumThreads; ++i) {
        WriteThreadStatus(out, *Threads[i]);
        WriteThreadFloats(out, *Threads[i]);
    }
}

void TCoreFile::WriteNoteHeader(TCrashWriter& out, unsigned type, size_t size) const
{
    Elf64_Nhdr header = {};
    header.n_namesz = sizeof(NoteName);
    header.n_descsz = static_cast<Elf64_Word>(size);
    header.n_type = type;
    out.Write(&header, sizeof(header));
    out.Write(NoteName, sizeof(NoteName));
    out.Fill(RoundUp(sizeof(NoteName), 4) - sizeof(NoteName));
}

void TCoreFile::WriteNote(TCrashWriter& out, unsigned type, const void* data, size_t size) const
{
    WriteNoteHeader(out, type, size);
    out.Write(data, size);
    out.Fill(RoundUp(size, 4) - size);
}

// Each names the signal: a debugger believes the last.
void TCoreFile::WriteThreadStatus(TCrashWriter& out, const TThreadState& thread) const
{
    const int signal = Crash->Failure.Info.si_signo;
    elf_prstatus status;
    memset(&status, 0, sizeof(status));
    status.pr_info.si_signo = signal;
    status.pr_cursig = static_cast<short>(signal);
    status.pr_pid = thread.Id;
    status.pr_ppid = getppid();
    memcpy(&status.pr_reg, &thread.Registers, sizeof(status.pr_reg));
    status.pr_fpvalid = thread.HasFloats;
    WriteNote(out, NT_PRSTATUS, &status, sizeof(status));
}

void TCoreFile::WriteThreadFloats(TCrashWriter& out, const TThreadState& thread) const
{
    if (thread.HasFloats)
        WriteNote(out, NT_FPREGSET, &thread.Floats, sizeof(thread.Floats));
}

void TCoreFile::WriteProcess(TCrashWriter& out) const
{
    elf_prpsinfo process;
    memset(&process, 0, sizeof(process));
    process.pr_sname = 'R';
    process.pr_uid = getuid();
    process.pr_gid = getgid();
    process.pr_pid = getpid();
    process.pr_ppid = getppid();
    char name[sizeof(process.pr_fname)];
    const size_t length = ReadSmallFile("/proc/self/comm", name, sizeof(name));
    memcpy(process.pr_fname, name, length > 0 && name[length - 1] == '\n' ? length - 1 : length);
    // The arguments, each ended by a zero.
    const size_t arguments =
        ReadSmallFile("/proc/self/cmdline", process.pr_psargs, sizeof(process.pr_psargs));
    for (size_t i = 0; i + 1 < arguments; ++i)
        if (process.pr_psargs[i] == 0)
            process.pr_psargs[i] = ' ';
    WriteNote(out, NT_PRPSINFO, &process, sizeof(process));
}

void TCoreFile::WriteFiles(TCrashWriter& out) const
{
    const TMemoryMap& map = Crash->Map;
    const size_t size = GetFileNoteSize();
    WriteNoteHeader(out, NT_FILE, size);
    uint64_t count = 0;
    for (int i = 0; i < map.GetCount(); ++i)
        count += (map.Get(i).Flags & MF_FILE) != 0;
    const uint64_t header[] = {count, PageSize};
    out.Write(header, sizeof(header));
    for (int i = 0; i < map.GetCount(); ++i) {
        const TMapping& mapping = map.Get(i);
        const uint64_t entry[] = {mapping.Begin, mapping.End, mapping.Offset / PageSize};
        if ((mapping.Flags & MF_FILE) != 0)
            out.Write(entry, sizeof(entry));
    }
    for (int i = 0; i < map.GetCount(); ++i) {
        const char* name = map.GetName(map.Get(i));
        if ((map.Get(i).Flags & MF_FILE) != 0)
            out.Write(name, strlen(name) + 1);
    }
    out.Fill(RoundUp(size, 4) - size);
}

bool TCoreFile::WriteMemory(const TCoreRange& range)
{
    // The system's own code has no file, and is not in the table until it was used.
    if ((range.Mapping->Flags & (MF_FILE | MF_EXECUTE)) != 0)
        return WritePages(range.Begin, range.End);
    TPageTable table;
    for (uintptr_t place = range.Begin; place < range.End;) {
        bool isUsed = false;
        const uintptr_t end = table.FindRun(place, range.End, isUsed);
        if (!(isUsed ? WritePages(place, end) : Skip(end - place)))
            return false;
        place = end;
    }
    return true;
}

// Straight from the memory: the system tells what cannot be read, and that becomes a hole.
bool TCoreFile::WritePages(uintptr_t begin, uintptr_t end)
{
    constexpr uintptr_t MaxStep = 64u << 20;
    while (begin < end) {
        const long written = syscall(SYS_write, File, begin, std::min(end - begin, MaxStep));
        if (written > 0) {
            begin += static_cast<uintptr_t>(written);
        } else if (written < 0 && errno == EFAULT) {
            const uintptr_t next = std::min((begin / PageSize + 1) * PageSize, end);
            if (!Skip(next - begin))
                return false;
            begin = next;
        } else if (written == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool TCoreFile::Skip(uintptr_t size)
{
    return lseek(File, static_cast<off_t>(size), SEEK_CUR) >= 0;
}

} // namespace

bool WriteCore(int file, const TCrash& crash, TCoreContents contents)
{
    return CoreFile.Write(file, crash, contents);
}
