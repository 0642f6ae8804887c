#include "particles/cindermill/batch/lint/lintreplay.h"

#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/graph/replay/replaycomparison.h"

#include <cmath>

namespace {

// A replay takes many times what the engine takes.
constexpr double MaxReplayWork = 5e6;

// Whether the node, or one that leads to it, is told to be another on the console.
bool HangsOnTold(const TEffectNode& node, TPointerMap& seen, const TLintReport& report)
{
    vector<const TEffectNode*> open;
    open.push_back(&node);
    while (!open.empty()) {
        const TEffectNode* last = open.back();
        open.pop_back();
        if (!seen.Insert(last))
            continue;
        if (report.IsConsoleTold(*last))
            return true;
        for (int i = 0; i < last->GetNumInputs(); ++i)
            if (last->GetInput(i) != nullptr)
                open.push_back(last->GetInput(i)->GetSrcNode());
    }
    return false;
}

} // namespace

const char* GetReplayFindingKind(TDifferenceKind kind)
{
    static constexpr const char* Kinds[DK_NUMKINDS] = {LK_REPLAYVALUE, LK_REPLAYUNDEFINED, LK_REPLAYUNKNOWN,
                                                       LK_REPLAYCOUNT, LK_REPLAYSTAGE};
    return Kinds[kind];
}

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

// A difference of a group's values may hang on any node of it that decides which particles there are: what is
// told of one of them, or of what leads to it, explains it.
bool TLintReplay::IsTold(const TReplayDifference& difference, const TLintReport& report) const
{
    TPointerMap seen;
    if (difference.Place.Node != nullptr && HangsOnTold(*difference.Place.Node, seen, report))
        return true;
    const int group = difference.Place.Group;
    for (int t = 0; group != -1 && t < Schedule.GetNumTiedNodes(group); ++t) {
        const TEffectNode& node = *Schedule.GetNode(Schedule.GetTiedNode(group, t));
        const TString& name = node.GetNodeType()->ClassName;
        const bool decides = node.GetNodeType()->Category == TU_EMITTER || name.Compare("TAge") == 0 ||
                             name.Compare("TPrune") == 0;
        if ((decides || difference.Place.Node == nullptr) && HangsOnTold(node, seen, report))
            return true;
    }
    return false;
}

// One for each node that differences come from, and for each group where no node can be told. What is not
// known stands for nothing that is.
void TLintReplay::TellDifferences(const TReplayReport& replay, TLintReport& report) const
{
    const vector<TReplayDifference>& differences = replay.GetDifferences();
    for (int i = 0; i < differences.size(); ++i) {
        bool known = false;
        for (int k = 0; k < i; ++k)
            known = known || ((differences[k].Kind != DK_UNKNOWN || differences[i].Kind == DK_UNKNOWN) &&
                              differences[k].Place.Node == differences[i].Place.Node &&
                              (differences[i].Place.Node != nullptr ||
                               differences[k].Place.Group == differences[i].Place.Group));
        if (!known && !IsTold(differences[i], report))
            TellDifference(differences[i], report);
    }
}

void TLintReplay::TellDifference(const TReplayDifference& difference, TLintReport& report) const
{
    const TReplayPlace& place = difference.Place;
    const TString text = DescribeDifference(difference);
    const char* kind = GetReplayFindingKind(difference.Kind);
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
