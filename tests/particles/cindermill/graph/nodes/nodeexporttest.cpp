#include "nodebench.h"

namespace {

constexpr int V3 = TY_VECTOR3;
constexpr int TF = TY_TRANSFORM;

std::string HexOf(const TFloats& values)
{
    std::string result;
    for (const float value : values)
        result += " " + Hex(value);
    return result;
}

} // namespace

TEST(NodeExport, Gravity)
{
    TExportBench bench("TGravity", {{"Velocity", V3}, {"Acceleration", V3}}, {{"Velocity", V3}}, "11");
    EXPECT_EQ(bench.Export(), TTexts{"IdGravityForce out0.0 out0.1 out0.2 Acceleration.0 Acceleration.1 "
                                     "Acceleration.2 -> out0.0 out0.1 out0.2"});
}

TEST(NodeExport, IntegrateOfAPositionIsAGravityCommand)
{
    TExportBench bench("TIntegrate", {{"P", V3}, {"V", V3}}, {{"P", V3}}, "11");
    EXPECT_EQ(bench.Export(),
              TTexts{"IdGravityForce out0.0 out0.1 out0.2 V.0 V.1 V.2 -> out0.0 out0.1 out0.2"});
}

TEST(NodeExport, IntegrateOfATransformTakesBothHalves)
{
    for (const char* name : {"TIntegrate", "TGravity"}) {
        TExportBench bench(name, {{"P", TF}, {"V", TF}}, {{"P", TF}}, "11");
        EXPECT_EQ(
            bench.Export(),
            TTexts{"IdEulerIntegratePosition out0.0 out0.1 out0.2 out0.3 out0.4 out0.5 V.0 V.1 V.2 V.3 V.4 "
                   "V.5 -> out0.0 out0.1 out0.2 out0.3 out0.4 out0.5"});
    }
}

TEST(NodeExport, IntegrateOfATransformByAVectorTakesItsThreeRows)
{
    TExportBench bench("TIntegrate", {{"P", TF}, {"V", V3}}, {{"P", TF}}, "11");
    EXPECT_EQ(bench.Export(),
              TTexts{"IdEulerIntegratePosition out0.0 out0.1 out0.2 out0.3 out0.4 out0.5 V.0 V.1 "
                     "V.2 -> out0.0 out0.1 out0.2 out0.3 out0.4 out0.5"});
}

TEST(NodeExport, AnUnwiredInputBecomesTemporaryRows)
{
    TExportBench bench("TGravity", {{"Velocity", V3}, {"Acceleration", V3}}, {{"Velocity", V3}}, "10");
    bench.Graph.InputValue(bench.Node, "Acceleration", {0, -9.5f, 2});
    EXPECT_EQ(bench.Export(),
              (TTexts{"IdConstantEmitter -> t1 t2 t3 data" + HexOf({0, -9.5f, 2}),
                      "IdGravityForce out0.0 out0.1 out0.2 t1 t2 t3 -> out0.0 out0.1 out0.2"}));
}

TEST(NodeExport, Wind)
{
    TExportBench bench("TWind", {{"V", V3}, {"W", V3}, "S"}, {{"V", V3}}, "111");
    EXPECT_EQ(bench.Export(), TTexts{"IdWind out0.0 out0.1 out0.2 W.0 W.1 W.2 S.0 -> out0.0 out0.1 out0.2"});
}

TEST(NodeExport, Turbulence)
{
    TExportBench bench("TTurbulence", {{"V", V3}, "S"}, {{"V", V3}}, "11");
    EXPECT_EQ(bench.Export(), TTexts{"IdTurbulence out0.0 out0.1 out0.2 S.0 -> out0.0 out0.1 out0.2"});
}

TEST(NodeExport, Damping)
{
    TExportBench vector("TDamping", {{"V", V3}, "D"}, {{"V", V3}}, "11");
    EXPECT_EQ(vector.Export(), TTexts{"IdDamping out0.0 out0.1 out0.2 D.0 -> out0.0 out0.1 out0.2"});
    TExportBench transform("TDamping", {{"V", TF}, "D"}, {{"V", TF}}, "11");
    EXPECT_EQ(
        transform.Export(),
        TTexts{
            "IdDamping out0.0 out0.1 out0.2 out0.3 out0.4 out0.5 D.0 -> out0.0 out0.1 out0.2 out0.3 out0.4 "
            "out0.5"});
}

