#pragma once

#include "library/containers/sortedmap.h"
#include "particles/effectgraph/export/commandtable.h"
#include "particles/effectgraph/export/datablock.h"

// Rows are named by number while commands are collected: attribute rows from 0, group constants from
// RowConstant, temporaries from RowTemp; RowTemp itself is the dump row, which is never read.
constexpr uint32_t RowConstant = 0x10000;
constexpr uint32_t RowTemp = 0x20000;
constexpr uint32_t RowDump = RowTemp;

// The most rows that one command may read or write.
constexpr int ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS = 32;
// Commands are told their rows, and the particle record is moved, in fours.
constexpr int RowsPerQuad = 4;

// A position in a command's data that the run time fills in.
struct TCommandPatch
{
    uint32_t NameId = 0;
    uint32_t Type = 0;
    uint32_t Offset = 0;
};

struct TCommand
{
    // NameToCrc of the routine's name, 0 while the record holds only data.
    uint32_t Name = 0;
    TDataBlock Data;
    uint32_t Workspace = 0;
    vector<TCommandPatch> Patches;
    vector<uint32_t> Inputs;
    vector<uint32_t> Outputs;
};

// One record of an Execute stream's parameter table.
struct TExecuteParam
{
    uint32_t Name = 0;
    uint32_t CommandIndex = 0;
    uint32_t DataPosition = 0;
    uint32_t DataSize = 0;
    uint32_t WorkspaceOffset = 0;
    uint32_t WorkspaceSize = 0;
};

struct TPatchLocation
{
    uint16_t Type = 0;
    vector<uint16_t> Offsets;
};

// The commands of one phase and step of a group, and the words that they become.
class TCommandStream
{
public:
    // Opens a record with a copy of the block.
    void AddData(const TDataBlock& block) { AddData(block.data(), block.size()); }
    void AddData(const void* data, int size);
    void AddPatch(const TCommandPatch& patch);
    // Names the record that AddData opened, or opens one. The rows must follow.
    void AddCommand(uint32_t name, int inputCount, int outputCount, uint32_t workspace);
    // As many of the four rows as the command still expects.
    void AddInputs(uint32_t r0, uint32_t r1, uint32_t r2, uint32_t r3);
    void AddOutputs(uint32_t r0, uint32_t r1, uint32_t r2, uint32_t r3);
    // All rows of the command, in fours.
    void AddInputRows(const vector<uint32_t>& rows);
    void AddOutputRows(const vector<uint32_t>& rows);

    // Constants into rows, in commands of as many rows as one may have.
    void AddConstants(const vector<float>& values, const vector<uint32_t>& rows);

    // Turns the commands, whose rows are machine rows by now, into words.
    void Serialise(TCommandTable& table, bool isExecute);

    vector<TCommand> Commands;
    // Host order; they go out big-endian.
    vector<uint32_t> Words;
    vector<TExecuteParam> ExecuteParams;
    sortedmap<uint32_t, TPatchLocation> PatchLocations;
    // Word indices of the command words.
    vector<int> CommandOffsets;

private:
    int CountWords() const;
    // The new record's number.
    int AddExecuteParam(const TCommand& command, int index, uint32_t workspace);
    void LocatePatches(const TCommand& command);
    void PutCommand(const TCommand& command, int index, int param);

    int InputRemain = 0;
    int OutputRemain = 0;
};
