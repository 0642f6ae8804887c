#include "particles/cindermill/interface/controls/combobox.h"

#include "library/containers/append.h"
#include "library/containers/assertion.h"
#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/controlhost.h"
#include "particles/cindermill/interface/controls/fieldwalk.h"

namespace {

constexpr float ComboInset = 5.0f;
constexpr float ArrowRoom = 14.0f;
constexpr float ComboArrow = 7.0f;

char ToLowerCase(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

TComboBox::TComboBox(TControlHost& host) : Host(host), DropDown(host, *this) {}

TComboBox::~TComboBox() = default;

void TComboBox::Build(const TVector2& size, float fontSize)
{
    Size = size;
    Font.Create(ControlFont, fontSize);
    Box.Build(TVector2(0, 0), size);
    TouchBounds();
}

void TComboBox::Clear()
{
    CloseList();
    Items.clear();
    Selection = -1;
    Host.RedrawGraphs();
}

void TComboBox::AddString(const char* text, int data)
{
    TItem item;
    item.Text = text;
    item.Data = data;
    Append(Items, item);
    Host.RedrawGraphs();
}

void TComboBox::SetSelection(int selection)
{
    ASSERT(selection >= -1 && selection < Items.size());
    if (selection == Selection)
        return;
    Selection = selection;
    Host.RedrawGraphs();
}

void TComboBox::SetEnabled(bool enabled)
{
    if (enabled == Enabled)
        return;
    Enabled = enabled;
    CloseList();
    Host.RedrawGraphs();
}

// The last thing that is done, as the change may take the combo box away.
void TComboBox::Choose(int selection)
{
    CloseList();
    if (selection < 0 || selection >= Items.size() || selection == Selection)
        return;
    Selection = selection;
    Host.RedrawGraphs();
    TellParent(RE_VALUECHANGED);
}

bool TComboBox::Event(const TRenderEvent& event)
{
    switch (event.Code) {
    case RE_LEFTDOWN:
        return OnPress(event);
    case RE_LEFTUP:
        return Enabled || TRenderObject::Event(event);
    case RE_ENTER:
    case RE_LEAVE:
        Hover = event.Code == RE_ENTER;
        if (Hover && Enabled)
            Host.ShowPointer(*this, PS_HAND);
        Host.RedrawGraphs();
        return TRenderObject::Event(event);
    case RE_WHEEL:
        return DropDown.OnWheel(event.Detail) || TRenderObject::Event(event);
    case RE_KEY:
        return OnKey(event);
    case RE_CHARACTER:
        return OnCharacter(event);
    case RE_FOCUSLOST:
        CloseList();
        Host.RedrawGraphs();
        return true;
    default:
        return TRenderObject::Event(event);
    }
}

bool TComboBox::OnPress(const TRenderEvent& event)
{
    if (!Enabled)
        return TRenderObject::Event(event);
    const bool wasOpen = IsOpen();
    SetFocus(this, GetRenderer());
    if (wasOpen)
        CloseList();
    else
        DropDown.Open();
    return true;
}

int TComboBox::FindByKey(int key, int from) const
{
    const int last = Items.size() - 1;
    int to = from;
    switch (key) {
    case KEY_UP:
        to = from - 1;
        break;
    case KEY_DOWN:
        to = from + 1;
        break;
    case KEY_PAGEUP:
        to = from - TComboDropDown::MaxRows;
        break;
    case KEY_PAGEDOWN:
        to = from + TComboDropDown::MaxRows;
        break;
    case KEY_HOME:
        to = 0;
        break;
    case KEY_END:
        to = last;
        break;
    default:
        return -1;
    }
    return to < 0 ? 0 : to > last ? last : to;
}

bool TComboBox::OnKey(const TRenderEvent& event)
{
    const int key = event.Detail;
    if (!Enabled)
        return TRenderObject::Event(event);
    if (key == KEY_ESCAPE && IsOpen()) {
        CloseList();
        return true;
    }
    if (key == KEY_RETURN) {
        if (IsOpen())
            Choose(DropDown.GetMarked());
        else
            DropDown.Open();
        return true;
    }
    if (key == KEY_TAB) {
        WalkFields(*this, (GetKeyFlags() & KF_SHIFT) != 0);
        return true;
    }
    const int to = FindByKey(key, IsOpen() ? DropDown.GetMarked() : Selection);
    if (to < 0)
        return TRenderObject::Event(event);
    if (IsOpen())
        DropDown.SetMarked(to);
    else
        Choose(to);
    return true;
}

// To the next text that begins with it.
bool TComboBox::OnCharacter(const TRenderEvent& event)
{
    const int count = Items.size();
    if (!Enabled || event.Detail <= ' ' || event.Detail > '~')
        return TRenderObject::Event(event);
    const char wanted = ToLowerCase(static_cast<char>(event.Detail));
    const int from = IsOpen() ? DropDown.GetMarked() : Selection;
    for (int i = 1; i <= count; ++i) {
        const int at = (from + i) % count;
        if (ToLowerCase(Items[at].Text.Print()[0]) != wanted)
            continue;
        if (IsOpen())
            DropDown.SetMarked(at);
        else
            Choose(at);
        break;
    }
    return true;
}

void TComboBox::Render(TRenderer& renderer)
{
    int look = Enabled ? 0 : CL_DISABLED;
    if (Hover)
        look |= CL_HOVER;
    if (IsOpen())
        look |= CL_PRESSED;
    if (GetFocus() == this)
        look |= CL_FOCUSED;
    Box.RenderButton(renderer, look);
    const TVector4 ink = GetControlInk(look);
    DrawArrow(renderer, TVector2(Size[0] - ArrowRoom * 0.5f - 1, Size[1] * 0.5f), ComboArrow, false, ink);
    if (Selection < 0)
        return;
    TString shown;
    FitText(Font, Items[Selection].Text.Print(), Size[0] - ArrowRoom - ComboInset, shown);
    DrawControlText(renderer, Font, TVector2(ComboInset, GetTextTop(Font, Size[1])), shown.Print(), ink);
}

void TComboBox::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Size;
}

bool TComboBox::Describe(TAccessibleTraits& traits)
{
    traits.Role = AR_CHOICE;
    if (Selection >= 0)
        traits.Value = Items[Selection].Text;
    traits.IsEnabled = Enabled;
    traits.TakesFocus = Enabled;
    traits.HasFocus = GetFocus() == this;
    return true;
}

bool TComboBox::EnterValue(const char* text)
{
    for (int i = 0; Enabled && i < Items.size(); ++i)
        if (Items[i].Text.Compare(text, false) == 0) {
            Choose(i);
            return true;
        }
    return false;
}
