#include "particles/cindermill/batch/replayfindings.h"

#include "particles/cindermill/batch/effectfindings.h"
#include "particles/cindermill/batch/findings/findingkinds.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/effectnode.h"

namespace {

void SetPlace(TDocument& document, const TEffectNode* node, int group, TFinding& finding)
{
    if (node != nullptr)
        GetNodePlace(document, *node, group, finding.Place);
    else
        finding.Place.Group = group;
}

} // namespace

void AddReplayFindings(TDocument& document, const char* path, const TReplayReport& replay,
                       TFindingReport& report)
{
    for (const TReplayDifference& difference : replay.GetDifferences()) {
        const TReplayPlace& place = difference.Place;
        TFinding finding = MakeFinding(GetReplayFindingId(GetDifferenceKindName(difference.Kind)), path,
                                       DescribeDifference(difference));
        SetPlace(document, place.Node, place.Group, finding);
        AddNumber(finding, "frame", place.Frame);
        AddNumber(finding, "particle", place.Particle);
        AddNumber(finding, "attribute", place.Attribute);
        AddNumber(finding, "component", place.Component);
        AddNumber(finding, "times", static_cast<double>(difference.Times));
        AddNumber(finding, "worst", difference.Worst);
        report.Add(finding);
    }
    for (const TReplayNote& note : replay.GetNotes()) {
        TFinding finding = MakeFinding("replay.note", path, note.Text);
        SetPlace(document, note.Node, note.Group, finding);
        report.Add(finding);
    }
}
