#include "particles/cindermill/graph/replay/replaynotes.h"

#include "library/containers/nametocrc.h"
#include "library/maths/vector3.h"
#include "particles/cindermill/graph/replay/effectreplay.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/export/efxnames.h"
#include "particles/effectgraph/export/fixedvalue.h"
#include "particles/effectgraph/simpleparameters.h"

#include <initializer_list>

namespace {

// What holds for every node of a class.
struct TClassNote
{
    const char* ClassName;
    const char* Text;
};

const TClassNote ClassNotes[] = {
    {"TNoise", "it is not exported, as the console has no command for it"},
    {"TVolume", "it is not exported, as the console has no command for it"},
    {"TAnimationPath", "it is not exported, as the console has no command for it"},
    {"TGrid", "it is exported as a point: its particles leave from the transform alone"},
    {"TSphereSurface", "where it turns is compared by the preview's rule, as the console's is not told"},
    {"TCollisionPlane", "it is compared by the preview's rule, as the console's is not told"},
    {"TRandomEmitter", "it draws at random: what the console draws is its own"},
    {"TVelocityCone", "it draws at random: what the console draws is its own"},
    {"TSphereSurface", "it draws at random: what the console draws is its own"},
    {"TTurbulence", "it draws at random: what the console draws is its own"},
};

// Inputs whose own value is exported, whatever they are wired to.
struct TFixedInput
{
    const char* ClassName;
    int Port;
};

const TFixedInput FixedInputs[] = {
    {"TSphereSurface", 1},
    {"TSphereSurface", 2},
    {"TCollisionPlane", 4},
};

// Inputs that the game places where nothing feeds them.
const TFixedInput PlacedInputs[] = {
    {"TPointEmitter", 1},
    {"TGrid", 1},
    {"TVelocityCone", 0},
};

// Integers that are exported as a byte.
struct TByteParameter
{
    const char* ClassName;
    const char* Name;
    int Kind;
};

const TByteParameter ByteParameters[] = {
    {"TEmitter", "Per frame max emission", PK_INT}, {"TEmitter", "Emit Mode", PK_ENUM},
    {"TAnimatedTexture", "X Divisions", PK_INT},    {"TAnimatedTexture", "Y Divisions", PK_INT},
    {"TAnimatedTexture", "Tile Count", PK_INT},     {"TAnimatedTexture", "Loop Mode", PK_ENUM},
};

bool IsOfClass(const TNodeType& type, const char* name)
{
    return type.ClassName.Compare(name) == 0;
}

bool IsOfClassIn(const TNodeType& type, std::initializer_list<const char*> names)
{
    for (const char* name : names)
        if (IsOfClass(type, name))
            return true;
    return false;
}

// The notes of one group.
class TGroupNotes
{
public:
    TGroupNotes(const TEffectSchedule& schedule, const TEfxFile& file, int group, TReplayReport& report)
        : Schedule(schedule), From(file.GetGroups()[group]), Group(group), Report(report)
    {
    }
    void Run()
    {
        for (const TTiedNode& tied : Schedule.GetGroup(Group).TiedNodes) {
            Node = Schedule.GetNode(tied.Node);
            if (!Node->GetNodeType()->IsBypassed())
                AddNode(tied, *Node->GetNodeType());
        }
        AddPlaces();
        AddGroup();
    }

private:
    void Add(const char* text)
    {
        TReplayNote note;
        note.Node = Node;
        note.Group = Group;
        if (Node != nullptr)
            note.Text.Format("%s in group %d: %s", Node->GetNodeType()->Name.Print(), Group, text);
        else
            note.Text.Format("Group %d: %s", Group, text);
        Report.AddNote(note);
    }
    void AddNamed(const char* format, const TString& name)
    {
        TString text;
        text.Format(format, name.Print());
        Add(text);
    }

    void AddNode(const TTiedNode& tied, const TNodeType& type)
    {
        for (const TClassNote& note : ClassNotes)
            if (IsOfClass(type, note.ClassName))
                Add(note.Text);
        for (const TFixedInput& fixed : FixedInputs)
            if (IsOfClass(type, fixed.ClassName) && IsWired(tied, fixed.Port))
                AddNamed("input \"%s\" is wired, and its own value is exported",
                         type.GetInput(fixed.Port)->Name);
        for (const TFixedInput& placed : PlacedInputs)
            if (IsOfClass(type, placed.ClassName) && !IsWired(tied, placed.Port))
                Add("the game may place it, and it is replayed where the effect has it");
        for (const TByteParameter& byte : ByteParameters)
            if (IsOfClass(type, byte.ClassName))
                AddByte(type, byte);
        if (IsOfClass(type, "TCollisionPlane"))
            AddPlane(tied, type);
        if (IsOfClass(type, "TEffect"))
            AddUserParameters(type);
        if (IsOfClass(type, "TEmitter") && GetNumber(type, "Emit Mode", PK_ENUM) == 0)
            Add("it draws at random: what the console draws is its own");
        if (IsOfClass(type, "TAdd"))
            AddSum(tied, type);
    }
    static bool IsWired(const TTiedNode& tied, int port)
    {
        return port < tied.Inputs.size() && tied.Inputs[port] != -1;
    }

