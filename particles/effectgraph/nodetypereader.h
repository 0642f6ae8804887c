#pragma once

#include "particles/effectgraph/nodetype.h"
#include "particles/effectgraph/nodetypefile.h"

// Reads one node type file into a new type.
class TNodeTypeReader
{
public:
    TNodeTypeReader(TNodeType& type, TNodeTypeFile& file) : Type(type), File(file), Xml(file.Xml) {}
    bool Read();

private:
    bool ReadHead();
    bool ReadCategory();
    bool ReadFlagsAndColour();
    bool ReadSections();
    bool ReadParameters(vector<TNodeParameter*>& result, bool areInputs);
    bool ReadOutputs();
    bool ReadOutput(int type);
    bool ReadPolytypeOutput(TOutputPort& output);
    void ReadValidTypes(TOutputPort& output);
    bool ResolveOutputLinks();
    bool CheckInputLinks();
    bool ReadUserType(const TOutputPort& output);
    bool ReadCode();
    bool ReadInterfaces();

    // The text of the element just found, closed again; an element that cannot be read counts as missing.
    bool ReadText(TString& text, const char* missing) { return File.ReadElement(text, missing, missing); }

    TNodeType& Type;
    TNodeTypeFile& File;
    TXmlFile& Xml;
    // By output: the name of the output that it follows, looked up when all are known.
    vector<TString> OutputLinks;
};
