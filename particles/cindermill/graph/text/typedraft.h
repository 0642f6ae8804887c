#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/graph/text/textcursor.h"
#include "particles/effectgraph/nodetype.h"

class TNodeGroupParameter;

// A node type that is made from the lines that tell of it, one by one, in the order in which they are
// written.
class TTypeDraft
{
public:
    explicit TTypeDraft(const TString& className);

    // False for a line that no type has.
    bool AddLine(TTextCursor line);
    const TNodeType& GetType() const { return *Type; }
    // The place of a parameter or input among all of the type, in the order in which GetParameters gives
    // those of a copy; -1 if there is none of the label. Looked for from a place on, and then from the first.
    int FindParameter(const TString& label, int from) const;
    int FindInput(const TString& label) const { return InputLabels.index_of(label); }
    int FindOutput(const TString& label) const { return OutputLabels.index_of(label); }
    // The parameters of a copy of the type, each group ahead of what is in it, then the inputs.
    static void GetParameters(const TNodeType& type, vector<TNodeParameter*>& result);

private:
    bool AddTypeLine(const TTextCursor& label, TTextCursor value);
    bool AddParameter(const TString& label, TTextCursor value);
    bool AddParameterLine(TNodeParameter& parameter, const TString& rest, TTextCursor value);
    bool AddEntry(TNodeParameter& parameter, TTextCursor value);
    bool AddRampLine(TNodeParameter& parameter, const TString& rest, TTextCursor value);
    bool AddPolytypeLine(TNodeParameter& parameter, const TString& rest, TTextCursor value);
    bool AddOutputLine(const TString& label, const TString& rest, TTextCursor value);
    bool DescribeOutput(TOutputPort& output, const TString& rest, TTextCursor value);
    bool HasRoom(const vector<TNodeParameter*>& list) const;

    TOwner<TNodeType> Type;
    vector<TString> Labels;
    vector<TNodeParameter*> Parameters;
    vector<TString> InputLabels;
    vector<TString> OutputLabels;
};
