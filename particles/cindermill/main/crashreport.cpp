#include "particles/cindermill/main/crashreport.h"

#include "library/containers/assertion.h"
#include "library/system/crash/coredump.h"
#include "library/system/crash/crashfile.h"
#include "library/system/crash/crashhandler.h"
#include "library/system/crash/crashwriter.h"
#include "library/system/crash/systemfacts.h"
#include "library/system/endsignal.h"

#include <atomic>

#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

// All but Install and SetDebugMode runs in a program that has failed, by the rules of the crash handler.

namespace {

constexpr const char* ReportName = "ERRORLOG.TXT";
constexpr const char* DumpName = "CRASH.DMP";
constexpr const char* Unknown = "Unknown";
// Of a failure that the program did not find itself.
constexpr const char* DefaultPlace = "main";
constexpr int MaxStackWords = 4096;
constexpr int WordsPerLine = 8;
constexpr int CodeBytes = 16;
// The one mode with which the dump is small.
constexpr int MiniDump = 1;

TSystemFacts Facts;
std::atomic<int> DebugMode(MiniDump);

// Addresses and registers are shown with their lower 32 bits.
unsigned Cut(uint64_t value)
{
    return static_cast<unsigned>(value);
}

const char* GetModuleName(const TCrash& crash, uintptr_t address)
{
    const TMapping* mapping = crash.Map.Find(address);
    const char* name = mapping != nullptr ? crash.Map.GetName(*mapping) : "";
    return *name != 0 ? name : Unknown;
}

void PrintTime(TCrashWriter& out, int64_t seconds)
{
    const TDateTime time(seconds + Facts.UtcOffset);
    out.Print("%d/%d/%d %02d:%02d:%02d", time.Month, time.Day, time.Year, time.Hour, time.Minute,
              time.Second);
}

void PrintHead(TCrashWriter& out, const TCrash& crash)
{
    const TFailure& failure = crash.Failure;
    TShownRegisters registers;
    failure.Thread.Show(registers);
    out.Print("%s caused %s (0x%08x) \r\nin module %s at %04x:%08x.\r\n\r\n", Facts.Program,
              GetFailureName(failure.Kind), static_cast<unsigned>(failure.Info.si_signo),
              GetModuleName(crash, registers.Ip), registers.Cs, Cut(registers.Ip));
}

// An assertion's text ends with its line.
void PrintPlace(TCrashWriter& out, const char* text)
{
    if (text == nullptr)
        text = DefaultPlace;
    size_t length = strlen(text);
    while (length > 0 && text[length - 1] == '\n')
        --length;
    out.Print("Exception handler called in ");
    out.Write(text, length);
    out.Print(".\r\n");
}

void PrintSystem(TCrashWriter& out)
{
    out.Print("Error occurred at ");
    PrintTime(out, time(nullptr));
    out.Print(".\r\n%s, run by %s.\r\n", Facts.Program, Facts.User);
    out.Print("Operating system:  %s (%u.%u.%u).\r\n", Facts.System, Facts.Version[0], Facts.Version[1],
              Facts.Version[2]);
    out.Print("%d processor(s), type %d.\r\n", Facts.Processors, Facts.ProcessorType);
    TMemoryFacts memory;
    memory.Read();
    out.Print("%d%% memory in use.\r\n", memory.PercentUsed);
    out.Print("%d MBytes physical memory.\r\n", memory.Physical);
    out.Print("%d MBytes physical memory free.\r\n", memory.PhysicalFree);
    out.Print("%d MBytes paging file.\r\n", memory.Paging);
    out.Print("%d MBytes paging file free.\r\n", memory.PagingFree);
    out.Print("%d MBytes user address space.\r\n", memory.Address);
    out.Print("%d MBytes user address space free.\r\n", memory.AddressFree);
}

void PrintAccess(TCrashWriter& out, const TAccess& access)
{
    out.Print("%s location %08x caused an access violation.\r\n", access.IsWrite ? "Write to" : "Read from",
              Cut(access.Address));
}

// Once, though the report may be begun in one folder and written in another.
void TellAccess(const TAccess& access)
{
    static bool isTold = false;
    if (isTold)
        return;
    isTold = true;
    TCrashWriter out(STDERR_FILENO);
    out.Print("Exception handler: ");
    PrintAccess(out, access);
}

void PrintRegisters(TCrashWriter& out, const TThreadState& thread)
{
    TShownRegisters r;
    thread.Show(r);
    out.Print("Context:\r\n");
    out.Print("EDI:    0x%08x  ESI: 0x%08x  EAX:   0x%08x\r\n", Cut(r.Di), Cut(r.Si), Cut(r.Ax));
    out.Print("EBX:    0x%08x  ECX: 0x%08x  EDX:   0x%08x\r\n", Cut(r.Bx), Cut(r.Cx), Cut(r.Dx));
    out.Print("EIP:    0x%08x  EBP: 0x%08x  SegCs: 0x%08x\r\n", Cut(r.Ip), Cut(r.Bp), r.Cs);
    out.Print("EFlags: 0x%08x  ESP: 0x%08x  SegSs: 0x%08x\r\n", Cut(r.Flags), Cut(r.Sp), r.Ss);
}

void PrintCode(TCrashWriter& out, uintptr_t place)
{
    out.Print("\r\nBytes at CS:EIP:\r\n");
    unsigned char byte = 0;
    for (int i = 0; i < CodeBytes && ReadMemory(place + static_cast<uintptr_t>(i), &byte, 1); ++i)
        out.Print("%02x ", byte);
}

void PrintStack(TCrashWriter& out, const TCrash& crash)
{
    out.Print("\r\n\r\nStack:\r\n");
    const uintptr_t begin = crash.Failure.Thread.GetStackPointer();
    const TMapping* stack = crash.Map.FindStack(begin);
    uint32_t word = 0;
    for (int i = 0; i < MaxStackWords; ++i) {
        const uintptr_t place = begin + static_cast<uintptr_t>(i) * sizeof(word);
        if (stack != nullptr && place + sizeof(word) > stack->End) {
            if (i % WordsPerLine != 0)
                out.Print("\r\n");
            return;
        }
        if (!ReadMemory(place, &word, sizeof(word))) {
            out.Print("Exception encountered during stack dump.\r\n");
            return;
        }
        if (i % WordsPerLine == 0)
            out.Print("0x%08x: ", Cut(place));
        out.Print(i % WordsPerLine == WordsPerLine - 1 ? "%08x \r\n" : "%08x ", word);
    }
}

void PrintModule(TCrashWriter& out, int number, const TModule& module)
{
    struct stat info = {};
    stat(module.Path, &info);
    out.Print("Module %d\r\n%s\r\n", number, module.Path);
    out.Print("Image Base: 0x%08x  Image Size: 0x%08x\r\n", Cut(module.Base), Cut(module.End - module.Base));
    out.Print("Checksum:   0x%08x  Time Stamp: 0x%08x\r\n", 0u, Cut(static_cast<uint64_t>(info.st_mtime)));
    out.Print("File Size:  %-10d  File Time:  ", static_cast<int>(info.st_size));
    PrintTime(out, info.st_mtime);
    out.Print("\r\n");
}

bool PrintReport(int file, const TCrash& crash)
{
    const TFailure& failure = crash.Failure;
    TCrashWriter out(file);
    PrintHead(out, crash);
    PrintPlace(out, failure.Text);
    PrintSystem(out);
    if (failure.Kind == FK_ACCESSVIOLATION && failure.HasAccess) {
        PrintAccess(out, failure.Access);
        TellAccess(failure.Access);
    }
    PrintRegisters(out, failure.Thread);
    PrintCode(out, failure.Thread.GetInstructionPointer());
    // What follows may take long, or not end at all.
    out.Flush();
    PrintStack(out, crash);
    int number = 0;
    TModule module;
    for (int i = 0; crash.Map.FindModule(i, module);)
        PrintModule(out, ++number, module);
    out.Print("\r\n===== [end of %s] =====\r\n", ReportName);
    return out.Flush();
}

// False where there is no such folder.
bool GetPath(char (&path)[PATH_MAX], const char* folder, const char* leaf)
{
    return *folder != 0 && JoinTexts(path, sizeof(path), folder, "/", leaf);
}

// How much of a crash lies in a folder, the more the better.
enum TWritten
{
    W_NOTHING,
    W_PART,
    W_REPORT,
    W_BOTH
};

enum TNeed
{
    // Both files or none.
    N_BOTH,
    N_REPORT
};

// The two files in one folder, open.
class TCrashFiles
{
public:
    // Whether all that is needed could be made; otherwise nothing is.
    bool Create(const char* folder, TNeed need);
    TWritten Write(const TCrash& crash);
    void Remove();

private:
    static int CreateOne(char (&path)[PATH_MAX], const char* folder, const char* leaf, TWriteThrough through);
    bool WriteDump(const TCrash& crash);

