#include "particles/cindermill/interface/options/optionspage.h"

bool TOptionsPage::Create(TWindow& dialog)
{
    TWindowParams params;
    params.Class = &PageClass;
    params.Owner = &dialog;
    if (!TWindow::Create(params) || !CreateControls())
        return false;
    for (TOption* option : Options)
        option->Show();
    OnShown();
    Grid.StretchColumn(Columns - 1);
    Grid.StretchRow(Rows);
    Grid.Fill(*this);
    return true;
}

void TOptionsPage::AddRow(TLabel& label, TWimpControl& control)
{
    label.Names(control);
    Grid.Add(label, Rows, 0);
    Grid.Add(control, Rows, 1);
    ++Rows;
}

bool TOptionsPage::IsModified() const
{
    for (const TOption* option : Options)
        if (option->IsModified())
            return true;
    return false;
}

void TOptionsPage::Apply()
{
    for (TOption* option : Options)
        option->Apply();
}

void TOptionsPage::EndEdit()
{
    for (TOption* option : Options)
        option->EndEdit();
}

void TOptionsPage::OnCommand(TWimpControl* control, intptr_t, int)
{
    for (TOption* option : Options)
        option->OnUsed(control);
    OnUsed(control);
}
