#pragma once

#include "library/wimp/controls/button.h"
#include "library/wimp/controls/edit.h"
#include "library/wimp/controls/label.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/particles/previewclock.h"

// The strip below the preview, with the transport's controls.
class TParticleTimeline : public TWindow
{
public:
    // In pixels.
    static constexpr int Height = 32;

    // False if the window system refuses.
    bool Create(TWindow* owner, TDocument& document);
    // One idle pass.
    void Tick();
    bool IsPaused() const { return Clock.IsPaused(); }

    bool OnMessage(const TMessage& message) override;
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

private:
    enum TControlId
    {
        ID_UPDATE = 1001,
        ID_TIME = 1002,
        ID_STEP = 1003,
        ID_PAUSE = 1004,
        ID_PLAY = 1005
    };

    bool CreateControls();
    void Layout();
    void ShowTime();
    // What to do about a preview without an effect stands beside the controls, as long as it is one.
    void ShowHint();

    TButton UpdateButton;
    TLabel TimeLabel;
    TEdit TimeField;
    TButton StepButton;
    TButton PauseButton;
    TButton PlayButton;
    TLabel Hint;
    bool IsHintShown = false;
    TPreviewClock Clock;
};
