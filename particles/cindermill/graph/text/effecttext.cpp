#include "particles/cindermill/graph/text/effecttext.h"

#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/text/nodetypetext.h"
#include "particles/cindermill/graph/text/parametertext.h"

#include <cstdlib>
#include <initializer_list>

namespace {

int CompareLines(const TTextLines& a, const TTextLines& b)
{
    for (int i = 0; i < a.size() && i < b.size(); ++i) {
        if (const int label = a[i].Label.Compare(b[i].Label, true); label != 0)
            return label;
        if (const int value = a[i].Value.Compare(b[i].Value, true); value != 0)
            return value;
    }
    return a.size() - b.size();
}

uint32_t HashLines(const TString& className, const TTextLines& lines)
{
    uint32_t hash = HashText(className.Print());
    for (const TTextLine& line : lines)
        hash = HashNumber(HashNumber(hash ^ HashText(line.Label.Print())) ^ HashText(line.Value.Print()));
    return hash;
}

int CompareNumbers(int a, int b)
{
    return a < b ? -1 : a > b ? 1 : 0;
}

// What the comparison of two positions needs to know; the sort takes no other data.
struct TSortedNode
{
    const TNodeText* Node;
    const TTypeText* Type;
    int Index;
};

// The place goes ahead of the values, as these change more often, and a change should leave the nodes where
// they stand in the text.
int CompareNodes(const void* first, const void* second)
{
    const TNodeText& a = *static_cast<const TSortedNode*>(first)->Node;
    const TNodeText& b = *static_cast<const TSortedNode*>(second)->Node;
    const TTypeText& typeOfA = *static_cast<const TSortedNode*>(first)->Type;
    const TTypeText& typeOfB = *static_cast<const TSortedNode*>(second)->Type;
    const int name = a.Name.Compare(b.Name, true);
    const int className = name != 0 ? name : typeOfA.ClassName.Compare(typeOfB.ClassName, true);
    const int x = className != 0 ? className : CompareNumbers(a.X, b.X);
    const int y = x != 0 ? x : CompareNumbers(a.Y, b.Y);
    const int type = y != 0 ? y : CompareLines(typeOfA.Lines, typeOfB.Lines);
    const int values = type != 0 ? type : CompareLines(a.Values, b.Values);
    return values != 0 ? values : CompareNumbers(a.Order, b.Order);
}

int CompareTypes(const void* first, const void* second)
{
    const TTypeText& a = **static_cast<const TTypeText* const*>(first);
    const TTypeText& b = **static_cast<const TTypeText* const*>(second);
    const int className = a.ClassName.Compare(b.ClassName, true);
    const int name = className != 0 ? className : a.FirstName.Compare(b.FirstName, true);
    return name != 0 ? name : CompareLines(a.Lines, b.Lines);
}

bool IsWord(const TString& text)
{
    for (const char* at = text.Print(); *at != '\0'; ++at)
        if (*at != '_' && !(*at >= '0' && *at <= '9') && !(*at >= 'A' && *at <= 'Z') &&
            !(*at >= 'a' && *at <= 'z'))
            return false;
    return !text.IsEmpty();
}

TString GetWireLabel(const char* side, const TString& port, const char* way)
{
    TString label(side);
    label += port;
    label += way;
    return label;
}

void AddWire(TTextLines& lines, const TString& label, int node, const TString& port)
{
    TTextLine line;
    line.Label = label;
    line.Node = node;
    line.Value = port;
    Append(lines, line);
}

void WriteLine(const TString& label, TTextBuffer& text)
{
    text << "  " << label << ": ";
}

} // namespace

TEffectText::TEffectText(const TEffectGraph& graph)
{
    vector<TEffectNode*> sorted;
    GetSortedNodes(graph, sorted);
    TypeIndex.Reset(new THashIndex(sorted.size()));
    MakeRoom(Nodes, sorted.size());
    for (int i = 0; i < sorted.size(); ++i)
        AddNode(*sorted[i], i);
    TypeIndex.Reset();
    SortNodes();
    NameNodes();
    SortTypes();
    Extend(Order, Nodes.size());
    for (int i = 0; i < Nodes.size(); ++i)
        Order[Nodes[i].Order] = i;
    TPointerMap numbers;
    for (int i = 0; i < Nodes.size(); ++i)
        numbers.Insert(Nodes[i].Node, i);
    for (TNodeText& node : Nodes)
        AddWires(node, numbers);
}

void TEffectText::AddNode(const TEffectNode& node, int order)
{
    const TNodeType& type = *node.GetNodeType();
    TNodeText text;
    text.Node = &node;
    text.Name = type.Name;
    text.Order = order;
    TTextLines declarations;
    AddTypeLines(type, declarations);
    AddPropertyLines(type, text.Values);
    TParameterText parameters(text.Values, declarations);
    parameters.AddList("parameter", type.Parameters);
    parameters.AddList("input", type.Inputs);
    AddOutputLines(type, text.Values, declarations);
    text.Type = FindOrAddType(type, declarations);
    text.HasPlace = IsClassA(FindClassByNameID(node.GetClassId()), TToolNode::ClassId());
    if (text.HasPlace) {
        text.X = static_cast<const TToolNode&>(node).GetX();
        text.Y = static_cast<const TToolNode&>(node).GetY();
    }
    Append(Nodes, text);
}

