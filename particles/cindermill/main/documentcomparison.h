#pragma once

#include "particles/cindermill/graph/replay/replaycomparison.h"
#include "particles/cindermill/main/appservices.h"

class TCindermillApp;
class TDocument;
class TErrorList;

// Holds a document's preview against the replay of its export. The document's own engine is left alone.
//
//     TDocumentComparison comparison(app, document);
//     comparison.Run(options, errors) and then comparison.GetReport(): differences and notes as lists.
class TDocumentComparison
{
public:
    // The document needs a schedule: TDocument::CreateSchedule. Both must outlive this.
    TDocumentComparison(TCindermillApp& app, TDocument& document);
    // False with errors where there is no schedule, no engine or no file, or where the engine fails. Errors
    // that leave a file come with true.
    bool Run(const TReplayOptions& options, TErrorList& errors);
    const TReplayReport& GetReport() const { return Comparison.GetReport(); }

private:
    TDocument& Document;
    TAppServices Services;
    TReplayComparison Comparison;
};
