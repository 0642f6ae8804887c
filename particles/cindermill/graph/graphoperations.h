#pragma once

#include "library/containers/string.h"
#include "library/maths/vector3.h"
#include "particles/cindermill/graph/operation.h"

class TEffectEdge;
class TEffectNode;
class TNodeType;
class TToolEdge;
class TToolNode;

// The operations that change the shape of a graph. docs/effect-file.md has their chunk bodies.

// Adds a node of a type, new and centred on a point. Nothing can depend on it yet, so the preview goes on.
class TAddGraphNodeOp : public TOperation
{
public:
    TAddGraphNodeOp() = default;
    TAddGraphNodeOp(TEditContext& doc, const TNodeType& nodeType, int x, int y);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    void Discard(TEditContext& doc) override;
    bool Check() const override { return Node != nullptr; }
    TToolNode* GetNode() const { return Node; }
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    void GetMade(vector<TChunk*>& result) const override;

private:
    TToolNode* Node = nullptr;
};

// Adds the nodes that a paste made, with the edges between them.
class TAddGraphNodesOp : public TOperation
{
public:
    TAddGraphNodesOp() = default;
    TAddGraphNodesOp(TEditContext& doc, const vector<TToolNode*>& nodes);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4 * Nodes.size() + 4; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    void Discard(TEditContext& doc) override;
    bool Check() const override;
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    void GetMade(vector<TChunk*>& result) const override;

private:
    vector<TToolNode*> Nodes;
};

class TMoveGraphNodeOp : public TOperation
{
public:
    TMoveGraphNodeOp() = default;
    TMoveGraphNodeOp(const vector<TToolNode*>& nodes, int dx, int dy) : Nodes(nodes), DeltaX(dx), DeltaY(dy)
    {
    }
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4 * Nodes.size() + 12; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    vector<TToolNode*> Nodes;
    int DeltaX = 0;
    int DeltaY = 0;
};

// Takes nodes out of the graph with all their edges. A deleted node keeps its links to the edges that go with
// it, so that a whole part of a graph comes back in one step.
class TDeleteGraphNodeOp : public TOperation
{
public:
    TDeleteGraphNodeOp() = default;
    explicit TDeleteGraphNodeOp(const vector<TToolNode*>& nodes);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4 * (Nodes.size() + Edges.size()) + 8; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override;
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    TAdaption AdaptTo(const TRefreshRecord& record) override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    bool Holds(const TEffectNode* node) const;
    void GatherEdge(TEffectEdge* edge);
    bool FitsDo(const TEffectGraph& graph) const;
    bool FitsUndo(const TEffectGraph& graph) const;

    vector<TToolNode*> Nodes;
    vector<TToolEdge*> Edges;
};

class TAddGraphEdgeOp : public TOperation
{
public:
    TAddGraphEdgeOp() = default;
    TAddGraphEdgeOp(TEditContext& doc, TToolNode* source, int sourcePort, TToolNode* destination,
                    int destinationPort);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    void Discard(TEditContext& doc) override;
    bool Check() const override { return Edge != nullptr; }
    TToolEdge* GetEdge() const { return Edge; }
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    void GetMade(vector<TChunk*>& result) const override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    TToolEdge* Edge = nullptr;
};

// Moves the ends of an edge.
class TChangeGraphEdgeOp : public TOperation
{
public:
    TChangeGraphEdgeOp() = default;
    TChangeGraphEdgeOp(TToolEdge* edge, TToolNode* newSource, int newSourcePort, TToolNode* newDestination,
                       int newDestinationPort);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 36; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override;
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    TAdaption AdaptTo(const TRefreshRecord& record) override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    struct TEnd
    {
        TToolNode* Node = nullptr;
        int Port = 0;
    };

    // In the order of the chunk body.
    enum
    {
        OldSource,
        OldDestination,
        NewSource,
        NewDestination,
        NumEnds
    };

    void MoveTo(TEditContext& doc, const TEnd& source, const TEnd& destination);
    bool FitsMove(const TEffectGraph& graph, const TEnd& fromSource, const TEnd& fromDestination,
                  const TEnd& source, const TEnd& destination) const;

    TToolEdge* Edge = nullptr;
    TEnd Ends[NumEnds];
};

class TDeleteGraphEdgeOp : public TOperation
{
public:
    TDeleteGraphEdgeOp() = default;
    explicit TDeleteGraphEdgeOp(TToolEdge* edge) : Edge(edge) {}
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override { return Edge != nullptr; }
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    TToolEdge* Edge = nullptr;
};

// Switches a node off or on. The engine reads the flag on every run, so the preview goes on.
class TBypassFlagOp : public TOperation
{
public:
    TBypassFlagOp() = default;
    TBypassFlagOp(TToolNode* node, bool set);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 5; }
    void Do(TEditContext& doc) override { Store(doc, Set); }
    void Undo(TEditContext& doc) override { Store(doc, !Set); }
    bool Check() const override { return Node != nullptr; }
    TAdaption AdaptTo(const TRefreshRecord& record) override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    void Store(TEditContext& doc, bool set);

    TToolNode* Node = nullptr;
    bool Set = false;
};

// What a person may change of a node besides its parameters.
struct TNodeProperties
{
    TString Name;
    int Priority = 0;
    bool DynamicBounds = false;
    bool StaticBounds = false;
    TVector3 BoundsMin;
    TVector3 BoundsMax;
};

class TNodePropertiesOp : public TOperation
{
public:
    TNodePropertiesOp() = default;
    TNodePropertiesOp(TToolNode* node, const TNodeProperties& properties);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    int GetVersion() override { return 1; }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    void Do(TEditContext& doc) override { Store(doc, New); }
    void Undo(TEditContext& doc) override { Store(doc, Old); }
    bool Check() const override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    void Store(TEditContext& doc, const TNodeProperties& properties);

    TToolNode* Node = nullptr;
    TNodeProperties Old;
    TNodeProperties New;
};

// Makes all operation classes known, of this file and of paramoperations.h.
void RegisterOperations();
