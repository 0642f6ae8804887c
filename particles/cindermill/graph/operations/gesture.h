#pragma once

#include "particles/cindermill/graph/operations/operationstack.h"

// While it lives, what is applied to the stack is one step of undo.
class TGesture
{
public:
    enum TKind
    {
        NEW,
        // Of the step that was done last.
        CONTINUED
    };

    explicit TGesture(TOperationStack& stack, TKind kind = NEW) : Stack(stack)
    {
        if (kind == CONTINUED)
            Stack.ContinueGesture();
        else
            Stack.BeginGesture();
    }
    ~TGesture() { Stack.EndGesture(); }
    TGesture(const TGesture&) = delete;
    TGesture& operator=(const TGesture&) = delete;

private:
    TOperationStack& Stack;
};
