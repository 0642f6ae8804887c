#include "particles/effectgraph/filereferences.h"

#include "library/containers/append.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/simpleparameters.h"

static void AddReferences(const TEffectNode& node, const vector<TNodeParameter*>& parameters,
                          vector<TFileReference>& result)
{
    for (const TNodeParameter* parameter : parameters) {
        if (parameter->Type == PK_TEXTURE)
            Append(result,
                   TFileReference{&node, false,
                                  static_cast<const TNodeTextureParameter*>(parameter)->GetFileName()});
        else if (parameter->Type == PK_ANIMATION)
            Append(result,
                   TFileReference{&node, true,
                                  static_cast<const TNodeAnimationParameter*>(parameter)->GetFileName()});
        vector<TNodeParameter*> owned;
        parameter->GetOwned(owned);
        AddReferences(node, owned, result);
    }
}

void GetFileReferences(const TEffectGraph& graph, vector<TFileReference>& result)
{
    for (int n = 0; n < graph.GetNumNodes(); ++n)
        AddReferences(*graph.GetNode(n), graph.GetNode(n)->GetNodeType()->Parameters, result);
}
