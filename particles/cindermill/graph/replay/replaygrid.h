#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/graph/replay/replaycell.h"

// The values of one row, or of one cell of the records, for particles side by side.
struct TReplayColumn
{
    float* Values = nullptr;
    TCellState* States = nullptr;
};

// Columns of equal length. It belongs to whom it was taken from, and holds until that one changes its size.
struct TReplayColumns
{
    float* Values = nullptr;
    TCellState* States = nullptr;
    int NumColumns = 0;
    // From a column to the next.
    int64_t Stride = 0;
    // How many particles there are.
    int Count = 0;

    TReplayColumn operator[](int column) const
    {
        return TReplayColumn{Values + column * Stride, States + column * Stride};
    }
};

// Room for columns.
class TReplayGrid
{
public:
    // Undefined, all of them.
    void Reset(int numColumns, int count);
    // So many particles of each column, from one on.
    TReplayColumns Get(int first, int count);
    TReplayCell GetCell(int column, int entry) const
    {
        return TReplayCell{Values[column * Length + entry], States[column * Length + entry]};
    }
    int GetNumColumns() const { return NumColumns; }
    int GetLength() const { return Length; }

private:
    vector<float> Values;
    vector<TCellState> States;
    int NumColumns = 0;
    int Length = 0;
};

// The particles of a group: records of cells, kept from frame to frame, the oldest particle first.
class TReplayStore
{
public:
    void Init(int numCells, int mostParticles);
    int GetCount() const { return Count; }
    int GetMost() const { return Most; }
    // New ones, of which nothing is known; where there is no room the oldest give way. The first new index.
    int Add(int count);
    void MarkDead(int particle) { Dead[First + particle] = 1; }
    bool IsDead(int particle) const { return Dead[First + particle] != 0; }
    void RemoveDead();
    TReplayColumns Get(int first, int count) { return Cells.Get(First + first, count); }
    TReplayCell GetCell(int cell, int particle) const { return Cells.GetCell(cell, First + particle); }

private:
    void MakeRoom(int count);

    TReplayGrid Cells;
    vector<uint8_t> Dead;
    int NumCells = 0;
    int Most = 1;
    int First = 0;
    int Count = 0;
};
