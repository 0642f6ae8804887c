#include "particles/cindermill/interface/graph/tidying.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/graph/graphscene.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/pointermap.h"

#include <algorithm>

namespace {

constexpr float Across = 64.0f;
constexpr float Down = 24.0f;
// Between what no wire connects.
constexpr float Apart = 64.0f;
// To and fro, until the heights have settled.
constexpr int NumSweeps = 4;

float GetHeight(const TLayoutBox& box)
{
    return box.Max[1] - box.Min[1];
}

// A wire among the boxes, with the heights of its ends below the tops of their boxes.
struct TLink
{
    int Source;
    int Destination;
    float SourceHeight;
    float DestinationHeight;
};

// Of boxes in one column that touch: they move as one.
struct TBlock
{
    int First;
    int Count;
    // The sum of where each of them would have the first stand.
    float Wishes;
    float Height;
    float GetTop() const { return Wishes / static_cast<float>(Count); }
};

class TTidying
{
public:
    // The boxes are in the order in which the nodes run.
    explicit TTidying(vector<TLayoutBox>& boxes) : Boxes(boxes)
    {
        for (int i = 0; i < Boxes.size(); ++i)
            Places.Insert(Boxes[i].Node, i);
        FindLinks();
        FindParts();
        FindColumns();
    }
    void Run()
    {
        float left = Boxes[0].Min[0];
        float top = Boxes[0].Min[1];
        for (const TLayoutBox& box : Boxes) {
            left = std::min(left, box.Min[0]);
            top = std::min(top, box.Min[1]);
        }
        PlaceAcross(left);
        for (const vector<int>& part : Parts)
            top = PlacePart(part, top) + (part.size() > 1 ? Apart : Down);
    }

private:
    void FindLinks()
    {
        Incoming.resize(Boxes.size());
        Outgoing.resize(Boxes.size());
        for (int i = 0; i < Boxes.size(); ++i)
            for (int port = 0; port < Boxes[i].Node->GetNumInputs(); ++port) {
                const TEffectEdge* edge = Boxes[i].Node->GetInput(port);
                const int source = edge != nullptr ? Places.Find(edge->GetSrcNode()) : -1;
                if (source == -1)
                    continue;
                const TLayoutBox& from = Boxes[source];
                const float out = from.Object->GetPortPosition(false, edge->GetSrcPort())[1] - from.Min[1];
                const float in = Boxes[i].Object->GetPortPosition(true, port)[1] - Boxes[i].Min[1];
                Append(Incoming[i], Links.size());
                Append(Outgoing[source], Links.size());
                Append(Links, TLink{source, i, out, in});
            }
    }
    // What hangs together by wires; those that stand highest come first.
    void FindParts()
    {
        vector<int> partOf;
        partOf.resize(Boxes.size());
        std::fill(partOf.begin(), partOf.end(), -1);
        vector<int> open;
        for (int i = 0; i < Boxes.size(); ++i) {
            if (partOf[i] != -1)
                continue;
            const int part = Parts.size();
            Append(Parts, vector<int>());
            partOf[i] = part;
            open.push_back(i);
            while (!open.empty()) {
                const int box = open.back();
                open.pop_back();
                const auto reach = [&](int other) {
                    if (partOf[other] != -1)
                        return;
                    partOf[other] = part;
                    Append(open, other);
                };
                for (const int link : Incoming[box])
                    reach(Links[link].Source);
                for (const int link : Outgoing[box])
                    reach(Links[link].Destination);
            }
        }
        for (int i = 0; i < Boxes.size(); ++i)
            Append(Parts[partOf[i]], i);
        std::stable_sort(Parts.begin(), Parts.end(), [this](const vector<int>& a, const vector<int>& b) {
            return GetTop(a) < GetTop(b);
        });
    }
    float GetTop(const vector<int>& part) const
    {
        float top = Boxes[part[0]].Min[1];
        for (const int box : part)
            top = std::min(top, Boxes[box].Min[1]);
        return top;
    }
    // Right of all that feed it, then as far right as what it feeds allows.
    void FindColumns()
    {
        Columns.resize(Boxes.size());
        for (int i = 0; i < Boxes.size(); ++i) {
            Columns[i] = 0;
            for (const int link : Incoming[i])
                Columns[i] = std::max(Columns[i], Columns[Links[link].Source] + 1);
            NumColumns = std::max(NumColumns, Columns[i] + 1);
        }
        for (int i = Boxes.size() - 1; i >= 0; --i) {
            int limit = NumColumns;
            for (const int link : Outgoing[i])
                limit = std::min(limit, Columns[Links[link].Destination]);
            Columns[i] = Outgoing[i].empty() ? Columns[i] : limit - 1;
        }
    }
    void PlaceAcross(float left)
    {
        vector<float> widths;
        widths.resize(NumColumns);
        std::fill(widths.begin(), widths.end(), 0.0f);
        for (int i = 0; i < Boxes.size(); ++i)
            widths[Columns[i]] = std::max(widths[Columns[i]], Boxes[i].Max[0] - Boxes[i].Min[0]);
        vector<float> lefts;
        for (const float width : widths) {
            Append(lefts, left);
            left += width > 0 ? width + Across : 0;
        }
        for (int i = 0; i < Boxes.size(); ++i)
            Boxes[i].Place[0] = lefts[Columns[i]];
    }
    // Returns where it ends.
    float PlacePart(const vector<int>& part, float top)
    {
        vector<vector<int>> columns;
        columns.resize(NumColumns);
        for (const int box : part) {
            Boxes[box].Place[1] = 0;
            Append(columns[Columns[box]], box);
        }
        for (int column = NumColumns - 1; column >= 0; --column)
            OrderColumn(columns[column]);
        for (int sweep = 0; sweep < NumSweeps; ++sweep) {
            for (int column = 0; column < NumColumns; ++column)
                SettleColumn(columns[column], true);
            for (int column = NumColumns - 1; column >= 0; --column)
                SettleColumn(columns[column], false);
        }
        float highest = Boxes[part[0]].Place[1];
        for (const int box : part)
            highest = std::min(highest, Boxes[box].Place[1]);
        float end = top;
        for (const int box : part) {
            Boxes[box].Place[1] += top - highest;
            end = std::max(end, Boxes[box].Place[1] + GetHeight(Boxes[box]));
        }
        return end;
    }
    // The mean of the heights at which its wires would be level; false for a box without such wires.
    bool GetWish(int box, bool byIncoming, float& wish) const
    {
        const vector<int>& links = byIncoming ? Incoming[box] : Outgoing[box];
        float sum = 0;
        for (const int n : links) {
            const TLink& link = Links[n];
            sum += byIncoming ? Boxes[link.Source].Place[1] + link.SourceHeight - link.DestinationHeight
                              : Boxes[link.Destination].Place[1] + link.DestinationHeight - link.SourceHeight;
        }
        if (!links.empty())
            wish = sum / static_cast<float>(links.size());
        return !links.empty();
    }
    // By what the boxes feed, which stands already.
    void OrderColumn(vector<int>& column)
    {
        float last = 0;
        for (const int box : column) {
            float wish = last;
            GetWish(box, false, wish);
            Boxes[box].Place[1] = wish;
            last = std::max(last, wish + GetHeight(Boxes[box]) + Down);
        }
        std::stable_sort(column.begin(), column.end(),
                         [this](int a, int b) { return Boxes[a].Place[1] < Boxes[b].Place[1]; });
        Spread(column);
    }
    void SettleColumn(const vector<int>& column, bool byIncoming)
    {
        for (const int box : column) {
            float wish = 0;
            if (GetWish(box, byIncoming, wish))
                Boxes[box].Place[1] = wish;
        }
        Spread(column);
    }
    // Each as close to where it stands as the others in the column allow, whose order stays.
    void Spread(const vector<int>& column)
    {
        vector<TBlock> blocks;
        for (int i = 0; i < column.size(); ++i) {
            const TLayoutBox& box = Boxes[column[i]];
            Append(blocks, TBlock{i, 1, box.Place[1], GetHeight(box) + Down});
            while (blocks.size() > 1) {
                TBlock& above = blocks[blocks.size() - 2];
                const TBlock& below = blocks.back();
                if (above.GetTop() + above.Height <= below.GetTop())
                    break;
                above.Wishes += below.Wishes - static_cast<float>(below.Count) * above.Height;
                above.Count += below.Count;
                above.Height += below.Height;
                blocks.pop_back();
            }
        }
        for (const TBlock& block : blocks) {
            float top = block.GetTop();
            for (int i = block.First; i < block.First + block.Count; ++i) {
                Boxes[column[i]].Place[1] = top;
                top += GetHeight(Boxes[column[i]]) + Down;
            }
        }
    }

