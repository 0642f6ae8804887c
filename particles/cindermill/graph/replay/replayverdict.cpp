#include "particles/cindermill/graph/replay/replayverdict.h"

#include "library/containers/append.h"
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
    TVerdictSearch search(schedule, report, wantedFrames);
    while (!search.IsDone())
        search.RunPart();
    *this = search.GetVerdict();
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

TVerdictSearch::TVerdictSearch(const TEffectSchedule& schedule, const TReplayReport& report, int wantedFrames)
    : Report(report), WantedFrames(wantedFrames), Told(new TToldDifferences(schedule, report))
{
    IsReason.resize(Report.GetNotes().size());
    for (bool& isReason : IsReason)
        isReason = false;
}

TVerdictSearch::~TVerdictSearch() = default;

void TVerdictSearch::RunPart()
{
    if (NextDifference < Report.GetDifferences().size())
        AddDifference(Report.GetDifferences()[NextDifference++]);
    else if (NextNote < Report.GetNotes().size())
        AddNote(NextNote++);
    else
        Finish();
}

void TVerdictSearch::AddDifference(const TReplayDifference& difference)
{
    const TReplayNote* reason = Told->FindReason(difference);
    if (reason != nullptr)
        IsReason[static_cast<int>(reason - Report.GetNotes().data())] = true;
    TVerdictLine line;
    line.Kind = reason != nullptr ? VK_TOLD : VK_DIFFERS;
    line.Text = DescribeDifference(difference);
    line.Node = difference.Place.Node;
    Append(reason != nullptr ? Explained : Verdict.Differences, line);
}

void TVerdictSearch::AddNote(int index)
{
    const TReplayNote& note = Report.GetNotes()[index];
    TVerdictLine line;
    line.Text = note.Text;
    line.Node = note.Node;
    line.Kind = IsReason[index] ? VK_TOLD : VK_NOTE;
    Append(IsReason[index] ? Verdict.Reasons : Verdict.Notes, line);
}

void TVerdictSearch::Finish()
{
    Verdict.NumWithoutReason = Verdict.Differences.size();
    for (const TVerdictLine& line : Explained)
        Append(Verdict.Differences, line);
    Verdict.MakeHeadline(Report.NumFrames, WantedFrames);
    Verdict.MakeSummary(Report);
    Done = true;
}
