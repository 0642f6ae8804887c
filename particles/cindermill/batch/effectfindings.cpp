#include "particles/cindermill/batch/effectfindings.h"

#include "particles/cindermill/batch/findings/nodeplace.h"
#include "particles/cindermill/main/document.h"

void GetNodePlace(TDocument& document, const TEffectNode& node, int group, TFindingPlace& place)
{
    SetNodePlace(node, group != -1 ? group : document.GetSchedule().FindGroupOf(node), place);
}

void GetSourcePlace(TDocument& document, const TErrorSource& source, TFindingPlace& place)
{
    place.Group = source.Group;
    if (source.Type == nullptr)
        return;
    if (const TEffectNode* node = document.GetGraph()->FindNodeOf(source.Type)) {
        GetNodePlace(document, *node, source.Group, place);
        return;
    }
    // A node that only the history holds.
    place.Node = source.Type->Name;
    place.Type = source.Type->ClassName;
}

void TEffectFindings::Add(const char* id, const char* message)
{
    Report.Add(MakeFinding(id, Path, message));
}

void TEffectFindings::AddErrors(const char* id, const TErrorList& errors)
{
    for (const TError* error : errors) {
        TString text;
        error->GetText(text);
        TFinding finding = MakeFinding(id, Path, text);
        GetSourcePlace(Document, error->GetSource(), finding.Place);
        Report.Add(finding);
    }
}