    vector<TLayoutBox>& Boxes;
    TPointerMap Places;
    vector<TLink> Links;
    // By box.
    vector<vector<int>> Incoming;
    vector<vector<int>> Outgoing;
    vector<vector<int>> Parts;
    vector<int> Columns;
    int NumColumns = 0;
};

} // namespace

bool GetLayoutBox(const TGraphScene& scene, TToolNode* node, TLayoutBox& box)
{
    box.Node = node;
    box.Object = scene.FindNode(node);
    if (box.Object == nullptr)
        return false;
    box.Object->GetRectangle(box.Min, box.Max);
    box.Place = box.Min;
    return true;
}

void FindTidyPlaces(TGraphScene& scene, const vector<TToolNode*>& nodes, vector<TLayoutBox>& boxes)
{
    TPointerMap wanted;
    for (const TToolNode* node : nodes)
        wanted.Insert(node);
    vector<TEffectNode*> sorted;
    GetSortedNodes(*scene.GetDocument().GetGraph(), sorted);
    for (TEffectNode* node : sorted) {
        TLayoutBox box;
        if (wanted.Has(node) && GetLayoutBox(scene, static_cast<TToolNode*>(node), box))
            Append(boxes, box);
    }
    if (!boxes.empty())
        TTidying(boxes).Run();
}
