#include "support/testsupport.h"

#include "library/containers/image/image.h"

#include <filesystem>
#include <fstream>

#include <sys/resource.h>
#include <unistd.h>

// What counts a program's memory by itself does not go with a limit on it.
#if !defined(CINDERMILL_SANITIZED)

namespace {

// Holds the process to so many bytes more of memory.
class TMemoryLimit
{
public:
    explicit TMemoryLimit(size_t more)
    {
        size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        getrlimit(RLIMIT_AS, &Before);
        struct rlimit limit = Before;
        limit.rlim_cur = pages * static_cast<size_t>(sysconf(_SC_PAGESIZE)) + more;
        setrlimit(RLIMIT_AS, &limit);
    }
    ~TMemoryLimit() { setrlimit(RLIMIT_AS, &Before); }

private:
    struct rlimit Before = {};
};

// A picture of one pixel with 8 bits of luminance.
std::string DdsHeader()
{
    std::string bytes(128, '\0');
    bytes.replace(0, 4, "DDS ");
    bytes[12] = bytes[16] = 1;
    bytes[82] = 2;
    bytes[88] = 8;
    bytes[92] = '\xFF';
    return bytes;
}

// The same, two pixels high, its rows so far apart.
std::string HvtHeader(char format, char pitch)
{
    std::string bytes(48, '\0');
    bytes[11] = 1;
    bytes[19] = 48;
    bytes[24] = format;
    bytes[26] = 2;
    bytes[30] = '\xA9';
    bytes[31] = '\xFF';
    bytes[33] = 1;
    bytes[35] = 2;
    bytes[37] = 1;
    bytes[40] = pitch;
    return bytes;
}

} // namespace

TEST(ImageMemory, AFileThatIsMostlyNoPictureTakesNone)
{
    const struct
    {
        std::string Header;
        bool Loads;
    } rows[] = {
        {DdsHeader(), true},
        {HvtHeader(0x21, 0), true},
        {HvtHeader(0x21, 0x70), true},
        {HvtHeader(0x01, 0), true},
        // A format that nobody knows.
        {HvtHeader(0x22, 0), true},
        {std::string(200, 'x'), false},
        {std::string(200, '\0'), false},
    };
    const TTempFolder folder;
    const std::string path = folder.Path("image");
    for (const auto& row : rows) {
        WriteBytes(path, row.Header);
        std::filesystem::resize_file(path, 0x7fffffff);
        bool loaded = !row.Loads;
        const TMemoryLimit limit(256 << 20);
        EXPECT_EQ(AssertionOf([&] { LogOf([&] { loaded = TImage().Load(path.c_str()); }); }), "");
        EXPECT_EQ(loaded, row.Loads);
    }
}

#endif
