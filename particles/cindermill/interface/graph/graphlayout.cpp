#include "particles/cindermill/interface/graph/graphlayout.h"

#include "library/containers/append.h"
#include "library/maths/scalar.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/graph/graphscene.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/main/documentstep.h"
#include "particles/effectgraph/pointermap.h"

#include <cmath>

namespace {

// A node as it is drawn.
struct TBox
{
    TToolNode* Node;
    TVector2 Min;
    TVector2 Max;
    // Where it is to stand.
    TVector2 Place;
};

void AddBox(const TGraphScene& scene, TToolNode* node, vector<TBox>& boxes)
{
    const TNodeObj* object = scene.FindNode(node);
    if (object == nullptr)
        return;
    TBox box = {node, TVector2(0, 0), TVector2(0, 0), TVector2(0, 0)};
    object->GetRectangle(box.Min, box.Max);
    box.Place = box.Min;
    Append(boxes, box);
}

void GetSelectedBoxes(TGraphScene& scene, vector<TBox>& boxes)
{
    for (TToolNode* node : scene.GetDocument().GetSelection())
        AddBox(scene, node, boxes);
}

int Round(float place)
{
    return FloatToInt(std::floor(double(place) + 0.5));
}

bool MoveToPlaces(TGraphScene& scene, const vector<TBox>& boxes)
{
    const TDocumentStep step(scene.GetDocument());
    bool moved = false;
    for (const TBox& box : boxes) {
        const int dx = Round(box.Place[0]) - Round(box.Min[0]);
        const int dy = Round(box.Place[1]) - Round(box.Min[1]);
        if (dx == 0 && dy == 0)
            continue;
        vector<TToolNode*> nodes;
        nodes.push_back(box.Node);
        scene.GetDocument().ApplyOperation(new TMoveGraphNodeOp(nodes, dx, dy));
        moved = true;
    }
    return moved;
}

// The edge that all go to: the outermost.
float FindEdgePlace(const vector<TBox>& boxes, int axis, bool far)
{
    float place = far ? boxes[0].Max[axis] : boxes[0].Min[axis];
    for (const TBox& box : boxes) {
        const float own = far ? box.Max[axis] : box.Min[axis];
        place = (own > place) == far ? own : place;
    }
    return place;
}

void SortAlong(vector<TBox>& boxes, int axis)
{
    for (int i = 1; i < boxes.size(); ++i)
        for (int j = i; j > 0 && boxes[j].Min[axis] < boxes[j - 1].Min[axis]; --j) {
            const TBox box = boxes[j];
            boxes[j] = boxes[j - 1];
            boxes[j - 1] = box;
        }
}

// The nodes in the order in which they run, in columns by what feeds them.
class TTidying
{
public:
    TTidying(TGraphScene& scene, const vector<TToolNode*>& nodes)
    {
        TPointerMap wanted;
        for (const TToolNode* node : nodes)
            wanted.Insert(node);
        vector<TEffectNode*> sorted;
        GetSortedNodes(*scene.GetDocument().GetGraph(), sorted);
        for (TEffectNode* node : sorted) {
            const int before = Boxes.size();
            if (wanted.Has(node))
                AddBox(scene, static_cast<TToolNode*>(node), Boxes);
            if (Boxes.size() > before)
                Places.Insert(node, before);
        }
        Columns.resize(Boxes.size());
    }
    vector<TBox>& Run()
    {
        FindColumns();
        PullRight();
        float left = FindEdgePlace(Boxes, 0, false);
        const float top = FindEdgePlace(Boxes, 1, false);
        const float lowest = top;
        for (int column = 0; column < NumColumns; ++column)
            left = PlaceColumn(column, left, lowest);
        // Nothing stands higher than before.
        float highest = Boxes[0].Place[1];
        for (const TBox& box : Boxes)
            highest = box.Place[1] < highest ? box.Place[1] : highest;
        for (TBox& box : Boxes)
            box.Place[1] += top - highest;
        return Boxes;
    }

private:
    static constexpr float Across = 64.0f;
    static constexpr float Down = 24.0f;

