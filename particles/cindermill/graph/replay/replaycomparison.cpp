#include "particles/cindermill/graph/replay/replaycomparison.h"

#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/cindermill/graph/replay/differencesource.h"
#include "particles/cindermill/graph/replay/patchcomparison.h"
#include "particles/cindermill/graph/replay/replaynotes.h"
#include "particles/cindermill/graph/replay/sharedcomparison.h"
#include "particles/cindermill/graph/replay/stagecomparison.h"
#include "particles/cindermill/graph/replay/tablecomparison.h"
#include "particles/effectgraph/runcollecting.h"

#include <cmath>

namespace {

// Behind arithmetic of another kind, of a value's largest component.
constexpr double Tolerance = 1e-5;

double GetLargest(const float* value, int count)
{
    double largest = 0;
    for (int i = 0; i < count; ++i)
        if (std::fabs(static_cast<double>(value[i])) > largest)
            largest = std::fabs(static_cast<double>(value[i]));
    return largest;
}
} // namespace

int CountReplayFrames(const TEffectSchedule& schedule, float dt)
{
    constexpr int extra = 50;
    constexpr int least = 100;
    constexpr int most = 1000;
    double life = 0;
    for (int group = 0; group < schedule.GetNumGroups(); ++group)
        if (schedule.GetMaxLifeTime(group) > life)
            life = schedule.GetMaxLifeTime(group);
    const double needed = dt > 0 ? std::ceil(life / dt) + extra : least;
    return needed < least ? least : needed > most ? most : static_cast<int>(needed);
}

TReplayComparison::TReplayComparison(const TEffectSchedule& schedule, TExecServices& services)
    : Schedule(schedule), Services(services), Engine(Services)
{
    Engine.SetBirthsApart(true);
    Engine.SetTexturesUsed(false);
}

TReplayComparison::~TReplayComparison()
{
    Engine.Clear();
}

bool TReplayComparison::InitEngine(const TReplayOptions& options, TErrorList& errors)
{
    Engine.SetSeed(options.Seed);
    const bool inited = RunCollecting(errors, [&] { return Engine.Init(Schedule, errors, true); });
    if (!inited)
        Engine.Clear();
    return inited;
}

bool TReplayComparison::Export(TErrorList& errors)
{
    Bytes.clear();
    if (!InitEngine(TReplayOptions(), errors))
        return false;
    return RunCollecting(errors, [&] {
        TExportData data(Schedule);
        if (!Engine.Export(data, errors))
            return false;
        data.GetEfx(Bytes);
        return true;
    });
}

bool TReplayComparison::LoadBytes(TEfxFile& file, TErrorList& errors) const
{
    TString fault;
    if (!file.LoadBytes(Bytes, fault))
        errors.Add(new TError("The exported file is not sound: %s", fault.Print()));
    else if (file.GetGroups().size() != Schedule.GetNumGroups())
        errors.Add(new TError("The exported file has %d groups and the effect %d", file.GetGroups().size(),
                              Schedule.GetNumGroups()));
    else
        return true;
    return false;
}

bool TReplayComparison::Run(const TReplayOptions& options, TErrorList& errors)
{
    if (!Begin(options, errors))
        return false;
    while (!IsComplete())
        if (!RunFrame(errors))
            return false;
    while (!IsEnded())
        if (!RunEnd(errors))
            return false;
    return true;
}

bool TReplayComparison::Begin(const TReplayOptions& options, TErrorList& errors)
{
    Sources.Reset();
    Report = TReplayReport();
    Replay.Reset();
    File = TEfxFile();
    if (!LoadBytes(File, errors) || !InitEngine(options, errors))
        return false;
    Dt = options.Dt;
    NumFrames = options.Frames == TReplayOptions::FramesOfTheLongestLife ? CountReplayFrames(Schedule, Dt)
                                                                         : options.Frames;
    return RunCollecting(errors, [&] {
        Replay.Reset(new TEffectReplay(File, Schedule, options.Seed));
        AddReplayNotes(Schedule, File, Report);
        CompareStages(Engine, File, Report);
        CompareTables(Engine, *Replay, Report);
        ComparePatches(Schedule, File, Report);
        CompareShared(Schedule, File, Report);
        ListAttributes();
        return true;
    });
}

bool TReplayComparison::RunFrame(TErrorList& errors)
{
    return RunCollecting(errors, [&] {
        CompareFrame();
        return true;
    });
}

bool TReplayComparison::RunEnd(TErrorList& errors)
{
    return RunCollecting(errors, [&] {
        if (Sources.Get() != nullptr) {
            Sources->FindNext();
            return true;
        }
        AddRefusalNotes(*Replay, Report);
        Replay.Reset();
        Sources.Reset(new TDifferenceSources(Schedule, Report));
        return true;
    });
}

void TReplayComparison::ListAttributes()
{
    Attributes.clear();
    InStep.clear();
    for (int group = 0; group < Schedule.GetNumGroups(); ++group) {
        InStep.push_back(true);
        for (int attrib = 0; attrib < Schedule.GetNumAttributes(group); ++attrib) {
            if (attrib == Replay->GetTriggerInput(group))
                continue;
            TAttribute attribute;
            attribute.Group = group;
            attribute.Attribute = attrib;
            attribute.Usage = Schedule.GetAttributeUsage(group, attrib);
            attribute.MayBeUndefined =
                attribute.Usage == TU_EMITTER && Schedule.GetAttributeExternalGroup(group, attrib) != -1;
            attribute.NumComponents = GetTypeFloats(Schedule.GetAttributeType(group, attrib));
            Attributes.push_back(attribute);
        }
    }
}

