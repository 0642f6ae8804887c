#include "particles/cindermill/interface/particles/particlewindow.h"

#include "library/containers/assertion.h"
#include "library/system/clock.h"
#include "library/system/message.h"
#include "library/wimp/colourchooser.h"
#include "library/wimp/filechooser.h"
#include "library/wimp/gdi/gdibitmap.h"
#include "library/wimp/menu.h"
#include "particles/cindermill/interface/particles/previewgroups.h"
#include "particles/cindermill/interface/particles/previewmarks.h"
#include "particles/cindermill/interface/particles/savepicture.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

static constexpr TGDIColour ParticleBackground = 0xF0F0F0;
static TWindowClass ParticleClass("cindermill_particlewindow", PI_PROGRAM, ParticleBackground);
// A shorter one would start the effect again with every frame.
static constexpr float ShortestLoop = 0.1f;
static constexpr float QuarterTurn = 1.57079633f;

bool TParticleWindow::Create(TDocument& document)
{
    Doc = &document;
    TWindowParams params;
    params.Class = &ParticleClass;
    params.Title = "Effect Display [doc]";
    params.Kind = WK_TOP;
    params.X = 0;
    params.Y = 50;
    params.Width = 800;
    params.Height = 600;
    ASSERT_TEXT(TWindow::Create(params), "0 : Failed to create particle window");
    ASSERT_TEXT(Render.Create(this, document), "0 : Failed to create particle render subwindow");
    ASSERT_TEXT(Timeline.Create(this, document), "0 : Failed to create particle timelinw subwindow");
    ASSERT_TEXT(BudgetPanel.Create(this, Budget), "0 : Failed to create particle budget subwindow");
    ASSERT_TEXT(Notice.Create(&Render), "0 : Failed to create particle notice subwindow");
    Render.SetCommands(this);
    Timeline.SetCommands(this);
    OwnKeys.Add(KEY_F10, [](int code, void* window) {
        return static_cast<TParticleWindow*>(window)->OnPreviewCommand(FindPreviewKey(code, 0));
    });
    OwnKeys.Attach(this);
    Render.Show();
    Timeline.Show();
    Layout();
    return true;
}

void TParticleWindow::Layout()
{
    if (Timeline.GetHandle() == nullptr)
        return;
    int width = 0;
    int height = 0;
    GetSize(width, height);
    const int top = height > TParticleTimeline::Height ? height - TParticleTimeline::Height : 0;
    // However much there is to tell, half of the view stays one.
    BudgetHeight = IsBudgetShown ? BudgetPanel.GetWantedHeight() : 0;
    const int budget = BudgetHeight < top / 2 ? BudgetHeight : top / 2;
    Render.MoveTo(0, 0, width, top - budget);
    BudgetPanel.MoveTo(0, top - budget, width, budget);
    Timeline.MoveTo(0, top, width, TParticleTimeline::Height);
    Notice.Place(width, top - budget);
}

void TParticleWindow::ShowBudget(bool shown)
{
    IsBudgetShown = shown;
    BudgetPanel.Show(shown);
    TickBudget();
    Layout();
}

void TParticleWindow::TickBudget()
{
    Budget.Sample(*Doc);
    if (!IsBudgetShown)
        return;
    BudgetPanel.SetOnlyGroup(GetOnlyGroup());
    if (!Budget.Refresh(*Doc, GetTickCount(), Timeline.GetClock().GetFrameCost(), Render.GetDrawCost()))
        return;
    BudgetPanel.Update();
    if (BudgetHeight != BudgetPanel.GetWantedHeight())
        Layout();
}

// Several times a second: it goes through all groups and stages.
void TParticleWindow::TellWhatLacks()
{
    constexpr uint32_t pause = 150;
    const uint32_t now = GetTickCount();
    if (now - LastDiagnosis < pause)
        return;
    LastDiagnosis = now;
    Diagnosis.Tick(*Doc, GetOnlyGroup());
    Notice.SetText(Diagnosis.GetText());
}

