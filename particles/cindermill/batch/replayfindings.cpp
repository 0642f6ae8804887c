#include "particles/cindermill/batch/replayfindings.h"

#include "particles/cindermill/batch/effectfindings.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/effectnode.h"
#include "particles/effectgraph/xmltext.h"

namespace {

// By TDifferenceKind.
constexpr const char* KindIds[DK_NUMKINDS] = {"replay.value", "replay.undefined", "replay.unknown",
                                              "replay.count", "replay.stage"};

void SetPlace(TDocument& document, const TEffectNode* node, int group, TFinding& finding)
{
    if (node != nullptr)
        GetNodePlace(document, *node, group, finding.Place);
    else
        finding.Place.Group = group;
}

TString GetMessage(const TReplayDifference& difference)
{
    constexpr int maxName = 80;
    const TReplayPlace& place = difference.Place;
    TString what;
    if (!place.Name.IsEmpty())
        what.Format("\"%s\" of group %d", QuoteText(place.Name, maxName).Print(), place.Group);
    else
        what.Format("Group %d", place.Group);
    TString text;
    if (difference.Kind == DK_UNDEFINED)
        text.Format("%s: nothing in the exported file writes what the preview shows", what.Print());
    else if (difference.Kind == DK_UNKNOWN)
        text.Format("%s: what the exported file makes of it hangs on what is not known", what.Print());
    else
        text.Format("%s: %.9g in the preview is %.9g in the exported file", what.Print(),
                    static_cast<double>(difference.Preview), static_cast<double>(difference.Replay));
    return text;
}

void PutNumber(TFinding& finding, const char* name, double value)
{
    finding.Numbers.push_back(TFindingNumber{name, value});
}

} // namespace

void AddReplayFindings(TDocument& document, const char* path, const TReplayReport& replay,
                       TFindingReport& report)
{
    for (const TReplayDifference& difference : replay.GetDifferences()) {
        const TReplayPlace& place = difference.Place;
        TFinding finding = MakeFinding(KindIds[difference.Kind], path, GetMessage(difference));
        SetPlace(document, place.Node, place.Group, finding);
        PutNumber(finding, "frame", place.Frame);
        PutNumber(finding, "particle", place.Particle);
        PutNumber(finding, "attribute", place.Attribute);
        PutNumber(finding, "component", place.Component);
        PutNumber(finding, "times", static_cast<double>(difference.Times));
        PutNumber(finding, "worst", difference.Worst);
        report.Add(finding);
    }
    for (const TReplayNote& note : replay.GetNotes()) {
        TFinding finding = MakeFinding("replay.note", path, note.Text);
        SetPlace(document, note.Node, note.Group, finding);
        report.Add(finding);
    }
}
