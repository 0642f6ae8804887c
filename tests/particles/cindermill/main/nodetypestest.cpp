#include "support/testapp.h"

#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/simpleparameters.h"

#include <map>
#include <set>

namespace {

constexpr uint32_t S = 1u << TY_SCALAR;
constexpr uint32_t SC = 1u << TY_SCALE;
constexpr uint32_t V = 1u << TY_VECTOR3;
constexpr uint32_t Q = 1u << TY_QUATERNION;
constexpr uint32_t C = 1u << TY_COLOUR;
constexpr uint32_t T = 1u << TY_TRANSFORM;
constexpr uint32_t UV = 1u << TY_TEXCOORDS;
constexpr uint32_t Motion = V | T;

struct TParam
{
    const char* Path;
    int Kind;
};

// What a run-time class takes for granted of every node type that names it.
struct TClassRow
{
    const char* Class;
    // The types that each port may have, by index. A port of a node type allows some of them.
    std::vector<uint32_t> Inputs;
    std::vector<uint32_t> Outputs;
    std::vector<TParam> Parameters;
    // More outputs than told.
    bool IsOpenEnded = false;
};

const std::vector<TParam> StageStates = {
    {"Alpha Blend", PK_GROUP},
    {"Alpha Blend.Blend Equation", PK_ENUM},
    {"Alpha Blend.Source Function", PK_ENUM},
    {"Alpha Blend.Dest Function", PK_ENUM},
    {"Alpha Test", PK_GROUP},
    {"Alpha Test.Function", PK_ENUM},
    {"Alpha Test.Ref Value", TY_SCALAR},
    {"Depth Test", PK_GROUP},
    {"Depth Test.Function", PK_ENUM},
    {"Cull Face", PK_GROUP},
    {"Cull Face.Mode", PK_ENUM},
    {"Polygon Offset", PK_GROUP},
    {"Polygon Offset.Factor", TY_SCALAR},
    {"Polygon Offset.Units", TY_SCALAR},
};

std::vector<TParam> Stage(std::vector<TParam> textures)
{
    textures.insert(textures.end(), StageStates.begin(), StageStates.end());
    return textures;
}

const std::vector<TParam> OneTexture = {{"Texture", PK_TEXTURE}};
const std::vector<TParam> TwoTextures = {{"Base Texture", PK_TEXTURE}, {"Blend Texture", PK_TEXTURE}};

// Components of any kind, but for texture rectangles.
constexpr uint32_t Any = S | SC | V | Q | C | T;

const std::vector<TClassRow>& Rows()
{
    static const std::vector<TClassRow> rows = {
        {"TEffect", {}, {S}, {{"Max Life Time", PK_GROUP}, {"Max Life Time.Life Time", TY_SCALAR}}, true},
        {"TEmitter",
         {S, S},
         {S, S},
         {{"Emit Mode", PK_ENUM},
          {"Per frame max emission", PK_INT},
          {"Max life time", PK_GROUP},
          {"Max life time.Life Time", TY_SCALAR}}},
        {"TPointEmitter", {S, T}, {T}, {{"Particle Count", PK_INT}}},
        {"TGrid",
         {S, T, SC},
         {T},
         {{"Particle Count", PK_INT},
          {"X Divisions", PK_INT},
          {"Y Divisions", PK_INT},
          {"Emit Type", PK_ENUM}}},
        {"TSphereSurface", {S, T, V, T}, {V, V}, {{"Particle Count", PK_INT}}},
        {"TVelocityCone", {V, S, S, S}, {V}, {}},
        {"TRandomEmitter", {Any, Any}, {Any}, {}},
        {"TEventTrigger", {S}, {}, {}},
        {"TGravity", {Motion, V}, {Motion}, {}},
        {"TWind", {Motion, V, S}, {Motion}, {}},
        {"TTurbulence", {Motion, S}, {Motion}, {}},
        {"TDamping", {Motion, S}, {Motion}, {}},
        {"TAttractor", {Motion, Motion, V, S}, {Motion}, {}},
        {"TIntegrate", {Motion, Motion}, {Motion}, {}},
        {"TCollisionPlane", {Motion, Motion, T, SC, S, S}, {Motion, Motion, S}, {}},
        {"TAge", {S, S}, {S}, {}},
        {"TPrune", {S}, {}, {}},
        {"TAnimationPath", {S}, {T}, {{"Animation", PK_ANIMATION}}},
        {"TVolume", {Motion, T, V}, {S}, {{"Volume Type", PK_ENUM}, {"Output Distance", PK_BOOL}}},
        {"TConstant", {Any | UV}, {Any | UV}, {}},
        {"TAdd", {Any, Any}, {Any}, {}},
        {"TMultiply", {Any, Any}, {Any}, {}},
        {"TBuildVector", {S, S, S}, {V}, {}},
        {"TMakeTransform", {V, V}, {T}, {}},
        {"TSelectComponent", {V}, {S}, {{"Component", PK_ENUM}}},
        // What noise has components for.
        {"TNoise",
         {V, V},
         {S | SC | V | C | T},
         {{"Fixed Seed", PK_GROUP}, {"Fixed seed.Random Seed", PK_INT}}},
        {"TShaper", {S, S}, {S | SC | V | Q | C}, {{"Value", -1}}},
        {"TAnimatedTexture",
         {S},
         {UV},
         {{"Time Range", TY_SCALAR},
          {"X Divisions", PK_INT},
          {"Y Divisions", PK_INT},
          {"Tile Count", PK_INT},
          {"Loop Mode", PK_ENUM}}},
        {"TQuadRenderStage", {T, SC, C, UV}, {}, Stage(OneTexture)},
        {"TBlendedQuadRenderStage", {T, SC, S, C, UV}, {}, Stage(TwoTextures)},
        {"TSpriteRenderStage", {T, SC, C, UV}, {}, Stage(OneTexture)},
        {"TBlendedSpriteRenderStage", {T, SC, S, C, UV}, {}, Stage(TwoTextures)},
        {"TVelocityTrailRenderStage", {V, V, SC, C, UV}, {}, Stage(OneTexture)},
    };
    return rows;
}

uint32_t TypesOfInput(const TNodeType& type, int port)
{
    const TNodeParameter* input = type.GetInput(port);
    if (input->Type == TY_POLYTYPE)
        return static_cast<const TNodePolytypeParameter*>(input)->GetValidTypes();
    return 1u << input->Type;
}

class NodeTypes : public testing::Test
{
protected:
    const TNodeTypeLibrary& Library() { return App.Get().GetNodeTypes(); }
    std::vector<const TNodeType*> TypesOfClass(const std::string& name)
    {
        std::vector<const TNodeType*> result;
        for (int i = 0; i < Library().GetNumTypes(); ++i)
            if (Text(Library().GetType(i)->ClassName) == name)
                result.push_back(Library().GetType(i));
        return result;
    }

