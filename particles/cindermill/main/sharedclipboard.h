#pragma once

#include "particles/cindermill/main/clipboard.h"
#include "particles/cindermill/main/nodeexchange.h"

class TNodeTypeLibrary;

// What there is to paste.
enum TPasteState
{
    PS_READY,
    // No nodes were copied, or whoever has them does not answer.
    PS_NOTHING,
    // What claims to be nodes cannot be taken.
    PS_REFUSED
};

// The clipboard of copied nodes and the one of the system, brought together: a copy goes to both, and a paste
// takes the nodes on the system's, whatever program they are of, or where it has none, those copied or pasted
// here last. Without an exchange it is the program's own alone.
class TSharedClipboard
{
public:
    explicit TSharedClipboard(const TNodeTypeLibrary& types) : Types(types) {}

    // Must live until there is another, or none.
    void SetExchange(TNodeExchange* exchange) { Exchange = exchange; }
    void Copy(const vector<TToolNode*>& nodes);
    // Whether a paste is likely to find something. Where no nodes were copied or pasted here yet, whoever has
    // the clipboard is asked what there is, but for no more than that, and not again once that took long.
    bool HasNodes();
    // Sees to it that the clipboard holds what a paste takes now.
    TPasteState Fetch();
    // Why there is nothing to paste, as a person reads it.
    const TString& GetFault() const { return Fault; }
    TClipboard& GetClipboard() { return Clipboard; }

private:
    // Of something as other programs give it, to know it again.
    struct TPrint
    {
        TPrint() = default;
        TPrint(const void* data, int size);
        bool operator==(const TPrint& other) const { return Size == other.Size && Hash == other.Hash; }

        int Size = 0;
        uint64_t Hash = 0;
    };

    TPasteState FetchOwn(const char* otherwise);
    TPasteState FetchForeign();
    TPasteState Take(const TPrint& print, bool taken, const TString& fault);
    TPasteState Tell(TPasteState state, const char* fault);

    const TNodeTypeLibrary& Types;
    TNodeExchange* Exchange = nullptr;
    TClipboard Clipboard;
    // What the clipboard's nodes were made of, if another program copied them: pasted again they cascade.
    TPrint Taken;
    TString Fault;
};
