#include "particles/cindermill/batch/lint/lintcurves.h"

#include "particles/cindermill/batch/lint/lintlimits.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/graph/engine/inputreader.h"
#include "particles/effectgraph/rampparameter.h"

#include <cmath>

namespace {

constexpr int TimeInput = 0;
constexpr int LifeInput = 1;
// A curve that differs by less is one that was rounded.
constexpr double ToleratedShare = 0.01;
// As the node counts it: a shorter curve is one value.
constexpr double LeastLength = 0.001;

bool IsRunning(const TEffectNode& node, const char* className, int numInputs)
{
    const TNodeType& type = *node.GetNodeType();
    return type.IsOfClass(className) && !type.IsBypassed() && node.GetNumInputs() >= numInputs;
}

const TNodeRampParameter* FindRamp(const TNodeType& type)
{
    TNodeParameter* parameter = type.FindParameter("Value");
    if (parameter == nullptr || (parameter->Type != PK_RAMP && parameter->Type != PK_POLYRAMP))
        return nullptr;
    return static_cast<TNodeRampParameter*>(parameter);
}

} // namespace

TLintCurves::TLintCurves(const TEffectSchedule& schedule) : Schedule(schedule)
{
    for (int g = 0; g < schedule.GetNumGroups(); ++g)
        FindCurves(g);
}

void TLintCurves::FindCurves(int group)
{
    const int numTied = Schedule.GetNumTiedNodes(group);
    for (int t = 0; t < numTied; ++t) {
        const TEffectNode& node = *Schedule.GetNode(Schedule.GetTiedNode(group, t));
        if (!IsRunning(node, "TShaper", LifeInput + 1) || node.GetInput(TimeInput) == nullptr ||
            FindRamp(*node.GetNodeType()) == nullptr)
            continue;
        const TEffectNode* source = node.GetInput(TimeInput)->GetSrcNode();
        for (int a = 0; a < numTied; ++a) {
            const TEffectNode* age = Schedule.GetNode(Schedule.GetTiedNode(group, a));
            if (age != source || !IsRunning(*age, "TAge", MaxAgeInput + 1))
                continue;
            Curves.push_back(TCurve{group, t, a, 0, 0, false});
            break;
        }
    }
}

void TLintCurves::Compare(TCurve& curve)
{
    TEffectNode& node = *Schedule.GetNode(Schedule.GetTiedNode(curve.Group, curve.Tied));
    TEffectNode& age = *Schedule.GetNode(Schedule.GetTiedNode(curve.Group, curve.AgeTied));
    TInputReader curveReader(*Exec, node);
    TInputReader ageReader(*Exec, age);
    curveReader.SetPosition(curve.Group, curve.Tied, Exec->GetGroup(curve.Group));
    ageReader.SetPosition(curve.Group, curve.AgeTied, Exec->GetGroup(curve.Group));
    const double length = double(FindRamp(*node.GetNodeType())->GetLength());
    for (int i = 0; i < Exec->GetNumParticles(curve.Group) && length > LeastLength; ++i) {
        const double span = double(curveReader.ReadValue(LifeInput, i)[0]) * length;
        const double life = double(ageReader.ReadValue(MaxAgeInput, i)[0]);
        const double difference = std::fabs(span - life);
        if (!(life < EndlessLife) || !std::isfinite(span) || difference <= ToleratedShare * std::fabs(life) ||
            (curve.Differs && difference <= std::fabs(curve.Span - curve.Life)))
            continue;
        curve.Differs = true;
        curve.Span = span;
        curve.Life = life;
    }
}

void TLintCurves::EndFrame()
{
    for (TCurve& curve : Curves)
        Compare(curve);
}

// A node with several places in its group is told once.
void TLintCurves::Tell(TLintReport& report)
{
    for (int i = 0; i < Curves.size(); ++i) {
        const TCurve& curve = Curves[i];
        const int node = Schedule.GetTiedNode(curve.Group, curve.Tied);
        bool known = false;
        for (int k = 0; k < i; ++k)
            known = known || (Curves[k].Differs && Curves[k].Group == curve.Group &&
                              Schedule.GetTiedNode(curve.Group, Curves[k].Tied) == node);
        if (!curve.Differs || known)
            continue;
        TFinding& finding =
            report.AddNode(LK_GRAPHCURVE, *Schedule.GetNode(node), curve.Group,
                           curve.Span < curve.Life ? "The curve ends after %g s, but particles live %g s"
                                                   : "The curve takes %g s, but particles live %g s",
                           curve.Span, curve.Life);
        AddNumber(finding, "curve", curve.Span);
        AddNumber(finding, "life", curve.Life);
    }
}
