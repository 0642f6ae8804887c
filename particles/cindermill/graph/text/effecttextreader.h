#pragma once

#include "library/containers/ownerlist.h"
#include "particles/cindermill/graph/text/keyindex.h"
#include "particles/cindermill/graph/text/typedraft.h"

class TChunkFile;
class TEffectGraph;
class TEffectText;
class TToolNode;
class TValueDraft;

// Whether a text claims to be an effect's.
bool IsEffectText(const char* text);

// Makes the graph that an effect's text tells. It is strict: the graph's own text is the text that was read,
// down to the last character, or there is no graph.
class TEffectTextReader
{
public:
    // Whether an effect is within the bounds below, so that its text can be read.
    static bool CanRead(const TEffectText& effect);

    // Beyond these a text is no effect that anyone has made.
    static constexpr int MaxLength = 16 << 20;
    static constexpr int MaxNodes = 16384;
    static constexpr int MaxTypes = 2048;
    // What the sections of the nodes' types come to, counted once for each node, which has a copy of its own.
    static constexpr int MaxTypeLines = 2000000;
    static constexpr int MaxTypeLength = 256 << 20;

    TEffectTextReader();
    ~TEffectTextReader();

    // False with the reason in GetFault. The graph, its nodes and its edges are the chunk file's; whether
    // they may be relied on, wires in a circle for one, is for the caller to check.
    bool Read(const char* text, TChunkFile& chunks);
    const TString& GetFault() const { return Fault; }

private:
    struct TLine
    {
        TTextCursor GetCursor() const { return TTextCursor(Begin, End); }
        bool IsEmpty() const { return Begin == End; }

        int Number = 0;
        const char* Begin = nullptr;
        const char* End = nullptr;
    };
    // Of lines, without the one with its name.
    struct TSection
    {
        int GetNumLines() const { return End - First; }

        TLine Head;
        TString Key;
        int First = 0;
        int End = 0;
    };
    // A line of a node that tells of a wire.
    struct TWireLine
    {
        TLine Line;
        int Node = 0;
        bool IsInput = false;
        TString Port;
        TTextCursor End;
    };
    struct TWire
    {
        int Source = -1;
        int SourcePort = -1;
        int Destination = -1;
        int DestinationPort = -1;
        bool IsInOrder = false;
    };

    bool SplitLines(const char* text);
    bool FindSections();
    bool AddSection(int first, int end);
    bool ReadTypes();
    bool ReadNodes();
    bool ReadNode(const TSection& section);
    bool ReadNodeHead(const TSection& section, int& type, int& x, int& y);
    bool CountType(const TSection& section, int type);
    bool ReadNodeLine(const TLine& line, TKeyIndex& labels, TValueDraft& values);
    bool ReadInputs();
    bool ReadOutputs();
    bool ReadEnd(const TWireLine& line, int& node, TString& port);
    bool ReadOrder();
    TEffectGraph* MakeGraph(TChunkFile& chunks);
    bool CompareText(const TEffectGraph& graph);
    static bool TakeIndented(const TLine& line, TTextCursor& cursor);
    const TTypeDraft& GetTypeOf(int node) const { return *Types[NodeTypes[node]]; }
    bool Fail(const TLine& line, const char* what);

    vector<TLine> Lines;
    vector<TSection> TypeSections;
    vector<TSection> NodeSections;
    TSection OrderSection;
    TKeyIndex TypeKeys;
    TKeyIndex NodeKeys;
    TOwnerList<TTypeDraft> Types;
    // By type: lines that each node has at the least.
    vector<int> NumValueLines;
    int NumTypeLines = 0;
    int TypeLength = 0;
    // As they stand in the text, until the chunk file has them.
    TOwnerList<TToolNode> Nodes;
    // By node: its type, and where its inputs stand among those of all.
    vector<int> NodeTypes;
    vector<int> FirstInput;
    int NumInputs = 0;
    vector<TWireLine> WireLines;
    vector<TWire> Wires;
    // By input: its wire.
    vector<int> WireOfInput;
    // In the order in which the outputs hold them.
    vector<int> WireOrder;
    // The nodes as the schedule takes them.
    vector<int> Order;
    TString Fault;
};
