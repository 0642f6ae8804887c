#include "particles/cindermill/interface/filterfield.h"

#include "library/wimp/gl/windowmessage.h"
#include "library/wimp/textclipboard.h"

namespace {

constexpr TGDIFont FieldFont = {"Dotum", -12, 400};
constexpr TGDIColour White = 0xFFFFFF;
constexpr TGDIColour Ink = 0x202020;
constexpr TGDIColour Faint = 0x8A8F94;
constexpr TGDIColour Edge = 0x9AA0A6;
constexpr TGDIColour FocusEdge = 0xD4691E;
constexpr int Inset = 7;
constexpr int TextTop = 5;
constexpr int LongestText = 100;

} // namespace

bool TFilterField::Erase(bool word)
{
    if (Text.IsEmpty())
        return false;
    int length = Text.Length() - 1;
    while (word && length > 0 && Text.Print()[length - 1] != ' ')
        --length;
    TString left;
    left.Left(Text.Print(), length);
    Text = left;
    return true;
}

// Of several lines the first.
bool TFilterField::Add(const char* text)
{
    const int before = Text.Length();
    for (; *text >= 32 && *text < 127 && Text.Length() < LongestText; ++text) {
        const char letter[] = {*text, 0};
        Text += letter;
    }
    return Text.Length() != before;
}

bool TFilterField::OnMessage(const TMessage& message)
{
    const bool ctrl = (message.KeyFlags & KF_CTRL) != 0;
    if (message.Type == MT_KEYDOWN && message.Key == KEY_BACKSPACE)
        return Erase(ctrl);
    if (message.Type == MT_KEYDOWN && message.Key == 'V' && ctrl) {
        TString pasted;
        return GetClipboardText(pasted) && Add(pasted.Print());
    }
    if (message.Type != MT_CHAR || message.Character >= 127)
        return false;
    const char letter[] = {static_cast<char>(message.Character), 0};
    return Add(letter);
}

void TFilterField::Paint(TGDIContext& context, int left, int top, int right, const char* hint,
                         bool focused) const
{
    context.SetPen(focused ? FocusEdge : Edge);
    context.SetBrush(White);
    context.Rectangle(left, top, right, top + Height);
    context.SetFont(FieldFont);
    const bool isEmpty = Text.IsEmpty();
    int width = 0;
    int height = 0;
    context.GetTextExtent(Text.Print(), width, height);
    // The end is what one looks at.
    const int room = right - left - 2 * Inset;
    const int shift = width > room ? width - room : 0;
    context.SetClip(left + 2, top + 1, right - 2, top + Height - 1);
    context.SetTextColour(isEmpty ? Faint : Ink);
    context.TextOut(left + Inset - shift, top + TextTop, isEmpty ? hint : Text.Print());
    if (focused) {
        context.SetPen(Ink);
        const int caret = left + Inset - shift + width;
        context.Line(caret, top + 5, caret, top + Height - 5);
    }
    context.ClearClip();
}
