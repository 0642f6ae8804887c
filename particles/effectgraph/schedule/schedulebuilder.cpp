#include "particles/effectgraph/schedule/schedulebuilder.h"

#include "library/containers/append.h"
#include "particles/effectgraph/schedule/groupmerger.h"
#include "particles/effectgraph/schedule/nodelifetime.h"
#include "particles/effectgraph/simpleparameters.h"

namespace {

constexpr int DefaultParticleCount = 100;
constexpr int DefaultMaxEmission = 1;

// False if the node has no such number.
bool GetIntParameter(const TEffectNode* node, const char* name, int& value)
{
    const auto* parameter = node->GetNodeType()->FindParameterOf<TNodeIntParameter>(name, PK_INT);
    if (parameter == nullptr)
        return false;
    value = parameter->Get();
    return true;
}

} // namespace

TScheduleBuilder::TScheduleBuilder(const vector<TEffectNode*>& nodes) : Wiring(nodes) {}

const char* TScheduleBuilder::FormGroups()
{
    FindEmitterSets(Wiring, Sets);
    if (!HasEmitters())
        return "No emitters in graph. Graph must contain an emitter to produce new particle data";
    Groups.GroupByKey(Sets);
    if (Groups.size() == 0)
        return "No valid groups in graph. Groups should consist of emitter objects connected to render or "
               "process "
               "nodes";
    ClassifyGroups();
    SortRenderGroups();
    TGroupMerger(Wiring, Sets, Groups).Run();
    if (!FindValidGroups())
        return "No valid groups in graph. Groups should consist of emitter nodes connected to render or "
               "process "
               "nodes";
    return nullptr;
}

bool TScheduleBuilder::HasEmitters() const
{
    for (const TNodeSet& set : Sets)
        if (!set.empty())
            return true;
    return false;
}

void TScheduleBuilder::ClassifyGroups()
{
    for (int i = 0; i < Groups.size(); ++i)
        for (const int node : Groups[i].Nodes) {
            if (Wiring.IsEmitter(node))
                Groups[i].HasEmitter = true;
            if (Wiring.IsRender(node)) {
                Groups[i].HasRender = true;
                Groups[i].RenderPriority = Wiring.GetType(node).GetRenderPriority();
            }
        }
}

// Ascending by priority; groups without a render node keep their positions.
void TScheduleBuilder::SortRenderGroups()
{
    for (int i = 0; i < Groups.size(); ++i)
        for (int j = 0; j < Groups.size(); ++j)
            if (Groups[i].HasRender && Groups[j].HasRender &&
                Groups[i].RenderPriority < Groups[j].RenderPriority)
                Groups.Exchange(i, j);
}

bool TScheduleBuilder::FindValidGroups()
{
    bool any = false;
    for (int i = 0; i < Groups.size(); ++i) {
        TBuildGroup& group = Groups[i];
        const bool isPopulation = group.HasEmitter && group.HasRender;
        const bool isTrigger = group.Emitters.empty() && !group.HasEmitter && !group.HasRender;
        group.Valid = isPopulation || isTrigger;
        any = any || group.Valid;
    }
    return any;
}

void TScheduleBuilder::FindUsages(vector<int>& usages) const
{
    usages = vector<int>();
    usages.resize(Wiring.GetNumNodes());
    for (int i = 0; i < Groups.size(); ++i) {
        const TBuildGroup& group = Groups[i];
        const bool isTrigger = group.Emitters.empty() && !group.HasEmitter && !group.HasRender;
        for (const int node : group.Nodes) {
            if (isTrigger)
                usages[node] = TU_TRIGGER;
            else if (Wiring.IsEmitter(node))
                usages[node] = TU_EMITTER;
            else if (Wiring.IsRender(node))
                usages[node] = TU_RENDER;
            else
                usages[node] = IsProcess(node, i, usages) ? TU_PROCESS : TU_EMITTER;
        }
    }
}

// A plain node of a population that is not on the way of a particle's value is computed only at a particle's
// birth.
bool TScheduleBuilder::IsProcess(int node, int group, const vector<int>& usages) const
{
    const TEffectNode* effectNode = Wiring.GetNode(node);
    const vector<int>& tiedOutputs = Wiring.GetTiedOutputs(node);
    for (int p = 0; p < effectNode->GetNumInputs(); ++p) {
        if (tiedOutputs[p] != -1 && effectNode->GetNumOutputEdges(tiedOutputs[p]) > 0)
            return true;
        const TEffectEdge* edge = effectNode->GetInput(p);
        if (edge == nullptr)
            continue;
        const int source = Wiring.Find(edge->GetSrcNode());
        if (Groups.GetGroupOf(source) == group && usages[source] == TU_PROCESS)
            return true;
    }
    return false;
}

void TScheduleBuilder::FindParents()
{
    for (int i = 0; i < Groups.size(); ++i)
        Groups[i].ParentGroup = Groups[i].Emitters.empty() ? -1 : FindParent(i);
}

// The first group whose key is this group's with one emitter less.
int TScheduleBuilder::FindParent(int group) const
{
    const TNodeSet& key = Groups[group].Emitters;
    int j = 0;
    while (j < Groups.size() &&
           !(Groups[j].Emitters.size() == key.size() - 1 && key.ContainsAll(Groups[j].Emitters)))
        ++j;
    ASSERT_TEXT(j < Groups.size(), "j < groups.size()");
    return j;
}

