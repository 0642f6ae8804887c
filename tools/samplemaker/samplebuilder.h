#pragma once

#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/rampparameter.h"

#include <initializer_list>

class TCindermillApp;

// A colour of a curve: when, and what.
struct TColourKey
{
    float X;
    float Red;
    float Green;
    float Blue;
    float Alpha;
};

// A node of the sample that is being built. Values are named as in the node's panel, members of a group with
// a dot. An unknown name, or a value that does not fit, asserts.
//
// What a port of several types holds is set behind the wires that settle its type.
class TSampleNode
{
public:
    TSampleNode(TDocument& document, TToolNode* node) : Document(&document), Node(node) {}
    TToolNode* GetNode() const { return Node; }

    // An input, or a parameter of a value type.
    const TSampleNode& Set(const char* name, std::initializer_list<float> value) const;
    const TSampleNode& Int(const char* name, int value) const;
    // A boolean, or the switch of a group.
    const TSampleNode& Switch(const char* name, bool on) const;
    // An enum's entry by its name.
    const TSampleNode& Choose(const char* name, const char* entry) const;
    const TSampleNode& Texture(const char* name, const char* fileName) const;
    // Only the position track is used.
    const TSampleNode& Animation(const char* name, const char* fileName) const;
    // One channel of a ramp: straight from point to point.
    const TSampleNode& Curve(const char* name, int channel, std::initializer_list<TRampPoint> points) const;
    // All channels of a ramp alike.
    const TSampleNode& Curves(const char* name, std::initializer_list<TRampPoint> points) const;
    const TSampleNode& Colours(const char* name, std::initializer_list<TColourKey> keys) const;
    // Of a render stage: lower ones are drawn first.
    const TSampleNode& Priority(int priority) const;
    const TSampleNode& Wire(const char* output, const TSampleNode& destination, const char* input) const;

private:
    TNodeParameter* FindValue(const char* name) const;
    TNodeParameter* FindParameter(const char* name) const;
    TNodeRampParameter* FindRamp(const char* name) const;
    void SetPoints(TNodeRampParameter* ramp, int channel, const vector<TRampPoint>& anchors) const;

    TDocument* Document;
    TToolNode* Node;
};

// Builds one effect through the operations that the tool itself edits with.
class TSampleBuilder
{
public:
    explicit TSampleBuilder(TCindermillApp& app);

    TSampleNode Add(const char* typeName);
    // Lays the graph out, forgets the history and writes the file.
    bool Save(const char* path);
    TDocument& GetDocument() { return Document; }

private:
    TCindermillApp& App;
    TDocument Document;
};
