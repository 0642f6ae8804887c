#pragma once

#include "library/containers/owner.h"
#include "library/wimp/keyboardshortcut.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/particles/budgetpanel.h"
#include "particles/cindermill/interface/particles/camera.h"
#include "particles/cindermill/interface/particles/particlerenderwindow.h"
#include "particles/cindermill/interface/particles/particletimeline.h"
#include "particles/cindermill/interface/particles/previewcommands.h"
#include "particles/cindermill/interface/particles/previewdiagnosis.h"
#include "particles/cindermill/interface/particles/previewmenu.h"
#include "particles/cindermill/interface/particles/previewnotice.h"

class TDocument;

// What the preview asks of the document's other windows.
class TParticleWindowHost
{
public:
    virtual ~TParticleWindowHost() = default;
    // Shows the nodes of a group of the schedule in the graph.
    virtual void FrameGroup(TDocument& document, int group) = 0;
};

// The window in which a document's effect runs. It is the clock of the document's engine. Closing it hides
// it.
class TParticleWindow : public TWindow, public TPreviewCommands
{
public:
    // The document stays the caller's and outlives the window. A refusal of the window system is an
    // assertion.
    bool Create(TDocument& document);
    // Null for none.
    void SetHost(TParticleWindowHost* host) { Host = host; }
    // One idle pass: the camera, the time, the effect.
    void Tick();
    // While a dialog waits: the effect goes on, and no file is read for it.
    void TickUnderDialog();
    // The engine's.
    float GetTime() const;
    // Draws one group alone, or all again if that one was alone already.
    void ToggleOnlyGroup(int group);
    // -1 for all.
    int GetOnlyGroup() const { return GetLook().OnlyGroup; }
    const TPreviewLook& GetLook() const { return Render.GetLook(); }
    bool OnPreviewCommand(int command);

    bool OnMessage(const TMessage& message) override;
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;
    bool OnPreviewKey(const TMessage& message) override;
    void OpenPreviewMenu(TWindow& window, int x, int y) override;
    void OpenSpeedMenu(TWindow& window, int x, int y) override;
    void FocusView() override { Render.TakeFocus(); }

    TParticleRenderWindow& GetRenderWindow() { return Render; }
    TParticleTimeline& GetTimeline() { return Timeline; }
    const TPreviewBudget& GetBudget() const { return Budget; }

private:
    void Layout();
    void TellWhatLacks();
    void ShowBudget(bool shown);
    void TickBudget();
    void GetState(TPreviewState& state);
    void TrackAt(TMenu& menu, TWindow& window, int x, int y);
    void SetLook(const TPreviewLook& look) { Render.GetScene().SetLook(look); }
    void ShowOnly(int group);
    void FollowOnlyGroup();
    bool OnRunCommand(int command);
    bool OnViewCommand(int command);
    bool OnLookCommand(int command);
    bool OnNumberedCommand(int command);
    bool OnFileCommand(int command);
    void SetLoop(float seconds);
    void SetBirthsApart(bool apart);
    void FrameEffect();
    void UseCamera(int camera);
    void StoreCamera(int camera);
    void SetBackground(TBackground background, uint32_t colour);
    void ChooseBackground(TBackground background);
    void ChooseOwnColour();
    bool ChoosePicture();

    // Keys that the main window has a use for too.
    TKeyboardShortcut OwnKeys{this};
    TParticleRenderWindow Render;
    TParticleTimeline Timeline;
    TPreviewBudget Budget;
    TBudgetPanel BudgetPanel;
    bool IsBudgetShown = false;
    int BudgetHeight = 0;
    TPreviewNotice Notice;
    TPreviewDiagnosis Diagnosis;
    uint32_t LastDiagnosis = 0;
    TDocument* Doc = nullptr;
    TParticleWindowHost* Host = nullptr;
    // What a loop was before it was switched off.
    float LastLoop = 5;
    TCameraPlace Cameras[NumStoredCameras];
    bool HasCamera[NumStoredCameras] = {};
    // By which the group that is drawn alone is known again. Only compared: it may have gone.
    const TEffectNode* OnlyNode = nullptr;
};
