#include "particles/cindermill/interface/controls/controlhost.h"

#include <gtest/gtest.h>

#include <type_traits>

TEST(TControlHost, IsAnInterface)
{
    EXPECT_TRUE(std::is_abstract_v<TControlHost>);
}
