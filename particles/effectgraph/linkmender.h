#pragma once

#include "library/containers/string.h"

class TErrorList;
class TNodePolytypeParameter;
class TNodeRampParameter;
class TNodeType;
class TNodeTypeLibrary;
struct TOutputPort;

// Mends the links of a loaded effect's nodes that name nothing: such a port gets the link that the library's
// type has, if it has the port and names one that is there, and otherwise follows none. Values are not
// touched. Each link mended is told in one line.
class TLinkMender
{
public:
    TLinkMender(const TNodeTypeLibrary& library, TErrorList& told) : Library(library), Told(told) {}

    void MendInput(const TNodeType& type, TNodePolytypeParameter& input);
    void MendOutput(const TNodeType& type, TOutputPort& output);
    // A curve that is locked to none of its ramp's is free.
    void MendRamp(const TNodeType& type, TNodeRampParameter& ramp);

private:
    void Tell(const TNodeType& type, const TString& port, const char* kind, const TString& followed);

    const TNodeTypeLibrary& Library;
    TErrorList& Told;
};
