#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

#include <cstdint>

// The system's clipboard, as far as copied nodes go there and come from there.
class TNodeExchange
{
public:
    virtual ~TNodeExchange() = default;

    // The nodes as the file of a small effect, and as the text of it; either may be empty.
    virtual void Offer(const vector<uint8_t>& effect, const char* text) = 0;
    // Whether the clipboard still has what was offered last.
    virtual bool IsOwn() = 0;
    // Nothing at all is there, as its program has ended.
    virtual bool IsEmpty() = 0;
    // Of whoever has copied last. Each is false, and the result empty, where there is none.
    virtual bool HasEffect() = 0;
    // Any text; nothing of it is fetched.
    virtual bool HasText() = 0;
    virtual bool GetEffect(vector<uint8_t>& effect) = 0;
    virtual bool GetText(TString& text) = 0;
    // Whether the last question took long, and another is likely to.
    virtual bool IsSlow() = 0;
};