void TReplayComparison::CompareFrame()
{
    Frame = Report.NumFrames + 1;
    Engine.Update(Dt);
    Replay->Update(Dt);
    for (int group = 0; group < Schedule.GetNumGroups(); ++group)
        InStep[group] = CompareCounts(group) && InStep[group];
    for (const TAttribute& attribute : Attributes)
        if (InStep[attribute.Group])
            CompareAttribute(attribute);
    ++Report.NumFrames;
}

// What is told of single particles makes sense only where the particles are the same.
bool TReplayComparison::CompareCounts(int group)
{
    if (!Replay->IsCountKnown(group)) {
        DifferInCount(group, DK_UNKNOWN, Engine.GetNumParticles(group), 0);
        return false;
    }
    const int count = Schedule.IsTriggerGroup(group) ? 1 : Engine.GetNumParticles(group);
    Report.NumParticles += count;
    if (count == Replay->GetNumParticles(group))
        return true;
    DifferInCount(group, DK_COUNT, count, Replay->GetNumParticles(group));
    return false;
}

void TReplayComparison::CompareAttribute(const TAttribute& attribute)
{
    const int count = Replay->GetNumParticles(attribute.Group);
    if (count == 0)
        return;
    const TReplayColumns cells = Replay->GetCells(attribute.Group);
    TColumns columns;
    for (int i = 0; i < attribute.NumComponents; ++i) {
        const int cell = Replay->FindCell(attribute.Group, attribute.Attribute, i);
        columns.Components[i] = cell != -1 ? cells[cell] : TReplayColumn();
    }
    int particle = 0;
    Engine.GetGroup(attribute.Group)
        ->ForEachValue(attribute.Attribute, attribute.Usage, 0, count, [&](const float* value) {
            CompareValue(TShown{attribute, value, particle++}, columns);
        });
}

void TReplayComparison::CompareValue(const TShown& shown, const TColumns& columns)
{
    for (int i = 0; i < shown.Attribute.NumComponents; ++i) {
        const TReplayColumn& column = columns.Components[i];
        TReplayCell cell;
        if (column.Values != nullptr)
            cell = TReplayCell{column.Values[shown.Particle], column.States[shown.Particle]};
        if (cell.State == CS_DEFINED && shown.Value[i] == cell.Value) {
            ++Report.NumCompared;
            ++Report.NumEqual;
        } else {
            CompareComponent(shown, i, cell);
        }
    }
}

void TReplayComparison::CompareComponent(const TShown& shown, int component, const TReplayCell& cell)
{
    if (cell.State == CS_UNDEFINED && shown.Attribute.MayBeUndefined)
        return;
    if (cell.State == CS_UNDEFINED || cell.State == CS_UNKNOWN) {
        ++Report.NumCompared;
        const bool isUnknown = cell.State == CS_UNKNOWN;
        ++(isUnknown ? Report.NumUnknown : Report.NumUndefined);
        Differ(shown, component, isUnknown ? DK_UNKNOWN : DK_UNDEFINED, 0);
        return;
    }
    const float preview = shown.Value[component];
    if (Report.Compare(preview, cell.Value))
        return;
    const double largest = GetLargest(shown.Value, shown.Attribute.NumComponents);
    if (cell.State == CS_NEAR && std::isfinite(largest) &&
        GetDistance(preview, cell.Value) <= Tolerance * largest)
        ++Report.NumEqual;
    else
        Differ(shown, component, DK_VALUE, cell.Value);
}

void TReplayComparison::Differ(const TShown& shown, int component, TDifferenceKind kind, float replay)
{
    const int group = shown.Attribute.Group;
    const int attrib = shown.Attribute.Attribute;
    TReplayDifference difference;
    difference.Kind = kind;
    difference.Preview = shown.Value[component];
    difference.Replay = replay;
    difference.Worst = kind == DK_VALUE ? GetDistance(difference.Preview, replay) : 0;
    TReplayDifference* known = Report.Find(group, attrib, kind);
    if (known == nullptr) {
        TReplayPlace& place = difference.Place;
        place.Frame = Frame;
        place.Time = Engine.GetTime();
        place.Group = group;
        place.Attribute = attrib;
        if (shown.Attribute.Usage >= TU_EMITTER && !Schedule.IsTriggerGroup(group)) {
            place.Particle = shown.Particle;
            place.Global = Engine.GetGroup(group)->GetGlobalParticle(shown.Particle, TU_PROCESS);
        }
        place.Name = Schedule.GetAttributeName(group, attrib);
        place.Type = Schedule.GetAttributeType(group, attrib);
        place.Component = component;
    }
    Count(known, difference);
}

void TReplayComparison::DifferInCount(int group, TDifferenceKind kind, int preview, int replay)
{
    TReplayDifference difference;
    difference.Kind = kind;
    difference.Preview = static_cast<float>(preview);
    difference.Replay = static_cast<float>(replay);
    difference.Worst = kind == DK_COUNT ? GetDistance(difference.Preview, difference.Replay) : 0;
    difference.Place.Frame = Frame;
    difference.Place.Time = Engine.GetTime();
    difference.Place.Group = group;
    Count(Report.Find(group, -1, kind), difference);
}

void TReplayComparison::Count(TReplayDifference* known, const TReplayDifference& difference)
{
    if (known == nullptr) {
        Report.Add(difference);
        known = Report.Find(difference.Place.Group, difference.Place.Attribute, difference.Kind);
    }
    ++known->Times;
    if (difference.Worst > known->Worst)
        known->Worst = difference.Worst;
}
