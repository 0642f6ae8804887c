#pragma once

#include "qdxmicrocode.h"
#include "support/testsupport.h"

enum
{
    Mov = 1,
    Mul = 2,
    Add = 3,
    Mad = 4,
    Arl = 13,
    Ara = 24,
    Txl = 25
};
enum
{
    Rcp = 2,
    Bra = 9,
    Cal = 11,
    Ret = 12,
    PushA = 19,
    PopA = 20
};

inline TVertexOperand InputOperand()
{
    TVertexOperand operand;
    operand.Type = 2;
    return operand;
}

inline TVertexOperand ConstantOperand()
{
    TVertexOperand operand;
    operand.Type = 3;
    return operand;
}

inline TVertexOperand TempOperand(int reg)
{
    TVertexOperand operand;
    operand.Register = reg;
    return operand;
}

inline TVertexCode Vector(int opcode, int temporary = 0)
{
    TVertexCode code;
    code.Vector = opcode;
    code.VectorTemporary = temporary;
    for (TVertexOperand& source : code.Sources)
        source = InputOperand();
    return code;
}

// The last instruction of its program.
inline TVertexCode LastMov(int temporary)
{
    TVertexCode code = Vector(Mov, temporary);
    code.Last = true;
    return code;
}

inline TVertexCode Scalar(int opcode, int temporary = 0)
{
    TVertexCode code = Vector(0);
    code.Scalar = opcode;
    code.ScalarTemporary = temporary;
    return code;
}

inline TVertexCode Branch(int opcode, int target)
{
    TVertexCode code = Vector(0);
    code.Scalar = opcode;
    code.Target = target;
    return code;
}

inline TVertexCode MovConstant(int slot, bool isRelative = false)
{
    TVertexCode code = Vector(Mov);
    code.Sources[0] = ConstantOperand();
    code.Constant = slot;
    code.ConstantRelative = isRelative;
    return code;
}

const std::string Header = "!!ARBvp1.0\nOPTION NV_vertex_program3;\n";
