#include "particles/cindermill/graph/text/effecttextreader.h"

#include "library/containers/append.h"
#include "library/containers/shortentext.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/text/effecttext.h"
#include "particles/cindermill/graph/text/valuedraft.h"
#include "particles/effectgraph/unsortedorder.h"
#include "particles/effectgraph/xmltext.h"

namespace {

constexpr const char* Title = "cindermill effect ";
constexpr const char* Version = "1";
// Part of a line that a fault quotes.
constexpr int ShownLength = 200;
// What a line has beside its label and its value: how far it is indented, a colon, a space and its end.
constexpr int LineOverhead = 5;
// Of a node: its type and its place.
constexpr int NumHeadLines = 2;

const char* SkipEmptyLines(const char* text)
{
    while (*text == '\n' || *text == '\r' || *text == ' ' || *text == '\t')
        ++text;
    return text;
}

bool IsWordCharacter(char c)
{
    return c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// The points of a curve, and the wires of an output. The rest of a label follows the names in it.
bool MayRepeat(const TString& rest)
{
    TTextCursor cursor(rest);
    int curve = 0;
    return cursor.TakeLast(" to") || (cursor.Take(" curve ") && cursor.TakeLastInt(curve));
}

// The name of the run-time class that a type's key begins with.
bool TakeClassName(TTextCursor& cursor, TString& name)
{
    if (cursor.TakeQuoted(name))
        return true;
    const char* begin = cursor.GetPosition();
    const TString rest = cursor.GetRest();
    int length = 0;
    while (IsWordCharacter(rest.Print()[length]))
        ++length;
    name.Assign(begin, begin + length);
    return length > 0 && length <= MaxTextLength && cursor.Take(name.Print());
}

} // namespace

bool IsEffectText(const char* text)
{
    return std::strncmp(SkipEmptyLines(text), Title, std::strlen(Title)) == 0;
}

TEffectTextReader::TEffectTextReader() = default;

TEffectTextReader::~TEffectTextReader() = default;

bool TEffectTextReader::CanRead(const TEffectText& effect)
{
    if (effect.GetNumNodes() > MaxNodes || effect.GetNumTypes() > MaxTypes)
        return false;
    vector<int> lengths;
    for (int i = 0; i < effect.GetNumTypes(); ++i) {
        int length = 0;
        for (const TTextLine& line : effect.GetType(i).Lines)
            length += line.Label.Length() + line.Value.Length() + LineOverhead;
        Append(lengths, length);
    }
    int64_t numLines = 0;
    int64_t length = 0;
    for (int i = 0; i < effect.GetNumNodes(); ++i) {
        const TNodeText& node = effect.GetNode(i);
        numLines += effect.GetType(node.Type).Lines.size();
        length += lengths[node.Type];
        if (!TTypeDraft::CanHold(*node.Node->GetNodeType()))
            return false;
    }
    return numLines <= MaxTypeLines && length <= MaxTypeLength;
}

bool TEffectTextReader::Fail(const TLine& line, const char* what)
{
    TString shown;
    shown.Assign(line.Begin, line.End);
    Fault.Format("Line %d: %s: %s", line.Number, what, ShortenText(shown.Print(), ShownLength).Print());
    return false;
}

bool TEffectTextReader::Read(const char* text, TChunkFile& chunks)
{
    if (!SplitLines(text) || !FindSections() || !ReadTypes() || !ReadNodes() || !ReadInputs() ||
        !ReadOutputs() || !ReadOrder())
        return false;
    return CompareText(*MakeGraph(chunks));
}

// What a mail or a chat does to a text is put up with: empty lines around it, and other line ends.
bool TEffectTextReader::SplitLines(const char* text)
{
    const size_t length = std::strlen(text);
    if (length > MaxLength) {
        Fault.Format("The text is longer than %d MB", MaxLength >> 20);
        return false;
    }
    const char* end = text + length;
    int number = 1;
    for (const char* at = text; at < end; ++number) {
        const char* stop = static_cast<const char*>(std::memchr(at, '\n', static_cast<size_t>(end - at)));
        const char* next = stop != nullptr ? stop + 1 : end;
        stop = stop != nullptr ? stop : end;
        TLine line;
        line.Number = number;
        line.Begin = at;
        line.End = stop > at && stop[-1] == '\r' ? stop - 1 : stop;
        if (!line.IsEmpty() || !Lines.empty())
            Append(Lines, line);
        at = next;
    }
    while (!Lines.empty() && Lines.back().IsEmpty())
        Lines.pop_back();
    if (Lines.empty()) {
        Fault = "The text is empty";
        return false;
    }
    TTextCursor title = Lines[0].GetCursor();
    if (!title.Take(Title))
        return Fail(Lines[0], "No effect's text begins so");
    if (!title.TakeLast(Version))
        return Fail(Lines[0], "The text is of a version that this program does not know");
    return true;
}

bool TEffectTextReader::FindSections()
{
    for (int i = 1; i < Lines.size();) {
        if (!Lines[i].IsEmpty() || Lines[i + 1].IsEmpty())
            return Fail(Lines[i], "One empty line is to stand ahead of each section");
        int end = i + 2;
        while (end < Lines.size() && !Lines[end].IsEmpty())
            ++end;
        if (!AddSection(i + 1, end))
            return false;
        i = end;
    }
    if (NodeSections.size() > MaxNodes || TypeSections.size() > MaxTypes) {
        Fault.Format("The text tells of %d nodes of %d types; the most are %d and %d", NodeSections.size(),
                     TypeSections.size(), MaxNodes, MaxTypes);
        return false;
    }
    if (OrderSection.End == 0) {
        Fault.Format("The text ends at line %d without its section \"order\"", Lines.back().Number);
        return false;
    }
    return true;
}

bool TEffectTextReader::AddSection(int first, int end)
{
    TSection section;
    section.Head = Lines[first];
    section.First = first + 1;
    section.End = end;
    TTextCursor head = section.Head.GetCursor();
    if (head.TakeLast("order")) {
        if (OrderSection.End != 0)
            return Fail(section.Head, "The text has this section twice");
        OrderSection = section;
        return true;
    }
    const bool isNode = head.Take("node ");
    if (!isNode && !head.Take("type "))
        return Fail(section.Head, "No section is called so");
    section.Key = head.GetRest();
    Append(isNode ? NodeSections : TypeSections, section);
    return true;
}

bool TEffectTextReader::TakeIndented(const TLine& line, TTextCursor& cursor)
{
    cursor = line.GetCursor();
    return cursor.Take("  ");
}

bool TEffectTextReader::ReadTypes()
{
    for (const TSection& section : TypeSections) {
        TTextCursor head(section.Key);
        TString className;
        TString name;
        if (!TakeClassName(head, className) || !head.Take(" ") || !head.TakeName(name) || !head.IsAtEnd())
            return Fail(section.Head, "A class and a name in quotes are to stand here");
        if (!TypeKeys.Add(section.Key))
            return Fail(section.Head, "The text has this section twice");
        TTypeDraft* type = new TTypeDraft(className);
        Types.push_back(type);
        for (int i = section.First; i < section.End; ++i) {
            TTextCursor cursor;
            if (!TakeIndented(Lines[i], cursor) || !type->AddLine(cursor))
                return Fail(Lines[i], "No node type has this");
        }
        Append(NumValueLines, type->GetNumValueLines());
    }
    return true;
}

bool TEffectTextReader::ReadNodes()
{
    for (const TSection& section : NodeSections)
        if (!ReadNode(section))
            return false;
    return true;
}

// A node may take far more memory than its lines do.
bool TEffectTextReader::CountType(const TSection& section, int type)
{
    const TSection& typeSection = TypeSections[type];
    if (section.GetNumLines() - NumHeadLines < NumValueLines[type])
        return Fail(section.Head, "The node tells less than its type has");
    NumTypeLines += typeSection.GetNumLines();
    TypeLength += static_cast<int>(Lines[typeSection.End - 1].End - typeSection.Head.Begin);
    if (NumTypeLines <= MaxTypeLines && TypeLength <= MaxTypeLength)
        return true;
    return Fail(section.Head, "The types of all nodes come to too much");
}

bool TEffectTextReader::ReadNodeHead(const TSection& section, int& type, int& x, int& y)
{
    TTextCursor head(section.Key);
    TString name;
    if (!head.TakeName(name) || !head.IsAtEnd())
        return Fail(section.Head, "A name in quotes is to stand here");
    if (!NodeKeys.Add(section.Key))
        return Fail(section.Head, "The text has this node twice");
    TTextCursor cursor;
    const bool hasType =
        section.First < section.End && TakeIndented(Lines[section.First], cursor) && cursor.Take("type: ");
    if (!hasType)
        return Fail(section.Head, "The next line is to tell the node's type");
    type = TypeKeys.Find(cursor.GetRest());
    if (type == -1)
        return Fail(Lines[section.First], "The text has no such type");
    if (section.First + 1 >= section.End || !TakeIndented(Lines[section.First + 1], cursor) ||
        !cursor.Take("place: ") || !cursor.TakeInt(x) || !cursor.Take(" ") || !cursor.TakeInt(y) ||
        !cursor.IsAtEnd())
        return Fail(Lines[section.First], "The next line is to tell the node's place");
    return CountType(section, type);
}

bool TEffectTextReader::ReadNode(const TSection& section)
{
    int type = 0;
    int x = 0;
    int y = 0;
    if (!ReadNodeHead(section, type, x, y))
        return false;
    TTextCursor head(section.Key);
    TToolNode* node = new TToolNode;
    Nodes.push_back(node);
    node->Create(nullptr, Types[type]->GetType(), x, y, false);
    head.TakeName(node->GetNodeType()->Name);
    Append(NodeTypes, type);
    Append(FirstInput, NumInputs);
    NumInputs += node->GetNumInputs();
    TValueDraft values(*Types[type], *node->GetNodeType());
    TKeyIndex labels;
    for (int i = section.First + NumHeadLines; i < section.End; ++i)
        if (!ReadNodeLine(Lines[i], labels, values))
            return false;
    values.Finish();
    return true;
}

bool TEffectTextReader::ReadNodeLine(const TLine& line, TKeyIndex& labels, TValueDraft& values)
{
    TTextCursor cursor;
    TTextCursor label;
    if (!TakeIndented(line, cursor) || !cursor.TakeLabel(label))
        return Fail(line, "A line of a node is a label, a colon and a value");
    const TString whole = label.GetRest();
    const TString path = label.TakePath();
    const TString rest = label.GetRest();
    TTextCursor port(path);
    if (!MayRepeat(rest) && !labels.Add(whole))
        return Fail(line, "The node tells this twice");
    const bool isInput = IsText(rest, " from") && port.Take("input ");
    if (!isInput && (!IsText(rest, " to") || !port.Take("output "))) {
        if (values.AddLine(path, rest, cursor))
            return true;
        return Fail(line, "The node's type has no such value");
    }
    TWireLine wire;
    wire.Line = line;
    wire.Node = Nodes.size() - 1;
    wire.IsInput = isInput;
    wire.Port = port.GetRest();
    wire.End = cursor;
    Append(WireLines, wire);
    return true;
}

// The node at the other end of a wire, and what it calls its port.
bool TEffectTextReader::ReadEnd(const TWireLine& line, int& node, TString& port)
{
    TTextCursor cursor = line.End;
    const char* begin = cursor.GetPosition();
    TString name;
    if (!cursor.TakeName(name))
        return Fail(line.Line, "A wire ends at a node and a port");
    TString key;
    key.Assign(begin, cursor.GetPosition());
    node = NodeKeys.Find(key);
    if (node == -1)
        return Fail(line.Line, "The text has no such node");
    cursor.Take(" ");
    port = cursor.GetRest();
    return true;
}

bool TEffectTextReader::ReadInputs()
{
    for (int i = 0; i < NumInputs; ++i)
        Append(WireOfInput, -1);
    for (const TWireLine& line : WireLines) {
        if (!line.IsInput)
            continue;
        TWire wire;
        TString port;
        if (!ReadEnd(line, wire.Source, port))
            return false;
        wire.Destination = line.Node;
        wire.DestinationPort = GetTypeOf(line.Node).FindInput(line.Port);
        wire.SourcePort = GetTypeOf(wire.Source).FindOutput(port);
        if (wire.SourcePort == -1 || wire.DestinationPort == -1)
            return Fail(line.Line, "A node has no such port");
        int& wireOfInput = WireOfInput[FirstInput[line.Node] + wire.DestinationPort];
        if (wireOfInput != -1)
            return Fail(line.Line, "An input has one wire at most");
        wireOfInput = Wires.size();
        Append(Wires, wire);
    }
    return true;
}

bool TEffectTextReader::ReadOutputs()
{
    for (const TWireLine& line : WireLines) {
        if (line.IsInput)
            continue;
        int destination = 0;
        TString port;
        if (!ReadEnd(line, destination, port))
            return false;
        const int input = GetTypeOf(destination).FindInput(port);
        const int index = input != -1 ? WireOfInput[FirstInput[destination] + input] : -1;
        const int output = GetTypeOf(line.Node).FindOutput(line.Port);
        if (index == -1 || Wires[index].Source != line.Node || Wires[index].SourcePort != output ||
            Wires[index].IsInOrder)
            return Fail(line.Line, "No wire at the input tells the same");
        Wires[index].IsInOrder = true;
        Append(WireOrder, index);
    }
    for (int i = 0; i < Wires.size(); ++i)
        if (!Wires[i].IsInOrder)
            Append(WireOrder, i);
    return true;
}

bool TEffectTextReader::ReadOrder()
{
    vector<bool> isThere;
    for (int i = 0; i < Nodes.size(); ++i)
        Append(isThere, false);
    for (int i = OrderSection.First; i < OrderSection.End; ++i) {
        TTextCursor cursor;
        const bool isIndented = TakeIndented(Lines[i], cursor);
        const int node = isIndented ? NodeKeys.Find(cursor.GetRest()) : -1;
        if (node == -1)
            return Fail(Lines[i], "The text has no such node");
        if (isThere[node])
            return Fail(Lines[i], "The text has this node twice");
        isThere[node] = true;
        Append(Order, node);
    }
    if (Order.size() == Nodes.size())
        return true;
    return Fail(OrderSection.Head, "Not all nodes stand in this section");
}

TEffectGraph* TEffectTextReader::MakeGraph(TChunkFile& chunks)
{
    const vector<TToolNode*> nodes = Nodes.Get();
    TEffectGraph* graph = new TEffectGraph;
    chunks.AddChunk(graph);
    vector<TEffectNode*> ordered;
    for (const int node : Order)
        Append(ordered, nodes[node]);
    while (!Nodes.empty())
        Nodes.Release(Nodes.size() - 1)->RegisterChunks(chunks);
    vector<TEffectEdge*> edges;
    for (const int index : WireOrder) {
        const TWire& wire = Wires[index];
        TToolEdge* edge = new TToolEdge;
        chunks.AddChunk(edge);
        edge->Connect(nodes[wire.Source], wire.SourcePort, nodes[wire.Destination], wire.DestinationPort);
        edge->AttachEnds();
        Append(edges, edge);
    }
    // Where there is none, the comparison tells.
    TUnsortedOrder unsorted(ordered);
    graph->AddNodes(unsorted.Find() ? unsorted.GetOrder() : ordered);
    graph->AddEdges(edges);
    return graph;
}

bool TEffectTextReader::CompareText(const TEffectGraph& graph)
{
    TTextBuffer text;
    TEffectText(graph).Write(text);
    TTextCursor written(text.Print(), text.Print() + std::strlen(text.Print()));
    for (const TLine& line : Lines) {
        TString expected;
        const char* begin = written.GetPosition();
        if (written.IsAtEnd())
            return Fail(line, "Nothing is to stand here");
        written.TakeLine(expected);
        const auto length = static_cast<size_t>(line.End - line.Begin);
        if (static_cast<size_t>(expected.Length()) == length && std::memcmp(begin, line.Begin, length) == 0)
            continue;
        // To write the line that is expected would make it an order of which others are expected.
        if (line.Number > OrderSection.Head.Number && line.Number <= OrderSection.Head.Number + Order.size())
            return Fail(line, "No way was found to have the schedule take the nodes in this order");
        TString what;
        what.Format("The line is to be \"%s\", but it is",
                    ShortenText(expected.Print(), ShownLength).Print());
        return Fail(line, what.Print());
    }
    if (written.IsAtEnd())
        return true;
    return Fail(Lines.back(), "The text ends too early, behind");
}
