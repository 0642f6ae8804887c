#pragma once

#include "library/wimp/systemclipboard.h"
#include "particles/cindermill/main/nodeexchange.h"

// Copied nodes on the clipboard of the window system, for other running programs of this kind and, as text,
// for all others.
class TSystemExchange : public TNodeExchange
{
public:
    void Offer(const vector<uint8_t>& effect, const char* text) override;
    bool IsOwn() override { return Clipboard.IsOwn(); }
    bool IsEmpty() override { return Clipboard.IsEmpty(); }
    bool HasEffect() override;
    bool HasText() override { return Clipboard.HasText(); }
    bool GetEffect(vector<uint8_t>& effect) override;
    bool GetText(TString& text) override;
    bool IsSlow() override { return Clipboard.IsSlow(); }

private:
    TSystemClipboard Clipboard;
};
