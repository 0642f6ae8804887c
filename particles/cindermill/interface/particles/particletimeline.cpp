#include "particles/cindermill/interface/particles/particletimeline.h"

#include "library/system/clock.h"
#include "library/wimp/gdi/gdibitmap.h"
#include "particles/cindermill/interface/particles/previewcommands.h"
#include "particles/cindermill/main/document.h"

#include <cmath>
#include <cstdlib>

namespace {

constexpr TGDIColour TimelineBackground = 0xF0F0F0;
TWindowClass TimelineClass("cindermill_particlewindow_timeline", 0, TimelineBackground);

// True of an effect that was never started, and of one whose faults have stopped it.
// The longest that there is room for is shown.
constexpr const char* HintTexts[] = {"Not running. Update starts the effect, or lists what it lacks.",
                                     "Not running. Press Update.", "Not running"};

constexpr int Margin = 4;
constexpr int ControlHeight = TParticleTimeline::Height - 2 * Margin;
constexpr int SpeedWidth = 46;
constexpr int MenuWidth = 28;
// What is narrower than that cannot be dragged any more.
constexpr int MinSeekWidth = 90;
// From this width of the strip on there is room for all.
constexpr int RoomyWidth = 600;
// The bar's end, in seconds.
constexpr float Ranges[] = {5, 10, 20, 30, 60, 120, 300, 600};

float FindRange(float furthest)
{
    for (const float range : Ranges)
        if (furthest <= range)
            return range;
    constexpr float hour = 3600;
    return std::ceil(furthest / hour) * hour;
}

} // namespace

bool TParticleTimeline::Create(TWindow* owner, TDocument& document)
{
    Clock.Start(document, GetTickCount());
    TWindowParams params;
    params.Class = &TimelineClass;
    params.Owner = owner;
    params.Kind = WK_CHILD;
    if (!TWindow::Create(params) || !CreateControls() || !CreateSeekControls())
        return false;
    SetTips();
    Layout();
    ShowTime();
    ShowSeek();
    return true;
}

bool TParticleTimeline::CreateControls()
{
    if (!UpdateButton.Create(this, ID_UPDATE, "Update", "update") ||
        !TimeLabel.Create(this, "Time:", "timelabel") || !TimeField.Create(this, ID_TIME, "time") ||
        !StepButton.Create(this, ID_STEP, "", "step") || !PauseButton.Create(this, ID_PAUSE, "", "pause") ||
        !PlayButton.Create(this, ID_PLAY, "", "play") || !Hint.Create(this, "", "hint"))
        return false;
    StepButton.SetIcon(PI_STEP, "Step");
    PauseButton.SetIcon(PI_PAUSE, "Pause");
    PlayButton.SetIcon(PI_PLAY, "Play");
    return true;
}

bool TParticleTimeline::CreateSeekControls()
{
    return SeekBar.Create(this, ID_SEEK) &&
           SpeedButton.Create(this, ID_SPEED, TPreviewClock::GetSpeedText(TPreviewClock::NormalSpeed),
                              "speed") &&
           MenuButton.Create(this, ID_MENU, "...", "previewmenu");
}

void TParticleTimeline::SetTips()
{
    UpdateButton.SetSpokenName("Update");
    TimeField.SetSpokenName("Time");
    StepButton.SetSpokenName("Step");
    PauseButton.SetSpokenName("Pause");
    PlayButton.SetSpokenName("Play");
    MenuButton.SetSpokenName("Preview menu");
    ShowSpeed();
    UpdateButton.SetTip("Starts the effect from time 0 (Home)");
    TimeField.SetTip("Seconds. Type a time and press Return to run the effect up to there");
    StepButton.SetTip("Step by a hundredth of a second (.)");
    PauseButton.SetTip("Pause (Space)");
    PlayButton.SetTip("Play (Space)");
    SeekBar.SetTip("Drag to run the effect up to another time");
    SpeedButton.SetTip("How fast the effect runs (+ and -)");
    MenuButton.SetTip("Loop, views, backgrounds, budget (right click in the view)");
}

