#include "library/wimp/controls/table.h"
#include "support/windowtest.h"

#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QScrollBar>

#include <set>

namespace {

// Numbers its cells, and notes which are asked for.
class TTestProvider : public TTableProvider
{
public:
    int GetNumRows() const override { return NumRows; }
    int GetNumColumns() const override { return NumColumns; }
    void GetHeader(int column, TString& text) const override { text.Format("column %d", column); }
    void GetLabel(int row, TString& text) const override
    {
        Labels.insert(row);
        text.Format("%d", row);
    }
    void GetCell(int row, int column, TString& text) const override
    {
        Rows.insert(row);
        Columns.insert(column);
        text.Format("%d.%d", row, column);
    }

    int NumRows = 100;
    int NumColumns = 3;
    mutable std::set<int> Labels;
    mutable std::set<int> Rows;
    mutable std::set<int> Columns;
};

class TTableTest : public TWindowTest
{
protected:
    void Make(int flags)
    {
        ShowTopWindow(Window, Class, 400, 300);
        Table.Create(&Window, Provider, flags);
        Table.MoveTo(0, 0, TTable::LabelWidth + 300, TTable::RowHeight * 11);
        Settle();
    }
    QWidget* Find(const char* name) { return Window.GetHandle()->findChild<QWidget*>(name); }
    void Drag(int from, int to)
    {
        QWidget* header = Find("table_header");
        QTest::mousePress(header, Qt::LeftButton, {}, QPoint(from, 5));
        QTest::mouseMove(header, QPoint(to, 5));
        QTest::mouseRelease(header, Qt::LeftButton, {}, QPoint(to, 5));
    }

    TWindowClass Class{"test_tableowner"};
    TRecordingWindow Window;
    TTestProvider Provider;
    TTable Table;
};

} // namespace

TEST_F(TTableTest, TheFrameHoldsHeaderLabelsAndCells)
{
    Make(0);
    EXPECT_NE(Find("efxdebug_tablewindow"), nullptr);
    EXPECT_EQ(Find("table_header")->geometry(), QRect(TTable::LabelWidth, 0, 300, TTable::RowHeight));
    EXPECT_EQ(Find("table_label")->geometry(),
              QRect(0, TTable::RowHeight, TTable::LabelWidth, TTable::RowHeight * 10));
    EXPECT_EQ(Find("table_main")->geometry(),
              QRect(TTable::LabelWidth, TTable::RowHeight, 300, TTable::RowHeight * 10));
}

TEST_F(TTableTest, OnlyTheRowsInSightAreAskedFor)
{
    Make(0);
    EXPECT_EQ(*Provider.Rows.begin(), 0);
    EXPECT_EQ(*Provider.Rows.rbegin(), 9);
    EXPECT_EQ(*Provider.Columns.rbegin(), 2);
    EXPECT_EQ(*Provider.Labels.rbegin(), 9);
}

TEST_F(TTableTest, ScrollingMovesLabelsAndCells)
{
    Make(0);
    QScrollBar* bar = Find("table_main")->findChild<QScrollBar*>();
    ASSERT_NE(bar, nullptr);
    EXPECT_TRUE(bar->isVisible());
    EXPECT_EQ(bar->maximum(), 90 * TTable::RowHeight);
    Provider.Rows.clear();
    Provider.Labels.clear();
    bar->setValue(40 * TTable::RowHeight);
    EXPECT_EQ(Table.GetFirstRow(), 40);
    Settle();
    EXPECT_EQ(*Provider.Rows.begin(), 40);
    EXPECT_EQ(*Provider.Rows.rbegin(), 49);
    EXPECT_EQ(*Provider.Labels.begin(), 40);
    // The wheel goes three rows a notch.
    TMessage wheel;
    wheel.Type = MT_WHEEL;
    wheel.Delta = -120;
    TWindow::Find(Find("table_label"))->OnMessage(wheel);
    EXPECT_EQ(Table.GetFirstRow(), 43);
    // Parts of one that are no whole pixels each are not lost.
    wheel.Delta = -5;
    for (int i = 0; i < 120 / 5; ++i)
        TWindow::Find(Find("table_label"))->OnMessage(wheel);
    EXPECT_EQ(Table.GetFirstRow(), 46);
}

