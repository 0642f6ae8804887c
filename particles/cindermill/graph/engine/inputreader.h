#pragma once

#include "particles/cindermill/graph/engine/effectexecnode.h"

// Reads a node's inputs as its run-time object would, beside that object: SetPosition says where.
class TInputReader : public TEffectExecNode
{
public:
    TInputReader(TEffectExec& exec, TEffectNode& node)
    {
        Exec = &exec;
        Node = &node;
    }

    // In the port's type.
    TPortValue ReadValue(int port, int index) const { return ReadInput(port, index); }
    // Converted from the port's type.
    TVector3 Read(int port, int index, int type) const
    {
        const TPortValue read = ReadInput(port, index);
        TPortValue value;
        ConvertValue(GetNodeType()->GetInputType(port), type, read.GetFloats(), value.GetFloats());
        return TVector3(value[0], value[1], value[2]);
    }
};