TEST(NodeExport, Attractor)
{
    TExportBench bench("TAttractor", {{"P", V3}, {"V", V3}, {"A", V3}, "S"}, {{"V", V3}}, "1111");
    EXPECT_EQ(bench.Export(),
              TTexts{"IdAttractor P.0 P.1 P.2 out0.0 out0.1 out0.2 A.0 A.1 A.2 S.0 -> out0.0 out0.1 "
                     "out0.2"});
}

TEST(NodeExport, CollisionPlane)
{
    TExportBench bench("TCollisionPlane",
                       {{"P", V3}, {"V", V3}, {"Plane", TF}, {"Size", TY_SCALE}, "Bounce", "Unused"},
                       {{"P", V3}, {"V", V3}, "Hit"}, "110000");
    bench.Graph.InputValue(bench.Node, "Plane", {1, 2, 3, 0, 0, 0});
    bench.Graph.InputValue(bench.Node, "Size", {5, 6});
    bench.Graph.InputValue(bench.Node, "Bounce", {0.5f});
    // The normal is moved like a point: (1, 3, 3); the plane's point times that is 1 + 6 + 9.
    EXPECT_EQ(bench.Export(), TTexts{"IdPlaneCollision out0.0 out0.1 out0.2 out1.0 out1.1 out1.2 -> out0.0 "
                                     "out0.1 out0.2 out1.0 out1.1 "
                                     "out1.2 out2.0 data" +
                                     HexOf({1, 3, 3, -16, 0.5f})});
    EXPECT_EQ(bench.GetErrors(), TTexts{});
}

TEST(NodeExport, AWiredCollisionPlaneIsAnError)
{
    TExportBench bench("TCollisionPlane",
                       {{"P", V3}, {"V", V3}, {"Plane", TF}, {"Size", TY_SCALE}, "Bounce", "Unused"},
                       {{"P", V3}, {"V", V3}, "Hit"}, "111000");
    EXPECT_EQ(bench.Export(), TTexts{});
    EXPECT_EQ(
        bench.GetErrors(),
        TTexts{
            "Cannot export collision plane node with a variable plane transform connection. Support will be "
            "added in a future version"});
}

TEST(NodeExport, Age)
{
    TExportBench bench("TAge", {"Age", "Max Age"}, {"Age"}, "11");
    EXPECT_EQ(bench.Export(), (TTexts{"IdUpdateAge out0.0 Max Age.0 -> out0.0 t1", "IdPrune t1 ->"}));
}

TEST(NodeExport, PruneTellsAllRows)
{
    TExportBench bench("TPrune", {"Kill"}, {}, "1");
    EXPECT_EQ(bench.Export(), TTexts{"IdPrune Kill.0 -> data 00000001"});
}

TEST(NodeExport, PruneWith32RowsOrMoreTellsAllOnes)
{
    for (const int extra : {30, 31, 40}) {
        TExportBench bench("TPrune", {"Kill"}, {}, "1");
        for (int i = 0; i < extra; ++i) {
            TEffectNode* source = bench.Graph.Node("Other", TU_TRIGGER, {}, {"Out"});
            TEffectNode* sink = bench.Graph.Node("Sink", TU_PROCESS, {"Other"}, {});
            bench.Graph.Class(source, "TEffectExecNode");
            bench.Graph.Class(sink, "TEffectExecNode");
            bench.Graph.Wire(source, 0, sink, 0);
        }
        EXPECT_EQ(bench.Export(), TTexts{extra == 30 ? "IdPrune Kill.0 -> data 7fffffff"
                                                     : "IdPrune Kill.0 -> data ffffffff"});
    }
}

