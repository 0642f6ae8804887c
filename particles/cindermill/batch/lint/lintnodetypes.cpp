#include "particles/cindermill/batch/lint/lintnodetypes.h"

#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/nodetypelibrary.h"

// A node that an artist has named is still of its class.
void LintNodeTypes(const TEffectGraph& graph, const TNodeTypeLibrary& library, TLintReport& report)
{
    for (int n = 0; n < graph.GetNumNodes(); ++n) {
        const TEffectNode& node = *graph.GetNode(n);
        const TNodeType& type = *node.GetNodeType();
        const bool isKnown = library.FindType(type.Name) != nullptr;
        if (isKnown && type.NeedsRefresh(library))
            report.AddNode(LK_TYPESTALE, node, -1, "Node \"%s\" differs from the library's type of its name",
                           GetNodeName(node).Print());
        else if (!isKnown && !library.HasClass(type.ClassName))
            report.AddNode(LK_TYPEMISSING, node, -1,
                           "Node \"%s\" is of a type that the library does not have",
                           GetNodeName(node).Print());
    }
}
