#include "particles/cindermill/interface/controls/animationparametercontrols.h"

#include "library/system/path.h"
#include "particles/cindermill/graph/operations/animflagsparamop.h"
#include "particles/cindermill/graph/operations/gesture.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/interface/controls/controlhost.h"
#include "particles/cindermill/interface/controls/filefolder.h"
#include "particles/cindermill/main/animation/animation.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

namespace {

using TControls = TNodeAnimationParameterControls;

constexpr float ButtonWidth = 30.0f;
constexpr float NameLeft = 36.0f;
constexpr float NameWidth = 174.0f;
constexpr float FlagGap = 14.0f;

constexpr const char* FlagNames[TControls::FL_NUMFLAGS] = {"Position", "Rotation", "Scale"};

void GetFlags(const TNodeAnimationParameter& animation, bool* flags)
{
    flags[TControls::FL_POSITION] = animation.UsesPosition();
    flags[TControls::FL_ROTATION] = animation.UsesRotation();
    flags[TControls::FL_SCALE] = animation.UsesScale();
}

bool HaveSameFlags(const TNodeAnimationParameter& a, const bool* flags)
{
    bool own[TControls::FL_NUMFLAGS];
    GetFlags(a, own);
    for (int i = 0; i < TControls::FL_NUMFLAGS; ++i)
        if (own[i] != flags[i])
            return false;
    return true;
}

TResourceLocator& GetLocator()
{
    return TCindermillApp::Get().GetResourceLocator();
}

} // namespace

TNodeAnimationParameter& TNodeAnimationParameterControls::GetAnimation() const
{
    return *static_cast<TNodeAnimationParameter*>(Parameter);
}

void TNodeAnimationParameterControls::BuildControls()
{
    Button.Reset(new TPushButton(*Host));
    Button->Build("...", TVector2(ButtonWidth, RowHeight));
    AddObject(Button.Get());
    Name.Reset(new TTextEdit(*Host));
    Name->Build(TVector2(NameWidth, RowHeight));
    Name->SetReadOnly(true);
    Name->SetOrigin(TVector2(NameLeft, 0));
    AddObject(Name.Get());
    float left = 0;
    for (int i = 0; i < FL_NUMFLAGS; ++i) {
        Flags[i].Reset(new TTickBox(*Host));
        Flags[i]->Build(FlagNames[i]);
        Flags[i]->SetOrigin(TVector2(left, RowStep + (RowHeight - Flags[i]->GetSize()[1]) * 0.5f));
        AddObject(Flags[i].Get());
        left += Flags[i]->GetSize()[0] + FlagGap;
    }
}

void TNodeAnimationParameterControls::Refresh()
{
    Name->SetText(GetShownPath(GetAnimation().GetFileName()).Print());
    bool flags[FL_NUMFLAGS];
    GetFlags(GetAnimation(), flags);
    for (int i = 0; i < FL_NUMFLAGS; ++i)
        Flags[i]->SetChecked(flags[i]);
}

void TNodeAnimationParameterControls::GetSize(TVector2& size) const
{
    size = TVector2(NameLeft + NameWidth, RowStep + RowHeight);
}

void TNodeAnimationParameterControls::OnChildChanged(const TRenderEvent& event)
{
    if (event.Source == Button.Get())
        Choose();
    bool flags[FL_NUMFLAGS];
    GetFlags(GetAnimation(), flags);
    for (int i = 0; i < FL_NUMFLAGS; ++i)
        if (event.Source == Flags[i].Get()) {
            flags[i] = Flags[i]->IsChecked();
            ApplyFlags(flags);
            return;
        }
}

void TNodeAnimationParameterControls::Choose()
{
    vector<TFileFilter> filters;
    filters.push_back(TFileFilter{"*.vori", "*.vori"});
    TString path;
    TString directory;
    GetFileFolder(GetAnimation().GetFileName(), filters, "animations", directory);
    if (OpenFileChooser("Select animation to load", filters, directory, path))
        TakeFile(path);
}

void TNodeAnimationParameterControls::TakeFile(const char* path)
{
    TString name;
    ToKeptPath(path, name);
    // Says itself what is wrong with a file.
    if (::GetAnimation(name) != nullptr && GetLocator().PrepareName(name))
        Apply(name);
}

// A name may stay and yet lead to another file, or to one at last.
void TNodeAnimationParameterControls::Apply(const char* name)
{
    if (GetAnimation().GetFileName().Compare(name, true) != 0) {
        Document->ApplyOperation(new TAnimNameParamOp(&GetAnimation(), name));
        return;
    }
    GetAnimation().NotifyChanged();
    Document->FileNamed();
    Host->RedrawGraphs();
}

void TNodeAnimationParameterControls::ApplyFlags(const bool* flags)
{
    if (HaveSameFlags(GetAnimation(), flags))
        return;
    Document->ApplyOperation(
        new TAnimFlagsParamOp(&GetAnimation(), flags[FL_POSITION], flags[FL_ROTATION], flags[FL_SCALE]));
}

void TNodeAnimationParameterControls::CopyValue(TString& text) const
{
    text = GetAnimation().GetFileName();
}

bool TNodeAnimationParameterControls::PasteValue(const char* text)
{
    TString name = text;
    name.Trim();
    TString path;
    TString extension;
    extension.SetExtension(name);
    // Any other file would be read through, and a message shown, for a word that was copied elsewhere.
    if (extension.Compare("vori") != 0 || !GetLocator().FindKnown(name, path) ||
        ::GetAnimation(path) == nullptr)
        return false;
    if (GetAnimation().GetFileName().Compare(name, true) != 0)
        Apply(name);
    return true;
}

void TNodeAnimationParameterControls::ResetValue()
{
    const TNodeAnimationParameter* value = static_cast<const TNodeAnimationParameter*>(FindDefault());
    if (value == nullptr)
        return;
    const TGesture gesture(*Document->GetOperationStack());
    bool flags[FL_NUMFLAGS];
    GetFlags(*value, flags);
    ApplyFlags(flags);
    if (!(value->GetFileName() == GetAnimation().GetFileName()))
        Apply(value->GetFileName());
}

bool TNodeAnimationParameterControls::IsDefault() const
{
    const TNodeAnimationParameter* value = static_cast<const TNodeAnimationParameter*>(FindDefault());
    if (value == nullptr)
        return true;
    bool flags[FL_NUMFLAGS];
    GetFlags(*value, flags);
    return HaveSameFlags(GetAnimation(), flags) && value->GetFileName() == GetAnimation().GetFileName();
}

TNodeAnimationParameterControls* TNodeAnimationParameterControls::FindGroup(TRenderObject* object)
{
    for (; object != nullptr; object = object->GetParent())
        if (object->GetClassId() == NameID())
            return static_cast<TNodeAnimationParameterControls*>(object);
    return nullptr;
}

void TNodeAnimationParameterControls::NamePart(const TRenderObject& part, TString& name) const
{
    if (&part == Button.Get())
        name = "choose a file";
    else if (&part == Name.Get())
        name = "file";
}
