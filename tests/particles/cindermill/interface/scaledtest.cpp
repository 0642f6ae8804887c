#include "docwindowfixture.h"

#include <QtGui/QImage>
#include <QtGui/QMouseEvent>
#include <QtGui/QPixmap>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>

#include <cmath>
#include <cstdlib>
#include <functional>

// Run on an ordinary screen and, in runs of their own, on screens of several scales.

namespace {

double GetScale()
{
    const char* scale = std::getenv("QT_SCALE_FACTOR");
    return scale != nullptr ? std::atof(scale) : 1.0;
}

// Positions and sizes are dots but where pixels are named.
class Scaled : public DocWindows
{
protected:
    void SetUp() override
    {
        DocWindows::SetUp();
        Document = LoadDocument(SourcePath("samples/fountain.effect"));
        ASSERT_NE(Document, nullptr);
        Node = AddNode(*Document, "Gravity", 1203, 1207);
        // The node, and nothing else, at the top left.
        SetView(Graph(), -1150, -1150, 1);
        Document->ClearSelection();
        // All of it in sight, wherever the cascade of views has come to.
        ViewOf(*Document).MoveTo(50, 50, 1050, 750);
        ViewOf(*Document).BringToTop();
        Frame.BringToTop();
        Settle();
    }
    TGraphWindow& Graph() { return GraphOf(*Document); }
    static QImage Grab(TWindow& window)
    {
        QWidget* top = window.GetHandle()->window();
        top->raise();
        Settle();
        QImage image = top->screen()->grabWindow(top->winId()).toImage();
        image.setDevicePixelRatio(1);
        const QPoint place = window.GetHandle()->mapTo(top, QPoint(0, 0));
        int width = 0;
        int height = 0;
        window.GetDotSize(width, height);
        return image
            .copy(static_cast<int>(std::floor(place.x() * GetScale() + 0.5)),
                  static_cast<int>(std::floor(place.y() * GetScale() + 0.5)), width, height)
            .convertToFormat(QImage::Format_RGB32);
    }
    static bool IsPaper(QRgb dot) { return qRed(dot) > 235 && qGreen(dot) > 235 && qBlue(dot) > 220; }
    static bool IsBackground(QRgb dot) { return dot == qRgb(204, 204, 204); }
    // How many dots along the four edges are not as they should be.
    static int CountAtEdges(const QImage& image, bool (*isRight)(QRgb))
    {
        int count = 0;
        for (int x = 0; x < image.width(); ++x)
            for (const int y : {0, image.height() - 1})
                count += !isRight(image.pixel(x, y));
        for (int y = 0; y < image.height(); ++y)
            for (const int x : {0, image.width() - 1})
                count += !isRight(image.pixel(x, y));
        return count;
    }
    // The first dot whose pixel lies inside, and the last one.
    void GetCorners(int first[2], int last[2])
    {
        TVector2 min;
        TVector2 max;
        WindowsOf(*Document).GetScene().FindNode(Node)->GetRectangle(min, max);
        for (int i = 0; i < 2; ++i) {
            const double offset = Graph().GetView().GetOffset()[i];
            first[i] = static_cast<int>(std::ceil((min[i] + offset) * GetScale() - 1e-6));
            last[i] = static_cast<int>(std::floor((max[i] + offset) * GetScale() + 1e-6)) - 1;
        }
    }
    void SendAt(QEvent::Type type, int x, int y)
    {
        QWidget* widget = Graph().GetHandle();
        const QPointF at(x / GetScale(), y / GetScale());
        const bool isMove = type == QEvent::MouseMove;
        const bool isDown = type == QEvent::MouseButtonPress;
        QMouseEvent event(type, at, widget->mapToGlobal(at), isMove ? Qt::NoButton : Qt::LeftButton,
                          isDown ? Qt::LeftButton : Qt::NoButton, {});
        QApplication::sendEvent(widget, &event);
    }
    // Without a button.
    static void Point(TWindow& window, int x, int y)
    {
        const QPointF at(x / GetScale(), y / GetScale());
        QMouseEvent event(QEvent::MouseMove, at, window.GetHandle()->mapToGlobal(at), Qt::NoButton,
                          Qt::NoButton, {});
        QApplication::sendEvent(window.GetHandle(), &event);
    }
    // That a row, given in pixels, is the one under the pointer from its first dot to its last, and painted
    // so there.
    static void ExpectRow(TWindow& window, int top, int height, QRgb colour,
                          const std::function<bool()>& isIt)
    {
        const int first = static_cast<int>(std::ceil(top * GetScale()));
        const int last = static_cast<int>(std::ceil((top + height) * GetScale())) - 1;
        Point(window, 10, first - 1);
        EXPECT_FALSE(isIt());
        Point(window, 10, first);
        EXPECT_TRUE(isIt());
        Point(window, 10, last + 1);
        EXPECT_FALSE(isIt());
        Point(window, 10, last);
        EXPECT_TRUE(isIt());
        const QImage image = window.GetHandle()->grab().toImage();
        // Near the left edge no text and no mark stands.
        const int x = static_cast<int>(5 * GetScale());
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            if ((image.pixel(x, y) & 0xFFFFFF) == colour) {
                ++count;
                EXPECT_GE(y, first - 1);
                EXPECT_LE(y, last + 1);
            }
        EXPECT_NEAR(count, height * GetScale(), 1.01);
    }
    // Each list, row by row.
    void ExpectSearchRows()
    {
        Key(Graph(), Qt::Key_Tab);
        TSearchPopup& popup = Graph().GetActions().GetSearch();
        ASSERT_TRUE(popup.IsOpen());
        for (const int row : {1, 2, 5})
            ExpectRow(popup, popup.GetRowTop(row), TSearchPopup::RowHeight, 0xCFE0F5,
                      [&] { return popup.GetMarked() == row; });
    }
    void ExpectProblems()
    {
        constexpr QRgb Hover = 0xF6D9D4;
        for (int i = 0; i < 3; ++i)
            AddNode(*Document, "Quad Render Stage", 1500, 1200 + 300 * i);
        Document->RebuildSchedule(false);
        TProblemStrip& strip = ViewOf(*Document).GetProblems();
        ASSERT_GE(strip.GetNumEntries(), 3);
        for (const int row : {1, 2})
            ExpectRow(strip, strip.GetEntryTop(row), TProblemStrip::RowHeight, Hover, [&] {
                const QImage image = strip.GetHandle()->grab().toImage();
                const double middle = strip.GetEntryTop(row) + TProblemStrip::RowHeight / 2.0;
                return (image.pixel(4, static_cast<int>(middle * GetScale())) & 0xFFFFFF) == Hover;
            });
    }
    void ExpectTypes()
    {
        const int numNodes = Document->GetGraph()->GetNumNodes();
        TDocTool& tool = ViewOf(*Document).GetTool();
        const vector<TPaletteRow>& rows = tool.GetPalette().GetRows();
        const auto press = [&](int dot) {
            const QPointF at(60, dot / GetScale());
            for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
                QMouseEvent event(type, at, tool.GetHandle()->mapToGlobal(at), Qt::LeftButton,
                                  type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, {});
                QApplication::sendEvent(tool.GetHandle(), &event);
            }
            return tool.GetMarked();
        };
        for (const int row : {2, 5, 9}) {
            const int first = static_cast<int>(std::ceil(rows[row].Top * GetScale()));
            const int last =
                static_cast<int>(std::ceil((rows[row].Top + TPalette::RowHeight) * GetScale())) - 1;
            EXPECT_EQ(press(first - 1), row - 1);
            EXPECT_EQ(press(first), row);
            EXPECT_EQ(press(last + 1), row + 1);
            EXPECT_EQ(press(last), row);
        }
        EXPECT_EQ(Document->GetGraph()->GetNumNodes(), numNodes);
    }
    // Whether the object under the pointer belongs to the node.
    bool IsOnNode(int x, int y)
    {
        SendAt(QEvent::MouseMove, x, y);
        const TRenderObject* node = WindowsOf(*Document).GetScene().FindNode(Node);
        const TRenderObject* object = TRenderObject::GetHover();
        while (object != nullptr && object != node)
            object = object->GetParent();
        return object != nullptr;
    }

