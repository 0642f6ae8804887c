#include "particles/cindermill/interface/options/resourceoptions.h"

#include "library/wimp/filechooser.h"
#include "particles/cindermill/main/settings.h"

namespace {

constexpr const char* Modes[] = {"Leaf name", "Relative path", "Full path", nullptr};
// What stands in the number's field where there is no limit.
constexpr int UsualLimit = 10;
constexpr int MaxLimit = 64;

enum TUpdateMode
{
    UM_OFF,
    UM_PROMPT,
    UM_ATONCE
};

} // namespace

bool TSearchLimitOption::Create(TWindow* owner)
{
    if (!Box.Create(owner, 1022, "Limit upwards", GetControlName(1022)) ||
        !Number.Create(owner, 1002, GetControlName(1002)))
        return false;
    Number.SetRange(1, MaxLimit);
    return true;
}

void TSearchLimitOption::Show()
{
    const int limit = Settings.GetUpwardsSearchLimit();
    Box.SetCheck(limit != 0);
    Number.SetValue(static_cast<float>(limit != 0 ? limit : UsualLimit));
    EnableNumber();
}

void TSearchLimitOption::ShowControls(bool shown)
{
    Box.Show(shown);
    Number.Show(shown);
}

int TSearchLimitOption::GetValue() const
{
    return Box.GetCheck() ? static_cast<int>(Number.GetValue()) : 0;
}

bool TSearchLimitOption::Differs() const
{
    return GetValue() != Settings.GetUpwardsSearchLimit();
}

void TSearchLimitOption::Store()
{
    Settings.SetUpwardsSearchLimit(GetValue());
}

bool TUpdateOption::Create(TWindow* owner)
{
    return Check.Create(owner, 1024, "Automatically check for updated resources", GetControlName(1024)) &&
           Prompt.Create(owner, 1025, "Prompt before automatically reloading resources",
                         GetControlName(1025));
}

void TUpdateOption::Show()
{
    const int mode = Settings.GetAutoCheckUpdate();
    Check.SetCheck(mode != UM_OFF);
    Prompt.SetCheck(mode != UM_ATONCE);
    EnablePrompt();
}

int TUpdateOption::GetValue() const
{
    if (!Check.GetCheck())
        return UM_OFF;
    return Prompt.GetCheck() ? UM_PROMPT : UM_ATONCE;
}

bool TUpdateOption::Differs() const
{
    return GetValue() != Settings.GetAutoCheckUpdate();
}

void TUpdateOption::Store()
{
    Settings.SetAutoCheckUpdate(GetValue());
}

TResourceOptions::TResourceOptions(TSettings& settings)
    : TOptionsPage("dialog113", "Resources"),
      Mode(settings, {&TSettings::GetResourceMode, &TSettings::SetResourceMode}), Limit(settings),
      BasePath(settings, &TSettings::GetResourcePath, &TSettings::SetResourcePath), Update(settings),
      NodeTypes(settings, &TSettings::GetNodeTypesDirectory, &TSettings::SetNodeTypesDirectory)
{
}

bool TResourceOptions::CreateAll()
{
    return ModeLabel.Create(this, "Resource mode:", "label") && Mode.Create(this, 1014, Modes) &&
           Limit.Create(this) && BaseLabel.Create(this, "Base path:", GetControlName(1023)) &&
           BasePath.Create(this, 1015) && Browse.Create(this, 1020, "...", GetControlName(1020)) &&
           Update.Create(this) && NodeTypesLabel.Create(this, "Node Types Dir:", "label") &&
           NodeTypes.Create(this, 1035);
}

bool TResourceOptions::CreateControls()
{
    if (!CreateAll())
        return false;
    Browse.FitText();
    BaseLabel.Names(BasePath.GetControl());
    NodeTypesLabel.Names(NodeTypes.GetControl());
    Browse.SetSpokenName("Choose the base path");
    Limit.GetNumber().SetSpokenName("Search limit");
    TOption* const options[] = {&Mode, &Limit, &BasePath, &Update, &NodeTypes};
    for (TOption* option : options)
        AddOption(*option);
    TGridLayout limit;
    limit.Add(Limit.GetBox(), 0, 0);
    limit.Add(Limit.GetNumber(), 0, 1);
    limit.StretchColumn(2);
    TGridLayout base;
    base.Add(BaseLabel, 0, 0);
    base.Add(BasePath.GetControl(), 0, 1);
    base.Add(Browse, 0, 2);
    TGridLayout types;
    types.Add(NodeTypesLabel, 0, 0);
    types.Add(NodeTypes.GetControl(), 0, 1);
    AddRow(ModeLabel, Mode.GetControl());
    AddRow(limit);
    AddToLastRow(base);
    AddRow(Update.GetCheck());
    AddRow(Update.GetPrompt());
    AddRow(types);
    return true;
}

void TResourceOptions::OnShown()
{
    ShowMode();
}

void TResourceOptions::ShowMode()
{
    const int mode = Mode.GetControl().GetSelection();
    Limit.ShowControls(mode == RM_LEAFNAME);
    BaseLabel.Show(mode == RM_RELATIVEPATH);
    BasePath.GetControl().Show(mode == RM_RELATIVEPATH);
    Browse.Show(mode == RM_RELATIVEPATH);
}

void TResourceOptions::OnUsed(TWimpControl* control)
{
    if (control == &Mode.GetControl())
        ShowMode();
    else if (control == &Browse)
        ChooseBasePath();
    Limit.EnableNumber();
    Update.EnablePrompt();
}

void TResourceOptions::ChooseBasePath()
{
    TString path;
    if (FolderChooser("Select base path for relative resources", path))
        BasePath.Choose(path.Print());
}
