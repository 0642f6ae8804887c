#pragma once

#include "particles/cindermill/graph/operations/gesture.h"
#include "particles/cindermill/main/document.h"

// While it lives, what is applied to the document is one step of undo, and the schedule and the engine wait
// for its end: what lies between two operations of a step is no graph that anybody has wanted, and its faults
// concern nobody.
class TDocumentStep
{
public:
    explicit TDocumentStep(TDocument& document) : Hold(document), Gesture(*document.GetOperationStack()) {}

private:
    // Goes last.
    TGraphHold Hold;
    TGesture Gesture;
};
