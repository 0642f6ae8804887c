#pragma once

#include "particles/cindermill/main/clipboard.h"
#include "particles/cindermill/main/nodeexchange.h"

class TNodeTypeLibrary;

// What there is to paste.
enum TPasteState
{
    PS_READY,
    // No nodes were copied, or something else was since.
    PS_NOTHING,
    // What claims to be nodes cannot be taken.
    PS_REFUSED
};

// The clipboard of copied nodes and the one of the system, brought together: a copy goes to both, and a paste
// takes what was copied last, by whatever program. Without an exchange it is the program's own alone.
class TSharedClipboard
{
public:
    explicit TSharedClipboard(const TNodeTypeLibrary& types) : Types(types) {}

    // Must live until there is another, or none.
    void SetExchange(TNodeExchange* exchange) { Exchange = exchange; }
    void Copy(const vector<TToolNode*>& nodes);
    // Whether a paste is likely to find something. Costs no time that whoever has the clipboard may take.
    bool HasNodes();
    // Sees to it that the clipboard holds what a paste takes now.
    TPasteState Fetch();
    // Why there is nothing to paste, as a person reads it.
    const TString& GetFault() const { return Fault; }
    TClipboard& GetClipboard() { return Clipboard; }

private:
    bool IsForeign();
    TPasteState FetchForeign();
    TPasteState Tell(TPasteState state, const char* fault);

    const TNodeTypeLibrary& Types;
    TNodeExchange* Exchange = nullptr;
    TClipboard Clipboard;
    // What the clipboard's nodes were made of, if another program copied them: pasted again they cascade.
    vector<uint8_t> TakenEffect;
    TString TakenText;
    TString Fault;
};
