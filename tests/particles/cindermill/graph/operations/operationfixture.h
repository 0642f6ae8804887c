#pragma once

#include "support/testsupport.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/operationstack.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"

#include <map>
#include <memory>

// A document that writes down what operations ask of its views.
class TFakeDocument : public TEditContext, public TGraphListener
{
public:
    TFakeDocument();
    TFakeDocument(const TFakeDocument&) = delete;
    TFakeDocument& operator=(const TFakeDocument&) = delete;

    TEffectGraph* GetGraph() override { return Graph; }
    TChunkFile& GetChunks() override { return Chunks; }
    void GraphChanged() override;
    void DeselectNode(TToolNode* node) override { Tell("deselect", node); }
    TGraphListener& GetListener() override { return *this; }
    void NodeAdded(TToolNode* node) override { Tell("show", node); }
    void NodeRemoved(TToolNode* node) override { Tell("hide", node); }
    void EdgeAdded(TToolEdge* edge) override { Tell("show", edge); }
    void EdgeRemoved(TToolEdge* edge) override { Tell("hide", edge); }
    void NodeChanged(TToolNode* node) override { Tell("touch", node); }
    void NodeTypeChanged(TToolNode* node) override { Tell("relayout", node); }
    void EdgeMoved(TToolEdge* edge) override { Tell("layout", edge); }
    void EdgeDetached(TToolEdge* edge) override { Tell("unhook", edge); }
    void GetNodeHalfSize(TToolNode*, int& x, int& y) override
    {
        x = HalfWidth;
        y = HalfHeight;
    }
    void AddNodeDisplay(TNodeDisplay*) override { Events.push_back("add display"); }
    void RemoveNodeDisplay(TNodeDisplay*) override { Events.push_back("remove display"); }
    void RedrawWindows() override { Events.push_back("redraw"); }

    // Edits by the stack.
    TToolNode* AddNode(const char* label, const TNodeType& type, int x = 0, int y = 0);
    TToolEdge* Connect(const char* label, TToolNode* source, int sourcePort, TToolNode* destination,
                       int destinationPort);
    void Apply(TOperation* op) { Stack->Apply(*this, op); }
    void Undo() { Stack->Undo(*this); }
    void Redo() { Stack->Redo(*this); }

    void Label(const void* object, const std::string& label) { Labels[object] = label; }
    // The events since the last call, one space between.
    std::string TakeEvents();
    // Labels of the graph's nodes and edges, in order.
    std::string NodesOf() const;
    std::string EdgesOf() const;
    bool Holds(const TChunk* chunk);
    std::string LabelOf(const void* object) const;

    TChunkFile Chunks;
    TEffectGraph* Graph;
    TOperationStack* Stack;
    int HalfWidth = 0;
    int HalfHeight = 0;
    int GraphChanges = 0;

private:
    void Tell(const char* what, const void* object);

    std::map<const void*, std::string> Labels;
    std::vector<std::string> Events;
};

// A chunk file taken apart.
struct TChunkFileBytes
{
    struct TEntry
    {
        uint32_t NameID = 0;
        uint32_t Version = 0;
        std::string Body;
    };

    static TChunkFileBytes Parse(const std::string& bytes);
    std::string Join() const;

    std::vector<TEntry> Entries;
};

// What a save writes, taken apart.
TChunkFileBytes SavedFile(TChunkFile& chunks);
// What a chunk writes, and what stands in the table for it. Checks GetSize against it.
TChunkFileBytes::TEntry SavedChunk(TChunkFile& chunks, const TChunk* chunk);

// Little-endian fields.
std::string I32(int value);
std::string F32(float value);
std::string Ref(const TChunk* chunk);
std::string U8(int value);
// Zero-terminated and padded to words.
std::string Padded(const std::string& text);

// A node type from its file's text.
std::unique_ptr<TNodeType> ParseType(const std::string& xml);
// "In" to "Out", both scalars; a second input "Other".
const TNodeType& GetPlainType();
// Two polytype inputs "A" and "B" that follows A, a scalar "C"; two polytype outputs "Out" that follows A and
// "Copy" that follows Out.
const TNodeType& GetPolytypeType();
// A parameter of each kind, named like its tag.
const TNodeType& GetEveryType();
