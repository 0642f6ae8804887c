#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/controls/pushbutton.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/cindermill/interface/controls/tickbox.h"

class TNodeAnimationParameter;

// A button that chooses a file of key-framed motion, its stored name, and which of its tracks are used.
class TNodeAnimationParameterControls
    : public TRegistered<TNodeAnimationParameterControls, TNodeParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeAnimationParameterControls";
    enum TFlag
    {
        FL_POSITION,
        FL_ROTATION,
        FL_SCALE,
        FL_NUMFLAGS
    };

    void Refresh() override;
    void NamePart(const TRenderObject& part, TString& name) const override;
    void GetSize(TVector2& size) const override;
    // The stored name. One that is pasted must lead to an animation that is there.
    void CopyValue(TString& text) const override;
    bool PasteValue(const char* text) override;
    void ResetValue() override;
    bool IsDefault() const override;
    // A path as a chooser or a drop gives it; nothing happens but a message if it is no animation.
    void TakeFile(const char* path);
    TPushButton& GetButton() { return *Button; }
    TTextEdit& GetNameEdit() { return *Name; }
    TTickBox& GetFlagBox(int flag) { return *Flags[flag]; }

    // The group that the object belongs to; null for none.
    static TNodeAnimationParameterControls* FindGroup(TRenderObject* object);

protected:
    void BuildControls() override;
    void OnChildChanged(const TRenderEvent& event) override;
    float GetLabelHeight() const override { return RowHeight; }

private:
    TNodeAnimationParameter& GetAnimation() const;
    void Choose();
    void Apply(const char* name);
    void ApplyFlags(const bool* flags);

    TOwner<TPushButton> Button;
    TOwner<TTextEdit> Name;
    TOwner<TTickBox> Flags[FL_NUMFLAGS];
};