void TParticleWindow::Tick()
{
    Render.Tick();
    Timeline.Tick();
    FollowOnlyGroup();
    TellWhatLacks();
    TickBudget();
    Render.HoldPicture(Timeline.GetClock().IsSeeking());
    Render.RedrawChanged();
}

void TParticleWindow::TickUnderDialog()
{
    Timeline.GetClock().AllowRestarts(false);
    Timeline.Tick();
    Timeline.GetClock().AllowRestarts(true);
    FollowOnlyGroup();
    Render.HoldPicture(Timeline.GetClock().IsSeeking());
    Render.RedrawChanged();
}

float TParticleWindow::GetTime() const
{
    return Doc->GetEngine().GetTime();
}

bool TParticleWindow::OnMessage(const TMessage& message)
{
    switch (message.Type) {
    case MT_SIZE:
        Layout();
        return true;
    case MT_KEYDOWN:
    case MT_CHAR:
        return OnPreviewKey(message) || TWindow::OnMessage(message);
    default:
        return TWindow::OnMessage(message);
    }
}

void TParticleWindow::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    const int number = static_cast<int>(argument);
    if (control == &BudgetPanel && code == CC_BUTTON)
        ToggleOnlyGroup(number);
    else if (control == &BudgetPanel && code == CC_SELECTION && Host != nullptr)
        Host->FrameGroup(*Doc, number);
    else if (code != CC_MENU || !OnPreviewCommand(number))
        TWindow::OnCommand(control, argument, code);
}

bool TParticleWindow::OnPreviewKey(const TMessage& message)
{
    if (message.Type == MT_KEYDOWN && message.Key == KEY_MENU) {
        OpenPreviewMenu(Render, 0, 0);
        return true;
    }
    const int command = message.Type == MT_CHAR ? FindPreviewCharacter(message.Character)
                                                : FindPreviewKey(message.Key, message.KeyFlags);
    if (command == 0)
        return false;
    const bool goesOn = command == PC_STEP || command == PC_FASTER || command == PC_SLOWER;
    return (message.IsRepeat && !goesOn) || OnPreviewCommand(command);
}

void TParticleWindow::TrackAt(TMenu& menu, TWindow& window, int x, int y)
{
    window.ClientToScreen(x, y);
    ScreenToClient(x, y);
    menu.Track(*this, x, y);
}

void TParticleWindow::OpenPreviewMenu(TWindow& window, int x, int y)
{
    TPreviewState state;
    GetState(state);
    TMenu menu;
    FillPreviewMenu(menu, state);
    TrackAt(menu, window, x, y);
}

void TParticleWindow::OpenSpeedMenu(TWindow& window, int x, int y)
{
    TPreviewState state;
    GetState(state);
    TMenu menu;
    FillSpeedMenu(menu, state);
    TrackAt(menu, window, x, y);
}

void TParticleWindow::GetState(TPreviewState& state)
{
    const TPreviewClock& clock = Timeline.GetClock();
    const TPreviewLook& look = GetLook();
    state.HasEffect = clock.HasEffect();
    state.IsPaused = clock.IsPaused();
    state.Speed = clock.GetSpeed();
    state.Loop = clock.GetLoop();
    state.IsSeedKept = clock.IsSeedKept();
    state.AreBirthsApart = Doc->GetEngine().AreBirthsApart();
    state.Ground = look.Ground;
    state.Boxes = look.Boxes;
    state.Velocities = look.Velocities;
    state.Emitters = look.Emitters;
    state.Budget = IsBudgetShown;
    state.Background = look.Background;
    state.OnlyGroup = look.OnlyGroup;
    for (int i = 0; i < NumStoredCameras; ++i)
        state.HasCamera[i] = HasCamera[i];
    GetParticleGroups(Doc->GetSchedule(), state.GroupNumbers, state.GroupNames);
}

bool TParticleWindow::OnPreviewCommand(int command)
{
    return OnRunCommand(command) || OnViewCommand(command) || OnLookCommand(command) ||
           OnNumberedCommand(command) || OnFileCommand(command);
}

