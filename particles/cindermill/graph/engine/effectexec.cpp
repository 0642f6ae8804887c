#include "particles/cindermill/graph/engine/effectexec.h"

#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/cindermill/graph/engine/execwatch.h"
#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/effectgraph/error.h"
#include "particles/effectgraph/export/exportdata.h"

namespace {

// What a graph may ask of one frame before it counts as a mistake: runs of a group's emitters, and particles
// born.
constexpr int64_t MaxInstances = 1 << 24;
constexpr int64_t MaxBirths = 1 << 26;
// Products of particle counts stop growing here, far above every number of instances.
constexpr int64_t MaxProduct = int64_t{1} << 31;

int64_t MultiplyCounts(int64_t product, int count)
{
    product *= count;
    return product < MaxProduct ? product : MaxProduct;
}

} // namespace

TEffectExec::TEffectExec(TExecServices& services) : Services(services) {}

TEffectExec::~TEffectExec()
{
    Clear();
}

void TEffectExec::SetSeed(uint32_t seed)
{
    HasSeed = true;
    Seed = seed;
}

bool TEffectExec::Init(const TEffectSchedule& schedule, TErrorList& errors, bool toolMode)
{
    return InitWith(schedule, errors, toolMode, true);
}

bool TEffectExec::InitWithoutRender(const TEffectSchedule& schedule, TErrorList& errors)
{
    return InitWith(schedule, errors, true, false);
}

bool TEffectExec::InitWith(const TEffectSchedule& schedule, TErrorList& errors, bool toolMode,
                           bool withRender)
{
    Clear();
    if (schedule.GetNumGroups() > MaxGroups) {
        errors.Add(
            new TError("Too many groups in the schedule (%d). Maximum is 32", schedule.GetNumGroups()));
        return false;
    }
    Schedule = &schedule;
    if (HasSeed)
        Randoms.Init(schedule, Seed);
    if (!InitNodes(errors, withRender))
        return false;
    if (toolMode)
        InitGroups();
    InitExternals();
    NumBorn.resize(schedule.GetNumGroups());
    ForgetBirths();
    Time = 0;
    ++NumStarts;
    Inited = true;
    return true;
}

bool TEffectExec::InitNodes(TErrorList& errors, bool withRender)
{
    bool good = true;
    for (int n = 0; n < Schedule->GetNumNodes(); ++n) {
        if (!withRender && Schedule->GetNodeUsage(n) == TU_RENDER) {
            Nodes.push_back(nullptr);
            continue;
        }
        errors.SetSource(Schedule->GetNode(n)->GetNodeType(), -1);
        Nodes.push_back(TEffectExecNode::Create(Schedule->GetNode(n), this, errors));
        good = good && Nodes[n] != nullptr;
    }
    errors.ClearSource();
    return good;
}

void TEffectExec::InitGroups()
{
    int64_t total = 0;
    for (int g = 0; g < Schedule->GetNumGroups(); ++g)
        total += TParticleBuffer::CountBytes(*Schedule, g, BirthsApart);
    ASSERT_TEXT_MSG(total <= TParticleBuffer::MaxBytes, "total <= TParticleBuffer::MaxBytes",
                    "The effect needs too much memory for its particles");
    for (int g = 0; g < Schedule->GetNumGroups(); ++g) {
        Groups.push_back(new TParticleBuffer);
        Groups[g]->Init(*Schedule, g, BirthsApart);
    }
}

void TEffectExec::InitExternals()
{
    const int numGroups = Schedule->GetNumGroups();
    ExternalGroups.resize(numGroups);
    ExternalIndex.resize(numGroups);
    for (int g = 0; g < numGroups; ++g) {
        ExternalGroups[g] = 0;
        ExternalIndex[g] = 0;
        for (int a = 0; a < Schedule->GetNumAttributes(g); ++a) {
            const int h = Schedule->GetAttributeExternalGroup(g, a);
            if (h != -1)
                ExternalGroups[g] |= 1u << (h & 31);
        }
    }
}

void TEffectExec::Clear()
{
    Nodes.clear();
    Groups.clear();
    ExternalGroups.clear();
    ExternalIndex.clear();
    Schedule = nullptr;
    Inited = false;
}

int TEffectExec::GetNumParticles(int group) const
{
    return Groups[group]->GetNumParticles();
}

TEffectExecNode* TEffectExec::Place(int group, int tied)
{
    TEffectExecNode* node = Nodes[Schedule->GetTiedNode(group, tied)];
    if (node != nullptr)
        node->SetPosition(group, tied, Groups.empty() ? nullptr : Groups[group]);
    return node;
}

int TEffectExec::GetTiedUsage(int group, int tied) const
{
    return Schedule->GetNodeUsage(Schedule->GetTiedNode(group, tied));
}

void TEffectExec::ForgetBirths()
{
    Births = 0;
    for (int& born : NumBorn)
        born = 0;
}