TEST_F(TTableTest, ATableWithFewerRowsThanRoomHasNoScrollBar)
{
    Provider.NumRows = 4;
    Make(0);
    EXPECT_FALSE(Find("table_main")->findChild<QScrollBar*>()->isVisible());
    EXPECT_EQ(*Provider.Rows.rbegin(), 3);
    Provider.NumRows = 0;
    Provider.NumColumns = 0;
    Provider.Rows.clear();
    Table.Refresh();
    Settle();
    EXPECT_TRUE(Provider.Rows.empty());
}

// 300 pixels hold three columns and a part of the fourth.
TEST_F(TTableTest, WideColumnsAreScrolledSideways)
{
    Provider.NumColumns = 10;
    Make(0);
    QScrollBar* bar = Table.GetHandle()->findChild<QScrollBar*>("table_bar");
    ASSERT_NE(bar, nullptr);
    ASSERT_TRUE(bar->isVisible());
    int width = 0;
    int height = 0;
    TWindow::Find(Find("table_main"))->GetSize(width, height);
    const int column = Table.GetColumnWidth(0);
    EXPECT_EQ(bar->maximum(), 10 * column - width);
    // It lies below the cells, over their whole width, and takes none of them away.
    EXPECT_EQ(bar->geometry().top(), Find("table_main")->geometry().bottom() + 1);
    EXPECT_EQ(bar->geometry().left(), TTable::LabelWidth);
    EXPECT_EQ(bar->geometry().bottom(), Table.GetHandle()->height() - 1);
    EXPECT_EQ(Find("table_label")->height(), Find("table_main")->height());
    const QImage before = Find("table_main")->grab().toImage();
    const QImage header = Find("table_header")->grab().toImage();
    bar->setValue(bar->maximum());
    EXPECT_EQ(Table.GetFirstPixel(), bar->maximum());
    EXPECT_NE(Find("table_main")->grab().toImage(), before);
    EXPECT_NE(Find("table_header")->grab().toImage(), header);
    // The labels stay where they are, and so do the rows.
    EXPECT_EQ(Table.GetFirstRow(), 0);
    bar->setValue(0);
    EXPECT_EQ(Find("table_main")->grab().toImage(), before);
}

TEST_F(TTableTest, TheWheelScrollsSidewaysWithShift)
{
    Provider.NumColumns = 10;
    Make(0);
    TMessage wheel;
    wheel.Type = MT_WHEEL;
    wheel.Delta = -120;
    wheel.KeyFlags = KF_SHIFT;
    TWindow::Find(Find("table_main"))->OnMessage(wheel);
    EXPECT_EQ(Table.GetFirstPixel(), 60);
    EXPECT_EQ(Table.GetFirstRow(), 0);
    wheel.Delta = 1200;
    TWindow::Find(Find("table_label"))->OnMessage(wheel);
    EXPECT_EQ(Table.GetFirstPixel(), 0);
}

TEST_F(TTableTest, TheBarComesAndGoesWithTheColumns)
{
    Make(0);
    QScrollBar* bar = Table.GetHandle()->findChild<QScrollBar*>("table_bar");
    EXPECT_FALSE(bar->isVisible());
    Table.SetColumnWidth(0, 400);
    EXPECT_TRUE(bar->isVisible());
    bar->setValue(100);
    // What is left of the position fits.
    Table.SetColumnWidth(0, 150);
    EXPECT_LT(Table.GetFirstPixel(), 100);
    EXPECT_EQ(Table.GetFirstPixel(), bar->maximum());
    Provider.NumColumns = 1;
    Table.Refresh();
    EXPECT_FALSE(bar->isVisible());
    EXPECT_EQ(Table.GetFirstPixel(), 0);
    Provider.NumColumns = 10;
    Table.Refresh();
    EXPECT_TRUE(bar->isVisible());
    Table.MoveTo(0, 0, 1200, 200);
    Settle();
    EXPECT_FALSE(bar->isVisible());
}

TEST_F(TTableTest, ABorderOfAScrolledColumnIsDragged)
{
    Provider.NumColumns = 10;
    Make(TTable::FL_RESIZABLEHEADERS);
    const int width = Table.GetColumnWidth(1);
    Table.GetHandle()->findChild<QScrollBar*>("table_bar")->setValue(width);
    Drag(width, width + 30);
    EXPECT_EQ(Table.GetColumnWidth(0), width);
    EXPECT_EQ(Table.GetColumnWidth(1), width + 30);
    EXPECT_EQ(Table.GetColumnWidth(2), width);
}

