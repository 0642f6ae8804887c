#include "particles/cindermill/interface/controls/textedit.h"

#include "library/system/clock.h"
#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/renderwindow.h"
#include "library/wimp/textclipboard.h"
#include "particles/cindermill/interface/controls/controlhost.h"
#include "particles/cindermill/interface/controls/fieldwalk.h"

#include <cstring>

namespace {

constexpr float TextInset = 4.0f;
constexpr char FirstCharacter = 32;
constexpr char LastCharacter = 126;
constexpr uint32_t DoubleClickMilliseconds = 400;
// A hand is not still: within so much a press is at the same place, and no drag.
constexpr float StillPixels = 3.0f;
constexpr uint32_t BlinkMilliseconds = 530;

bool IsWordCharacter(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

// A word, what stands between words, or spaces: a step by word does not end inside of one.
int GetCharacterKind(char c)
{
    if (c == ' ')
        return 0;
    return IsWordCharacter(c) ? 2 : 1;
}

bool IsStill(const TVector2& from, const TVector2& to)
{
    const TRenderer* renderer = TRenderObject::GetRenderer();
    const float zoom = renderer != nullptr ? renderer->GetScale()[0] : 1.0f;
    return (to - from).Length() * zoom <= StillPixels;
}

} // namespace

TTextEdit::TTextEdit(TControlHost& host) : Host(host), Select(*this) {}

TTextEdit::~TTextEdit() = default;

void TTextEdit::Build(const TVector2& size, float fontSize)
{
    Size = size;
    Font.Create(ControlFont, fontSize);
    Box.Build(TVector2(0, 0), size);
    TouchBounds();
}

void TTextEdit::SetReadOnly(bool readOnly)
{
    if (readOnly == ReadOnly)
        return;
    ReadOnly = readOnly;
    Revert();
    Redraw();
}

void TTextEdit::SetText(const char* text)
{
    Ended = text;
    if (Text == Ended)
        return;
    Text = Ended;
    if (IsFocused())
        SelectAll();
    else
        SetRange(0, 0);
}

void TTextEdit::TakeFocus()
{
    TakeKeys(GetRenderer());
}

// The last thing that is done, as the change may take the edit away.
void TTextEdit::EndInput()
{
    if (!IsEdited())
        return;
    Ended = Text;
    Redraw();
    TellParent(RE_VALUECHANGED);
}

void TTextEdit::Revert()
{
    if (IsEdited())
        SetText(TString(Ended).Print());
}

void TTextEdit::SelectAll()
{
    SetRange(0, Text.Length());
}

void TTextEdit::GetSelection(int& first, int& end) const
{
    first = Anchor < Caret ? Anchor : Caret;
    end = Anchor < Caret ? Caret : Anchor;
}

void TTextEdit::Cut()
{
    Copy();
    if (HasSelection() && !ReadOnly)
        Insert("");
}

void TTextEdit::Copy()
{
    if (!HasSelection())
        return;
    int first = 0;
    int end = 0;
    GetSelection(first, end);
    TString part;
    part.Assign(Text.Print() + first, Text.Print() + end);
    SetClipboardText(part.Print());
}

void TTextEdit::Paste()
{
    TString text;
    if (ReadOnly || !GetClipboardText(text))
        return;
    if (PasteFilter != nullptr) {
        TString filtered;
        PasteFilter(text.Print(), filtered);
        text = filtered;
    }
    vector<char> allowed;
    for (const char* at = text.Print(); *at != 0; ++at) {
        const char c = *at == '\t' || *at == '\n' ? ' ' : *at;
        if (IsAllowed(c))
            allowed.push_back(c);
    }
    allowed.push_back(0);
    if (allowed.size() > 1)
        Insert(allowed.data());
}

TTextEdit* TTextEdit::GetFocused()
{
    return dynamic_cast<TTextEdit*>(GetFocus());
}

void TTextEdit::EndFocusedInput()
{
    if (TTextEdit* edit = GetFocused())
        edit->EndInput();
}

void TTextEdit::DropFocusedInput()
{
    if (TTextEdit* edit = GetFocused())
        edit->Revert();
}

bool TTextEdit::Event(const TRenderEvent& event)
{
    switch (event.Code) {
    case RE_LEFTDOWN:
        return OnPress(event);
    case RE_LEFTUP:
        return true;
    case RE_CHARACTER:
        return OnCharacter(event.Detail);
    case RE_KEY:
        return OnKey(event);
    case RE_FOCUSLOST:
        OnFocusLost();
        return true;
    case RE_ENTER:
    case RE_LEAVE:
        Hover = event.Code == RE_ENTER;
        if (Hover && !ReadOnly)
            Host.ShowPointer(*this, PS_TEXT);
        Redraw();
        return TRenderObject::Event(event);
    default:
        return TRenderObject::Event(event);
    }
}

bool TTextEdit::OnPress(const TRenderEvent& event)
{
    const uint32_t now = GetTickCount();
    const bool isDouble = PressCounts && IsFocused() && now - PressTime <= DoubleClickMilliseconds &&
                          IsStill(PressPoint, event.Point);
    PressTime = now;
    PressPoint = event.Point;
    PressCounts = !isDouble;
    const bool first = !IsFocused();
    // What was typed in a view that has gone went with it.
    if (first)
        Revert();
    TRenderer* renderer = GetRenderer();
    if (first)
        TakeFocus();
    else
        SetFocus(this, renderer);
    if (isDouble)
        SelectWord(FindIndex(event.Point[0]));
    else if (!first)
        MoveCaret(FindIndex(event.Point[0]), (GetKeyFlags() & KF_SHIFT) != 0);
    Select.From = event.Point;
    Select.Moved = false;
    Select.Begin(Host);
    return true;
}

void TTextEdit::TSelect::OnDrag(const TVector2& point, int keyFlags)
{
    (void)keyFlags;
    if (!Moved && IsStill(From, point))
        return;
    if (!Moved)
        Owner.MoveCaret(Owner.FindIndex(From[0]), false);
    Moved = true;
    Owner.MoveCaret(Owner.FindIndex(point[0]), true);
}

void TTextEdit::OnFocusLost()
{
    RemoveTick(this);
    Select.Cancel();
    PressCounts = false;
    // The window may lose the keyboard while the edit keeps its place as the one that gets it back.
    if (IsFocused())
        SelectAll();
    else
        SetRange(0, 0);
    EndInput();
}

bool TTextEdit::OnCharacter(int character)
{
    if (character < FirstCharacter || character > LastCharacter || !IsAllowed(static_cast<char>(character)))
        return true;
    const char text[2] = {static_cast<char>(character), 0};
    Insert(text);
    return true;
}

bool TTextEdit::OnKey(const TRenderEvent& event)
{
    const bool shift = (GetKeyFlags() & KF_SHIFT) != 0;
    const bool ctrl = (GetKeyFlags() & KF_CTRL) != 0;
    switch (event.Detail) {
    case KEY_LEFT:
    case KEY_RIGHT:
    case KEY_HOME:
    case KEY_END:
        return MoveByKey(event.Detail, shift, ctrl);
    case KEY_BACKSPACE:
    case KEY_DELETE:
        Erase(event.Detail, ctrl);
        return true;
    case KEY_ESCAPE:
        Select.Cancel();
        Revert();
        SelectAll();
        return true;
    case KEY_RETURN:
        SelectAll();
        EndInput();
        return true;
    case KEY_TAB:
        WalkFields(*this, shift);
        return true;
    default:
        return TRenderObject::Event(event);
    }
}

bool TTextEdit::MoveByKey(int key, bool select, bool byWord)
{
    int first = 0;
    int end = 0;
    GetSelection(first, end);
    // Without a step, an arrow leaves a selection at its side.
    const bool leaves = HasSelection() && !select && !byWord;
    switch (key) {
    case KEY_HOME:
        MoveCaret(0, select);
        break;
    case KEY_END:
        MoveCaret(Text.Length(), select);
        break;
    case KEY_LEFT:
        MoveCaret(leaves ? first : byWord ? FindWord(Caret, -1) : Caret - 1, select);
        break;
    default:
        MoveCaret(leaves ? end : byWord ? FindWord(Caret, 1) : Caret + 1, select);
        break;
    }
    return true;
}

void TTextEdit::MoveCaret(int caret, bool select)
{
    const int length = Text.Length();
    caret = caret < 0 ? 0 : caret > length ? length : caret;
    SetRange(select ? Anchor : caret, caret);
}

void TTextEdit::SetRange(int anchor, int caret)
{
    Anchor = anchor;
    Caret = caret;
    BlinkStart = GetTickCount();
    ScrollToCaret();
    Redraw();
}

// Backwards to the beginning of a word, forwards to the beginning of the next.
int TTextEdit::FindWord(int from, int step) const
{
    const char* text = Text.Print();
    const int length = Text.Length();
    int at = from;
    if (step < 0) {
        while (at > 0 && text[at - 1] == ' ')
            --at;
        const int kind = at > 0 ? GetCharacterKind(text[at - 1]) : 0;
        while (at > 0 && GetCharacterKind(text[at - 1]) == kind)
            --at;
        return at;
    }
    const int kind = at < length ? GetCharacterKind(text[at]) : 0;
    while (at < length && GetCharacterKind(text[at]) == kind)
        ++at;
    while (at < length && text[at] == ' ')
        ++at;
    return at;
}

void TTextEdit::SelectWord(int at)
{
    const char* text = Text.Print();
    const int length = Text.Length();
    if (length == 0)
        return;
    // At the end of a word, it is the one before that was meant.
    const int in =
        at == length || (at > 0 && !IsWordCharacter(text[at]) && IsWordCharacter(text[at - 1])) ? at - 1 : at;
    const int kind = GetCharacterKind(text[in]);
    int first = in;
    int end = in + 1;
    while (first > 0 && GetCharacterKind(text[first - 1]) == kind)
        --first;
    while (end < length && GetCharacterKind(text[end]) == kind)
        ++end;
    SetRange(first, end);
}

void TTextEdit::Erase(int key, bool byWord)
{
    if (ReadOnly)
        return;
    int first = 0;
    int end = 0;
    GetSelection(first, end);
    if (first == end && key == KEY_BACKSPACE)
        first = byWord ? FindWord(first, -1) : first > 0 ? first - 1 : 0;
    else if (first == end)
        end = byWord ? FindWord(end, 1) : end < Text.Length() ? end + 1 : end;
    if (first != end)
        Replace(first, end, "");
}

bool TTextEdit::IsAllowed(char character) const
{
    if (character < FirstCharacter || character > LastCharacter)
        return false;
    return Allowed == nullptr || strchr(Allowed, character) != nullptr;
}

// In place of the selection.
void TTextEdit::Insert(const char* text)
{
    if (ReadOnly)
        return;
    int first = 0;
    int end = 0;
    GetSelection(first, end);
    const int length = static_cast<int>(strlen(text));
    if (Text.Length() - (end - first) + length > MaxLength) {
        Host.Warn();
        return;
    }
    Replace(first, end, text);
}

void TTextEdit::Replace(int first, int end, const char* text)
{
    TString before;
    before.Left(Text.Print(), first);
    TString after = Text.Print() + end;
    Text.Format("%s%s%s", before.Print(), text, after.Print());
    const int caret = first + static_cast<int>(strlen(text));
    SetRange(caret, caret);
}

// From the left of the text.
float TTextEdit::GetPosition(int index) const
{
    if (!Font.IsCreated())
        return 0.0f;
    TString part;
    part.Left(Text.Print(), index);
    TVector2 size;
    Font.GetTextSize(part.Print(), size);
    return size[0];
}

// The gap between two characters that is nearest to a place in the edit.
int TTextEdit::FindIndex(float x) const
{
    const float wanted = x - TextInset + Scroll;
    const int length = Text.Length();
    float left = 0.0f;
    for (int i = 0; i < length; ++i) {
        const char text[2] = {Text.Print()[i], 0};
        TVector2 size;
        Font.GetTextSize(text, size);
        if (wanted < left + size[0] * 0.5f)
            return i;
        left += size[0];
    }
    return length;
}

void TTextEdit::ScrollToCaret()
{
    const float room = Size[0] - 2 * TextInset;
    const float caret = GetPosition(Caret);
    const float rest = GetPosition(Text.Length()) - room;
    if (caret - Scroll > room)
        Scroll = caret - room;
    if (caret < Scroll)
        Scroll = caret;
    if (Scroll > rest)
        Scroll = rest;
    if (Scroll < 0)
        Scroll = 0;
}

void TTextEdit::Redraw()
{
    Host.RedrawGraphs();
}

void TTextEdit::StartBlinking()
{
    BlinkStart = GetTickCount();
    BlinkShown = true;
    AddTick(this);
}

bool TTextEdit::IsBlinkOn() const
{
    return (GetTickCount() - BlinkStart) / BlinkMilliseconds % 2 == 0;
}

void TTextEdit::Tick(TRenderer* renderer)
{
    (void)renderer;
    if (!IsFocused()) {
        // The view with the focus has gone: what was typed there goes too.
        RemoveTick(this);
        Revert();
        SetRange(0, 0);
        return;
    }
    if (IsBlinkOn() == BlinkShown)
        return;
    BlinkShown = !BlinkShown;
    Redraw();
}

void TTextEdit::Render(TRenderer& renderer)
{
    int look = ReadOnly ? CL_DISABLED : Hover ? CL_HOVER : 0;
    if (IsFocused())
        look |= CL_FOCUSED;
    Box.RenderField(renderer, look);
    const bool keyboard = IsFocused() && renderer.GetWindow() != nullptr && renderer.GetWindow()->HasFocus();
    // After a window has got the keyboard back.
    if (keyboard && !ReadOnly)
        AddTick(this);
    // Clipping costs much more than the text, and most texts have room.
    const bool clips = GetPosition(Text.Length()) > Size[0] - 2 * TextInset;
    if (clips)
        renderer.PushWindow(TVector2(TextInset - 1, 1), Size - TVector2(TextInset - 1, 1));
    RenderMarks(renderer, keyboard);
    DrawControlText(renderer, Font, TVector2(TextInset - Scroll, GetTextTop(Font, Size[1])), Text.Print(),
                    GetControlInk(0));
    if (clips)
        renderer.PopWindow();
}

// The selection and the caret.
void TTextEdit::RenderMarks(TRenderer& renderer, bool keyboard)
{
    constexpr float Margin = 3.0f;
    if (!IsFocused())
        return;
    if (HasSelection()) {
        int first = 0;
        int end = 0;
        GetSelection(first, end);
        const float left = TextInset - Scroll;
        renderer.SetColour(GetSelectionColour());
        renderer.DrawRectangle(TVector2(left + GetPosition(first), Margin),
                               TVector2(left + GetPosition(end), Size[1] - Margin));
    }
    BlinkShown = IsBlinkOn();
    if (!keyboard || ReadOnly || !BlinkShown)
        return;
    const float x = TextInset - Scroll + GetPosition(Caret);
    renderer.SetColour(GetControlInk(0));
    renderer.DrawRectangle(TVector2(x - 0.5f, Margin),
                           TVector2(x - 0.5f + GetPixelLength(renderer, 1, 1), Size[1] - Margin));
}

void TTextEdit::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Size;
}

bool TTextEdit::Describe(TAccessibleTraits& traits)
{
    traits.Role = AR_TEXT;
    traits.Value = Text;
    traits.IsReadOnly = ReadOnly;
    traits.TakesFocus = !ReadOnly;
    traits.HasFocus = IsFocused();
    return true;
}

// The last thing that is done, as the change may take the edit away.
bool TTextEdit::EnterValue(const char* text)
{
    if (ReadOnly)
        return false;
    SelectAll();
    Insert(text);
    EndInput();
    return true;
}

void TTextEdit::TakeKeys(TRenderer* renderer)
{
    SetFocus(this, renderer);
    if (!IsFocused())
        return;
    SelectAll();
    StartBlinking();
}