    TTestApp App;
};

void ExpectPorts(const TNodeType& type, const TClassRow& row)
{
    EXPECT_EQ(type.GetNumInputs(), static_cast<int>(row.Inputs.size()));
    for (int i = 0; i < type.GetNumInputs() && i < static_cast<int>(row.Inputs.size()); ++i) {
        const uint32_t types = TypesOfInput(type, i);
        EXPECT_NE(types, 0u) << i;
        EXPECT_EQ(types & ~row.Inputs[static_cast<size_t>(i)], 0u) << type.GetInput(i)->Name.Print();
    }
    if (row.IsOpenEnded)
        EXPECT_GE(type.GetNumOutputs(), static_cast<int>(row.Outputs.size()));
    else
        EXPECT_EQ(type.GetNumOutputs(), static_cast<int>(row.Outputs.size()));
    for (int i = 0; i < type.GetNumOutputs() && i < static_cast<int>(row.Outputs.size()); ++i) {
        EXPECT_NE(type.GetOutput(i).ValidTypes, 0u) << i;
        EXPECT_EQ(type.GetOutput(i).ValidTypes & ~row.Outputs[static_cast<size_t>(i)], 0u)
            << type.GetOutput(i).Name.Print();
    }
}

void ExpectParameters(const TNodeType& type, const TClassRow& row)
{
    for (const TParam& param : row.Parameters) {
        const TNodeParameter* found = type.FindParameter(param.Path);
        ASSERT_NE(found, nullptr) << param.Path;
        if (param.Kind == -1)
            EXPECT_TRUE(found->Type == PK_RAMP || found->Type == PK_POLYRAMP) << param.Path;
        else
            EXPECT_EQ(found->Type, param.Kind) << param.Path;
    }
}

// The numbers of an enum, from 0 on without gaps or doubles.
int CountNumbers(const TNodeType& type, const char* path)
{
    const auto* parameter = type.FindParameterOf<TNodeEnumParameter>(path, PK_ENUM);
    if (parameter == nullptr)
        return -1;
    std::set<int> numbers;
    for (const TNodeEnumParameter::TEntry& entry : parameter->GetValues())
        numbers.insert(entry.Number);
    const int count = static_cast<int>(numbers.size());
    const bool whole =
        count == parameter->GetValues().size() && *numbers.begin() == 0 && *numbers.rbegin() == count - 1;
    return whole ? count : -2;
}

} // namespace

