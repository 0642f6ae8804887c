#include "particles/cindermill/graph/replay/sharedcomparison.h"

#include "library/containers/nametocrc.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/export/efxfile.h"
#include "particles/effectgraph/export/fixedvalue.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/schedule/effectschedule.h"
#include "particles/effectgraph/simpleparameters.h"

namespace {

// What is no value of floats is one word.
bool GetWord(const TNodeParameter& parameter, uint32_t& word)
{
    constexpr uint32_t on = 0xFFFFFFFFu;
    switch (parameter.Type) {
    case PK_BOOL:
        word = static_cast<const TNodeBoolParameter&>(parameter).Get() ? on : 0;
        return true;
    case PK_GROUP:
        word = static_cast<const TNodeGroupParameter&>(parameter).Get() ? on : 0;
        return true;
    case PK_ENUM:
        word = static_cast<uint32_t>(static_cast<const TNodeEnumParameter&>(parameter).GetNumber());
        return true;
    case PK_INT:
        word = static_cast<uint32_t>(static_cast<const TNodeIntParameter&>(parameter).Get());
        return true;
    default:
        return false;
    }
}

class TSharedComparison
{
public:
    TSharedComparison(const TEffectSchedule& schedule, const TEfxFile& file, TReplayReport& report)
        : Schedule(schedule), File(file), Report(report)
    {
    }
    void Run()
    {
        for (Place.Group = 0; Place.Group < Schedule.GetNumGroups(); ++Place.Group)
            for (const TTiedNode& tied : Schedule.GetGroup(Place.Group).TiedNodes) {
                Place.Node = Schedule.GetNode(tied.Node);
                const TNodeType& type = *Place.Node->GetNodeType();
                // The first parameter is the switch of the life time, which a command tells.
                for (int i = 1; IsEffect(type) && i < type.NumOwnParameters && i < type.GetNumParameters();
                     ++i)
                    CompareParameter(*type.GetParameter(i));
            }
        Place.Group = 0;
        Place.Node = nullptr;
        CompareNumber("shared data", static_cast<float>(NumEntries),
                      static_cast<float>(File.GetSharedTable().Size / TEfxFile::SharedEntrySize));
    }

private:
    static bool IsEffect(const TNodeType& type) { return type.IsOfClass("TEffect") && !type.IsBypassed(); }
    void CompareNumber(const char* name, float preview, float replay, int component = -1)
    {
        Report.CompareNamed(Place, name, preview, replay, component);
    }
    void CompareParameter(const TNodeParameter& parameter)
    {
        uint32_t word = 0;
        const bool isWord = GetWord(parameter, word);
        const int count = isWord ? 1 : parameter.Type < TY_POLYTYPE ? GetTypeFloats(parameter.Type) : 0;
        if (count == 0)
            return;
        const char* name = parameter.Name.Print();
        const uint32_t entry =
            File.GetSharedTable().Offset + static_cast<uint32_t>(NumEntries++) * TEfxFile::SharedEntrySize;
        CompareNumber(name, 1, File.GetU32(entry) == NameToCrc(name) ? 1.0f : 0.0f);
        CompareNumber(name, static_cast<float>(4 * count), static_cast<float>(File.GetU16(entry + 6)));
        const uint32_t at = File.GetSharedBytes().Offset + File.GetU16(entry + 4);
        if (isWord) {
            CompareNumber(name, 1, File.GetU32(at) == word ? 1.0f : 0.0f);
            return;
        }
        const TFixedValue value(&parameter);
        for (int i = 0; i < count; ++i)
            CompareNumber(name, value[i], File.GetFloat(at + 4 * static_cast<uint32_t>(i)), i);
    }

    const TEffectSchedule& Schedule;
    const TEfxFile& File;
    TReplayReport& Report;
    TReplayPlace Place;
    int NumEntries = 0;
};

} // namespace

void CompareShared(const TEffectSchedule& schedule, const TEfxFile& file, TReplayReport& report)
{
    TSharedComparison(schedule, file, report).Run();
}
