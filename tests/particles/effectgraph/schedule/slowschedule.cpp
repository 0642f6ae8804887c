#include "particles/effectgraph/schedule/slowschedule.h"

#include "support/testsupport.h"

#include "particles/effectgraph/schedule/nodelifetime.h"
#include "particles/effectgraph/simpleparameters.h"

#include <algorithm>

namespace {

struct TStopped
{
    std::string Text;
};

// Null if the node has no such number.
const TNodeIntParameter* FindNumber(const TNodeType& type, const char* name)
{
    return type.FindParameterOf<TNodeIntParameter>(name, PK_INT);
}

} // namespace

TSlowSchedule::TSlowSchedule(const TEffectGraph& graph)
{
    try {
        Make(graph);
    } catch (const TStopped& stopped) {
        Assertion = stopped.Text;
    }
}

bool TSlowSchedule::Has(const TIndices& list, int value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

bool TSlowSchedule::HasAll(const TIndices& list, const TIndices& values)
{
    return std::all_of(values.begin(), values.end(), [&](int value) { return Has(list, value); });
}

void TSlowSchedule::Add(TIndices& list, int value)
{
    if (!Has(list, value))
        list.push_back(value);
}

int TSlowSchedule::Find(const TEffectNode* node) const
{
    const auto at = std::find(Nodes.begin(), Nodes.end(), node);
    return at == Nodes.end() ? -1 : static_cast<int>(at - Nodes.begin());
}

std::vector<int> TSlowSchedule::Targets(int node) const
{
    TIndices result;
    const TEffectNode* from = Nodes[Size(node)];
    for (int o = 0; o < from->GetNumOutputs(); ++o)
        for (int n = 0; n < from->GetNumOutputEdges(o); ++n)
            result.push_back(Find(from->GetOutputEdge(o, n)->GetDstNode()));
    return result;
}

int TSlowSchedule::Source(int node, int input) const
{
    const TEffectEdge* edge = Nodes[Size(node)]->GetInput(input);
    return edge != nullptr ? Find(edge->GetSrcNode()) : -1;
}

void TSlowSchedule::Make(const TEffectGraph& graph)
{
    vector<TEffectNode*> sorted;
    GetSortedNodes(graph, sorted);
    Nodes.assign(sorted.begin(), sorted.end());
    Sets.resize(Nodes.size());
    if (!FormGroups())
        return;
    FindUsages();
    FindParents();
    for (int i = 0; i < static_cast<int>(Built.size()); ++i)
        if (Built[Size(i)].Valid)
            Expansions.push_back(Expand(i));
    FillGroups();
    FindLives();
}

bool TSlowSchedule::FormGroups()
{
    for (int n = 0; n < static_cast<int>(Nodes.size()); ++n) {
        bool isRoot = true;
        for (int p = 0; p < Nodes[Size(n)]->GetNumInputs(); ++p)
            isRoot = isRoot && Nodes[Size(n)]->GetInput(p) == nullptr;
        if (isRoot)
            Visit(n, -1);
    }
    IsRefused = true;
    if (std::all_of(Sets.begin(), Sets.end(), [](const TIndices& set) { return set.empty(); }))
        return false;
    for (int n = 0; n < static_cast<int>(Nodes.size()); ++n) {
        const TIndices& set = Sets[Size(n)];
        size_t g = 0;
        while (g < Built.size() &&
               !(Built[g].Emitters.size() == set.size() && HasAll(Built[g].Emitters, set)))
            ++g;
        if (g == Built.size()) {
            Built.emplace_back();
            Built[g].Emitters = set;
        }
        Built[g].Nodes.push_back(n);
    }
    for (TBuilt& built : Built)
        for (const int n : built.Nodes) {
            built.HasEmitter = built.HasEmitter || Type(n).Category == TU_EMITTER;
            if (Type(n).Category == TU_RENDER) {
                built.HasRender = true;
                built.Priority = static_cast<int>(Type(n).Flags >> 24);
            }
        }
    SortRenderGroups();
    MergeGroups();
    if (!FindValid())
        return false;
    IsRefused = false;
    return true;
}

void TSlowSchedule::Visit(int node, int from)
{
    if (from != -1)
        for (const int member : TIndices(Sets[Size(from)]))
            Add(Sets[Size(node)], member);
    if (Type(node).Category == TU_EMITTER)
        Add(Sets[Size(node)], node);
    for (const int target : Targets(node))
        Visit(target, node);
}

void TSlowSchedule::SortRenderGroups()
{
    for (size_t i = 0; i < Built.size(); ++i)
        for (size_t j = 0; j < Built.size(); ++j)
            if (Built[i].HasRender && Built[j].HasRender && Built[i].Priority < Built[j].Priority)
                std::swap(Built[i], Built[j]);
}

void TSlowSchedule::MergeGroups()
{
    for (size_t i = 0; i < Built.size(); ++i)
        if (Join(i))
            i = 0;
        else if (!Built[i].HasEmitter && !Built[i].HasRender)
            MoveOut(i);
}

bool TSlowSchedule::Join(size_t i)
{
    if (!Built[i].HasEmitter || Built[i].HasRender)
        return false;
    for (TBuilt& other : Built) {
        if (!other.HasRender || other.HasEmitter || !HasAll(other.Emitters, Built[i].Emitters))
            continue;
        other.Nodes.insert(other.Nodes.begin(), Built[i].Nodes.begin(), Built[i].Nodes.end());
        other.HasEmitter = true;
        Built.erase(Built.begin() + static_cast<int>(i));
        return true;
    }
    return false;
}

void TSlowSchedule::MoveOut(size_t i)
{
    for (size_t k = 0; k < Built[i].Nodes.size();) {
        const int node = Built[i].Nodes[k];
        int target = -1;
        if ((Type(node).Flags & FL_PROCESSHINT) == 0) {
            for (int p = 0; p < Type(node).GetNumInputs() && target == -1; ++p)
                target = Search(node);
            target = target != -1 ? FirstGroupWith(target) : -1;
        } else {
            TIndices groups;
            CollectConsumers(node, static_cast<int>(i), groups);
            target = groups.size() == 1 ? groups[0] : -1;
        }
        if (target == -1 || target == static_cast<int>(i))
            ++k;
        else
            Move(node, static_cast<int>(i), target);
    }
}

int TSlowSchedule::Search(int node) const
{
    if (Type(node).Category == TU_EMITTER)
        return -1;
    bool isTied = false;
    for (int p = 0; p < Type(node).GetNumInputs(); ++p)
        isTied = isTied || Type(node).GetTiedOutput(p) != -1;
    if (isTied && !Sets[Size(node)].empty())
        return node;
    const TEffectNode* from = Nodes[Size(node)];
    for (int p = 0; p < Type(node).GetNumInputs(); ++p) {
        const int o = Type(node).GetTiedOutput(p);
        for (int n = 0; o != -1 && n < from->GetNumOutputEdges(o); ++n) {
            const int found = Search(Find(from->GetOutputEdge(o, n)->GetDstNode()));
            if (found != -1)
                return found;
        }
    }
    return -1;
}

void TSlowSchedule::CollectConsumers(int node, int group, TIndices& groups) const
{
    for (const int target : Targets(node))
        for (int g = 0; g < static_cast<int>(Built.size()); ++g) {
            if (!Has(Built[Size(g)].Nodes, target))
                continue;
            if (g == group)
                CollectConsumers(target, group, groups);
            else if (Type(target).Category == TU_EMITTER)
                break;
            else
                Add(groups, g);
        }
}

int TSlowSchedule::FirstGroupWith(int node) const
{
    int g = 0;
    while (!Has(Built[Size(g)].Nodes, node))
        ++g;
    return g;
}

void TSlowSchedule::Move(int node, int from, int to)
{
    TIndices& source = Built[Size(from)].Nodes;
    source.erase(std::find(source.begin(), source.end(), node));
    const TIndices targets = Targets(node);
    for (const int target : targets)
        if (Has(source, target))
            Move(target, from, to);
    TIndices& nodes = Built[Size(to)].Nodes;
    auto at = std::find_if(nodes.begin(), nodes.end(), [&](int n) { return Has(targets, n); });
    nodes.insert(at == nodes.end() ? nodes.begin() : at, node);
}

bool TSlowSchedule::FindValid()
{
    bool any = false;
    for (TBuilt& built : Built) {
        built.Valid = (built.HasEmitter && built.HasRender) ||
                      (built.Emitters.empty() && !built.HasEmitter && !built.HasRender);
        any = any || built.Valid;
    }
    return any;
}

void TSlowSchedule::FindUsages()
{
    Usages.resize(Nodes.size());
    for (const TBuilt& built : Built) {
        TIndices known;
        for (const int node : built.Nodes) {
            int usage = Type(node).Category;
            if (built.Emitters.empty() && !built.HasEmitter && !built.HasRender)
                usage = TU_TRIGGER;
            else if (usage != TU_EMITTER && usage != TU_RENDER) {
                usage = TU_EMITTER;
                for (int p = 0; p < Type(node).GetNumInputs(); ++p) {
                    const int o = Type(node).GetTiedOutput(p);
                    const bool worksOn = o != -1 && Nodes[Size(node)]->GetNumOutputEdges(o) > 0;
                    const int source = Source(node, p);
                    if (worksOn || (Has(known, source) && Usages[Size(source)] == TU_PROCESS))
                        usage = TU_PROCESS;
                }
            }
            Usages[Size(node)] = usage;
            known.push_back(node);
        }
    }
}

void TSlowSchedule::FindParents()
{
    for (TBuilt& built : Built) {
        if (built.Emitters.empty())
            continue;
        size_t j = 0;
        while (j < Built.size() && !(Built[j].Emitters.size() + 1 == built.Emitters.size() &&
                                     HasAll(built.Emitters, Built[j].Emitters)))
            ++j;
        if (j == Built.size())
            throw TStopped{"j < groups.size()"};
        built.Parent = static_cast<int>(j);
    }
}

TSlowSchedule::TExpansion TSlowSchedule::Expand(int built) const
{
    TExpansion x;
    x.Built = built;
    const TIndices& nodes = Built[Size(built)].Nodes;
    for (const int node : nodes) {
        bool feeds = false;
        for (const int target : Targets(node))
            feeds = feeds || Has(nodes, target);
        if (!feeds)
            AddTerminal(x, node);
    }
    for (size_t i = nodes.size(); i-- > 0;)
        Trace(x, nodes[i]);
    return x;
}

// Where an index of none is used, the array stops.
void TSlowSchedule::Require(int attribute)
{
    if (attribute == -1)
        throw TStopped{"n>=0 && n<size()"};
}

int TSlowSchedule::AddRecord(TExpansion& x, int node) const
{
    TRecord record;
    record.Node = node;
    record.Inputs.assign(Size(Type(node).GetNumInputs()), -1);
    record.Outputs.assign(Size(Type(node).GetNumOutputs()), -1);
    record.Resolved.assign(record.Inputs.size(), false);
    x.Records.push_back(record);
    return static_cast<int>(x.Records.size()) - 1;
}

int TSlowSchedule::AddFlow(TExpansion& x, int node, int port, const TNodeParameter* input)
{
    TFlow flow;
    flow.Node = node;
    flow.Port = port;
    flow.InputPort = input;
    x.Flows.push_back(flow);
    return static_cast<int>(x.Flows.size()) - 1;
}

void TSlowSchedule::AddTerminal(TExpansion& x, int node) const
{
    x.Frontier.push_back(AddRecord(x, node));
    TRecord& record = x.Records.back();
    const TEffectNode* terminal = Nodes[Size(node)];
    for (int p = 0; p < terminal->GetNumInputs(); ++p) {
        const TEffectEdge* edge = terminal->GetInput(p);
        const bool outside = edge != nullptr && IsOutside(x, Source(node, p));
        record.Resolved[Size(p)] = edge == nullptr || outside;
        if (edge == nullptr)
            continue;
        const int flow = AddFlow(x, node, p, Type(node).GetInput(p));
        record.Inputs[Size(p)] = flow;
        const int o = Type(node).GetTiedOutput(p);
        if (o != -1) {
            record.Outputs[Size(o)] = flow;
            x.Flows[Size(flow)].Written = true;
        }
        if (outside)
            x.FromOutside[edge].push_back(flow);
    }
    for (int o = 0; o < terminal->GetNumOutputs(); ++o)
        for (int n = 0; n < terminal->GetNumOutputEdges(o); ++n) {
            int& output = record.Outputs[Size(o)];
            if (output == -1)
                output = AddFlow(x, node, -o - 1, nullptr);
            x.ToOutside[terminal->GetOutputEdge(o, n)] = output;
        }
}

void TSlowSchedule::Trace(TExpansion& x, int node) const
{
    const size_t firstNew = x.Records.size();
    const size_t frontierCount = x.Frontier.size();
    for (size_t m = 0; m < frontierCount; ++m)
        TraceEntry(x, x.Frontier[m], node, firstNew);
    for (size_t r = firstNew; r < x.Records.size(); ++r)
        Fill(x, r);
    TIndices left;
    for (const int entry : x.Frontier) {
        const std::vector<bool>& resolved = x.Records[Size(entry)].Resolved;
        if (std::find(resolved.begin(), resolved.end(), false) != resolved.end())
            left.push_back(entry);
    }
    x.Frontier = left;
}

void TSlowSchedule::TraceEntry(TExpansion& x, int entry, int node, size_t firstNew) const
{
    const int user = x.Records[Size(entry)].Node;
    auto outputOf = [&](int p) { return Size(Nodes[Size(user)]->GetInput(p)->GetSrcPort()); };
    TIndices ports;
    for (int p = 0; p < Type(user).GetNumInputs(); ++p)
        if (Source(user, p) == node) {
            ports.push_back(p);
            x.Records[Size(entry)].Resolved[Size(p)] = true;
            Require(x.Records[Size(entry)].Inputs[Size(p)]);
        }
    if (ports.empty())
        return;
    size_t fit = x.Records.size();
    for (size_t q = firstNew; q < x.Records.size() && fit == x.Records.size(); ++q) {
        bool clash = false;
        for (const int p : ports) {
            const int wanted = x.Records[Size(entry)].Inputs[Size(p)];
            const int held = x.Records[q].Outputs[outputOf(p)];
            clash = clash || (x.Flows[Size(wanted)].Written && held != -1 && x.Flows[Size(held)].Written);
        }
        if (!clash)
            fit = q;
    }
    if (fit == x.Records.size())
        x.Frontier.push_back(AddRecord(x, node));
    TIndices kinds;
    for (const TEffectNode* each : Nodes)
        kinds.push_back(each->GetNodeType()->Category);
    for (const int p : ports) {
        const int wanted = x.Records[Size(entry)].Inputs[Size(p)];
        int& output = x.Records[fit].Outputs[outputOf(p)];
        if (output == -1)
            output = wanted;
        else
            Merge(x, kinds, output, wanted);
    }
}

void TSlowSchedule::Fill(TExpansion& x, size_t r) const
{
    TRecord& record = x.Records[r];
    const int node = record.Node;
    const TEffectNode* filled = Nodes[Size(node)];
    for (int p = 0; p < filled->GetNumInputs(); ++p) {
        const TEffectEdge* edge = filled->GetInput(p);
        const bool outside = edge != nullptr && IsOutside(x, Source(node, p));
        record.Resolved[Size(p)] = edge == nullptr || outside;
        const int o = Type(node).GetTiedOutput(p);
        int& input = record.Inputs[Size(p)];
        if (o != -1) {
            input = record.Outputs[Size(o)];
            if (input != -1)
                x.Flows[Size(input)].Written = true;
        } else if (edge != nullptr)
            input = AddFlow(x, node, p, nullptr);
        if (outside)
            x.FromOutside[edge].push_back(input);
        if (input != -1)
            x.Flows[Size(input)].InputPort = Type(node).GetInput(p);
    }
    for (int o = 0; o < filled->GetNumOutputs(); ++o)
        for (int n = 0; n < filled->GetNumOutputEdges(o); ++n) {
            const TEffectEdge* edge = filled->GetOutputEdge(o, n);
            if (!IsOutside(x, Find(edge->GetDstNode())))
                continue;
            int& output = record.Outputs[Size(o)];
            if (output == -1)
                output = AddFlow(x, node, -o - 1, nullptr);
            x.ToOutside[edge] = output;
        }
}

void TSlowSchedule::Merge(TExpansion& x, const std::vector<int>& kinds, int keep, int remove)
{
    if (keep == remove)
        return;
    auto move = [&](int& index) {
        index = index == remove ? keep : index;
        index = index > remove ? index - 1 : index;
    };
    for (TRecord& record : x.Records) {
        std::for_each(record.Inputs.begin(), record.Inputs.end(), move);
        std::for_each(record.Outputs.begin(), record.Outputs.end(), move);
    }
    for (auto& entry : x.FromOutside)
        std::for_each(entry.second.begin(), entry.second.end(), move);
    for (auto& entry : x.ToOutside)
        move(entry.second);
    TFlow& kept = x.Flows[Size(keep)];
    const TFlow& removed = x.Flows[Size(remove)];
    kept.Written = kept.Written || removed.Written;
    if (kinds[Size(removed.Node)] > kinds[Size(kept.Node)]) {
        kept.Node = removed.Node;
        kept.Port = removed.Port;
    }
    x.Flows.erase(x.Flows.begin() + remove);
}

void TSlowSchedule::FillGroups()
{
    Groups.resize(Expansions.size());
    for (size_t i = 0; i < Groups.size(); ++i) {
        const TBuilt& built = Built[Size(Expansions[i].Built)];
        Groups[i].IsTriggerGroup = built.Emitters.empty();
        if (Groups[i].IsTriggerGroup)
            continue;
        if (const TNodeIntParameter* count = FindNumber(Type(built.Emitters.back()), "Particle Count"))
            Groups[i].ParticleCount = count->Get();
    }
    for (size_t i = 0; i < Groups.size(); ++i) {
        if (!Groups[i].IsTriggerGroup)
            CountEmission(i);
        FillTied(i);
        Link(i);
    }
}

void TSlowSchedule::CountEmission(size_t i)
{
    const int emitter = Built[Size(Expansions[i].Built)].Emitters.back();
    for (int p = 0; p < Type(emitter).GetNumInputs(); ++p) {
        const int source = Source(emitter, p);
        const TNodeIntParameter* most =
            source != -1 ? FindNumber(Type(source), "Per frame max emission") : nullptr;
        if (most != nullptr) {
            Groups[i].MaxEmission = most->Get();
            return;
        }
    }
    for (int p = 0; p < Type(emitter).GetNumInputs(); ++p) {
        const int source = Source(emitter, p);
        if (source == -1 || Has(Built[i].Nodes, source))
            continue;
        for (size_t m = 0; m < Built.size() && m < Groups.size(); ++m)
            if (Has(Built[m].Nodes, source) && Groups[m].ParticleCount > Groups[i].MaxEmission)
                Groups[i].MaxEmission = Groups[m].ParticleCount;
    }
}

void TSlowSchedule::FillTied(size_t i)
{
    const TExpansion& x = Expansions[i];
    std::vector<TTied>& tied = Groups[i].TiedNodes;
    for (size_t k = x.Records.size(); k-- > 0;)
        tied.push_back(TTied{x.Records[k].Node, x.Records[k].Inputs, x.Records[k].Outputs});
    for (size_t a = 0; a + 1 < tied.size(); ++a)
        for (size_t b = a + 1; b < tied.size(); ++b)
            if (tied[a].Node > tied[b].Node)
                std::swap(tied[a], tied[b]);
    for (const TFlow& flow : x.Flows) {
        TAttribute attribute;
        if (flow.Port >= 0)
            NameInput(flow.Node, flow.Port, attribute);
        else
            NameOutput(flow.Node, -flow.Port - 1, attribute);
        attribute.Usage = Usages[Size(flow.Node)];
        attribute.Port = flow.InputPort;
        Groups[i].Attributes.push_back(attribute);
    }
}

void TSlowSchedule::NameInput(int node, int port, TAttribute& result) const
{
    if (Type(node).GetTiedOutput(port) != -1)
        return NameOutput(node, Type(node).GetTiedOutput(port), result);
    result.Name = Text(Type(node).GetInput(port)->Name);
    result.Type = Type(node).GetInputType(port);
}

void TSlowSchedule::NameOutput(int node, int port, TAttribute& result) const
{
    const TEffectNode* from = Nodes[Size(node)];
    if (from->GetNumOutputEdges(port) != 0) {
        const TEffectEdge* edge = from->GetOutputEdge(port, 0);
        return NameInput(Find(edge->GetDstNode()), edge->GetDstPort(), result);
    }
    result.Name = Text(Type(node).GetOutput(port).Name);
    result.Type = Type(node).GetOutputType(port);
}

void TSlowSchedule::Link(size_t i)
{
    for (const auto& entry : Expansions[i].FromOutside)
        for (int m = 0; m < static_cast<int>(Expansions.size()); ++m) {
            const auto& supplied = Expansions[Size(m)].ToOutside;
            const auto at = supplied.find(entry.first);
            for (const int attribute : entry.second)
                if (at != supplied.end() && attribute != -1) {
                    Groups[i].Attributes[Size(attribute)].ExternalGroup = m;
                    Groups[i].Attributes[Size(attribute)].ExternalAttrib = at->second;
                }
        }
}

void TSlowSchedule::FindLives()
{
    for (size_t i = 0; i < Groups.size(); ++i) {
        const TBuilt& source = Built[Size(Expansions[i].Built)];
        float longest = 0;
        for (const int node : source.Nodes) {
            const float life = GetNodeLifeTime(Nodes[Size(node)]);
            longest = longest == -1 || life == -1 ? -1 : std::max(longest, life);
        }
        Built[i].Life = longest;
        Built[i].TriggerLife = -1;
        if (source.Emitters.empty())
            continue;
        const int emitter = source.Emitters.back();
        const int input = Type(emitter).FindInput("Emission Trigger");
        if (input != -1 && Source(emitter, input) != -1)
            Built[i].TriggerLife = GetNodeLifeTime(Nodes[Size(Source(emitter, input))]);
    }
    for (size_t i = Built.size(); i-- > 0;) {
        float longest = 0;
        for (const TBuilt& child : Built)
            if (child.Parent == static_cast<int>(i))
                longest = longest == -1 || child.Life == -1 ? -1 : std::max(longest, child.Life);
        Built[i].Life = longest == -1 ? -1 : Built[i].Life + longest;
    }
    for (size_t i = 0; i < Groups.size(); ++i)
        Groups[i].MaxLifeTime = MaxLife(i);
}

float TSlowSchedule::MaxLife(size_t i) const
{
    const TBuilt& built = Built[Size(Expansions[i].Built)];
    if (built.Parent == -1)
        return 0;
    const bool isThere = Size(built.Parent) < Expansions.size();
    if (!isThere || !Groups[Size(built.Parent)].IsTriggerGroup)
        return built.Life == -1 ? 0 : built.Life;
    return built.Life == -1 || built.TriggerLife == -1 ? 0 : built.TriggerLife + built.Life;
}
