#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/controls/pushbutton.h"
#include "particles/cindermill/interface/controls/static.h"
#include "particles/cindermill/interface/controls/texturepreview.h"
#include "particles/cindermill/interface/controls/tickbox.h"

class TNodeTextureParameter;

// A button that chooses a file, the stored name, and a small picture of the texture or of its alpha.
class TNodeTextureParameterControls
    : public TRegistered<TNodeTextureParameterControls, TNodeParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeTextureParameterControls";

    void Refresh() override;
    void NamePart(const TRenderObject& part, TString& name) const override;
    void GetSize(TVector2& size) const override;
    // The stored name. One that is pasted must lead to a texture that is there.
    void CopyValue(TString& text) const override;
    bool PasteValue(const char* text) override;
    void ResetValue() override;
    void Render(TRenderer& renderer) override;
    bool IsDefault() const override;
    // A path as a chooser gives it; nothing happens but a message if it is no texture.
    void TakeFile(const char* path);
    TPushButton& GetButton() { return *Button; }
    TTickBox& GetAlphaBox() { return *AlphaBox; }
    const TTexturePreview& GetPreview() const { return *Preview; }
    const TString& GetShownName() const { return Name->GetText(); }
    const TString& GetShownSize() const { return PictureSize->GetText(); }

protected:
    void BuildControls() override;
    void OnChildChanged(const TRenderEvent& event) override;
    float GetLabelHeight() const override { return RowHeight; }

private:
    TNodeTextureParameter& GetTexture() const;
    void Choose();
    void Apply(const char* name);
    void ShowPictureSize();

    TOwner<TPushButton> Button;
    TOwner<TStatic> Name;
    TOwner<TTexturePreview> Preview;
    TOwner<TStatic> PictureSize;
    TOwner<TTickBox> AlphaBox;
};
