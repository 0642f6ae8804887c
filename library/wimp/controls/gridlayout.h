#pragma once

class QGridLayout;
class TWimpControl;
class TWindow;

// Keeps the controls of a window in rows and columns, as wide as their texts need in whatever font, and
// follows the window's size. A control that is hidden keeps its place free.
class TGridLayout
{
public:
    // A part of another grid until it fills a window.
    TGridLayout();
    ~TGridLayout();
    TGridLayout(const TGridLayout&) = delete;
    TGridLayout& operator=(const TGridLayout&) = delete;

    // Of the window's whole inside.
    void Fill(TWindow& window);
    // Over so many columns. Several may share one place, of which one is shown.
    void Add(TWimpControl& control, int row, int column, int columns = 1);
    void Add(TGridLayout& part, int row, int column, int columns = 1);
    // Takes what room is left over.
    void StretchColumn(int column);
    void StretchRow(int row);
    void SetColumnWidth(int column, int width);

private:
    // Belongs to the window or the grid that it is part of.
    QGridLayout* Layout;
    bool IsOwned = true;
};
