#include "particles/cindermill/interface/particles/previewmarks.h"

#include "particles/cindermill/graph/engine/boundssampler.h"
#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/cindermill/interface/particles/emittershape.h"
#include "particles/cindermill/interface/particles/linecolour.h"
#include "particles/cindermill/interface/particles/previewlook.h"
#include "particles/cindermill/interface/particles/wires.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/usage.h"

#include <cmath>

namespace {

const TVector4 StaticColour(0.1f, 0.3f, 0.9f, 1);
const TVector4 ParticleColour(0.1f, 0.6f, 0.2f, 1);
const TVector4 OutsideColour(0.9f, 0.1f, 0.1f, 1);
const TVector4 VelocityColour(0.95f, 0.45f, 0.0f, 0.8f);
const TVector4 EmitterColour(0.55f, 0.1f, 0.75f, 1);
constexpr float VelocitySeconds = 0.1f;

bool IsInside(const TBounds& bounds, const TVector3& min, const TVector3& max)
{
    bool inside = true;
    for (int i = 0; i < 3; ++i)
        inside = inside && bounds.Min[i] >= min[i] && bounds.Max[i] <= max[i];
    return inside;
}

// The places and the velocities of a group's particles, as some node that has both knows them.
class TMotion
{
public:
    TMotion(const TEffectExec& engine, int group);
    bool IsKnown() const { return Position != -1 && Velocity != -1; }
    TVector3 GetPosition(int index) const { return Read(Position, index); }
    TVector3 GetVelocity(int index) const { return Read(Velocity, index); }

private:
    int FindAttribute(int tied, const char* name) const;
    TVector3 Read(int attrib, int index) const;

    const TEffectSchedule& Schedule;
    const TParticleBuffer& Buffer;
    int Group;
    int Position = -1;
    int Velocity = -1;
};

TMotion::TMotion(const TEffectExec& engine, int group)
    : Schedule(engine.GetSchedule()), Buffer(*engine.GetGroup(group)), Group(group)
{
    for (int t = 0; t < Schedule.GetNumTiedNodes(group) && !IsKnown(); ++t) {
        Position = FindAttribute(t, "Position");
        Velocity = FindAttribute(t, "Velocity");
    }
}

// Types that are shorter than a vector have no direction.
int TMotion::FindAttribute(int tied, const char* name) const
{
    const TNodeType* type = Schedule.GetNode(Schedule.GetTiedNode(Group, tied))->GetNodeType();
    const int port = type->FindInput(name);
    if (port == -1)
        return -1;
    const int attrib = Schedule.GetTiedNodeInput(Group, tied, port);
    if (attrib == -1)
        return -1;
    const int attribType = Schedule.GetAttributeType(Group, attrib);
    return attribType == TY_VECTOR3 || attribType == TY_TRANSFORM ? attrib : -1;
}

TVector3 TMotion::Read(int attrib, int index) const
{
    const float* value = Buffer.GetAttribute(attrib, Schedule.GetAttributeUsage(Group, attrib), index);
    return TVector3(value[0], value[1], value[2]);
}

bool IsTiedIn(const TEffectSchedule& schedule, int node, int group)
{
    for (int t = 0; t < schedule.GetNumTiedNodes(group); ++t)
        if (schedule.GetTiedNode(group, t) == node)
            return true;
    return false;
}

} // namespace

void TPreviewMarks::Draw(const TPreviewLook& look) const
{
    if (look.Emitters)
        DrawEmitters();
    if (!Document.GetEngine().IsInited() || Document.GetEngine().GetNumGroups() == 0)
        return;
    if (look.Velocities)
        DrawVelocities(look);
    if (look.Boxes)
        DrawBoxes(look);
}

bool TPreviewMarks::IsDrawn(const TPreviewLook& look, int group) const
{
    return (look.OnlyGroup == -1 || look.OnlyGroup == group) &&
           !Document.GetEngine().GetSchedule().IsTriggerGroup(group);
}