TEST_F(TTableTest, ABorderIsDragged)
{
    Make(TTable::FL_RESIZABLEHEADERS);
    const int width = Table.GetColumnWidth(1);
    Drag(2 * width + 1, 2 * width + 31);
    EXPECT_EQ(Table.GetColumnWidth(0), width);
    EXPECT_EQ(Table.GetColumnWidth(1), width + 30);
    EXPECT_EQ(Table.GetColumnWidth(2), width);
    // Nothing is dragged away altogether, and the middle of a header is none.
    Drag(2 * width + 30, -500);
    EXPECT_GT(Table.GetColumnWidth(1), 0);
    Drag(width / 2, width / 2 + 20);
    EXPECT_EQ(Table.GetColumnWidth(0), width);
}

TEST_F(TTableTest, ABorderWhoseDragLosesTheMouseStays)
{
    Make(TTable::FL_RESIZABLEHEADERS);
    const int width = Table.GetColumnWidth(0);
    QWidget* header = Find("table_header");
    QTest::mousePress(header, Qt::LeftButton, {}, QPoint(width, 5));
    QTest::mouseMove(header, QPoint(width + 20, 5));
    // As when a dialog opens: the release is never heard of.
    TWimp::Get().LoseMouseDrag();
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    QTest::mouseMove(header, QPoint(width + 60, 5));
    EXPECT_EQ(Table.GetColumnWidth(0), width + 20);
    QTest::mouseRelease(header, Qt::LeftButton, {}, QPoint(width + 60, 5));
}

TEST_F(TTableTest, BordersStayWithoutTheFlag)
{
    Make(0);
    const int width = Table.GetColumnWidth(0);
    Drag(width, width + 30);
    EXPECT_EQ(Table.GetColumnWidth(0), width);
}

TEST_F(TTableTest, ATableWithoutAnOwnerIsAnAssertion)
{
    EXPECT_EQ(AssertionOf([&] { Table.Create(nullptr, Provider); }), "0 : Failed to create table window");
}

TEST_F(TTableTest, KeysLeadAMarkThroughItsRows)
{
    Make(0);
    Window.Show();
    Window.BringToTop();
    QWidget* main = Find("table_main");
    ASSERT_TRUE(WaitFor([&] { return QApplication::activeWindow() == Window.GetHandle(); }));
    QTest::mouseClick(main, Qt::LeftButton, {}, QPoint(20, 20));
    EXPECT_TRUE(main->hasFocus());
    struct TStep
    {
        Qt::Key Key;
        int Marked;
        int First;
    };
    // The row that was pressed is marked. Ten rows are in sight.
    EXPECT_EQ(Table.GetMarkedRow(), 1);
    const TStep steps[] = {{Qt::Key_Down, 2, 0},   {Qt::Key_PageDown, 11, 9}, {Qt::Key_Up, 10, 9},
                           {Qt::Key_PageUp, 1, 0}, {Qt::Key_End, 99, 90},     {Qt::Key_Down, 99, 90},
                           {Qt::Key_Home, 0, 0}};
    for (const TStep& step : steps) {
        const QImage before = main->grab().toImage();
        QTest::keyClick(main, step.Key);
        EXPECT_EQ(Table.GetMarkedRow(), step.Marked) << step.Key;
        EXPECT_EQ(Table.GetFirstRow(), step.First) << step.Key;
        EXPECT_EQ(main->grab().toImage() != before, step.Key != Qt::Key_Down || step.First == 0);
    }
    // Row by row through the lower edge.
    for (int i = 0; i < 10; ++i)
        QTest::keyClick(main, Qt::Key_Down);
    EXPECT_EQ(Table.GetMarkedRow(), 10);
    EXPECT_EQ(Table.GetFirstRow(), 1);
    Provider.NumRows = 4;
    Table.Refresh();
    EXPECT_EQ(Table.GetMarkedRow(), 3);
    // An empty one shows too that it has the keys.
    Provider.NumRows = 0;
    Table.Refresh();
    const QImage empty = main->grab().toImage();
    main->clearFocus();
    EXPECT_NE(main->grab().toImage(), empty);
}