TEST_F(NodeTypes, AllFilesLoad)
{
    // The application of the fixture throws on the first error.
    EXPECT_GE(Library().GetNumTypes(), static_cast<int>(Rows().size()));
    std::set<std::string> names;
    for (int i = 0; i < Library().GetNumTypes(); ++i) {
        EXPECT_TRUE(names.insert(Text(Library().GetType(i)->Name)).second)
            << Library().GetType(i)->Name.Print();
        EXPECT_FALSE(Library().GetType(i)->Description.IsEmpty()) << Library().GetType(i)->Name.Print();
    }
}

TEST_F(NodeTypes, EveryRunTimeClassHasATypeAndARow)
{
    std::set<std::string> classes;
    for (const TClassRow& row : Rows()) {
        classes.insert(row.Class);
        EXPECT_FALSE(TypesOfClass(row.Class).empty()) << row.Class;
        EXPECT_TRUE(IsClassA(FindClassByName(row.Class), TEffectExecNode::ClassId())) << row.Class;
    }
    EXPECT_EQ(classes.size(), 33u);
    for (int i = 0; i < Library().GetNumTypes(); ++i)
        EXPECT_EQ(classes.count(Text(Library().GetType(i)->ClassName)), 1u)
            << Library().GetType(i)->Name.Print();
    for (int id = 0; id < GetNumClasses(); ++id)
        if (id != TEffectExecNode::ClassId() && IsClassA(id, TEffectExecNode::ClassId()) &&
            std::string(GetClassName(id)).find("Test") == std::string::npos) {
            const std::unique_ptr<TEffectExecNode> node(static_cast<TEffectExecNode*>(CreateClass(id)));
            if (node != nullptr) {
                EXPECT_EQ(classes.count(GetClassName(id)), 1u) << GetClassName(id);
            }
        }
}

TEST_F(NodeTypes, PortsAreThoseOfTheClass)
{
    for (const TClassRow& row : Rows())
        for (const TNodeType* type : TypesOfClass(row.Class)) {
            SCOPED_TRACE(type->Name.Print());
            ExpectPorts(*type, row);
        }
}

TEST_F(NodeTypes, ParametersAreThoseThatTheClassLooksUp)
{
    for (const TClassRow& row : Rows())
        for (const TNodeType* type : TypesOfClass(row.Class)) {
            SCOPED_TRACE(type->Name.Print());
            ExpectParameters(*type, row);
        }
}

