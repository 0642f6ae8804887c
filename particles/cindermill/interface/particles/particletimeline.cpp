#include "particles/cindermill/interface/particles/particletimeline.h"

#include "library/system/clock.h"
#include "library/wimp/gdi/gdibitmap.h"

static TWindowClass TimelineClass("cindermill_particlewindow_timeline");
static constexpr TGDIColour TimelineBackground = 0xF0F0F0;

// True of an effect that was never started, and of one whose faults have stopped it.
static constexpr const char* HintText = "Not running. Update starts the effect, or lists what it lacks.";

bool TParticleTimeline::Create(TWindow* owner, TDocument& document)
{
    if (!TimelineClass.IsRegistered())
        TimelineClass.Register(0, TimelineBackground);
    Clock.Start(document, GetTickCount());
    TWindowParams params;
    params.Class = &TimelineClass;
    params.Owner = owner;
    params.Kind = WK_CHILD;
    if (!TWindow::Create(params) || !CreateControls())
        return false;
    Layout();
    ShowTime();
    return true;
}

bool TParticleTimeline::CreateControls()
{
    if (!UpdateButton.Create(this, ID_UPDATE, "Update", "update") ||
        !TimeLabel.Create(this, "Time:", "timelabel") || !TimeField.Create(this, ID_TIME, "time", true) ||
        !StepButton.Create(this, ID_STEP, "", "step") || !PauseButton.Create(this, ID_PAUSE, "", "pause") ||
        !PlayButton.Create(this, ID_PLAY, "", "play") || !Hint.Create(this, "", "hint"))
        return false;
    StepButton.SetIcon(PI_STEP, "Step");
    PauseButton.SetIcon(PI_PAUSE, "Pause");
    PlayButton.SetIcon(PI_PLAY, "Play");
    return true;
}

void TParticleTimeline::Layout()
{
    if (PlayButton.GetHandle() == nullptr)
        return;
    constexpr int margin = 4;
    constexpr int height = Height - 2 * margin;
    struct TPosition
    {
        TWimpControl* Control;
        int Width;
        int Gap;
    };
    const TPosition places[] = {{&UpdateButton, 80, 12}, {&TimeLabel, 38, 2},   {&TimeField, 72, 12},
                                {&StepButton, 28, 2},    {&PauseButton, 28, 2}, {&PlayButton, 28, 0}};
    int width = 0;
    int stripHeight = 0;
    GetSize(width, stripHeight);
    int x = margin;
    for (const TPosition& place : places) {
        place.Control->MoveTo(x, margin, place.Width, height);
        x += place.Width + place.Gap;
    }
    constexpr int hintGap = 16;
    x += hintGap;
    Hint.MoveTo(x, margin, width > x + margin ? width - margin - x : 0, height);
}

void TParticleTimeline::Tick()
{
    if (Clock.IsRunning())
        ShowTime();
    Clock.Tick(GetTickCount());
    ShowHint();
}

void TParticleTimeline::ShowTime()
{
    TString text;
    Clock.GetTimeText(text);
    TimeField.SetText(text);
}

void TParticleTimeline::ShowHint()
{
    const bool wanted = !Clock.HasEffect();
    if (wanted == IsHintShown)
        return;
    IsHintShown = wanted;
    Hint.SetText(wanted ? HintText : "");
}

bool TParticleTimeline::OnMessage(const TMessage& message)
{
    if (message.Type != MT_SIZE)
        return TWindow::OnMessage(message);
    Layout();
    return true;
}

void TParticleTimeline::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    if (code != CC_BUTTON) {
        TWindow::OnCommand(control, argument, code);
        return;
    }
    switch (argument) {
    case ID_UPDATE:
        Clock.Update();
        break;
    case ID_STEP:
        if (Clock.Step())
            ShowTime();
        break;
    case ID_PAUSE:
        Clock.TogglePause();
        break;
    case ID_PLAY:
        Clock.Play();
        break;
    default:
        break;
    }
    PauseButton.SetPressed(Clock.IsPaused());
    ShowHint();
}