    static int GetNumber(const TNodeType& type, const char* name, int kind)
    {
        if (kind == PK_ENUM) {
            const auto* parameter = type.FindParameterOf<TNodeEnumParameter>(name, kind);
            return parameter != nullptr ? parameter->GetNumber() : 0;
        }
        const auto* parameter = type.FindParameterOf<TNodeIntParameter>(name, kind);
        return parameter != nullptr ? parameter->Get() : 0;
    }
    void AddByte(const TNodeType& type, const TByteParameter& byte)
    {
        const int number = GetNumber(type, byte.Name, byte.Kind);
        if (number >= 0 && number <= 255)
            return;
        TString text;
        text.Format("\"%s\" is %d, which does not fit its field: %d is exported", byte.Name, number,
                    number & 0xFF);
        Add(text);
    }

    // Its place and its edge are the preview's alone.
    void AddPlane(const TTiedNode& tied, const TNodeType& type)
    {
        if (type.GetNumInputs() < 4)
            return;
        const TFixedValue place(type.GetInput(2));
        if (place[0] != 0 || place[1] != 0 || place[2] != 0)
            Add("it does not lie in the origin, and cannot be replayed");
        Add("it ends at its edge, and the console's has none");
        if (IsWired(tied, 3))
            AddNamed("input \"%s\" is wired, and not exported", type.GetInput(3)->Name);
    }

    void AddUserParameters(const TNodeType& type)
    {
        for (int i = type.NumOwnParameters; i < type.GetNumParameters(); ++i)
            AddNamed("the game may set \"%s\", and it is replayed with the effect's own value",
                     type.GetParameter(i)->Name);
    }

    void AddSum(const TTiedNode& tied, const TNodeType& type)
    {
        if (type.GetNumInputs() < 2 || GetValueType(tied, type, 0) == GetValueType(tied, type, 1))
            return;
        Add("it adds two types, of which the console repeats the components of the second");
    }
    int GetValueType(const TTiedNode& tied, const TNodeType& type, int port) const
    {
        return IsWired(tied, port) ? Schedule.GetAttributeType(Group, tied.Inputs[port])
                                   : type.GetInputType(port);
    }

    // Nodes that stand in several places of all groups.
    void AddPlaces()
    {
        int numKillers = 0;
        const vector<TTiedNode>& tiedNodes = Schedule.GetGroup(Group).TiedNodes;
        for (int i = 0; i < tiedNodes.size(); ++i) {
            Node = Schedule.GetNode(tiedNodes[i].Node);
            const TNodeType& type = *Node->GetNodeType();
            if (type.IsBypassed())
                continue;
            numKillers += IsOfClassIn(type, {"TAge", "TPrune"}) ? 1 : 0;
            if (CountBefore(tiedNodes, i) != 1)
                continue;
            if (IsOfClassIn(type, {"TEmitter", "TEffect"}))
                Add("it stands in several places, which share one clock in the preview and none on the "
                    "console");
            if (IsOfClassIn(type, {"TPointEmitter", "TGrid", "TSphereSurface"}))
                Add("it stands in several places, each of which emits in the preview and one on the console");
        }
        Node = nullptr;
        if (numKillers > 1 && !Schedule.IsTriggerGroup(Group))
            Add("several nodes kill its particles: one that two of them kill takes a second with it in the "
                "preview");
    }
    static int CountBefore(const vector<TTiedNode>& tiedNodes, int place)
    {
        int count = 0;
        for (int i = 0; i < place; ++i)
            count += tiedNodes[i].Node == tiedNodes[place].Node ? 1 : 0;
        return count;
    }

    void AddGroup()
    {
        TString text;
        const int capacity = Schedule.GetParticleCount(Group);
        if (!Schedule.IsTriggerGroup(Group) && From.ParticleCount != capacity) {
            text.Format("its capacity of %d particles is rounded up to %d", capacity, From.ParticleCount);
            Add(text);
        }
        uint32_t parents = 0;
        for (int attrib = 0; attrib < Schedule.GetNumAttributes(Group); ++attrib) {
            const int parent = Schedule.GetAttributeExternalGroup(Group, attrib);
            if (parent == -1 || Schedule.IsTriggerGroup(parent) || (parents >> (parent & 31) & 1) != 0)
                continue;
            parents |= 1u << (parent & 31);
            if (parent > Group) {
                text.Format("it comes ahead of group %d, which fires it in the frame before", parent);
                Add(text);
            }
        }
        if ((parents & (parents - 1)) != 0)
            Add("several groups fire it, of which the console knows the last");
    }

    const TEffectSchedule& Schedule;
    const TEfxGroup& From;
    int Group;
    TReplayReport& Report;
    // Whom the notes are about.
    const TEffectNode* Node = nullptr;
};

} // namespace

void AddReplayNotes(const TEffectSchedule& schedule, const TEfxFile& file, TReplayReport& report)
{
    for (int group = 0; group < schedule.GetNumGroups(); ++group)
        TGroupNotes(schedule, file, group, report).Run();
}

void AddRefusalNotes(const TEffectReplay& replay, TReplayReport& report)
{
    const TEfxNames names;
    for (const TEffectReplay::TRefusal& refusal : replay.GetRefusals()) {
        TReplayNote note;
        note.Group = refusal.Group;
        TString name;
        names.GetName(refusal.NameId, name);
        note.Text.Format("Group %d: the command %s with %d inputs and %d outputs is not one of the console's",
                         refusal.Group, name.Print(), refusal.NumInputs, refusal.NumOutputs);
        report.AddNote(note);
    }
}
