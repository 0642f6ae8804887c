#include "particles/cindermill/interface/systemexchange.h"

#include "library/containers/string.h"
#include "particles/cindermill/main/clipboardeffect.h"

namespace {

constexpr const char* NodesType = "application/x-cindermill-nodes";
// Of a text. The window system hands on all that it has; what is larger goes no further.
constexpr int MaxText = 16 << 20;

} // namespace

void TSystemExchange::Offer(const vector<uint8_t>& effect, const char* text)
{
    Clipboard.Put(NodesType, effect, text);
}

bool TSystemExchange::HasEffect()
{
    return Clipboard.HasType(NodesType);
}

bool TSystemExchange::GetEffect(vector<uint8_t>& effect)
{
    return Clipboard.GetBytes(NodesType, MaxClipboardEffect, effect);
}

bool TSystemExchange::GetText(TString& text)
{
    return Clipboard.GetText(MaxText, text);
}
