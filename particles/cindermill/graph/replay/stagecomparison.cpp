#include "particles/cindermill/graph/replay/stagecomparison.h"

#include "library/containers/nametocrc.h"
#include "library/maths/scalar.h"
#include "particles/cindermill/graph/nodes/renderstage.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/export/efxfile.h"
#include "particles/effectgraph/export/fixedvalue.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <initializer_list>

namespace {

const char* const StageClasses[] = {"TQuadRenderStage", "TBlendedQuadRenderStage", "TSpriteRenderStage",
                                    "TBlendedSpriteRenderStage", "TVelocityTrailRenderStage"};

bool IsStage(const TNodeType& type)
{
    for (const char* name : StageClasses)
        if (type.IsOfClass(name))
            return !type.IsBypassed();
    return false;
}

// The words that switch a stage's states on, as the graphics chip takes them.
class TStateWords
{
public:
    explicit TStateWords(const TDrawStates& states)
    {
        if (states.Blend) {
            Put(0x310, {1});
            Put(0x320, {Twice(states.BlendEquation)});
            Put(0x314, {Twice(states.SourceFunction), Twice(states.DestFunction)});
        }
        if (states.AlphaTest) {
            const int ref = FloatToInt(static_cast<double>(states.RefValue) * 255);
            Put(0x304, {1});
            Put(0x308, {states.AlphaFunction, static_cast<uint32_t>(ref < 0 ? 0 : ref > 255 ? 255 : ref)});
        }
        if (states.DepthTest) {
            Put(0xA74, {1});
            Put(0xA6C, {states.DepthFunction});
        }
        if (states.CullFace) {
            Put(0x183C, {1});
            Put(0x1830, {states.Face});
        }
        if (states.PolygonOffset) {
            Put(0xA68, {1});
            Put(0xA78, {std::bit_cast<uint32_t>(states.OffsetFactor),
                        std::bit_cast<uint32_t>(states.OffsetUnits * 2)});
        }
    }
    int GetSize() const { return Words.size(); }
    uint32_t operator[](int i) const { return i < Words.size() ? Words[i] : 0; }

private:
    static uint32_t Twice(uint32_t value) { return value << 16 | value; }
    void Put(uint32_t method, std::initializer_list<uint32_t> values)
    {
        Words.push_back(static_cast<uint32_t>(values.size()) << 18 | method);
        for (const uint32_t value : values)
            Words.push_back(value);
    }

    vector<uint32_t> Words;
};

// One group's stages.
class TStageComparison
{
public:
    TStageComparison(TEffectExec& engine, const TEfxFile& file, int group, TReplayReport& report)
        : Engine(engine), Schedule(engine.GetSchedule()), File(file), From(file.GetGroups()[group]),
          Group(group), Report(report)
    {
    }
    void Run()
    {
        CompareGroup();
        int numStages = 0;
        for (int tied = 0; tied < Schedule.GetNumTiedNodes(Group); ++tied) {
            Node = Schedule.GetNode(Schedule.GetTiedNode(Group, tied));
            if (IsStage(*Node->GetNodeType()))
                CompareStage(tied, numStages++);
        }
        Node = nullptr;
        CompareNumber("render stages", static_cast<float>(numStages), static_cast<float>(From.Stages.size()));
        CompareNumber("bounding boxes", static_cast<float>(NumBounds),
                      static_cast<float>(From.Bounds.Size / TEfxFile::BoundsSize));
        CompareRenderAttributes();
    }

private:
    void CompareNumber(const char* name, float preview, float replay, int component = -1)
    {
        TReplayPlace place;
        place.Group = Group;
        place.Attribute = Attribute;
        place.Type = Type;
        place.Component = component;
        place.Name = name;
        place.Node = Node;
        Report.CompareFixed(place, DK_STAGE, preview, replay);
    }
    // A float may hold the nearest number only: words that differ never come to one.
    void CompareWord(const char* name, uint32_t preview, uint32_t replay, int component = -1)
    {
        const float shown = static_cast<float>(preview);
        const float found = static_cast<float>(replay);
        const bool looksSame = preview != replay && found == shown;
        CompareNumber(name, shown, looksSame ? std::nextafter(shown, 0.0f) : found, component);
    }

