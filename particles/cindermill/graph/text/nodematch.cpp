#include "particles/cindermill/graph/text/nodematch.h"

namespace {

bool IsSameKind(const TEffectText& before, const TNodeText& a, const TEffectText& after, const TNodeText& b)
{
    return before.GetType(a.Type).ClassName == after.GetType(b.Type).ClassName;
}

bool IsSamePlace(const TNodeText& a, const TNodeText& b)
{
    return a.HasPlace == b.HasPlace && a.X == b.X && a.Y == b.Y;
}

// A wire is alike if it comes from a node of the same name.
bool IsAlike(const TEffectText& before, const TTextLine& a, const TEffectText& after, const TTextLine& b)
{
    if (!(a.Label == b.Label) || !(a.Value == b.Value) || (a.Node == -1) != (b.Node == -1))
        return false;
    return a.Node == -1 || before.GetNode(a.Node).Name == after.GetNode(b.Node).Name;
}

int CountAlike(const TEffectText& before, const TTextLines& a, const TEffectText& after, const TTextLines& b)
{
    int count = 0;
    int from = 0;
    for (const TTextLine& line : a)
        for (int i = from; i < b.size(); ++i)
            if (IsAlike(before, line, after, b[i])) {
                ++count;
                from = i + 1;
                break;
            }
    return count;
}

} // namespace

TNodeMatch::TNodeMatch(const TEffectText& before, const TEffectText& after) : Before(before), After(after)
{
    for (int i = 0; i < Before.GetNumNodes(); ++i)
        Append(AfterOf, -1);
    for (int i = 0; i < After.GetNumNodes(); ++i)
        Append(BeforeOf, -1);
    Pair(ScoreSame);
    Pair(ScorePlaceAndName);
    Pair(ScoreName);
    Pair(ScorePlace);
}

// Each node takes the best of those that are left.
void TNodeMatch::Pair(TScore score)
{
    for (int a = 0; a < AfterOf.size(); ++a) {
        int best = -1;
        int bestScore = 0;
        for (int b = 0; b < BeforeOf.size() && AfterOf[a] == -1; ++b) {
            const int found = BeforeOf[b] == -1 ? score(Before, a, After, b) : 0;
            if (found > bestScore) {
                best = b;
                bestScore = found;
            }
        }
        if (best != -1) {
            AfterOf[a] = best;
            BeforeOf[best] = a;
        }
    }
}

int TNodeMatch::ScoreSame(const TEffectText& before, int a, const TEffectText& after, int b)
{
    const TNodeText& first = before.GetNode(a);
    const TNodeText& second = after.GetNode(b);
    if (!(first.Name == second.Name) || !IsSamePlace(first, second) ||
        !IsSameKind(before, first, after, second) || first.Values.size() != second.Values.size())
        return 0;
    const int alike = CountAlike(before, first.Values, after, second.Values);
    return alike == first.Values.size() ? 1 + CountAlike(before, first.Wires, after, second.Wires) : 0;
}

int TNodeMatch::ScorePlaceAndName(const TEffectText& before, int a, const TEffectText& after, int b)
{
    return before.GetNode(a).Name == after.GetNode(b).Name ? ScorePlace(before, a, after, b) : 0;
}

int TNodeMatch::ScoreName(const TEffectText& before, int a, const TEffectText& after, int b)
{
    const TNodeText& first = before.GetNode(a);
    const TNodeText& second = after.GetNode(b);
    if (!(first.Name == second.Name) || !IsSameKind(before, first, after, second))
        return 0;
    return 1 + CountAlike(before, first.Values, after, second.Values) +
           CountAlike(before, first.Wires, after, second.Wires);
}

int TNodeMatch::ScorePlace(const TEffectText& before, int a, const TEffectText& after, int b)
{
    const TNodeText& first = before.GetNode(a);
    const TNodeText& second = after.GetNode(b);
    if (!IsSamePlace(first, second) || !IsSameKind(before, first, after, second))
        return 0;
    return 1 + CountAlike(before, first.Values, after, second.Values);
}