TEST(NodeExport, AnimationPathVolumeAndNoiseExportNothing)
{
    TExportBench volume("TVolume", {{"P", V3}, {"T", TF}, {"S", V3}}, {"R"}, "111");
    volume.Graph.Enum(volume.Node, "Volume Type", {"Sphere"}, 0);
    volume.Graph.Bool(volume.Node, "Output Distance", false);
    EXPECT_EQ(volume.Export(), TTexts{});
    TExportBench noise("TNoise", {{"P", V3}, {"F", V3}}, {"R"}, "11");
    noise.Graph.Group(noise.Node, "Fixed Seed", true, "<Int><name>Random Seed</name></Int>");
    EXPECT_EQ(noise.Export(), TTexts{});
    TExportBench event("TEventTrigger", {"In"}, {"Out"}, "1");
    EXPECT_EQ(event.Export(), TTexts{});
}

TEST(NodeExport, Constant)
{
    TExportBench bench("TConstant", {{"In", TY_COLOUR}}, {{"Value", TY_COLOUR}}, "0");
    bench.Graph.InputValue(bench.Node, "In", {1, 2, 3, 4});
    EXPECT_EQ(bench.Export(),
              TTexts{"IdConstantEmitter -> out0.0 out0.1 out0.2 out0.3 data" + HexOf({1, 2, 3, 4})});
    TExportBench wired("TConstant", {{"In", TY_SCALE}}, {{"Value", TY_SCALE}}, "1");
    EXPECT_EQ(wired.Export(), TTexts{});
    EXPECT_EQ(wired.MovedRows(), (TTexts{"out0.0 = In.0", "out0.1 = In.1"}));
}

TEST(NodeExport, AddGoesComponentByComponent)
{
    TExportBench bench("TAdd", {{"A", V3}, {"B", V3}}, {{"Sum", V3}}, "11");
    EXPECT_EQ(bench.Export(),
              (TTexts{"IdAdd A.0 B.0 -> out0.0", "IdAdd A.1 B.1 -> out0.1", "IdAdd A.2 B.2 -> out0.2"}));
}

TEST(NodeExport, MultiplyRepeatsTheShorterSecondValue)
{
    TExportBench bench("TMultiply", {{"A", TY_COLOUR}, {"B", TY_SCALE}}, {{"Product", TY_COLOUR}}, "11");
    EXPECT_EQ(bench.Export(), (TTexts{"IdMul A.0 B.0 -> out0.0", "IdMul A.1 B.1 -> out0.1",
                                      "IdMul A.2 B.0 -> out0.2", "IdMul A.3 B.1 -> out0.3"}));
}

TEST(NodeExport, BuildVectorPassesItsInputsOn)
{
    TExportBench bench("TBuildVector", {"X", "Y", "Z"}, {{"Vector", V3}}, "101");
    bench.Graph.InputValue(bench.Node, "Y", {5});
    EXPECT_EQ(bench.Export(), TTexts{"IdConstantEmitter -> out0.1 data" + HexOf({5})});
    EXPECT_EQ(bench.MovedRows(), (TTexts{"out0.0 = X.0", "out0.2 = Z.0"}));
}

TEST(NodeExport, MakeTransformPassesItsInputsOn)
{
    TExportBench bench("TMakeTransform", {{"T", V3}, {"R", V3}}, {{"Transform", TF}}, "11");
    EXPECT_EQ(bench.Export(), TTexts{});
    EXPECT_EQ(bench.MovedRows(), (TTexts{"out0.0 = T.0", "out0.1 = T.1", "out0.2 = T.2", "out0.3 = R.0",
                                         "out0.4 = R.1", "out0.5 = R.2"}));
}

TEST(NodeExport, SelectComponent)
{
    const std::vector<std::pair<TTexts, TTexts>> expected = {
        {{}, {"out0.0 = In.0"}},
        {{}, {"out0.0 = In.1"}},
        {{}, {"out0.0 = In.2"}},
        {{"IdLength In.0 In.1 In.2 -> out0.0 data 00000000"}, {}},
        {{"IdLength In.0 In.1 In.2 -> out0.0 data 00000001"}, {}}};
    for (size_t value = 0; value < expected.size(); ++value) {
        TExportBench bench("TSelectComponent", {{"In", V3}}, {"Out"}, "1");
        bench.Graph.Enum(bench.Node, "Component", {"X", "Y", "Z", "Length", "Inverse"},
                         static_cast<int>(value));
        EXPECT_EQ(bench.Export(), expected[value].first);
        EXPECT_EQ(bench.MovedRows(), expected[value].second);
    }
}

