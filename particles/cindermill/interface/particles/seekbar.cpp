#include "particles/cindermill/interface/particles/seekbar.h"

#include "library/containers/string.h"

#include <cmath>
#include <cstdlib>

namespace {

constexpr TGDIFont LabelFont = {nullptr, 11, 400};
constexpr TGDIColour Background = 0xF0F0F0;
TWindowClass SeekClass("cindermill_particlewindow_seek", 0, Background);
constexpr TGDIColour TroughColour = 0xC8C8C8;
constexpr TGDIColour EdgeColour = 0x909090;
constexpr TGDIColour RunColour = 0x6A9BD0;
constexpr TGDIColour TargetColour = 0xD08A3A;
constexpr TGDIColour ThumbColour = 0xFCFCFC;
constexpr TGDIColour ThumbEdge = 0x505050;
constexpr TGDIColour FocusEdge = 0x1A5FA8;
constexpr TGDIColour TextColour = 0x404040;
constexpr int ThumbWidth = 8;
constexpr int TroughHeight = 6;
constexpr int MarkHeight = 3;
// Right of the trough, for the time at its end.
constexpr int LabelWidth = 42;
// For one of more characters than that.
constexpr int LongLabelWidth = 60;
constexpr int ShortLabel = 5;
constexpr int LabelGap = 6;
// Between two marks.
constexpr int MinMarkGap = 8;

} // namespace

bool TSeekBar::Create(TWindow* owner, int id)
{
    Id = id;
    TWindowParams params;
    params.Class = &SeekClass;
    params.Owner = owner;
    if (!TWindow::Create(params))
        return false;
    SetAccessible(&Access, "Time of the effect");
    SetSpokenName("Time of the effect");
    TakeTab();
    return true;
}

void TSeekBar::GetTrough(int& left, int& right) const
{
    int height = 0;
    GetSize(right, height);
    left = ThumbWidth / 2;
    TString label;
    GetLabel(label);
    right -= label.Length() > ShortLabel ? LongLabelWidth : LabelWidth;
}

void TSeekBar::GetLabel(TString& label) const
{
    constexpr float allDigits = 1000;
    const char* format = Range < allDigits ? "%.4g s" : "%.0f s";
    label.Format(Range < 1 ? "%.2f s" : format, static_cast<double>(Range));
}

int TSeekBar::GetPlace(float time) const
{
    int left = 0;
    int right = 0;
    GetTrough(left, right);
    const float part = time < Range ? time / Range : 1;
    return left + static_cast<int>(part * static_cast<float>(right - left) + 0.5f);
}

void TSeekBar::SetTime(float time, float range)
{
    const bool moved = range != Range || GetPlace(time) != GetPlace(Time);
    // What is told is finer than what is drawn.
    if (time != Time)
        ContentsChanged();
    Time = time;
    Range = range;
    if (moved)
        Redraw();
}

void TSeekBar::SetTarget(float time)
{
    const bool moved = (time < 0) != (Target < 0) || (time >= 0 && GetPlace(time) != GetPlace(Target));
    Target = time;
    if (moved)
        Redraw();
}

bool TSeekBar::OnMessage(const TMessage& message)
{
    switch (message.Type) {
    case MT_PAINT:
        Paint(*message.Context);
        return true;
    case MT_SIZE:
        Redraw();
        return true;
    case MT_LEFTDOWN:
        SetCapture();
        Dragged = true;
        Choose(message.X);
        return true;
    case MT_MOUSEMOVE:
        // Another program may have taken the release.
        if (Dragged && (message.Buttons & MB_LEFT) == 0)
            EndDrag();
        else if (Dragged)
            Choose(message.X);
        return true;
    case MT_LEFTUP:
    case MT_CAPTURELOST:
        if (Dragged)
            EndDrag();
        return true;
    case MT_KEYDOWN:
        // What is not the bar's is the preview's.
        return OnKey(message.Key) || (message.Key != KEY_TAB && Owner->OnMessage(message));
    case MT_CHAR:
        return Owner->OnMessage(message);
    case MT_FOCUSGAINED:
    case MT_FOCUSLOST:
        Redraw();
        return false;
    default:
        return TWindow::OnMessage(message);
    }
}