void TEffectExec::Update(float dt)
{
    if (!Inited || Groups.empty())
        return;
    ForgetBirths();
    for (int g = 0; g < GetNumGroups(); ++g) {
        RunEmitters(g, dt);
        RunProcesses(g, dt);
    }
    for (TParticleBuffer* group : Groups)
        group->RemoveDead();
    Time = static_cast<float>(static_cast<double>(Time) + dt);
}

// Once for each combination of the parents' particles.
int TEffectExec::CountInstances(int group) const
{
    int64_t repeat = 1;
    for (int h = 0; h < GetNumGroups(); ++h)
        if (IsParent(group, h) && !Schedule->IsTriggerGroup(h))
            repeat = MultiplyCounts(repeat, GetNumParticles(h));
    ASSERT_TEXT_MSG(repeat <= MaxInstances, "repeat <= MaxInstances",
                    TempFormat("The emitters of group %d are fired by too many particles", group));
    return static_cast<int>(repeat);
}

void TEffectExec::CheckBirths(int64_t births, int group) const
{
    ASSERT_TEXT_MSG(births <= MaxBirths, "Births <= MaxBirths",
                    TempFormat("Too many particles are born in one frame, the last in group %d", group));
}

int TEffectExec::CountEmission(int group, int tied)
{
    const TEffectExecNode* node = Place(group, tied);
    const int count = node != nullptr && !node->IsBypassed() ? node->CountEmission() : 0;
    const int most = Groups[group]->GetBufferSize();
    return count < most ? (count > 0 ? count : 0) : most;
}

// Too many births are known before the first of them is computed. Where there cannot be too many, nothing is
// counted.
void TEffectExec::CountEmissions(int group, int repeat)
{
    int numEmitters = 0;
    for (int t = 0; t < Schedule->GetNumTiedNodes(group); ++t)
        numEmitters += GetTiedUsage(group, t) == TU_EMITTER ? 1 : 0;
    const int64_t most = MultiplyCounts(MultiplyCounts(repeat, numEmitters), Groups[group]->GetBufferSize());
    int64_t births = Births;
    for (int instance = 0; instance < repeat && Births + most > MaxBirths; ++instance) {
        SelectExternal(group, instance);
        FetchExternals(group);
        for (int t = 0; t < Schedule->GetNumTiedNodes(group); ++t)
            if (GetTiedUsage(group, t) == TU_EMITTER)
                births += CountEmission(group, t);
        CheckBirths(births, group);
    }
}

void TEffectExec::RunEmitters(int group, float dt)
{
    const int repeat = CountInstances(group);
    Groups[group]->SetFiring(true);
    CountEmissions(group, repeat);
    for (int instance = 0; instance < repeat; ++instance) {
        SelectExternal(group, instance);
        FetchExternals(group);
        for (int t = 0; t < Schedule->GetNumTiedNodes(group); ++t)
            if (GetTiedUsage(group, t) == TU_EMITTER)
                RunEmit(group, t, instance, dt);
    }
    Groups[group]->SetFiring(false);
}

void TEffectExec::RunProcesses(int group, float dt)
{
    for (int t = 0; t < Schedule->GetNumTiedNodes(group); ++t) {
        const int usage = GetTiedUsage(group, t);
        if (usage == TU_TRIGGER || usage == TU_PROCESS)
            RunExecute(group, t, dt);
    }
}

// Mixed-radix counting over the parents, the first one fastest.
void TEffectExec::SelectExternal(int group, int instance)
{
    int64_t radix = 1;
    for (int h = 0; h < GetNumGroups(); ++h) {
        if (!IsParent(group, h))
            continue;
        const int n = GetNumParticles(h);
        ExternalIndex[h] = n >= 1 ? static_cast<int>(instance / radix % n) : 0;
        if (n >= 1)
            radix = MultiplyCounts(radix, n);
    }
}

void TEffectExec::FetchExternals(int group)
{
    for (int a = 0; a < Schedule->GetNumAttributes(group); ++a)
        if (Schedule->GetAttributeUsage(group, a) == TU_EMITTER &&
            Schedule->GetAttributeExternalGroup(group, a) != -1)
            FetchExternal(group, a, 0, 1);
}

void TEffectExec::FetchExternal(int group, int attrib, int first, int count)
{
    const int e = Schedule->GetAttributeExternalGroup(group, attrib);
    const int supplier = Schedule->GetAttributeExternalAttrib(group, attrib);
    const float* source =
        Groups[e]->GetAttribute(supplier, Schedule->GetAttributeUsage(e, supplier), ExternalIndex[e]);
    FillAttribute(group, attrib, first, count, Schedule->GetAttributeType(e, supplier), source);
}

void TEffectExec::FillAttribute(int group, int attrib, int first, int count, int type, const float* value)
{
    const int usage = Schedule->GetAttributeUsage(group, attrib);
    const int ownType = Schedule->GetAttributeType(group, attrib);
    Groups[group]->ForEachValue(attrib, usage, first, count,
                                [&](float* dest) { ConvertValue(type, ownType, value, dest); });
}

