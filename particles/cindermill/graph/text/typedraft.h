#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/graph/text/keyindex.h"
#include "particles/cindermill/graph/text/textcursor.h"
#include "particles/effectgraph/nodetype.h"

// A node type that is made from the lines that tell of it, one by one, in the order in which they are
// written.
class TTypeDraft
{
public:
    // Parameters of a type, those in groups counted; a text is not to take the machine's time.
    static constexpr int MaxParameters = 4096;

    explicit TTypeDraft(const TString& className);

    // Whether a type has no more of anything than a draft takes.
    static bool CanHold(const TNodeType& type);

    // False for a line that no type has.
    bool AddLine(TTextCursor line);
    const TNodeType& GetType() const { return *Type; }
    // The place of a parameter or input among all of the type, in the order in which GetParameters gives
    // those of a copy; -1 if there is none of the label.
    int FindParameter(const TString& label) const { return Labels.Find(label); }
    int FindInput(const TString& label) const { return InputLabels.Find(label); }
    int FindOutput(const TString& label) const { return OutputLabels.Find(label); }
    // The place of an entry among those of the enumeration at a place, by what it is called there; -1 if
    // there is none.
    int FindEntry(int parameter, const TString& name) const;
    // How many lines each node of the type has at the least for its values.
    int GetNumValueLines() const;
    // The parameters of a copy of the type, each group ahead of what is in it, then the inputs.
    static void GetParameters(const TNodeType& type, vector<TNodeParameter*>& result);

private:
    bool AddTypeLine(const TTextCursor& label, TTextCursor value);
    bool AddParameter(const TString& label, TTextCursor value);
    bool AddParameterLine(int index, const TString& rest, TTextCursor value);
    bool AddEntry(int index, TTextCursor value);
    bool AddRampLine(TNodeParameter& parameter, const TString& rest, TTextCursor value);
    bool AddPolytypeLine(TNodeParameter& parameter, const TString& rest, TTextCursor value);
    bool AddOutputLine(const TString& label, const TString& rest, TTextCursor value);
    bool DescribeOutput(TOutputPort& output, const TString& rest, TTextCursor value);
    bool HasRoom(const vector<TNodeParameter*>& list) const;

    TOwner<TNodeType> Type;
    TKeyIndex Labels;
    vector<TNodeParameter*> Parameters;
    TKeyIndex InputLabels;
    TKeyIndex OutputLabels;
    // Of all enumerations, and where each stands in its own.
    TKeyIndex EntryKeys;
    vector<int> EntryPlaces;
};
