#include "effectbench.h"

namespace {

// For each pair of types; what has no conversion is among them.
template <class TWork>
void ForEachPair(TWork&& work)
{
    for (int from = TY_SCALAR; from <= TY_TEXCOORDS; ++from)
        for (int to = TY_SCALAR; to <= TY_TEXCOORDS; ++to) {
            SCOPED_TRACE(std::string(GetTypeName(from)) + " to " + GetTypeName(to));
            work(from, to);
        }
}

// Nodes that take a value in three ways: as a whole, row by row with a constant, and row by row with itself.
TEffectNode* AddTaker(TEffectBench& bench, const std::string& className, int type)
{
    if (className == "TConstant")
        return bench.Add("TConstant", TU_PROCESS, {{"Value", type}}, {{"Result", type}});
    TEffectNode* node =
        bench.Add(className.c_str(), TU_PROCESS, {{"A", type}, {"B", type}}, {{"Result", type}});
    static const float numbers[] = {3, 5, 7, 9, 11, 13};
    bench.Graph.InputValue(node, "B", std::vector<float>(numbers, numbers + GetTypeFloats(type)));
    return node;
}

const char* const Takers[] = {"TConstant", "TMultiply", "TAdd"};

} // namespace

TEST(ConversionReplay, EachPairAtAnInput)
{
    for (const char* taker : Takers) {
        SCOPED_TRACE(taker);
        ForEachPair([&](int from, int to) {
            TEffectBench bench;
            TEffectNode* emitter = bench.AddPopulation();
            const TEffectBench::TShownValue value = bench.AddShownValue(emitter, from, {"Result", to});
            TEffectNode* node = AddTaker(bench, taker, to);
            bench.Graph.Wire(value.Source, 0, node, 0);
            bench.Graph.Wire(node, 0, value.Stage, 2);
            ExpectAgreement(bench.Run());
            EXPECT_TRUE(bench.HasInputPair({from, to}));
        });
    }
}

TEST(ConversionReplay, EachPairAtAnOutput)
{
    for (const char* taker : Takers) {
        SCOPED_TRACE(taker);
        ForEachPair([&](int from, int to) {
            TEffectBench bench;
            bench.AddPopulation();
            TEffectNode* source = bench.AddSource(from);
            TEffectNode* node = AddTaker(bench, taker, from);
            bench.Graph.Wire(source, 0, node, 0);
            bench.AddSink(node, 0, to);
            ExpectAgreement(bench.Run());
            EXPECT_TRUE(bench.HasOutputPair({from, to}));
        });
    }
}

TEST(ConversionReplay, EachPairFromAParent)
{
    ForEachPair([&](int from, int to) {
        TEffectBench bench;
        TEffectNode* emitter = bench.AddPopulation();
        TEffectNode* stage = bench.Add("TEffectExecNode", TU_RENDER,
                                       {{"Place", TY_TRANSFORM}, {"Taken", to}, {"Marker", TY_SCALAR}}, {});
        bench.Graph.Wire(emitter, 0, stage, 0);
        TEffectNode* source = bench.AddSource(from);
        bench.AddSink(source, 0, from);
        bench.Graph.Wire(source, 0, stage, 1);
        // What lies behind it in the event is found at its place.
        bench.Graph.Wire(bench.AddSource(TY_SCALAR), 0, stage, 2);
        ExpectAgreement(bench.Run());
        EXPECT_TRUE(bench.HasParentPair({from, to}));
    });
}

TEST(ConversionReplay, EachPairAtAFixedValueThatIsPassedOn)
{
    ForEachPair([&](int from, int to) {
        TEffectBench bench;
        bench.AddPopulation();
        bench.AddSink(bench.AddSource(from), 0, to);
        ExpectAgreement(bench.Run());
    });
}

