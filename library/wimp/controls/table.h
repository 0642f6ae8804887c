#pragma once

#include "library/containers/string.h"
#include "library/wimp/accessiblecontents.h"
#include "library/wimp/controls/scrollbarcontrol.h"
#include "library/wimp/gl/wheelsteps.h"
#include "library/wimp/wimp.h"
#include "library/wimp/window.h"

// What a table shows. Rows and columns are counted from 0.
class TTableProvider
{
public:
    virtual ~TTableProvider() = default;
    virtual int GetNumRows() const = 0;
    virtual int GetNumColumns() const = 0;
    // What stands over a column, beside a row, and in a cell.
    virtual void GetHeader(int column, TString& text) const = 0;
    virtual void GetLabel(int row, TString& text) const = 0;
    virtual void GetCell(int row, int column, TString& text) const = 0;
};

class TTable;

// The rows in sight with their cells, for assistive tools. The row that is marked has the keys.
class TTableAccess : public TAccessibleContents
{
public:
    explicit TTableAccess(TTable& table) : Table(table) {}
    TAccessibleRole GetRole() const override { return AR_TABLE; }
    void ListItems(vector<TAccessibleItem>& items) override;
    // A press does nothing to a row but give it the keys.
    void PressItem(int item) override { FocusItem(item); }
    void FocusItem(int item) override;

private:
    void AddRow(int row, vector<TAccessibleItem>& items) const;

    TTable& Table;
};

// What stands over the columns.
class THeaderAccess : public TAccessibleContents
{
public:
    explicit THeaderAccess(TTable& table) : Table(table) {}
    void ListItems(vector<TAccessibleItem>& items) override;
    void PressItem(int) override {}

private:
    TTable& Table;
};

// A grid that is scrolled: a row of headers on top, a column of labels at the left, the cells between them.
// Columns that are wider together than the grid are scrolled sideways, with their headers, by a bar below or
// by the wheel with Shift. With the keys, which a press and the Tab key give it, a row is marked, that the
// arrows, the page keys, Home and End lead through all of them; Left and Right scroll sideways.
class TTable : public TWindow, public TMouseDrag
{
public:
    enum TFlag
    {
        // The borders of columns can be dragged in the header.
        FL_RESIZABLEHEADERS = 1
    };
    static constexpr int RowHeight = 18;
    static constexpr int LabelWidth = 60;
    // A press on an arrow of the bar.
    static constexpr int SideStep = 20;

    // The provider stays the caller's and outlives the table. Asserts "0 : Failed to create table window",
    // and the same of a "table header window", a "label window" and a "table main window".
    void Create(TWindow* owner, TTableProvider& provider, int flags = 0);
    // The provider has other rows or columns.
    void Refresh();
    // The provider has other texts.
    void RedrawCells();
    void SetColumnWidth(int column, int width);
    int GetColumnWidth(int column) const;
    // The first row that is to be seen.
    int GetFirstRow() const;
    // The row that the keys are at.
    int GetMarkedRow() const { return Marked; }
    void MarkRow(int row);
    bool HasKeys() const { return Main.HasFocus(); }
    // Those that are in sight, the last one perhaps in part.
    int GetNumShownRows() const { return GetNumShownRows(Main); }
    // From the left edge of the cells, with the columns where they are scrolled to.
    int GetColumnLeft(int column) const { return GetColumnEnd(column - 1) - GetFirstPixel(); }
    const TTableProvider& GetProvider() const { return *Provider; }
    // What assistive tools call it.
    void SetTableName(const char* name);
    // How far the columns are scrolled sideways, in pixels.
    int GetFirstPixel() const { return Bar.GetPosition(); }
    // The cells take the keys.
    void SetFocus() override { Main.TakeFocus(); }
    // The right button was released on the table, at a position of it. By itself it does nothing.
    virtual void OnContext(int x, int y);
    // Somebody has dragged the column to another width. By itself it does nothing.
    virtual void OnWidth(int column);
    bool OnMessage(const TMessage& message) override;
    // The border of a column.
    void OnMouseMove(double x, double y, int buttons) override;
    void OnCaptureLost() override { DraggedColumn = -1; }
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

private:
    class TPane : public TWindow
    {
    public:
        bool Create(TTable& table, const TWindowClass& windowClass, bool (TTable::*handler)(const TMessage&),
                    bool scrolls);
        bool OnMessage(const TMessage& message) override;

    private:
        TTable* Table = nullptr;
        bool (TTable::*Handler)(const TMessage&) = nullptr;
    };

    void Layout();
    void Place(bool withBar);
    void SetScroll();
    void ScrollSideways(int pixels);
    int GetAllColumns() const { return GetColumnEnd(Widths.size() - 1); }
    bool OnHeader(const TMessage& message);
    bool OnLabels(const TMessage& message);
    bool OnMain(const TMessage& message);
    bool OnKey(int key);
    void OnPress(const TMessage& message);
    void ScrollRows(int rows);
    void DrawHeader(TGDIContext& context) const;
    void DrawLabels(TGDIContext& context) const;
    void DrawCells(TGDIContext& context) const;
    int GetNumShownRows(const TWindow& pane) const;
    int GetColumnEnd(int column) const;
    // The column whose right border is at the position, or -1.
    int FindBorder(int x) const;
    void BeginDrag(int column, int x);

    TTableProvider* Provider = nullptr;
    int Flags = 0;
    vector<int> Widths;
    TPane Header;
    TPane Labels;
    TPane Main;
    TScrollBarControl Bar;
    // The column that is being dragged wider, or -1; where its border was taken hold of.
    int DraggedColumn = -1;
    int GrabOffset = 0;
    int Marked = 0;
    // In pixels: three rows, or steps to the side, a notch.
    TWheelSteps Wheel = TWheelSteps(3 * RowHeight);
    TWheelSteps SideWheel = TWheelSteps(3 * SideStep);
    TTableAccess Access{*this};
    THeaderAccess HeaderTexts{*this};
};
