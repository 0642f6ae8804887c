#pragma once

#include "library/containers/hashindex.h"
#include "library/containers/owner.h"
#include "particles/cindermill/graph/text/textline.h"
#include "particles/effectgraph/effectgraph.h"

// What node types tell of their ports and parameters, once for all nodes that agree in it.
struct TTypeText
{
    TString ClassName;
    // The first node that is of it, by which it is known where a class has several.
    TString FirstName;
    TString Key;
    TTextLines Lines;
    // What the wires call the ports.
    vector<TString> InputLabels;
    vector<TString> OutputLabels;
};

struct TNodeText
{
    const TEffectNode* Node = nullptr;
    TString Name;
    // The name in quotes, with a number where several nodes are of that name.
    TString Key;
    // An index of the effect's types.
    int Type = -1;
    // The node's place in the order in which the schedule takes the nodes.
    int Order = 0;
    int X = 0;
    int Y = 0;
    bool HasPlace = false;
    TTextLines Values;
    TTextLines Wires;
};

// An effect's graph as text: sorted, without history and object numbers, one line a value. Two texts are
// equal exactly if the graphs are: nodes with equal values and places, wired alike, and taken by the schedule
// in the same order. The graph must outlive it and stay as it is.
class TEffectText
{
public:
    explicit TEffectText(const TEffectGraph& graph);

    void Write(TTextBuffer& text) const;

    // By name, then by what else sets nodes of one name apart.
    int GetNumNodes() const { return Nodes.size(); }
    const TNodeText& GetNode(int i) const { return Nodes[i]; }
    int GetNumTypes() const { return Types.size(); }
    const TTypeText& GetType(int i) const { return Types[i]; }
    // The nodes in the order in which the schedule takes them.
    const vector<int>& GetOrder() const { return Order; }
    // The value of a line, with the node that it leads to.
    void WriteValue(const TTextLine& line, TTextBuffer& text) const;

private:
    void AddNode(const TEffectNode& node, int order);
    int FindOrAddType(const TNodeType& type, TTextLines& lines);
    void SortNodes();
    void NameNodes();
    void SortTypes();
    void AddWires(TNodeText& node, const TPointerMap& numbers);

    vector<TNodeText> Nodes;
    vector<TTypeText> Types;
    // While nodes are added.
    TOwner<THashIndex> TypeIndex;
    vector<int> Order;
};
