#include "particles/cindermill/graph/replay/patchcomparison.h"

#include "library/containers/nametocrc.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/export/efxfile.h"
#include "particles/effectgraph/export/fixedvalue.h"
#include "particles/effectgraph/export/rowconversion.h"
#include "particles/effectgraph/schedule/effectschedule.h"

namespace {

// The inputs that the game places where nothing feeds them.
struct TPlacedInput
{
    const char* ClassName;
    int Input;
    // Of the transform.
    int Type;
    // Floats, -1 for as many as get to the attribute behind the first output.
    int Count;
    // Also where the input is wired.
    bool Always;
};

const TPlacedInput PlacedInputs[] = {
    {"TPointEmitter", 1, 2, -1, false},
    {"TGrid", 1, 2, -1, false},
    {"TVelocityCone", 0, 3, 3, false},
    {"TSphereSurface", 1, 0, 3, true},
};

// One phase of a group.
class TPatchComparison
{
public:
    TPatchComparison(const TEffectSchedule& schedule, const TEfxFile& file, int group, bool isEmission,
                     TReplayReport& report)
        : Schedule(schedule), File(file),
          Phase(isEmission ? file.GetGroups()[group].Emission : file.GetGroups()[group].Process),
          Group(group), IsEmission(isEmission), Report(report)
    {
        Place.Group = group;
    }
    void Run()
    {
        for (int tied = 0; tied < Schedule.GetNumTiedNodes(Group); ++tied) {
            const int index = Schedule.GetTiedNode(Group, tied);
            const TNodeType& type = *Schedule.GetNode(index)->GetNodeType();
            if ((Schedule.GetNodeUsage(index) == TU_EMITTER) != IsEmission || type.IsBypassed())
                continue;
            Place.Node = Schedule.GetNode(index);
            for (const TPlacedInput& placed : PlacedInputs)
                if (type.IsOfClass(placed.ClassName))
                    ComparePlaced(tied, type, placed);
            if (type.IsOfClass("TEffect"))
                CompareParameters(type);
        }
        Place.Node = nullptr;
        CompareNumber("placed transforms", static_cast<float>(NumTransforms),
                      static_cast<float>(Phase.Transforms.Size / TEfxFile::ListEntrySize));
    }

private:
    void CompareNumber(const char* name, float preview, float replay, int component = -1)
    {
        Report.CompareNamed(Place, name, preview, replay, component);
    }

    void ComparePlaced(int tied, const TNodeType& type, const TPlacedInput& placed)
    {
        const int count = placed.Count != -1 ? placed.Count : CountPassed(tied, type, placed.Input);
        if ((!placed.Always && Schedule.GetTiedNodeInput(Group, tied, placed.Input) != -1) || count == 0)
            return;
        const uint32_t entry =
            Phase.Transforms.Offset + static_cast<uint32_t>(NumTransforms) * TEfxFile::ListEntrySize;
        TString name;
        name.Format("transform %d", NumTransforms++);
        if (entry >= Phase.Transforms.GetEnd())
            return;
        CompareNumber("transform's type", static_cast<float>(placed.Type),
                      static_cast<float>(File.GetU16(entry + 2)));
        const TEfxPatch& patch = Phase.Patches[static_cast<int>(File.GetU16(entry))];
        CompareNumber("transform's patch", 1, patch.NameId == NameToCrc(name.Print()) ? 1.0f : 0.0f);
        CompareNumber("transform's places", 1, static_cast<float>(patch.Offsets.Size / 2));
        CompareFloats(patch, type.GetInput(placed.Input), count);
    }

    // How many floats of a value get to the attribute behind the first output; behind the last that gets
    // anywhere is nothing.
    int CountPassed(int tied, const TNodeType& type, int input) const
    {
        const int attrib = type.GetNumOutputs() > 0 ? Schedule.GetTiedNodeOutput(Group, tied, 0) : -1;
        if (attrib == -1)
            return 0;
        const TRowConversion conversion(type.GetOutputType(0), Schedule.GetAttributeType(Group, attrib));
        int count = GetTypeRows(type.GetInputType(input));
        while (count > 0 && !conversion.Uses(count - 1))
            --count;
        return count;
    }

    void CompareFloats(const TEfxPatch& patch, const TNodeParameter* parameter, int count)
    {
        const TFixedValue value(parameter);
        for (uint32_t at = patch.Offsets.Offset; at < patch.Offsets.GetEnd(); at += 2)
            for (int i = 0; i < count; ++i)
                CompareNumber("patched value", value[i],
                              File.GetFloat(Phase.Execute.Words.Offset + File.GetU16(at) +
                                            4 * static_cast<uint32_t>(i)),
                              i);
    }

    void CompareParameters(const TNodeType& type)
    {
        for (int i = type.NumOwnParameters; i < type.GetNumParameters(); ++i) {
            const TNodeParameter* parameter = type.GetParameter(i);
            const int count = GetTypeRows(parameter->GetValueType());
            const TEfxPatch* patch = FindPatch(NameToCrc(parameter->Name.Print()));
            CompareNumber("parameter's patch", 1, patch != nullptr ? 1.0f : 0.0f);
            if (patch == nullptr)
                continue;
            CompareNumber("parameter's rows", static_cast<float>(count), static_cast<float>(patch->Type));
            CompareFloats(*patch, parameter, count);
        }
    }
    const TEfxPatch* FindPatch(uint32_t nameId) const
    {
        for (const TEfxPatch& patch : Phase.Patches)
            if (patch.NameId == nameId)
                return &patch;
        return nullptr;
    }

    const TEffectSchedule& Schedule;
    const TEfxFile& File;
    const TEfxPhase& Phase;
    int Group;
    bool IsEmission;
    TReplayReport& Report;
    TReplayPlace Place;
    int NumTransforms = 0;
};

} // namespace

void ComparePatches(const TEffectSchedule& schedule, const TEfxFile& file, TReplayReport& report)
{
    for (int group = 0; group < schedule.GetNumGroups(); ++group) {
        TPatchComparison(schedule, file, group, true, report).Run();
        TPatchComparison(schedule, file, group, false, report).Run();
    }
}
