#pragma once

#include "library/wimp/controls/button.h"
#include "particles/cindermill/interface/options/optionspage.h"

// How far a search climbs: a box, and the number behind it. 0 stands for no limit.
class TSearchLimitOption : public TOption
{
public:
    explicit TSearchLimitOption(TSettings& settings) : TOption(settings) {}
    bool Create(TWindow* owner);
    void Show() override;
    void EndEdit() override { Number.EndEdit(); }
    // The number follows the box.
    void EnableNumber() { Number.Enable(Box.GetCheck()); }
    void ShowControls(bool shown);
    TCheckBox& GetBox() { return Box; }
    TNumberEdit& GetNumber() { return Number; }

private:
    bool Owns(const TWimpControl* control) const override { return control == &Box || control == &Number; }
    bool Differs() const override;
    void Store() override;
    int GetValue() const;

    TCheckBox Box;
    TNumberEdit Number;
};

// Whether files in use are watched, and whether a changed one is asked about: two boxes.
class TUpdateOption : public TOption
{
public:
    explicit TUpdateOption(TSettings& settings) : TOption(settings) {}
    bool Create(TWindow* owner);
    void Show() override;
    // A prompt makes sense only where there is a check.
    void EnablePrompt() { Prompt.Enable(Check.GetCheck()); }
    TCheckBox& GetCheck() { return Check; }
    TCheckBox& GetPrompt() { return Prompt; }

private:
    bool Owns(const TWimpControl* control) const override { return control == &Check || control == &Prompt; }
    bool Differs() const override;
    void Store() override;
    int GetValue() const;

    TCheckBox Check;
    TCheckBox Prompt;
};

class TResourceOptions : public TOptionsPage
{
public:
    explicit TResourceOptions(TSettings& settings);

private:
    bool CreateControls() override;
    bool CreateAll();
    void OnShown() override;
    void OnUsed(TWimpControl* control) override;
    // Each mode has controls of its own, which share one place.
    void ShowMode();
    void ChooseBasePath();

    TChoiceOption Mode;
    TSearchLimitOption Limit;
    TPathOption BasePath;
    TButton Browse;
    TUpdateOption Update;
    TPathOption NodeTypes;
    TLabel ModeLabel;
    TLabel BaseLabel;
    TLabel NodeTypesLabel;
};
