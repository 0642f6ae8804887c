#include "particles/effectgraph/export/exportpolicies.h"

#include "particles/effectgraph/error.h"

namespace {
// Boxes of one node: it has both a dynamic and a static one.
int CountMixed(const vector<TExportBounds>& bounds)
{
    int count = 0;
    for (int a = 0; a < bounds.size(); ++a)
        for (int b = a + 1; b < bounds.size(); ++b)
            if (bounds[a].Node == bounds[b].Node)
                ++count;
    return count;
}
} // namespace

bool CheckExportPolicies(const TExportResult& result, int flags, TErrorList& errors)
{
    const char* level = (flags & PF_PREVENTEXPORT) != 0 ? "Fatal Error" : "Warning";
    int boxes = 0;
    int mixed = 0;
    for (const TExportGroup& group : result.Groups) {
        boxes += group.Bounds.size();
        mixed += CountMixed(group.Bounds);
    }
    bool kept = true;
    if ((flags & PF_MUSTHAVEBOUNDS) != 0 && boxes == 0) {
        errors.Add(new TError("%s: Effect file does not contain a bounding box", level));
        kept = false;
    }
    if ((flags & PF_NOMIXEDBOUNDS) != 0 && mixed >= 1) {
        errors.Add(
            new TError("%s: Effect file contains %d render nodes with both dynamic and static bounding boxes",
                       level, mixed));
        kept = false;
    }
    return kept;
}
