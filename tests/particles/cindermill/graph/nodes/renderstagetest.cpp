#include "support/testgraph.h"

#include "library/containers/nametocrc.h"
#include "particles/cindermill/graph/nodes/nodes.h"
#include "particles/cindermill/graph/nodes/renderstage.h"

#include <bit>
#include <map>
#include <set>

namespace {

// The program around the stages: a folder of textures, of which some are broken.
class TTestServices : public TExecServices
{
public:
    int GetTraceParticleSize() const override { return 0; }
    int GetTraceAttributeSize() const override { return 0; }
    int GetPolicyFlags() const override { return 0; }
    bool FindResource(const char* name, TString& path) override
    {
        if (Missing.count(name) != 0)
            return false;
        path = (std::string("/textures/") + name).c_str();
        return true;
    }
    bool LoadTexture(const char* path, TRenderTextureInstance&) override
    {
        Loaded.push_back(path);
        return Broken.count(path) == 0;
    }
    void Warn(const char* text) override { Warnings.push_back(text); }

    std::set<std::string> Missing;
    std::set<std::string> Broken;
    std::vector<std::string> Loaded;
    std::vector<std::string> Warnings;
};

struct TStageCase
{
    const char* ClassName;
    const char* Command;
    std::vector<const char*> Textures;
    std::vector<const char*> NoFile;
    // The inputs behind the first, with the number of their attribute.
    std::vector<std::pair<TTestPort, uint32_t>> Inputs;
    int FirstType;
};

const std::vector<TStageCase> Cases = {
    {"TQuadRenderStage",
     "IdQuadRenderStage",
     {"Texture"},
     {"No texture specified in Quad Render Stage"},
     {{{"Scale", TY_SCALE}, 2}, {{"Colour", TY_COLOUR}, 3}, {{"UVs", TY_TEXCOORDS}, 4}},
     TY_TRANSFORM},
    {"TBlendedQuadRenderStage",
     "IdBlendedQuadRenderStage",
     {"Base Texture", "Blend Texture"},
     {"No base texture specified in Blended Quad Render Stage",
      "No blend texture specified in Blended Quad Render Stage"},
     {{{"Scale", TY_SCALE}, 2},
      {{"Blend", TY_SCALAR}, 3},
      {{"Colour", TY_COLOUR}, 4},
      {{"UVs", TY_TEXCOORDS}, 5}},
     TY_TRANSFORM},
    {"TSpriteRenderStage",
     "IdSpriteRenderStage",
     {"Texture"},
     {"No texture specified in Quad Render Stage"},
     {{{"Scale", TY_SCALE}, 2}, {{"Colour", TY_COLOUR}, 3}, {{"UVs", TY_TEXCOORDS}, 4}},
     TY_TRANSFORM},
    {"TBlendedSpriteRenderStage",
     "IdBlendedSpriteRenderStage",
     {"Base Texture", "Blend Texture"},
     {"No base texture specified in Blended Quad Render Stage",
      "No blend texture specified in Blended Quad Render Stage"},
     {{{"Scale", TY_SCALE}, 2},
      {{"Blend", TY_SCALAR}, 3},
      {{"Colour", TY_COLOUR}, 4},
      {{"UVs", TY_TEXCOORDS}, 5}},
     TY_TRANSFORM},
    {"TVelocityTrailRenderStage",
     "IdVelocityTrailRenderStage",
     {"Texture"},
     {"No texture specified in Velocity Trail Render Stage"},
     {{{"Velocity", TY_VECTOR3}, 1},
      {{"Scale", TY_SCALE}, 2},
      {{"Colour", TY_COLOUR}, 3},
      {{"UVs", TY_TEXCOORDS}, 4}},
     TY_VECTOR3},
};

struct TGroupCase
{
    const char* Name;
    std::vector<std::pair<const char*, bool>> Members;
};

// The state parameters in the order in which they are asked for; true for an enum, otherwise a scalar.
const std::vector<TGroupCase> Groups = {
    {"Alpha Blend", {{"Blend Equation", true}, {"Source Function", true}, {"Dest Function", true}}},
    {"Alpha Test", {{"Function", true}, {"Ref Value", false}}},
    {"Depth Test", {{"Function", true}}},
    {"Cull Face", {{"Mode", true}}},
    {"Polygon Offset", {{"Factor", false}, {"Units", false}}},
};

using TSettings = std::map<std::string, float>;

// The numbers that an enum of a stage has, and the position of the first.
constexpr int FirstNumber = -2;
constexpr int LastNumber = 20;

std::string EnumXml(const char* name, int number)
{
    std::string xml = std::string("<Enum><name>") + name + "</name>";
    for (int n = FirstNumber; n <= LastNumber; ++n)
        xml += "<value>N" + std::to_string(n) + "=" + std::to_string(n) + "</value>";
    return xml + "<defaultvalue>N" + std::to_string(number) + "</defaultvalue></Enum>";
}

std::string ScalarXml(const char* name, float value)
{
    return std::string("<Scalar><name>") + name + "</name><defaultvalue>" + std::to_string(value) +
           "</defaultvalue></Scalar>";
}

std::string GroupXml(const TGroupCase& group, const TSettings& settings, const std::string& without)
{
    const auto valueOf = [&](const std::string& path) {
        const auto found = settings.find(path);
        return found == settings.end() ? 0.0f : found->second;
    };
    std::string xml = std::string("<Group><name>") + group.Name + "</name><defaultvalue>" +
                      (valueOf(group.Name) != 0 ? "true" : "false") + "</defaultvalue><parameters>";
    for (const auto& [name, isEnum] : group.Members) {
        const std::string path = std::string(group.Name) + "." + name;
        if (path != without)
            xml += isEnum ? EnumXml(name, static_cast<int>(valueOf(path))) : ScalarXml(name, valueOf(path));
    }
    return xml + "</parameters></Group>";
}

std::string PortXml(const TTestPort& port)
{
    const std::string tag = GetParameterTag(port.Type);
    return "<" + tag + "><name>" + port.Name + "</name></" + tag + ">";
}

std::unique_ptr<TNodeType> MakeType(const TStageCase& stage, const TSettings& settings,
                                    const std::string& without)
{
    std::string xml = "<node><name>My Stage</name><type>render</type><colour>red</colour><parameters>";
    for (const char* texture : stage.Textures)
        if (without != texture)
            xml += std::string("<Texture><name>") + texture + "</name></Texture>";
    for (const TGroupCase& group : Groups)
        if (without != group.Name)
            xml += GroupXml(group, settings, without);
    xml += "</parameters><inputs>" + PortXml({"Place", stage.FirstType});
    for (const auto& input : stage.Inputs)
        xml += PortXml(input.first);
    xml += std::string("</inputs><code><classname>") + stage.ClassName + "</classname></code></node>";

    const TTempFolder folder;
    const std::string path = folder.Path("stage.xml");
    WriteBytes(path, xml);
    auto type = std::make_unique<TNodeType>();
    TErrorList errors;
    if (!type->LoadXml(path.c_str(), errors))
        throw std::runtime_error(TextsOf(errors).at(0));
    return type;
}

// One stage in a graph of its own. Settings are by path: a group's own path switches it on.
class TStage
{
public:
    explicit TStage(const TStageCase& stage, const TSettings& settings = {}, const std::string& without = {})
        : Case(stage), Exec(Services)
    {
        RegisterExecNodes();
        Node = Graph.AddNode(MakeType(stage, settings, without));
    }
    ~TStage() { delete Stage; }

