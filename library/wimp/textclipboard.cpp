#include "library/wimp/textclipboard.h"

#include "library/containers/string.h"
#include "library/wimp/systemclipboard.h"

namespace {

// More than any value or text of the program's own.
constexpr int MaxSize = 16 << 20;

TString& GetOwnText()
{
    static TString text;
    return text;
}

} // namespace

void SetClipboardText(const char* text)
{
    if (TSystemClipboard::IsThere())
        TSystemClipboard().Put("", vector<uint8_t>(), text);
    else
        GetOwnText() = text;
}

bool HasClipboardText()
{
    return TSystemClipboard::IsThere() ? TSystemClipboard().HasText() : !GetOwnText().IsEmpty();
}

bool GetClipboardText(TString& text)
{
    if (TSystemClipboard::IsThere())
        return TSystemClipboard().GetText(MaxSize, text);
    text = GetOwnText();
    return !text.IsEmpty();
}