void TScheduleBuilder::ExpandGroups()
{
    int numValid = 0;
    for (int i = 0; i < Groups.size(); ++i)
        numValid += Groups[i].Valid ? 1 : 0;
    Expansions.resize(numValid);
    int position = 0;
    for (int i = 0; i < Groups.size(); ++i) {
        if (!Groups[i].Valid)
            continue;
        vector<TEffectNode*> nodes;
        for (const int node : Groups[i].Nodes)
            Append(nodes, Wiring.GetNode(node));
        vector<TEffectNode*> terminals;
        CollectTerminals(i, terminals);
        TTiedGroup& tied = Expansions[position++];
        tied.GroupIndex = i;
        BuildTiedGroup(nodes, terminals, tied);
        DumpTiedGroup(tied);
    }
}

void TScheduleBuilder::CollectTerminals(int group, vector<TEffectNode*>& terminals) const
{
    for (const int node : Groups[group].Nodes)
        if (!FeedsGroup(node, group))
            Append(terminals, Wiring.GetNode(node));
}

bool TScheduleBuilder::FeedsGroup(int node, int group) const
{
    for (const int target : Wiring.GetTargets(node))
        if (Groups.GetGroupOf(target) == group)
            return true;
    return false;
}

int TScheduleBuilder::GetParticleCount(int position) const
{
    int count = DefaultParticleCount;
    if (!IsTriggerGroup(position))
        GetIntParameter(GetLastEmitter(position), "Particle Count", count);
    return count;
}

// What fires the emitter tells; otherwise a whole parent population may have to fit into one frame.
int TScheduleBuilder::GetMaxEmission(int position, const vector<int>& particleCounts,
                                     const TEffectNode*& teller) const
{
    int most = DefaultMaxEmission;
    teller = nullptr;
    if (IsTriggerGroup(position))
        return most;
    const TEffectNode* emitter = GetLastEmitter(position);
    for (int p = 0; p < emitter->GetNumInputs(); ++p) {
        const TEffectEdge* edge = emitter->GetInput(p);
        if (edge == nullptr || !GetIntParameter(edge->GetSrcNode(), "Per frame max emission", most))
            continue;
        teller = edge->GetSrcNode();
        return most;
    }
    for (int p = 0; p < emitter->GetNumInputs(); ++p) {
        const TEffectEdge* edge = emitter->GetInput(p);
        if (edge == nullptr)
            continue;
        // The group's index stands for its position here.
        const int group = Groups.GetGroupOf(Wiring.Find(edge->GetSrcNode()));
        if (group == position || group == -1 || group >= particleCounts.size())
            continue;
        if (particleCounts[group] <= most)
            continue;
        most = particleCounts[group];
        teller = IsTriggerGroup(group) ? nullptr : GetLastEmitter(group);
    }
    return most;
}

// What an expansion's nodes tell is kept with the group whose index is the expansion's position.
void TScheduleBuilder::FindLifeTimes()
{
    for (int i = 0; i < Expansions.size(); ++i) {
        Groups[i].LifeTime = GetLongestLifeTime(GetSource(i));
        Groups[i].TriggerLifeTime = GetTriggerLifeTime(i);
    }
    AddChildLifeTimes();
}

float TScheduleBuilder::GetLongestLifeTime(const TBuildGroup& group) const
{
    float longest = 0;
    for (const int node : group.Nodes) {
        const float lifeTime = GetNodeLifeTime(Wiring.GetNode(node));
        if (lifeTime == UnboundedLifeTime)
            return UnboundedLifeTime;
        if (lifeTime > longest)
            longest = lifeTime;
    }
    return longest;
}

float TScheduleBuilder::GetTriggerLifeTime(int position) const
{
    if (IsTriggerGroup(position))
        return UnboundedLifeTime;
    const TEffectNode* emitter = GetLastEmitter(position);
    const int input = emitter->GetNodeType()->FindInput("Emission Trigger");
    if (input == -1 || emitter->GetInput(input) == nullptr)
        return UnboundedLifeTime;
    return GetNodeLifeTime(emitter->GetInput(input)->GetSrcNode());
}

// A group lasts as long as itself and then the longest of its children.
void TScheduleBuilder::AddChildLifeTimes()
{
    for (int i = Groups.size() - 1; i >= 0; --i) {
        float longest = 0;
        for (int child = 0; child < Groups.size() && longest != UnboundedLifeTime; ++child) {
            if (Groups[child].ParentGroup != i)
                continue;
            const float lifeTime = Groups[child].LifeTime;
            if (lifeTime == UnboundedLifeTime || lifeTime > longest)
                longest = lifeTime;
        }
        if (longest == UnboundedLifeTime)
            Groups[i].LifeTime = UnboundedLifeTime;
        else
            Groups[i].LifeTime = static_cast<float>(double(Groups[i].LifeTime) + longest);
    }
}

float TScheduleBuilder::GetMaxLifeTime(int position) const
{
    const TBuildGroup& group = GetSource(position);
    if (group.ParentGroup == -1)
        return 0;
    // The parent's index stands for its position here.
    const int parent = group.ParentGroup;
    const bool isFired = parent < Expansions.size() && IsTriggerGroup(parent);
    if (group.LifeTime == UnboundedLifeTime || (isFired && group.TriggerLifeTime == UnboundedLifeTime))
        return 0;
    return isFired ? static_cast<float>(double(group.TriggerLifeTime) + group.LifeTime) : group.LifeTime;
}
