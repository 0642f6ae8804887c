#include "particles/cindermill/interface/particles/previewclock.h"

#include "library/system/clock.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/cindermill/main/document.h"

namespace {

constexpr float SpeedFactors[TPreviewClock::NumSpeeds] = {0.125f, 0.25f, 0.5f, 1, 2, 4};
constexpr const char* SpeedTexts[TPreviewClock::NumSpeeds] = {"1/8x", "1/4x", "1/2x", "1x", "2x", "4x"};
constexpr float MaxSeconds = TPreviewClock::MaxStep / 1000.0f;
// Two times that differ by less are one.
constexpr float SameTime = 0.0005f;
// Where nothing must be repeated a way is run in longer steps.
constexpr float SeekStep = 0.02f;
// What of an idle pass a long way may take.
constexpr uint64_t SeekSlice = 15000000;
constexpr double NanosecondsPerMillisecond = 1e6;

} // namespace

const char* TPreviewClock::GetSpeedText(int speed)
{
    return SpeedTexts[speed];
}

void TPreviewClock::Start(TDocument& document, uint32_t now)
{
    Doc = &document;
    LastTick = now;
    NumStarts = document.GetEngine().GetNumStarts();
}

bool TPreviewClock::Tick(uint32_t now)
{
    const uint32_t elapsed = now - LastTick;
    LastTick = now;
    const uint64_t begin = GetPerformanceCounter();
    NumFrames = 0;
    const bool ran = RunTick(elapsed < MaxStep ? elapsed : MaxStep);
    if (NumFrames > 0) {
        const double taken = static_cast<double>(GetPerformanceCounter() - begin);
        FrameCost = static_cast<float>(taken / NanosecondsPerMillisecond / NumFrames);
    }
    return ran;
}

bool TPreviewClock::RunTick(uint32_t elapsed)
{
    if (Seeking)
        return RunSeek();
    if (Held || !IsRunning())
        return false;
    SoughtFromStart = false;
    const float seconds = static_cast<float>(elapsed / 1000.0) * SpeedFactors[Speed];
    return SeedKept ? RunSteps(seconds) : RunFor(seconds);
}

// At least one frame, and none longer than the longest.
bool TPreviewClock::RunFor(float seconds)
{
    float left = seconds;
    do {
        const float step = left < MaxSeconds ? left : MaxSeconds;
        if (!Run(step))
            return false;
        left -= step;
        if (IsLoopOver()) {
            Restart();
            return true;
        }
    } while (left > SameTime);
    return true;
}

bool TPreviewClock::RunSteps(float seconds)
{
    NoticeStart();
    Pending += seconds;
    const bool due = Pending >= SingleStep - SameTime;
    while (Pending >= SingleStep - SameTime) {
        if (!Run(SingleStep))
            return false;
        Pending -= SingleStep;
        if (IsLoopOver()) {
            Restart();
            return true;
        }
    }
    return due;
}

bool TPreviewClock::RunSeek()
{
    const uint64_t end = GetPerformanceCounter() + SeekSlice;
    const float step = SeedKept ? SingleStep : SeekStep;
    bool ran = false;
    do {
        const float before = GetTime();
        const float left = SeekTime - before;
        Seeking = HasEffect() && left >= (SeedKept ? SingleStep / 2 : SameTime);
        if (!Seeking)
            break;
        ran = Run(SeedKept || left > step ? step : left);
        // The clock of an effect that has run for days does not see a frame.
        Seeking = ran && GetTime() > before;
    } while (Seeking && GetPerformanceCounter() < end);
    return ran;
}

void TPreviewClock::Restart()
{
    Doc->RebuildSchedule(true);
    NoticeStart();
}

bool TPreviewClock::IsLoopOver() const
{
    return MayRestart && Loop > 0 && HasEffect() && GetTime() >= Loop - SameTime;
}

// Whoever started the engine.
void TPreviewClock::NoticeStart()
{
    const unsigned starts = Doc->GetEngine().GetNumStarts();
    if (NumStarts == starts)
        return;
    NumStarts = starts;
    Pending = 0;
    SoughtFromStart = false;
    Random.Restart(Seed);
}

void TPreviewClock::Update()
{
    Seeking = false;
    Doc->RebuildSchedule(false);
}

bool TPreviewClock::Step()
{
    Paused = true;
    Seeking = false;
    return HasEffect() && Run(SingleStep);
}

void TPreviewClock::SetSpeed(int speed)
{
    Speed = speed < 0 ? 0 : speed;
    if (Speed >= NumSpeeds)
        Speed = NumSpeeds - 1;
}

void TPreviewClock::KeepSeed(bool keep)
{
    SeedKept = keep;
    Seeking = false;
    if (HasEffect())
        Restart();
}

void TPreviewClock::ChangeSeed()
{
    ++Seed;
    Seeking = false;
    if (HasEffect())
        Restart();
}

void TPreviewClock::Seek(float time)
{
    if (!HasEffect() || !(time >= 0))
        return;
    SeekTime = time < MostSeconds ? time : MostSeconds;
    time = SeekTime;
    Seeking = true;
    if (time > GetTime() - SameTime)
        return;
    Restart();
    SoughtFromStart = true;
}

bool TPreviewClock::HasEffect() const
{
    return Doc->GetEngine().IsInited();
}

bool TPreviewClock::IsRunning() const
{
    return HasEffect() && !Paused;
}

unsigned TPreviewClock::GetNumStarts() const
{
    return Doc->GetEngine().GetNumStarts();
}

float TPreviewClock::GetTime() const
{
    return Doc->GetEngine().GetTime();
}

void TPreviewClock::GetTimeText(TString& text) const
{
    text.Format("%.2f", static_cast<double>(GetTime()));
}

bool TPreviewClock::Run(float dt)
{
    NoticeStart();
    const bool repeats = SeedKept || SoughtFromStart;
    TErrorList errors;
    if (repeats)
        Random.Enter();
    const bool done = Doc->UpdateEngine(dt, errors);
    if (repeats)
        Random.Leave();
    ++NumFrames;
    if (done)
        return true;
    Seeking = false;
    DisplayErrors("Schedule errors", errors);
    return false;
}