void TPreviewMarks::DrawBoxes(const TPreviewLook& look) const
{
    const TEffectSchedule& schedule = Document.GetEngine().GetSchedule();
    for (int n = 0; n < schedule.GetNumNodes(); ++n) {
        bool drawn = false;
        for (int g = 0; g < schedule.GetNumGroups() && !drawn; ++g)
            drawn = IsDrawn(look, g) && IsTiedIn(schedule, n, g);
        if (drawn && schedule.GetNodeUsage(n) == TU_RENDER)
            DrawBoxesOf(n);
    }
}

void TPreviewMarks::DrawBoxesOf(int node) const
{
    TEffectExec& engine = Document.GetEngine();
    TEffectNode* stage = engine.GetSchedule().GetNode(node);
    const TNodeType& type = *stage->GetNodeType();
    const bool isStatic = type.HasFlag(FL_STATICBOUNDS);
    if (isStatic)
        DrawBox(StaticColour, type.BoundsMin, type.BoundsMax);
    TBoundsSampler sampler(engine, *stage);
    sampler.Grow();
    if (!sampler.HasBounds())
        return;
    const TBounds& bounds = sampler.GetBounds();
    const bool outside = isStatic && !IsInside(bounds, type.BoundsMin, type.BoundsMax);
    DrawBox(outside ? OutsideColour : ParticleColour, bounds.Min, bounds.Max);
}

void TPreviewMarks::DrawBox(const TVector4& colour, const TVector3& min, const TVector3& max) const
{
    TMatrix43 frame;
    const TVector3 half = (max - min) * 0.5f;
    frame.SetScale(half[0], half[1], half[2]);
    frame.SetTranslation(min + half);
    TWires wires(GetLineColour(colour, Behind), frame);
    wires.Box();
}

void TPreviewMarks::DrawVelocities(const TPreviewLook& look) const
{
    for (int g = 0; g < Document.GetEngine().GetNumGroups(); ++g)
        if (IsDrawn(look, g))
            DrawVelocities(g);
}

void TPreviewMarks::DrawVelocities(int group) const
{
    const TEffectExec& engine = Document.GetEngine();
    const TMotion motion(engine, group);
    if (!motion.IsKnown())
        return;
    TWires wires(GetLineColour(VelocityColour, Behind), TMatrix43());
    for (int i = 0; i < engine.GetNumParticles(group); ++i) {
        const TVector3 from = motion.GetPosition(i);
        const TVector3 way = motion.GetVelocity(i) * VelocitySeconds;
        if (IsFinite(from) && IsFinite(way))
            wires.Line(from, from + way);
    }
}

void TPreviewMarks::DrawEmitters() const
{
    const TVector4 colour = GetLineColour(EmitterColour, Behind);
    const TEffectGraph& graph = *Document.GetGraph();
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        DrawEmitterShape(*graph.GetNode(i), colour);
}

bool GetParticleBox(TDocument& document, int onlyGroup, TVector3& min, TVector3& max)
{
    TEffectExec& engine = document.GetEngine();
    if (!engine.IsInited() || engine.GetNumGroups() == 0)
        return false;
    const TEffectSchedule& schedule = engine.GetSchedule();
    bool found = false;
    for (int n = 0; n < schedule.GetNumNodes(); ++n) {
        if (schedule.GetNodeUsage(n) != TU_RENDER || (onlyGroup != -1 && !IsTiedIn(schedule, n, onlyGroup)))
            continue;
        TBoundsSampler sampler(engine, *schedule.GetNode(n));
        sampler.Grow();
        if (!sampler.HasBounds())
            continue;
        const TBounds& bounds = sampler.GetBounds();
        for (int i = 0; i < 3; ++i) {
            min[i] = found && min[i] < bounds.Min[i] ? min[i] : bounds.Min[i];
            max[i] = found && max[i] > bounds.Max[i] ? max[i] : bounds.Max[i];
        }
        found = true;
    }
    return found;
}
