#include "particles/cindermill/interface/options/filepropertiesdialog.h"

#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/document.h"

namespace {

constexpr int DialogId = 116;
constexpr int PageId = 1001;
constexpr int AgreementId = 1002;
constexpr int NodeButtonId = 3;
constexpr int DialogWidth = 560;
constexpr int DialogHeight = 620;
constexpr int AgreementLines = 8;

} // namespace

TFilePropertiesDialog::TFilePropertiesDialog(TDocument& document, const char* report)
    : TDialog("File Properties", DialogWidth, DialogHeight), Document(document), Report(report)
{
}

TToolNode* TFilePropertiesDialog::Run(TWindow* owner)
{
    return DoModal(DialogId, owner) == NodeButtonId ? GetFirstNode() : nullptr;
}

bool TFilePropertiesDialog::OnInit()
{
    if (!Page.Create(this, PageId, "text", true, true) ||
        !Agreement.Create(this, AgreementId, "agreement", true, true) ||
        !NodeButton.Create(this, NodeButtonId, "Show Node", "shownode") ||
        !OkButton.Create(this, DR_OK, "OK", "button0"))
        return false;
    Page.SetSpokenName("Report");
    Page.TakeTab();
    Agreement.SetSpokenName("Preview and export");
    Agreement.TakeTab();
    Page.SetFixedPitch();
    Page.SetText(Report);
    Agreement.SetNumLines(AgreementLines);
    Agreement.SetTip("How what the preview shows agrees with what the exported file does");
    NodeButton.SetTip("Closes this and shows the node where the first difference seems to come from");
    NodeButton.TakeReturn(false);
    OkButton.TakeReturn(true);
    TGridLayout buttons;
    buttons.Add(NodeButton, 0, 0);
    buttons.StretchColumn(1);
    buttons.Add(OkButton, 0, 2);
    TGridLayout all;
    all.Add(Page, 0, 0);
    all.Add(Agreement, 1, 0);
    all.Add(buttons, 2, 0);
    all.StretchRow(0);
    all.Fill(*this);
    ShowAgreement();
    Page.SetFocus();
    return true;
}

void TFilePropertiesDialog::ShowAgreement()
{
    NodeButton.Show(GetFirstNode() != nullptr);
    TString text;
    Document.GetAgreement().GetText(text);
    if (text == ShownText)
        return;
    ShownText = text;
    Agreement.SetText(text);
}

TToolNode* TFilePropertiesDialog::GetFirstNode() const
{
    const TEffectNode* node = Document.GetAgreement().GetVerdict().GetFirstNode();
    if (node == nullptr || !Document.GetGraph()->Has(node))
        return nullptr;
    return static_cast<TToolNode*>(const_cast<TEffectNode*>(node));
}

void TFilePropertiesDialog::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    if (control == &OkButton)
        End(DR_OK);
    else if (control == &NodeButton)
        End(NodeButtonId);
    else
        TDialog::OnCommand(control, argument, code);
}
