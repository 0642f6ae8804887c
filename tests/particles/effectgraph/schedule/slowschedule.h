#pragma once

#include "particles/effectgraph/schedule/effectschedule.h"

#include <map>
#include <string>
#include <vector>

// A schedule made in the plainest way: every path walked, every group searched, every step on its own, with
// nothing remembered from one to the next. Slow, and what the quick one is held against.
class TSlowSchedule
{
public:
    struct TTied
    {
        int Node = 0;
        std::vector<int> Inputs;
        std::vector<int> Outputs;
    };
    struct TAttribute
    {
        std::string Name;
        int Type = 0;
        int Usage = 0;
        const TNodeParameter* Port = nullptr;
        int ExternalGroup = -1;
        int ExternalAttrib = 0;
    };
    struct TGroup
    {
        std::vector<TTied> TiedNodes;
        std::vector<TAttribute> Attributes;
        int ParticleCount = 100;
        int MaxEmission = 1;
        float MaxLifeTime = 0;
        bool IsTriggerGroup = false;
    };

    explicit TSlowSchedule(const TEffectGraph& graph);
    // Whether some of the groups have no place among the schedule's.
    bool HasDropped() const { return Expansions.size() < Built.size(); }

    // What it ended with: an error, a failed assertion, or neither.
    bool IsRefused = false;
    std::string Assertion;
    std::vector<TEffectNode*> Nodes;
    std::vector<int> Usages;
    std::vector<TGroup> Groups;

private:
    using TIndices = std::vector<int>;

    struct TBuilt
    {
        TIndices Nodes;
        TIndices Emitters;
        int Parent = -1;
        float Life = 0;
        float TriggerLife = -1;
        int Priority = 255;
        bool HasEmitter = false;
        bool HasRender = false;
        bool Valid = false;
    };
    struct TRecord
    {
        int Node = 0;
        TIndices Inputs;
        TIndices Outputs;
        std::vector<bool> Resolved;
    };
    struct TFlow
    {
        int Node = 0;
        int Port = 0;
        const TNodeParameter* InputPort = nullptr;
        bool Written = false;
    };
    struct TExpansion
    {
        int Built = 0;
        TIndices Frontier;
        std::vector<TRecord> Records;
        std::vector<TFlow> Flows;
        std::map<const TEffectEdge*, TIndices> FromOutside;
        std::map<const TEffectEdge*, int> ToOutside;
    };

    const TNodeType& Type(int node) const { return *Nodes[Size(node)]->GetNodeType(); }
    static size_t Size(int i) { return static_cast<size_t>(i); }
    static bool Has(const TIndices& list, int value);
    static bool HasAll(const TIndices& list, const TIndices& values);
    static void Add(TIndices& list, int value);
    int Find(const TEffectNode* node) const;
    TIndices Targets(int node) const;
    int Source(int node, int input) const;

    void Make(const TEffectGraph& graph);
    bool FormGroups();
    void Visit(int node, int from);
    void SortRenderGroups();
    void MergeGroups();
    bool Join(size_t i);
    void MoveOut(size_t i);
    int Search(int node) const;
    void CollectConsumers(int node, int group, TIndices& groups) const;
    int FirstGroupWith(int node) const;
    void Move(int node, int from, int to);
    bool FindValid();
    void FindUsages();
    void FindParents();

    TExpansion Expand(int built) const;
    static void Require(int attribute);
    int AddRecord(TExpansion& x, int node) const;
    static int AddFlow(TExpansion& x, int node, int port, const TNodeParameter* input);
    void AddTerminal(TExpansion& x, int node) const;
    void Trace(TExpansion& x, int node) const;
    void TraceEntry(TExpansion& x, int entry, int node, size_t firstNew) const;
    void Fill(TExpansion& x, size_t record) const;
    static void Merge(TExpansion& x, const std::vector<int>& kinds, int keep, int remove);
    bool IsOutside(const TExpansion& x, int node) const { return !Has(Built[Size(x.Built)].Nodes, node); }

    void FillGroups();
    void CountEmission(size_t i);
    void FillTied(size_t i);
    void NameInput(int node, int port, TAttribute& result) const;
    void NameOutput(int node, int port, TAttribute& result) const;
    void Link(size_t i);
    void FindLives();
    float MaxLife(size_t i) const;

    std::vector<TIndices> Sets;
    std::vector<TBuilt> Built;
    std::vector<TExpansion> Expansions;
};
