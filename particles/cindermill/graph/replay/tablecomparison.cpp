#include "particles/cindermill/graph/replay/tablecomparison.h"

#include "library/containers/nametocrc.h"
#include "library/maths/matrix43.h"
#include "library/maths/quaternion.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/cindermill/graph/nodes/shaper.h"
#include "particles/cindermill/graph/replay/effectreplay.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

#include <cstring>
#include <initializer_list>

namespace {

float ReadFloat(const vector<uint8_t>& data, int at)
{
    uint32_t word = 0;
    for (int i = 0; i < 4; ++i)
        word = word << 8 | (at + i < data.size() ? data[at + i] : 0u);
    float value;
    std::memcpy(&value, &word, sizeof value);
    return value;
}

int GetInt(const TNodeType& type, const char* name)
{
    const auto* parameter = type.FindParameterOf<TNodeIntParameter>(name, PK_INT);
    return parameter != nullptr ? parameter->Get() : 0;
}

int GetEnum(const TNodeType& type, const char* name)
{
    const auto* parameter = type.FindParameterOf<TNodeEnumParameter>(name, PK_ENUM);
    return parameter != nullptr ? parameter->GetNumber() : 0;
}

float GetScalar(const TNodeType& type, const char* name)
{
    const auto* parameter = type.FindParameterOf<TNodeScalarParameter>(name, TY_SCALAR);
    return parameter != nullptr ? parameter->Get() : 0.0f;
}

// One phase of a group. Commands of one name come in the order of their nodes.
class TTableComparison
{
public:
    TTableComparison(TEffectExec& engine, int group, const vector<TDecodedCommand>& commands,
                     TReplayReport& report)
        : Engine(engine), Schedule(engine.GetSchedule()), Group(group), Commands(commands), Report(report)
    {
        Place.Group = group;
        Taken.resize(commands.size());
        for (int i = 0; i < Taken.size(); ++i)
            Taken[i] = false;
    }
    void Run(bool isEmission)
    {
        for (int tied = 0; tied < Schedule.GetNumTiedNodes(Group); ++tied) {
            const int node = Schedule.GetTiedNode(Group, tied);
            const TNodeType& type = *Schedule.GetNode(node)->GetNodeType();
            if ((Schedule.GetNodeUsage(node) == TU_EMITTER) != isEmission || type.IsBypassed())
                continue;
            Place.Node = Schedule.GetNode(node);
            Place.Attribute = type.GetNumOutputs() > 0 ? Schedule.GetTiedNodeOutput(Group, tied, 0) : -1;
            Place.Type = Place.Attribute != -1 ? Schedule.GetAttributeType(Group, Place.Attribute) : -1;
            if (!IsLeftOut(tied, type))
                CompareNode(node, type);
        }
    }

private:
    // A plane that is wired has no command, which is an error of the export.
    bool IsLeftOut(int tied, const TNodeType& type) const
    {
        return type.IsOfClass("TCollisionPlane") && Schedule.GetTiedNodeInput(Group, tied, 2) != -1;
    }
    void CompareNode(int node, const TNodeType& type)
    {
        if (type.IsOfClass("TShaper"))
            CompareShaper(static_cast<const TShaper&>(*Engine.GetExecNode(node)));
        else if (type.IsOfClass("TEmitter"))
            CompareEmitter(type);
        else if (type.IsOfClass("TAnimatedTexture"))
            CompareAnimatedTexture(type);
        else if (type.IsOfClass("TSphereSurface"))
            CompareSphere(type);
        else if (type.IsOfClass("TCollisionPlane"))
            ComparePlane(type);
        else if (type.IsOfClass("TEffect"))
            CompareEffect(type);
    }
    const TDecodedCommand* Take(const char* name)
    {
        for (int i = 0; i < Commands.size(); ++i) {
            if (Taken[i] || Commands[i].NameId != NameToCrc(name))
                continue;
            Taken[i] = true;
            return &Commands[i];
        }
        CompareNumber(name, 1, 0);
        return nullptr;
    }
    void CompareNumber(const char* name, float preview, float replay, int component = -1)
    {
        Report.CompareNamed(Place, name, preview, replay, component);
    }