void TEffectExec::RunEmit(int group, int tied, int instance, float dt)
{
    TEffectExecNode* node = Place(group, tied);
    if (node != nullptr && !node->IsBypassed())
        node->Emit(instance, dt);
}

void TEffectExec::RunExecute(int group, int tied, float dt)
{
    TEffectExecNode* node = Place(group, tied);
    if (node == nullptr)
        return;
    const int count = GetTiedUsage(group, tied) <= TU_EMITTER ? 1 : GetNumParticles(group);
    // Downwards, so that the dead are listed from the last to the first.
    if (node->IsBypassed())
        node->BypassUp(count);
    else
        node->ExecuteDown(count, dt);
    if (Watch != nullptr)
        Watch->NodeRan(group, tied, count);
}

void TEffectExec::AddParticles(int group, int instance, int count)
{
    TParticleBuffer* buffer = Groups[group];
    const int due = count;
    if (count > buffer->GetBufferSize())
        count = buffer->GetBufferSize();
    if (count <= 0)
        return;
    Births += count;
    CheckBirths(Births, group);
    NumBorn[group] += count;
    const bool firing = buffer->SetFiring(false);
    const int first = buffer->AddParticles(count);
    SelectExternal(group, instance);
    for (int a = 0; a < Schedule->GetNumAttributes(group); ++a)
        InitAttribute(group, a, first, count);
    RunBirths(group, first, count);
    buffer->SetFiring(firing);
    if (Watch != nullptr)
        Watch->ParticlesBorn(group, due, count);
}

void TEffectExec::InitAttribute(int group, int attrib, int first, int count)
{
    if (Schedule->GetAttributeExternalGroup(group, attrib) != -1) {
        FetchExternal(group, attrib, first, count);
        return;
    }
    TPortValue value;
    const TNodeParameter* port = Schedule->GetAttributePort(group, attrib);
    if (port != nullptr)
        port->GetValue(value.GetFloats());
    FillAttribute(group, attrib, first, count, Schedule->GetAttributeType(group, attrib), value.GetFloats());
}

// The group's emitter nodes compute for every new particle.
void TEffectExec::RunBirths(int group, int first, int count)
{
    Groups[group]->SetEmitBase(first);
    for (int t = 0; t < Schedule->GetNumTiedNodes(group); ++t) {
        if (GetTiedUsage(group, t) != TU_EMITTER)
            continue;
        TEffectExecNode* node = Place(group, t);
        if (node == nullptr)
            continue;
        if (node->IsBypassed())
            node->BypassUp(count);
        else
            node->ExecuteUp(count, 0);
        if (Watch != nullptr)
            Watch->NodeRanAtBirth(group, t, count);
    }
    Groups[group]->SetEmitBase(0);
}

void TEffectExec::KillParticle(int group, int index)
{
    if (!Schedule->IsTriggerGroup(group))
        Groups[group]->KillParticle(index);
}

void TEffectExec::ExportNode(TExportData* exportdata, TErrorList& errors, int group, int tied)
{
    TEffectExecNode* node = Place(group, tied);
    if (node == nullptr)
        return;
    errors.SetSource(Schedule->GetNode(Schedule->GetTiedNode(group, tied))->GetNodeType(), group);
    exportdata->SetCurrent(group, tied);
    if (node->IsBypassed())
        exportdata->ExportBypassed();
    else
        node->Export(*exportdata, errors);
    exportdata->Flush();
    ASSERT(exportdata->OutputEmpty());
}

bool TEffectExec::Export(TExportData& exportData, TErrorList& errors)
{
    for (int g = 0; g < Schedule->GetNumGroups(); ++g)
        for (int t = 0; t < Schedule->GetNumTiedNodes(g); ++t)
            ExportNode(&exportData, errors, g, t);
    errors.ClearSource();
    if (!exportData.Build(errors))
        return false;
    // A broken policy is a warning unless the artist made it a fault.
    const int flags = Services.GetPolicyFlags();
    return exportData.CheckPolicies(flags, errors) || (flags & PF_PREVENTEXPORT) == 0;
}

void TEffectExec::Render(const TSceneView& view, int onlyGroup)
{
    if (!Inited || Groups.empty())
        return;
    for (int g = 0; g < GetNumGroups(); ++g)
        if (onlyGroup == AllGroups || onlyGroup == g)
            RenderGroup(g, view);
}

void TEffectExec::RenderGroup(int group, const TSceneView& view)
{
    bool uploaded = false;
    for (int t = 0; t < Schedule->GetNumTiedNodes(group); ++t) {
        if (GetTiedUsage(group, t) != TU_RENDER)
            continue;
        TEffectExecNode* node = Place(group, t);
        if (node == nullptr || node->IsBypassed())
            continue;
        if (!uploaded)
            Groups[group]->Upload();
        uploaded = true;
        node->Render(view);
    }
}
