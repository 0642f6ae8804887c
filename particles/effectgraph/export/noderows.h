#pragma once

#include "particles/effectgraph/export/exportgroup.h"
#include "particles/effectgraph/export/pendingcommand.h"
#include "particles/effectgraph/export/rowmaker.h"
#include "particles/effectgraph/schedule/effectschedule.h"

// The rows behind the ports of one tied node. Where the type of a port and that of its attribute differ, the
// node's commands work on rows of the port's type, and small commands beside them convert, as the engine does
// with values. Only ports that have an attribute are asked for rows.
class TNodeRows
{
public:
    // Refers to both.
    TNodeRows(const TEffectSchedule& schedule, TExportGroup& exported, int group, int tied);

    // The attribute at a port, -1 for none.
    int FindInput(int port) const { return Schedule.GetTiedNodeInput(Group, Tied, port); }
    int FindOutput(int port) const { return Schedule.GetTiedNodeOutput(Group, Tied, port); }
    bool ConvertsInput(int port) const;
    bool ConvertsOutput(int port) const;
    // Of the value at a port: of the port's type where it converts, else of the attribute.
    int CountInputRows(int port) const;
    int CountOutputRows(int port) const;
    // The same up to the last row that a conversion does not leave at 0.
    int CountSetInputRows(int port) const;
    // Whether this row of the value gets to the attribute.
    bool UsesOutput(int port, int row) const;

    // The row that holds this one of the value. What the value has not is 0.
    uint32_t ReadInput(int port, int row);
    // The row that a command writes it to. What the attribute does not take is dumped.
    uint32_t WriteOutput(int port, int row);
    // Makes the input's row the output's, whichever of them converts.
    void Pass(int inputPort, int row, int outputPort, int outRow);
    // One row of the input's value, converted once more; also of an input without an attribute.
    uint32_t ReadConverted(int port, const TRowConversion& conversion, int row);
    // The node's last command: behind it the node reads nothing, so that what waits for that may be written
    // where it gets to.
    void WriteDirectly(TPendingCommand& last);
    // Writes the attributes behind the outputs that convert, when the node has told all its commands.
    void Finish();

    // A row of an attribute as it lies.
    uint32_t ReadAttribute(int attrib, int row);
    // A row of an attribute, which the phase has written.
    void MarkWritten(int attrib, int row);
    // Makes the attribute's row hold itself.
    uint32_t TakeOwnRow(int attrib, int row);

    TExportPhase& GetPhase() const { return Phase; }
    TRowMaker& GetMaker() { return Maker; }

private:
    // The rows of an output's value, and which of them were written.
    struct TOutput
    {
        int Port = 0;
        uint32_t Rows[TRowFlags::MaxRows] = {};
        bool Written[TRowFlags::MaxRows] = {};
    };
    // A converted input's row that was made once.
    struct TMadeRow
    {
        int Port;
        int Row;
        uint32_t Made;
    };

    TNodeType* GetNodeType() const { return Schedule.GetNode(GetNode())->GetNodeType(); }
    int GetNode() const { return Schedule.GetTiedNode(Group, Tied); }
    int GetAttributeType(int attrib) const { return Schedule.GetAttributeType(Group, attrib); }
    TRowConversion GetInputConversion(int port) const;
    TRowConversion GetOutputConversion(int port) const;
    uint32_t ReadOrFix(int port, int row);
    uint32_t Make(const TRowConversion& conversion, int row, const uint32_t* source);
    TOutput& GetOutput(int port);
    uint32_t GetOwnRow(int attrib, int row) const;
    uint32_t FindDirectRow(int attrib, const TRowConversion& conversion, int row) const;
    bool IsRead(int attrib) const;
    void FinishOutput(const TOutput& output);

    const TEffectSchedule& Schedule;
    TExportGroup& Exported;
    int Group;
    int Tied;
    TExportPhase& Phase;
    TRowMaker Maker;
    vector<TMadeRow> MadeRows;
    vector<TOutput> Outputs;
};
