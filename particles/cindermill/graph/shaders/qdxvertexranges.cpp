#include "particles/cindermill/graph/shaders/qdxvertexranges.h"

#include "library/containers/assertion.h"
#include "library/maths/scalar.h"

int TQdxVertexRanges::Enter(int lo, int hi)
{
    const bool isSpan = lo < hi;
    int m = 0;
    for (int i = 0; i < Ranges.size(); ++i) {
        TVertexRange& r = Ranges[i];
        if (r.First == lo && r.Last == hi)
            return m;
        if (lo <= r.Last && hi >= r.First) {
            if (isSpan && r.IsSpan()) {
                if (lo >= r.First)
                    return lo - r.First + m;
                r.First = lo;
                return m;
            }
            // Where nothing is left before the slot, the span has its place behind it.
            if (r.First == r.Last && r.First < hi && lo < r.First) {
                Ranges.insert(Ranges.begin() + i, {lo, r.First - 1});
                return m;
            }
            // A relative access gives way to a slot that is named itself.
            if (!isSpan && r.Last >= hi)
                r.Last = lo - 1;
        } else if (r.First > lo) {
            Ranges.insert(Ranges.begin() + i, {lo, hi});
            return m;
        }
        m += r.GetSize();
    }
    Ranges.push_back({lo, hi});
    return m;
}

void TQdxVertexRanges::Fit()
{
    const int total = GetTotal();
    if (total <= MaxParameters)
        return;
    int numranges = 0;
    double squares = 0;
    for (const TVertexRange& range : Ranges) {
        if (!range.IsSpan())
            continue;
        ++numranges;
        squares += static_cast<double>(range.GetSize()) * range.GetSize();
    }
    ASSERT_TEXT(numranges > 0, "numranges > 0");
    const double excess = total - MaxParameters;
    for (TVertexRange& range : Ranges) {
        if (!range.IsSpan())
            continue;
        const double size = range.GetSize();
        range.Last = FloatToInt(range.Last - excess * size * size / squares);
    }
}

int TQdxVertexRanges::GetTotal() const
{
    int total = 0;
    for (const TVertexRange& range : Ranges)
        total += range.GetSize();
    return total;
}
