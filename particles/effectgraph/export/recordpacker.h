#pragma once

#include "particles/effectgraph/export/exportgroup.h"

// Lays a group's rows out in the particle record, which is what a particle keeps between frames, and makes
// the commands that move them there and back.
class TRecordPacker
{
public:
    // Refers to the group, whose stride grows.
    explicit TRecordPacker(TExportGroup& group) : Group(group) {}
    void AddAttribute(int attrib, bool isRender);
    void AddConstants();
    // Once, when everything has its position.
    void AddCommands();

private:
    // A row of the record.
    struct TPosition
    {
        uint32_t Row = 0;
        int Offset = 0;
        int Format = 0;
    };

    void AddEmissionRow(int attrib, int row, bool isRender);
    void AddProcessRow(int attrib, int row);
    void AddPackCommands(TCommandStream& stream, const vector<TPosition>& places) const;
    void AddUnpackCommands(TCommandStream& stream, const vector<TPosition>& places) const;
    uint32_t MapPackedRow(uint32_t row) const;

    TExportGroup& Group;
    vector<TPosition> EmissionPack;
    vector<TPosition> ProcessUnpack;
    vector<TPosition> ProcessPack;
};
