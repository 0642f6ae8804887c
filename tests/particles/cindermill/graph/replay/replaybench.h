#pragma once

#include "support/testgraph.h"

#include "particles/cindermill/graph/engine/effectexec.h"
#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/cindermill/graph/nodes/nodes.h"
#include "particles/cindermill/graph/replay/effectreplay.h"
#include "particles/effectgraph/export/exportdata.h"

#include <cmath>
#include <map>

// What a comparison of a running engine with a replay came to.
struct TAgreement
{
    int Equal = 0;
    int Near = 0;
    int Unknown = 0;
    // The first of each attribute.
    std::vector<std::string> Differences;
};

// Holds an engine against the replay of what it exports, value by value.
class TReplayComparison
{
public:
    TReplayComparison(TEffectExec& engine, TEffectReplay& replay) : Engine(engine), Replay(replay) {}

    TAgreement Run(int frames, float dt)
    {
        for (int frame = 0; frame < frames; ++frame) {
            Engine.Update(dt);
            Replay.Update(dt);
            for (int group = 0; group < Engine.GetNumGroups(); ++group)
                CompareGroup(frame, group);
        }
        return Result;
    }

private:
    void CompareGroup(int frame, int group)
    {
        if (!Replay.IsCountKnown(group))
            return;
        const TEffectSchedule& schedule = Engine.GetSchedule();
        const bool isTrigger = schedule.IsTriggerGroup(group);
        const int count = isTrigger ? 1 : Engine.GetNumParticles(group);
        if (count != Replay.GetNumParticles(group))
            return Differ(frame, group, -1,
                          "count " + std::to_string(count) + ", replayed " +
                              std::to_string(Replay.GetNumParticles(group)));
        for (int attrib = 0; attrib < schedule.GetNumAttributes(group); ++attrib)
            for (int particle = 0; particle < count; ++particle)
                CompareAttribute(frame, group, attrib, particle);
    }
    void CompareAttribute(int frame, int group, int attrib, int particle)
    {
        const TEffectSchedule& schedule = Engine.GetSchedule();
        const int usage = schedule.GetAttributeUsage(group, attrib);
        // What only a birth takes from a parent is not kept.
        if (usage == TU_EMITTER && schedule.GetAttributeExternalGroup(group, attrib) != -1)
            return;
        const float* values = Engine.GetGroup(group)->GetAttribute(attrib, usage, particle);
        for (int c = 0; c < GetTypeFloats(schedule.GetAttributeType(group, attrib)); ++c) {
            TReplayCell cell;
            if (!Replay.GetValue(group, attrib, c, particle, cell))
                continue;
            if (cell.State == CS_UNKNOWN)
                ++Result.Unknown;
            else if (cell.State == CS_UNDEFINED)
                Differ(frame, group, attrib, "undefined component " + std::to_string(c));
            else if (IsEqual(values[c], cell.Value))
                ++Result.Equal;
            else if (std::fabs(values[c] - cell.Value) <= 1e-5f * std::fabs(values[c]))
                ++Result.Near;
            else
                Differ(frame, group, attrib,
                       "component " + std::to_string(c) + ": " + std::to_string(values[c]) + ", replayed " +
                           std::to_string(cell.Value));
        }
    }
    static bool IsEqual(float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); }
    void Differ(int frame, int group, int attrib, const std::string& what)
    {
        if (!Seen.emplace(std::make_pair(group, attrib), true).second)
            return;
        const std::string name =
            attrib != -1 ? Engine.GetSchedule().GetAttributeName(group, attrib).Print() : "";
        Result.Differences.push_back("frame " + std::to_string(frame) + " group " + std::to_string(group) +
                                     " " + name + " (" + std::to_string(attrib) + ") " + what);
    }

    TEffectExec& Engine;
    TEffectReplay& Replay;
    TAgreement Result;
    std::map<std::pair<int, int>, bool> Seen;
};

// The export of an engine's effect, read back.
inline void ExportInto(TEffectExec& engine, TEfxFile& file, std::string& error)
{
    const TTempFolder folder;
    const std::string path = folder.Path("effect.efx");
    TErrorList errors;
    std::string assertion = AssertionOf([&] {
        TExportData data(engine.GetSchedule());
        engine.Export(data, errors);
        data.WriteEfx(path.c_str(), errors);
    });
    TString fault;
    error = !assertion.empty() ? assertion : file.Load(path.c_str(), fault) ? "" : fault.Print();
}
