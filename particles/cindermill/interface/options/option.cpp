#include "particles/cindermill/interface/options/option.h"

#include "library/system/path.h"
#include "particles/cindermill/main/settings.h"

TString GetControlName(int id)
{
    TString name;
    name.Format("control%d", id);
    return name;
}

bool TNumberOption::Create(TWindow* owner, int id, int low, int high)
{
    if (!Edit.Create(owner, id, GetControlName(id)))
        return false;
    Edit.SetRange(static_cast<float>(low), static_cast<float>(high));
    return true;
}

void TNumberOption::Show()
{
    Edit.SetValue(static_cast<float>((Settings.*Access.Get)()));
}

bool TNumberOption::Differs() const
{
    return static_cast<int>(Edit.GetValue()) != (Settings.*Access.Get)();
}

void TNumberOption::Store()
{
    (Settings.*Access.Set)(static_cast<int>(Edit.GetValue()));
}

bool TChoiceOption::Create(TWindow* owner, int id, const char* const* lines)
{
    if (!Combo.Create(owner, id, GetControlName(id)))
        return false;
    for (; *lines != nullptr; ++lines)
        Combo.AddString(*lines);
    return true;
}

void TChoiceOption::Show()
{
    const int number = (Settings.*Access.Get)();
    if (number >= 0 && number < Combo.GetNumStrings())
        Combo.SetSelection(number);
    else
        Combo.ClearSelection();
}

bool TChoiceOption::Differs() const
{
    return Combo.GetSelection() != -1 && Combo.GetSelection() != (Settings.*Access.Get)();
}

void TChoiceOption::Store()
{
    (Settings.*Access.Set)(Combo.GetSelection());
}

bool TFlagOption::Create(TWindow* owner, int id, const char* text)
{
    return Box.Create(owner, id, text, GetControlName(id));
}

void TFlagOption::Show()
{
    Box.SetCheck((Settings.*Access.Get)());
}

bool TFlagOption::Differs() const
{
    return Box.GetCheck() != (Settings.*Access.Get)();
}

void TFlagOption::Store()
{
    (Settings.*Access.Set)(Box.GetCheck());
}

bool TPathOption::Create(TWindow* owner, int id)
{
    return Edit.Create(owner, id, GetControlName(id));
}

void TPathOption::Show()
{
    Edit.SetText(GetShownPath((Settings.*Get)()).Print());
}

void TPathOption::Choose(const char* path)
{
    Edit.SetText(GetShownPath(path).Print());
    OnUsed(&Edit);
}

TString TPathOption::GetKept() const
{
    TString text;
    Edit.GetText(text);
    TString kept;
    ToKeptPath(text.Print(), kept);
    return kept;
}

bool TPathOption::Differs() const
{
    TString stored;
    ToKeptPath((Settings.*Get)().Print(), stored);
    return stored.Compare(GetKept(), true) != 0;
}

void TPathOption::Store()
{
    (Settings.*Set)(GetKept());
}
