#include "particles/cindermill/batch/lint/lintpopulation.h"

#include "particles/cindermill/batch/lint/lintlimits.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/graph/engine/effectexec.h"
#include "particles/cindermill/graph/engine/inputreader.h"

#include <cmath>

TLintPopulation::TLintPopulation(const TEffectSchedule& schedule, const TLintOptions& options)
    : Schedule(schedule), Options(options)
{
    Groups.resize(schedule.GetNumGroups());
}

void TLintPopulation::BeginRun(TEffectExec& exec)
{
    Exec = &exec;
    for (TGroup& group : Groups) {
        group.RunLost = 0;
        group.RunBorn = 0;
    }
}

void TLintPopulation::BeginFrame()
{
    for (int g = 0; g < Groups.size(); ++g) {
        Groups[g].FrameDue = 0;
        Groups[g].FrameBorn = 0;
        Groups[g].FrameStart = Exec->GetNumParticles(g);
    }
}

bool TLintPopulation::EndsLives(const TEffectNode& node) const
{
    return !node.GetNodeType()->IsBypassed() && (IsClass(node, "TAge") || IsClass(node, "TPrune"));
}

void TLintPopulation::NodeRan(int group, int tied, int count)
{
    TEffectNode& node = *Schedule.GetNode(Schedule.GetTiedNode(group, tied));
    if (!EndsLives(node) || !IsClass(node, "TAge") || node.GetNumInputs() <= MaxAgeInput)
        return;
    TInputReader reader(*Exec, node);
    reader.SetPosition(group, tied, Exec->GetGroup(group));
    double& longest = Groups[group].LongestLife;
    for (int i = 0; i < count; ++i) {
        const double life = double(reader.ReadValue(MaxAgeInput, i)[0]);
        if (!(life <= longest))
            longest = std::isfinite(life) ? life : EndlessLife;
    }
}

void TLintPopulation::ParticlesBorn(int group, int due, int count)
{
    Groups[group].FrameDue += due;
    Groups[group].FrameBorn += count;
}

void TLintPopulation::EndFrame()
{
    const TLintMoment& moment = GetMoment();
    RunTime = moment.Time > RunTime ? moment.Time : RunTime;
    for (int g = 0; g < Groups.size(); ++g) {
        TGroup& group = Groups[g];
        const int capacity = Exec->GetGroup(g)->GetBufferSize();
        // Nobody leaves before the frame's end but those that give way.
        const double wanted = group.FrameStart + group.FrameBorn;
        const double held = wanted < capacity ? wanted : capacity;
        group.RunLost += group.FrameStart + group.FrameDue - held;
        group.Died += held - Exec->GetNumParticles(g);
        if (held >= capacity && group.Peak < capacity)
            group.Full = moment;
        group.Peak = held > group.Peak ? static_cast<int>(held) : group.Peak;
        if (group.FrameDue > 0) {
            group.FirstBirth =
                group.Born == 0 || moment.Time < group.FirstBirth ? moment.Time : group.FirstBirth;
            group.LastBirth = moment.Time > group.LastBirth ? moment.Time : group.LastBirth;
            group.RunBorn += group.FrameDue;
            group.Born = group.RunBorn > group.Born ? group.RunBorn : group.Born;
        }
        if (group.FrameDue > group.MostBirths)
            group.MostBirths = group.FrameDue;
        if (group.FrameDue > Schedule.GetMaxEmission(g) && !group.HasOver) {
            group.HasOver = true;
            group.Over = moment;
        }
    }
}

void TLintPopulation::EndRun()
{
    for (TGroup& group : Groups)
        group.Lost = group.RunLost > group.Lost ? group.RunLost : group.Lost;
}

bool TLintPopulation::HasEnd(int group) const
{
    for (int t = 0; t < Schedule.GetNumTiedNodes(group); ++t) {
        const int node = Schedule.GetTiedNode(group, t);
        if (Schedule.GetNodeUsage(node) == TU_PROCESS && EndsLives(*Schedule.GetNode(node)))
            return true;
    }
    return false;
}