    int FindBox(const TEffectNode* node) const { return Places.Find(node); }
    // One further right than all that feed it.
    void FindColumns()
    {
        NumColumns = 0;
        for (int i = 0; i < Boxes.size(); ++i) {
            Columns[i] = 0;
            const TToolNode& node = *Boxes[i].Node;
            for (int input = 0; input < node.GetNumInputs(); ++input) {
                const int source =
                    node.GetInput(input) != nullptr ? FindBox(node.GetInput(input)->GetSrcNode()) : -1;
                if (source != -1 && Columns[source] >= Columns[i])
                    Columns[i] = Columns[source] + 1;
            }
            NumColumns = Columns[i] >= NumColumns ? Columns[i] + 1 : NumColumns;
        }
    }
    // What nothing feeds stands close to what it feeds.
    void PullRight()
    {
        for (int i = Boxes.size() - 1; i >= 0; --i) {
            const TToolNode& node = *Boxes[i].Node;
            int limit = NumColumns;
            bool isFed = false;
            for (int input = 0; input < node.GetNumInputs(); ++input)
                isFed = isFed || (node.GetInput(input) != nullptr &&
                                  FindBox(node.GetInput(input)->GetSrcNode()) != -1);
            for (int output = 0; output < node.GetNumOutputs(); ++output)
                for (int n = 0; n < node.GetNumOutputEdges(output); ++n) {
                    const int fed = FindBox(node.GetOutputEdge(output, n)->GetDstNode());
                    limit = fed != -1 && Columns[fed] < limit ? Columns[fed] : limit;
                }
            if (!isFed && limit < NumColumns && limit > 0)
                Columns[i] = limit - 1;
        }
    }
    // The middle of what feeds it.
    float FindWish(const TBox& box, float otherwise) const
    {
        float sum = 0;
        int count = 0;
        for (int input = 0; input < box.Node->GetNumInputs(); ++input) {
            const TEffectEdge* edge = box.Node->GetInput(input);
            const int source = edge != nullptr ? FindBox(edge->GetSrcNode()) : -1;
            if (source == -1)
                continue;
            const TBox& from = Boxes[source];
            sum += from.Place[1] + (from.Max[1] - from.Min[1]) * 0.5f;
            ++count;
        }
        return count > 0 ? sum / static_cast<float>(count) - (box.Max[1] - box.Min[1]) * 0.5f : otherwise;
    }
    // Returns where the next column begins.
    float PlaceColumn(int column, float left, float top)
    {
        vector<int> members;
        float next = top;
        float width = 0;
        for (int i = 0; i < Boxes.size(); ++i) {
            TBox& box = Boxes[i];
            if (Columns[i] != column)
                continue;
            box.Place = TVector2(left, FindWish(box, next));
            next = box.Place[1] + box.Max[1] - box.Min[1] + Down;
            width = box.Max[0] - box.Min[0] > width ? box.Max[0] - box.Min[0] : width;
            int at = members.size();
            while (at > 0 && Boxes[members[at - 1]].Place[1] > box.Place[1])
                --at;
            members.insert(members.begin() + at, i);
        }
        SpreadOut(members);
        return left + width + Across;
    }
    // From the middle of the column on, so that half of them need not go down.
    void SpreadOut(const vector<int>& members)
    {
        float wished = 0;
        float placed = 0;
        for (int n = 0; n < members.size(); ++n) {
            TBox& box = Boxes[members[n]];
            wished += box.Place[1];
            if (n > 0) {
                const TBox& above = Boxes[members[n - 1]];
                const float least = above.Place[1] + above.Max[1] - above.Min[1] + Down;
                box.Place[1] = box.Place[1] < least ? least : box.Place[1];
            }
            placed += box.Place[1];
        }
        const float back = (placed - wished) / static_cast<float>(members.size() > 0 ? members.size() : 1);
        for (const int member : members)
            Boxes[member].Place[1] -= back;
    }

    vector<TBox> Boxes;
    TPointerMap Places;
    vector<int> Columns;
    int NumColumns = 0;
};

} // namespace

bool AlignSelection(TGraphScene& scene, TAlignment alignment)
{
    vector<TBox> boxes;
    GetSelectedBoxes(scene, boxes);
    if (boxes.size() < 2)
        return false;
    const int axis = alignment == AL_LEFT || alignment == AL_RIGHT ? 0 : 1;
    const bool far = alignment == AL_RIGHT || alignment == AL_BOTTOM;
    const float place = FindEdgePlace(boxes, axis, far);
    for (TBox& box : boxes)
        box.Place[axis] = far ? place - (box.Max[axis] - box.Min[axis]) : place;
    return MoveToPlaces(scene, boxes);
}

bool DistributeSelection(TGraphScene& scene, int axis)
{
    vector<TBox> boxes;
    GetSelectedBoxes(scene, boxes);
    if (boxes.size() < 3)
        return false;
    SortAlong(boxes, axis);
    float room = boxes.back().Max[axis] - boxes[0].Min[axis];
    for (const TBox& box : boxes)
        room -= box.Max[axis] - box.Min[axis];
    const float gap = room / static_cast<float>(boxes.size() - 1);
    float place = boxes[0].Min[axis];
    for (int i = 0; i < boxes.size() - 1; ++i) {
        boxes[i].Place[axis] = place;
        place += boxes[i].Max[axis] - boxes[i].Min[axis] + gap;
    }
    return MoveToPlaces(scene, boxes);
}

bool TidyNodes(TGraphScene& scene)
{
    vector<TToolNode*> nodes = scene.GetDocument().GetSelection();
    if (nodes.size() < 2) {
        nodes.clear();
        const TEffectGraph& graph = *scene.GetDocument().GetGraph();
        for (int i = 0; i < graph.GetNumNodes(); ++i)
            Append(nodes, static_cast<TToolNode*>(graph.GetNode(i)));
    }
    if (nodes.size() < 2)
        return false;
    TTidying tidying(scene, nodes);
    return MoveToPlaces(scene, tidying.Run());
}