TEST(ConversionReplay, MixedTypesOfASum)
{
    ForEachPair([&](int from, int to) {
        for (const char* taker : {"TAdd", "TMultiply"}) {
            TEffectBench bench;
            bench.AddPopulation();
            TEffectNode* a = bench.AddSource(to);
            TEffectNode* b = bench.AddSource(from);
            bench.AddSink(a, 0, to);
            bench.AddSink(b, 0, from);
            // The second input converts what it gets.
            TEffectNode* node =
                bench.Add(taker, TU_PROCESS, {{"A", to}, {"B", to}}, {{"Result", TY_VECTOR3}});
            bench.Graph.Wire(a, 0, node, 0);
            bench.Graph.Wire(b, 0, node, 1);
            bench.AddSink(node, 0, TY_VECTOR3);
            ExpectAgreement(bench.Run());
        }
    });
}

TEST(ConversionReplay, EachPairAtANodeThatWorksInPlace)
{
    for (const std::string mover : {"TGravity", "TIntegrate", "TDamping"}) {
        SCOPED_TRACE(mover);
        ForEachPair([&](int from, int to) {
            // Motion works on places and transforms.
            if (to != TY_VECTOR3 && to != TY_TRANSFORM)
                return;
            TEffectBench bench;
            TEffectNode* emitter = bench.AddPopulation();
            TEffectNode* source = bench.AddSource(from);
            const int byType = mover == "TDamping" ? TY_SCALAR : TY_VECTOR3;
            TEffectNode* node =
                bench.Add(mover.c_str(), TU_PROCESS, {{"V", to}, {"By", byType}}, {{"V", to}});
            static const float numbers[] = {0.5f, 2, 3};
            bench.Graph.InputValue(node, "By", std::vector<float>(numbers, numbers + GetTypeFloats(byType)));
            TEffectNode* stage =
                bench.Add("TEffectExecNode", TU_RENDER, {{"Place", TY_TRANSFORM}, {"Shown", from}}, {});
            bench.Graph.Wire(emitter, 0, stage, 0);
            bench.Graph.Wire(source, 0, node, 0);
            bench.Graph.Wire(node, 0, stage, 1);
            ExpectAgreement(bench.Run());
            EXPECT_TRUE(bench.HasInputPair({from, to}));
            EXPECT_TRUE(bench.HasOutputPair({to, from}));
        });
    }
}

TEST(ConversionReplay, APointEmitterStartsWhereItsWireTellsIt)
{
    ForEachPair([&](int from, int to) {
        TEffectBench bench;
        TEffectNode* emitter = bench.AddPopulation();
        TEffectNode* source = bench.AddSource(from);
        bench.AddSink(source, 0, from);
        bench.Graph.Wire(source, 0, emitter, 1);
        TEffectNode* stage = bench.Add("TEffectExecNode", TU_RENDER, {{"Shown", to}}, {});
        bench.Graph.Wire(emitter, 0, stage, 0);
        ExpectAgreement(bench.Run());
    });
}

TEST(ConversionReplay, ASelectedComponentOfAnything)
{
    for (int component = 0; component < 5; ++component)
        for (int from = TY_SCALAR; from <= TY_TEXCOORDS; ++from) {
            SCOPED_TRACE(std::string(GetTypeName(from)) + ", " + std::to_string(component));
            TEffectBench bench;
            TEffectNode* emitter = bench.AddPopulation();
            const TEffectBench::TShownValue value = bench.AddShownValue(emitter, from, {"Result", TY_COLOUR});
            TEffectNode* node =
                bench.Add("TSelectComponent", TU_PROCESS, {{"Vector", TY_VECTOR3}}, {"Value"});
            bench.Graph.Enum(node, "Component", {"X", "Y", "Z", "Length", "Inverse"}, component);
            bench.Graph.Wire(value.Source, 0, node, 0);
            bench.Graph.Wire(node, 0, value.Stage, 2);
            ExpectAgreement(bench.Run());
            EXPECT_TRUE(bench.HasInputPair({from, TY_VECTOR3}));
        }
}

