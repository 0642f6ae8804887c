#pragma once

#include "particles/effectgraph/schedule/scheduletestnodes.h"

#include "library/containers/nametocrc.h"
#include "particles/effectgraph/export/exportdata.h"

#include <functional>

// A schedule and its export, filled node by node.
class TExported
{
public:
    explicit TExported(const TTestGraph& g) : Scheduled(g)
    {
        if (!Scheduled.Made)
            throw std::runtime_error("no schedule: " + Scheduled.Assertion);
        Data = std::make_unique<TExportData>(Scheduled.Schedule);
    }
    TExportData* operator->() { return Data.get(); }
    TExportData& operator*() { return *Data; }
    const TEffectSchedule& GetSchedule() const { return Scheduled.Schedule; }
    const TExportGroup& Group(int i) const { return Data->GetResult().Groups[i]; }

    // Lets the node's first occurrence speak, and ends its command.
    void Speak(const TEffectNode* node, const std::function<void(TExportData&)>& work)
    {
        Place(node);
        work(*Data);
        Data->Flush();
    }
    void Place(const TEffectNode* node)
    {
        const int index = Scheduled.Find(node);
        for (int group = 0; group < GetSchedule().GetNumGroups(); ++group)
            for (int tied = 0; tied < GetSchedule().GetNumTiedNodes(group); ++tied)
                if (GetSchedule().GetTiedNode(group, tied) == index)
                    return Data->SetCurrent(group, tied);
        throw std::runtime_error("the node is in no group");
    }
    int GroupOf(const TEffectNode* node) const
    {
        for (int group = 0; group < GetSchedule().GetNumGroups(); ++group)
            if (Scheduled.CountIn(group, node) != 0)
                return group;
        return -1;
    }
    // The group's attribute of a name.
    int Find(int group, const char* name) const
    {
        for (int i = 0; i < Group(group).Attributes.size(); ++i)
            if (Text(Group(group).Attributes[i].Name) == name)
                return i;
        return -1;
    }
    std::string Build()
    {
        std::string assertion;
        Log = LogOf([&] {
            assertion = AssertionOf([&] {
                TErrorList errors;
                Data->Build(errors);
                Errors = TextsOf(errors);
            });
        });
        return assertion;
    }

    std::vector<std::string> Errors;
    std::string Log;

private:
    TScheduled Scheduled;
    std::unique_ptr<TExportData> Data;
};

// What a stream says: one text for each command, as "Name in 1 2 out 3 data 00000000".
inline std::string CommandText(const TCommand& command)
{
    static const char* const names[] = {
        "IdConstantEmitter", "IdPackFloatN", "IdUnpackFloatN", "IdWriteEvents", "IdComputeBounds",
        "IdPrune",           "IdUpdateAge",  "IdAdd",          "IdEffect",      "IdRandomEmitter"};
    std::string text = "?";
    for (const char* name : names)
        if (NameToCrc(name) == command.Name)
            text = name;
    auto add = [&](const char* title, const vector<uint32_t>& rows) {
        if (!rows.empty())
            text += title;
        for (const uint32_t row : rows)
            text += row >= RowTemp       ? " t" + std::to_string(row - RowTemp)
                    : row >= RowConstant ? " c" + std::to_string(row - RowConstant)
                                         : " " + std::to_string(row);
    };
    add(" in", command.Inputs);
    add(" out", command.Outputs);
    char hex[4];
    if (!command.Data.empty())
        text += " data ";
    for (const uint8_t byte : command.Data) {
        snprintf(hex, sizeof(hex), "%02x", byte);
        text += hex;
    }
    return text;
}

inline std::vector<std::string> TextsOf(const TCommandStream& stream)
{
    std::vector<std::string> result;
    for (const TCommand& command : stream.Commands)
        result.push_back(CommandText(command));
    return result;
}

// Gives every output of the node a value.
inline void WriteOutputs(TExported& e, TEffectNode* node)
{
    e.Speak(node, [&](TExportData& data) {
        data.SetCommand("IdRandomEmitter", 0);
        for (int port = 0; port < node->GetNodeType()->GetNumOutputs(); ++port)
            data.AddOutput(port, 0, -1);
    });
}

