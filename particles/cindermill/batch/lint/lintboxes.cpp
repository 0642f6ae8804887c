#include "particles/cindermill/batch/lint/lintboxes.h"

#include "particles/cindermill/batch/lint/lintreport.h"

namespace {

constexpr const char* MinNames[] = {"minX", "minY", "minZ"};
constexpr const char* MaxNames[] = {"maxX", "maxY", "maxZ"};

} // namespace

void TLintBoxes::BeginRun(TEffectExec& exec)
{
    if (!Stages.empty())
        return;
    for (int n = 0; n < Schedule.GetNumNodes(); ++n) {
        TEffectNode& node = *Schedule.GetNode(n);
        const TNodeType& type = *node.GetNodeType();
        if (Schedule.GetNodeUsage(n) == TU_RENDER && !type.IsBypassed() &&
            (Suggest || type.HasFlag(FL_STATICBOUNDS)))
            Stages.push_back(new TStage(exec, node));
    }
}

double TLintBoxes::TStage::GetExcess() const
{
    const TNodeType& type = *Node->GetNodeType();
    double most = 0;
    for (int i = 0; i < 3 && Sampler.HasBounds(); ++i) {
        const double below = double(type.BoundsMin[i]) - double(Sampler.GetBounds().Min[i]);
        const double above = double(Sampler.GetBounds().Max[i]) - double(type.BoundsMax[i]);
        const double excess = below > above ? below : above;
        most = excess > most ? excess : most;
    }
    return most;
}

void TLintBoxes::EndFrame()
{
    for (TStage* stage : Stages) {
        stage->Sampler.Grow();
        if (stage->Left || !stage->Node->GetNodeType()->HasFlag(FL_STATICBOUNDS) || stage->GetExcess() <= 0)
            continue;
        stage->Left = true;
        stage->Moment = GetMoment();
    }
}

void TLintBoxes::TellLeft(TLintReport& report, const TStage& stage)
{
    TFinding& finding = report.AddNode(
        LK_BOXLEFT, *stage.Node, -1,
        "Particles reach out of the static bounding box by up to %g, first at %.2f s (seed %d)",
        stage.GetExcess(), double(stage.Moment.Time), stage.Moment.Seed);
    AddNumber(finding, "by", stage.GetExcess());
    AddNumber(finding, "frame", stage.Moment.Frame);
    AddNumber(finding, "time", double(stage.Moment.Time));
    AddNumber(finding, "seed", stage.Moment.Seed);
}

// Under other seeds the largest particle may be the outermost.
void TLintBoxes::TellSuggestion(TLintReport& report, const TStage& stage)
{
    const TBounds& places = stage.Sampler.GetPlaces();
    const float reach = stage.Sampler.GetLargestReach();
    const TVector3 size(reach, reach, reach);
    const TVector3 min = places.Min - size;
    const TVector3 max = places.Max + size;
    TFinding& finding = report.AddNode(
        LK_BOXSUGGESTED, *stage.Node, -1,
        "The box of all particles is %g, %g, %g to %g, %g, %g, with the largest reach of a particle, %g",
        double(min[0]), double(min[1]), double(min[2]), double(max[0]), double(max[1]), double(max[2]),
        double(reach));
    for (int i = 0; i < 3; ++i)
        AddNumber(finding, MinNames[i], double(min[i]));
    for (int i = 0; i < 3; ++i)
        AddNumber(finding, MaxNames[i], double(max[i]));
    AddNumber(finding, "reach", double(reach));
}

void TLintBoxes::Tell(TLintReport& report)
{
    for (const TStage* stage : Stages) {
        if (stage->Left)
            TellLeft(report, *stage);
        if (Suggest && stage->Sampler.HasBounds())
            TellSuggestion(report, *stage);
    }
}
