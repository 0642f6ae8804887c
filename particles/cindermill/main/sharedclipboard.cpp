#include "particles/cindermill/main/sharedclipboard.h"

#include "library/containers/fnvhash.h"
#include "particles/cindermill/graph/text/effecttextreader.h"
#include "particles/cindermill/main/clipboardeffect.h"

TSharedClipboard::TPrint::TPrint(const void* data, int size)
    : Size(size), Hash(AddToFnv(FnvStart64, data, size))
{
}

void TSharedClipboard::Copy(const vector<TToolNode*>& nodes)
{
    Clipboard.Copy(nodes);
    Taken = TPrint();
    if (Exchange == nullptr)
        return;
    vector<uint8_t> effect;
    TString text;
    WriteClipboardEffect(Clipboard, effect, text);
    Exchange->Offer(effect, text.Print());
}

bool TSharedClipboard::HasNodes()
{
    if (!Clipboard.IsEmpty())
        return true;
    if (Exchange == nullptr || Exchange->IsOwn())
        return false;
    return Exchange->IsSlow() || Exchange->HasEffect() || Exchange->IsSlow() || Exchange->HasText() ||
           Exchange->IsSlow();
}

TPasteState TSharedClipboard::Tell(TPasteState state, const char* fault)
{
    Fault = fault;
    return state;
}

TPasteState TSharedClipboard::Fetch()
{
    if (Exchange == nullptr || Exchange->IsOwn())
        return FetchOwn("No nodes were copied");
    return FetchForeign();
}

TPasteState TSharedClipboard::FetchOwn(const char* otherwise)
{
    return Clipboard.IsEmpty() ? Tell(PS_NOTHING, otherwise) : Tell(PS_READY, nullptr);
}

// What another program offers in more than one form is the same in each; the file is the quicker one. Who
// takes long to answer nothing is not asked further, as each question would be waited for.
TPasteState TSharedClipboard::FetchForeign()
{
    static constexpr const char* NoAnswer = "The program that has the clipboard does not answer";
    if (Exchange->IsEmpty())
        return Exchange->IsSlow() ? Tell(PS_NOTHING, NoAnswer) : FetchOwn("No nodes were copied");
    vector<uint8_t> effect;
    TString text;
    TString fault;
    if (Exchange->GetEffect(effect)) {
        const TPrint print(effect.data(), effect.size());
        return Take(print, print == Taken || ReadClipboardEffect(effect, Types, Clipboard, fault), fault);
    }
    if (Exchange->IsSlow())
        return Tell(PS_NOTHING, NoAnswer);
    const bool hasText = Exchange->GetText(text);
    if (hasText && IsEffectText(text.Print())) {
        const TPrint print(text.Print(), text.Length());
        return Take(print, print == Taken || ReadClipboardText(text.Print(), Types, Clipboard, fault), fault);
    }
    if (!hasText && Exchange->IsSlow())
        return Tell(PS_NOTHING, NoAnswer);
    return FetchOwn("The clipboard holds no nodes");
}

TPasteState TSharedClipboard::Take(const TPrint& print, bool taken, const TString& fault)
{
    if (!taken)
        return Tell(PS_REFUSED, fault);
    Taken = print;
    return Tell(PS_READY, nullptr);
}
