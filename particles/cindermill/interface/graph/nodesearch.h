#pragma once

#include "particles/cindermill/interface/graph/searchlist.h"

class TDocument;
class TEffectNode;
class TNodeType;
class TNodeTypeLibrary;
class TToolNode;
class TVector2;

// The end of a wire whose other end is still to be found.
struct TWireEnd
{
    TToolNode* Node = nullptr;
    int Port = 0;
    bool IsInput = false;
};

// The port of a new node of the type at which the wire can end, an input or an output; -1 for none. The best
// one has the name of the wire's port, the next best its type.
int FindWirePort(const TNodeType& type, const TWireEnd& end);

// What a search knows of a node type in the folder.
TSearchEntry GetTypeEntry(const TNodeType& type, const TString& folder);
// The folder of what is in the category, which itself stands in a folder, or in none.
TString GetInnerFolder(const TString& folder, const TString& category);

// The node types of the library, by folder; with an end of a wire, those that can take it. An entry's item is
// the number of its type.
void FillTypeSearch(const TNodeTypeLibrary& library, const TWireEnd* end, TSearchList& list);

// Adds a node of the type whose port at the wire stands at the point, and wires it, in one step. Null if the
// type cannot take the wire.
TToolNode* AddNodeToWire(TDocument& document, const TNodeType& type, const TVector2& point,
                         const TWireEnd& end);
