#pragma once

#include <string>

class TDocument;

// Files that consist of one long list, of about a given size in bytes. What they hold makes no sense, but it
// is read to its end.

// The lists of a node type file.
enum TTypeList
{
    TL_ENUMVALUES,
    TL_RAMPPOINTS,
    // More numbers than a vector has, which is refused.
    TL_VECTOR,
    TL_GROUPMEMBERS,
    // The same, deep in groups.
    TL_NESTEDMEMBERS,
    TL_PARAMETERS,
    // Polytype inputs, each of which follows the next.
    TL_FOLLOWINGINPUTS,
    TL_OUTPUTS,
    TL_UNKNOWNTAGS,
    TL_NESTEDTAGS,
    TL_ATTRIBUTES,
    TL_BRACKETS,
    TL_NUMTYPELISTS
};

const char* GetListName(TTypeList list);
// The text of a file of a type of that name. One that is out of date has another description, and its list
// begins with another element.
std::string MakeTypeFile(TTypeList list, int size, const std::string& name, bool isOld);

std::string MakeAnimationFile(int size);

// A fragment shader that repeats the body of another.
std::string MakeShaderFile(const std::string& shader, int size);

// The lists of an effect.
enum TEffectList
{
    EL_NODES,
    // Wires from one output.
    EL_WIRES,
    EL_STEPS,
    // Steps that each added a node.
    EL_ADDITIONS,
    // Nodes that one step moved.
    EL_MOVEDNODES,
    EL_CURVEPOINTS,
    EL_INTERFACES,
    // Chunks of a class that this program does not have.
    EL_UNKNOWNCHUNKS,
    // The two that follow are refused.
    EL_NODESWITHOUTTYPES,
    EL_STACKS,
    EL_NUMEFFECTLISTS
};

const char* GetListName(TEffectList list);
bool IsRefused(TEffectList list);
// Fills a new document.
void FillDocument(TDocument& document, TEffectList list, int size);
