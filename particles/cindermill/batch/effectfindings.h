#pragma once

#include "particles/cindermill/batch/findings/findingreport.h"

class TDocument;
class TEffectNode;
class TErrorList;
class TNodeType;
struct TErrorSource;

// Tells a report what the document of one file has to tell, with the place of each node.
class TEffectFindings
{
public:
    TEffectFindings(TDocument& document, const char* path, TFindingReport& report)
        : Document(document), Path(path), Report(report)
    {
    }
    void Add(const char* id, const char* message);
    void AddErrors(const char* id, const TErrorList& errors);

private:
    TDocument& Document;
    const char* const Path;
    TFindingReport& Report;
};

// Where the node is. Without a group, that of the schedule is taken: the first of several.
void GetNodePlace(TDocument& document, const TEffectNode& node, int group, TFindingPlace& place);
void GetSourcePlace(TDocument& document, const TErrorSource& source, TFindingPlace& place);
