#include "particles/cindermill/main/comparisonturns.h"

#include "particles/cindermill/main/apphost.h"
#include "particles/cindermill/main/document.h"
#include "particles/cindermill/main/documenthost.h"

void TComparisonTurns::OnIdle(const vector<TDocument*>& documents, TAppHost* host)
{
    TExportAgreement* next = FindNext(documents);
    if (next != nullptr && next->GetNow() >= RestsUntil) {
        next->RunPass();
        RestsUntil = next->GetNextPass();
    }
    for (TDocument* document : documents)
        if (!document->IsInStep() && document->GetAgreement().TakeChange())
            Tell(*document, host);
}

// The one that has waited longest.
TExportAgreement* TComparisonTurns::FindNext(const vector<TDocument*>& documents)
{
    TExportAgreement* next = nullptr;
    for (TDocument* document : documents) {
        TExportAgreement& agreement = document->GetAgreement();
        if (!document->IsInStep() && agreement.IsDue() &&
            (next == nullptr || agreement.GetNextPass() < next->GetNextPass()))
            next = &agreement;
    }
    return next;
}

// A line about something else that was told meanwhile stays; the strip tells of the comparison as well.
void TComparisonTurns::Tell(TDocument& document, TAppHost* host)
{
    if (document.GetHost() != nullptr)
        document.GetHost()->AgreementChanged(document);
    TString text;
    TExportAgreement& agreement = document.GetAgreement();
    if (agreement.TakeStatus(text) && host != nullptr && host->IsLastStatus(agreement.GetTold()))
        host->ShowStatus(text);
}