    TNodeTextureParameter* Texture(size_t i)
    {
        return Node->GetNodeType()->FindParameterOf<TNodeTextureParameter>(Case.Textures.at(i), PK_TEXTURE);
    }
    void SetTextures()
    {
        Texture(0)->SetValue("first.dds");
        if (Case.Textures.size() == 2)
            Texture(1)->SetValue("second.dds");
    }
    bool Create()
    {
        Stage = static_cast<TRenderStage*>(TEffectExecNode::Create(Node, &Exec, Errors));
        return Stage != nullptr;
    }
    std::vector<std::string> ErrorTexts() const { return TextsOf(Errors); }

    const TStageCase& Case;
    TTestGraph Graph;
    TEffectNode* Node = nullptr;
    TTestServices Services;
    TEffectExec Exec;
    TErrorList Errors;
    TRenderStage* Stage = nullptr;
};

using TTexts = std::vector<std::string>;

TEST(RenderStage, ClassesAreRegistered)
{
    RegisterExecNodes();
    for (const TStageCase& stage : Cases) {
        const int id = FindClassByName(stage.ClassName);
        ASSERT_NE(id, -1) << stage.ClassName;
        EXPECT_EQ(GetClassParent(id), TEffectExecNode::ClassId());
    }
}

TEST(RenderStage, InitLoadsTheTexturesInOrder)
{
    for (const TStageCase& stageCase : Cases) {
        TStage stage(stageCase);
        stage.SetTextures();
        ASSERT_TRUE(stage.Create()) << stageCase.ClassName;
        EXPECT_TRUE(stage.Errors.empty());
        TTexts expected = {"/textures/first.dds"};
        if (stageCase.Textures.size() == 2)
            expected.push_back("/textures/second.dds");
        EXPECT_EQ(stage.Services.Loaded, expected);
        for (size_t i = 0; i < expected.size(); ++i)
            EXPECT_EQ(Text(stage.Stage->GetTexturePath(static_cast<int>(i))), expected[i]);
    }
}

TEST(RenderStage, WithoutATextureFileInitFailsWithItsMessage)
{
    for (const TStageCase& stageCase : Cases) {
        TStage first(stageCase);
        EXPECT_FALSE(first.Create());
        EXPECT_EQ(first.ErrorTexts(), TTexts{stageCase.NoFile[0]});
        if (stageCase.Textures.size() != 2)
            continue;
        TStage second(stageCase);
        second.Texture(0)->SetValue("first.dds");
        EXPECT_FALSE(second.Create());
        EXPECT_EQ(second.ErrorTexts(), TTexts{stageCase.NoFile[1]});
    }
}

TEST(RenderStage, MissingTextureParameter)
{
    for (const TStageCase& stageCase : Cases)
        for (const char* texture : stageCase.Textures) {
            TStage stage(stageCase, {}, texture);
            for (size_t i = 0; i < stageCase.Textures.size(); ++i)
                if (stage.Texture(i) != nullptr)
                    stage.Texture(i)->SetValue("some.dds");
            EXPECT_FALSE(stage.Create());
            EXPECT_EQ(stage.ErrorTexts(),
                      TTexts{std::string("Missing parameter \"") + texture + "\" for node My Stage"});
        }
}

TEST(RenderStage, MissingStateParameterIsNamedByItsPath)
{
    for (const TGroupCase& group : Groups) {
        std::vector<std::string> paths = {group.Name};
        for (const auto& member : group.Members)
            paths.push_back(std::string(group.Name) + "." + member.first);
        for (const std::string& path : paths) {
            TStage stage(Cases[0], {}, path);
            stage.SetTextures();
            EXPECT_FALSE(stage.Create());
            EXPECT_EQ(stage.ErrorTexts(), TTexts{"Missing parameter \"" + path + "\" for node My Stage"});
        }
    }
}

TEST(RenderStage, UnresolvedAndBrokenTextures)
{
    TStage unresolved(Cases[0]);
    unresolved.SetTextures();
    unresolved.Services.Missing = {"first.dds"};
    EXPECT_FALSE(unresolved.Create());
    EXPECT_EQ(unresolved.ErrorTexts(), TTexts{"Could not resolve path for texture first.dds"});

    TStage broken(Cases[1]);
    broken.SetTextures();
    broken.Services.Broken = {"/textures/second.dds"};
    EXPECT_FALSE(broken.Create());
    EXPECT_EQ(broken.ErrorTexts(), TTexts{"Could not load texture second.dds\n"});
}

TEST(RenderStage, ChangedTextureIsLoadedIntoItsSlot)
{
    TStage stage(Cases[1]);
    stage.SetTextures();
    ASSERT_TRUE(stage.Create());
    stage.Services.Loaded.clear();
    stage.Texture(1)->SetValue("third.dds");
    EXPECT_EQ(stage.Services.Loaded, TTexts{"/textures/third.dds"});
    EXPECT_EQ(Text(stage.Stage->GetTexturePath(0)), "/textures/first.dds");
    EXPECT_EQ(Text(stage.Stage->GetTexturePath(1)), "/textures/third.dds");
}

TEST(RenderStage, ChangeThatFailsKeepsTheOldTexture)
{
    TStage stage(Cases[0]);
    stage.SetTextures();
    ASSERT_TRUE(stage.Create());
    stage.Services.Missing = {"gone.dds"};
    stage.Texture(0)->SetValue("gone.dds");
    EXPECT_TRUE(stage.Services.Warnings.empty());
    stage.Services.Broken = {"/textures/bad.dds"};
    stage.Texture(0)->SetValue("bad.dds");
    EXPECT_EQ(stage.Services.Warnings, TTexts{"Could not load texture bad.dds\n"});
    EXPECT_EQ(Text(stage.Stage->GetTexturePath(0)), "/textures/first.dds");
    EXPECT_TRUE(stage.Errors.empty());
}

TEST(RenderStage, GoneStageListensNoMore)
{
    TStage stage(Cases[1]);
    stage.SetTextures();
    ASSERT_TRUE(stage.Create());
    delete stage.Stage;
    stage.Stage = nullptr;
    stage.Services.Loaded.clear();
    stage.Texture(0)->SetValue("other.dds");
    stage.Texture(1)->SetValue("other.dds");
    EXPECT_TRUE(stage.Services.Loaded.empty());
}

TEST(RenderStage, FailedStageListensNoMore)
{
    TStage stage(Cases[1]);
    stage.Texture(0)->SetValue("first.dds");
    EXPECT_FALSE(stage.Create());
    stage.Services.Loaded.clear();
    stage.Texture(0)->SetValue("other.dds");
    stage.Texture(1)->SetValue("other.dds");
    EXPECT_TRUE(stage.Services.Loaded.empty());
}

TEST(RenderStage, StaticDataIsSharedByTheClass)
{
    TStage one(Cases[4]);
    TStage two(Cases[4]);
    one.SetTextures();
    two.SetTextures();
    ASSERT_TRUE(one.Create());
    ASSERT_TRUE(two.Create());
    const TRenderStageStatic& shared = one.Stage->GetStaticData();
    EXPECT_EQ(&shared, &two.Stage->GetStaticData());
    EXPECT_NE(shared.VertexShader, nullptr);
    EXPECT_TRUE(shared.FragmentShader->IsFragmentProgram());
    EXPECT_EQ(shared.AttribTable.size(), 5);
    EXPECT_EQ(shared.Uniforms.size(), 2);
    EXPECT_EQ(shared.Samplers.size(), 1);
    EXPECT_EQ(shared.CornerAttrib, 5);
    EXPECT_EQ(shared.CornerMask, 1u << 5);
}

TEST(RenderStage, ClassWithoutShadersStopsTheProgram)
{
    const TRenderStageKind kind = {"TNoStage", "IdNoStage", {}, {}, {}, {}};
    TRenderStageStatic shared(kind);
    EXPECT_EQ(AssertionOf([&] { shared.Build(); }),
              "StaticData.VertexShader != 0 && StaticData.FragmentShader != 0");
}

TEST(RenderStage, AttribTableIsInInputOrderAndLeavesTheCornerOut)
{
    for (const TStageCase& stageCase : Cases) {
        TStage stage(stageCase);
        stage.SetTextures();
        ASSERT_TRUE(stage.Create());
        const TRenderStageStatic& shared = stage.Stage->GetStaticData();
        int expected = 2 + static_cast<int>(stageCase.Inputs.size());
        if (stageCase.FirstType == TY_VECTOR3)
            --expected;
        ASSERT_EQ(shared.AttribTable.size(), expected) << stageCase.ClassName;
        for (int i = 0; i < expected; ++i)
            EXPECT_EQ(shared.AttribTable[i], i);
        EXPECT_EQ(shared.CornerAttrib, expected);
    }
}

TEST(RenderStage, CornersRunRoundTheQuad)
{
    TStage stage(Cases[0]);
    stage.SetTextures();
    ASSERT_TRUE(stage.Create());
    const TVertexStream& corners = stage.Stage->GetStaticData().CornerStream;
    EXPECT_EQ(corners.GetCount(), 4);
    EXPECT_EQ(corners.GetStride(), 8);
    ASSERT_EQ(corners.GetElements().size(), 1);
    EXPECT_EQ(corners.GetElements()[0].Size, 2);
    const float expected[8] = {-1, -1, 1, -1, 1, 1, -1, 1};
    const float* data = static_cast<const float*>(corners.GetData());
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(data[i], expected[i]);
}

// The stage in an effect: a trigger fires an emitter, whose particles the stage draws.
class TExportedStage
{
public:
    explicit TExportedStage(const TStageCase& stageCase, const TSettings& settings = {})
        : Stage(stageCase, settings)
    {
        TEffectNode* trigger = Stage.Graph.Node("Trigger", TU_TRIGGER, {}, {"Trigger"});
        TEffectNode* emitter =
            Stage.Graph.Node("Emitter", TU_EMITTER, {"Emission Trigger"}, {{"Place", stageCase.FirstType}});
        Stage.Graph.Wire(trigger, 0, emitter, 0);
        Stage.Graph.Wire(emitter, 0, Stage.Node, 0);
        Stage.SetTextures();
    }
    void Export()
    {
        ASSERT_TRUE(Stage.Stage != nullptr || Stage.Create());
        LogOf([&] { ASSERT_TRUE(Schedule.Create(Stage.Graph.GetGraph(), Stage.Errors)); });
        Data = std::make_unique<TExportData>(Schedule);
        for (int g = 0; g < Schedule.GetNumGroups(); ++g)
            for (int t = 0; t < Schedule.GetNumTiedNodes(g); ++t)
                if (Schedule.GetNode(Schedule.GetTiedNode(g, t)) == Stage.Node)
                    Export(g, t);
    }
    void Choose(const std::string& path, int number)
    {
        const TNodeType* type = Stage.Node->GetNodeType();
        type->FindParameterOf<TNodeEnumParameter>(path.c_str(), PK_ENUM)->SetValue(number - FirstNumber);
    }
    const TRenderStageData& Record() const { return Data->GetResult().Groups[Group].RenderStages[0]; }
    std::vector<uint32_t> Words() const
    {
        const vector<uint32_t>& words = Record().State.GetWords();
        return std::vector<uint32_t>(words.begin(), words.end());
    }

