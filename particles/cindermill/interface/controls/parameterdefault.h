#pragma once

class TNodeParameter;
class TNodeType;
class TNodeTypeLibrary;

// The library's parameter that stands where the parameter stands in a node's own copy of its type, in groups
// and polytypes too, and is of its kind; null if there is none.
const TNodeParameter* FindDefaultParameter(const TNodeTypeLibrary& library, const TNodeType& own,
                                           const TNodeParameter& parameter);
