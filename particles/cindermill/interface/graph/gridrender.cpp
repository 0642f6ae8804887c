#include "particles/cindermill/interface/graph/gridrender.h"

#include "library/maths/scalar.h"
#include "library/wimp/gl/renderer.h"

#include <cmath>

namespace {

constexpr double CellSize = 128.0;
constexpr int CellParts = 8;
static_assert(CellSize == CellParts * TGridRender::Step);
constexpr float Unbounded = 1e30f;
// Lines closer than this many pixels would only make the paper grey, and there would be too many of them.
constexpr double SmallestStep = 5.0;
constexpr double SmallestCell = 4.0;
constexpr float CellLineWidth = 2.0f;

int CellOf(double place)
{
    return FloatToInt(std::floor(place / CellSize));
}

// The paper in sight, by numbers of cells.
class TGridCells
{
public:
    explicit TGridCells(TRenderer& renderer) : Target(renderer)
    {
        renderer.GetVisibleRect(Min, Max);
        for (int i = 0; i < 2; ++i) {
            First[i] = CellOf(Min[i]);
            Last[i] = CellOf(Max[i]);
        }
    }
    // Not a number, or a zoom far out of the view's.
    bool IsDrawable() const
    {
        constexpr double MaxCells = 4096;
        for (int i = 0; i < 2; ++i)
            if (!(Pixels(i, CellSize) >= SmallestCell) || !(double(Last[i]) - First[i] < MaxCells) ||
                Last[i] < First[i])
                return false;
        return true;
    }
    void DrawCells() const
    {
        for (int y = First[1]; y <= Last[1]; ++y)
            for (int x = First[0]; x <= Last[0]; ++x)
                if (((x + y) & 1) == 0)
                    Target.DrawRectangle(Corner(x, y), Corner(x + 1, y + 1));
    }
    void DrawLines(int axis) const
    {
        const bool parts = Pixels(axis, CellSize / CellParts) >= SmallestStep;
        for (int cell = First[axis]; cell <= Last[axis]; ++cell) {
            DrawLine(axis, cell * CellSize, CellLineWidth);
            for (int part = 1; parts && part < CellParts; ++part)
                DrawLine(axis, cell * CellSize + part * CellSize / CellParts, 1.0f);
        }
    }

private:
    double Pixels(int axis, double units) const { return units * Target.GetScale()[axis]; }
    static TVector2 Corner(int x, int y)
    {
        return TVector2(static_cast<float>(x * CellSize), static_cast<float>(y * CellSize));
    }
    // The width is in pixels at every zoom.
    void DrawLine(int axis, double place, float width) const
    {
        TVector2 from = Min;
        TVector2 to = Max;
        from[axis] = to[axis] = static_cast<float>(place);
        Target.DrawLine(from, to, width / Target.GetScale()[axis]);
    }

    TRenderer& Target;
    TVector2 Min;
    TVector2 Max;
    int First[2];
    int Last[2];
};

} // namespace

void TGridRender::Render(TRenderer& renderer)
{
    const TGridCells cells(renderer);
    if (!cells.IsDrawable())
        return;
    renderer.SetColour(TVector4(0.99f, 0.99f, 0.93f, 1));
    cells.DrawCells();
    renderer.SetColour(TVector4(0.95f, 0.95f, 0.95f, 1));
    for (int axis = 0; axis < 2; ++axis)
        cells.DrawLines(axis);
}

void TGridRender::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(-Unbounded, -Unbounded);
    max = TVector2(Unbounded, Unbounded);
}

TRenderObject* TGridRender::HitTest(const TVector2& point)
{
    (void)point;
    return nullptr;
}
