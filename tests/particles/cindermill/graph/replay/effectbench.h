#pragma once

#include "replaybench.h"

#include "support/fakeservices.h"

#include <map>

using TTypePair = std::pair<int, int>;

// An effect of nodes whose ports may have any types, run and replayed.
class TEffectBench
{
public:
    TEffectBench() : Exec(Services) { RegisterExecNodes(); }
    ~TEffectBench() { Exec.Clear(); }

    TEffectNode* Add(const char* className, int category, const std::vector<TTestPort>& inputs,
                     const std::vector<TTestPort>& outputs)
    {
        TEffectNode* node = Graph.Node(className, category, inputs, outputs);
        Graph.Class(node, className);
        return node;
    }
    // A value that other nodes take.
    TEffectNode* AddSource(int type)
    {
        static const float numbers[] = {1, 2, 6, 0.5f, -3, 11};
        TEffectNode* source = Add("TConstant", TU_TRIGGER, {{"In", type}}, {{"Out", type}});
        Graph.InputValue(source, "In", std::vector<float>(numbers, numbers + GetTypeFloats(type)));
        return source;
    }
    // A value of the particles that a stage shows as it is, and the stage: an attribute has the type of the
    // port that is nearest to the screen.
    struct TShownValue
    {
        TEffectNode* Source;
        TEffectNode* Stage;
    };
    TShownValue AddShownValue(TEffectNode* emitter, int type, const TTestPort& result)
    {
        Graph.InputValue(emitter, "Transform", {1, 2, 6, 0.5f, -3, 11});
        TEffectNode* source = Add("TConstant", TU_PROCESS, {{"In", type}}, {{"Out", type}});
        TEffectNode* stage =
            Add("TEffectExecNode", TU_RENDER, {{"Place", TY_TRANSFORM}, {"Kept", type}, result}, {});
        Graph.Wire(emitter, 0, source, 0);
        Graph.Wire(emitter, 0, stage, 0);
        Graph.Wire(source, 0, stage, 1);
        return {source, stage};
    }
    TEffectNode* AddSink(TEffectNode* source, int output, int type)
    {
        TEffectNode* sink = Add("TEffectExecNode", TU_TRIGGER, {{"Kept", type}}, {});
        Graph.Wire(source, output, sink, 0);
        return sink;
    }
    // Particles that a trigger fires in the first frame.
    TEffectNode* AddPopulation(const std::vector<TTestPort>& more = {})
    {
        std::vector<TTestPort> inputs = {"Emission Trigger", {"Transform", TY_TRANSFORM}};
        inputs.insert(inputs.end(), more.begin(), more.end());
        TEffectNode* trigger = Add("TEmitter", TU_TRIGGER, {"Rate", "Start Delay"}, {"Count", "Time"});
        Graph.Enum(trigger, "Emit Mode", {"Chance", "Steady=1", "Burst=2"}, 2);
        Graph.Int(trigger, "Per frame max emission", 3);
        Graph.Group(trigger, "Max life time", false, "<Scalar><name>Life Time</name></Scalar>");
        TEffectNode* emitter = Add("TPointEmitter", TU_EMITTER, inputs, {{"Start", TY_TRANSFORM}});
        TEffectNode* stage = Add("TEffectExecNode", TU_RENDER, {{"Place", TY_TRANSFORM}}, {});
        Graph.Wire(trigger, 0, emitter, 0);
        Graph.Wire(emitter, 0, stage, 0);
        return emitter;
    }
    TAgreement Run(int frames = 3, float dt = 0.02f)
    {
        TErrorList errors;
        LogOf([&] { Schedule.Create(Graph.GetGraph(), errors); });
        TAgreement result;
        std::string error = TextsOf(errors).empty() ? "" : TextsOf(errors)[0];
        if (error.empty() && Schedule.IsCreated()) {
            TReplayOptions options;
            options.Frames = frames;
            options.Dt = dt;
            result = CompareWithReplay(Schedule, Services, options, error);
        }
        if (!error.empty())
            result.Differences = {"not exported: " + error};
        else
            CountConversions();
        return result;
    }
    // Of the engine alone, after so many frames.
    void RunEngine(int frames)
    {
        TErrorList errors;
        ASSERT_TRUE(Exec.Init(Schedule, errors, true));
        for (int frame = 0; frame < frames; ++frame)
            Exec.Update(0.02f);
    }
    bool HasInputPair(const TTypePair& pair) const { return InputPairs.count(pair) != 0; }
    bool HasOutputPair(const TTypePair& pair) const { return OutputPairs.count(pair) != 0; }
    bool HasParentPair(const TTypePair& pair) const { return ParentPairs.count(pair) != 0; }

    TTestGraph Graph;
    TFakeServices Services;
    TEffectSchedule Schedule;
    TEffectExec Exec;

private:
    // From the wired type to the other.
    void CountConversions()
    {
        for (int g = 0; g < Schedule.GetNumGroups(); ++g) {
            for (int t = 0; t < Schedule.GetNumTiedNodes(g); ++t) {
                const TNodeType* type = Schedule.GetNode(Schedule.GetTiedNode(g, t))->GetNodeType();
                for (int p = 0; p < type->GetNumInputs(); ++p)
                    if (Schedule.GetTiedNodeInput(g, t, p) != -1)
                        ++InputPairs[{Schedule.GetAttributeType(g, Schedule.GetTiedNodeInput(g, t, p)),
                                      type->GetInputType(p)}];
                for (int p = 0; p < type->GetNumOutputs(); ++p)
                    if (Schedule.GetTiedNodeOutput(g, t, p) != -1)
                        ++OutputPairs[{type->GetOutputType(p),
                                       Schedule.GetAttributeType(g, Schedule.GetTiedNodeOutput(g, t, p))}];
            }
            for (int a = 0; a < Schedule.GetNumAttributes(g); ++a)
                if (Schedule.GetAttributeExternalGroup(g, a) != -1)
                    ++ParentPairs[{Schedule.GetAttributeType(Schedule.GetAttributeExternalGroup(g, a),
                                                             Schedule.GetAttributeExternalAttrib(g, a)),
                                   Schedule.GetAttributeType(g, a)}];
        }
    }

    std::map<TTypePair, int> InputPairs;
    std::map<TTypePair, int> OutputPairs;
    std::map<TTypePair, int> ParentPairs;
};

inline void ExpectAgreement(const TAgreement& agreement)
{
    EXPECT_EQ(agreement.Differences, std::vector<std::string>());
    EXPECT_GT(agreement.Equal, 0);
}
