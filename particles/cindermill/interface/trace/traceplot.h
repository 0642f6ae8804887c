#pragma once

#include "library/containers/vector.h"

// Where the values of a trace lie in a graph of some size, in pixels. Knows no window.
class TTracePlot
{
public:
    static constexpr int MarginLeft = 50;
    static constexpr int MarginTop = 10;
    static constexpr int MarginRight = 5;
    static constexpr int MarginBottom = 10;

    // A level line.
    struct TLine
    {
        double Value;
        int Y;
    };

    // The window's.
    TTracePlot(int width, int height);
    int GetLeft() const { return MarginLeft; }
    int GetTop() const { return MarginTop; }
    int GetRight() const { return Right; }
    int GetBottom() const { return Bottom; }
    bool IsEmpty() const { return Right <= MarginLeft || Bottom <= MarginTop; }

    // The entries to show, and the range of their values. False if there is nothing to draw: fewer than two
    // entries, or values that are all but equal.
    bool SetValues(int entries, float min, float max);
    double GetX(int entry) const;
    double GetY(double value) const;
    // The entry that is nearest to a position, of those told before.
    int GetEntry(double x) const;
    // From one level line to the next: 1 or 1.5 times a power of two; 0 for no lines.
    float GetStep() const;
    // The lowest value first. The first and the last may lie just outside the plot: then only their numbers
    // are to be seen, as far as there is room beside it.
    void GetLines(vector<TLine>& lines) const;

private:
    int Right;
    int Bottom;
    int NumEntries = 0;
    double Min = 0;
    double Max = 0;
};
