#include "particles/cindermill/graph/operations/operation.h"

#include "particles/effectgraph/refreshrecord.h"

TAdaption TOperation::AdaptTo(const TRefreshRecord& record)
{
    vector<TChunk*> held;
    GetMade(held);
    GetUsed(held);
    for (const TChunk* chunk : held)
        if (record.IsLost(chunk))
            return AD_LOST;
    return AD_FITS;
}
