#include "particles/cindermill/interface/particles/previewclock.h"

#include "particles/cindermill/main/displayerrors.h"
#include "particles/cindermill/main/document.h"

void TPreviewClock::Start(TDocument& document, uint32_t now)
{
    Doc = &document;
    LastTick = now;
}

bool TPreviewClock::Tick(uint32_t now)
{
    const uint32_t elapsed = now - LastTick;
    LastTick = now;
    if (!IsRunning())
        return false;
    return Run(static_cast<float>((elapsed < MaxStep ? elapsed : MaxStep) / 1000.0));
}

void TPreviewClock::Update()
{
    Doc->RebuildSchedule(false);
}

bool TPreviewClock::Step()
{
    Paused = true;
    return HasEffect() && Run(SingleStep);
}

bool TPreviewClock::HasEffect() const
{
    return Doc->GetEngine().IsInited();
}

bool TPreviewClock::IsRunning() const
{
    return HasEffect() && !Paused;
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
    TErrorList errors;
    if (Doc->UpdateEngine(dt, errors))
        return true;
    DisplayErrors("Schedule errors", errors);
    return false;
}