    TDocument* Document = nullptr;
    TToolNode* Node = nullptr;
};

} // namespace

TEST_F(Scaled, TheGraphFillsItsViewToTheLastDot)
{
    const QImage image = Grab(Graph());
    int width = 0;
    int height = 0;
    Graph().GetDotSize(width, height);
    ASSERT_EQ(image.size(), QSize(width, height));
    EXPECT_GT(width, 600 * GetScale());
    EXPECT_EQ(CountAtEdges(image, IsPaper), 0);
}

TEST_F(Scaled, ANodeIsAsLargeOnEveryScreen)
{
    const QImage image = Grab(Graph());
    int first[2];
    int last[2];
    GetCorners(first, last);
    // Along the title bar, left of which no port stands: the first dot that is not paper.
    const int y = static_cast<int>(first[1] + 7 * GetScale());
    int x = 0;
    while (x < image.width() && IsPaper(image.pixel(x, y)))
        ++x;
    EXPECT_NEAR(x, first[0], 1.5 * GetScale());
    // Down its middle.
    const int middle = (first[0] + last[0]) / 2;
    int top = 0;
    while (top < image.height() && IsPaper(image.pixel(middle, top)))
        ++top;
    EXPECT_NEAR(top, first[1], 1.5 * GetScale());
    int bottom = image.height() - 1;
    while (bottom > 0 && IsPaper(image.pixel(middle, bottom)))
        --bottom;
    // The shadow lies below.
    EXPECT_NEAR(bottom, last[1], 6 * GetScale());
    EXPECT_GE(bottom, last[1]);
}

