#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

#include <cstdint>

class TAttributeTrace;
class TDocument;
class TEffectExecNode;
class TNodeType;
class TToolNode;

// The traces of one node's output ports in a document's engine, for one particle at one of the places where
// the node is tied. It is the only one that holds pointers into the engine: whoever shows the values asks
// here, and finds no places, ports or entries while the node is not run.
class TNodeTrace
{
public:
    // Both stay the caller's and outlive the trace.
    TNodeTrace(TDocument& document, TToolNode& node) : Doc(document), Node(node) {}
    // The node goes on without being traced.
    ~TNodeTrace() { Disconnect(); }
    TNodeTrace(const TNodeTrace&) = delete;
    TNodeTrace& operator=(const TNodeTrace&) = delete;

    // Finds the node in the engine and has it traced: at its first place, for particle 0. False, with nothing
    // held, if it is not run there or has no outputs.
    bool Connect();
    // The node is not traced any more.
    void Disconnect();
    // The engine is about to go, with all that was held of it.
    void LetGo();
    bool IsConnected() const { return ExecNode != nullptr; }

    TDocument& GetDocument() const { return Doc; }
    TToolNode& GetNode() const { return Node; }

    int GetNumPlaces() const;
    int GetPlace() const { return Place; }
    // The group of a place.
    int GetPlaceGroup(int place) const;
    // The particle is kept if it can be chosen there.
    void SelectPlace(int place);
    // The largest number that can be chosen, 0 or more: of the schedule as it was when the place was
    // selected.
    int GetLastParticle() const { return LastParticle; }
    int GetParticle() const { return CurrentParticle; }
    // 0 in place of a number that cannot be chosen.
    void SelectParticle(int particle);

    // The ports that can be read: all outputs, or none.
    int GetNumPorts() const { return Traces.size(); }
    const TString& GetPortName(int port) const;
    // Floats of a port's value.
    int GetNumComponents(int port) const;
    const char* GetLabel(int port, int component) const;
    // Of the particle, the oldest first.
    int GetNumEntries(int port) const;
    float GetEntry(int port, int entry, int component) const;
    // See TAttributeTrace::GetRange.
    void GetRange(int port, float& min, float& max, uint32_t mask) const;
    // Whether anything was written to the port since this was asked before.
    bool TakeTouched(int port);

    // As a person reads it.
    static void FormatValue(TString& text, float value);
    // All entries as lines of columns with tabs between them, the newest first, below a line of headers.
    void GetTable(int port, TString& text) const;

private:
    TEffectExecNode* FindExecNode();
    int FindLastParticle() const;
    const TNodeType& GetType() const;

    TDocument& Doc;
    TToolNode& Node;
    // The engine's; null, and no traces, while the node is not run.
    TEffectExecNode* ExecNode = nullptr;
    vector<TAttributeTrace*> Traces;
    int Place = 0;
    int CurrentParticle = 0;
    int LastParticle = 0;
    // The schedule's, of the node.
    int Usage = 0;
};
