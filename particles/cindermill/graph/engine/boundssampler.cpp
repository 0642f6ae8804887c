#include "particles/cindermill/graph/engine/boundssampler.h"

#include "particles/cindermill/graph/engine/inputreader.h"

namespace {

constexpr const char* FlatStages[] = {"TBlendedQuadRenderStage", "TQuadRenderStage",
                                      "TBlendedSpriteRenderStage", "TSpriteRenderStage"};
constexpr const char* TrailStage = "TVelocityTrailRenderStage";

bool IsFlatStage(const TNodeType& type)
{
    for (const char* name : FlatStages)
        if (type.IsOfClass(name))
            return true;
    return false;
}

bool IsTrailStage(const TNodeType& type)
{
    return type.IsOfClass(TrailStage);
}

} // namespace

TBoundsSampler::TBoundsSampler(TEffectExec& exec, TEffectNode& node) : Exec(exec), Node(node)
{
    Fault = FindPosition();
    if (Fault == SF_NONE)
        Reach = FindReach();
}

TSampleFault TBoundsSampler::FindPosition()
{
    if (!Exec.IsInited() || Exec.GetNumGroups() == 0)
        return SF_NOTRUNNING;
    const TEffectSchedule& schedule = Exec.GetSchedule();
    bool isScheduled = false;
    for (int i = 0; i < schedule.GetNumNodes() && !isScheduled; ++i)
        isScheduled = schedule.GetNode(i) == &Node;
    if (!isScheduled)
        return SF_NOTSCHEDULED;
    const TNodeType& type = *Node.GetNodeType();
    Position = type.FindInput("Transform");
    if (Position == -1)
        Position = type.FindInput("Position");
    if (Position == -1)
        return SF_NOINPUT;
    return Node.GetInput(Position) != nullptr ? SF_NONE : SF_NOTCONNECTED;
}

TSampleReach TBoundsSampler::FindReach()
{
    const TNodeType& type = *Node.GetNodeType();
    const bool isTrail = IsTrailStage(type);
    const int scale = isTrail || IsFlatStage(type) ? type.FindInput("Scale") : -1;
    const int velocity = isTrail ? type.FindInput("Velocity") : -1;
    if (scale == -1)
        return SR_NOSCALE;
    if (isTrail && velocity == -1)
        return SR_NOVELOCITY;
    Scale = scale;
    Velocity = velocity;
    return SR_KNOWN;
}

int TBoundsSampler::Grow()
{
    // The effect may have stopped since.
    if (Fault != SF_NONE || !Exec.IsInited())
        return 0;
    const TEffectSchedule& schedule = Exec.GetSchedule();
    TInputReader reader(Exec, Node);
    int count = 0;
    for (int g = 0; g < Exec.GetNumGroups(); ++g)
        for (int t = 0; t < schedule.GetNumTiedNodes(g); ++t)
            if (schedule.GetNode(schedule.GetTiedNode(g, t)) == &Node)
                count += GrowOver(reader, g, t);
    return count;
}

int TBoundsSampler::GrowOver(TInputReader& reader, int group, int tied)
{
    reader.SetPosition(group, tied, Exec.GetGroup(group));
    int count = 0;
    for (int i = 0; i < Exec.GetNumParticles(group); ++i) {
        TVector3 min;
        TVector3 max;
        const float reach = Measure(reader, i, min, max);
        if (!IsFinite(min) || !IsFinite(max))
            continue;
        Include(Bounds, min, max);
        const TVector3 size(reach, reach, reach);
        Include(Places, min + size, max - size);
        LargestReach = reach > LargestReach ? reach : LargestReach;
        Found = true;
        ++count;
    }
    return count;
}

// A flat picture may stand at any angle, so it reaches as far as its corners do. A trail is drawn from the
// particle back to where it was some seconds ago.
float TBoundsSampler::Measure(const TInputReader& reader, int index, TVector3& min, TVector3& max) const
{
    const TVector3 place = reader.Read(Position, index, TY_VECTOR3);
    const TVector3 scale = Scale != -1 ? reader.Read(Scale, index, TY_SCALE) : TVector3();
    const TVector3 velocity = Velocity != -1 ? reader.Read(Velocity, index, TY_VECTOR3) : TVector3();
    const double reach = Velocity != -1 ? std::fabs(double(scale[0])) : std::hypot(scale[0], scale[1]);
    for (int i = 0; i < 3; ++i) {
        const double head = place[i];
        const double tail = head - double(velocity[i]) * scale[1];
        min[i] = static_cast<float>((head < tail ? head : tail) - reach);
        max[i] = static_cast<float>((head < tail ? tail : head) + reach);
    }
    return static_cast<float>(reach);
}

void TBoundsSampler::Include(TBounds& bounds, const TVector3& min, const TVector3& max) const
{
    for (int i = 0; i < 3; ++i) {
        bounds.Min[i] = Found && bounds.Min[i] < min[i] ? bounds.Min[i] : min[i];
        bounds.Max[i] = Found && bounds.Max[i] > max[i] ? bounds.Max[i] : max[i];
    }
}
