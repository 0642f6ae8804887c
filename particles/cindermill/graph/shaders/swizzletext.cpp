#include "particles/cindermill/graph/shaders/swizzletext.h"

TSwizzleText::TSwizzleText(int swizzle, bool isScalar)
{
    SetLetters(swizzle & 3, swizzle >> 2 & 3, swizzle >> 4 & 3, swizzle >> 6 & 3);
    if (Text[0] == 0 && isScalar) {
        Text[0] = '.';
        Text[1] = 'x';
    }
}

TVertexSwizzleText::TVertexSwizzleText(int swizzle)
{
    SetLetters(swizzle >> 6 & 3, swizzle >> 4 & 3, swizzle >> 2 & 3, swizzle & 3);
}

void TSwizzleText::SetLetters(int x, int y, int z, int w)
{
    constexpr const char* Letters = "xyzw";
    if (x == 0 && y == 1 && z == 2 && w == 3)
        return;
    Text[0] = '.';
    Text[1] = Letters[x];
    if (x == y && y == z && z == w)
        return;
    Text[2] = Letters[y];
    Text[3] = Letters[z];
    Text[4] = Letters[w];
}