// How long the oldest particle could have lived.
float TLintPopulation::GetLived(const TGroup& group) const
{
    return RunTime - group.FirstBirth;
}

bool TLintPopulation::MakesRoomForChildren(int group) const
{
    const int capacity = Schedule.GetParticleCount(group);
    for (int child = 0; child < Groups.size(); ++child) {
        if (Schedule.GetMaxEmission(child) != capacity || 2.0 * Groups[child].MostBirths < capacity)
            continue;
        for (int a = 0; a < Schedule.GetNumAttributes(child); ++a)
            if (Schedule.GetAttributeExternalGroup(child, a) == group)
                return true;
    }
    return false;
}

bool TLintPopulation::IsStillBearing(const TGroup& group) const
{
    constexpr float lateShare = 0.75f;
    return group.LastBirth > RunTime * lateShare;
}

// Whether the runs are too short to see the particles die.
bool TLintPopulation::IsBeyond(const TGroup& group) const
{
    return group.Born > 0 && group.LongestLife < EndlessLife &&
           group.LongestLife + 2 * double(Options.Step) >= double(GetLived(group));
}

bool TLintPopulation::IsEndless(const TGroup& group, bool hasEnd) const
{
    if (group.Born == 0 || group.Died > 0)
        return false;
    if (!hasEnd || group.LongestLife >= EndlessLife)
        return true;
    // Those that gave way to others might have died.
    return group.Lost == 0 && !IsBeyond(group);
}

void TLintPopulation::Tell(TLintReport& report)
{
    for (int g = 0; g < Groups.size(); ++g) {
        if (Schedule.IsTriggerGroup(g) || Exec == nullptr)
            continue;
        const bool endless = IsEndless(Groups[g], HasEnd(g));
        TellCapacity(report, g, endless);
        TellLife(report, g, endless);
        TellEmission(report, g);
    }
}

void TLintPopulation::TellCapacity(TLintReport& report, int index, bool endless)
{
    const TGroup& group = Groups[index];
    const int capacity = Schedule.GetParticleCount(index);
    if (group.Lost > 0 && !endless) {
        TFinding& finding = report.AddGroup(
            LK_CAPACITYLOST, index,
            "Particle Count %d is reached first at %.2f s (seed %d), and %.0f particles vanish "
            "or are not born for it",
            capacity, double(group.Full.Time), group.Full.Seed, group.Lost);
        AddNumber(finding, "capacity", capacity);
        AddNumber(finding, "peak", group.Peak);
        AddNumber(finding, "lost", group.Lost);
        AddNumber(finding, "frame", group.Full.Frame);
        AddNumber(finding, "time", double(group.Full.Time));
        AddNumber(finding, "seed", group.Full.Seed);
    } else if (group.Peak >= capacity && group.Born > 0 && !endless) {
        TFinding& finding =
            report.AddGroup(LK_CAPACITYFULL, index, "Particle Count %d is reached first at %.2f s (seed %d)",
                            capacity, double(group.Full.Time), group.Full.Seed);
        AddNumber(finding, "capacity", capacity);
        AddNumber(finding, "peak", group.Peak);
        AddNumber(finding, "frame", group.Full.Frame);
        AddNumber(finding, "time", double(group.Full.Time));
        AddNumber(finding, "seed", group.Full.Seed);
    }
    // While the group still grows, nothing is known of its peak.
    const bool grows = group.Died == 0 && IsStillBearing(group);
    if (group.Born == 0 || 2.0 * group.Peak >= capacity || grows || MakesRoomForChildren(index))
        return;
    TFinding& finding = report.AddGroup(LK_CAPACITYWASTE, index,
                                        "Particle Count is %d, but there are never more than %d particles",
                                        capacity, group.Peak);
    AddNumber(finding, "capacity", capacity);
    AddNumber(finding, "peak", group.Peak);
}

