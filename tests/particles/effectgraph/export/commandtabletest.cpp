#include "particles/effectgraph/export/commandtable.h"

#include "support/testsupport.h"

TEST(TCommandTable, IndexIsThePositionOfTheId)
{
    TCommandTable table;
    EXPECT_EQ(table.IndexOf(7), 0);
    EXPECT_EQ(table.IndexOf(9), 1);
    EXPECT_EQ(table.IndexOf(7), 0);
    EXPECT_EQ(table.GetNumIds(), 2);
    EXPECT_EQ(table.GetId(1), 9u);
}

TEST(TCommandTable, AnIndexBeyondAByteStops)
{
    TCommandTable table;
    for (uint32_t id = 0; id < 256; ++id)
        table.IndexOf(id);
    EXPECT_EQ(table.IndexOf(255), 255);
    EXPECT_EQ(AssertionOf([&] { table.IndexOf(256); }),
              "value <= 0xFF : command index of 256 does not fit the file");
}
