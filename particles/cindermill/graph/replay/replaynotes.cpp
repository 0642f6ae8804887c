#include "particles/cindermill/graph/replay/replaynotes.h"

#include "library/containers/nametocrc.h"
#include "library/maths/vector3.h"
#include "particles/cindermill/graph/replay/birthsource.h"
#include "particles/cindermill/graph/replay/classnotes.h"
#include "particles/cindermill/graph/replay/effectreplay.h"
#include "particles/cindermill/graph/replay/exportedfields.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/emitmode.h"
#include "particles/effectgraph/export/efxnames.h"
#include "particles/effectgraph/export/fixedvalue.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/xmltext.h"

#include <initializer_list>

namespace {

// Of a name in a note.
constexpr int MaxName = 400;

// Inputs that the game places where nothing feeds them.
const TFixedInput PlacedInputs[] = {
    {"TPointEmitter", 1},
    {"TGrid", 1},
    {"TVelocityCone", 0},
};

bool IsOfClassIn(const TNodeType& type, std::initializer_list<const char*> names)
{
    for (const char* name : names)
        if (type.IsOfClass(name))
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
        AddStarts();
        AddGroup();
    }

private:
    // What is the whole group's decides which particles there are.
    void Add(const char* text, bool mayDiffer = true, bool decidesParticles = false)
    {
        TReplayNote note;
        note.MayDiffer = mayDiffer;
        note.DecidesParticles = decidesParticles || Node == nullptr;
        note.Node = Node;
        note.Group = Group;
        if (Node != nullptr)
            note.Text.Format("%s in group %d: %s", QuoteText(Node->GetNodeType()->Name, MaxName).Print(),
                             Group, text);
        else
            note.Text.Format("Group %d: %s", Group, text);
        Report.AddNote(note);
    }
    void AddNamed(const char* format, const TString& name, bool mayDiffer = true,
                  bool decidesParticles = false)
    {
        TString text;
        text.Format(format, QuoteText(name, MaxName).Print());
        Add(text, mayDiffer, decidesParticles);
    }

    void AddNode(const TTiedNode& tied, const TNodeType& type)
    {
        for (const TClassNote& note : ClassNotes)
            if (type.IsOfClass(note.ClassName))
                Add(note.Text, note.Fate != CF_ALIKE);
        for (const TFixedInput& fixed : FixedInputs)
            if (type.IsOfClass(fixed.ClassName) && IsWired(tied, fixed.Port))
                AddNamed("input \"%s\" is wired, and its own value is exported",
                         type.GetInput(fixed.Port)->Name);
        for (const TFixedInput& placed : PlacedInputs)
            if (type.IsOfClass(placed.ClassName) && !IsWired(tied, placed.Port))
                Add("the game may place it, and it is replayed where the effect has it", false);
        AddFields(type);
        if (type.IsOfClass("TCollisionPlane"))
            AddPlane(tied, type);
        if (EmitsParticles(type) && !IsWired(tied, 0) && !(TFixedValue(type.GetInput(0))[0] < 1))
            AddNamed(
                "nothing is wired to \"%s\": the preview takes its own value, and the console fires none",
                type.GetInput(0)->Name, true, true);
        if (type.IsOfClass("TEffect"))
            AddUserParameters(type);
        if (type.IsOfClass("TEmitter") && EmitsByChance(type))
            Add("it draws at random: what the console draws is its own", false);
        if (IsOfClassIn(type, {"TEmitter", "TEffect"}) && !Schedule.IsTriggerGroup(Group))
            Add("its particles share one clock in the preview, and have one each on the console");
        if (type.IsOfClass("TAdd"))
            AddSum(tied, type);
        if (IsOfClassIn(type, {"TAdd", "TMultiply", "TRandomEmitter"}))
            AddNarrow(tied, type);
        AddPassed(tied, type);
    }
    static bool IsWired(const TTiedNode& tied, int port)
    {
        return port < tied.Inputs.size() && tied.Inputs[port] != -1;
    }