    char ReportPath[PATH_MAX];
    char DumpPath[PATH_MAX];
    int Report = -1;
    int Dump = -1;
};

// -1 where there is no such folder too.
int TCrashFiles::CreateOne(char (&path)[PATH_MAX], const char* folder, const char* leaf,
                           TWriteThrough through)
{
    return GetPath(path, folder, leaf) ? CreateCrashFile(path, through) : -1;
}

bool TCrashFiles::Create(const char* folder, TNeed need)
{
    Report = CreateOne(ReportPath, folder, ReportName, WT_YES);
    if (Report < 0)
        return false;
    Dump = CreateOne(DumpPath, folder, DumpName, WT_NO);
    if (Dump >= 0 || need == N_REPORT)
        return true;
    close(Report);
    unlink(ReportPath);
    Report = -1;
    return false;
}

void TCrashFiles::Remove()
{
    unlink(ReportPath);
    if (Dump >= 0)
        unlink(DumpPath);
}

// What does not fit is tried smaller: of a part without its end a debugger makes little.
bool TCrashFiles::WriteDump(const TCrash& crash)
{
    WriteDebug("writing minidump\r\n");
    if (WriteCore(Dump, crash, DebugMode == MiniDump ? CC_STACKS : CC_ALL))
        return true;
    return DebugMode != MiniDump && ftruncate(Dump, 0) == 0 && lseek(Dump, 0, SEEK_SET) == 0 &&
           WriteCore(Dump, crash, CC_STACKS);
}

// Where the disc takes no whole report it takes no dump.
TWritten TCrashFiles::Write(const TCrash& crash)
{
    lseek(Report, 0, SEEK_END);
    const bool isWhole = PrintReport(Report, crash);
    close(Report);
    const bool isDumped = Dump >= 0 && isWhole && WriteDump(crash);
    if (Dump >= 0) {
        close(Dump);
        if (!isDumped)
            unlink(DumpPath);
    }
    return isDumped ? W_BOTH : isWhole ? W_REPORT : W_PART;
}

// Too large for the stack of the handlers.
TCrashFiles Beside;
TCrashFiles Apart;

// One after the other, until one takes both files. What is left in the end lies in one folder, and a report
// that is not whole is better than none.
TWritten WriteFiles(const TCrash& crash, TNeed need)
{
    const TWritten beside = Beside.Create(Facts.ProgramFolder, need) ? Beside.Write(crash) : W_NOTHING;
    if (beside == W_BOTH)
        return beside;
    MakeCrashFolder(Facts.StateFolder);
    const TWritten apart = Apart.Create(Facts.StateFolder, need) ? Apart.Write(crash) : W_NOTHING;
    if (apart > beside && beside != W_NOTHING)
        Beside.Remove();
    if (apart <= beside && apart != W_NOTHING)
        Apart.Remove();
    return apart > beside ? apart : beside;
}

void OnCrash(const TCrash& crash)
{
    if (WriteFiles(crash, N_BOTH) == W_NOTHING && WriteFiles(crash, N_REPORT) == W_NOTHING)
        WriteDebug("Error creating exception report\r\n");
}

} // namespace

bool TCrashReport::Install()
{
    Facts.Take();
    if (!InstallCrashHandler(OnCrash))
        return false;
    SetAssertReport([](const char* text) { ReportCrash(FK_UNKNOWN, text); });
    SetAssertHook([](const char*, const char*, unsigned) { EndBySignal(SIGABRT); });
    return true;
}

void TCrashReport::SetDebugMode(int mode)
{
    DebugMode = mode;
}
