#include "particles/cindermill/interface/controls/transformparametercontrols.h"

#include "particles/cindermill/interface/controls/controlhost.h"
#include "particles/cindermill/interface/controls/vectorparametercontrols.h"

namespace {

constexpr int TabFields = 3;
constexpr float FoldWidth = 24.0f;
constexpr float TabWidth = 64.0f;
constexpr float Gap = 4.0f;

} // namespace

void TNodeTransformParameterControls::BuildControls()
{
    static constexpr const char* Names[TT_NUMTABS] = {"Translate", "Rotate", "Scale"};
    static constexpr const char* Letters[TabFields] = {"X", "Y", "Z"};
    constexpr double Limit = TNumberInput::FloatLimit;
    Fold.Reset(new TPushButton(*Host));
    Fold->Build("...", TVector2(FoldWidth, RowHeight));
    AddObject(Fold.Get());
    for (int i = 0; i < TT_NUMTABS; ++i) {
        Tabs[i].Reset(new TPushButton(*Host));
        Tabs[i]->Build(Names[i], TVector2(TabWidth, RowHeight));
        Tabs[i]->SetToggle(true);
        Tabs[i]->SetOrigin(TVector2(FoldWidth + Gap + static_cast<float>(i) * (TabWidth + Gap), 0));
    }
    for (int i = 0; i < TT_NUMTABS * TabFields; ++i)
        AddField({Letters[i % TabFields], TVector2(0, 0), TVectorParameterControls::LetterWidth, -Limit,
                  Limit, 0.1, true});
    for (int i = TT_SCALE * TabFields; i < TT_NUMTABS * TabFields; ++i) {
        GetInput(i).ShowValue(1);
        GetInput(i).SetReadOnly(true);
    }
    Layout();
}

void TNodeTransformParameterControls::Layout()
{
    for (int i = 0; i < TT_NUMTABS; ++i) {
        if (Open && !HasObject(Tabs[i].Get()))
            AddObject(Tabs[i].Get());
        else if (!Open && HasObject(Tabs[i].Get()))
            RemoveObject(Tabs[i].Get());
        Tabs[i]->SetPressed(i == Tab);
    }
    const int shown = Open ? Tab : TT_TRANSLATE;
    for (int i = 0; i < GetNumFields(); ++i) {
        const float column = static_cast<float>(i % TabFields) * TVectorParameterControls::ColumnStep;
        const float left = FoldWidth + Gap + TVectorParameterControls::LetterWidth + column;
        MoveField(i, TVector2(left, Open ? RowStep : 0.0f));
        SetFieldVisible(i, i / TabFields == shown);
    }
}

void TNodeTransformParameterControls::Refresh()
{
    TValueParameterControls::Refresh();
    TellSize();
}

void TNodeTransformParameterControls::SetOpen(bool open)
{
    Open = open;
    Layout();
    TellSize();
    Host->RedrawGraphs();
}

void TNodeTransformParameterControls::ShowTab(int tab)
{
    Tab = tab;
    Layout();
    Host->RedrawGraphs();
}

void TNodeTransformParameterControls::OnChildChanged(const TRenderEvent& event)
{
    if (event.Source == Fold.Get()) {
        SetOpen(!Open);
        return;
    }
    for (int i = 0; i < TT_NUMTABS; ++i)
        if (event.Source == Tabs[i].Get()) {
            ShowTab(i);
            return;
        }
    TValueParameterControls::OnChildChanged(event);
}

void TNodeTransformParameterControls::NamePart(const TRenderObject& part, TString& name) const
{
    if (&part == Fold.Get())
        name = "rotation and scale";
    else
        TValueParameterControls::NamePart(part, name);
}
