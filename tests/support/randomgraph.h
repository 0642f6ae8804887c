#pragma once

#include "support/dice.h"

#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/rampparameter.h"

#include <initializer_list>

// Edits a document at random, as an artist might, by the document's own operations: whole particle systems,
// and then single edits of every kind, with undo and redo in between. The same dice give the same edits.
// Where the library lacks a node type another one stands in.
class TRandomGraph
{
public:
    TRandomGraph(TCindermillApp& app, TDocument& document, TDice& dice);

    // Some systems, then that many edits.
    void Build(int edits);
    // Triggers, emission, motion and a render stage that fit together. Fired by a particle of the graph in
    // place of an emitter, now and then.
    void AddSystem();
    void Edit();

    uint32_t Below(uint32_t count) { return Dice.Below(count); }
    bool Chance(double p) { return Dice.Chance(p); }

private:
    using TEditFunction = void (TRandomGraph::*)();

    TToolNode* Add(const char* type);
    TToolNode* Add(const TNodeType& type);
    TToolNode* AddOneOf(std::initializer_list<const char*> types);
    bool Connect(TToolNode* source, int output, TToolNode* destination, int input);
    bool Connect(TToolNode* source, const char* output, TToolNode* destination, const char* input);
    // From the node's first output.
    bool Connect(TToolNode* source, TToolNode* destination, const char* input);
    void AddMotion(TToolNode* emission, TToolNode* stage);
    void AddLife(TToolNode* stage);
    bool FireByParticles(TToolNode* emission);

    int GetNumNodes() { return Document.GetGraph()->GetNumNodes(); }
    TToolNode* AnyNode();
    TToolEdge* AnyEdge();
    vector<TToolNode*> SomeNodes();
    // An output and a free input that may be connected; false if a few tries found none.
    bool FindPorts(TToolNode*& source, int& output, TToolNode*& destination, int& input);

    void AddNode();
    void AddEdge();
    void MoveNodes();
    void DeleteNodes();
    void ChangeEdge();
    void DeleteEdge();
    void Bypass();
    void ChangeProperties();
    void ChangeParameter();
    void CopyAndPaste();
    void Cut();
    void UndoSome();
    void RedoSome();

    static void Collect(const vector<TNodeParameter*>& parameters, vector<TNodeParameter*>& result);
    void ChangeParameter(TNodeParameter* parameter);
    void ChangeValue(TNodeParameter* parameter);
    void ChangeRamp(TNodeRampParameter* ramp);
    vector<TRampPoint> SomePoints();
    int SomeInt(const TNodeParameter& parameter);
    float SomeFloat();

    TCindermillApp& App;
    TDocument& Document;
    TDice& Dice;
};