TEST(NodeExport, RandomEmitterGoesComponentByComponent)
{
    TExportBench bench("TRandomEmitter", {{"Low", TY_SCALE}, {"High", TY_SCALE}}, {{"Value", TY_SCALE}},
                       "11");
    EXPECT_EQ(bench.Export(),
              (TTexts{"IdRandomEmitter Low.0 High.0 -> out0.0", "IdRandomEmitter Low.1 High.1 -> out0.1"}));
}

TEST(NodeExport, VelocityCone)
{
    TExportBench bench("TVelocityCone", {{"Dir", V3}, "Cos", "Min", "Max"}, {{"V", V3}}, "1111");
    EXPECT_EQ(bench.Export(),
              TTexts{"IdConeEmitter Dir.0 Dir.1 Dir.2 Cos.0 Min.0 Max.0 -> out0.0 out0.1 out0.2"});
}

TEST(NodeExport, VelocityConeTurnsItsFixedDirection)
{
    TExportBench bench("TVelocityCone", {{"Dir", V3}, "Cos", "Min", "Max"}, {{"V", V3}}, "0111");
    bench.Graph.InputValue(bench.Node, "Dir", {0, 1, 0});
    EXPECT_EQ(bench.Export(),
              (TTexts{"IdConstantEmitter -> t1 t2 t3 data" + HexOf({0, 1, 0}) + " patch \"transform 0\" 0@0",
                      "IdConeEmitter t1 t2 t3 Cos.0 Min.0 Max.0 -> out0.0 out0.1 out0.2"}));
    EXPECT_EQ(bench.Data->GetResult().Groups[bench.Group].Process.Transforms[0].Type, 3);
}

TEST(NodeExport, PointEmitterAndGridPassTheirTransformOn)
{
    for (const bool isGrid : {false, true}) {
        std::vector<TTestPort> inputs = {"Emission Trigger", {"Transform", TF}};
        if (isGrid)
            inputs.push_back({"Size", TY_SCALE});
        TExportBench bench(isGrid ? "TGrid" : "TPointEmitter", inputs, {{"Position", TF}}, "100", TU_EMITTER);
        bench.Graph.Int(bench.Node, "X Divisions", 1);
        bench.Graph.Int(bench.Node, "Y Divisions", 1);
        bench.Graph.Enum(bench.Node, "Emit Type", {"Random"}, 0);
        bench.Graph.InputValue(bench.Node, "Transform", {1, 2, 3, 4, 5, 6});
        EXPECT_EQ(bench.Export(),
                  TTexts{"IdConstantEmitter -> out0.0 out0.1 out0.2 out0.3 out0.4 out0.5 data" +
                         HexOf({1, 2, 3, 4, 5, 6}) + " patch \"transform 0\" 0@0"});
        const TExportGroup& group = bench.Data->GetResult().Groups[bench.Group];
        ASSERT_EQ(group.Emission.Transforms.size(), 1);
        EXPECT_EQ(group.Emission.Transforms[0].Type, 2);
        EXPECT_EQ(group.TriggerGroup, 1 - bench.Group);
        EXPECT_EQ(Text(group.Attributes[group.TriggerInput].Name), "Emission Trigger");
    }
}

