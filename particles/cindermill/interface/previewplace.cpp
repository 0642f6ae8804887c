#include "particles/cindermill/interface/previewplace.h"

namespace {

constexpr int WantedWidth = 800;
constexpr int WantedHeight = 650;
// The transport's buttons need so much.
constexpr int MinWidth = 340;
// Of the transport: the view above it is no higher than wide, so that the ground is seen as a whole.
constexpr int StripHeight = 32;
// Of the window's own frame: at each side, and above.
constexpr int FrameSide = 6;
constexpr int FrameTop = 32;
// Of a screen without room beside the graph, in percent.
constexpr int CornerWidth = 38;
constexpr int CornerHeight = 45;
constexpr int Step = 24;
constexpr int NumSteps = 8;

int Least(int a, int b)
{
    return a < b ? a : b;
}

int Within(int value, int low, int high)
{
    if (value > high)
        value = high;
    return value < low ? low : value;
}

TScreenPlace MakePlace(int left, int top, int width, int height)
{
    return TScreenPlace{left, top, left + width, top + height};
}

TScreenPlace FindFirst(const TScreenPlace& screen, const TScreenPlace& graph)
{
    const int screenWidth = screen.Right - screen.Left;
    const int screenHeight = screen.Bottom - screen.Top;
    const int right = screen.Right - graph.Right - 2 * FrameSide;
    const int left = graph.Left - screen.Left - 2 * FrameSide;
    const int beside = Least(WantedWidth, right >= left ? right : left);
    if (beside >= MinWidth) {
        const int room = screenHeight - FrameTop - FrameSide;
        const int height = Least(Least(WantedHeight, beside + StripHeight), room);
        const int top = Within(graph.Top, screen.Top + FrameTop, screen.Bottom - FrameSide - height);
        return MakePlace(right >= left ? graph.Right + FrameSide : graph.Left - FrameSide - beside, top,
                         beside, height);
    }
    const int width = Within(screenWidth * CornerWidth / 100, Least(MinWidth, screenWidth), WantedWidth);
    const int corner = Least(screenHeight * CornerHeight / 100, WantedHeight);
    return MakePlace(screen.Right - FrameSide - width, screen.Bottom - FrameSide - corner, width, corner);
}

} // namespace

TScreenPlace FindPreviewPlace(const TScreenPlace& screen, const TScreenPlace& graph, int number)
{
    const TScreenPlace first = FindFirst(screen, graph);
    const int shift = number % NumSteps * Step;
    const int width = first.Right - first.Left;
    const int height = first.Bottom - first.Top;
    const int left = Within(first.Left - shift, screen.Left, first.Left);
    // Downwards, as long as there is room, else upwards.
    const int below = first.Top + shift;
    const int top = below + height + FrameSide <= screen.Bottom ? below : first.Top - shift;
    return MakePlace(left, Within(top, screen.Top, screen.Bottom), width, height);
}
