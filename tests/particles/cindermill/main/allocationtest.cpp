#include "support/testapp.h"

#include "particles/cindermill/main/document.h"

#include <cstdlib>
#include <filesystem>
#include <new>

// The sanitizers count allocations of their own.
#if !defined(CINDERMILL_SANITIZED)

static int NumAllocations = 0;

void* operator new(std::size_t size)
{
    ++NumAllocations;
    void* memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

// From the first particle over the full ring to the deaths, in effects of all kinds of nodes.
TEST(TEffectExec, AFrameAllocatesNothing)
{
    TTestApp app;
    app.Get().GetResourceLocator().AddSearchDirectory(SourcePath("samples").c_str());
    const TQuiet quiet;
    int samples = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SourcePath("samples"))) {
        if (entry.path().extension() != ".effect")
            continue;
        const std::string name = entry.path().filename().string();
        ++samples;
        int allocations = 0;
        // Random generators live as long as the process, and are made by the first run.
        for (int run = 0; run < 2; ++run) {
            TDocument document(app.Get());
            ASSERT_TRUE(document.BatchLoad(entry.path().c_str()));
            TErrorList errors;
            ASSERT_TRUE(document.CheckLoaded() && document.ResolveTypes(errors)) << name;
            ASSERT_TRUE(document.CreateSchedule(errors) && document.InitEngineWithoutRender(errors)) << name;
            allocations = NumAllocations;
            for (int frame = 0; frame < 300; ++frame)
                document.GetEngine().Update(0.02f);
            allocations = NumAllocations - allocations;
        }
        EXPECT_EQ(allocations, 0) << name;
    }
    EXPECT_GT(NumAllocations, 0);
    EXPECT_GT(samples, 0);
}

#endif
