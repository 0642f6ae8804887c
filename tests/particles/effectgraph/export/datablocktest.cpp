#include "particles/effectgraph/export/datablock.h"

#include "support/testsupport.h"

TEST(TDataBlock, NumbersAreBigEndian)
{
    TDataBlock block;
    AppendU8(block, 0x101);
    AppendU16(block, 0x10203);
    AppendU32(block, 0x04050607);
    AppendFloat(block, 1);
    const std::string bytes(block.begin(), block.end());
    EXPECT_EQ(bytes, std::string("\x01\x02\x03\x04\x05\x06\x07\x3f\x80\0\0", 11));
}
