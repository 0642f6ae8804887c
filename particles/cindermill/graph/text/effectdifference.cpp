#include "particles/cindermill/graph/text/effectdifference.h"

#include <initializer_list>

namespace {

// The labels of both, each once, in the order of the second with those of the first alone behind.
vector<TString> GetLabels(const TTextLines& before, const TTextLines& after)
{
    vector<TString> labels;
    for (const TTextLines* lines : {&after, &before})
        for (const TTextLine& line : *lines)
            if (labels.index_of(line.Label) == -1)
                Append(labels, line.Label);
    return labels;
}

// A label's value, or its values one after the other: the points of a curve are one value to a person.
TString GetValues(const TEffectText& effect, const TTextLines& lines, const TString& label)
{
    TTextBuffer text;
    bool isFirst = true;
    for (const TTextLine& line : lines)
        if (line.Label == label) {
            text << (isFirst ? "" : ", ");
            effect.WriteValue(line, text);
            isFirst = false;
        }
    return text.GetText();
}

TString GetPlace(const TNodeText& node)
{
    TTextBuffer text;
    if (node.HasPlace)
        text << node.X << " " << node.Y;
    return text.GetText();
}

bool AreSameLines(const TTextLines& a, const TTextLines& b)
{
    if (a.size() != b.size())
        return false;
    for (int i = 0; i < a.size(); ++i)
        if (!(a[i] == b[i]))
            return false;
    return true;
}

bool IsInputLabel(const TString& label)
{
    return label.CompareStart("input ", true) == 0;
}

} // namespace

const char* GetDifferenceName(TTextDifferenceKind kind)
{
    static constexpr const char* Names[] = {"added", "removed", "rewired", "changed", "retyped", "reordered"};
    return Names[kind];
}

TEffectDifferences::TEffectDifferences(const TEffectText& before, const TEffectText& after)
    : Before(before), After(after), Match(before, after)
{
    AddNodes();
    for (int i = 0; i < After.GetNumNodes(); ++i)
        if (Match.FindBefore(i) != -1)
            CompareNode(Match.FindBefore(i), i);
    CompareTypes();
    CompareOrder();
}

TDifference& TEffectDifferences::Add(TTextDifferenceKind kind, const TEffectText& effect,
                                     const TNodeText& node)
{
    TDifference difference;
    difference.Kind = kind;
    difference.Key = node.Key;
    difference.ClassName = effect.GetType(node.Type).ClassName;
    Append(Found, difference);
    return Found.back();
}

void TEffectDifferences::AddNodes()
{
    for (int i = 0; i < Before.GetNumNodes(); ++i)
        if (Match.FindAfter(i) == -1)
            Add(DK_REMOVED, Before, Before.GetNode(i));
    for (int i = 0; i < After.GetNumNodes(); ++i)
        if (Match.FindBefore(i) == -1)
            Add(DK_ADDED, After, After.GetNode(i));
}

void TEffectDifferences::CompareNode(int beforeIndex, int afterIndex)
{
    const TNodeText& before = Before.GetNode(beforeIndex);
    const TNodeText& after = After.GetNode(afterIndex);
    const auto tell = [&](const TString& what, const TString& was, const TString& is) {
        if (was == is)
            return;
        TDifference& difference = Add(DK_CHANGED, After, after);
        difference.What = what;
        difference.Before = was;
        difference.After = is;
    };
    tell("name", QuoteNumbered(before.Name, 1), QuoteNumbered(after.Name, 1));
    tell("place", GetPlace(before), GetPlace(after));
    for (const TString& label : GetLabels(before.Values, after.Values))
        tell(label, GetValues(Before, before.Values, label), GetValues(After, after.Values, label));
    CompareWires(before, after);
}

void TEffectDifferences::CompareWires(const TNodeText& before, const TNodeText& after)
{
    for (const TString& label : GetLabels(before.Wires, after.Wires)) {
        const bool isInput = IsInputLabel(label);
        // Where an output leads elsewhere, the inputs there tell of it.
        if (IsSameEnds(before.Wires, after.Wires, label, true) ||
            (!isInput && !IsSameEnds(before.Wires, after.Wires, label, false)))
            continue;
        TDifference& difference = Add(isInput ? DK_REWIRED : DK_REORDERED, After, after);
        difference.What = label;
        difference.Before = GetValues(Before, before.Wires, label);
        difference.After = GetValues(After, after.Wires, label);
    }
}

// Whether the wires of a label lead to the same ports of the same nodes, whatever these are called.
bool TEffectDifferences::IsSameEnds(const TTextLines& before, const TTextLines& after, const TString& label,
                                    bool inOrder) const
{
    TTextLines first;
    TTextLines second;
    for (TTextLine line : before)
        if (line.Label == label) {
            line.Node = Match.FindAfter(line.Node);
            Append(first, line);
        }
    for (const TTextLine& line : after)
        if (line.Label == label)
            Append(second, line);
    if (first.size() != second.size())
        return false;
    for (int i = 0; i < first.size(); ++i)
        if (inOrder ? !(first[i] == second[i]) : second.index_of(first[i]) == -1)
            return false;
    return true;
}

// Once for each type, however many nodes are of it.
void TEffectDifferences::CompareTypes()
{
    vector<int> told;
    for (int i = 0; i < After.GetNumNodes(); ++i) {
        const int counterpart = Match.FindBefore(i);
        if (counterpart == -1)
            continue;
        const TTypeText& before = Before.GetType(Before.GetNode(counterpart).Type);
        const TTypeText& after = After.GetType(After.GetNode(i).Type);
        const int pair = Before.GetNode(counterpart).Type * After.GetNumTypes() + After.GetNode(i).Type;
        if (told.index_of(pair) != -1)
            continue;
        Append(told, pair);
        const int numFound = Found.size();
        for (const TString& label : GetLabels(before.Lines, after.Lines)) {
            const TString was = GetValues(Before, before.Lines, label);
            const TString is = GetValues(After, after.Lines, label);
            if (was == is)
                continue;
            TDifference& difference = Add(DK_RETYPED, After, After.GetNode(i));
            difference.Key = after.Key;
            difference.What = label;
            difference.Before = was;
            difference.After = is;
        }
        if (numFound == Found.size() && !AreSameLines(before.Lines, after.Lines)) {
            TDifference& difference = Add(DK_RETYPED, After, After.GetNode(i));
            difference.Key = after.Key;
            difference.What = "order of ports and parameters";
        }
    }
}

// Where wires or nodes are others, another order follows from that, and is no news.
void TEffectDifferences::CompareOrder()
{
    for (const TDifference& difference : Found)
        if (difference.Kind == DK_ADDED || difference.Kind == DK_REMOVED || difference.Kind == DK_REWIRED)
            return;
    vector<int> was;
    vector<int> is;
    for (const int node : Before.GetOrder())
        if (Match.FindAfter(node) != -1)
            Append(was, Match.FindAfter(node));
    for (const int node : After.GetOrder())
        if (Match.FindBefore(node) != -1)
            Append(is, node);
    for (int i = 0; i < is.size(); ++i)
        if (was[i] != is[i]) {
            TDifference difference;
            difference.Kind = DK_REORDERED;
            difference.What = "order";
            difference.Before = After.GetNode(was[i]).Key;
            difference.After = After.GetNode(is[i]).Key;
            Append(Found, difference);
            return;
        }
}
