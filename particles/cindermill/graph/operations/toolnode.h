#pragma once

#include "library/containers/owner.h"
#include "particles/effectgraph/effectgraph.h"

class TEditContext;
class TNodeDisplay;

// A node of a document: a graph node with a position in the graph view.
//
// Once it is in the document's chunk file, that file owns it, its node type and all parameters. Before that,
// and after UnregisterChunks, it owns its node type.
class TToolNode : public TRegistered<TToolNode, TEffectNode>
{
public:
    static constexpr const char* RegisteredName = "TToolNode";
    TToolNode();
    ~TToolNode() override;

    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return TEffectNode::GetSize() + 8; }

    // Takes a private copy of the type, with no port connected. A new node is centred on the point.
    void Create(TEditContext* doc, const TNodeType& nodeType, int x, int y, bool isNew);
    // Completes the node of a loaded or restored document: view and display.
    void Attach(TEditContext* doc);
    // Lets go of both, as its type is about to change as a whole.
    void Detach();
    // The node comes to the graph, or leaves it.
    void Added(TEditContext* doc);
    void Removed(TEditContext* doc);

    int GetX() const { return X; }
    int GetY() const { return Y; }
    // Moves the view object and lays out the edges of every port.
    void SetPosition(int x, int y);
    // Wraps round, so that a move and its return agree whatever a file said.
    void MoveBy(int dx, int dy);
    void SetSelected(bool selected);
    bool IsSelected() const { return Selected; }
    TNodeDisplay* GetDisplay() const { return Display.Get(); }

    // Enters the node, its type and all parameters into the chunk file, or takes them out; they are then the
    // node's again.
    void RegisterChunks(TChunkFile& chunks);
    void UnregisterChunks(TChunkFile& chunks);

private:
    void CreateDisplay();

    int X = 0;
    int Y = 0;
    TOwner<TNodeDisplay> Display;
    bool Selected = false;
    TEditContext* Doc = nullptr;
};
