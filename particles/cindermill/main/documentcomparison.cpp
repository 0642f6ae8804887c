#include "particles/cindermill/main/documentcomparison.h"

#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

// The program's, but where there are windows nobody is asked or told: the engine of the preview has done so.
class TDocumentComparison::TServices : public TAppServices
{
public:
    explicit TServices(TCindermillApp& app)
        : TAppServices(app.GetSettings(), app.GetResourceLocator()), App(app)
    {
    }
    bool FindResource(const char* name, TString& path) override
    {
        return App.IsHeadless() ? TAppServices::FindResource(name, path)
                                : App.GetResourceLocator().FindKnown(name, path);
    }
    void Warn(const char* text) override
    {
        if (App.IsHeadless())
            TAppServices::Warn(text);
    }

private:
    TCindermillApp& App;
};

TDocumentComparison::TDocumentComparison(TCindermillApp& app, TDocument& document)
    : Schedule(document.GetSchedule()), Services(new TServices(app)), Comparison(Schedule, *Services)
{
}

TDocumentComparison::~TDocumentComparison() = default;

bool TDocumentComparison::Export(TErrorList& errors)
{
    if (Schedule.IsCreated())
        return Comparison.Export(errors);
    errors.Add(new TError("The effect has no schedule"));
    return false;
}

bool TDocumentComparison::Run(const TReplayOptions& options, TErrorList& errors)
{
    return Export(errors) && Comparison.Run(options, errors);
}
