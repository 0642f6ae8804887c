#include "particles/effectgraph/export/birthvalues.h"

#include "particles/effectgraph/export/exporttestgraph.h"

#include "particles/effectgraph/export/exportlayout.h"

namespace {
using TTexts = std::vector<std::string>;

// A trigger group that gives an emitter values, and the export of that emitter's group with them.
struct TPayload
{
    // Supplied and taken types in pairs.
    explicit TPayload(const std::vector<std::pair<int, int>>& values,
                      const char* trigger = "Emission Trigger")
        : TPayload(MakePorts(values), trigger)
    {
    }
    const TExportGroup& Fired() const { return Result.Groups[Group]; }
    int Row(const char* name) const
    {
        for (const TExportAttribute& attr : Fired().Attributes)
            if (Text(attr.Name) == name)
                return attr.RowStart;
        return -1;
    }
    const TRowFlags& Flags(const char* name) const
    {
        int attrib = 0;
        while (Text(Fired().Attributes[attrib].Name) != name)
            ++attrib;
        return Fired().Emission.Flags[attrib];
    }

    TTestGraph G;
    std::unique_ptr<TScheduled> Scheduled;
    TExportResult Result;
    int Group = -1;

private:
    struct TPorts
    {
        std::vector<TTestPort> Supplied = {"Trigger"};
        std::vector<TTestPort> Taken;
    };
    static TPorts MakePorts(const std::vector<std::pair<int, int>>& values)
    {
        TPorts ports;
        for (size_t i = 0; i < values.size(); ++i) {
            const std::string name = "V" + std::to_string(i);
            ports.Supplied.push_back({name.c_str(), values[i].first});
            ports.Taken.push_back({name.c_str(), values[i].second});
        }
        return ports;
    }
    TPayload(const TPorts& ports, const char* triggerName)
    {
        TEffectNode* trigger = G.Node("Trigger", TU_TRIGGER, {}, ports.Supplied);
        std::vector<TTestPort> inputs = {triggerName};
        inputs.insert(inputs.end(), ports.Taken.begin(), ports.Taken.end());
        TEffectNode* emitter = G.Node("Emitter", TU_EMITTER, inputs, {{"Position", TY_VECTOR3}});
        G.Wire(trigger, 0, emitter, 0);
        for (int i = 1; i < static_cast<int>(inputs.size()); ++i) {
            // Its first consumer gives a supplied value its type.
            TEffectNode* probe =
                G.Node("Probe", TU_TRIGGER, {{"Probe", ports.Supplied[static_cast<size_t>(i)].Type}}, {});
            G.Wire(trigger, i, probe, 0);
            G.Wire(trigger, i, emitter, i);
        }
        G.Wire(emitter, 0, AddSprite(G), 0);
        Scheduled = std::make_unique<TScheduled>(G);
        TExportLayout(Scheduled->Schedule, Result).Lay();
        Group = 1;
        TBirthValues(Scheduled->Schedule, Result.Groups, Group)
            .Add(PlanEvent(Scheduled->Schedule, Result.Groups, Group));
    }
};

std::string Number(int n)
{
    return " " + std::to_string(n);
}
} // namespace

TEST(TBirthValues, PayloadIsUnpackedInFours)
{
    const TPayload payload({{TY_TRANSFORM, TY_TRANSFORM}, {TY_SCALAR, TY_SCALAR}}, "emission trigger");
    const int row = payload.Row("V0");
    EXPECT_EQ(TextsOf(payload.Fired().Emission.Unpack),
              (TTexts{"IdUnpackFloatN out" + Number(row) + Number(row + 1) + Number(row + 2) +
                          Number(row + 3) + " data 00000000",
                      "IdUnpackFloatN out" + Number(row + 4) + Number(row + 5) + " t0 t0 data 00000010",
                      "IdUnpackFloatN out" + Number(payload.Row("V1")) + " t0 t0 t0 data 00000018"}));
    EXPECT_EQ(payload.Fired().EventSize, 32);
    EXPECT_EQ(payload.Flags("V0")[5], TRowFlags::Read);
    EXPECT_EQ(payload.Flags("emission trigger")[0], 0);
}

TEST(TBirthValues, ASuppliersRowsAllTakeTheirPlaces)
{
    const TPayload payload({{TY_TRANSFORM, TY_VECTOR3}, {TY_COLOUR, TY_SCALE}, {TY_SCALAR, TY_SCALAR}});
    const int place = payload.Row("V0");
    const int size = payload.Row("V1");
    // 24 bytes, 16 and 4.
    EXPECT_EQ(TextsOf(payload.Fired().Emission.Unpack),
              (TTexts{"IdUnpackFloatN out" + Number(place) + Number(place + 1) + Number(place + 2) +
                          " t0 data 00000000",
                      "IdUnpackFloatN out" + Number(size) + Number(size + 1) + " t0 t0 data 00000018",
                      "IdUnpackFloatN out" + Number(payload.Row("V2")) + " t0 t0 t0 data 00000028"}));
    EXPECT_EQ(payload.Fired().EventSize, 48);
}

TEST(TBirthValues, WhatTheParentLacksIsConverted)
{
    const TPayload payload({{TY_SCALAR, TY_VECTOR3}});
    const int row = payload.Row("V0");
    EXPECT_EQ(TextsOf(payload.Fired().Emission.Unpack),
              (TTexts{"IdUnpackFloatN out" + Number(row) + " t0 t0 t0 data 00000000"}));
    const TCommandStream& execute = payload.Fired().Emission.Execute;
    ASSERT_EQ(execute.Commands.size(), 4);
    EXPECT_EQ(execute.Commands[1].Name, NameToCrc("IdMul"));
    EXPECT_EQ(execute.Commands[1].Inputs[0], static_cast<uint32_t>(row));
    EXPECT_EQ(execute.Commands[1].Outputs[0], static_cast<uint32_t>(row + 1));
    EXPECT_EQ(payload.Flags("V0")[0], TRowFlags::Read);
    EXPECT_EQ(payload.Flags("V0")[1], TRowFlags::Read | TRowFlags::Written);
    EXPECT_EQ(payload.Fired().EventSize, 16);
}

TEST(TBirthValues, RowsOfASmallerTypeAreZeroed)
{
    const TPayload payload({{TY_SCALE, TY_VECTOR3}});
    const int row = payload.Row("V0");
    EXPECT_EQ(TextsOf(payload.Fired().Emission.Unpack),
              (TTexts{"IdUnpackFloatN out" + Number(row) + Number(row + 1) + " t0 t0 data 00000000"}));
    // The emitter's own output, which nobody has told yet, comes first.
    const TCommand& zeros = payload.Fired().Emission.Execute.Commands[0];
    EXPECT_NE(zeros.Outputs.index_of(static_cast<uint32_t>(row + 2)), -1);
    EXPECT_EQ(zeros.Outputs.index_of(static_cast<uint32_t>(row + 1)), -1);
}
