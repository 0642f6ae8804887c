#include "tracefixture.h"

#include <QtGui/QImage>
#include <QtGui/QMouseEvent>
#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>

#include <cmath>
#include <cstdlib>
#include <limits>

// What a graph looks like. Run on an ordinary screen and, in runs of their own, on screens of several scales.

namespace {

constexpr QRgb White = 0xFFFFFFFF;
constexpr QRgb Black = 0xFF000000;
constexpr QRgb LineColour = 0xFFE0E0E0;
constexpr QRgb ReadoutPaper = 0xFFFFFFF2;
constexpr QRgb Red = 0xFF800000;
constexpr QRgb Green = 0xFF008000;
constexpr QRgb Blue = 0xFF000080;
// The colours of all components in their order.
constexpr QRgb Colours[] = {Red, Green, Blue, 0xFF800080, 0xFF008080, 0xFF808000};

class ScaledTraceGraph : public TraceTest
{
protected:
    // Opens the node's window, whose first graph is looked at.
    void Show(TToolNode& node)
    {
        Traced = &node;
        Window = &Open(node);
        Graph = GraphsOf(*Window)[0];
    }
    void Grab()
    {
        TAttributeTraceWindow::Repaint(*Sample);
        Settle();
        Picture = Graph->grab().toImage().convertToFormat(QImage::Format_RGB32);
        Picture.setDevicePixelRatio(1);
    }
    // The dot in the middle of a pixel.
    QRgb At(int x, int y) const
    {
        const double scale = Picture.width() / static_cast<double>(Graph->width());
        return Picture.pixel(static_cast<int>((x + 0.5) * scale), static_cast<int>((y + 0.5) * scale));
    }
    int Right() const { return Graph->width() - 5; }
    int Bottom() const { return Graph->height() - 10; }
    // Inside the frame.
    int Count(QRgb colour) const
    {
        int count = 0;
        for (int y = 10; y < Bottom(); ++y)
            for (int x = 50; x < Right(); ++x)
                count += At(x, y) == colour;
        return count;
    }
    int CountLeft(QRgb colour) const
    {
        int count = 0;
        for (int y = 0; y < Graph->height(); ++y)
            for (int x = 0; x < 49; ++x)
                count += At(x, y) == colour;
        return count;
    }
    bool IsOnlyFrame() const { return Count(White) == (Right() - 50) * (Bottom() - 10); }
    void Write(const std::vector<float>& value) { TraceTest::Write(*Traced, 0, value); }
    void Point(int x, int y)
    {
        QMouseEvent event(QEvent::MouseMove, QPointF(x, y), Graph->mapToGlobal(QPointF(x, y)), Qt::NoButton,
                          Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(Graph, &event);
    }
    void Leave()
    {
        QEvent event(QEvent::Leave);
        QApplication::sendEvent(Graph, &event);
    }

    TToolNode* Traced = nullptr;
    TAttributeTraceWindow* Window = nullptr;
    QWidget* Graph = nullptr;
    QImage Picture;
};

} // namespace

TEST_F(ScaledTraceGraph, AnEmptyTraceIsAWhiteFieldInABlackFrame)
{
    Show(Node("Integrate"));
    Grab();
    EXPECT_TRUE(IsOnlyFrame());
    for (int x = 50; x < Right(); x += 20) {
        EXPECT_EQ(At(x, 8), Black);
        EXPECT_EQ(At(x, 9), White);
        EXPECT_EQ(At(x, Bottom()), White);
        EXPECT_EQ(At(x, Bottom() + 1), Black);
    }
    for (int y = 8; y < Bottom() + 2; y += 20) {
        EXPECT_EQ(At(49, y), Black);
        EXPECT_EQ(At(Right(), y), Black);
    }
    EXPECT_NE(At(48, 100), Black);
    EXPECT_NE(At(Right() + 1, 100), Black);
}

TEST_F(ScaledTraceGraph, ARisingValueIsALineFromTheBottomLeftToTheTop)
{
    Show(Node("Age"));
    for (int e = 0; e <= 100; ++e)
        Write({static_cast<float>(e)});
    Grab();
    EXPECT_GT(Count(Red), (Right() - 50) / 2);
    // All of the curve is close to the straight line from entry to entry.
    const double width = (Right() - 50) * 99 / 100.0;
    for (int x = 50; x < Right(); ++x)
        for (int y = 10; y < Bottom(); ++y)
            if (At(x, y) == Red) {
                EXPECT_NEAR(y, Bottom() - (Bottom() - 10) * (x - 50) / width, 2.5);
            }
    // The last of n entries lies a width's nth before the right edge.
    for (int y = 10; y < Bottom(); ++y)
        EXPECT_NE(At(Right() - 1, y), Red);
}

TEST_F(ScaledTraceGraph, LevelLinesStandAtRoundValuesWithTheirNumbersAtTheLeft)
{
    Show(Node("Age"));
    // Six steps of 1 in 180 pixels.
    for (int e = 0; e < 60; ++e)
        Write({e % 2 == 0 ? 0.0f : 6.0f});
    Grab();
    for (int line = 1; line < 6; ++line)
        EXPECT_EQ(At(Right() - 2, Bottom() - 30 * line), LineColour) << line;
    EXPECT_EQ(At(Right() - 2, Bottom() - 15), White);
    EXPECT_GT(CountLeft(0xFF808080), 20);
}

TEST_F(ScaledTraceGraph, AFlatValueDrawsNothingButTheFrame)
{
    Show(Node("Age"));
    for (int e = 0; e < 20; ++e)
        Write({e % 2 == 0 ? 5.0f : 5.0008f});
    Grab();
    EXPECT_TRUE(IsOnlyFrame());
    EXPECT_EQ(CountLeft(0xFF808080), 0);
    Write({5.002f});
    Grab();
    EXPECT_FALSE(IsOnlyFrame());
}

TEST_F(ScaledTraceGraph, OneEntryDrawsNothing)
{
    Show(Node("Integrate"));
    Write({1, 2, 3, 4, 5, 6});
    Grab();
    EXPECT_TRUE(IsOnlyFrame());
}

TEST_F(ScaledTraceGraph, ComponentsHaveTheirColoursAndGoWithTheirBoxes)
{
    Show(Node("Integrate"));
    for (int e = 0; e < 20; ++e) {
        std::vector<float> value;
        for (int c = 0; c < 6; ++c)
            value.push_back(static_cast<float>(c * 100 + e));
        Write(value);
    }
    Grab();
    for (const QRgb colour : Colours)
        EXPECT_GT(Count(colour), (Right() - 50) / 2) << std::hex << colour;
    for (int c = 0; c < 6; ++c) {
        Find<QCheckBox>(*Window, ("check0_" + std::to_string(c)).c_str()).click();
        Grab();
        EXPECT_EQ(Count(Colours[c]), 0) << c;
        if (c < 5) {
            EXPECT_GT(Count(Colours[c + 1]), (Right() - 50) / 2) << c;
        }
    }
    // Without any component there is nothing to draw.
    EXPECT_TRUE(IsOnlyFrame());
    Find<QCheckBox>(*Window, "check0_2").click();
    Grab();
    // What is not drawn does not count for the range: the one curve takes all the height.
    int top = Bottom();
    int bottom = 0;
    for (int y = 10; y < Bottom(); ++y)
        for (int x = 50; x < Right(); ++x)
            if (At(x, y) == Blue) {
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    EXPECT_LE(top, 12);
    EXPECT_GE(bottom, Bottom() - 3);
}

TEST_F(ScaledTraceGraph, ValuesThatAreNotFiniteAreLeftOut)
{
    constexpr float Nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float Infinity = std::numeric_limits<float>::infinity();
    Show(Node("Age"));
    for (int e = 0; e < 40; ++e)
        Write({e % 4 == 1 ? Nan : e % 4 == 2 ? Infinity : e % 4 == 3 ? -Infinity : static_cast<float>(e)});
    Grab();
    float min = 0;
    float max = 0;
    Window->GetTrace().GetRange(0, min, max, 1);
    EXPECT_EQ(min, 0);
    EXPECT_EQ(max, 36);
    EXPECT_GT(Count(Red), (Right() - 50) / 2);
    const std::string text = TextOf(*Window);
    EXPECT_NE(text.find("\n37\tnan\n"), std::string::npos);
    EXPECT_NE(text.find("\n38\tinf\n"), std::string::npos);
    EXPECT_NE(text.find("\n39\t-inf\n"), std::string::npos);
}

TEST_F(ScaledTraceGraph, WithoutAnyFiniteValueThereIsNothingToDraw)
{
    Show(Node("Age"));
    for (int e = 0; e < 9; ++e)
        Write({std::numeric_limits<float>::quiet_NaN()});
    Grab();
    EXPECT_TRUE(IsOnlyFrame());
    Point(150, 100);
    Grab();
    EXPECT_FALSE(IsOnlyFrame());
}

TEST_F(ScaledTraceGraph, TheEntryUnderThePointerIsMarkedAndRead)
{
    Show(Node("Integrate"));
    for (int e = 0; e < 10; ++e)
        Write({static_cast<float>(e), 9, 0, 0, 0, 0});
    const TOutputGraph& graph = Window->GetGraphs().GetGraph(0);
    Grab();
    EXPECT_EQ(graph.GetPointedEntry(), -1);
    EXPECT_EQ(Count(ReadoutPaper), 0);
    const double distance = (Right() - 50) / 10.0;
    for (const int e : {0, 3, 9}) {
        const int x = 50 + static_cast<int>(e * distance);
        Point(x + 2, 60);
        EXPECT_EQ(graph.GetPointedEntry(), e);
        Grab();
        EXPECT_GT(Count(ReadoutPaper), 1000) << e;
        // A square where the curve has the entry.
        const int y = Bottom() - (Bottom() - 10) * e / 9;
        int marked = 0;
        for (int dx = -2; dx <= 2; ++dx)
            for (int dy = -2; dy <= 2; ++dy)
                marked += x + dx >= 50 && y + dy >= 10 && y + dy < Bottom() && At(x + dx, y + dy) == Red;
        if (e != 0 && e != 9) {
            EXPECT_GE(marked, 20) << e;
        }
    }
    // In the margin there is no entry.
    Point(20, 60);
    EXPECT_EQ(graph.GetPointedEntry(), -1);
    Point(60, 60);
    EXPECT_EQ(graph.GetPointedEntry(), 0);
    Leave();
    EXPECT_EQ(graph.GetPointedEntry(), -1);
    Grab();
    EXPECT_EQ(Count(ReadoutPaper), 0);
}

TEST_F(ScaledTraceGraph, AFlatValueIsReadToo)
{
    Show(Node("Age"));
    for (int e = 0; e < 9; ++e)
        Write({5});
    Point(120, 100);
    Grab();
    EXPECT_GT(Count(ReadoutPaper), 500);
    EXPECT_EQ(Count(LineColour), 0);
}

TEST_F(ScaledTraceGraph, AWindowOfARunningEffectHasItsPartsInPlace)
{
    Show(Node("Integrate"));
    Run(60);
    Grab();
    EXPECT_GT(Count(Red), 100);
    EXPECT_GT(Count(Green), 100);
    const QWidget& table = Find<QWidget>(*Window, "efxdebug_tablewindow");
    const QWidget& pane = Find<QWidget>(*Window, "cindermill_attribtrace_graphs");
    const QPoint tableEnd = table.mapTo(table.window(), QPoint(table.width(), table.height()));
    EXPECT_LE(tableEnd.x(), pane.mapTo(pane.window(), QPoint(0, 0)).x());
    for (int c = 0; c < 6; ++c) {
        const QCheckBox& box = Find<QCheckBox>(*Window, ("check0_" + std::to_string(c)).c_str());
        constexpr int boxWidth = 20;
        EXPECT_GE(box.width(), boxWidth + box.fontMetrics().horizontalAdvance(box.text())) << c;
        EXPECT_LE(box.geometry().right(), Graph->geometry().right());
    }
    QPixmap picture = Window->GetHandle()->grab();
    const char* scale = std::getenv("QT_SCALE_FACTOR");
    const std::string folder = std::string(CINDERMILL_BINARY_DIR) + "/pictures";
    std::filesystem::create_directories(folder);
    EXPECT_TRUE(
        picture.save(QString::fromStdString(folder + "/trace-" + (scale != nullptr ? scale : "1") + ".png")));
}
