#include "particles/cindermill/interface/systemexchange.h"

#include "library/containers/string.h"

namespace {

constexpr const char* NodesType = "application/x-cindermill-nodes";
// What is larger is not even fetched from the window system's memory into the program's own.
constexpr int MaxSize = 64 << 20;

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
    return Clipboard.GetBytes(NodesType, MaxSize, effect);
}

bool TSystemExchange::GetText(TString& text)
{
    return Clipboard.GetText(MaxSize, text);
}