TEST_F(TTableTest, LeftAndRightScrollItsColumns)
{
    Provider.NumColumns = 10;
    Make(0);
    QTest::keyClick(Find("table_main"), Qt::Key_Right);
    const int step = Table.GetFirstPixel();
    EXPECT_GT(step, 0);
    QTest::keyClick(Find("table_main"), Qt::Key_Right);
    EXPECT_EQ(Table.GetFirstPixel(), 2 * step);
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(Find("table_main"), Qt::Key_Left);
    EXPECT_EQ(Table.GetFirstPixel(), 0);
}

TEST_F(TTableTest, ItsCellsAndHeadersAreToldAndTheMarkedRowHasTheKeys)
{
    Make(0);
    Table.SetTableName("Numbers");
    QAccessibleInterface& cells = *QAccessible::queryAccessibleInterface(Find("table_main"));
    EXPECT_EQ(cells.role(), QAccessible::Table);
    EXPECT_EQ(cells.text(QAccessible::Name), QString("Numbers"));
    // Those in sight.
    ASSERT_EQ(cells.childCount(), 10);
    QAccessibleInterface& third = *cells.child(2);
    EXPECT_EQ(third.role(), QAccessible::Row);
    EXPECT_EQ(third.text(QAccessible::Name), QString("2: column 0 2.0, column 1 2.1, column 2 2.2"));
    ASSERT_EQ(third.childCount(), 4);
    EXPECT_EQ(third.child(0)->role(), QAccessible::RowHeader);
    EXPECT_EQ(third.child(0)->text(QAccessible::Name), QString("2"));
    EXPECT_EQ(third.child(2)->role(), QAccessible::Cell);
    EXPECT_EQ(third.child(2)->text(QAccessible::Name), QString("2.1"));
    EXPECT_EQ(third.child(2)->text(QAccessible::Value), QString("2.1"));
    EXPECT_EQ(third.child(2)->text(QAccessible::Description), QString("column 1"));
    EXPECT_TRUE(third.rect().contains(third.child(2)->rect()));
    QAccessibleInterface& headers = *QAccessible::queryAccessibleInterface(Find("table_header"));
    ASSERT_EQ(headers.childCount(), 3);
    EXPECT_EQ(headers.child(1)->role(), QAccessible::ColumnHeader);
    EXPECT_EQ(headers.child(1)->text(QAccessible::Name), QString("column 1"));
    Window.BringToTop();
    ASSERT_TRUE(WaitFor([&] { return QApplication::activeWindow() == Window.GetHandle(); }));
    EXPECT_EQ(Table.GetMarkedRow(), 0);
    third.actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(Table.GetMarkedRow(), 2);
    EXPECT_EQ(cells.focusChild(), &third);
    EXPECT_TRUE(third.state().selected);
    QTest::keyClick(Find("table_main"), Qt::Key_End);
    ASSERT_NE(cells.focusChild(), nullptr);
    EXPECT_TRUE(cells.focusChild()->text(QAccessible::Name).startsWith("99: "));
    // The Tab key leads there.
    EXPECT_NE(Find("table_main")->focusPolicy() & Qt::TabFocus, 0);
}

namespace {

class TContextTable : public TTable
{
public:
    void OnContext(int x, int y) override { Places.push_back(QPoint(x, y)); }
    std::vector<QPoint> Places;
};

} // namespace

TEST_F(TTableTest, TheRightButtonIsHeardOfOnAllItsParts)
{
    ShowTopWindow(Window, Class, 400, 300);
    TContextTable table;
    table.Create(&Window, Provider);
    table.MoveTo(0, 0, TTable::LabelWidth + 300, TTable::RowHeight * 11);
    Settle();
    for (const char* part : {"table_header", "table_label", "table_main"})
        QTest::mouseClick(Find(part), Qt::RightButton, {}, QPoint(7, 5));
    EXPECT_EQ(table.Places,
              (std::vector<QPoint>{QPoint(TTable::LabelWidth + 7, 5), QPoint(7, TTable::RowHeight + 5),
                                   QPoint(TTable::LabelWidth + 7, TTable::RowHeight + 5)}));
}