void TParticleTimeline::Layout()
{
    if (MenuButton.GetHandle() == nullptr)
        return;
    int width = 0;
    int stripHeight = 0;
    GetSize(width, stripHeight);
    LayoutControls(width, width < RoomyWidth);
}

// In a narrow strip the bar has what the others can do without.
void TParticleTimeline::LayoutControls(int width, bool narrow)
{
    struct TPosition
    {
        TWimpControl* Control;
        int Width;
        int Gap;
    };
    const int gap = narrow ? 6 : 12;
    const TPosition places[] = {{&UpdateButton, narrow ? 60 : 80, gap},
                                {&TimeLabel, narrow ? 0 : 38, narrow ? 0 : 2},
                                {&TimeField, narrow ? 62 : 72, gap},
                                {&StepButton, 28, 2},
                                {&PauseButton, 28, 2},
                                {&PlayButton, 28, 0}};
    int x = Margin;
    for (const TPosition& place : places) {
        place.Control->MoveTo(x, Margin, place.Width, ControlHeight);
        x += place.Width + place.Gap;
    }
    TimeLabel.Show(!narrow);
    LayoutRest(x, narrow ? gap : 16, width);
}

// The bar takes what is left, and the hint its place. What has no room gives way: the menu has all of it.
void TParticleTimeline::LayoutRest(int x, int wideGap, int width)
{
    constexpr int gap = 4;
    MenuLeft = width - Margin - MenuWidth;
    SpeedLeft = MenuLeft - gap - SpeedWidth;
    MenuButton.MoveTo(MenuLeft, Margin, MenuWidth, ControlHeight);
    SpeedButton.MoveTo(SpeedLeft, Margin, SpeedWidth, ControlHeight);
    const int left = x + wideGap;
    const int bar = SpeedLeft - gap - left;
    SeekBar.MoveTo(left, Margin, bar > 0 ? bar : 0, ControlHeight);
    const int room = MenuLeft - gap - left;
    const char* hint = nullptr;
    for (const char* text : HintTexts)
        if (hint == nullptr && Hint.GetTextWidth(text) <= room)
            hint = text;
    Hint.SetText(IsHintShown && hint != nullptr ? hint : "");
    Hint.MoveTo(left, Margin, room > 0 ? room : 0, ControlHeight);
    MenuButton.Show(MenuLeft >= x + gap);
    SpeedButton.Show(!IsHintShown && SpeedLeft >= x + gap);
    SeekBar.Show(!IsHintShown && bar >= MinSeekWidth);
    // The view tells as much, where this has no room.
    Hint.Show(IsHintShown && hint != nullptr);
}

void TParticleTimeline::Tick()
{
    const unsigned starts = Clock.GetNumStarts();
    if (Clock.IsRunning() || starts != ShownStart)
        ShowTime();
    ShownStart = starts;
    if (IsTyping && !TimeField.HasFocus())
        LeaveTime();
    const bool sought = Clock.IsSeeking();
    Clock.Tick(GetTickCount());
    if (sought && !Clock.IsSeeking())
        ShowTime();
    ShowSeek();
    ShowHint();
}

void TParticleTimeline::ShowTime()
{
    if (IsTyping)
        return;
    TString text;
    Clock.GetTimeText(text);
    TimeField.SetText(text);
    // What is typed now takes the place of a time that may go on.
    if (TimeField.HasFocus())
        TimeField.SelectAll();
}

void TParticleTimeline::ShowSeek()
{
    const float time = Clock.GetTime();
    const float reached = Clock.IsSeeking() ? Clock.GetSeekTime() : time;
    Furthest = reached > Furthest ? reached : Furthest;
    SeekBar.SetTime(time, Clock.GetLoop() > 0 ? Clock.GetLoop() : FindRange(Furthest));
    SeekBar.SetTarget(Clock.IsSeeking() ? Clock.GetSeekTime() : -1);
}

