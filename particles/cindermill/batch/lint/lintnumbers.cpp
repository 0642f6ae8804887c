#include "particles/cindermill/batch/lint/lintnumbers.h"

#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/graph/engine/effectexec.h"
#include "particles/cindermill/graph/engine/particlebuffer.h"

#include <cmath>

TLintNumbers::TLintNumbers(const TEffectSchedule& schedule) : Schedule(schedule)
{
    Spoilt.resize(schedule.GetNumGroups());
    for (int g = 0; g < schedule.GetNumGroups(); ++g) {
        Spoilt[g].resize(schedule.GetNumAttributes(g));
        for (bool& spoilt : Spoilt[g])
            spoilt = false;
    }
}

int TLintNumbers::FindBad(int group, int attrib, int count, float& value) const
{
    const int floats = GetTypeFloats(Schedule.GetAttributeType(group, attrib));
    int component = -1;
    Exec->GetGroup(group)->ForEachValue(attrib, Schedule.GetAttributeUsage(group, attrib), 0, count,
                                        [&](const float* values) {
                                            for (int i = 0; i < floats && component == -1; ++i) {
                                                if (std::isfinite(values[i]))
                                                    continue;
                                                component = i;
                                                value = values[i];
                                            }
                                        });
    return component;
}

bool TLintNumbers::IsSpoilt(int group, int attrib) const
{
    if (Spoilt[group][attrib])
        return true;
    const int parent = Schedule.GetAttributeExternalGroup(group, attrib);
    return parent != -1 && Spoilt[parent][Schedule.GetAttributeExternalAttrib(group, attrib)];
}

bool TLintNumbers::ReadsSpoilt(int group, const TTiedNode& tied) const
{
    for (const int attrib : tied.Inputs)
        if (attrib != -1 && IsSpoilt(group, attrib))
            return true;
    return false;
}

bool TLintNumbers::IsKnown(const TEffectNode& node) const
{
    for (const TBadValue& bad : Bad)
        if (bad.Node == &node)
            return true;
    return false;
}

void TLintNumbers::Spoil(int group, int attrib, const TEffectNode* node, int component, float value)
{
    Spoilt[group][attrib] = true;
    if (node != nullptr && !IsKnown(*node))
        Bad.push_back(TBadValue{node, group, attrib, component, value, GetMoment()});
}

// An output that works on an input's value has its place: what that input held before is only known from
// earlier looks.
void TLintNumbers::NodeRan(int group, int tied, int count)
{
    const TTiedNode& place = Schedule.GetGroup(group).TiedNodes[tied];
    const bool follows = ReadsSpoilt(group, place);
    for (const int attrib : place.Outputs) {
        float value = 0;
        const int component =
            attrib != -1 && !Spoilt[group][attrib] ? FindBad(group, attrib, count, value) : -1;
        if (component != -1)
            Spoil(group, attrib, follows ? nullptr : Schedule.GetNode(place.Node), component, value);
    }
}

// The node whose input gives an attribute its first value.
const TEffectNode* TLintNumbers::FindOwner(int group, int attrib) const
{
    const TNodeParameter* port = Schedule.GetAttributePort(group, attrib);
    for (int t = 0; t < Schedule.GetNumTiedNodes(group) && port != nullptr; ++t) {
        const TEffectNode* node = Schedule.GetNode(Schedule.GetTiedNode(group, t));
        for (int i = 0; i < node->GetNodeType()->GetNumInputs(); ++i)
            if (node->GetNodeType()->GetInput(i) == port)
                return node;
    }
    return nullptr;
}

// What no node wrote, particles were born with.
void TLintNumbers::EndFrame()
{
    for (int g = 0; g < Schedule.GetNumGroups(); ++g) {
        const int count = Schedule.IsTriggerGroup(g) ? 1 : Exec->GetNumParticles(g);
        for (int a = 0; a < Schedule.GetNumAttributes(g); ++a) {
            if (Spoilt[g][a] ||
                (count == 0 && Exec->GetGroup(g)->IsPerParticle(Schedule.GetAttributeUsage(g, a))))
                continue;
            float value = 0;
            const bool follows = IsSpoilt(g, a);
            const int component = FindBad(g, a, count, value);
            if (component != -1)
                Spoil(g, a, follows ? nullptr : FindOwner(g, a), component, value);
        }
    }
}

void TLintNumbers::Tell(TLintReport& report)
{
    for (const TBadValue& bad : Bad) {
        const TString name = GetShownName(Schedule.GetAttributeName(bad.Group, bad.Attrib));
        TFinding& finding = report.AddNode(
            LK_NUMBERBAD, *bad.Node, bad.Group,
            "%s writes %s into \"%s\", component %d, first in frame %d (%.2f s, seed %d)",
            GetNodeName(*bad.Node).Print(), std::isnan(bad.Value) ? "nan" : "infinity", name.Print(),
            bad.Component, bad.Moment.Frame, double(bad.Moment.Time), bad.Moment.Seed);
        AddNumber(finding, "frame", bad.Moment.Frame);
        AddNumber(finding, "time", double(bad.Moment.Time));
        AddNumber(finding, "seed", bad.Moment.Seed);
        AddNumber(finding, "component", bad.Component);
    }
}
