#include "particles/cindermill/batch/effectfacts.h"

#include "particles/cindermill/batch/effectfindings.h"
#include "particles/cindermill/batch/findings/jsontext.h"
#include "particles/cindermill/main/document.h"

namespace {

void AddScheduleFacts(const TEffectSchedule& schedule, TEffectFacts& facts)
{
    facts.NumScheduledNodes = schedule.GetNumNodes();
    for (int group = 0; group < schedule.GetNumGroups(); ++group)
        facts.NumTiedNodes.push_back(schedule.GetNumTiedNodes(group));
}

void WriteSchedule(TJsonText& json, const TEffectFacts& facts)
{
    if (!facts.IsScheduled) {
        json.Null("schedule");
        return;
    }
    json.BeginObject("schedule");
    json.Whole("groups", facts.NumTiedNodes.size());
    json.Whole("nodes", facts.NumScheduledNodes);
    json.BeginArray("tiedNodes");
    for (const int count : facts.NumTiedNodes)
        json.Whole(nullptr, count);
    json.EndArray();
    json.EndObject();
}

void WriteExport(TJsonText& json, const TEffectFacts& facts)
{
    if (!facts.IsExported) {
        json.Null("efx");
        return;
    }
    json.BeginObject("efx");
    json.Whole("size", facts.ExportSize);
    json.EndObject();
}

} // namespace

void GetEffectFacts(TDocument& document, TEffectFacts& facts, TEffectFindings& findings)
{
    facts.FileSize = document.GetChunks().GetFileSize();
    facts.NumChunks = document.GetChunks().GetNumChunks();
    facts.NumNodes = document.GetGraph()->GetNumNodes();
    facts.NumEdges = document.GetGraph()->GetNumEdges();
    TErrorList errors;
    facts.IsScheduled = document.CreateSchedule(errors);
    if (!facts.IsScheduled) {
        findings.AddErrors("schedule.error", errors);
        return;
    }
    AddScheduleFacts(document.GetSchedule(), facts);
    const bool inited = document.InitEngine(errors, true);
    if (!inited) {
        findings.AddErrors("engine.error", errors);
        return;
    }
    facts.IsExported = document.GetExportSize(facts.ExportSize, errors);
    findings.AddErrors(facts.IsExported ? "export.warning" : "export.error", errors);
}

void TFactsReport::AddFacts(const TEffectFacts& facts)
{
    if (!IsText())
        Facts.Set(GetNumFiles() - 1, facts);
}

void TFactsReport::WriteFileFacts(int file, TJsonText& json) const
{
    const TEffectFacts* facts = Facts.Get(file);
    if (facts == nullptr) {
        json.Null("facts");
        return;
    }
    json.BeginObject("facts");
    json.Whole("size", facts->FileSize);
    json.Whole("chunks", facts->NumChunks);
    json.Whole("nodes", facts->NumNodes);
    json.Whole("edges", facts->NumEdges);
    WriteSchedule(json, *facts);
    WriteExport(json, *facts);
    json.EndObject();
}
