#include "tools/samplemaker/samplelayout.h"

#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/document.h"

#include <algorithm>
#include <map>
#include <vector>

int GetSampleNodeHeight(const TNodeType& type)
{
    constexpr int Title = 24;
    constexpr int Frame = 15;
    constexpr int PortPitch = 15;
    return Title + Frame + PortPitch * std::max(type.GetNumInputs(), type.GetNumOutputs());
}

namespace {

struct TPosition
{
    int Column = 0;
    int X = 0;
    int Y = 0;
};

class TLayout
{
public:
    explicit TLayout(TEffectGraph& graph);
    const TPosition& GetPosition(TEffectNode* node) const { return Places.at(node); }
    const std::vector<TEffectNode*>& GetNodes() const { return Nodes; }

private:
    void FindColumns();
    void StackColumn(int column);
    double GetWantedY(TEffectNode* node) const;

    // Behind the sources of its inputs, each.
    std::vector<TEffectNode*> Nodes;
    std::map<TEffectNode*, TPosition> Places;
    int NumColumns = 0;
};

TLayout::TLayout(TEffectGraph& graph)
{
    vector<TEffectNode*> sorted;
    GetSortedNodes(graph, sorted);
    Nodes.assign(sorted.begin(), sorted.end());
    FindColumns();
    for (int column = NumColumns - 1; column >= 0; --column)
        StackColumn(column);
}

// Counted from the right at first: one more than the furthest of those fed.
void TLayout::FindColumns()
{
    for (auto it = Nodes.rbegin(); it != Nodes.rend(); ++it) {
        int column = 0;
        for (int port = 0; port < (*it)->GetNumOutputs(); ++port)
            for (int e = 0; e < (*it)->GetNumOutputEdges(port); ++e)
                column = std::max(column, Places[(*it)->GetOutputEdge(port, e)->GetDstNode()].Column + 1);
        Places[*it].Column = column;
        NumColumns = std::max(NumColumns, column + 1);
    }
    for (auto& [node, place] : Places) {
        place.Column = NumColumns - 1 - place.Column;
        place.X = place.Column * SampleColumnWidth;
    }
}

// Level with what it feeds.
double TLayout::GetWantedY(TEffectNode* node) const
{
    constexpr int PortPitch = 15;
    double sum = 0;
    int count = 0;
    for (int port = 0; port < node->GetNumOutputs(); ++port) {
        for (int e = 0; e < node->GetNumOutputEdges(port); ++e) {
            const TEffectEdge* edge = node->GetOutputEdge(port, e);
            sum += Places.at(edge->GetDstNode()).Y + PortPitch * (edge->GetDstPort() - port);
            ++count;
        }
    }
    return count == 0 ? 0 : sum / count;
}

void TLayout::StackColumn(int column)
{
    std::vector<std::pair<double, TEffectNode*>> wanted;
    for (TEffectNode* node : Nodes)
        if (Places[node].Column == column)
            wanted.emplace_back(GetWantedY(node), node);
    std::stable_sort(wanted.begin(), wanted.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    // A node that wants to stand where another does pushes that one up by half.
    double surplus = 0;
    double bottom = wanted.empty() ? 0 : wanted.front().first;
    for (const auto& [y, node] : wanted) {
        surplus = std::max(surplus, bottom - y);
        bottom = std::max(bottom, y) + GetSampleNodeHeight(*node->GetNodeType()) + SampleRowGap;
    }
    bottom = -1e9;
    for (const auto& [y, node] : wanted) {
        const double top = std::max(bottom, y - surplus / 2);
        Places[node].Y = static_cast<int>(top);
        bottom = Places[node].Y + GetSampleNodeHeight(*node->GetNodeType()) + SampleRowGap;
    }
}

} // namespace

void LayOutGraph(TDocument& document)
{
    const TLayout layout(*document.GetGraph());
    int top = 0;
    for (TEffectNode* node : layout.GetNodes())
        top = std::min(top, layout.GetPosition(node).Y);
    for (TEffectNode* node : layout.GetNodes()) {
        vector<TToolNode*> moved;
        moved.push_back(static_cast<TToolNode*>(node));
        const TPosition& place = layout.GetPosition(node);
        document.ApplyOperation(new TMoveGraphNodeOp(moved, place.X, place.Y - top));
    }
}
