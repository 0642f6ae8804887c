#pragma once

#include "library/wimp/controls/checkbox.h"
#include "library/wimp/controls/comboboxcontrol.h"
#include "library/wimp/controls/edit.h"
#include "library/wimp/controls/numberedit.h"

class TSettings;

// One setting on a page of the Options dialog, with what edits it. Only what a person touched counts: a
// setting that its control cannot show stays as it is until then.
class TOption
{
public:
    virtual ~TOption() = default;
    // Puts the setting into the controls.
    virtual void Show() = 0;
    // Stores it, if a person changed it.
    void Apply()
    {
        if (IsModified())
            Store();
    }
    bool IsModified() const { return Touched && Differs(); }
    // A person has used this control.
    void OnUsed(const TWimpControl* control)
    {
        if (Owns(control))
            Touched = true;
    }
    // Text that is being typed counts now.
    virtual void EndEdit() {}

protected:
    explicit TOption(TSettings& settings) : Settings(settings) {}
    virtual bool Owns(const TWimpControl* control) const = 0;
    virtual bool Differs() const = 0;
    virtual void Store() = 0;

    TSettings& Settings;

private:
    bool Touched = false;
};

// How a setting of a kind of value is read and written.
template <class TValue>
struct TSettingAccess
{
    TValue (TSettings::*Get)() const;
    void (TSettings::*Set)(TValue);
};

// A whole number in a field.
class TNumberOption : public TOption
{
public:
    TNumberOption(TSettings& settings, const TSettingAccess<int>& access) : TOption(settings), Access(access)
    {
    }
    bool Create(TWindow* owner, int id, int low, int high);
    TNumberEdit& GetControl() { return Edit; }
    void Show() override;
    void EndEdit() override { Edit.EndEdit(); }

private:
    bool Owns(const TWimpControl* control) const override { return control == &Edit; }
    bool Differs() const override;
    void Store() override;

    const TSettingAccess<int> Access;
    TNumberEdit Edit;
};

// A number that chooses one of several lines.
class TChoiceOption : public TOption
{
public:
    TChoiceOption(TSettings& settings, const TSettingAccess<int>& access) : TOption(settings), Access(access)
    {
    }
    // The lines end with null.
    bool Create(TWindow* owner, int id, const char* const* lines);
    TComboBoxControl& GetControl() { return Combo; }
    // A number that is none of the lines' selects none.
    void Show() override;

private:
    bool Owns(const TWimpControl* control) const override { return control == &Combo; }
    bool Differs() const override;
    void Store() override;

    const TSettingAccess<int> Access;
    TComboBoxControl Combo;
};

class TFlagOption : public TOption
{
public:
    TFlagOption(TSettings& settings, const TSettingAccess<bool>& access) : TOption(settings), Access(access)
    {
    }
    bool Create(TWindow* owner, int id, const char* text);
    TCheckBox& GetControl() { return Box; }
    void Show() override;

private:
    bool Owns(const TWimpControl* control) const override { return control == &Box; }
    bool Differs() const override;
    void Store() override;

    const TSettingAccess<bool> Access;
    TCheckBox Box;
};

// A path, read by a person in the system's own form and kept as all paths are.
class TPathOption : public TOption
{
public:
    using TGet = const TString& (TSettings::*)() const;
    using TSet = void (TSettings::*)(const char*);

    TPathOption(TSettings& settings, TGet get, TSet set) : TOption(settings), Get(get), Set(set) {}
    bool Create(TWindow* owner, int id);
    TEdit& GetControl() { return Edit; }
    void Show() override;
    // What a person has chosen elsewhere, as if it had been typed.
    void Choose(const char* path);

private:
    bool Owns(const TWimpControl* control) const override { return control == &Edit; }
    bool Differs() const override;
    void Store() override;
    TString GetKept() const;

    const TGet Get;
    const TSet Set;
    TEdit Edit;
};

// The name by which automation finds a control.
TString GetControlName(int id);
