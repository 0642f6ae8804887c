#include "particles/cindermill/graph/nodes/grid.h"

#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/effectgraph/simpleparameters.h"

namespace {

TClassRandom& GetShared()
{
    static TClassRandom random;
    return random;
}

// From -1 to 1; no number on a grid without divisions.
float GetGridPosition(int64_t i, int64_t divisions)
{
    return static_cast<float>(2.0 * static_cast<double>(i) / static_cast<double>(divisions) - 1.0);
}

} // namespace

bool TGrid::Init(TErrorList& errors)
{
    NextPoint = 0;
    return (XDivisions = RequireParameter<TNodeIntParameter>("X Divisions", PK_INT, errors)) != nullptr &&
           (YDivisions = RequireParameter<TNodeIntParameter>("Y Divisions", PK_INT, errors)) != nullptr &&
           (EmitType = RequireParameter<TNodeEnumParameter>("Emit Type", PK_ENUM, errors)) != nullptr;
}

int TGrid::ChoosePoint(int64_t nx, int64_t ny)
{
    // The product of huge divisions wraps.
    const uint32_t total = static_cast<uint32_t>(nx + 1) * static_cast<uint32_t>(ny + 1);
    if (EmitType->GetNumber() == 0)
        return static_cast<int>(ChooseRandom(GetShared()).Range(total));
    const int point = NextPoint;
    NextPoint = static_cast<int>(RemainderOrZero(int64_t{NextPoint} + 1, static_cast<int32_t>(total)));
    return point;
}

void TGrid::Execute(int index, float)
{
    const TPortValue transform = Load(1, index);
    const TPortValue size = Load(2, index);
    TMatrix43 matrix = GetTransformMatrix(transform);
    ScaleFirst(matrix, size[0], 0, size[1]);
    const int64_t nx = XDivisions->Get();
    const int64_t ny = YDivisions->Get();
    const int point = ChoosePoint(nx, ny);
    const int64_t ix = RemainderOrZero(point, nx + 1);
    // By this divisor only a square grid fills evenly; effects rely on it.
    const int64_t iz = DivideOrZero(point, ny + 1);
    const TVector3 local(GetGridPosition(ix, nx), 0, GetGridPosition(iz, ny));
    TPortValue result = transform;
    SetVector(result, matrix.TransformPoint(local));
    Store(0, index, result);
}

void TGrid::Export(TExportData& exportData, TErrorList&)
{
    ExportTransform(exportData);
}
