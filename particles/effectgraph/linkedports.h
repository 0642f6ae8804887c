#pragma once

#include "library/containers/set.h"
#include "particles/effectgraph/nodetype.h"

// Ports of one node that must share a type.
struct TLinkedPorts
{
    set<int> Inputs;
    set<int> Outputs;
};

// Appends the port and all that it follows through links, by their places in TPortRef, depth first, the
// linked input before the linked output. Ports of a fixed type are appended, but end the walk.
void GetLinkClosure(const TPortRef& port, vector<int>& result);
// The same into the two sets.
void AddLinkClosure(const TPortRef& port, TLinkedPorts& result);

// The links of a polytype port of the node; -1 where there is none, and for ports of a fixed type.
void GetPortLinks(const TPortRef& port, int& linkInput, int& linkOutput);

// The types that a port can have by itself.
uint32_t GetPortTypes(const TPortRef& port);