TEST_F(Scaled, EachDotOfANodesCornersIsTheNodes)
{
    int first[2];
    int last[2];
    // A view between two pixels too.
    for (const float shift : {0.0f, 0.3f, 0.5f, 0.8f}) {
        SetView(Graph(), -1150 + shift, -1150 + shift, 1);
        GetCorners(first, last);
        for (const int x : {first[0], last[0]})
            for (const int y : {first[1], last[1]})
                EXPECT_TRUE(IsOnNode(x, y)) << x << " " << y;
        // A dot that lies outside altogether, over the node and under it, where no port is.
        const int middle = (first[0] + last[0]) / 2;
        EXPECT_FALSE(IsOnNode(middle, first[1] - 2));
        EXPECT_FALSE(IsOnNode(middle, last[1] + 2));
        EXPECT_TRUE(IsOnNode(middle, first[1]));
        EXPECT_TRUE(IsOnNode(middle, last[1]));
    }
}

TEST_F(Scaled, AClickOnANodesCornerSelectsIt)
{
    int first[2];
    int last[2];
    GetCorners(first, last);
    SendAt(QEvent::MouseButtonPress, first[0], first[1]);
    SendAt(QEvent::MouseButtonRelease, first[0], first[1]);
    ASSERT_EQ(Document->GetSelection().size(), 1);
    EXPECT_EQ(Document->GetSelection()[0], Node);
}

TEST_F(Scaled, ADraggedNodeStaysUnderThePointer)
{
    int first[2];
    int last[2];
    GetCorners(first, last);
    const int x = first[0] + static_cast<int>(20 * GetScale());
    const int y = first[1] + 3;
    const int way = static_cast<int>(60 * GetScale());
    SendAt(QEvent::MouseButtonPress, x, y);
    QWidget* widget = Graph().GetHandle();
    for (const int part : {way / 2, way}) {
        const QPointF at((x + part) / GetScale(), (y + part) / GetScale());
        QMouseEvent move(QEvent::MouseMove, at, widget->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(widget, &move);
    }
    SendAt(QEvent::MouseButtonRelease, x + way, y + way);
    EXPECT_NEAR(Node->GetX(), 1203 + way / GetScale(), 1);
    EXPECT_NEAR(Node->GetY(), 1207 + way / GetScale(), 1);
}

TEST_F(Scaled, ThePreviewFillsItsWindow)
{
    TParticleWindow* preview = WindowsOf(*Document).GetParticleWindow();
    ASSERT_NE(preview, nullptr);
    preview->Show();
    preview->BringToTop();
    preview->Tick();
    Settle();
    TWindow* render =
        TWindow::Find(preview->GetHandle()->findChild<QWidget*>("cindermill_particlewindow_render"));
    ASSERT_NE(render, nullptr);
    const QImage image = Grab(*render);
    EXPECT_EQ(CountAtEdges(image, IsBackground), 0);
    // The ground grid's corners, by the camera, are the outermost of what is black.
    TMatrix4 view;
    TMatrix4 projection;
    preview->GetRenderWindow().GetCamera().GetView(view);
    TCamera::GetProjection(static_cast<float>(image.width()) / static_cast<float>(image.height()),
                           projection);
    TMatrix4 both;
    both.Multiply(view, projection);
    QRectF expected;
    for (const double x : {-1.0, 1.0})
        for (const double z : {-1.0, 1.0}) {
            double clip[4];
            for (int i = 0; i < 4; ++i)
                clip[i] = x * both[0][i] + z * both[2][i] + both[3][i];
            const QPointF at((clip[0] / clip[3] + 1) * 0.5 * image.width(),
                             (1 - clip[1] / clip[3]) * 0.5 * image.height());
            expected = expected.isNull() ? QRectF(at, QSizeF(1, 1)) : expected | QRectF(at, QSizeF(1, 1));
        }
    QRect black;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) == qRgb(0, 0, 0))
                black |= QRect(x, y, 1, 1);
    EXPECT_NEAR(black.left(), expected.left(), 3 * GetScale());
    EXPECT_NEAR(black.right(), expected.right(), 3 * GetScale());
    EXPECT_NEAR(black.top(), expected.top(), 3 * GetScale());
    EXPECT_NEAR(black.bottom(), expected.bottom(), 3 * GetScale());
}

TEST_F(Scaled, ARowOfAListIsItsOwnToTheLastDot)
{
    ExpectSearchRows();
    Graph().GetActions().CloseSearch();
    ExpectProblems();
    ExpectTypes();
}