TEST_F(NodeTypes, EnumsOfferTheNumbersThatTheClassKnows)
{
    const struct
    {
        const char* Class;
        const char* Path;
        int Count;
    } rows[] = {
        {"TEmitter", "Emit Mode", 3},         {"TGrid", "Emit Type", 2},
        {"TVolume", "Volume Type", 3},        {"TSelectComponent", "Component", 5},
        {"TAnimatedTexture", "Loop Mode", 3},
    };
    for (const auto& row : rows)
        for (const TNodeType* type : TypesOfClass(row.Class))
            EXPECT_EQ(CountNumbers(*type, row.Path), row.Count) << row.Path;
    for (const TClassRow& row : Rows()) {
        if (std::string(row.Class).find("RenderStage") == std::string::npos)
            continue;
        for (const TNodeType* type : TypesOfClass(row.Class)) {
            SCOPED_TRACE(type->Name.Print());
            // One less than the clamps allow: the last number reads another table.
            EXPECT_EQ(CountNumbers(*type, "Alpha Blend.Blend Equation"), 5);
            EXPECT_EQ(CountNumbers(*type, "Alpha Blend.Source Function"), 15);
            EXPECT_EQ(CountNumbers(*type, "Alpha Blend.Dest Function"), 15);
            EXPECT_EQ(CountNumbers(*type, "Alpha Test.Function"), 8);
            EXPECT_EQ(CountNumbers(*type, "Depth Test.Function"), 8);
            EXPECT_EQ(CountNumbers(*type, "Cull Face.Mode"), 2);
        }
    }
}

TEST_F(NodeTypes, CategoriesAreWhatTheScheduleExpects)
{
    const std::map<std::string, int> categories = {
        {"TEffect", 4},
        {"TEmitter", TU_TRIGGER},
        {"TEventTrigger", TU_TRIGGER},
        {"TPointEmitter", TU_EMITTER},
        {"TGrid", TU_EMITTER},
        {"TSphereSurface", TU_EMITTER},
    };
    for (int i = 0; i < Library().GetNumTypes(); ++i) {
        const TNodeType& type = *Library().GetType(i);
        const std::string name = Text(type.ClassName);
        if (name.find("RenderStage") != std::string::npos)
            EXPECT_EQ(type.Category, TU_RENDER) << name;
        else if (categories.count(name) != 0)
            EXPECT_EQ(type.Category, categories.at(name)) << name;
        else
            EXPECT_TRUE(type.Category == TU_PROCESS || type.Category == TU_TRIGGER) << name;
    }
}

TEST_F(NodeTypes, NamesThatTheScheduleLooksUpAreThere)
{
    // Life times go by the names of the types, emission by the names of ports and parameters.
    const TNodeType& age = App.Type("Age");
    EXPECT_EQ(Text(age.ClassName), "TAge");
    ASSERT_EQ(age.FindInput("Max Age"), 1);
    EXPECT_EQ(age.GetInput(1)->Type, TY_SCALAR);
    EXPECT_EQ(age.GetTiedOutput(0), 0);
    const TNodeType& emitter = App.Type("Emitter");
    EXPECT_EQ(Text(emitter.ClassName), "TEmitter");
    ASSERT_EQ(emitter.FindInput("Start Delay"), 1);
    EXPECT_EQ(emitter.GetInput(1)->Type, TY_SCALAR);
    for (const char* name : {"TPointEmitter", "TGrid", "TSphereSurface"})
        for (const TNodeType* type : TypesOfClass(name)) {
            EXPECT_EQ(type->FindInput("Emission Trigger"), 0) << name;
            EXPECT_TRUE(type->IsInputRequired(0)) << name;
        }
}

TEST_F(NodeTypes, ForcesChangeTheirValueInPlace)
{
    for (const char* name : {"TGravity", "TWind", "TTurbulence", "TDamping", "TIntegrate", "TAge"})
        for (const TNodeType* type : TypesOfClass(name))
            EXPECT_EQ(type->GetTiedOutput(0), 0) << name;
    for (const TNodeType* type : TypesOfClass("TAttractor"))
        EXPECT_EQ(type->GetTiedOutput(1), 0);
    for (const TNodeType* type : TypesOfClass("TCollisionPlane")) {
        EXPECT_EQ(type->GetTiedOutput(0), 0);
        EXPECT_EQ(type->GetTiedOutput(1), 1);
    }
}