    void CompareGroup()
    {
        CompareNumber("longest life", Schedule.GetMaxLifeTime(Group), From.MaxLifeTime);
        CompareNumber("most births", static_cast<float>(Schedule.GetMaxEmission(Group)),
                      static_cast<float>(From.MaxEmission));
        CompareNumber("capacity", static_cast<float>(GetCapacity()), static_cast<float>(From.ParticleCount));
        CompareNumber("trigger group", Schedule.IsTriggerGroup(Group) ? 1.0f : 0.0f,
                      From.IsTriggerGroup ? 1.0f : 0.0f);
    }

    // The store is moved in units of so many bytes.
    int64_t GetCapacity() const
    {
        constexpr int64_t storeAlignment = 16;
        int64_t count = Schedule.IsTriggerGroup(Group) ? 1 : Schedule.GetParticleCount(Group);
        while (count * From.Stride % storeAlignment != 0)
            ++count;
        return count;
    }

    void CompareStage(int tied, int number)
    {
        CompareBounds();
        if (number >= From.Stages.size())
            return;
        const auto* node = static_cast<TRenderStage*>(Engine.GetExecNode(Schedule.GetTiedNode(Group, tied)));
        const TEfxStage& stage = From.Stages[number];
        const TRenderStageStatic& shared = node->GetStaticData();
        CompareWord("stage", NameToCrc(shared.Kind.Command), File.GetCommandIds()[stage.CommandIndex]);
        CompareConstants(tied, shared, stage);
        const TStateWords words(node->GetStates());
        CompareNumber("state words", static_cast<float>(words.GetSize()),
                      static_cast<float>(stage.State.Size / 4));
        for (uint32_t at = 0; at < stage.State.Size; at += 4)
            CompareWord("state", words[static_cast<int>(at / 4)], File.GetU32(stage.State.Offset + at),
                        static_cast<int>(at / 4));
        for (int i = 0; i < TEfxStage::NumTextures; ++i) {
            const bool has = shared.Kind.Textures[i].Parameter != nullptr;
            const char* name = has ? node->GetTextureName(i).Print() : "";
            const bool same = std::strcmp(name, File.GetText(stage.Textures[i])) == 0;
            CompareNumber("texture", 1, same ? 1.0f : 0.0f, i);
            if (!has)
                break;
        }
    }

    // The values of the inputs that nothing feeds, by the program's attributes.
    void CompareConstants(int tied, const TRenderStageStatic& shared, const TEfxStage& stage)
    {
        const TNodeType& type = *Node->GetNodeType();
        uint32_t at = stage.Constants.Offset;
        int entry = 0;
        for (int port = 0; port < type.GetNumInputs(); ++port) {
            const bool isTransform = type.GetInputType(port) == TY_TRANSFORM;
            if (Schedule.GetTiedNodeInput(Group, tied, port) == -1) {
                const TFixedValue value(type.GetInput(port));
                const float first[] = {value[0], value[1], value[2], isTransform ? 0 : value[3]};
                CompareConstant(shared, entry, first, at);
                const float second[] = {value[3], value[4], value[5], 0};
                if (isTransform)
                    CompareConstant(shared, entry + 1, second, at);
            }
            entry += isTransform ? 2 : 1;
        }
        CompareNumber("stage constants", static_cast<float>(at - stage.Constants.Offset),
                      static_cast<float>(stage.Constants.Size));
    }
    void CompareConstant(const TRenderStageStatic& shared, int entry, const float (&value)[4], uint32_t& at)
    {
        if (entry >= shared.AttribTable.size() || shared.AttribTable[entry] == -1)
            return;
        const char* name = shared.Kind.Attributes[entry];
        CompareWord(name, static_cast<uint32_t>(shared.AttribTable[entry]), File.GetU32(at));
        for (uint32_t i = 0; i < 4; ++i)
            CompareNumber(name, value[i], File.GetFloat(at + 4 + 4 * i), static_cast<int>(i));
        at += TEfxFile::StageConstantSize;
    }

