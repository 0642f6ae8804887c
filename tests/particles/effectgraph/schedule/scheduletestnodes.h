#pragma once

#include "support/testgraph.h"

#include "particles/effectgraph/schedule/effectschedule.h"

// The kinds of node that the tests of the schedule are made of.

inline TEffectNode* AddTrigger(TTestGraph& g)
{
    return g.Node("Trigger", TU_TRIGGER, {}, {"Trigger"});
}

inline TEffectNode* AddEmitter(TTestGraph& g, const char* typeName = "Emitter")
{
    return g.Node(typeName, TU_EMITTER, {"Emission Trigger"}, {{"Position", TY_VECTOR3}});
}

// Works on its position in place.
inline TEffectNode* AddForce(TTestGraph& g, const char* typeName = "Force", uint32_t flags = 0)
{
    return g.Node(typeName, TU_PROCESS, {{"Position", TY_VECTOR3}}, {{"Position", TY_VECTOR3}}, flags);
}

inline TEffectNode* AddSprite(TTestGraph& g, int priority = 0)
{
    return g.Node("Sprite", TU_RENDER, {{"Place", TY_VECTOR3}}, {},
                  static_cast<uint32_t>(priority) << RenderPriorityShift);
}

inline TEffectNode* AddAge(TTestGraph& g, float maxAge)
{
    TEffectNode* age =
        g.Node("Age", TU_PROCESS, {{"Position", TY_VECTOR3}, "Max Age"}, {{"Position", TY_VECTOR3}});
    g.InputValue(age, "Max Age", {maxAge});
    return age;
}

// A trigger that feeds an emitter.
inline TEffectNode* AddFiredEmitter(TTestGraph& g)
{
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* emitter = AddEmitter(g);
    g.Wire(trigger, 0, emitter, 0);
    return emitter;
}

struct TScheduled
{
    explicit TScheduled(const TTestGraph& g)
    {
        TErrorList errors;
        Log = LogOf([&] { Assertion = AssertionOf([&] { Made = Schedule.Create(g.GetGraph(), errors); }); });
        Errors = TextsOf(errors);
    }
    // The place of the node; -1 if it has none.
    int Find(const TEffectNode* node) const
    {
        for (int i = 0; i < Schedule.GetNumNodes(); ++i)
            if (Schedule.GetNode(i) == node)
                return i;
        return -1;
    }
    int UsageOf(const TEffectNode* node) const { return Schedule.GetNodeUsage(Find(node)); }
    // How often the node stands in the group.
    int CountIn(int group, const TEffectNode* node) const
    {
        int count = 0;
        for (int i = 0; i < Schedule.GetNumTiedNodes(group); ++i)
            count += Schedule.GetTiedNode(group, i) == Find(node) ? 1 : 0;
        return count;
    }

    TEffectSchedule Schedule;
    bool Made = false;
    std::string Assertion;
    std::vector<std::string> Errors;
    std::string Log;
};
