#include "particles/cindermill/main/clipboardeffect.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/operations/operationstack.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/text/effecttext.h"
#include "particles/cindermill/graph/text/effecttextreader.h"
#include "particles/cindermill/graph/text/keyindex.h"
#include "particles/cindermill/main/clipboard.h"
#include "particles/cindermill/main/effectfile.h"
#include "particles/effectgraph/nodetypelibrary.h"
#include "particles/effectgraph/xmltext.h"

namespace {

// Beyond these it is no effect that anyone has copied.
constexpr int MaxNodes = TEffectTextReader::MaxNodes;
constexpr int MaxChunks = 500000;
// Types that a message names; the rest is counted.
constexpr int MaxNamed = 8;
constexpr int NameLength = 60;

TEffectGraph* MakeGraph(const TClipboard& clipboard, TChunkFile& chunks)
{
    chunks.AddChunk(new TOperationStack);
    TEffectGraph* graph = new TEffectGraph;
    chunks.AddChunk(graph);
    vector<TToolNode*> nodes;
    vector<TToolEdge*> edges;
    clipboard.MakeCopies(nullptr, nodes, edges);
    vector<TEffectNode*> ownNodes;
    for (TToolNode* node : nodes) {
        node->RegisterChunks(chunks);
        Append(ownNodes, node);
    }
    graph->AddNodes(ownNodes);
    vector<TEffectEdge*> ownEdges;
    for (TToolEdge* edge : edges) {
        chunks.AddChunk(edge);
        Append(ownEdges, edge);
    }
    graph->AddEdges(ownEdges);
    return graph;
}

// A library that has no type of a node is older than the one that the node comes from.
bool CheckTypes(const TEffectGraph& graph, const TNodeTypeLibrary& types, TString& fault)
{
    TKeyIndex names;
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        const TNodeType& type = *graph.GetNode(i)->GetNodeType();
        if (types.HasClass(type.ClassName))
            continue;
        TString name;
        name.Format("\"%s\" (%s)", QuoteText(type.Name, NameLength).Print(),
                    QuoteText(type.ClassName, NameLength).Print());
        const int count = names.GetNumKeys();
        if (!names.Add(name) || count >= MaxNamed)
            continue;
        fault += count > 0 ? ", " : "The node types here have none for ";
        fault += name;
    }
    if (names.GetNumKeys() > MaxNamed) {
        TString rest;
        rest.Format(" and %d more", names.GetNumKeys() - MaxNamed);
        fault += rest;
    }
    return names.GetNumKeys() == 0;
}

bool TakeChecked(TEffectFile& file, const TNodeTypeLibrary& types, TClipboard& clipboard, TString& fault)
{
    if (!file.FindRoots(false) || !file.Check() || !file.CheckClasses()) {
        fault = file.GetFault();
        return false;
    }
    const int numNodes = file.GetGraph()->GetNumNodes();
    if (numNodes > MaxNodes) {
        fault.Format("There are %d nodes in it; the most are %d", numNodes, MaxNodes);
        return false;
    }
    if (numNodes == 0) {
        fault = "There are no nodes in it";
        return false;
    }
    if (!CheckTypes(*file.GetGraph(), types, fault))
        return false;
    clipboard.Take(*file.GetGraph());
    return true;
}

// `load` brings the chunks, or tells why it cannot.
template <class TLoad>
bool ReadGuarded(const TLoad& load, const TNodeTypeLibrary& types, TClipboard& clipboard, TString& fault)
{
    bool taken = false;
    TString failed;
    fault = nullptr;
    const bool done = RunGuarded(
        [&] {
            TChunkFile chunks;
            TEffectFile file(chunks);
            taken = load(chunks, file) && TakeChecked(file, types, clipboard, fault);
        },
        failed);
    if (!done)
        fault = failed;
    return done && taken;
}

} // namespace

void WriteClipboardEffect(const TClipboard& clipboard, vector<uint8_t>& effect, TString& text)
{
    effect.clear();
    text = nullptr;
    bool written = false;
    TTextBuffer buffer;
    TString fault;
    const bool done = RunGuarded(
        [&] {
            if (clipboard.GetNodes().size() > MaxNodes)
                return;
            TChunkFile chunks;
            const TEffectGraph* graph = MakeGraph(clipboard, chunks);
            const TEffectText told(*graph);
            if (TEffectTextReader::CanRead(told))
                told.Write(buffer);
            written = chunks.GetNumChunks() <= MaxChunks && chunks.SaveToMemory(effect, 0);
        },
        fault);
    if (!done || !written || effect.size() > MaxClipboardEffect)
        effect.clear();
    text = buffer.Print();
    if (!done || text.Length() > TEffectTextReader::MaxLength)
        text = nullptr;
}

bool ReadClipboardEffect(const vector<uint8_t>& effect, const TNodeTypeLibrary& types, TClipboard& clipboard,
                         TString& fault)
{
    if (effect.size() > MaxClipboardEffect) {
        fault.Format("The effect is larger than %d MB", MaxClipboardEffect >> 20);
        return false;
    }
    const auto load = [&](TChunkFile& chunks, TEffectFile& file) {
        chunks.SetMaxChunks(MaxChunks);
        const bool loaded = file.LoadFromMemory(effect);
        if (!loaded)
            fault = file.GetFault();
        return loaded;
    };
    return ReadGuarded(load, types, clipboard, fault);
}

bool ReadClipboardText(const char* text, const TNodeTypeLibrary& types, TClipboard& clipboard, TString& fault)
{
    const auto load = [&](TChunkFile& chunks, TEffectFile&) {
        TEffectTextReader reader;
        const bool read = reader.Read(text, chunks);
        if (!read)
            fault = reader.GetFault();
        return read;
    };
    return ReadGuarded(load, types, clipboard, fault);
}
