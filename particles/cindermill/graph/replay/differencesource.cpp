#include "particles/cindermill/graph/replay/differencesource.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/replay/birthsource.h"
#include "particles/cindermill/graph/replay/classnotes.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/schedule/effectschedule.h"

#include <climits>

TDifferenceSources::TDifferenceSources(const TEffectSchedule& schedule, TReplayReport& report)
    : Schedule(schedule), Report(report)
{
    ListValues();
    for (int group = 0; group < Schedule.GetNumGroups(); ++group)
        ListWriters(group);
    ListDifferences();
}

void TDifferenceSources::ListValues()
{
    for (int group = 0; group < Schedule.GetNumGroups(); ++group) {
        Append(FirstValues, Values.size());
        for (int attrib = 0; attrib < Schedule.GetNumAttributes(group); ++attrib) {
            TValue value;
            value.Group = group;
            value.Attribute = attrib;
            value.FirstFrame = INT_MAX;
            Append(Values, value);
        }
    }
}

// A node that is told to differ, wherever it stands, is the one to name.
void TDifferenceSources::ListWriters(int group)
{
    const int first = FirstValues[group];
    const auto forEachOutput = [&](auto&& work) {
        for (const TTiedNode& tied : Schedule.GetGroup(group).TiedNodes)
            for (int i = 0; i < tied.Outputs.size(); ++i)
                if (tied.Outputs[i] != -1 && tied.Outputs.index_of(tied.Outputs[i]) == i)
                    work(tied, Values[first + tied.Outputs[i]]);
    };
    const auto setNode = [&](TValue& value, const TTiedNode& tied) {
        value.Node = Schedule.GetNode(tied.Node);
        value.IsSuspect = GetConsoleFate(*value.Node->GetNodeType()) != CF_ALIKE;
    };
    forEachOutput([&](const TTiedNode& tied, TValue& value) {
        ++value.NumWriters;
        if (!value.IsSuspect)
            setNode(value, tied);
    });
    for (const TTiedNode& tied : Schedule.GetGroup(group).TiedNodes)
        for (const int attrib : tied.Inputs)
            if (attrib != -1 && Values[first + attrib].Node == nullptr)
                setNode(Values[first + attrib], tied);
    int writers = Writers.size();
    for (int i = first; i < first + Schedule.GetNumAttributes(group); ++i) {
        Values[i].FirstWriter = writers;
        writers += Values[i].NumWriters;
        Values[i].NumWriters = 0;
    }
    Extend(Writers, writers - Writers.size());
    forEachOutput([&](const TTiedNode& tied, TValue& value) {
        Writers[value.FirstWriter + value.NumWriters++] = &tied;
    });
}

void TDifferenceSources::ListDifferences()
{
    for (const TReplayDifference& difference : Report.GetDifferences()) {
        const int value = FindValue(difference.Place.Group, difference.Place.Attribute);
        if (value != -1 && difference.Place.Frame < Values[value].FirstFrame)
            Values[value].FirstFrame = difference.Place.Frame;
    }
}

int TDifferenceSources::FindValue(int group, int attrib) const
{
    const bool isThere = group >= 0 && group < Schedule.GetNumGroups() && attrib >= 0 &&
                         attrib < Schedule.GetNumAttributes(group);
    return isThere ? FirstValues[group] + attrib : -1;
}

bool TDifferenceSources::IsDone() const
{
    return Next >= Report.GetDifferences().size();
}

void TDifferenceSources::FindNext()
{
    TReplayPlace& place = Report.GetDifferences()[Next].Place;
    if (place.Node == nullptr)
        place.Node = place.Attribute != -1 ? FindSource(place) : FindBirthNode(Schedule, place.Group);
    ++Next;
}

// From value to value that differs, the nearest first: the first node that is told to differ, or the one
// farthest back.
const TEffectNode* TDifferenceSources::FindSource(const TReplayPlace& place)
{
    Steps.clear();
    const int start = FindValue(place.Group, place.Attribute);
    ASSERT(start != -1);
    Values[start].SeenBy = Next;
    Append(Steps, start);
    const TEffectNode* node = nullptr;
    for (int i = 0; i < Steps.size(); ++i) {
        const TValue& value = Values[Steps[i]];
        if (value.Node != nullptr)
            node = value.Node;
        if (value.IsSuspect)
            return node;
        AddSupplier(value, place.Frame);
        AddInputs(value, place.Frame);
    }
    return node;
}

void TDifferenceSources::AddStep(int value, int frame)
{
    if (Values[value].SeenBy == Next || Values[value].FirstFrame > frame)
        return;
    Values[value].SeenBy = Next;
    Append(Steps, value);
}

// What births take from elsewhere is not compared where it is not kept.
void TDifferenceSources::AddSupplier(const TValue& value, int frame)
{
    const int parent = Schedule.GetAttributeExternalGroup(value.Group, value.Attribute);
    if (parent != -1)
        AddStep(FindValue(parent, Schedule.GetAttributeExternalAttrib(value.Group, value.Attribute)), frame);
}

void TDifferenceSources::AddInputs(const TValue& value, int frame)
{
    for (int i = 0; i < value.NumWriters; ++i)
        for (const int attrib : Writers[value.FirstWriter + i]->Inputs) {
            if (attrib == -1)
                continue;
            const int input = FindValue(value.Group, attrib);
            AddStep(input, frame);
            AddSupplier(Values[input], frame);
        }
}

void FindDifferenceSources(const TEffectSchedule& schedule, TReplayReport& report)
{
    for (TDifferenceSources sources(schedule, report); !sources.IsDone();)
        sources.FindNext();
}
