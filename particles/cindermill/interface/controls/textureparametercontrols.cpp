#include "particles/cindermill/interface/controls/textureparametercontrols.h"

#include "library/containers/log.h"
#include "library/system/file.h"
#include "library/system/message.h"
#include "library/system/path.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/interface/controls/controlhost.h"
#include "particles/cindermill/interface/controls/filefolder.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

namespace {

constexpr float ButtonWidth = 30.0f;
constexpr float NameLeft = 38.0f;
constexpr float NameWidth = 172.0f;
constexpr float SideLeft = TTexturePreview::MaxSize + 10.0f;
constexpr float SideStep = 20.0f;

TResourceLocator& GetLocator()
{
    return TCindermillApp::Get().GetResourceLocator();
}

// Of a path that is too long the middle is left out: what the file is called counts most.
void FitPath(const TFontInstance& font, const TString& path, float width, TString& result)
{
    TString leaf;
    leaf.SetFileName(path);
    for (int length = path.Length() + 1; length > leaf.Length() + 4; --length) {
        TString shortened;
        path.ShortenPath(shortened, length);
        result = GetShownPath(shortened);
        TVector2 size;
        font.GetTextSize(result.Print(), size);
        if (size[0] <= width)
            return;
    }
    result = leaf;
}

} // namespace

TNodeTextureParameter& TNodeTextureParameterControls::GetTexture() const
{
    return *static_cast<TNodeTextureParameter*>(Parameter);
}

void TNodeTextureParameterControls::BuildControls()
{
    Button.Reset(new TPushButton(*Host));
    Button->Build("...", TVector2(ButtonWidth, RowHeight));
    AddObject(Button.Get());
    Name.Reset(new TStatic);
    Name->SetWidth(NameWidth);
    AddObject(Name.Get());
    Preview.Reset(new TTexturePreview);
    Preview->SetOrigin(TVector2(0, RowStep));
    AddObject(Preview.Get());
    AlphaBox.Reset(new TTickBox(*Host));
    AlphaBox->Build("Show alpha channel");
    AlphaBox->SetOrigin(TVector2(SideLeft, RowStep));
    AddObject(AlphaBox.Get());
    PictureSize.Reset(new TStatic);
    PictureSize->SetOrigin(TVector2(SideLeft, RowStep + SideStep));
    AddObject(PictureSize.Get());
}

void TNodeTextureParameterControls::Refresh()
{
    TString shown;
    FitPath(Font, GetTexture().GetFileName(), NameWidth, shown);
    Name->SetText(shown.Print());
    Name->SetOrigin(TVector2(NameLeft, (RowHeight - Name->GetSize()[1]) * 0.5f));
    TString path;
    if (!GetLocator().FindKnown(GetTexture().GetFileName(), path))
        path = nullptr;
    Preview->Show(path);
    ShowPictureSize();
}

void TNodeTextureParameterControls::ShowPictureSize()
{
    const TRenderTextureInstance& texture = Preview->GetTexture();
    TString text;
    if (!texture.IsEmpty())
        text.Format("%d x %d", texture.GetWidth(), texture.GetHeight());
    if (!(text == PictureSize->GetText()))
        PictureSize->SetText(text.Print());
}

// A picture that was read again may have another size, and nobody tells of it but by a new drawing.
void TNodeTextureParameterControls::Render(TRenderer& renderer)
{
    ShowPictureSize();
    TNodeParameterControls::Render(renderer);
}

void TNodeTextureParameterControls::GetSize(TVector2& size) const
{
    size = TVector2(NameLeft + NameWidth, RowStep + TTexturePreview::MaxSize);
}

void TNodeTextureParameterControls::OnChildChanged(const TRenderEvent& event)
{
    if (event.Source == Button.Get())
        Choose();
    else if (event.Source == AlphaBox.Get())
        Preview->SetAlphaOnly(AlphaBox->IsChecked());
    Host->RedrawGraphs();
}

void TNodeTextureParameterControls::Choose()
{
    vector<TFileFilter> filters;
    filters.push_back(TFileFilter{"KZ5 textures (*.dds;*.hvt)", "*.dds;*.hvt"});
    TString path;
    TString directory;
    GetFileFolder(GetTexture().GetFileName(), filters, "textures", directory);
    if (OpenFileChooser("Select texture to load", filters, directory, path))
        TakeFile(path);
}

void TNodeTextureParameterControls::TakeFile(const char* path)
{
    TString name;
    ToKeptPath(path, name);
    TRenderTextureInstance loaded;
    if (!loaded.Load(name)) {
        ShowMessage("Could not load texture %s", GetShownPath(path).Print());
        TString refusal;
        if (GetReadRefusal(path, refusal))
            DebugPrintf("%s\n", refusal.Print());
        return;
    }
    if (GetLocator().PrepareName(name))
        Apply(name);
}

// A name may stay and yet lead to another file, or to one at last.
void TNodeTextureParameterControls::Apply(const char* name)
{
    if (GetTexture().GetFileName().Compare(name, true) != 0) {
        Document->ApplyOperation(new TTextureParamOp(&GetTexture(), name));
        return;
    }
    GetTexture().NotifyChanged();
    Document->FileNamed();
    Host->RedrawGraphs();
}

void TNodeTextureParameterControls::CopyValue(TString& text) const
{
    text = GetTexture().GetFileName();
}

bool TNodeTextureParameterControls::PasteValue(const char* text)
{
    TString name = text;
    name.Trim();
    TString path;
    TRenderTextureInstance loaded;
    if (!GetLocator().FindKnown(name, path) || !loaded.Load(path))
        return false;
    if (GetTexture().GetFileName().Compare(name, true) != 0)
        Apply(name);
    return true;
}

void TNodeTextureParameterControls::ResetValue()
{
    const TNodeParameter* value = FindDefault();
    if (value != nullptr && !IsDefault())
        Apply(static_cast<const TNodeTextureParameter*>(value)->GetFileName());
}

bool TNodeTextureParameterControls::IsDefault() const
{
    const TNodeTextureParameter* value = static_cast<const TNodeTextureParameter*>(FindDefault());
    return value == nullptr || value->GetFileName() == GetTexture().GetFileName();
}

void TNodeTextureParameterControls::NamePart(const TRenderObject& part, TString& name) const
{
    if (&part == Button.Get())
        name = "choose a file";
}
