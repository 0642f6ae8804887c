#include "particles/effectgraph/export/rowconversion.h"

#include "particles/effectgraph/valuetype.h"

namespace {
// The first three rows of the source are what a computed row comes from.
constexpr int ComputedFrom = 3;

// Of types from Scalar to Transform. Row: from; column: to. A digit is a row of the source, z zero, i one, L
// the length and M the mean.
constexpr int NumConverted = TY_TRANSFORM + 1;
constexpr const char* Table[NumConverted][NumConverted] = {
    {"0", "00", "000", "0zzz", "0000", "zzzzzz"}, {"L", "01", "01z", "01zz", "01zi", "zzzzzz"},
    {"L", "01", "012", "012z", "012i", "012zzz"}, {"z", "zz", "zzz", "0123", "zzzz", "zzz012"},
    {"M", "01", "012", "012z", "0123", "zzzzzz"}, {"z", "zz", "012", "345z", "zzzz", "012345"},
};
constexpr const char* Same = "012345";

bool IsConverted(int type)
{
    return type >= 0 && type < NumConverted;
}

const char* FindRows(int from, int to)
{
    if (from == to)
        return Same;
    return IsConverted(from) && IsConverted(to) ? Table[from][to] : nullptr;
}
} // namespace

TRowConversion::TRowConversion(int from, int to)
    : From(from), To(to), NumRows(GetTypeRows(to)), NumSourceRows(GetTypeRows(from)), Rows(FindRows(from, to))
{
}

int TRowConversion::operator[](int row) const
{
    if (Rows == nullptr || row < 0 || row >= NumRows)
        return Zero;
    switch (Rows[row]) {
    case 'z':
        return Zero;
    case 'i':
        return One;
    case 'L':
        return Length;
    case 'M':
        return Mean;
    default:
        return Rows[row] - '0';
    }
}

bool TRowConversion::ComesFrom(int row, int sourceRow) const
{
    const int source = (*this)[row];
    const bool isComputed = source == Length || source == Mean;
    return source == sourceRow || (isComputed && sourceRow < ComputedFrom);
}

bool TRowConversion::Uses(int sourceRow) const
{
    if (sourceRow < 0 || sourceRow >= NumSourceRows)
        return false;
    for (int row = 0; row < NumRows; ++row)
        if (ComesFrom(row, sourceRow))
            return true;
    return false;
}

int TRowConversion::CountSetRows() const
{
    int count = NumRows;
    while (count > 0 && (*this)[count - 1] == Zero)
        --count;
    return count;
}
