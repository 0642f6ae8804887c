#include "library/system/crash/systemfacts.h"

#include "library/containers/string.h"
#include "library/system/crash/crashfile.h"
#include "library/system/path.h"
#include "library/system/statefolder.h"

#include <pwd.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/utsname.h>
#include <time.h>
#include <unistd.h>

namespace {

void TakeVersion(const char* release, unsigned (&version)[3])
{
    for (unsigned& number : version) {
        number = 0;
        for (; *release >= '0' && *release <= '9'; ++release)
            number = number * 10 + static_cast<unsigned>(*release - '0');
        if (*release == '.')
            ++release;
    }
}

uint64_t FindKilobytes(const char* text, const char* name)
{
    const char* place = strstr(text, name);
    if (place == nullptr)
        return 0;
    uint64_t number = 0;
    for (place += strlen(name); *place == ' '; ++place) {
    }
    for (; *place >= '0' && *place <= '9'; ++place)
        number = number * 10 + static_cast<uint64_t>(*place - '0');
    return number;
}

int ToMegabytes(uint64_t kilobytes)
{
    return static_cast<int>(kilobytes / 1024);
}

} // namespace

void TSystemFacts::Take()
{
    TString program;
    GetProgramPath(program);
    if (program.IsEmpty())
        program = "Unknown";
    JoinTexts(Program, sizeof(Program), program.Print(), "");
    TString folder;
    folder.SetDirectory(program.Print());
    JoinTexts(ProgramFolder, sizeof(ProgramFolder), folder.IsEmpty() ? "." : folder.Print(), "");

    const passwd* person = getpwuid(getuid());
    JoinTexts(User, sizeof(User), person != nullptr ? person->pw_name : "unknown", "");
    TString state;
    GetStateFolder(state);
    JoinTexts(StateFolder, sizeof(StateFolder), state.Print(), "");

    utsname system = {};
    uname(&system);
    JoinTexts(System, sizeof(System), system.sysname, "");
    TakeVersion(system.release, Version);
    Processors = static_cast<int>(sysconf(_SC_NPROCESSORS_ONLN));
#if defined(__x86_64__)
    ProcessorType = 8664;
#else
    ProcessorType = 0;
#endif
    const time_t now = time(nullptr);
    tm local = {};
    localtime_r(&now, &local);
    UtcOffset = local.tm_gmtoff;
}

void TMemoryFacts::Read()
{
    char text[8192];
    ReadSmallFile("/proc/meminfo", text, sizeof(text));
    const uint64_t total = FindKilobytes(text, "MemTotal:");
    const uint64_t free = FindKilobytes(text, "MemAvailable:");
    PercentUsed = total > 0 ? static_cast<int>((total - free) * 100 / total) : 0;
    Physical = ToMegabytes(total);
    PhysicalFree = ToMegabytes(free);
    Paging = ToMegabytes(FindKilobytes(text, "SwapTotal:"));
    PagingFree = ToMegabytes(FindKilobytes(text, "SwapFree:"));
    // What a program may have of the processor's 48 bits of address.
    uint64_t address = ((1ull << 47) - 4096) / 1024;
    rlimit limit = {};
    if (getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur / 1024 < address)
        address = limit.rlim_cur / 1024;
    ReadSmallFile("/proc/self/status", text, sizeof(text));
    const char* size = strstr(text, "VmSize:\t");
    const uint64_t used = size != nullptr ? FindKilobytes(size, "VmSize:\t") : 0;
    Address = ToMegabytes(address);
    AddressFree = ToMegabytes(address > used ? address - used : 0);
}

// Counted in years that begin in March, which puts the leap day last.
TDateTime::TDateTime(int64_t seconds)
{
    constexpr int64_t DaySeconds = 86400;
    constexpr int64_t EraDays = 146097;
    int64_t days = seconds / DaySeconds;
    int64_t rest = seconds % DaySeconds;
    if (rest < 0) {
        rest += DaySeconds;
        --days;
    }
    Hour = static_cast<int>(rest / 3600);
    Minute = static_cast<int>(rest / 60 % 60);
    Second = static_cast<int>(rest % 60);
    // From the first of March of the year 0.
    days += 719468;
    const int64_t era = (days >= 0 ? days : days - EraDays + 1) / EraDays;
    const int64_t eraDay = days - era * EraDays;
    const int64_t eraYear = (eraDay - eraDay / 1460 + eraDay / 36524 - eraDay / 146096) / 365;
    const int64_t yearDay = eraDay - (365 * eraYear + eraYear / 4 - eraYear / 100);
    const int64_t month = (5 * yearDay + 2) / 153;
    Day = static_cast<int>(yearDay - (153 * month + 2) / 5 + 1);
    Month = static_cast<int>(month < 10 ? month + 3 : month - 9);
    Year = static_cast<int>(eraYear + era * 400 + (Month <= 2 ? 1 : 0));
}
