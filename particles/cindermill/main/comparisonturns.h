#pragma once

#include "library/containers/vector.h"

#include <cstdint>

class TAppHost;
class TDocument;
class TExportAgreement;

// The comparisons of all documents in idle passes: one document a pass, and all rest after it, so that many
// of them are no heavier on the window than one.
class TComparisonTurns
{
public:
    // `host` may be null.
    void OnIdle(const vector<TDocument*>& documents, TAppHost* host);

private:
    static TExportAgreement* FindNext(const vector<TDocument*>& documents);
    static void Tell(TDocument& document, TAppHost* host);

    uint64_t RestsUntil = 0;
};