TEST(NodeExport, SphereSurface)
{
    TExportBench bench("TSphereSurface", {"Emission Trigger", {"Transform", TF}, {"Scale", V3}, {"Turn", TF}},
                       {{"Position", V3}, {"Normal", V3}}, "1000", TU_EMITTER);
    bench.Graph.InputValue(bench.Node, "Transform", {1, 2, 3, 0, 0, 180});
    bench.Graph.InputValue(bench.Node, "Scale", {7, 8, 9});
    const TTexts lines = bench.Export();
    ASSERT_EQ(lines.size(), 1u);
    // Half a turn about z is the quaternion (0, 0, +-1, about 0).
    const std::string start = "IdSphereSurfaceEmitter -> out0.0 out0.1 out0.2 out1.0 out1.1 out1.2 data" +
                              HexOf({1, 2, 3, 0, 0}) + " ";
    EXPECT_EQ(lines[0].substr(0, start.size()), start);
    const std::string end = HexOf({7, 8, 9}) + " patch \"transform 0\" 0@0";
    EXPECT_EQ(lines[0].substr(lines[0].size() - end.size()), end);
    EXPECT_EQ(lines[0].size(), start.size() + 8 + 1 + 8 + end.size());
    EXPECT_EQ(lines[0].substr(start.size() + 1, 7), Hex(1).substr(1));
    EXPECT_EQ(bench.Data->GetResult().Groups[bench.Group].Emission.Transforms[0].Type, 0);
}

TEST(NodeExport, SphereSurfaceTurnsAnglesIntoAQuaternion)
{
    TExportBench bench("TSphereSurface", {"Emission Trigger", {"Transform", TF}, {"Scale", V3}, {"Turn", TF}},
                       {{"Position", V3}, {"Normal", V3}}, "1000", TU_EMITTER);
    const TTexts lines = bench.Export();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("data" + HexOf({0, 0, 0, 0, 0, 0, 1, 0, 0, 0})), std::string::npos) << lines[0];
}

TEST(NodeExport, EmissionTrigger)
{
    for (const bool limited : {false, true}) {
        TExportBench bench("TEmitter", {"Rate", "Start Delay"}, {"Count", "Time"}, "11");
        bench.Graph.Enum(bench.Node, "Emit Mode", {"Chance", "Steady=1", "Burst=2"}, 2);
        bench.Graph.Int(bench.Node, "Per frame max emission", 300);
        bench.Graph.Group(bench.Node, "Max life time", limited,
                          "<Scalar><name>Life Time</name><defaultvalue>2.5</defaultvalue></Scalar>");
        EXPECT_EQ(bench.Export(),
                  TTexts{"IdEmissionTrigger Rate.0 Start Delay.0 c0 c1 -> out0.0 out1.0 c0 c1 data " +
                         Hex(limited ? 2.5f : 0.0f) + " 022c0000"});
    }
}

TEST(NodeExport, Shaper)
{
    TExportBench bench("TShaper", {"Time", "Life"}, {{"Value", TY_SCALE}}, "11");
    bench.Graph.Parameter(bench.Node, "<Ramp><name>Value</name><type>scale</type>"
                                      "<defaultvalues>{0,0},{2,4}</defaultvalues>"
                                      "<defaultvalues>{0,1},{1,1}</defaultvalues></Ramp>");
    const TTexts lines = bench.Export();
    ASSERT_EQ(lines.size(), 2u);
    const std::string head = " data " + Hex(31.5f) + " 00000000 00010040";
    const std::string first = "IdShaper Time.0 Life.0 -> out0.0" + head + HexOf({0});
    EXPECT_EQ(lines[0].substr(0, first.size()), first);
    EXPECT_EQ(lines[0].substr(lines[0].size() - 8), Hex(4));
    std::string constant = "IdShaper Time.0 Life.0 -> out0.1" + head;
    for (int i = 0; i < 64; ++i)
        constant += HexOf({1});
    EXPECT_EQ(lines[1], constant);
}

TEST(NodeExport, APolyRampShaperCountsItsOwnOutputsComponents)
{
    const std::vector<std::pair<int, size_t>> counts = {{TY_SCALAR, 1},     {TY_SCALE, 2},  {V3, 3},
                                                        {TY_QUATERNION, 3}, {TY_COLOUR, 4}, {TF, 0}};
    for (const auto& [type, count] : counts) {
        TExportBench bench("TShaper", {"Time", "Life"}, {{"Other", TY_COLOUR}, {"Value", type}}, "11");
        bench.Graph.Parameter(bench.Node, "<PolyRamp><name>Value</name><output>Value</output></PolyRamp>");
        EXPECT_EQ(bench.Export().size(), count) << type;
    }
}