    TStage Stage;
    TEffectSchedule Schedule;
    std::unique_ptr<TExportData> Data;
    int Group = -1;

private:
    void Export(int group, int tied)
    {
        Group = group;
        Data->SetCurrent(group, tied);
        Stage.Stage->SetPosition(group, tied, nullptr);
        Stage.Stage->Export(*Data, Stage.Errors);
        Data->Flush();
        EXPECT_TRUE(Data->OutputEmpty());
    }
};

std::vector<uint32_t> WordsOf(const TSettings& settings)
{
    TExportedStage stage(Cases[0], settings);
    stage.Export();
    return stage.Group == -1 ? std::vector<uint32_t>{0xDEAD} : stage.Words();
}

uint32_t Bits(float value)
{
    return std::bit_cast<uint32_t>(value);
}

using TWords = std::vector<uint32_t>;

TEST(RenderStageExport, CommandAndTextures)
{
    for (const TStageCase& stageCase : Cases) {
        TExportedStage stage(stageCase);
        stage.Export();
        ASSERT_NE(stage.Group, -1);
        ASSERT_EQ(stage.Data->GetResult().Groups[stage.Group].RenderStages.size(), 1);
        const TRenderStageData& record = stage.Record();
        EXPECT_EQ(stage.Data->GetResult().Table.GetId(record.CommandIndex), NameToCrc(stageCase.Command));
        EXPECT_EQ(Text(record.Textures[0]), "first.dds");
        EXPECT_EQ(Text(record.Textures[1]), stageCase.Textures.size() == 2 ? "second.dds" : "");
    }
}

TEST(RenderStageExport, UnconnectedInputsAreStageConstants)
{
    for (const TStageCase& stageCase : Cases) {
        SCOPED_TRACE(stageCase.ClassName);
        TExportedStage stage(stageCase);
        stage.Stage.Graph.InputValue(stage.Stage.Node, "Colour", {0.1f, 0.2f, 0.3f, 0.4f});
        stage.Stage.Graph.InputValue(stage.Stage.Node, "Scale", {2, 3});
        stage.Export();
        const vector<TStageConstant>& constants = stage.Record().Constants;
        ASSERT_EQ(constants.size(), static_cast<int>(stageCase.Inputs.size()));
        for (int i = 0; i < constants.size(); ++i) {
            const auto& [port, attribute] = stageCase.Inputs[static_cast<size_t>(i)];
            EXPECT_EQ(constants[i].Attrib, attribute);
            if (port.Name == "Colour") {
                EXPECT_EQ(constants[i].Value[3], 0.4f);
            } else if (port.Name == "Scale") {
                EXPECT_EQ(constants[i].Value[1], 3.0f);
            }
        }
    }
}

TEST(RenderStageExport, DynamicBoundsFollowTheFirstInput)
{
    TExportedStage stage(Cases[4]);
    stage.Stage.Node->GetNodeType()->SetFlag(FL_DYNAMICBOUNDS, true);
    stage.Export();
    ASSERT_NE(stage.Group, -1);
    EXPECT_EQ(stage.Data->GetResult().Groups[stage.Group].NumDynamicBounds, 1);
    const vector<TCommand>& commands = stage.Data->GetResult().Groups[stage.Group].Process.Execute.Commands;
    ASSERT_FALSE(commands.empty());
    EXPECT_EQ(commands.back().Name, NameToCrc("IdComputeBounds"));
    EXPECT_EQ(commands.back().Inputs.size(), 3);
}

TEST(RenderStageExport, StatesThatAreOffWriteNothing)
{
    EXPECT_TRUE(WordsOf({}).empty());
}

TEST(RenderStageExport, AllStatesInTheirOrder)
{
    const TWords expected = {
        0x40310, 1,     0x40320, 0x80088008, 0x80314, 0x03020302,  0x80048004, 0x40304, 1,
        0x80308, 0x204, 127,     0x40A74,    1,       0x40A6C,     0x203,      0x4183C, 1,
        0x41830, 0x405, 0x40A68, 1,          0x80A78, Bits(-1.5f), Bits(4),
    };
    EXPECT_EQ(WordsOf({{"Alpha Blend", 1},
                       {"Alpha Blend.Blend Equation", 2},
                       {"Alpha Blend.Source Function", 4},
                       {"Alpha Blend.Dest Function", 14},
                       {"Alpha Test", 1},
                       {"Alpha Test.Function", 4},
                       {"Alpha Test.Ref Value", 0.5f},
                       {"Depth Test", 1},
                       {"Depth Test.Function", 3},
                       {"Cull Face", 1},
                       {"Cull Face.Mode", 1},
                       {"Polygon Offset", 1},
                       {"Polygon Offset.Factor", -1.5f},
                       {"Polygon Offset.Units", 2}}),
              expected);
}

struct TTableCase
{
    const char* Group;
    const char* Member;
    // The word that the value decides, and what of it counts.
    size_t Word;
    uint32_t Significant;
    std::vector<uint32_t> Table;
};

const std::vector<uint32_t> Compares = {0x200, 0x201, 0x202, 0x203, 0x204, 0x205, 0x206, 0x207};
const std::vector<uint32_t> Factors = {0,     1,     0x300, 0x301,  0x302,  0x303,  0x304,  0x305,
                                       0x306, 0x307, 0x308, 0x8001, 0x8002, 0x8003, 0x8004, 0x200};

TEST(RenderStageExport, TablesAndTheirLimits)
{
    const TTableCase table[] = {
        // One past the equations stands the first function, one past the functions the first comparison.
        {"Alpha Blend", "Blend Equation", 3, 0xFFFF, {0x8006, 0x8007, 0x8008, 0x800A, 0x800B, 0}},
        {"Alpha Blend", "Source Function", 5, 0xFFFF, Factors},
        {"Alpha Blend", "Dest Function", 6, 0xFFFF, Factors},
        {"Alpha Test", "Function", 3, 0xFFFFFFFF, Compares},
        {"Depth Test", "Function", 3, 0xFFFFFFFF, Compares},
        {"Cull Face", "Mode", 3, 0xFFFFFFFF, {0x404, 0x405}},
    };
    for (const TTableCase& entry : table) {
        const std::string path = std::string(entry.Group) + "." + entry.Member;
        SCOPED_TRACE(path);
        TExportedStage stage(Cases[0], {{entry.Group, 1}});
        for (int value = FirstNumber; value <= LastNumber; ++value) {
            stage.Choose(path, value);
            stage.Export();
            const TWords words = stage.Words();
            const size_t clamped =
                static_cast<size_t>(std::clamp(value, 0, static_cast<int>(entry.Table.size()) - 1));
            ASSERT_GT(words.size(), entry.Word);
            EXPECT_EQ(words[entry.Word] & entry.Significant, entry.Table[clamped]) << value;
        }
    }
}

TEST(RenderStageExport, ValuesAreReadWhenTheExportIsMade)
{
    TExportedStage stage(Cases[0], {{"Depth Test", 1}, {"Depth Test.Function", 1}});
    stage.Export();
    EXPECT_EQ(stage.Words().back(), 0x201u);
    stage.Choose("Depth Test.Function", 6);
    stage.Export();
    EXPECT_EQ(stage.Words().back(), 0x206u);
}

} // namespace
