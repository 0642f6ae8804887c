#pragma once

#include "particles/cindermill/graph/text/typedraft.h"
#include "particles/effectgraph/rampparameter.h"

// Gives a copy of a node type the values that the lines of a node tell, one by one.
class TValueDraft
{
public:
    TValueDraft(const TTypeDraft& draft, TNodeType& type);

    // A line of a label, of which `path` are the names, with the cursor at the value. False for a line that
    // no node of the type has.
    bool AddLine(const TString& path, const TString& rest, TTextCursor value);
    // After the last one.
    void Finish();

private:
    bool AddProperty(const TString& name, TTextCursor value);
    bool AddOutput(const TString& path, TTextCursor value);
    bool AddValue(int index, const TString& rest, TTextCursor value);
    bool AddChoice(int index, TTextCursor value);
    static bool AddAnimation(TNodeParameter& parameter, const TString& rest, TTextCursor value);
    static bool AddPolytype(TNodeParameter& parameter, const TString& rest, TTextCursor value);
    bool AddRamp(TNodeParameter& parameter, const TString& rest, TTextCursor value);
    bool AddPoint(TNodeRampParameter& ramp, int curve, TTextCursor value);

    const TTypeDraft& Draft;
    TNodeType& Type;
    vector<TNodeParameter*> Parameters;
    // The curve that is being read.
    TNodeRampParameter* Ramp = nullptr;
    int Curve = 0;
    vector<TRampPoint> Points;
};