TEST(ConversionReplay, ABypassedNodeConvertsToo)
{
    ForEachPair([&](int from, int to) {
        TEffectBench bench;
        bench.AddPopulation();
        TEffectNode* source = bench.AddSource(from);
        TEffectNode* node =
            bench.Add("TGravity", TU_PROCESS, {{"V", to}, {"By", TY_VECTOR3}}, {{"V", to}, {"New", from}});
        node->GetNodeType()->Flags |= FL_BYPASSABLE | FL_BYPASSED;
        bench.Graph.Wire(source, 0, node, 0);
        bench.AddSink(node, 0, from);
        bench.AddSink(node, 1, to);
        ExpectAgreement(bench.Run());
    });
}

TEST(ConversionReplay, EveryTypeAtAScalarInput)
{
    struct TScalarInput
    {
        const char* ClassName;
        std::vector<TTestPort> Inputs;
        TTestPort Output;
        // What the emitter's value runs through, and the scalar.
        const char* Through;
        const char* Scalar;
    };
    const TScalarInput table[] = {
        {"TDamping", {{"V", TY_VECTOR3}, "D"}, {"V", TY_VECTOR3}, "V", "D"},
        {"TWind", {{"V", TY_VECTOR3}, {"W", TY_VECTOR3}, "S"}, {"V", TY_VECTOR3}, "V", "S"},
        {"TAttractor",
         {{"P", TY_VECTOR3}, {"V", TY_VECTOR3}, {"A", TY_VECTOR3}, "S"},
         {"V", TY_VECTOR3},
         "V",
         "S"},
        {"TAge", {"Age", "Max Age"}, "Age", "Age", "Max Age"},
    };
    for (const TScalarInput& input : table)
        for (int from = TY_SCALAR; from <= TY_TEXCOORDS; ++from) {
            SCOPED_TRACE(std::string(input.ClassName) + " fed with " + GetTypeName(from));
            TEffectBench bench;
            TEffectNode* emitter = bench.AddPopulation();
            const TEffectBench::TShownValue value =
                bench.AddShownValue(emitter, from, {"Shown", input.Output.Type});
            TEffectNode* node = bench.Add(input.ClassName, TU_PROCESS, input.Inputs, {input.Output});
            bench.Graph.Wire(emitter, "Start", node, input.Through);
            bench.Graph.Wire(value.Source, "Out", node, input.Scalar);
            bench.Graph.Wire(node, 0, value.Stage, 2);
            ExpectAgreement(bench.Run());
            EXPECT_TRUE(bench.HasInputPair({from, TY_SCALAR}));
        }
}

TEST(ConversionReplay, APruneFedWithAnythingTestsOneRow)
{
    for (int from = TY_SCALAR; from <= TY_TEXCOORDS; ++from) {
        SCOPED_TRACE(GetTypeName(from));
        TEffectBench bench;
        TEffectNode* emitter = bench.AddPopulation();
        bench.Graph.InputValue(emitter, "Transform", {1, 2, 3, 4, 5, 6});
        TEffectNode* turn = bench.Add("TConstant", TU_PROCESS, {{"Value", from}}, {{"Value", from}});
        TEffectNode* stage = bench.Add("TEffectExecNode", TU_RENDER, {{"Shown", from}}, {});
        TEffectNode* prune = bench.Add("TPrune", TU_PROCESS, {"Kill"}, {});
        bench.Graph.Wire(emitter, 0, turn, 0);
        bench.Graph.Wire(turn, 0, stage, 0);
        bench.Graph.Wire(turn, 0, prune, 0);
        ExpectAgreement(bench.Run());
    }
}

TEST(ConversionReplay, ANumberOfBirthsMayBeOfAnyType)
{
    for (int from = TY_SCALAR; from <= TY_TEXCOORDS; ++from) {
        SCOPED_TRACE(GetTypeName(from));
        TEffectBench bench;
        TEffectNode* source = bench.AddSource(from);
        bench.AddSink(source, 0, from);
        TEffectNode* emitter =
            bench.Add("TPointEmitter", TU_EMITTER, {"Emission Trigger", {"Transform", TY_TRANSFORM}},
                      {{"Start", TY_TRANSFORM}});
        TEffectNode* stage = bench.Add("TEffectExecNode", TU_RENDER, {{"Place", TY_TRANSFORM}}, {});
        bench.Graph.Wire(source, 0, emitter, 0);
        bench.Graph.Wire(emitter, 0, stage, 0);
        ExpectAgreement(bench.Run());
    }
}