TEST_F(NodeTypes, InputsOfStagesBearTheNamesOfTheShaders)
{
    // By the name of the input the console finds the vertex attribute; a transform gives two of them.
    const std::map<std::string, std::vector<std::string>> names = {
        {"TQuadRenderStage", {"Transform", "Scale", "Colour", "UVs"}},
        {"TBlendedQuadRenderStage", {"Transform", "Scale", "Blend", "Colour", "UVs"}},
        {"TSpriteRenderStage", {"Transform", "Scale", "Colour", "UVs"}},
        {"TBlendedSpriteRenderStage", {"Transform", "Scale", "Blend", "Colour", "UVs"}},
        {"TVelocityTrailRenderStage", {"Position", "Velocity", "Scale", "Colour", "UVs"}},
    };
    for (const auto& [name, inputs] : names)
        for (const TNodeType* type : TypesOfClass(name)) {
            std::vector<std::string> found;
            for (int i = 0; i < type->GetNumInputs(); ++i)
                found.push_back(Text(type->GetInput(i)->Name));
            EXPECT_EQ(found, inputs) << name;
        }
}

TEST_F(NodeTypes, DisplayClassesAreThoseOfThePreview)
{
    const std::map<std::string, std::string> displays = {
        {"TAttractor", "TAttractorDisplay"}, {"TCollisionPlane", "TCollisionPlaneDisplay"},
        {"TGrid", "TGridDisplay"},           {"TSphereSurface", "TSphereSurfaceDisplay"},
        {"TVolume", "TVolumeDisplay"},       {"TAnimationPath", "TAnimationPathDisplay"},
    };
    for (int i = 0; i < Library().GetNumTypes(); ++i) {
        const TNodeType& type = *Library().GetType(i);
        const auto it = displays.find(Text(type.ClassName));
        EXPECT_EQ(Text(type.DisplayClass), it == displays.end() ? "" : it->second) << type.Name.Print();
    }
    // The sphere's display asks for these by name.
    for (const TNodeType* type : TypesOfClass("TSphereSurface")) {
        EXPECT_NE(type->FindInput("Translation"), -1);
        EXPECT_NE(type->FindInput("Scale"), -1);
    }
}

TEST_F(NodeTypes, UserValuesOfAnEffectArePassedOn)
{
    for (const TNodeType* type : TypesOfClass("TEffect")) {
        // Every output but the first brings a parameter of its own, last in the list and in their order.
        EXPECT_EQ(type->GetNumParameters(), type->NumOwnParameters + type->GetNumOutputs() - 1);
        for (int i = 1; i < type->GetNumOutputs(); ++i) {
            const TNodeParameter* parameter = type->GetParameter(type->NumOwnParameters + i - 1);
            EXPECT_EQ(Text(parameter->Name), Text(type->GetOutput(i).Name));
            EXPECT_EQ(parameter->Type, type->GetOutput(i).Type);
        }
    }
}

// The preview gives no hint of what the console does not know.
TEST_F(NodeTypes, WhatIsNotExportedSaysSo)
{
    for (const char* className : {"TNoise", "TVolume", "TAnimationPath"})
        for (const TNodeType* type : TypesOfClass(className))
            EXPECT_NE(Text(type->Description).find("It is not exported."), std::string::npos) << className;
}

TEST_F(NodeTypes, NoTypeIsStaleAgainstItsOwnLibrary)
{
    for (int i = 0; i < Library().GetNumTypes(); ++i) {
        const TNodeType& type = *Library().GetType(i);
        EXPECT_FALSE(type.NeedsRefresh(Library())) << type.Name.Print();
        const std::unique_ptr<TNodeType> copy(type.Clone());
        EXPECT_FALSE(copy->NeedsRefresh(Library())) << type.Name.Print();
    }
}
