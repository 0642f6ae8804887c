#include "particles/cindermill/interface/particles/previewdiagnosis.h"

#include "library/containers/shortentext.h"
#include "particles/cindermill/interface/particles/previewgroups.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/usage.h"

namespace {

// An effect may pause for so long between two bursts.
constexpr float Patience = 1.0f;
constexpr const char* TextureNames[] = {"Texture", "Base Texture", "Blend Texture"};

TString ToldName(const TEffectNode& node)
{
    return GetToldName(node.GetNodeType()->Name);
}

bool LacksTexture(const TNodeType& type)
{
    for (const char* name : TextureNames) {
        const TNodeTextureParameter* parameter =
            type.FindParameterOf<TNodeTextureParameter>(name, PK_TEXTURE);
        if (parameter != nullptr && parameter->GetFileName().IsEmpty())
            return true;
    }
    return false;
}

const TEffectNode* FindStageWithoutTexture(const TEffectSchedule& schedule)
{
    for (int n = 0; schedule.IsCreated() && n < schedule.GetNumNodes(); ++n)
        if (schedule.GetNodeUsage(n) == TU_RENDER && LacksTexture(*schedule.GetNode(n)->GetNodeType()))
            return schedule.GetNode(n);
    return nullptr;
}

// What tells how many particles are due.
const TEffectNode* FindTrigger(const TEffectSchedule& schedule)
{
    for (int n = 0; n < schedule.GetNumNodes(); ++n)
        if (schedule.GetNode(n)->GetNodeType()->IsOfClass("TEmitter"))
            return schedule.GetNode(n);
    return nullptr;
}

// What emits, with nothing that tells it when.
const TEffectNode* FindUntriggered(const TEffectSchedule& schedule)
{
    for (int n = 0; n < schedule.GetNumNodes(); ++n) {
        const TEffectNode* node = schedule.GetNode(n);
        const int input = node->GetNodeType()->FindInput("Emission Trigger");
        if (input >= 0 && node->GetInput(input) == nullptr)
            return node;
    }
    return nullptr;
}

// A node that lacks a wire that it must have: its group is left out, and others may be kept from running by
// that.
const TEffectNode* FindUnfinished(const TEffectSchedule& schedule)
{
    for (int n = 0; n < schedule.GetNumNodes(); ++n)
        if (schedule.GetNode(n)->FindUnwired() != -1)
            return schedule.GetNode(n);
    return nullptr;
}

} // namespace

void TPreviewDiagnosis::Tick(TDocument& document, int onlyGroup)
{
    const TEffectExec& engine = document.GetEngine();
    if (NumStarts != engine.GetNumStarts()) {
        NumStarts = engine.GetNumStarts();
        Emitted = false;
        LastSeen = 0;
    }
    if (engine.IsInited() && engine.GetNumGroups() > 0)
        TellRunning(document, onlyGroup);
    else
        TellStopped(document);
}

void TPreviewDiagnosis::TellStopped(TDocument& document)
{
    if (document.GetGraph()->GetNumNodes() == 0) {
        Text = "The graph is empty.\nDrag nodes into it from the list at its left, then press Update.";
    } else if (const TEffectNode* stage = FindStageWithoutTexture(document.GetSchedule())) {
        Text.Format("\"%s\" has no texture.\nOpen its panel in the graph and choose one.",
                    ToldName(*stage).Print());
    } else {
        Text = "This effect is not running.\nPress Update to start it, or to see what it lacks.";
    }
}

bool TPreviewDiagnosis::HasStage(const TEffectSchedule& schedule, int group)
{
    for (int t = 0; t < schedule.GetNumTiedNodes(group); ++t) {
        const int node = schedule.GetTiedNode(group, t);
        if (schedule.GetNodeUsage(node) == TU_RENDER && !schedule.GetNode(node)->GetNodeType()->IsBypassed())
            return true;
    }
    return false;
}

void TPreviewDiagnosis::Count(TDocument& document, int onlyGroup, TCensus& census)
{
    const TEffectExec& engine = document.GetEngine();
    const TEffectSchedule& schedule = engine.GetSchedule();
    for (int n = 0; n < schedule.GetNumNodes(); ++n) {
        if (schedule.GetNodeUsage(n) != TU_RENDER)
            continue;
        ++census.NumStages;
        census.NumBypassed += schedule.GetNode(n)->GetNodeType()->IsBypassed() ? 1 : 0;
    }
    for (int g = 0; g < engine.GetNumGroups(); ++g) {
        if (schedule.IsTriggerGroup(g))
            continue;
        const int alive = engine.GetNumParticles(g);
        const bool drawn = HasStage(schedule, g);
        Emitted = Emitted || alive > 0 || engine.GetNumBorn(g) > 0;
        census.NumAlive += alive;
        census.NumDrawn += drawn && (onlyGroup == -1 || onlyGroup == g) ? alive : 0;
        if (alive > 0 && !drawn && census.StagelessGroup == -1)
            census.StagelessGroup = g;
    }
}

void TPreviewDiagnosis::TellRunning(TDocument& document, int onlyGroup)
{
    TCensus census;
    Count(document, onlyGroup, census);
    const float time = document.GetEngine().GetTime();
    if (census.NumDrawn > 0 || time < LastSeen)
        LastSeen = time;
    Text = "";
    if (census.NumDrawn > 0)
        return;
    if (census.NumStages == 0) {
        Text = "Nothing is drawn: no render stage is wired into the graph.";
    } else if (census.NumStages == census.NumBypassed) {
        Text = "Nothing is drawn: all render stages are bypassed.";
    } else if (time - LastSeen < Patience) {
        return;
    } else if (onlyGroup != -1 && census.NumAlive > 0) {
        Text = "The group that is shown alone has no particles.\nEscape shows all groups.";
    } else if (census.StagelessGroup != -1) {
        Text.Format("Group %d emits, but has no render stage that draws it.", census.StagelessGroup);
    } else {
        TellNothingAlive(document);
    }
}

void TPreviewDiagnosis::TellNothingAlive(TDocument& document)
{
    if (Emitted) {
        Text = "All particles have died.\nUpdate shows the effect again, a loop again and again.";
        return;
    }
    const TEffectSchedule& schedule = document.GetEngine().GetSchedule();
    if (const TEffectNode* untriggered = FindUntriggered(schedule))
        Text.Format("Nothing has been emitted.\nWire an Emitter to the Emission Trigger of \"%s\".",
                    ToldName(*untriggered).Print());
    else if (const TEffectNode* unfinished = FindUnfinished(schedule))
        Text.Format("Nothing has been emitted.\nWire the %s of \"%s\", or delete that node.",
                    GetToldName(unfinished->GetNodeType()->GetInput(unfinished->FindUnwired())->Name).Print(),
                    ToldName(*unfinished).Print());
    else if (const TEffectNode* trigger = FindTrigger(schedule))
        Text.Format("Nothing has been emitted yet.\nLook at the rate and the delay of \"%s\".",
                    ToldName(*trigger).Print());
    else
        Text = "Nothing has been emitted.\nWire an Emitter to the Emission Trigger of what emits.";
}
