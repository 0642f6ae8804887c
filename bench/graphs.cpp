#include "bench/graphs.h"

#include "particles/cindermill/graph/operations/movegraphnodeop.h"

#include <vector>

namespace {

void AddFountain(TSampleBuilder& effect)
{
    const TSampleNode trigger = effect.Add("Emitter");
    const TSampleNode emitter = effect.Add("Point Emitter");
    const TSampleNode cone = effect.Add("Velocity Cone");
    const TSampleNode gravity = effect.Add("Gravity");
    const TSampleNode damping = effect.Add("Damping");
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = effect.Add("Age");
    const TSampleNode colours = effect.Add("Colour Over Life");
    const TSampleNode scales = effect.Add("Scale Over Life");
    const TSampleNode stage = effect.Add("Sprite Render Stage");
    trigger.Wire("Count", emitter, "Emission Trigger");
    emitter.Wire("Start Transform", integrate, "Position");
    cone.Wire("Velocity", gravity, "Velocity");
    gravity.Wire("Velocity", damping, "Velocity");
    damping.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stage, "Transform");
    age.Wire("Age", colours, "Time");
    age.Wire("Age", scales, "Time");
    colours.Wire("Value", stage, "Colour");
    scales.Wire("Value", stage, "Scale");
}

// Emitter, starting velocity, integration and stage, for all that a graph of one system computes in between.
struct TSystem
{
    explicit TSystem(TSampleBuilder& effect)
        : Cone(effect.Add("Velocity Cone")), Integrate(effect.Add("Integrate")),
          Stage(effect.Add("Sprite Render Stage"))
    {
        const TSampleNode trigger = effect.Add("Emitter");
        const TSampleNode emitter = effect.Add("Point Emitter");
        trigger.Wire("Count", emitter, "Emission Trigger");
        emitter.Wire("Start Transform", Integrate, "Position");
        Integrate.Wire("Position", Stage, "Transform");
    }
    static constexpr int NumNodes = 5;

    TSampleNode Cone;
    TSampleNode Integrate;
    TSampleNode Stage;
};

void AddChain(TSampleBuilder& effect, int nodes)
{
    const TSystem system(effect);
    TSampleNode last = system.Cone;
    for (int i = TSystem::NumNodes; i < nodes; ++i) {
        const TSampleNode force = effect.Add(i % 2 == 0 ? "Gravity" : "Damping");
        last.Wire("Velocity", force, "Velocity");
        last = force;
    }
    last.Wire("Velocity", system.Integrate, "Velocity");
}

// Sums of two values each, down to random ones.
void AddTree(TSampleBuilder& effect, int nodes)
{
    const TSystem system(effect);
    system.Cone.Wire("Velocity", system.Integrate, "Velocity");
    std::vector<TSampleNode> open;
    const int count = nodes - TSystem::NumNodes;
    for (int i = 0; i < count; ++i) {
        // From here on the leaves fill what is open.
        const bool isLeaf = 2 * i + 1 >= count;
        const TSampleNode node = effect.Add(isLeaf ? "Random Value" : "Add");
        const char* output = isLeaf ? "Value" : "Sum";
        if (i == 0)
            node.Wire(output, system.Stage, "Colour");
        else
            node.Wire(output, open[static_cast<size_t>(i - 1) / 2], i % 2 == 1 ? "A" : "B");
        open.push_back(node);
    }
}

void AddFan(TSampleBuilder& effect, int nodes)
{
    const TSystem system(effect);
    system.Cone.Wire("Velocity", system.Integrate, "Velocity");
    const TSampleNode age = effect.Add("Age");
    for (int i = TSystem::NumNodes + 1; i + 1 < nodes; i += 2) {
        const TSampleNode colours = effect.Add("Colour Over Life");
        const TSampleNode stage = effect.Add("Sprite Render Stage");
        age.Wire("Age", colours, "Time");
        colours.Wire("Value", stage, "Colour");
        system.Integrate.Wire("Position", stage, "Transform");
    }
}

} // namespace

const char* GetShapeName(TGraphShape shape)
{
    constexpr const char* names[GS_NUMSHAPES] = {"fountains", "a chain of forces", "a tree of sums",
                                                 "a fan of stages"};
    return names[shape];
}

void BuildGraph(TSampleBuilder& effect, TGraphShape shape, int nodes)
{
    switch (shape) {
    case GS_CHAIN:
        AddChain(effect, nodes);
        break;
    case GS_TREE:
        AddTree(effect, nodes);
        break;
    case GS_FAN:
        AddFan(effect, nodes);
        break;
    default:
        for (int i = 0; i < nodes; i += 10)
            AddFountain(effect);
        break;
    }
}

void AddHistory(TDocument& document, int operations)
{
    const TEffectGraph& graph = *document.GetGraph();
    for (int i = 0; i < operations; ++i) {
        vector<TToolNode*> nodes;
        nodes.push_back(static_cast<TToolNode*>(graph.GetNode(i % graph.GetNumNodes())));
        document.ApplyOperation(new TMoveGraphNodeOp(nodes, 1, -1));
    }
}

int WalkGraph(const TEffectGraph& graph)
{
    int ports = 0;
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        const TEffectNode* node = graph.GetNode(i);
        for (int p = 0; p < node->GetNumInputs(); ++p)
            ports += node->GetInput(p) != nullptr ? node->GetInput(p)->GetSrcPort() + 1 : 0;
        for (int o = 0; o < node->GetNumOutputs(); ++o)
            for (int e = 0; e < node->GetNumOutputEdges(o); ++e)
                ports += node->GetOutputEdge(o, e)->GetDstPort();
    }
    return ports;
}
