#include "particles/cindermill/main/sharedclipboard.h"

#include "particles/cindermill/graph/text/effecttextreader.h"
#include "particles/cindermill/main/clipboardeffect.h"

#include <cstring>

namespace {

bool AreSame(const vector<uint8_t>& a, const vector<uint8_t>& b)
{
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), static_cast<size_t>(a.size())) == 0);
}

} // namespace

void TSharedClipboard::Copy(const vector<TToolNode*>& nodes)
{
    Clipboard.Copy(nodes);
    TakenEffect.clear();
    TakenText = nullptr;
    if (Exchange == nullptr)
        return;
    vector<uint8_t> effect;
    TString text;
    WriteClipboardEffect(Clipboard, effect, text);
    Exchange->Offer(effect, text.Print());
}

// Where the system's clipboard has nothing, what was copied or pasted here last is still at hand. A program
// that gives no answer has something.
bool TSharedClipboard::IsForeign()
{
    return Exchange != nullptr && !Exchange->IsOwn() && (!Exchange->IsEmpty() || Exchange->IsSlow());
}

bool TSharedClipboard::HasNodes()
{
    if (Exchange != nullptr && Exchange->IsSlow())
        return true;
    if (!IsForeign())
        return !Clipboard.IsEmpty();
    if (Exchange->IsSlow() || Exchange->HasEffect())
        return true;
    TString text;
    return !Exchange->IsSlow() && Exchange->GetText(text) && IsEffectText(text.Print());
}

TPasteState TSharedClipboard::Tell(TPasteState state, const char* fault)
{
    Fault = fault;
    return state;
}

TPasteState TSharedClipboard::Fetch()
{
    if (IsForeign())
        return FetchForeign();
    return Clipboard.IsEmpty() ? Tell(PS_NOTHING, "No nodes were copied") : Tell(PS_READY, nullptr);
}

// What another program offers in more than one form is the same in each; the file is the quicker one.
TPasteState TSharedClipboard::FetchForeign()
{
    vector<uint8_t> effect;
    TString text;
    TString fault;
    // It would be waited for at each further question.
    if (Exchange->IsSlow())
        return Tell(PS_NOTHING, "The program that has the clipboard does not answer");
    if (Exchange->GetEffect(effect)) {
        if (AreSame(effect, TakenEffect))
            return Tell(PS_READY, nullptr);
        if (!ReadClipboardEffect(effect, Types, Clipboard, fault))
            return Tell(PS_REFUSED, fault);
    } else if (Exchange->GetText(text) && IsEffectText(text.Print())) {
        if (text == TakenText)
            return Tell(PS_READY, nullptr);
        if (!ReadClipboardText(text.Print(), Types, Clipboard, fault))
            return Tell(PS_REFUSED, fault);
    } else
        return Tell(PS_NOTHING, "The clipboard holds no nodes");
    TakenEffect.swap(effect);
    TakenText = text;
    return Tell(PS_READY, nullptr);
}
