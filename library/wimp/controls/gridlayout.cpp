#include "library/wimp/controls/gridlayout.h"

#include "library/containers/assertion.h"
#include "library/wimp/windowpeer.h"

#include <QtWidgets/QGridLayout>

TGridLayout::TGridLayout() : Layout(new QGridLayout)
{
    Layout->setContentsMargins(0, 0, 0, 0);
}

TGridLayout::~TGridLayout()
{
    if (IsOwned)
        delete Layout;
}

void TGridLayout::Fill(TWindow& window)
{
    constexpr int Margin = 10;
    ASSERT(IsOwned);
    Layout->setContentsMargins(Margin, Margin, Margin, Margin);
    window.GetHandle()->setLayout(Layout);
    IsOwned = false;
}

void TGridLayout::Add(TWimpControl& control, int row, int column, int columns)
{
    QWidget* widget = control.GetHandle();
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
    Layout->addWidget(widget, row, column, 1, columns);
}

void TGridLayout::Add(TGridLayout& part, int row, int column, int columns)
{
    ASSERT(part.IsOwned);
    Layout->addLayout(part.Layout, row, column, 1, columns);
    part.IsOwned = false;
}

void TGridLayout::StretchColumn(int column)
{
    Layout->setColumnStretch(column, 1);
}

void TGridLayout::StretchRow(int row)
{
    Layout->setRowStretch(row, 1);
}

void TGridLayout::SetColumnWidth(int column, int width)
{
    Layout->setColumnMinimumWidth(column, width);
}
