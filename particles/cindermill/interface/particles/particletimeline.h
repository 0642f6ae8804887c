#pragma once

#include "library/wimp/controls/button.h"
#include "library/wimp/controls/edit.h"
#include "library/wimp/controls/label.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/particles/previewclock.h"
#include "particles/cindermill/interface/particles/seekbar.h"

class TPreviewCommands;

// The strip below the preview, with the transport's controls.
class TParticleTimeline : public TWindow
{
public:
    // In pixels.
    static constexpr int Height = 32;

    // False if the window system refuses.
    bool Create(TWindow* owner, TDocument& document);
    // Who opens the menus; null for none.
    void SetCommands(TPreviewCommands* commands) { Commands = commands; }
    // One idle pass.
    void Tick();
    bool IsPaused() const { return Clock.IsPaused(); }
    TPreviewClock& GetClock() { return Clock; }
    // What the keys and the menu do as well as the controls.
    void Restart();
    void Step();
    void TogglePause();
    void SetSpeed(int speed);
    // The effect stands at a time of its own choice next.
    void Seek(float time);
    // After another hand than these controls has changed the clock.
    void ShowClock();

    bool OnMessage(const TMessage& message) override;
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

private:
    enum TControlId
    {
        ID_UPDATE = 1001,
        ID_TIME = 1002,
        ID_STEP = 1003,
        ID_PAUSE = 1004,
        ID_PLAY = 1005,
        ID_SEEK = 1006,
        ID_SPEED = 1007,
        ID_MENU = 1008
    };

    bool CreateControls();
    bool CreateSeekControls();
    void SetTips();
    void Layout();
    void LayoutControls(int width, bool narrow);
    void LayoutRest(int x, int wideGap, int width);
    void ShowTime();
    void ShowSpeed();
    void ShowSeek();
    // What to do about a preview without an effect stands beside the controls, as long as it is one.
    void ShowHint();
    bool OnKey(int key);
    void OnButton(int id);
    void OnEdited(int id);
    void EnterTime();
    void LeaveTime();

    TButton UpdateButton;
    TLabel TimeLabel;
    TEdit TimeField;
    TButton StepButton;
    TButton PauseButton;
    TButton PlayButton;
    TLabel Hint;
    TSeekBar SeekBar;
    TButton SpeedButton;
    TButton MenuButton;
    int SpeedLeft = 0;
    int MenuLeft = 0;
    bool IsHintShown = false;
    TPreviewClock Clock;
    TPreviewCommands* Commands = nullptr;
    // The start of the engine whose time is shown.
    unsigned ShownStart = 0;
    // A person types a time.
    bool IsTyping = false;
    // How far the effect has come since its first start or its last Update.
    float Furthest = 0;
};
