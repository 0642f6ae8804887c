#include "particles/cindermill/batch/lint/lintreplay.h"

#include "particles/cindermill/batch/findings/findingkinds.h"
#include "particles/cindermill/batch/lint/lintgraph.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/batch/lint/toldcauses.h"
#include "particles/cindermill/graph/replay/replaycomparison.h"
#include "particles/cindermill/graph/replay/tolddifferences.h"

#include <cmath>

namespace {

// A replay takes many times what the engine takes.
constexpr double MaxReplayWork = 5e6;

// Whether both have one cause.
bool StandsFor(const TReplayDifference& told, const TReplayDifference& difference)
{
    return (told.Kind != DK_UNKNOWN || difference.Kind == DK_UNKNOWN) &&
           told.Place.Node == difference.Place.Node &&
           (difference.Place.Node != nullptr || told.Place.Group == difference.Place.Group);
}

} // namespace

bool TLintReplay::Tell(TExecServices& services, double work, TLintReport& report, TErrorList& errors) const
{
    TReplayComparison comparison(Schedule, services);
    TReplayOptions options;
    options.Dt = Options.Step;
    // What comes after the time that is looked at is not looked at here either.
    const int frames = static_cast<int>(std::ceil(double(Options.Seconds) / double(Options.Step) - 0.001));
    const int longest = CountReplayFrames(Schedule, options.Dt);
    options.Frames = frames < longest ? frames : longest;
    if (work * options.Frames > MaxReplayWork)
        options.Frames = static_cast<int>(MaxReplayWork / work) + 1;
    if (!comparison.Export(errors) || !comparison.Run(options, errors))
        return false;
    TellDifferences(comparison.GetReport(), report);
    return true;
}

// One for each node that differences come from, and for each group where no node can be told. What is not
// known stands for nothing that is, and what is explained for nothing that is not. Of values that nothing
// drawn reads it is told that they lead nowhere, and enough.
void TLintReplay::TellDifferences(const TReplayReport& replay, TLintReport& report) const
{
    TToldDifferences reasons(Schedule, replay);
    vector<TReplayDifference> told;
    vector<const TReplayNote*> notes;
    for (const TReplayDifference& found : replay.GetDifferences()) {
        TReplayDifference difference = found;
        bool known = !PlaceUsefully(difference) || IsTold(Schedule, report, difference);
        for (const TReplayDifference& earlier : told)
            known = known || StandsFor(earlier, difference);
        if (known)
            continue;
        if (const TReplayNote* note = reasons.FindReason(difference)) {
            if (notes.index_of(note) == -1)
                TellNote(*note, report);
            notes.push_back(note);
            continue;
        }
        told.push_back(difference);
        TellDifference(difference, report);
    }
}

// The node of a difference is a guess: where that leads nowhere, one that reads the value may not. Which
// particles there are counts whatever the node. False for what leads nowhere.
bool TLintReplay::PlaceUsefully(TReplayDifference& difference) const
{
    TReplayPlace& place = difference.Place;
    if (place.Node == nullptr || Graph.IsUseful(*place.Node))
        return true;
    place.Node = place.Attribute != -1 ? FindUsefulReader(place.Group, place.Attribute) : nullptr;
    const bool isOfGroup = difference.Kind == DK_COUNT || difference.Kind == DK_UNKNOWN;
    return place.Node != nullptr || (place.Attribute == -1 && isOfGroup);
}

// In its own group ahead of those whose particles are born with it.
const TEffectNode* TLintReplay::FindUsefulReader(int group, int attribute) const
{
    for (const TTiedNode& tied : Schedule.GetGroup(group).TiedNodes) {
        const TEffectNode* node = Schedule.GetNode(tied.Node);
        if (tied.Inputs.index_of(attribute) != -1 && Graph.IsUseful(*node))
            return node;
    }
    for (int g = 0; g < Schedule.GetNumGroups(); ++g)
        for (const TTiedNode& tied : Schedule.GetGroup(g).TiedNodes) {
            const TEffectNode* node = Schedule.GetNode(tied.Node);
            for (const int input : tied.Inputs)
                if (input != -1 && Schedule.GetAttributeExternalGroup(g, input) == group &&
                    Schedule.GetAttributeExternalAttrib(g, input) == attribute && Graph.IsUseful(*node))
                    return node;
        }
    return nullptr;
}

void TLintReplay::TellNote(const TReplayNote& note, TLintReport& report)
{
    if (note.Node != nullptr)
        report.AddNode(LK_REPLAYNOTE, *note.Node, note.Group, "%s", note.Text.Print());
    else
        report.AddGroup(LK_REPLAYNOTE, note.Group, "%s", note.Text.Print());
}

void TLintReplay::TellDifference(const TReplayDifference& difference, TLintReport& report) const
{
    const TReplayPlace& place = difference.Place;
    const TString text = DescribeDifference(difference);
    const char* kind = GetReplayFindingId(GetDifferenceKindName(difference.Kind));
    const char* format = "%s, first in frame %d (%.2f s), %.0f times";
    const double times = static_cast<double>(difference.Times);
    TFinding& finding = place.Node != nullptr
                            ? report.AddNode(kind, *place.Node, place.Group, format, text.Print(),
                                             place.Frame, double(place.Time), times)
                            : report.AddGroup(kind, place.Group, format, text.Print(), place.Frame,
                                              double(place.Time), times);
    AddNumber(finding, "frame", place.Frame);
    AddNumber(finding, "time", double(place.Time));
    AddNumber(finding, "times", times);
    AddNumber(finding, "worst", difference.Worst);
}
