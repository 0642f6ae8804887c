#include "library/system/crash/memorymap.h"

#include "support/testsupport.h"

#include <cstring>
#include <filesystem>
#include <memory>
#include <thread>

#include <sys/mman.h>

namespace {

constexpr size_t PageSize = 4096;

uintptr_t Address(const void* place)
{
    return reinterpret_cast<uintptr_t>(place);
}

// Pages of the test's own.
class TPages
{
public:
    TPages(size_t count, int rights) : Size(count * PageSize)
    {
        Place = static_cast<char*>(mmap(nullptr, Size, rights, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    }
    ~TPages() { munmap(Place, Size); }
    TPages(const TPages&) = delete;
    TPages& operator=(const TPages&) = delete;

    char* Place;
    size_t Size;
};

class MemoryMap : public testing::Test
{
protected:
    MemoryMap() : Map(std::make_unique<TMemoryMap>()) {}

    std::unique_ptr<TMemoryMap> Map;
};

int SomeData = 1;

} // namespace

TEST(ReadMemory, CopiesWhatIsThere)
{
    const int number = 123456;
    int copy = 0;
    EXPECT_TRUE(ReadMemory(Address(&number), &copy, sizeof(copy)));
    EXPECT_EQ(copy, number);
}

TEST(ReadMemory, RefusesWhatCannotBeRead)
{
    char copy[16];
    EXPECT_FALSE(ReadMemory(0, copy, 1));
    EXPECT_FALSE(ReadMemory(0x1234567812345678, copy, 1));
    const TPages pages(2, PROT_READ | PROT_WRITE);
    ASSERT_EQ(mprotect(pages.Place + PageSize, PageSize, PROT_NONE), 0);
    EXPECT_TRUE(ReadMemory(Address(pages.Place + PageSize - 16), copy, 16));
    EXPECT_FALSE(ReadMemory(Address(pages.Place + PageSize - 8), copy, 16));
    EXPECT_FALSE(ReadMemory(Address(pages.Place + PageSize), copy, 1));
}

TEST_F(MemoryMap, FindsCodeDataAndStack)
{
    ASSERT_TRUE(Map->Read());
    const TMapping* code = Map->Find(Address(reinterpret_cast<void*>(&Address)));
    ASSERT_NE(code, nullptr);
    EXPECT_EQ(code->Flags & (MF_READ | MF_WRITE | MF_EXECUTE | MF_FILE), MF_READ | MF_EXECUTE | MF_FILE);
    EXPECT_EQ(Map->GetName(*code), std::filesystem::read_symlink("/proc/self/exe").string());
    const TMapping* data = Map->Find(Address(&SomeData));
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->Flags & (MF_READ | MF_WRITE | MF_EXECUTE), MF_READ | MF_WRITE);
    EXPECT_STREQ(Map->GetName(*data), Map->GetName(*code));
    EXPECT_EQ(Map->Find(0), nullptr);
    EXPECT_EQ(Map->Find(~uintptr_t(0)), nullptr);
}

TEST_F(MemoryMap, TheMappingsAscend)
{
    ASSERT_TRUE(Map->Read());
    for (int i = 1; i < Map->GetCount(); ++i) {
        EXPECT_LT(Map->Get(i).Begin, Map->Get(i).End);
        EXPECT_LE(Map->Get(i - 1).End, Map->Get(i).Begin);
    }
}

TEST_F(MemoryMap, RightsAndWhatIsNotToBeDumpedAreSeen)
{
    const TPages none(3, PROT_NONE);
    const TPages hidden(3, PROT_READ | PROT_WRITE);
    hidden.Place[0] = 1;
    ASSERT_EQ(madvise(hidden.Place, hidden.Size, MADV_DONTDUMP), 0);
    ASSERT_TRUE(Map->Read());
    ASSERT_NE(Map->Find(Address(none.Place)), nullptr);
    EXPECT_EQ(Map->Find(Address(none.Place))->Flags & (MF_READ | MF_WRITE | MF_EXECUTE | MF_FILE), 0u);
    ASSERT_NE(Map->Find(Address(hidden.Place)), nullptr);
    EXPECT_NE(Map->Find(Address(hidden.Place))->Flags & MF_NODUMP, 0u);
    EXPECT_EQ(Map->Find(Address(&SomeData))->Flags & MF_NODUMP, 0u);
}

TEST_F(MemoryMap, AStackIsFoundFromWithinAndFromBelow)
{
    std::thread([this] {
        ASSERT_TRUE(Map->Read());
        const char local = 0;
        const TMapping* stack = Map->FindStack(Address(&local));
        ASSERT_NE(stack, nullptr);
        EXPECT_EQ(stack, Map->Find(Address(&local)));
        EXPECT_EQ(Map->FindStack(stack->Begin - 64), stack);
    }).join();
    EXPECT_EQ(Map->FindStack(0x1000), nullptr);
}

TEST_F(MemoryMap, TheModulesAreTheFilesOfCode)
{
    // A picture that is mapped is no module.
    const TTempFolder folder;
    WriteBytes(folder.Path("data"), std::string(PageSize, 'd'));
    FILE* file = fopen(folder.Path("data").c_str(), "r");
    void* data = mmap(nullptr, PageSize, PROT_READ, MAP_PRIVATE, fileno(file), 0);
    fclose(file);
    ASSERT_TRUE(Map->Read());
    std::vector<std::string> names;
    TModule module;
    uintptr_t last = 0;
    for (int i = 0; Map->FindModule(i, module);) {
        EXPECT_LT(last, module.Base);
        EXPECT_LT(module.Base, module.End);
        EXPECT_EQ(memcmp(reinterpret_cast<void*>(module.Base), "\177ELF", 4), 0);
        last = module.Base;
        names.push_back(std::filesystem::path(module.Path).filename());
        if (module.Path == std::filesystem::read_symlink("/proc/self/exe").string()) {
            EXPECT_LE(module.Base, Address(reinterpret_cast<void*>(&Address)));
            EXPECT_GT(module.End, Address(&SomeData));
        }
    }
    munmap(data, PageSize);
    const std::string own = std::filesystem::read_symlink("/proc/self/exe").filename();
    for (const std::string& name : {own, std::string("libc.so.6")})
        EXPECT_EQ(std::count(names.begin(), names.end(), name), 1) << name;
    EXPECT_EQ(std::count(names.begin(), names.end(), "data"), 0);
}
