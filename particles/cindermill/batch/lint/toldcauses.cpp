#include "particles/cindermill/batch/lint/toldcauses.h"

#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/graph/replay/causesearch.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/cindermill/graph/replay/tolddifferences.h"
#include "particles/effectgraph/effectnode.h"

namespace {

// What makes a node compute other values on the console.
constexpr const char* const ValueKinds[] = {LK_CONSOLEGRID,   LK_CONSOLENOTHING, LK_CONSOLEPLANE,
                                            LK_CONSOLEFIXED,  LK_CONSOLECOUNT,   LK_CONSOLESUM,
                                            LK_CONSOLEPLACES, LK_NUMBERFIELD,    nullptr};
// What makes a node let other particles live there.
constexpr const char* const PopulationKinds[] = {LK_CONSOLEENDS, LK_CONSOLEORDER, LK_CONSOLEPLACES, nullptr};

class TFindingCauses final : public TCauses
{
public:
    explicit TFindingCauses(const TLintReport& report) : Report(report) {}
    const void* FindOfValues(const TEffectNode& node) const override
    {
        return Report.HasFinding(node, ValueKinds) ? &node : nullptr;
    }
    const void* FindOfParticles(const TEffectNode& node, int) const override
    {
        return Report.HasFinding(node, PopulationKinds) ? &node : nullptr;
    }
    const void* FindOfGroup(int) const override { return nullptr; }

private:
    const TLintReport& Report;
};

} // namespace

bool TToldCauses::IsTold(const TReplayDifference& difference) const
{
    const TFindingCauses causes(Report);
    return TCauseSearch(Schedule, causes).Find(difference) != nullptr;
}

const TReplayNote* TToldCauses::FindNote(const TReplayDifference& difference) const
{
    return TToldDifferences(Schedule, Replay).FindReason(difference);
}
