#pragma once

class TDocument;
class TEffectEdge;
class TEffectNode;
class TString;
class TToolEdge;
class TToolNode;

// Whether a wire may run between the two ports when what stands at the input is away, and another edge too.
bool CanReplaceWire(TEffectNode* source, int sourcePort, TEffectNode* destination, int destinationPort,
                    const TEffectEdge* away = nullptr);
// Why it may not, as a person would say it.
void GetWireRefusal(TEffectNode* source, int sourcePort, TEffectNode* destination, int destinationPort,
                    TString& reason);

// A new wire, in one operation: an edge that the input has already comes from the source now. None if it does
// so already.
void Wire(TDocument& document, TToolNode* source, int sourcePort, TToolNode* destination,
          int destinationPort);
// The edge ends at the input, in place of what stands there, in one step.
void MoveWire(TDocument& document, TToolEdge* edge, TToolNode* destination, int destinationPort);
