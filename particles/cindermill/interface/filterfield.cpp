#include "particles/cindermill/interface/filterfield.h"

#include "library/wimp/gl/windowmessage.h"
#include "library/wimp/menu.h"
#include "library/wimp/textclipboard.h"
#include "particles/cindermill/graph/text/effecttextreader.h"

namespace {

constexpr TGDIFont FieldFont = {"Dotum", -12, 400};
constexpr TGDIColour White = 0xFFFFFF;
constexpr TGDIColour Ink = 0x202020;
constexpr TGDIColour Faint = 0x8A8F94;
constexpr TGDIColour Edge = 0x9AA0A6;
constexpr TGDIColour FocusEdge = 0xD4691E;
constexpr TGDIColour MarkColour = 0xB4D5FE;
constexpr int Inset = 7;
constexpr int TextTop = 5;
constexpr int LongestText = 100;

// Far from those of the other menus.
enum TFilterMenuId
{
    FF_CUT = 42101,
    FF_COPY,
    FF_PASTE,
    FF_SELECTALL
};

bool IsPrintable(char c)
{
    return static_cast<unsigned char>(c) >= 32 && c != 127;
}

bool IsInsideCharacter(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// As UTF-8, with a zero at its end.
void EncodeCharacter(uint32_t character, char* text)
{
    constexpr uint32_t FirstOfLength[] = {0, 0x80, 0x800, 0x10000};
    constexpr uint32_t Marks[] = {0, 0xC0, 0xE0, 0xF0};
    int more = 3;
    while (character < FirstOfLength[more])
        --more;
    text[more + 1] = 0;
    for (int i = more; i > 0; --i) {
        text[i] = static_cast<char>(0x80 | (character & 0x3F));
        character >>= 6;
    }
    text[0] = static_cast<char>(Marks[more] | character);
}

} // namespace

bool TFilterField::Erase(bool word)
{
    if (Text.IsEmpty())
        return false;
    int length = IsMarked ? 0 : Text.Length() - 1;
    while (length > 0 && (IsInsideCharacter(Text.Print()[length]) ||
                          (word && !IsMarked && Text.Print()[length - 1] != ' ')))
        --length;
    TString left;
    left.Left(Text.Print(), length);
    SetText(left.Print());
    return true;
}

// Of several lines the first. What has no room is cut where a character ends.
bool TFilterField::Add(const char* text)
{
    int length = 0;
    while (IsPrintable(text[length]) && length < LongestText)
        ++length;
    const int room = LongestText - (IsMarked ? 0 : Text.Length());
    length = length < room ? length : room;
    while (length > 0 && IsInsideCharacter(text[length]))
        --length;
    if (length <= 0)
        return false;
    TString added;
    added.Left(text, length);
    if (IsMarked)
        SetText("");
    Text += added.Print();
    return true;
}

bool TFilterField::OnCtrlKey(int key)
{
    switch (key) {
    case 'A':
        return SelectAll();
    case 'C':
        return IsMarked && Copy();
    case 'X':
        return IsMarked && Cut();
    case 'V':
        return Paste();
    default:
        return false;
    }
}

bool TFilterField::Copy() const
{
    if (Text.IsEmpty())
        return false;
    SetClipboardText(Text.Print());
    return true;
}

bool TFilterField::Cut()
{
    if (!Copy())
        return false;
    SetText("");
    return true;
}

// Copied nodes come as text too, and are for the graph.
bool TFilterField::Paste()
{
    TString pasted;
    return GetClipboardText(pasted) && !IsEffectText(pasted.Print()) && Add(pasted.Print());
}

bool TFilterField::SelectAll()
{
    IsMarked = !Text.IsEmpty();
    return IsMarked;
}

// All of the text or none of it can be marked, so that what the entries take is all of it.
void TFilterField::OpenMenu(TWindow& window, int x, int y) const
{
    TMenu menu;
    menu.AddItem(FF_CUT, "Cut\tCtrl+X");
    menu.AddItem(FF_COPY, "Copy\tCtrl+C");
    menu.AddItem(FF_PASTE, "Paste\tCtrl+V");
    menu.AddSeparator();
    menu.AddItem(FF_SELECTALL, "Select All\tCtrl+A");
    menu.EnableItem(FF_PASTE, HasClipboardText());
    menu.EnableItem(FF_CUT, !Text.IsEmpty());
    menu.EnableItem(FF_COPY, !Text.IsEmpty());
    menu.EnableItem(FF_SELECTALL, !Text.IsEmpty());
    menu.Track(window, x, y);
}

bool TFilterField::OnMenu(int id)
{
    switch (id) {
    case FF_CUT:
        return Cut();
    case FF_COPY:
        return Copy();
    case FF_PASTE:
        return Paste();
    case FF_SELECTALL:
        return SelectAll();
    default:
        return false;
    }
}

bool TFilterField::OnMessage(const TMessage& message)
{
    const bool ctrl = (message.KeyFlags & KF_CTRL) != 0;
    if (message.Type == MT_KEYDOWN && message.Key == KEY_BACKSPACE)
        return Erase(ctrl);
    if (message.Type == MT_KEYDOWN && message.Key == KEY_DELETE)
        return IsMarked && Erase(false);
    if (message.Type == MT_KEYDOWN && ctrl)
        return OnCtrlKey(message.Key);
    if (message.Type != MT_CHAR)
        return false;
    char letter[5];
    EncodeCharacter(message.Character, letter);
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
    if (IsMarked && focused) {
        context.SetNoPen();
        context.SetBrush(MarkColour);
        context.Rectangle(left + Inset - shift, top + 4, left + Inset - shift + width, top + Height - 4);
    }
    context.SetTextColour(isEmpty ? Faint : Ink);
    context.TextOut(left + Inset - shift, top + TextTop, isEmpty ? hint : Text.Print());
    if (focused) {
        context.SetPen(Ink);
        const int caret = left + Inset - shift + width;
        context.Line(caret, top + 5, caret, top + Height - 5);
    }
    context.ClearClip();
}