TEST(ConversionReplay, SoMayThatOfAnotherGroupThanTheParent)
{
    for (int from = TY_SCALAR; from <= TY_TEXCOORDS; ++from) {
        SCOPED_TRACE(GetTypeName(from));
        TEffectBench bench;
        TEffectNode* parent = bench.AddPopulation();
        TEffectNode* source = bench.AddSource(from);
        bench.AddSink(source, 0, from);
        TEffectNode* child =
            bench.Add("TPointEmitter", TU_EMITTER, {"Emission Trigger", {"Transform", TY_TRANSFORM}},
                      {{"Start", TY_TRANSFORM}});
        TEffectNode* stage = bench.Add("TEffectExecNode", TU_RENDER, {{"Place", TY_TRANSFORM}}, {});
        bench.Graph.Wire(source, 0, child, 0);
        bench.Graph.Wire(parent, 0, child, 1);
        bench.Graph.Wire(child, 0, stage, 0);
        ExpectAgreement(bench.Run());
    }
}

TEST(ConversionReplay, ChildrenOfOneParentHaveTheirOwnNumbers)
{
    TEffectBench bench;
    TEffectNode* parent = bench.AddPopulation();
    bench.Graph.InputValue(parent, "Transform", {1, 2, 3, 4, 5, 6});
    for (const float number : {1.0f, 2.0f}) {
        TEffectNode* count = bench.Add("TConstant", TU_TRIGGER, {"In"}, {"Out"});
        bench.Graph.InputValue(count, "In", {number});
        TEffectNode* child =
            bench.Add("TPointEmitter", TU_EMITTER, {"Emission Trigger", {"Transform", TY_TRANSFORM}},
                      {{"Start", TY_TRANSFORM}});
        bench.Graph.Int(child, "Particle Count", 500);
        TEffectNode* stage =
            bench.Add("TEffectExecNode", TU_RENDER, {{"Place", TY_TRANSFORM}, {"From", TY_VECTOR3}}, {});
        bench.Graph.Wire(count, 0, child, 0);
        bench.Graph.Wire(parent, 0, child, 1);
        bench.Graph.Wire(child, 0, stage, 0);
        // A value of the parent that only the child uses.
        bench.Graph.Wire(parent, 0, stage, 1);
    }
    ExpectAgreement(bench.Run());
    bench.RunEngine(3);
    std::vector<int> counts;
    for (int g = 0; g < bench.Exec.GetNumGroups(); ++g)
        if (!bench.Schedule.IsTriggerGroup(g))
            counts.push_back(bench.Exec.GetNumParticles(g));
    std::sort(counts.begin(), counts.end());
    // Three parents fire one and two particles each in every frame.
    EXPECT_EQ(counts, (std::vector<int>{3, 9, 18}));
}

TEST(ConversionReplay, AnEventOfMoreRowsThanACommandHasNamesItsGroup)
{
    TEffectBench bench;
    TEffectNode* emitter = bench.AddPopulation();
    constexpr int numTransforms = 6;
    std::vector<TTestPort> inputs = {{"Place", TY_TRANSFORM}};
    const std::string names[] = {"A", "B", "C", "D", "E", "F"};
    for (const std::string& name : names)
        inputs.push_back({name.c_str(), TY_TRANSFORM});
    TEffectNode* stage = bench.Add("TEffectExecNode", TU_RENDER, inputs, {});
    bench.Graph.Wire(emitter, 0, stage, 0);
    for (int i = 1; i <= numTransforms; ++i)
        bench.Graph.Wire(bench.AddSource(TY_TRANSFORM), 0, stage, i);
    // Six rows each, and the count of births.
    EXPECT_EQ(bench.Run().Differences,
              (std::vector<std::string>{
                  "not exported: inputcount <= ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS : The event for "
                  "group 1 carries 37 rows, of which a command has 32 at most"}));
}
