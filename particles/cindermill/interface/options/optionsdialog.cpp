#include "particles/cindermill/interface/options/optionsdialog.h"

#include "library/system/message.h"
#include "particles/cindermill/main/resourcelocator.h"

namespace {

constexpr int DialogId = 111;
constexpr int ListId = 1006;
constexpr int FrameId = 1009;
// 366 by 198 units of an ordinary dialog font.
constexpr int DialogWidth = 549;
constexpr int DialogHeight = 322;

} // namespace

TOptionsDialog::TOptionsDialog(TSettings& settings, TResourceLocator& locator)
    : TDialog("Options", DialogWidth, DialogHeight), Locator(locator), General(settings), Resources(settings),
      Policies(settings)
{
}

void TOptionsDialog::Run(TWindow* owner)
{
    if (DoModal(DialogId, owner) == DR_OK)
        Locator.ReadSettings();
}

bool TOptionsDialog::OnInit()
{
    if (!CreateControls())
        return false;
    List.SetSpokenName("Pages");
    for (TOptionsPage* page : Pages)
        List.AddString(page->GetTitle());
    List.FitLines();
    Layout();
    List.SetSelection(0);
    ShowPage(0);
    List.SetFocus();
    return true;
}

// In the order in which Tab walks them.
bool TOptionsDialog::CreateControls()
{
    if (!List.Create(this, ListId, GetControlName(ListId)) || !Frame.Create(this, GetControlName(FrameId)))
        return false;
    for (TOptionsPage* page : Pages) {
        if (!page->Create(*this))
            return false;
        Frame.AddPage(*page);
    }
    if (!OkButton.Create(this, DR_OK, "OK", GetControlName(DR_OK)) ||
        !CancelButton.Create(this, DR_CANCEL, "Cancel", GetControlName(DR_CANCEL)))
        return false;
    OkButton.TakeReturn(true);
    CancelButton.TakeReturn(false);
    return true;
}

void TOptionsDialog::Layout()
{
    TGridLayout pages;
    pages.Add(List, 0, 0);
    pages.Add(Frame, 0, 1);
    pages.StretchColumn(1);
    TGridLayout buttons;
    buttons.StretchColumn(0);
    buttons.Add(OkButton, 0, 1);
    buttons.Add(CancelButton, 0, 2);
    TGridLayout all;
    all.Add(pages, 0, 0);
    all.Add(buttons, 1, 0);
    all.StretchRow(0);
    all.Fill(*this);
}

void TOptionsDialog::ShowPage(int page)
{
    if (page < 0 || page == CurrentPage)
        return;
    Frame.ShowPage(page);
    CurrentPage = page;
}

void TOptionsDialog::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    if (control == &List)
        ShowPage(List.GetSelection());
    else if (control == &OkButton)
        Accept();
    else if (control == &CancelButton)
        Cancel();
    else
        TDialog::OnCommand(control, argument, code);
}

void TOptionsDialog::Accept()
{
    for (TOptionsPage* page : Pages) {
        page->EndEdit();
        page->Apply();
    }
    End(DR_OK);
}

bool TOptionsDialog::IsModified() const
{
    for (const TOptionsPage* page : Pages)
        if (page->IsModified())
            return true;
    return false;
}

void TOptionsDialog::Cancel()
{
    for (TOptionsPage* page : Pages)
        page->EndEdit();
    if (!IsModified() || AskQuestion("Options have been modified. Discard changes?"))
        End(DR_CANCEL);
}