bool TSeekBar::OnKey(int key)
{
    constexpr float Steps = 50;
    constexpr float Leap = 10;
    const float from = Target >= 0 ? Target : Time;
    const float step = Range / Steps;
    switch (key) {
    case KEY_LEFT:
    case KEY_RIGHT:
        ChooseTime(from + (key == KEY_RIGHT ? step : -step));
        return true;
    case KEY_PAGEUP:
    case KEY_PAGEDOWN:
        ChooseTime(from + (key == KEY_PAGEUP ? Leap * step : -Leap * step));
        return true;
    default:
        return false;
    }
}

void TSeekBar::ChooseTime(float time)
{
    Chosen = time < 0 ? 0 : time > Range ? Range : time;
    Dragged = true;
    Report(Id, CC_EDITED);
    Dragged = false;
    Report(Id, CC_EDITED);
}

void TSeekAccess::ListItems(vector<TAccessibleItem>& items)
{
    TAccessibleItem item;
    item.Role = AR_SLIDER;
    item.Name = "Time of the effect";
    item.Value.Format("%.2f s", static_cast<double>(Bar.GetTime()));
    item.Number = static_cast<double>(Bar.GetTime());
    item.Most = static_cast<double>(Bar.GetRange());
    item.TakesFocus = true;
    item.HasFocus = Bar.HasFocus();
    item.IsLive = true;
    Bar.GetSize(item.Width, item.Height);
    items.push_back(item);
}

void TSeekAccess::FocusItem(int)
{
    Bar.TakeFocus();
}

bool TSeekAccess::EnterItem(int, const char* text)
{
    char* end = nullptr;
    const float time = std::strtof(text, &end);
    if (end == text || !std::isfinite(time) || time < 0)
        return false;
    Bar.ChooseTime(time);
    return true;
}

void TSeekBar::EndDrag()
{
    Dragged = false;
    ReleaseCapture();
    Report(Id, CC_EDITED);
}

void TSeekBar::Choose(double x)
{
    int left = 0;
    int right = 0;
    GetTrough(left, right);
    const double part = right > left ? (x - left) / (right - left) : 0;
    const double within = part < 0 ? 0 : part;
    Chosen = static_cast<float>((within < 1 ? within : 1) * static_cast<double>(Range));
    Report(Id, CC_EDITED);
}

void TSeekBar::Paint(TGDIContext& context) const
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    int left = 0;
    int right = 0;
    GetTrough(left, right);
    if (right <= left)
        return;
    const int top = (height - TroughHeight) / 2;
    const int place = GetPlace(Time);
    context.SetNoPen();
    context.SetBrush(TroughColour);
    context.Rectangle(left, top, right, top + TroughHeight);
    context.SetBrush(RunColour);
    context.Rectangle(left, top, place, top + TroughHeight);
    if (Target >= 0) {
        context.SetBrush(TargetColour);
        const int target = GetPlace(Target);
        context.Rectangle(place < target ? place : target, top, place < target ? target : place,
                          top + TroughHeight);
    }
    PaintMarks(context);
    if (HasFocus())
        context.FocusFrame(0, 0, width, height);
    context.SetPen(HasFocus() ? FocusEdge : ThumbEdge);
    context.SetBrush(ThumbColour);
    context.Rectangle(place - ThumbWidth / 2, top - 5, place + ThumbWidth / 2, top + TroughHeight + 5);
    TString label;
    GetLabel(label);
    int textWidth = 0;
    int textHeight = 0;
    context.SetFont(LabelFont);
    context.SetTextColour(TextColour);
    context.GetTextExtent(label, textWidth, textHeight);
    context.TextOut(right + LabelGap, (height - textHeight) / 2, label);
}

// One a second, or as many seconds as leave them apart.
void TSeekBar::PaintMarks(TGDIContext& context) const
{
    int left = 0;
    int right = 0;
    int width = 0;
    int height = 0;
    GetTrough(left, right);
    GetSize(width, height);
    const int top = (height + TroughHeight) / 2 + 1;
    int step = 1;
    while (static_cast<float>(right - left) * static_cast<float>(step) / Range < MinMarkGap)
        step *= 5;
    context.SetPen(EdgeColour);
    for (int second = 0; static_cast<float>(second) <= Range; second += step) {
        const int place = GetPlace(static_cast<float>(second));
        context.Line(place, top, place, top + MarkHeight);
    }
}