    static bool EmitsByChance(const TNodeType& type)
    {
        const auto* mode = type.FindParameterOf<TNodeEnumParameter>("Emit Mode", PK_ENUM);
        return mode == nullptr || mode->GetNumber() == EM_CHANCE;
    }
    // What a stage is given is cut for the preview too.
    void AddFields(const TNodeType& type)
    {
        vector<TFieldFault> faults;
        GetFieldFaults(type, faults);
        for (const TFieldFault& fault : faults) {
            TString text;
            if (fault.IsChoice)
                text.Format("\"%s\" is %g, and the console's table ends at %g", fault.Parameter, fault.Value,
                            fault.Most);
            else
                text.Format("\"%s\" is %g, which does not fit its field: %g is exported", fault.Parameter,
                            fault.Value, fault.Exported);
            Add(text, type.Category != TU_RENDER);
        }
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
                     type.GetParameter(i)->Name, false);
    }

    void AddSum(const TTiedNode& tied, const TNodeType& type)
    {
        if (type.GetNumInputs() < 2 || GetValueType(tied, type, 0) == GetValueType(tied, type, 1))
            return;
        Add("it adds two types, of which the console repeats the components of the second");
    }
    // The engine clears what the node does not compute; the stream does so where a wire converts.
    void AddNarrow(const TTiedNode& tied, const TNodeType& type)
    {
        if (type.GetNumInputs() == 0 || type.GetNumOutputs() == 0 || tied.Outputs[0] == -1)
            return;
        const int computed = GetTypeFloats(GetValueType(tied, type, 0));
        const bool isConverted = IsWired(tied, 0) && Converts(tied.Inputs[0], type.GetInputType(0));
        if (!isConverted && computed < GetTypeFloats(type.GetOutputType(0)))
            Add("its output has more components than it computes, which the console clears once and the "
                "preview "
                "in each frame");
    }
    int GetValueType(const TTiedNode& tied, const TNodeType& type, int port) const
    {
        return IsWired(tied, port) ? Schedule.GetAttributeType(Group, tied.Inputs[port])
                                   : type.GetInputType(port);
    }

    // What is passed on lies in one place with what it comes from, unless its type is another.
    void AddPassed(const TTiedNode& tied, const TNodeType& type)
    {
        const int numInputs = type.IsOfClass("TBuildVector")     ? 3
                              : type.IsOfClass("TMakeTransform") ? 2
                              : IsOfClassIn(type, {"TConstant", "TSelectComponent", "TPointEmitter", "TGrid"})
                                  ? 1
                                  : 0;
        const int first = IsOfClassIn(type, {"TPointEmitter", "TGrid"}) ? 1 : 0;
        if (numInputs == 0 || tied.Outputs.empty() || tied.Outputs[0] == -1)
            return;
        for (int port = first; port < first + numInputs && port < tied.Inputs.size(); ++port) {
            const int from = tied.Inputs[port];
            if (from != -1 && from != tied.Outputs[0] && !Converts(from, type.GetInputType(port)) &&
                !Converts(tied.Outputs[0], type.GetOutputType(0)) &&
                (IsWrittenBehind(tied, from) || IsWrittenBehind(tied, tied.Outputs[0])))
                AddNamed("what it passes on from \"%s\" is changed afterwards, and on the console both are",
                         type.GetInput(port)->Name);
        }
    }
    bool Converts(int attrib, int type) const { return Schedule.GetAttributeType(Group, attrib) != type; }
    // By a node of the same phase.
    bool IsWrittenBehind(const TTiedNode& tied, int attrib) const
    {
        const vector<TTiedNode>& nodes = Schedule.GetGroup(Group).TiedNodes;
        const bool isBirth = Schedule.GetNodeUsage(tied.Node) == TU_EMITTER;
        for (const TTiedNode* later = &tied + 1; later < nodes.end(); ++later)
            if (later->Outputs.index_of(attrib) != -1 &&
                (Schedule.GetNodeUsage(later->Node) == TU_EMITTER) == isBirth &&
                !Schedule.GetNode(later->Node)->GetNodeType()->IsBypassed())
                return true;
        return false;
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
            if (EmitsParticles(type))
                Add("it stands in several places, each of which emits in the preview and one on the console",
                    true, true);
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

    // What nothing writes before it is read starts at the port's own value on the console. In the preview
    // nothing is born into the trigger group.
    void AddStarts()
    {
        for (int attrib = 0; attrib < Schedule.GetNumAttributes(Group) && Schedule.IsTriggerGroup(Group);
             ++attrib) {
            const TTiedNode* first = FindFirst(attrib);
            const TFixedValue value(Schedule.GetAttributePort(Group, attrib));
            bool isZero = true;
            for (int i = 0; i < GetTypeFloats(Schedule.GetAttributeType(Group, attrib)); ++i)
                isZero = isZero && value[i] == 0;
            if (first == nullptr || isZero || Schedule.GetAttributeExternalGroup(Group, attrib) != -1)
                continue;
            Node = Schedule.GetNode(first->Node);
            AddNamed("its \"%s\" starts at 0 in the preview, and at its own value on the console",
                     Schedule.GetAttributeName(Group, attrib));
        }
        Node = nullptr;
    }
    // The first node that has the attribute at a port, if it reads it.
    const TTiedNode* FindFirst(int attrib) const
    {
        for (const TTiedNode& tied : Schedule.GetGroup(Group).TiedNodes) {
            if (tied.Inputs.index_of(attrib) != -1)
                return &tied;
            if (tied.Outputs.index_of(attrib) != -1)
                return nullptr;
        }
        return nullptr;
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
        AddTrigger();
    }
    // The number of births may come from another group than what the particles are born with.
    void AddTrigger()
    {
        if (const TTiedNode* reader = FindCountReader(Schedule, Group)) {
            Node = Schedule.GetNode(reader->Node);
            Add("it reads the number of births as a value, which is 0 on the console, as another group "
                "brings what the particles are born with");
            Node = nullptr;
        }
        const int input = FindTriggerInput(Schedule, Group);
        const int trigger = input != -1 ? Schedule.GetAttributeExternalGroup(Group, input) : -1;
        const int parent = FindBirthParent(Schedule, Group);
        if (trigger == -1 || parent == -1 || parent == trigger || Schedule.IsTriggerGroup(trigger))
            return;
        TString text;
        text.Format(
            "group %d tells how many are born and group %d what they are born with: the console has one "
            "number for all, of the frame before",
            trigger, parent);
        Add(text);
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
        note.MayDiffer = true;
        TString name;
        names.GetName(refusal.NameId, name);
        note.Text.Format("Group %d: the command %s with %d inputs and %d outputs is not one of the console's",
                         refusal.Group, name.Print(), refusal.NumInputs, refusal.NumOutputs);
        report.AddNote(note);
    }
}
