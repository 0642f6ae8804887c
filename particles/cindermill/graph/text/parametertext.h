#pragma once

#include "particles/cindermill/graph/text/keyindex.h"
#include "particles/cindermill/graph/text/textline.h"
#include "particles/effectgraph/nodeparameter.h"

class TNodeRampParameter;

// What a list of parameters tells, as lines: either the values that an artist sets, or what the node type
// tells of the parameters, which nodes of one type share.
class TParameterText
{
public:
    TParameterText(TTextLines& values, TTextLines& declarations) : Values(values), Declarations(declarations)
    {
    }

    // `path` is what the labels begin with: "parameter", "input", and the groups that the list is in.
    void AddList(const TString& path, const vector<TNodeParameter*>& parameters);

private:
    void Add(const TString& label, const TNodeParameter& parameter);
    void AddSimple(const TString& label, const TNodeParameter& parameter);
    void AddEnum(const TString& label, const TNodeParameter& parameter);
    void AddAnimation(const TString& label, const TNodeParameter& parameter);
    void AddPolytype(const TString& label, const TNodeParameter& parameter);
    void AddRamp(const TString& label, const TNodeRampParameter& ramp);
    void Declare(const TString& label, const TNodeParameter& parameter);
    void DeclareValue(const TString& label, const TNodeParameter& value, const TNodeParameter& polytype);
    void AddValue(const TString& label, const char* rest, const TString& value);
    void AddDeclaration(const TString& label, const char* rest, const TString& value);

    TTextLines& Values;
    TTextLines& Declarations;
};

// The label of each of a list of names: the name in quotes, the second of one name with #2 and so on.
class TNumberedNames
{
public:
    TString Add(const TString& name);

private:
    TKeyIndex Names;
    // By name: how many there were.
    vector<int> Counts;
};