void TLintPopulation::TellLife(TLintReport& report, int index, bool endless)
{
    const TGroup& group = Groups[index];
    if (endless) {
        const bool stays = group.Lost == 0 && !IsStillBearing(group);
        TFinding& finding =
            report.AddGroup(stays ? LK_LIFESTAYS : LK_LIFEENDLESS, index,
                            "None of %.0f particles dies in %.2f s: of %d at most, %.0f give way to others",
                            group.Born, double(RunTime), Schedule.GetParticleCount(index), group.Lost);
        AddNumber(finding, "born", group.Born);
        AddNumber(finding, "capacity", Schedule.GetParticleCount(index));
        AddNumber(finding, "peak", group.Peak);
        AddNumber(finding, "lost", group.Lost);
        if (group.Peak >= Schedule.GetParticleCount(index))
            AddNumber(finding, "time", double(group.Full.Time));
        return;
    }
    if (group.Died > 0 || !IsBeyond(group) || !HasEnd(index))
        return;
    TFinding& finding =
        report.AddGroup(LK_LIFEBEYOND, index,
                        "Particles live up to %g s, of which a run sees %g: --seconds makes it "
                        "longer",
                        group.LongestLife, double(GetLived(group)));
    AddNumber(finding, "life", group.LongestLife);
    AddNumber(finding, "seen", double(GetLived(group)));
}

void TLintPopulation::TellEmission(TLintReport& report, int index)
{
    const TGroup& group = Groups[index];
    const int most = Schedule.GetMaxEmission(index);
    // No number of births, which is told of its field.
    if (most < 0)
        return;
    if (group.Born == 0 && !IsEmissionTold(report, index) && !HasSilentParent(index)) {
        TFinding& finding =
            report.AddGroup(LK_EMISSIONNONE, index, "No particle is born in %.2f s under %d seeds",
                            double(RunTime), Options.NumSeeds);
        AddNumber(finding, "seconds", double(RunTime));
        AddNumber(finding, "seeds", Options.NumSeeds);
    }
    if (!group.HasOver)
        return;
    TFinding& finding =
        report.AddGroup(LK_EMISSIONOVER, index,
                        "Up to %.0f particles are born in one frame, first more than %d at %.2f s (seed %d): "
                        "the file tells the console of %d at most",
                        group.MostBirths, most, double(group.Over.Time), group.Over.Seed, most);
    AddNumber(finding, "births", group.MostBirths);
    AddNumber(finding, "most", most);
    AddNumber(finding, "frame", group.Over.Frame);
    AddNumber(finding, "time", double(group.Over.Time));
    AddNumber(finding, "seed", group.Over.Seed);
}

// That an emission node is bypassed, or that what is to fire it belongs to no group, is told by itself.
bool TLintPopulation::IsEmissionTold(const TLintReport& report, int group) const
{
    bool found = false;
    for (int t = 0; t < Schedule.GetNumTiedNodes(group); ++t) {
        const TEffectNode& node = *Schedule.GetNode(Schedule.GetTiedNode(group, t));
        if (node.GetNodeType()->Category != TU_EMITTER)
            continue;
        const TEffectEdge* trigger = node.GetNumInputs() > 0 ? node.GetInput(0) : nullptr;
        const bool isDropped = trigger != nullptr && report.FindGroup(*trigger->GetSrcNode()) == -1;
        if (!node.GetNodeType()->IsBypassed() && !isDropped)
            return false;
        found = true;
    }
    return found;
}

// Where nothing fires the group, its parent is what is to be mended.
bool TLintPopulation::HasSilentParent(int group) const
{
    for (int a = 0; a < Schedule.GetNumAttributes(group); ++a) {
        const int parent = Schedule.GetAttributeExternalGroup(group, a);
        if (parent != -1 && !Schedule.IsTriggerGroup(parent) && Groups[parent].Born == 0)
            return true;
    }
    return false;
}
