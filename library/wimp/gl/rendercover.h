#pragma once

#include "library/maths/vector2.h"

#include <cstdint>

// Which parts of clip space something may touch, by the cells of a grid.
class TRenderCover
{
public:
    static constexpr int Size = 128;

    // Cells, the last ones included.
    struct TBox
    {
        int Low[2];
        int High[2];
    };

    // The cells of a box in clip space; false if all of it lies outside.
    static bool GetCells(const TVector2& min, const TVector2& max, TBox& box);

    void Clear();
    void Add(const TBox& box);
    // Whether it has one of the cells.
    bool Touches(const TBox& box) const;

private:
    static constexpr int WordBits = 64;
    static constexpr int Words = Size / WordBits;

    uint64_t Rows[Size][Words] = {};
    // Rows beyond these are empty.
    int First = Size;
    int Last = -1;
};