void TParticleTimeline::ShowHint()
{
    const bool wanted = !Clock.HasEffect();
    if (wanted == IsHintShown)
        return;
    IsHintShown = wanted;
    Layout();
}

void TParticleTimeline::ShowClock()
{
    PauseButton.SetPressed(Clock.IsPaused());
    ShowSpeed();
    ShowTime();
    ShowSeek();
    ShowHint();
}

void TParticleTimeline::Restart()
{
    Furthest = 0;
    Clock.Update();
    ShowClock();
}

void TParticleTimeline::Step()
{
    Clock.Step();
    ShowClock();
}

void TParticleTimeline::TogglePause()
{
    Clock.TogglePause();
    PauseButton.SetPressed(Clock.IsPaused());
}

void TParticleTimeline::SetSpeed(int speed)
{
    Clock.SetSpeed(speed);
    ShowSpeed();
}

void TParticleTimeline::ShowSpeed()
{
    const char* text = TPreviewClock::GetSpeedText(Clock.GetSpeed());
    SpeedButton.SetText(text);
    SpeedButton.SetSpokenName(TempFormat("Speed %s", text));
}

void TParticleTimeline::Seek(float time)
{
    Clock.Seek(time);
    ShowSeek();
}

bool TParticleTimeline::OnMessage(const TMessage& message)
{
    switch (message.Type) {
    case MT_SIZE:
        Layout();
        return true;
    case MT_KEYDOWN:
        return OnKey(message.Key) || (Commands != nullptr && Commands->OnPreviewKey(message));
    case MT_CHAR:
        return Commands != nullptr && Commands->OnPreviewKey(message);
    default:
        return TWindow::OnMessage(message);
    }
}

// The time field leaves these keys.
bool TParticleTimeline::OnKey(int key)
{
    if (!TimeField.HasFocus() || (key != KEY_RETURN && key != KEY_ESCAPE))
        return false;
    if (key == KEY_RETURN && IsTyping)
        EnterTime();
    LeaveTime();
    if (Commands != nullptr)
        Commands->FocusView();
    return true;
}

// A text that is no number puts the shown time back.
void TParticleTimeline::EnterTime()
{
    TString text;
    TimeField.GetText(text);
    char* end = nullptr;
    const float time = std::strtof(text.Print(), &end);
    if (end != text.Print() && *end == 0 && std::isfinite(time) && time >= 0)
        Clock.Seek(time);
}

void TParticleTimeline::LeaveTime()
{
    IsTyping = false;
    ShowTime();
    ShowSeek();
}

void TParticleTimeline::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    if (code == CC_BUTTON)
        OnButton(static_cast<int>(argument));
    else if (code == CC_EDITED)
        OnEdited(static_cast<int>(argument));
    else
        TWindow::OnCommand(control, argument, code);
}

void TParticleTimeline::OnButton(int id)
{
    // A time that was being typed is given up.
    IsTyping = false;
    switch (id) {
    case ID_UPDATE:
        Restart();
        return;
    case ID_STEP:
        Step();
        return;
    case ID_PAUSE:
        TogglePause();
        break;
    case ID_PLAY:
        Clock.Play();
        break;
    case ID_SPEED:
        if (Commands != nullptr)
            Commands->OpenSpeedMenu(*this, SpeedLeft, 0);
        return;
    case ID_MENU:
        if (Commands != nullptr)
            Commands->OpenPreviewMenu(*this, MenuLeft, 0);
        return;
    default:
        break;
    }
    PauseButton.SetPressed(Clock.IsPaused());
    ShowHint();
}

void TParticleTimeline::OnEdited(int id)
{
    if (id == ID_TIME) {
        IsTyping = true;
        return;
    }
    Clock.Hold(SeekBar.IsDragged());
    if (SeekBar.IsDragged())
        Seek(SeekBar.GetChosen());
}
