#include "particles/cindermill/interface/graph/graphlayout.h"

#include "library/containers/append.h"
#include "library/maths/scalar.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/graph/graphscene.h"
#include "particles/cindermill/interface/graph/tidying.h"
#include "particles/cindermill/main/documentstep.h"

#include <algorithm>
#include <cmath>

namespace {

void GetSelectedBoxes(TGraphScene& scene, vector<TLayoutBox>& boxes)
{
    for (TToolNode* node : scene.GetDocument().GetSelection()) {
        TLayoutBox box;
        if (GetLayoutBox(scene, node, box))
            Append(boxes, box);
    }
}

int Round(float place)
{
    return FloatToInt(std::floor(double(place) + 0.5));
}

bool MoveToPlaces(TGraphScene& scene, const vector<TLayoutBox>& boxes)
{
    const TDocumentStep step(scene.GetDocument());
    bool moved = false;
    for (const TLayoutBox& box : boxes) {
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
float FindEdgePlace(const vector<TLayoutBox>& boxes, int axis, bool far)
{
    float place = far ? boxes[0].Max[axis] : boxes[0].Min[axis];
    for (const TLayoutBox& box : boxes) {
        const float own = far ? box.Max[axis] : box.Min[axis];
        place = (own > place) == far ? own : place;
    }
    return place;
}

void SortAlong(vector<TLayoutBox>& boxes, int axis)
{
    std::stable_sort(boxes.begin(), boxes.end(),
                     [axis](const TLayoutBox& a, const TLayoutBox& b) { return a.Min[axis] < b.Min[axis]; });
}

} // namespace

bool AlignSelection(TGraphScene& scene, TAlignment alignment)
{
    vector<TLayoutBox> boxes;
    GetSelectedBoxes(scene, boxes);
    if (boxes.size() < 2)
        return false;
    const int axis = alignment == AL_LEFT || alignment == AL_RIGHT ? 0 : 1;
    const bool far = alignment == AL_RIGHT || alignment == AL_BOTTOM;
    const float place = FindEdgePlace(boxes, axis, far);
    for (TLayoutBox& box : boxes)
        box.Place[axis] = far ? place - (box.Max[axis] - box.Min[axis]) : place;
    return MoveToPlaces(scene, boxes);
}

bool DistributeSelection(TGraphScene& scene, int axis)
{
    constexpr float LeastGap = 8.0f;
    vector<TLayoutBox> boxes;
    GetSelectedBoxes(scene, boxes);
    if (boxes.size() < 3)
        return false;
    SortAlong(boxes, axis);
    float room = boxes.back().Max[axis] - boxes[0].Min[axis];
    for (const TLayoutBox& box : boxes)
        room -= box.Max[axis] - box.Min[axis];
    // Where there is no room between the outermost, the last one makes it.
    const float shared = room / static_cast<float>(boxes.size() - 1);
    const float gap = shared > LeastGap ? shared : LeastGap;
    float place = boxes[0].Min[axis];
    for (int i = 0; i < boxes.size() - (gap > shared ? 0 : 1); ++i) {
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
    vector<TLayoutBox> boxes;
    FindTidyPlaces(scene, nodes, boxes);
    return MoveToPlaces(scene, boxes);
}
