#pragma once

#include "particles/cindermill/graph/text/nodematch.h"

enum TTextDifferenceKind
{
    // A node that only the one effect has, or only the other.
    DK_ADDED,
    DK_REMOVED,
    // An input that another wire leads to, or none.
    DK_REWIRED,
    DK_CHANGED,
    // What the node type tells.
    DK_RETYPED,
    // The order in which the schedule takes nodes, or walks the wires of an output.
    DK_REORDERED,
};

// "added" and so on.
const char* GetDifferenceName(TTextDifferenceKind kind);

struct TDifference
{
    TTextDifferenceKind Kind = DK_ADDED;
    // The node, as its own text calls it: the removed one's as it was, all others' as they are. A type's key
    // where one is retyped; empty where the whole effect is meant.
    TString Key;
    TString ClassName;
    // The value's label, and what it was and is; empty for a node, and for a value that is not there.
    TString What;
    TString Before;
    TString After;
};

// What turns one effect into another. There is nothing exactly if the texts are equal.
class TEffectDifferences
{
public:
    TEffectDifferences(const TEffectText& before, const TEffectText& after);

    int size() const { return Found.size(); }
    bool empty() const { return Found.empty(); }
    const TDifference& operator[](int i) const { return Found[i]; }

private:
    void AddNodes();
    void CompareNode(int before, int after);
    void CompareWires(const TNodeText& before, const TNodeText& after);
    void CompareTypes();
    void CompareOrder();
    bool IsSameEnds(const TTextLines& before, const TTextLines& after, const TString& label,
                    bool inOrder) const;
    TDifference& Add(TTextDifferenceKind kind, const TEffectText& effect, const TNodeText& node);

    const TEffectText& Before;
    const TEffectText& After;
    const TNodeMatch Match;
    vector<TDifference> Found;
};
