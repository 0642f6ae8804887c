#include "particles/cindermill/main/clipboardeffect.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/operations/operationstack.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/text/effecttext.h"
#include "particles/cindermill/graph/text/effecttextreader.h"
#include "particles/cindermill/main/clipboard.h"
#include "particles/cindermill/main/effectfile.h"
#include "particles/effectgraph/nodetypelibrary.h"
#include "particles/effectgraph/xmltext.h"

#include <initializer_list>

namespace {

constexpr int MaxEffectSize = 64 << 20;
// Types that a message names; the rest is counted.
constexpr int MaxNamed = 8;
constexpr int NameLength = 60;

TEffectGraph* MakeGraph(const TClipboard& clipboard, TChunkFile& chunks)
{
    chunks.AddChunk(new TOperationStack);
    TEffectGraph* graph = new TEffectGraph;
    chunks.AddChunk(graph);
    vector<TEffectNode*> nodes;
    for (const TToolNode* source : clipboard.GetNodes()) {
        TToolNode* node = new TToolNode;
        node->Create(nullptr, *source->GetNodeType(), source->GetX(), source->GetY(), false);
        node->RegisterChunks(chunks);
        Append(nodes, node);
    }
    graph->AddNodes(nodes);
    vector<TEffectEdge*> edges;
    for (const TClipboard::TEdge& record : clipboard.GetEdges()) {
        TToolEdge* edge = new TToolEdge;
        chunks.AddChunk(edge);
        edge->Connect(nodes[record.SrcNode], record.SrcPort, nodes[record.DstNode], record.DstPort);
        edge->AttachEnds();
        Append(edges, edge);
    }
    graph->AddEdges(edges);
    return graph;
}

bool IsKnown(const TNodeType& type, const TNodeTypeLibrary& types)
{
    for (int i = 0; i < types.GetNumTypes(); ++i)
        if (types.GetType(i)->IsNamedOrOfClass(type.Name, type.ClassName))
            return true;
    return false;
}

// A library that has no type of a node is older than the one that the node comes from.
bool CheckTypes(const TEffectGraph& graph, const TNodeTypeLibrary& types, TString& fault)
{
    vector<TString> names;
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        const TNodeType& type = *graph.GetNode(i)->GetNodeType();
        TString name;
        name.Format("\"%s\" (%s)", QuoteText(type.Name, NameLength).Print(),
                    QuoteText(type.ClassName, NameLength).Print());
        if (names.index_of(name) == -1 && !IsKnown(type, types))
            Append(names, name);
    }
    if (names.empty())
        return true;
    fault = "The node types here have none for ";
    for (int i = 0; i < names.size() && i < MaxNamed; ++i) {
        fault += i > 0 ? ", " : "";
        fault += names[i];
    }
    if (names.size() > MaxNamed) {
        TString rest;
        rest.Format(" and %d more", names.size() - MaxNamed);
        fault += rest;
    }
    return false;
}

bool TakeChecked(TEffectFile& file, const TNodeTypeLibrary& types, TClipboard& clipboard, TString& fault)
{
    if (!file.FindRoots(false) || !file.Check() || !file.CheckClasses()) {
        fault = file.GetFault();
        return false;
    }
    if (file.GetGraph()->GetNumNodes() == 0) {
        fault = "There are no nodes in it";
        return false;
    }
    if (!CheckTypes(*file.GetGraph(), types, fault))
        return false;
    clipboard.Take(*file.GetGraph());
    return true;
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
            TChunkFile chunks;
            const TEffectGraph* graph = MakeGraph(clipboard, chunks);
            if (graph->GetNumNodes() <= TEffectTextReader::MaxNodes)
                TEffectText(*graph).Write(buffer);
            written = chunks.SaveToMemory(effect, 0);
        },
        fault);
    if (!done || !written || effect.size() > MaxEffectSize)
        effect.clear();
    text = buffer.Print();
    if (!done || text.Length() > TEffectTextReader::MaxLength)
        text = nullptr;
}

bool ReadClipboardEffect(const vector<uint8_t>& effect, const TNodeTypeLibrary& types, TClipboard& clipboard,
                         TString& fault)
{
    bool taken = false;
    TString failed;
    const bool done = RunGuarded(
        [&] {
            TChunkFile chunks;
            TEffectFile file(chunks);
            if (file.LoadFromMemory(effect))
                taken = TakeChecked(file, types, clipboard, fault);
            else
                fault = file.GetFault();
        },
        failed);
    if (!done)
        fault = failed;
    return done && taken;
}

bool ReadClipboardText(const char* text, const TNodeTypeLibrary& types, TClipboard& clipboard, TString& fault)
{
    bool taken = false;
    TString failed;
    const bool done = RunGuarded(
        [&] {
            TChunkFile chunks;
            TEffectTextReader reader;
            if (reader.Read(text, chunks)) {
                TEffectFile file(chunks);
                taken = TakeChecked(file, types, clipboard, fault);
            } else
                fault = reader.GetFault();
        },
        failed);
    if (!done)
        fault = failed;
    return done && taken;
}
