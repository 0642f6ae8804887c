#include "library/wimp/gl/rendercover.h"

namespace {
// What is left and right of clip space belongs to its outer cells.
int ToCell(float place)
{
    if (!(place > -1.0f))
        return 0;
    if (place >= 1.0f)
        return TRenderCover::Size - 1;
    return static_cast<int>((double(place) + 1.0) * (TRenderCover::Size / 2));
}

// The bits of a word of a row that cells from low to high have.
uint64_t GetBits(int low, int high, int word, int wordBits)
{
    low -= word * wordBits;
    high -= word * wordBits;
    if (low >= wordBits || high < 0)
        return 0;
    const uint64_t above = low > 0 ? ~uint64_t(0) << low : ~uint64_t(0);
    const uint64_t below = high < wordBits - 1 ? ~(~uint64_t(0) << (high + 1)) : ~uint64_t(0);
    return above & below;
}
} // namespace

bool TRenderCover::GetCells(const TVector2& min, const TVector2& max, TBox& box)
{
    for (int i = 0; i < 2; ++i) {
        if (max[i] < -1.0f || min[i] > 1.0f)
            return false;
        box.Low[i] = ToCell(min[i]);
        box.High[i] = ToCell(max[i]);
    }
    return true;
}

void TRenderCover::Clear()
{
    for (int y = First; y <= Last; ++y)
        for (uint64_t& word : Rows[y])
            word = 0;
    First = Size;
    Last = -1;
}

void TRenderCover::Add(const TBox& box)
{
    uint64_t bits[Words];
    for (int word = 0; word < Words; ++word)
        bits[word] = GetBits(box.Low[0], box.High[0], word, WordBits);
    for (int y = box.Low[1]; y <= box.High[1]; ++y)
        for (int word = 0; word < Words; ++word)
            Rows[y][word] |= bits[word];
    First = box.Low[1] < First ? box.Low[1] : First;
    Last = box.High[1] > Last ? box.High[1] : Last;
}

bool TRenderCover::Touches(const TBox& box) const
{
    const int first = box.Low[1] > First ? box.Low[1] : First;
    const int last = box.High[1] < Last ? box.High[1] : Last;
    if (first > last)
        return false;
    uint64_t bits[Words];
    for (int word = 0; word < Words; ++word)
        bits[word] = GetBits(box.Low[0], box.High[0], word, WordBits);
    for (int y = first; y <= last; ++y)
        for (int word = 0; word < Words; ++word)
            if ((Rows[y][word] & bits[word]) != 0)
                return true;
    return false;
}
