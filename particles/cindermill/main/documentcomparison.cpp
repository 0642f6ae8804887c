#include "particles/cindermill/main/documentcomparison.h"

#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

TDocumentComparison::TDocumentComparison(TCindermillApp& app, TDocument& document)
    : Document(document), Services(app.GetSettings(), app.GetResourceLocator()),
      Comparison(document.GetSchedule(), Services)
{
}

bool TDocumentComparison::Run(const TReplayOptions& options, TErrorList& errors)
{
    if (!Document.GetSchedule().IsCreated()) {
        errors.Add(new TError("The effect has no schedule"));
        return false;
    }
    return Comparison.Export(errors) && Comparison.Run(options, errors);
}
