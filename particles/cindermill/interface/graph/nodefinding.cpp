#include "particles/cindermill/interface/graph/nodefinding.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/graph/searchlist.h"
#include "particles/effectgraph/effectgraph.h"

#include <algorithm>

namespace {

// Each name once, and no more than a line holds.
class TNameLine
{
public:
    void Add(const TString& name)
    {
        constexpr int MostNames = 3;
        if (Names.index_of(name) != -1)
            return;
        Names.push_back(name);
        if (Names.size() <= MostNames)
            Text += Text.IsEmpty() ? "" : ", ";
        if (Names.size() <= MostNames)
            Text += name;
        else if (Names.size() == MostNames + 1)
            Text += "...";
    }
    const TString& Get() const { return Text; }

private:
    vector<TString> Names;
    TString Text;
};

TString GetSources(const TEffectNode& node)
{
    TNameLine line;
    for (int i = 0; i < node.GetNumInputs(); ++i)
        if (const TEffectEdge* edge = node.GetInput(i))
            line.Add(edge->GetSrcNode()->GetNodeType()->Name);
    return line.Get();
}

TString GetDestinations(const TEffectNode& node)
{
    TNameLine line;
    for (int i = 0; i < node.GetNumOutputs(); ++i)
        for (int n = 0; n < node.GetNumOutputEdges(i); ++n)
            line.Add(node.GetOutputEdge(i, n)->GetDstNode()->GetNodeType()->Name);
    return line.Get();
}

// What follows first, as that is what a node is there for.
TString GetWires(const TEffectNode& node)
{
    TString text("to ");
    const TString destinations = GetDestinations(node);
    const TString sources = GetSources(node);
    if (!destinations.IsEmpty())
        text += destinations;
    else if (!sources.IsEmpty())
        text = "from ";
    else
        text = "not wired";
    if (destinations.IsEmpty())
        text += sources;
    return text;
}

// What a node is, where its name no longer tells; a run-time class begins with a letter that nobody looks
// for.
TString GetKind(const TNodeType& type)
{
    vector<TString> words;
    type.Name.Split(words, ' ');
    TString name;
    for (const TString& word : words)
        name += word;
    TString kind;
    if (type.ClassName.Length() > 1 && name.Compare(type.ClassName.Print() + 1) != 0)
        kind.Format("%s. ", type.ClassName.Print() + 1);
    return kind;
}

TString GetHelp(const TEffectNode& node)
{
    const TString sources = GetSources(node);
    const TString destinations = GetDestinations(node);
    TString text = GetKind(*node.GetNodeType());
    if (!sources.IsEmpty()) {
        text += "From ";
        text += sources;
        text += ". ";
    }
    if (!destinations.IsEmpty()) {
        text += "To ";
        text += destinations;
        text += ". ";
    }
    text += node.GetNodeType()->Description;
    return text;
}

// Runs of entries that look alike, one after the other.
class TNamesakes
{
public:
    TNamesakes(const TEffectGraph& graph, vector<TSearchEntry>& entries) : Graph(graph), Entries(entries) {}
    void TellApart()
    {
        ForEachRun([this](int from, int to) {
            for (int i = from; i < to; ++i)
                AddWires(Entries[Order[i]]);
        });
        ForEachRun([this](int from, int to) {
            for (int i = from; i < to; ++i) {
                TSearchEntry& entry = Entries[Order[i]];
                entry.Name.Format("%s (%d)", TString(entry.Name).Print(), i - from + 1);
            }
        });
    }

private:
    void AddWires(TSearchEntry& entry) const
    {
        entry.Folder += entry.Folder.IsEmpty() ? "" : ", ";
        entry.Folder += GetWires(*Graph.GetNode(entry.Item));
    }
    static int CompareTexts(const TSearchEntry& a, const TSearchEntry& b)
    {
        const int names = a.Name.Compare(b.Name);
        return names != 0 ? names : a.Folder.Compare(b.Folder);
    }
    bool IsBefore(const TSearchEntry& a, const TSearchEntry& b) const
    {
        if (const int texts = CompareTexts(a, b))
            return texts < 0;
        const TToolNode& first = *static_cast<const TToolNode*>(Graph.GetNode(a.Item));
        const TToolNode& second = *static_cast<const TToolNode*>(Graph.GetNode(b.Item));
        if (first.GetX() != second.GetX())
            return first.GetX() < second.GetX();
        return first.GetY() != second.GetY() ? first.GetY() < second.GetY() : a.Item < b.Item;
    }
    template <class TWork>
    void ForEachRun(TWork work)
    {
        Order.clear();
        for (int i = 0; i < Entries.size(); ++i)
            Append(Order, i);
        std::sort(Order.begin(), Order.end(),
                  [this](int a, int b) { return IsBefore(Entries[a], Entries[b]); });
        int to = 0;
        for (int from = 0; from < Order.size(); from = to) {
            while (to < Order.size() && CompareTexts(Entries[Order[from]], Entries[Order[to]]) == 0)
                ++to;
            if (to - from > 1)
                work(from, to);
        }
    }

    const TEffectGraph& Graph;
    vector<TSearchEntry>& Entries;
    vector<int> Order;
};

} // namespace

void FillNodeSearch(const TEffectGraph& graph, const vector<TString>& groups, TSearchList& list)
{
    vector<TSearchEntry> entries;
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        const TEffectNode& node = *graph.GetNode(i);
        TSearchEntry entry;
        entry.Name = node.GetNodeType()->Name;
        entry.Folder = i < groups.size() ? groups[i] : TString();
        entry.Help = GetHelp(node);
        entry.Colour = node.GetNodeType()->Colour;
        entry.Item = i;
        Append(entries, entry);
    }
    TNamesakes(graph, entries).TellApart();
    for (const TSearchEntry& entry : entries)
        list.Add(entry);
}