int TEffectText::FindOrAddType(const TNodeType& type, TTextLines& lines)
{
    const uint32_t hash = HashLines(type.ClassName, lines);
    const int found = TypeIndex->Find(hash, [&](int i) {
        return Types[i].ClassName == type.ClassName && CompareLines(Types[i].Lines, lines) == 0;
    });
    if (found != -1)
        return found;
    TypeIndex->Add(Types.size(), hash);
    TTypeText text;
    text.ClassName = type.ClassName;
    text.Lines.swap(lines);
    GetInputLabels(type, text.InputLabels);
    GetOutputLabels(type, text.OutputLabels);
    Append(Types, text);
    return Types.size() - 1;
}

void TEffectText::SortNodes()
{
    vector<TSortedNode> places;
    MakeRoom(places, Nodes.size());
    for (int i = 0; i < Nodes.size(); ++i)
        places.push_back(TSortedNode{&Nodes[i], &Types[Nodes[i].Type], i});
    if (!places.empty())
        std::qsort(places.data(), static_cast<size_t>(places.size()), sizeof(TSortedNode), CompareNodes);
    vector<TNodeText> sorted;
    MakeRoom(sorted, Nodes.size());
    for (const TSortedNode& place : places)
        sorted.push_back(Nodes[place.Index]);
    Nodes.swap(sorted);
}

void TEffectText::NameNodes()
{
    int number = 0;
    for (int i = 0; i < Nodes.size(); ++i) {
        number = i > 0 && Nodes[i].Name == Nodes[i - 1].Name ? number + 1 : 1;
        Nodes[i].Key = QuoteNumbered(Nodes[i].Name, number);
    }
    for (int i = Nodes.size() - 1; i >= 0; --i)
        Types[Nodes[i].Type].FirstName = Nodes[i].Name;
}

void TEffectText::SortTypes()
{
    vector<const TTypeText*> places;
    for (const TTypeText& type : Types)
        Append(places, &type);
    if (!places.empty())
        std::qsort(places.data(), static_cast<size_t>(places.size()), sizeof(const TTypeText*), CompareTypes);
    vector<int> newPlaces;
    Extend(newPlaces, Types.size());
    vector<TTypeText> sorted;
    MakeRoom(sorted, Types.size());
    int number = 0;
    for (const TTypeText* type : places) {
        newPlaces[static_cast<int>(type - Types.data())] = sorted.size();
        const bool isSame = !sorted.empty() && sorted.back().ClassName == type->ClassName &&
                            sorted.back().FirstName == type->FirstName;
        number = isSame ? number + 1 : 1;
        sorted.push_back(*type);
        TTextBuffer key;
        key << (IsWord(type->ClassName) ? type->ClassName : QuoteNumbered(type->ClassName, 1)) << " "
            << QuoteNumbered(type->FirstName, number);
        sorted.back().Key = key.GetText();
    }
    Types.swap(sorted);
    for (TNodeText& node : Nodes)
        node.Type = newPlaces[node.Type];
}

// A wire stands at the input that it leads to. The order of an output's wires, where there are several,
// stands at the output: the schedule walks them in it.
void TEffectText::AddWires(TNodeText& node, const TPointerMap& numbers)
{
    const TEffectNode& effectNode = *node.Node;
    const TTypeText& type = Types[node.Type];
    for (int port = 0; port < effectNode.GetNumInputs(); ++port)
        if (const TEffectEdge* edge = effectNode.GetInput(port)) {
            const int source = numbers.Find(edge->GetSrcNode());
            AddWire(node.Wires, GetWireLabel("input ", type.InputLabels[port], " from"), source,
                    Types[Nodes[source].Type].OutputLabels[edge->GetSrcPort()]);
        }
    for (int port = 0; port < effectNode.GetNumOutputs(); ++port) {
        const int count = effectNode.GetNumOutputEdges(port);
        for (int n = 0; n < count && count > 1; ++n) {
            const TEffectEdge* edge = effectNode.GetOutputEdge(port, n);
            const int destination = numbers.Find(edge->GetDstNode());
            AddWire(node.Wires, GetWireLabel("output ", type.OutputLabels[port], " to"), destination,
                    Types[Nodes[destination].Type].InputLabels[edge->GetDstPort()]);
        }
    }
}

void TEffectText::WriteValue(const TTextLine& line, TTextBuffer& text) const
{
    if (line.Node != -1)
        text << Nodes[line.Node].Key << " ";
    text << line.Value;
}

void TEffectText::Write(TTextBuffer& text) const
{
    text << "cindermill effect 1\n";
    for (const TNodeText& node : Nodes) {
        text << "\nnode " << node.Key << "\n  type: " << Types[node.Type].Key << "\n";
        if (node.HasPlace)
            text << "  place: " << node.X << " " << node.Y << "\n";
        for (const TTextLines* lines : {&node.Values, &node.Wires})
            for (const TTextLine& line : *lines) {
                WriteLine(line.Label, text);
                WriteValue(line, text);
                text << "\n";
            }
    }
    text << "\norder\n";
    for (const int node : Order)
        text << "  " << Nodes[node].Key << "\n";
    for (const TTypeText& type : Types) {
        text << "\ntype " << type.Key << "\n";
        for (const TTextLine& line : type.Lines) {
            WriteLine(line.Label, text);
            text << line.Value << "\n";
        }
    }
}
