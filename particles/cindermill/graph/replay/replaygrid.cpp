#include "particles/cindermill/graph/replay/replaygrid.h"

#include <cstring>

namespace {

// Moves `count` entries of each column.
void MoveEntries(const TReplayColumns& columns, int from, int to, int count)
{
    for (int i = 0; i < columns.NumColumns; ++i) {
        const TReplayColumn column = columns[i];
        std::memmove(column.Values + to, column.Values + from, sizeof(float) * static_cast<size_t>(count));
        std::memmove(column.States + to, column.States + from, static_cast<size_t>(count));
    }
}

} // namespace

void TReplayGrid::Reset(int numColumns, int count)
{
    NumColumns = numColumns;
    Length = count;
    const int size = numColumns * count;
    if (size == 0)
        return;
    if (Values.size() < size) {
        Values.resize(size);
        States.resize(size);
    }
    std::memset(Values.data(), 0, sizeof(float) * static_cast<size_t>(size));
    std::memset(States.data(), CS_UNDEFINED, static_cast<size_t>(size));
}

TReplayColumns TReplayGrid::Get(int first, int count)
{
    return TReplayColumns{Values.data() + first, States.data() + first, NumColumns, Length, count};
}

void TReplayStore::Init(int numCells, int mostParticles)
{
    NumCells = numCells;
    Most = mostParticles > 0 ? mostParticles : 1;
    First = 0;
    Count = 0;
    Cells = TReplayGrid();
    Dead.clear();
}

// Twice the room that is needed, so that moving all to the front is seldom.
void TReplayStore::MakeRoom(int count)
{
    if (First + Count + count <= Cells.GetLength())
        return;
    const TReplayColumns old = Cells.Get(First, Count);
    const int length = 2 * (Count + count);
    if (length <= Cells.GetLength()) {
        MoveEntries(old, 0, -First, Count);
        std::memmove(Dead.data(), Dead.data() + First, static_cast<size_t>(Count));
        First = 0;
        return;
    }
    TReplayGrid grown;
    grown.Reset(NumCells, length);
    const TReplayColumns fresh = grown.Get(0, Count);
    for (int i = 0; i < NumCells && Count > 0; ++i) {
        std::memcpy(fresh[i].Values, old[i].Values, sizeof(float) * static_cast<size_t>(Count));
        std::memcpy(fresh[i].States, old[i].States, static_cast<size_t>(Count));
    }
    Cells = static_cast<TReplayGrid&&>(grown);
    Dead.resize(length);
    std::memmove(Dead.data(), Dead.data() + First, static_cast<size_t>(Count));
    First = 0;
}

int TReplayStore::Add(int count)
{
    if (count > Most)
        count = Most;
    const int surplus = Count + count - Most;
    if (surplus > 0) {
        First += surplus;
        Count -= surplus;
    }
    MakeRoom(count);
    const int first = Count;
    if (count == 0)
        return first;
    Count += count;
    const TReplayColumns fresh = Get(first, count);
    for (int i = 0; i < NumCells; ++i) {
        std::memset(fresh[i].Values, 0, sizeof(float) * static_cast<size_t>(count));
        std::memset(fresh[i].States, CS_UNDEFINED, static_cast<size_t>(count));
    }
    for (int i = 0; i < count; ++i)
        Dead[First + first + i] = 0;
    return first;
}

void TReplayStore::RemoveDead()
{
    const TReplayColumns all = Get(0, Count);
    int kept = 0;
    for (int from = 0; from < Count;) {
        int end = from;
        while (end < Count && IsDead(end))
            ++end;
        from = end;
        while (end < Count && !IsDead(end))
            ++end;
        if (from != kept)
            MoveEntries(all, from, kept, end - from);
        kept += end - from;
        from = end;
    }
    Count = kept;
    for (int i = 0; i < Count; ++i)
        Dead[First + i] = 0;
}
