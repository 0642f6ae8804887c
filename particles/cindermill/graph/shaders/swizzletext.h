#pragma once

// The text of a fragment swizzle, x in the lowest pair of bits: nothing for the identity, or ".x" where the
// operand is a scalar.
class TSwizzleText
{
public:
    TSwizzleText(int swizzle, bool isScalar);
    char Text[6] = {};

protected:
    TSwizzleText() = default;
    void SetLetters(int x, int y, int z, int w);
};

// The same of a vertex swizzle, x in the highest pair.
class TVertexSwizzleText : public TSwizzleText
{
public:
    explicit TVertexSwizzleText(int swizzle);
};
