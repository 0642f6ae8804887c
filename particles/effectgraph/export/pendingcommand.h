#pragma once

#include "particles/effectgraph/export/exportphase.h"
#include "particles/effectgraph/export/rowmaker.h"

// What a node has told of a command until now: the command, and ahead of it the constants that it reads from
// ports that nothing feeds.
class TPendingCommand
{
public:
    // Null stands for zeros.
    void SetData(const void* data, int size);
    void SetCommand(const char* name, int workspace);
    void AddInputRow(uint32_t row) { InputRows.push_back(row); }
    void AddOutputRow(uint32_t row) { OutputRows.push_back(row); }
    // Writes another row in place of one. False if the command does not write it, or there is none.
    bool ReplaceOutputRow(uint32_t row, uint32_t by);
    // A value that the row has before the command runs.
    void AddConstant(uint32_t row, float value);
    // Of the command's data.
    void AddPatch(const char* name, uint32_t type, uint32_t offset);
    void AddDataTransform(int type, int offset);
    // In the place of the constants that are added next.
    void AddConstantTransform(int type);

    bool HasData() const { return DataSet; }
    bool HasCommand() const { return CommandSet; }
    bool IsEmpty() const;
    int GetNumConstants() const { return ConstantRows.size(); }

    // Tells the constants, what makes further rows from rows, and the command to the phase, and is empty.
    void Flush(TExportPhase& phase, TRowMaker& maker);

private:
    struct TTransform
    {
        int Type = 0;
        int Offset = 0;
    };

    void FlushConstants(TExportPhase& phase) const;
    void FlushCommand(TExportPhase& phase) const;

    bool DataSet = false;
    TDataBlock Data;
    vector<TCommandPatch> Patches;
    vector<TTransform> DataTransforms;
    bool CommandSet = false;
    uint32_t Name = 0;
    int Workspace = 0;
    vector<uint32_t> InputRows;
    vector<uint32_t> OutputRows;
    vector<uint32_t> ConstantRows;
    vector<float> Constants;
    vector<TTransform> ConstantTransforms;
};