TEST(NodeExport, AnimatedTexture)
{
    TExportBench bench("TAnimatedTexture", {"Time"}, {{"UVs", TY_TEXCOORDS}}, "1");
    bench.Graph.Scalar(bench.Node, "Time Range", 1.5f);
    bench.Graph.Int(bench.Node, "X Divisions", 2);
    bench.Graph.Int(bench.Node, "Y Divisions", 3);
    bench.Graph.Int(bench.Node, "Tile Count", 260);
    bench.Graph.Enum(bench.Node, "Loop Mode", {"Clamp", "Loop", "PingPong=2"}, 2);
    EXPECT_EQ(bench.Export(), TTexts{"IdAnimatedTexture Time.0 -> out0.0 out0.1 out0.2 out0.3 data " +
                                     Hex(1.5f) + " 02030402"});
}

TEST(NodeExport, Effect)
{
    TExportBench bench("TEffect", {}, {"Time", "User Scalar", {"User Rotation", TY_QUATERNION}}, "");
    bench.Graph.Group(bench.Node, "Max Life Time", true,
                      "<Scalar><name>Life Time</name><defaultvalue>4</defaultvalue></Scalar>");
    bench.Graph.Scalar(bench.Node, "A", 2);
    bench.Graph.Value(bench.Node, TY_QUATERNION, "B", {1, 2, 3});
    bench.Graph.Bool(bench.Node, "C", true);
    bench.Graph.Enum(bench.Node, "D", {"None=5", "All=9"}, 1);
    bench.Graph.Int(bench.Node, "E", -2);
    bench.Graph.Group(bench.Node, "F", false, "");
    bench.Graph.Group(bench.Node, "G", true, "");
    bench.Graph.Parameter(bench.Node, "<Texture><name>H</name></Texture>");
    bench.Graph.Bool(bench.Node, "I", false);
    const int own = bench.Node->GetNodeType()->NumOwnParameters;
    bench.Graph.Scalar(bench.Node, "User Scalar", 6);
    bench.Graph.Value(bench.Node, TY_QUATERNION, "User Rotation", {7, 8, 9});
    bench.Node->GetNodeType()->NumOwnParameters = own;
    EXPECT_EQ(bench.Export(),
              (TTexts{"IdEffect c0 -> out0.0 c0 data" + HexOf({4}),
                      "IdConstantEmitter -> out1.0 data" + HexOf({6}) + " patch \"User Scalar\" 1@0",
                      "IdConstantEmitter -> out2.0 out2.1 out2.2 out2.3 data" + HexOf({7, 8, 9, 0}) +
                          " patch \"User Rotation\" 4@0"}));
    TTexts shared;
    for (const TSharedData& entry : bench.Data->GetResult().SharedData) {
        std::string line = Text(entry.Name);
        for (int i = 0; i < entry.Data.size(); ++i) {
            char text[4];
            snprintf(text, sizeof(text), "%s%02x", i % 4 == 0 ? " " : "", entry.Data[i]);
            line += text;
        }
        shared.push_back(line);
    }
    EXPECT_EQ(shared, (TTexts{"A" + HexOf({2}), "B" + HexOf({1, 2, 3}), "C ffffffff", "D 00000009",
                              "E fffffffe", "F 00000000", "G ffffffff", "I 00000000"}));
}

TEST(NodeExport, AnEffectWithoutItsLifeTimeStops)
{
    TExportBench without("TEffect", {}, {"Time"}, "");
    EXPECT_EQ(AssertionOf([&] { without.Export(); }), "group != 0");
    TExportBench empty("TEffect", {}, {"Time"}, "");
    empty.Graph.Group(empty.Node, "Max Life Time", false, "");
    EXPECT_EQ(AssertionOf([&] { empty.Export(); }), "param != 0");
}

TEST(NodeExport, AnEffectWithoutALimitLivesForNoTime)
{
    TExportBench bench("TEffect", {}, {"Time"}, "");
    bench.Graph.Group(bench.Node, "Max Life Time", false,
                      "<Scalar><name>Life Time</name><defaultvalue>4</defaultvalue></Scalar>");
    EXPECT_EQ(bench.Export(), TTexts{"IdEffect c0 -> out0.0 c0 data" + HexOf({0})});
}
