#include "particles/cindermill/main/effectfile.h"

#include "particles/cindermill/graph/operations/operationstack.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/graphcheck.h"

bool TEffectFile::Load(const char* path)
{
    return LoadBy([&] { return Chunks.Load(path); });
}

bool TEffectFile::LoadFromMemory(const vector<uint8_t>& bytes)
{
    return LoadBy([&] { return Chunks.LoadFromMemory(bytes); });
}

template <class TLoad>
bool TEffectFile::LoadBy(const TLoad& load)
{
    bool loaded = false;
    TString text;
    const bool unbroken = RunGuarded([&] { loaded = load(); }, text);
    if (!unbroken)
        Fault = text;
    else if (loaded)
        return true;
    else if (!Chunks.File.GetFault().IsEmpty())
        Fault = Chunks.File.GetFault();
    else
        Fault = GetLastChunkError();
    if (Fault.Compare("<no error>") == 0)
        Fault = "The file cannot be read to its end";
    return false;
}

bool TEffectFile::FindRoots(bool needStack)
{
    vector<TChunk*> stacks;
    Chunks.GetChunksOfClass(TOperationStack::NameID(), stacks);
    if (needStack && stacks.size() != 1) {
        Fault.Format("The file holds %d operation stacks in place of one", stacks.size());
        return false;
    }
    vector<TChunk*> graphs;
    Chunks.GetChunksOfClass(TEffectGraph::NameID(), graphs);
    if (graphs.size() != 1) {
        Fault.Format("The file holds %d effect graphs in place of one", graphs.size());
        return false;
    }
    OperationStack = stacks.size() == 1 ? static_cast<TOperationStack*>(stacks[0]) : nullptr;
    Graph = static_cast<TEffectGraph*>(graphs[0]);
    return true;
}

// The history holds nodes that are in no graph now; they must not share anything with those that are.
bool TEffectFile::Check(TLinkMender* mender)
{
    vector<TChunk*> chunks;
    Chunks.GetChunksOfClass(TEffectNode::NameID(), chunks);
    Chunks.GetChunksOfClass(TToolNode::NameID(), chunks);
    vector<TEffectNode*> nodes;
    nodes.reserve(chunks.size());
    for (TChunk* chunk : chunks)
        nodes.push_back(static_cast<TEffectNode*>(chunk));
    if (!CheckNodes(nodes, Fault, mender) || !CheckGraph(*Graph, Fault))
        return false;
    if (OperationStack != nullptr && !OperationStack->Check()) {
        Fault = "The undo history is damaged";
        return false;
    }
    return true;
}

bool TEffectFile::CheckClasses()
{
    vector<TChunk*> others;
    Chunks.GetChunksOfClass(TEffectNode::NameID(), others);
    Chunks.GetChunksOfClass(TEffectEdge::NameID(), others);
    if (others.empty())
        return true;
    Fault = "The file holds nodes or edges that cannot be edited";
    return false;
}
