#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/graph/replay/replaycomparison.h"

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
    // The document needs a schedule: TDocument::CreateSchedule. It is copied: the document may build it anew.
    // Both must outlive this.
    TDocumentComparison(TCindermillApp& app, TDocument& document);
    ~TDocumentComparison();
    // False with errors where there is no schedule, no engine or no file, or where the engine fails. Errors
    // that leave a file come with true.
    bool Run(const TReplayOptions& options, TErrorList& errors);
    // Its first step. What follows is the comparison's own: Begin, frames, End. The graph may not change
    // meanwhile.
    bool Export(TErrorList& errors);
    TReplayComparison& GetComparison() { return Comparison; }
    const TEffectSchedule& GetSchedule() const { return Schedule; }
    const TReplayReport& GetReport() const { return Comparison.GetReport(); }

private:
    class TServices;

    const TEffectSchedule Schedule;
    TOwner<TServices> Services;
    TReplayComparison Comparison;
};
