#pragma once

#include "support/fakeservices.h"
#include "support/testgraph.h"

#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/effectgraph/export/exportdata.h"

using TFloats = std::vector<float>;
using TTexts = std::vector<std::string>;

// One run-time node with unwired inputs, among as few others as a schedule needs. A node that is no emitter
// runs once per frame.
class TNodeBench
{
public:
    TNodeBench(const char* className, const std::vector<TTestPort>& inputs,
               const std::vector<TTestPort>& outputs, int category = TU_PROCESS);
    ~TNodeBench();

    // Schedules the graph and makes the nodes; the errors of the latter.
    TTexts Init();
    void Set(const char* input, const TFloats& value) { Graph.InputValue(Node, input, value); }
    // Wires an input of a trigger to a constant that a process takes too, whose port decides the value's name
    // and type: the wire to the tested node converts it.
    void WireFrom(const TTestPort& port, const TFloats& value, int input);
    // Init, once, then a frame; what the frame's last write gave output `port`.
    TFloats Run(float dt = 0, int port = 0);
    // All writes to the port since Init, oldest first.
    std::vector<TFloats> Writes(int port = 0);
    TEffectExecNode* GetExecNode();

    TTestGraph Graph;
    TEffectNode* Node;
    TFakeServices Services;
    TEffectSchedule Schedule;
    TEffectExec Exec;
};

// One run-time node with wired inputs and outputs, and what its export adds to the streams.
class TExportBench
{
public:
    // `wired` holds one character per input: '1' wires it to a source of its type.
    TExportBench(const char* className, const std::vector<TTestPort>& inputs,
                 const std::vector<TTestPort>& outputs, const std::string& wired, int category = TU_PROCESS);

    // One line per command that the export of the node added:
    //     IdAdd a.0 b.0 -> out0.0 data 00000000 patch "name" 1@0
    // A row is its attribute and the component, t1 a temporary, c0 a group constant, _ the dump row.
    TTexts Export();
    // The row map's entries that are no longer the identity, as "out0.1 = in0.0".
    TTexts MovedRows() const;
    TTexts GetErrors() const { return TextsOf(Errors); }

    TTestGraph Graph;
    TEffectNode* Node;
    TFakeServices Services;
    TEffectSchedule Schedule;
    TEffectExec Exec;
    std::unique_ptr<TExportData> Data;
    int Group = -1;

private:
    void Init();
    std::string RowName(uint32_t row) const;
    std::string LineOf(const TCommand& command) const;
    bool IsEmission() const;
    const TCommandStream& Stream() const;

    TErrorList Errors;
};

// The bits of a float in the console's order, as eight hex digits.
std::string Hex(float value);