    void CompareBounds()
    {
        const TNodeType& type = *Node->GetNodeType();
        if (type.HasFlag(FL_DYNAMICBOUNDS))
            CompareDynamicBox();
        if (!type.HasFlag(FL_STATICBOUNDS))
            return;
        const uint32_t at = TakeBox();
        for (uint32_t i = 0; i < 3; ++i) {
            const int axis = static_cast<int>(i);
            CompareNumber("bounding box", type.BoundsMin[axis], File.GetFloat(at + 4 * i), axis);
            CompareNumber("bounding box", type.BoundsMax[axis], File.GetFloat(at + 12 + 4 * i), axis + 3);
        }
        CompareWord("bounding box", 0xFFFFFFFFu, File.GetU32(at + 24), 6);
    }
    // The console finds the box by the place of its command's data.
    void CompareDynamicBox()
    {
        const uint32_t at = TakeBox();
        const uint32_t ordinal = File.GetU32(at + 24);
        bool found = false;
        if (ordinal < static_cast<uint32_t>(From.Process.Patches.size())) {
            const TEfxPatch& patch = From.Process.Patches[static_cast<int>(ordinal)];
            for (const TEfxCommand& command : From.Process.Execute.Commands)
                found = found || (File.GetCommandIds()[command.Index] == NameToCrc("IdComputeBounds") &&
                                  patch.Offsets.Size == 2 &&
                                  From.Process.Execute.Words.Offset + File.GetU16(patch.Offsets.Offset) ==
                                      command.Data.Offset);
        }
        CompareNumber("dynamic bounding box", 1, found ? 1.0f : 0.0f);
    }
    uint32_t TakeBox()
    {
        return From.Bounds.Offset + static_cast<uint32_t>(NumBounds++) * TEfxFile::BoundsSize;
    }

    void CompareRenderAttributes()
    {
        uint32_t at = From.RenderAttributes.Offset;
        for (Attribute = 0; Attribute < Schedule.GetNumAttributes(Group); ++Attribute) {
            if (Schedule.GetAttributeUsage(Group, Attribute) != TU_RENDER)
                continue;
            Type = Schedule.GetAttributeType(Group, Attribute);
            TString name = Schedule.GetAttributeName(Group, Attribute);
            name.TruncateAtFirst(' ');
            const bool isTransform = Type == TY_TRANSFORM;
            CompareRenderAttribute(name, isTransform ? 3 : GetTypeRows(Type), at);
            if (!isTransform)
                continue;
            name += "_q";
            CompareRenderAttribute(name, 3, at);
        }
        Attribute = -1;
        Type = -1;
        CompareNumber("render attributes", static_cast<float>(at - From.RenderAttributes.Offset),
                      static_cast<float>(From.RenderAttributes.Size));
    }
    void CompareRenderAttribute(const TString& name, int components, uint32_t& at)
    {
        constexpr uint32_t vertexFloat = 2;
        CompareWord(name.Print(), NameToCrc(name.Print()), File.GetU32(at));
        CompareWord(name.Print(), vertexFloat, File.GetU8(at + 5));
        CompareWord(name.Print(), static_cast<uint32_t>(components), File.GetU8(at + 6));
        at += TEfxFile::RenderAttributeSize;
    }

    TEffectExec& Engine;
    const TEffectSchedule& Schedule;
    const TEfxFile& File;
    const TEfxGroup& From;
    int Group;
    TReplayReport& Report;
    // What the numbers stand for that are compared now.
    const TEffectNode* Node = nullptr;
    int Attribute = -1;
    int Type = -1;
    int NumBounds = 0;
};

} // namespace

void CompareStages(TEffectExec& engine, const TEfxFile& file, TReplayReport& report)
{
    for (int group = 0; group < engine.GetSchedule().GetNumGroups(); ++group)
        TStageComparison(engine, file, group, report).Run();
}