bool TParticleWindow::OnFileCommand(int command)
{
    if (command == PC_SAVEPICTURE)
        SavePictureAs(Render, *Doc);
    else if (command == PC_RELOADTYPES)
        TCindermillApp::Get().ReloadNodeTypes();
    else
        return false;
    return true;
}

bool TParticleWindow::OnRunCommand(int command)
{
    TPreviewClock& clock = Timeline.GetClock();
    switch (command) {
    case PC_RESTART:
        Timeline.Restart();
        return true;
    case PC_PAUSE:
        Timeline.TogglePause();
        return true;
    case PC_STEP:
        Timeline.Step();
        return true;
    case PC_FASTER:
    case PC_SLOWER:
        Timeline.SetSpeed(clock.GetSpeed() + (command == PC_FASTER ? 1 : -1));
        return true;
    case PC_TOGGLELOOP:
        SetLoop(clock.GetLoop() > 0 ? 0 : LastLoop);
        return true;
    case PC_LOOPHERE:
        SetLoop(clock.GetTime() > ShortestLoop ? clock.GetTime() : ShortestLoop);
        return true;
    case PC_SAMESEED:
        clock.KeepSeed(!clock.IsSeedKept());
        Timeline.ShowClock();
        return true;
    case PC_ANOTHERSEED:
        clock.ChangeSeed();
        Timeline.ShowClock();
        return true;
    case PC_BIRTHSAPART:
        SetBirthsApart(!Doc->GetEngine().AreBirthsApart());
        return true;
    default:
        return false;
    }
}

void TParticleWindow::SetLoop(float seconds)
{
    TPreviewClock& clock = Timeline.GetClock();
    LastLoop = seconds > 0 ? seconds : LastLoop;
    clock.SetLoop(seconds);
    Timeline.ShowClock();
}

// The particles' stores are made for it when the engine starts.
void TParticleWindow::SetBirthsApart(bool apart)
{
    Doc->GetEngine().SetBirthsApart(apart);
    if (Timeline.GetClock().HasEffect())
        Timeline.Restart();
}

bool TParticleWindow::OnViewCommand(int command)
{
    TCamera& camera = Render.UseCamera();
    switch (command) {
    case PC_STARTVIEW:
        camera.Reset();
        return true;
    case PC_FRONTVIEW:
        camera.LookFrom(0, 0);
        return true;
    case PC_SIDEVIEW:
        camera.LookFrom(QuarterTurn, 0);
        return true;
    case PC_TOPVIEW:
        camera.LookFrom(0, QuarterTurn);
        return true;
    case PC_FRAME:
        FrameEffect();
        return true;
    default:
        return false;
    }
}

void TParticleWindow::FrameEffect()
{
    TVector3 min(0, 0, 0);
    TVector3 max(0, 0, 0);
    bool found = false;
    TString text;
    if (!RunGuarded([&] { found = GetParticleBox(*Doc, GetOnlyGroup(), min, max); }, text) || !found)
        return;
    int width = 0;
    int height = 0;
    Render.GetSize(width, height);
    Render.UseCamera().Frame(min, max,
                             static_cast<float>(width) / static_cast<float>(height > 0 ? height : 1));
}

bool TParticleWindow::OnLookCommand(int command)
{
    TPreviewLook look = GetLook();
    switch (command) {
    case PC_BUDGET:
        ShowBudget(!IsBudgetShown);
        return true;
    case PC_GROUND:
        look.Ground = !look.Ground;
        break;
    case PC_BOXES:
        look.Boxes = !look.Boxes;
        break;
    case PC_VELOCITIES:
        look.Velocities = !look.Velocities;
        break;
    case PC_EMITTERS:
        look.Emitters = !look.Emitters;
        break;
    default:
        return false;
    }
    SetLook(look);
    return true;
}