// A trigger, an emitter that it fires, and a stage.
struct TSmallGraph
{
    explicit TSmallGraph(const char* place = "Place", int type = TY_VECTOR3)
    {
        Trigger = AddTrigger(G);
        Emitter = G.Node("Emitter", TU_EMITTER, {"Emission Trigger"}, {{"Position", type}});
        Stage = G.Node("Stage", TU_RENDER, {{place, type}}, {});
        G.Wire(Trigger, 0, Emitter, 0);
        G.Wire(Emitter, 0, Stage, 0);
    }
    void Fill(TExported& e) const
    {
        WriteOutputs(e, Trigger);
        e.Speak(Emitter, [](TExportData& data) { data.SetEmitterTrigger(0); });
        WriteOutputs(e, Emitter);
    }

    TTestGraph G;
    TEffectNode* Trigger;
    TEffectNode* Emitter;
    TEffectNode* Stage;
};

// A population with one of everything: a trigger group, an emitter with a fixed transform, a force, a stage.
struct TFullGraph
{
    TFullGraph()
    {
        Trigger = G.Node("Trigger", TU_TRIGGER, {"Rate"}, {"Trigger", "Time"});
        G.InputValue(Trigger, "Rate", {20});
        Emitter = G.Node("Emitter", TU_EMITTER, {"Emission Trigger", {"Start", TY_TRANSFORM}, "Clock"},
                         {{"Where", TY_TRANSFORM}, {"Age", TY_SCALAR}});
        G.Int(Emitter, "Particle Count", 50);
        Force = G.Node("Force", TU_PROCESS, {{"Where", TY_TRANSFORM}, {"Push", TY_VECTOR3}, "Age"},
                       {{"Where", TY_TRANSFORM}, "Age"});
        G.InputValue(Force, "Push", {1, 2, 3});
        Stage = G.Node("Stage", TU_RENDER, {{"position of it", TY_TRANSFORM}, {"colour", TY_COLOUR}, "blend"},
                       {}, FL_DYNAMICBOUNDS | FL_STATICBOUNDS);
        Stage->GetNodeType()->BoundsMin = TVector3(-1, -2, -3);
        Stage->GetNodeType()->BoundsMax = TVector3(1, 2, 3);
        G.InputValue(Stage, "colour", {1, 0.5f, 0.25f, 1});
        G.Wire(Trigger, "Trigger", Emitter, "Emission Trigger");
        G.Wire(Trigger, "Time", Emitter, "Clock");
        G.Wire(Emitter, "Where", Force, "Where");
        G.Wire(Emitter, "Age", Force, "Age");
        G.Wire(Force, "Where", Stage, "position of it");
        G.Wire(Force, "Age", Stage, "blend");
    }
    void Fill(TExported& e) const
    {
        e.Speak(Trigger, [](TExportData& data) {
            data.SetCommand("IdEffect", 0);
            data.AddInput(0, 0, -1);
            data.AddOutput(0, 0, -1);
            data.AddOutput(1, 0, -1);
            const float zero = 0;
            data.AddGroupConstants(&zero, 1);
        });
        e.Speak(Emitter, [](TExportData& data) {
            data.SetEmitterTrigger(0);
            data.AddInputTransform(1, 2);
            data.PassThrough(1, 0, 0, -1, -1);
            data.SetCommand("IdRandomEmitter", 40);
            data.AddInput(2, 0, -1);
            data.AddOutput(1, 0, -1);
        });
        e.Speak(Force, [](TExportData& data) {
            const uint8_t bytes[5] = {1, 2, 3, 4, 5};
            data.SetData(bytes, 5);
            data.AddPatch("strength", 3, 1);
            data.AddDataTransform(7, 4);
            data.SetCommand("IdAdd", 20);
            data.AddInput(0, 0, 3);
            data.AddInput(1, 0, -1);
            data.AddOutput(0, 0, 3);
            data.SetCommand("IdUpdateAge", 100);
            data.AddInput(2, 0, -1);
            data.AddOutput(1, 0, -1);
        });
        e.Speak(Stage, [](TExportData& data) {
            data.AddRenderStage("IdSpriteRenderStage", Attribs(), 0);
            data.SetStageTexture(0, "smoke.dds");
            data.GetStageState().Enable(SB_BLEND);
            data.GetStageState().BlendFunc(0x302, 1);
        });
        const uint8_t shared[4] = {0, 0, 0, 9};
        e->AddSharedData("Life", shared, 4);
        e->AddSharedData("Flag", shared, 2);
    }
    static vector<int> Attribs()
    {
        vector<int> attribs;
        for (const int attrib : {1, 2, 3, 4})
            attribs.push_back(attrib);
        return attribs;
    }

    TTestGraph G;
    TEffectNode* Trigger;
    TEffectNode* Emitter;
    TEffectNode* Force;
    TEffectNode* Stage;
};
