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

// In the order of the kinds.
constexpr const char* KindNames[] = {"an Unknown exception type", "an Access Violation",
                                     "a Stack Overflow",          "an In Page Error",
                                     "a Datatype Misalignment",   "a No Memory",
                                     "a Array Bounds Exceeded",   "a Breakpoint",
                                     "an Illegal Instruction",    "a Float Divide by Zero",
                                     "a Float Inexact Result",    "a Float Invalid Operation",
                                     "a Float Overflow",          "a Float Underflow",
                                     "an Integer Divide by Zero", "an Integer Overflow"};
static_assert(sizeof(KindNames) / sizeof(KindNames[0]) == NumFailureKinds);

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
              KindNames[failure.Kind], static_cast<unsigned>(failure.Info.si_signo),
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
    if (failure.Kind == FK_ACCESSVIOLATION && failure.HasAccess)
        PrintAccess(out, failure.Access);
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

void TellAccess(const TFailure& failure)
{
    if (failure.Kind != FK_ACCESSVIOLATION || !failure.HasAccess)
        return;
    TCrashWriter out(STDERR_FILENO);
    out.Print("Exception handler: ");
    PrintAccess(out, failure.Access);
}

// False where there is no such folder.
bool GetPath(char (&path)[PATH_MAX], const char* folder, const char* leaf)
{
    return *folder != 0 && JoinTexts(path, sizeof(path), folder, "/", leaf);
}

enum TWritten
{
    W_NOTHING,
    W_PART,
    W_WHOLE
};

TWritten WriteReport(const char* folder, const TCrash& crash)
{
    char path[PATH_MAX];
    if (!GetPath(path, folder, ReportName))
        return W_NOTHING;
    const int file = CreateCrashFile(path, WT_YES);
    if (file < 0)
        return W_NOTHING;
    lseek(file, 0, SEEK_END);
    const bool whole = PrintReport(file, crash);
    close(file);
    return whole ? W_WHOLE : W_PART;
}

// What does not fit is tried smaller: of a part without its end a debugger makes little.
bool WriteDump(const char* folder, const TCrash& crash)
{
    char path[PATH_MAX];
    if (!GetPath(path, folder, DumpName))
        return false;
    const int file = CreateCrashFile(path, WT_NO);
    if (file < 0)
        return false;
    WriteDebug("writing minidump\r\n");
    bool done = WriteCore(file, crash, DebugMode == MiniDump ? CC_STACKS : CC_ALL);
    if (!done && DebugMode != MiniDump)
        done = ftruncate(file, 0) == 0 && lseek(file, 0, SEEK_SET) == 0 && WriteCore(file, crash, CC_STACKS);
    close(file);
    if (!done)
        unlink(path);
    return done;
}

void RemoveReport(const char* folder)
{
    char path[PATH_MAX];
    if (GetPath(path, folder, ReportName))
        unlink(path);
}

// A report that is not whole is better than none.
void OnCrash(const TCrash& crash)
{
    const TWritten beside = WriteReport(Facts.ProgramFolder, crash);
    if (beside != W_NOTHING)
        TellAccess(crash.Failure);
    if (beside == W_WHOLE && WriteDump(Facts.ProgramFolder, crash))
        return;
    MakeCrashFolder(Facts.StateFolder);
    if (beside == W_WHOLE) {
        WriteDump(Facts.StateFolder, crash);
        return;
    }
    const TWritten apart = WriteReport(Facts.StateFolder, crash);
    if (apart == W_WHOLE && beside == W_PART)
        RemoveReport(Facts.ProgramFolder);
    if (apart == W_NOTHING && beside == W_NOTHING) {
        WriteDebug("Error creating exception report\r\n");
        return;
    }
    if (beside == W_NOTHING)
        TellAccess(crash.Failure);
    WriteDump(apart == W_NOTHING ? Facts.ProgramFolder : Facts.StateFolder, crash);
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
