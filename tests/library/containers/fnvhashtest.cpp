#include "library/containers/fnvhash.h"

#include "support/testsupport.h"

namespace {
uint32_t Hash32(const std::string& text)
{
    uint32_t hash = FnvStart32;
    for (const char ch : text)
        hash = AddToFnv(hash, static_cast<uint8_t>(ch));
    return hash;
}

uint64_t Hash64(const std::string& text)
{
    return AddToFnv(FnvStart64, text.data(), static_cast<int>(text.size()));
}
} // namespace

// The values that its authors publish.
TEST(FnvHash, GivesThePublishedValues)
{
    EXPECT_EQ(Hash32(""), 0x811c9dc5u);
    EXPECT_EQ(Hash32("a"), 0xe40c292cu);
    EXPECT_EQ(Hash32("foobar"), 0xbf9cf968u);
    EXPECT_EQ(Hash64(""), 0xcbf29ce484222325u);
    EXPECT_EQ(Hash64("a"), 0xaf63dc4c8601ec8cu);
    EXPECT_EQ(Hash64("foobar"), 0x85944171f73967e8u);
}

TEST(FnvHash, GoesOnWhereItStopped)
{
    EXPECT_EQ(AddToFnv(Hash64("foo"), "bar", 3), Hash64("foobar"));
}

TEST(FnvHash, TakesEachByteAsOneWithoutASign)
{
    const uint8_t byte = 0xff;
    EXPECT_EQ(AddToFnv(FnvStart64, &byte, 1), (FnvStart64 ^ 0xffu) * 1099511628211u);
    EXPECT_EQ(AddToFnv(FnvStart32, byte), (FnvStart32 ^ 0xffu) * 16777619u);
}
