#include "library/containers/nametocrc.h"

#include "support/testsupport.h"

TEST(NameToCrc, IsTheReflectedCrcWithoutFinalInversion)
{
    EXPECT_EQ(NameToCrc(""), 0xFFFFFFFFu);
    EXPECT_EQ(NameToCrc(nullptr), 0xFFFFFFFFu);
    EXPECT_EQ(NameToCrc("123456789"), ~0xCBF43926u);
    EXPECT_NE(NameToCrc("position"), NameToCrc("Position"));
}
