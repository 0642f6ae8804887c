#include "particles/cindermill/graph/replay/replayverdict.h"

#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/cindermill/graph/replay/tolddifferences.h"
#include "particles/effectgraph/effectnode.h"
#include "particles/effectgraph/xmltext.h"

namespace {

TString GetShownName(const TEffectNode& node)
{
    constexpr int maxName = 80;
    return QuoteText(node.GetNodeType()->Name, maxName);
}

} // namespace

TReplayVerdict::TReplayVerdict(const TEffectSchedule& schedule, const TReplayReport& report, int wantedFrames)
{
    ListDifferences(schedule, report);
    MakeHeadline(report.NumFrames, wantedFrames);
    MakeSummary(report);
}

void TReplayVerdict::MakeSummary(const TReplayReport& report)
{
    Summary = Headline;
    TString text;
    if (NumWithoutReason > 0)
        text.Format(": %s", Differences[0].Text.Print());
    else if (Headline.Kind == VK_CUTSHORT)
        text = ": more would take too long here";
    else if (Differences.empty())
        text.Format(": %lld values in %d frames", static_cast<long long>(report.NumEqual), report.NumFrames);
    Summary.Text += text;
}

void TReplayVerdict::ListDifferences(const TEffectSchedule& schedule, const TReplayReport& report)
{
    const TToldDifferences told(schedule, report);
    vector<const TReplayNote*> reasons;
    for (const TReplayDifference& difference : report.GetDifferences()) {
        reasons.push_back(told.FindReason(difference));
        NumWithoutReason += reasons.back() == nullptr ? 1 : 0;
    }
    AddDifferences(report, reasons, false);
    AddDifferences(report, reasons, true);
    for (const TReplayNote& note : report.GetNotes()) {
        TVerdictLine line;
        line.Text = note.Text;
        line.Node = note.Node;
        line.Kind = reasons.index_of(&note) != -1 ? VK_TOLD : VK_NOTE;
        (line.Kind == VK_TOLD ? Reasons : Notes).push_back(line);
    }
}

void TReplayVerdict::AddDifferences(const TReplayReport& report, const vector<const TReplayNote*>& reasons,
                                    bool told)
{
    for (int i = 0; i < reasons.size(); ++i) {
        if ((reasons[i] != nullptr) != told)
            continue;
        const TReplayDifference& difference = report.GetDifferences()[i];
        TVerdictLine line;
        line.Kind = told ? VK_TOLD : VK_DIFFERS;
        line.Text = DescribeDifference(difference);
        line.Node = difference.Place.Node;
        Differences.push_back(line);
    }
}

void TReplayVerdict::MakeHeadline(int numFrames, int wantedFrames)
{
    if (Differences.empty() && numFrames < wantedFrames) {
        Headline.Kind = VK_CUTSHORT;
        Headline.Text.Format("No difference in the first %d of %d frames", numFrames, wantedFrames);
        return;
    }
    if (Differences.empty()) {
        Headline.Kind = VK_AGREES;
        Headline.Text = "Preview and export agree";
        return;
    }
    const TVerdictLine& first = Differences[0];
    Headline.Kind = first.Kind;
    Headline.Node = first.Node;
    const int count = Differences.size();
    Headline.Text.Format(count == 1 ? "1 difference between preview and export"
                                    : "%d differences between preview and export",
                         count);
    TString text;
    if (NumWithoutReason == 0)
        text = count == 1 ? " for a known reason" : " for known reasons";
    else if (NumWithoutReason < count)
        text.Format(", %d of them for no known reason", NumWithoutReason);
    Headline.Text += text;
    if (first.Node != nullptr) {
        text.Format(count == 1 ? ", at %s" : ", the first at %s", GetShownName(*first.Node).Print());
        Headline.Text += text;
    }
    if (numFrames < wantedFrames) {
        text.Format(" (in %d of %d frames: more would take too long here)", numFrames, wantedFrames);
        Headline.Text += text;
    }
}