    void CompareShaper(const TShaper& shaper)
    {
        constexpr int samplesAt = 12;
        for (int channel = 0; channel < shaper.CountComponents(); ++channel) {
            const TDecodedCommand* command = Take("IdShaper");
            if (command == nullptr)
                return;
            CompareNumber("curve's scale", shaper.GetScale(), ReadFloat(command->Data, 0), channel);
            for (int i = 0; i < TShaper::NumSamples; ++i)
                CompareNumber("curve's table", shaper.GetSample(i, channel),
                              ReadFloat(command->Data, samplesAt + 4 * i), i);
        }
    }
    // Bytes are cut as they are written, which is told apart.
    void CompareByte(const char* name, int preview, const TDecodedCommand& command, int at)
    {
        CompareNumber(name, static_cast<float>(preview & 0xFF),
                      at < command.Data.size() ? static_cast<float>(command.Data[at]) : 0.0f);
    }
    void CompareEmitter(const TNodeType& type)
    {
        const TDecodedCommand* command = Take("IdEmissionTrigger");
        if (command == nullptr)
            return;
        const auto* limit = type.FindParameterOf<TNodeGroupParameter>("Max life time", PK_GROUP);
        const bool isLimited = limit != nullptr && limit->Get();
        CompareNumber("Max life time", isLimited ? GetScalar(type, "Max life time.Life Time") : 0.0f,
                      ReadFloat(command->Data, 0));
        CompareByte("Emit Mode", GetEnum(type, "Emit Mode"), *command, 4);
        CompareByte("Per frame max emission", GetInt(type, "Per frame max emission"), *command, 5);
    }
    void CompareFloats(const char* name, const float* preview, int count, const TDecodedCommand& command,
                       int at)
    {
        for (int i = 0; i < count; ++i)
            CompareNumber(name, preview[i], ReadFloat(command.Data, at + 4 * i), i);
    }
    static TPortValue GetPort(const TNodeType& type, int port)
    {
        TPortValue value;
        type.GetInput(port)->GetValue(value.GetFloats());
        return value;
    }
    void CompareSphere(const TNodeType& type)
    {
        constexpr int rotationAt = 12;
        constexpr int scaleAt = 28;
        const TDecodedCommand* command = Take("IdSphereSurfaceEmitter");
        if (command == nullptr)
            return;
        const TPortValue place = GetPort(type, 1);
        const TPortValue scale = GetPort(type, 2);
        const TQuaternion rotation(TMatrix3(GetTransformMatrix(place)));
        CompareFloats("sphere's place", place.GetFloats(), 3, *command, 0);
        CompareFloats("sphere's rotation", rotation.Component, 4, *command, rotationAt);
        CompareFloats("sphere's scale", scale.GetFloats(), 3, *command, scaleAt);
    }
    void ComparePlane(const TNodeType& type)
    {
        constexpr int distanceAt = 12;
        constexpr int bounceAt = 16;
        const TDecodedCommand* command = Take("IdPlaneCollision");
        if (command == nullptr)
            return;
        const TMatrix43 plane = GetTransformMatrix(GetPort(type, 2));
        const TVector3 normal = plane.TransformPoint(TVector3(0, 1, 0));
        const float distance = static_cast<float>(-ExactDot(plane.GetTranslation(), normal));
        CompareFloats("plane's normal", normal.Component, 3, *command, 0);
        CompareFloats("plane's distance", &distance, 1, *command, distanceAt);
        CompareFloats("plane's bounce", GetPort(type, 4).GetFloats(), 1, *command, bounceAt);
    }
    void CompareEffect(const TNodeType& type)
    {
        const TDecodedCommand* command = Take("IdEffect");
        if (command == nullptr)
            return;
        const auto* limit = type.FindParameterOf<TNodeGroupParameter>("Max Life Time", PK_GROUP);
        const bool isLimited = limit != nullptr && limit->Get();
        CompareNumber("Max Life Time", isLimited ? GetScalar(type, "Max Life Time.Life Time") : 0.0f,
                      ReadFloat(command->Data, 0));
    }
    void CompareAnimatedTexture(const TNodeType& type)
    {
        const TDecodedCommand* command = Take("IdAnimatedTexture");
        if (command == nullptr)
            return;
        CompareNumber("Time Range", GetScalar(type, "Time Range"), ReadFloat(command->Data, 0));
        CompareByte("X Divisions", GetInt(type, "X Divisions"), *command, 4);
        CompareByte("Y Divisions", GetInt(type, "Y Divisions"), *command, 5);
        CompareByte("Tile Count", GetInt(type, "Tile Count"), *command, 6);
        CompareByte("Loop Mode", GetEnum(type, "Loop Mode"), *command, 7);
    }

    TEffectExec& Engine;
    const TEffectSchedule& Schedule;
    int Group;
    const vector<TDecodedCommand>& Commands;
    TReplayReport& Report;
    vector<bool> Taken;
    TReplayPlace Place;
};

} // namespace

void CompareTables(TEffectExec& engine, const TEffectReplay& replay, TReplayReport& report)
{
    for (int group = 0; group < engine.GetSchedule().GetNumGroups(); ++group)
        for (const bool isEmission : {true, false})
            TTableComparison(engine, group, replay.GetPhase(group, isEmission).GetExecute(), report)
                .Run(isEmission);
}
