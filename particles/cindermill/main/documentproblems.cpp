#include "particles/cindermill/main/documentproblems.h"

#include "library/containers/append.h"
#include "library/containers/shortentext.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/runcollecting.h"
#include "particles/effectgraph/schedule/effectschedule.h"

namespace {

// Names may be longer than a line, and than what can be formatted.
TString GetProblemName(const TString& name)
{
    constexpr int MostBytes = 100;
    return ShortenName(name.Print(), MostBytes);
}

// In quotes, or as what a message ends with: elsewhere the words of a name may be of the message itself.
bool IsNamed(const TString& text, const TString& name)
{
    TString quoted;
    quoted.Format("\"%s\"", name.Print());
    TString last;
    last.Format(" in %s", name.Print());
    const int at = text.FindString(last.Print(), true);
    return text.FindString(quoted.Print(), true) >= 0 || (at >= 0 && at == text.Length() - last.Length());
}

// Several types share a message, which an artist's own name for a node is not in either.
void NameNode(TProblem& problem)
{
    problem.Text = problem.Message;
    if (problem.Node == nullptr)
        return;
    const TString name = GetProblemName(problem.Node->GetNodeType()->Name);
    if (IsNamed(problem.Text, name))
        return;
    TString text;
    text.Format("%s: %s", name.Print(), problem.Text.Print());
    problem.Text = text;
}

} // namespace

void TDocumentProblems::Take(const TEffectGraph& graph, const TErrorList& errors, bool ofGraph)
{
    Problems.clear();
    TakeErrors(graph, errors, ofGraph);
}

void TDocumentProblems::TakeErrors(const TEffectGraph& graph, const TErrorList& errors, bool ofGraph)
{
    bool isPlaced = true;
    for (const TError* error : errors) {
        TProblem problem;
        problem.Message = GetErrorLine(*error);
        problem.Message.Trim();
        problem.Node = graph.FindNodeOf(error->GetSource().Type);
        NameNode(problem);
        problem.OfGraph = ofGraph;
        isPlaced = isPlaced && problem.Node != nullptr;
        Append(Problems, problem);
    }
    if (ofGraph && !isPlaced)
        AddUnwired(graph);
}

void TDocumentProblems::AddUnwired(const TEffectGraph& graph)
{
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        const TEffectNode& node = *graph.GetNode(i);
        const TNodeType& type = *node.GetNodeType();
        for (int input = node.FindUnwired(); input != -1; input = node.FindUnwired(input + 1)) {
            TProblem problem;
            problem.Text.Format("%s: nothing is wired to \"%s\"", GetProblemName(type.Name).Print(),
                                GetProblemName(type.GetInput(input)->Name).Print());
            problem.Node = &node;
            problem.OfGraph = true;
            Append(Problems, problem);
        }
    }
}

bool TDocumentProblems::Review(const TEffectGraph& graph)
{
    if (Problems.empty())
        return false;
    const vector<TProblem> before = Problems;
    TErrorList errors;
    TEffectSchedule schedule;
    const bool created = RunCollecting(errors, [&] { return schedule.Create(graph, errors); });
    Problems.clear();
    if (!created) {
        TakeErrors(graph, errors, true);
    } else {
        // What the engine met at nodes that are still there is not known to be mended.
        for (TProblem problem : before) {
            if (problem.OfGraph || (problem.Node != nullptr && !graph.Has(problem.Node)))
                continue;
            NameNode(problem);
            Append(Problems, problem);
        }
    }
    return !IsSame(before);
}

bool TDocumentProblems::IsSame(const vector<TProblem>& other) const
{
    bool same = Problems.size() == other.size();
    for (int i = 0; same && i < Problems.size(); ++i)
        same = Problems[i].Text == other[i].Text && Problems[i].Node == other[i].Node;
    return same;
}

void TDocumentProblems::GetText(const TEffectNode* node, TString& text) const
{
    text = nullptr;
    for (const TProblem& problem : Problems) {
        if (problem.Node != node)
            continue;
        if (!text.IsEmpty())
            text += "\n";
        text += problem.Text;
    }
}