// Several entries of one kind have ids that follow each other.
bool TParticleWindow::OnNumberedCommand(int command)
{
    const auto numberIn = [command](int first, int count) {
        return command >= first && command < first + count ? command - first : -1;
    };
    if (const int speed = numberIn(PC_SPEED, TPreviewClock::NumSpeeds); speed != -1)
        Timeline.SetSpeed(speed);
    else if (const int loop = numberIn(PC_LOOP, NumLoops); loop != -1)
        SetLoop(LoopSeconds[loop]);
    else if (const int camera = numberIn(PC_CAMERA, NumStoredCameras); camera != -1)
        UseCamera(camera);
    else if (const int stored = numberIn(PC_STORECAMERA, NumStoredCameras); stored != -1)
        StoreCamera(stored);
    else if (const int background = numberIn(PC_BACKGROUND, BG_NUMBACKGROUNDS); background != -1)
        ChooseBackground(static_cast<TBackground>(background));
    else if (const int group = numberIn(PC_ONLYGROUP, TEffectExec::MaxGroups + 1); group != -1)
        ShowOnly(group - 1);
    else
        return false;
    return true;
}

void TParticleWindow::UseCamera(int camera)
{
    if (HasCamera[camera])
        Render.UseCamera().SetPlace(Cameras[camera]);
}

void TParticleWindow::StoreCamera(int camera)
{
    Cameras[camera] = Render.GetCamera().GetPlace();
    HasCamera[camera] = true;
}

void TParticleWindow::SetBackground(TBackground background, uint32_t colour)
{
    TPreviewLook look = GetLook();
    look.Background = background;
    look.Colour = colour;
    SetLook(look);
}

void TParticleWindow::ChooseBackground(TBackground background)
{
    if (background == BG_COLOUR)
        ChooseOwnColour();
    else if (background != BG_PICTURE || ChoosePicture())
        SetBackground(background, GetLook().Colour);
}

// Each colour that is tried is seen behind the effect, which runs on. It begins with the one that is
// seen, or where none is, with the one that was chosen before.
void TParticleWindow::ChooseOwnColour()
{
    const TPreviewLook before = GetLook();
    const bool isColour = before.Background != BG_CHECKER && before.Background != BG_PICTURE;
    TGDIColour colour = isColour ? TBackdrop::GetColour(before) : before.Colour;
    const auto tried = [](TGDIColour shown, void* window) {
        static_cast<TParticleWindow*>(window)->SetBackground(BG_COLOUR, shown);
    };
    if (ChooseColour("Background colour", colour, tried, this))
        SetBackground(BG_COLOUR, colour);
    else
        SetBackground(before.Background, before.Colour);
}

bool TParticleWindow::ChoosePicture()
{
    vector<TFileFilter> filters;
    filters.push_back(TFileFilter{"KZ5 textures (*.dds;*.hvt)", "*.dds;*.hvt"});
    filters.push_back(TFileFilter{"*.*", "*.*"});
    TString path;
    TString folder;
    if (!HasLastDirectory(filters))
        folder.SetDirectory(Doc->GetPath());
    if (!OpenFileChooser("Select background picture", filters, folder, path))
        return false;
    TString fault;
    if (Render.GetScene().GetBackdrop().LoadPicture(path, fault))
        return true;
    ShowMessage("Could not load picture %s: %s", path.Print(), fault.Print());
    return false;
}

void TParticleWindow::ToggleOnlyGroup(int group)
{
    ShowOnly(group == GetOnlyGroup() ? -1 : group);
}

void TParticleWindow::ShowOnly(int group)
{
    TPreviewLook look = GetLook();
    OnlyNode = FindGroupNode(Doc->GetSchedule(), group);
    look.OnlyGroup = OnlyNode != nullptr ? group : -1;
    SetLook(look);
}

// Groups have other numbers after an edit, or have gone.
void TParticleWindow::FollowOnlyGroup()
{
    TPreviewLook look = GetLook();
    if (look.OnlyGroup == -1)
        return;
    const TEffectSchedule& schedule = Doc->GetSchedule();
    if (!schedule.IsCreated() || FindGroupNode(schedule, look.OnlyGroup) == OnlyNode)
        return;
    look.OnlyGroup = FindGroupShownBy(schedule, OnlyNode);
    SetLook(look);
}
