#pragma once

#include "library/containers/vector.h"

class TNodeType;

// What the export makes of single ports and parameters: by the class of the run-time node.

// Inputs whose value on the node is exported, wired or not.
struct TFixedInput
{
    const char* ClassName;
    int Port;
};

inline constexpr TFixedInput FixedInputs[] = {
    {"TSphereSurface", 1},
    {"TSphereSurface", 2},
    {"TCollisionPlane", 4},
};

// A number of a node that its field of the exported file cannot hold.
struct TFieldFault
{
    // As members of groups are named: "Alpha Test.Ref Value".
    const char* Parameter;
    double Value;
    // What the field holds at most, from 0 on, and what it holds instead.
    double Most;
    double Exported;
    // Whether the number chooses from a table of the console, which ends before it.
    bool IsChoice;
};

// Appends those of a node of the type.
void GetFieldFaults(const TNodeType& type, vector<TFieldFault>& result);
