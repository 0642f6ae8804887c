#pragma once

#include "particles/cindermill/batch/findings/filefacts.h"
#include "particles/cindermill/batch/findings/findingreport.h"

class TDocument;
class TEffectFindings;

// What the File Properties dialog tells of an effect, as numbers.
struct TEffectFacts
{
    int FileSize = 0;
    int NumChunks = 0;
    int NumNodes = 0;
    int NumEdges = 0;
    bool IsScheduled = false;
    int NumScheduledNodes = 0;
    // Of each group.
    vector<int> NumTiedNodes;
    bool IsExported = false;
    int ExportSize = 0;
};

// What keeps an effect from being scheduled or exported is told, too.
void GetEffectFacts(TDocument& document, TEffectFacts& facts, TEffectFindings& findings);

// The findings of a run, with the facts of each file.
class TFactsReport final : public TFindingReport
{
public:
    explicit TFactsReport(const TFindingJudge& judge) : TFindingReport("report", judge) {}
    // Of the file that was added last.
    void AddFacts(const TEffectFacts& facts);
    void WriteFileFacts(int file, TJsonText& json) const override;

private:
    TFileFacts<TEffectFacts> Facts;
};
