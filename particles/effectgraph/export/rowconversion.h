#pragma once

// How the rows of a value of one type become those of another, as ConvertValue does it with floats.
class TRowConversion
{
public:
    // What a row is that is no row of the source: a number, or computed from the source's first three rows.
    static constexpr int Zero = -1;
    static constexpr int One = -2;
    static constexpr int Length = -3;
    static constexpr int Mean = -4;

    TRowConversion(int from, int to);
    // Whether the types differ.
    bool IsNeeded() const { return From != To; }
    // Types that differ may have no conversion: then nothing is read or written.
    bool Exists() const { return Rows != nullptr; }
    int GetNumRows() const { return NumRows; }
    int GetNumSourceRows() const { return NumSourceRows; }
    // A row of the source or one of the above. What a type has not is Zero.
    int operator[](int row) const;
    // Whether a row comes from this one of the source; whether any does.
    bool ComesFrom(int row, int sourceRow) const;
    bool Uses(int sourceRow) const;
    // How many rows there are up to the last that is not Zero.
    int CountSetRows() const;

private:
    int From;
    int To;
    int NumRows;
    int NumSourceRows;
    const char* Rows;
};
