#pragma once

#include "library/containers/string.h"
#include "particles/effectgraph/export/commandstream.h"

// What a phase does with the rows of one attribute.
class TRowFlags
{
public:
    static constexpr int MaxRows = 6;
    // Read before it is written.
    static constexpr uint8_t Read = 1;
    static constexpr uint8_t Written = 2;

    uint8_t operator[](int row) const { return Flags[Check(row)]; }
    uint8_t& operator[](int row) { return Flags[Check(row)]; }
    // A row that was written before is not read before it is written.
    void MarkRead(int row)
    {
        if ((*this)[row] == 0)
            (*this)[row] = Read;
    }
    void MarkWritten(int row) { (*this)[row] |= Written; }

private:
    static int Check(int row)
    {
        ASSERT_TEXT(row >= 0 && row < MaxRows, "row < MaxRows");
        return row;
    }

    uint8_t Flags[MaxRows] = {};
};

// A transform that the console keeps up to date in the data of a command.
struct TExportTransform
{
    // Of the patch that says where.
    TString Name;
    uint16_t Type = 0;
    // The patch's position in the stream's patch table. Set by Build.
    uint16_t Ordinal = 0;
};

// What of a phase stands in the file's narrow fields.
struct TPhaseHeader
{
    uint8_t Phase = 0;
    uint8_t Rows = 0;
    uint8_t InputBuffers = 0;
    uint8_t OutputBuffers = 0;
    uint16_t UnpackWords = 0;
    uint16_t ExecuteWords = 0;
    uint16_t PackWords = 0;
    uint16_t NumParams = 0;
    uint8_t NumTransforms = 0;
    uint8_t ProgramKilobytes = 0;
    uint8_t WorkspaceKilobytes = 0;
};

// One of the two phases of a particle's life: emission, when it is born, and process, in every frame.
struct TExportPhase
{
    // By attribute row: the row that holds it when the phase ends. At first each holds itself.
    vector<uint32_t> RowMap;
    // By attribute.
    vector<TRowFlags> Flags;
    // In the data of Execute's commands.
    vector<TExportTransform> Transforms;
    TCommandStream Unpack;
    TCommandStream Execute;
    TCommandStream Pack;
    // Machine rows that the streams need. Set by Build, as is the header.
    int Rows = 0;
    TPhaseHeader Header;
};
