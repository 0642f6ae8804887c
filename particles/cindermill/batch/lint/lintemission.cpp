#include "particles/cindermill/batch/lint/lintemission.h"

#include "particles/cindermill/batch/lint/lintlimits.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/graph/engine/inputreader.h"
#include "particles/effectgraph/emitmode.h"
#include "particles/effectgraph/simpleparameters.h"

namespace {

// Chance emission counts its rate per fiftieth of a second.
constexpr double ChanceFramesPerSecond = 50.0;
// What the rounding of a rate and a step may bring.
constexpr double RoundingShare = 1e-4;

} // namespace

void TLintEmission::BeginRun(TEffectExec& exec)
{
    Exec = &exec;
    for (TEmission& emission : Emissions)
        emission.RunLost = 0;
}

double TLintEmission::CountDue(const TEffectNode& node, float rate) const
{
    const auto* mode = node.GetNodeType()->FindParameterOf<TNodeEnumParameter>("Emit Mode", PK_ENUM);
    const double due = double(rate) * double(Options.Step);
    if (mode == nullptr)
        return 0;
    return mode->GetNumber() == EM_CHANCE   ? due * ChanceFramesPerSecond
           : mode->GetNumber() == EM_STEADY ? due
                                            : 0;
}

TLintEmission::TEmission& TLintEmission::Find(const TEffectNode& node, int group, int most)
{
    for (TEmission& emission : Emissions)
        if (emission.Node == &node)
            return emission;
    Emissions.push_back(TEmission{&node, group, most, 0, 0, 0, GetMoment()});
    return Emissions[Emissions.size() - 1];
}

// The node's count shows whether it emits at all now.
void TLintEmission::NodeRan(int group, int tied, int count)
{
    TEffectNode& node = *Schedule.GetNode(Schedule.GetTiedNode(group, tied));
    const TNodeType& type = *node.GetNodeType();
    if (count == 0 || type.IsBypassed() || !type.IsOfClass("TEmitter"))
        return;
    const int output = type.GetNumOutputs() > 0 ? Schedule.GetTiedNodeOutput(group, tied, 0) : -1;
    const auto* most = type.FindParameterOf<TNodeIntParameter>("Per frame max emission", PK_INT);
    if (output == -1 || most == nullptr || most->Get() <= 0 || type.GetNumInputs() == 0)
        return;
    const int usage = Schedule.GetAttributeUsage(group, output);
    if (double(Exec->GetGroup(group)->GetAttribute(output, usage, 0)[0]) < most->Get())
        return;
    TInputReader reader(*Exec, node);
    reader.SetPosition(group, tied, Exec->GetGroup(group));
    const double due = CountDue(node, reader.ReadValue(0, 0)[0]);
    if (!(due > most->Get() * (1 + RoundingShare)))
        return;
    TEmission& emission = Find(node, group, most->Get());
    emission.RunLost += due - most->Get();
    emission.Due = due > emission.Due ? due : emission.Due;
}

void TLintEmission::EndRun()
{
    for (TEmission& emission : Emissions)
        emission.Lost = emission.RunLost > emission.Lost ? emission.RunLost : emission.Lost;
}

void TLintEmission::Tell(TLintReport& report)
{
    for (const TEmission& emission : Emissions) {
        TFinding& finding = report.AddNode(LK_EMISSIONCUT, *emission.Node, emission.Group,
                                           "Its rate makes %g particles due in a frame of %g s, first at "
                                           "%.2f s, and Per frame max emission lets "
                                           "%d come: %.0f are lost",
                                           emission.Due, double(Options.Step), double(emission.Moment.Time),
                                           emission.Most, emission.Lost);
        AddNumber(finding, "due", emission.Due);
        AddNumber(finding, "most", emission.Most);
        AddNumber(finding, "lost", emission.Lost);
        AddNumber(finding, "frame", emission.Moment.Frame);
        AddNumber(finding, "time", double(emission.Moment.Time));
        AddNumber(finding, "seed", emission.Moment.Seed);
    }
}
