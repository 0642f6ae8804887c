#include "particles/cindermill/interface/particles/previewmenu.h"

#include "library/wimp/gl/windowmessage.h"
#include "particles/cindermill/interface/particles/previewclock.h"
#include "particles/cindermill/interface/particles/previewlook.h"

namespace {

struct TLine
{
    int Id;
    const char* Text;
};

constexpr TLine ViewLines[] = {{PC_STARTVIEW, "Start View\tR"},
                               {PC_FRONTVIEW, "Front\tF2"},
                               {PC_SIDEVIEW, "Side\tF3"},
                               {PC_TOPVIEW, "Top\tF4"},
                               {PC_FRAME, "Frame the Effect\tF5"}};
constexpr TLine ShowLines[] = {{PC_GROUND, "Ground"},
                               {PC_BOXES, "Boxes\tF6"},
                               {PC_VELOCITIES, "Velocities\tF7"},
                               {PC_EMITTERS, "Emitter Shapes\tF8"}};
// By TBackground.
constexpr const char* BackgroundNames[BG_NUMBACKGROUNDS] = {
    "Grey", "Dark Grey", "Black", "White", "Night Blue", "Green", "Colour...", "Checker", "Picture..."};

struct TKeyCommand
{
    int Key;
    int KeyFlags;
    int Command;
};

// Keys that no camera listens to. Printable ones change when the effect runs, and nothing else: who types by
// mistake finds the same picture. Only R leads back to the first view.
constexpr TKeyCommand KeyCommands[] = {
    {KEY_HOME, 0, PC_RESTART},    {KEY_ESCAPE, 0, PC_ONLYGROUP},  {KEY_F1 + 1, 0, PC_FRONTVIEW},
    {KEY_F1 + 2, 0, PC_SIDEVIEW}, {KEY_F1 + 3, 0, PC_TOPVIEW},    {KEY_F1 + 4, 0, PC_FRAME},
    {KEY_F1 + 5, 0, PC_BOXES},    {KEY_F1 + 6, 0, PC_VELOCITIES}, {KEY_F1 + 7, 0, PC_EMITTERS},
    {'L', 0, PC_TOGGLELOOP},      {'S', 0, PC_SAMESEED},          {'R', 0, PC_STARTVIEW}};
constexpr int FirstCameraKey = KEY_F1 + 8;

struct TCharacterCommand
{
    unsigned Character;
    int Command;
};

constexpr TCharacterCommand CharacterCommands[] = {
    {' ', PC_PAUSE}, {'.', PC_STEP}, {'+', PC_FASTER}, {'-', PC_SLOWER}};

template <int Count>
void AddLines(TMenu& menu, const TLine (&lines)[Count])
{
    for (const TLine& line : lines)
        menu.AddItem(line.Id, line.Text);
}

void AddLoops(TMenu& menu, const TPreviewState& state)
{
    TString text;
    bool listed = false;
    for (int i = 0; i < NumLoops; ++i) {
        text.Format("%g s", static_cast<double>(LoopSeconds[i]));
        menu.AddItem(PC_LOOP + i, i == 0 ? "Off\tL" : text.Print());
        menu.CheckItem(PC_LOOP + i, state.Loop == LoopSeconds[i]);
        listed = listed || state.Loop == LoopSeconds[i];
    }
    menu.AddSeparator();
    text.Format(listed ? "To This Time" : "To This Time (now %.2f s)", static_cast<double>(state.Loop));
    menu.AddItem(PC_LOOPHERE, text);
    menu.CheckItem(PC_LOOPHERE, !listed);
    menu.EnableItem(PC_LOOPHERE, state.HasEffect);
}

void AddRun(TMenu& menu, const TPreviewState& state)
{
    menu.AddItem(PC_RESTART, "Restart\tHome");
    menu.AddItem(PC_PAUSE, "Pause\tSpace");
    menu.CheckItem(PC_PAUSE, state.IsPaused);
    menu.AddItem(PC_STEP, "Step\t.");
    menu.EnableItem(PC_STEP, state.HasEffect);
    FillSpeedMenu(menu.AddPopup("Speed"), state);
    AddLoops(menu.AddPopup("Loop"), state);
    menu.AddItem(PC_SAMESEED, "Same Seed\tS");
    menu.CheckItem(PC_SAMESEED, state.IsSeedKept);
    menu.AddItem(PC_ANOTHERSEED, "Another Seed");
    menu.EnableItem(PC_ANOTHERSEED, state.IsSeedKept);
    menu.AddItem(PC_BIRTHSAPART, "Births as on the console");
    menu.CheckItem(PC_BIRTHSAPART, state.AreBirthsApart);
}

void AddViews(TMenu& menu, const TPreviewState& state)
{
    AddLines(menu, ViewLines);
    menu.EnableItem(PC_FRAME, state.HasEffect);
    menu.AddSeparator();
    for (int i = 0; i < NumStoredCameras; ++i) {
        menu.AddItem(PC_CAMERA + i, TempFormat("Camera %d\tF%d", i + 1, i + 9));
        menu.EnableItem(PC_CAMERA + i, state.HasCamera[i]);
    }
    menu.AddSeparator();
    for (int i = 0; i < NumStoredCameras; ++i)
        menu.AddItem(PC_STORECAMERA + i, TempFormat("Store Camera %d\tShift+F%d", i + 1, i + 9));
}

void AddShown(TMenu& menu, const TPreviewState& state)
{
    AddLines(menu, ShowLines);
    menu.CheckItem(PC_GROUND, state.Ground);
    menu.CheckItem(PC_BOXES, state.Boxes);
    menu.CheckItem(PC_VELOCITIES, state.Velocities);
    menu.CheckItem(PC_EMITTERS, state.Emitters);
}

void AddGroups(TMenu& menu, const TPreviewState& state)
{
    menu.AddItem(PC_ONLYGROUP, "All\tEsc");
    menu.CheckItem(PC_ONLYGROUP, state.OnlyGroup == -1);
    for (int i = 0; i < state.GroupNames.size(); ++i) {
        const int id = PC_ONLYGROUP + 1 + state.GroupNumbers[i];
        menu.AddItem(id, state.GroupNames[i]);
        menu.CheckItem(id, state.OnlyGroup == state.GroupNumbers[i]);
    }
}

} // namespace

void FillSpeedMenu(TMenu& menu, const TPreviewState& state)
{
    for (int i = 0; i < TPreviewClock::NumSpeeds; ++i)
        menu.AddItem(PC_SPEED + i, TPreviewClock::GetSpeedText(i));
    menu.CheckItem(PC_SPEED + state.Speed, true);
    menu.AddSeparator();
    menu.AddItem(PC_FASTER, "Faster\t+");
    menu.AddItem(PC_SLOWER, "Slower\t-");
}

void FillPreviewMenu(TMenu& menu, const TPreviewState& state)
{
    AddRun(menu, state);
    menu.AddSeparator();
    AddViews(menu.AddPopup("View"), state);
    TMenu& backgrounds = menu.AddPopup("Background");
    for (int i = 0; i < BG_NUMBACKGROUNDS; ++i)
        backgrounds.AddItem(PC_BACKGROUND + i, BackgroundNames[i]);
    backgrounds.CheckItem(PC_BACKGROUND + state.Background, true);
    AddShown(menu.AddPopup("Show"), state);
    AddGroups(menu.AddPopup("Only Group"), state);
    menu.AddItem(PC_BUDGET, "Budget");
    menu.CheckItem(PC_BUDGET, state.Budget);
    menu.AddSeparator();
    menu.AddItem(PC_SAVEPICTURE, "Save Picture...");
    menu.AddItem(PC_RELOADTYPES, "Reload Node Types");
}

int FindPreviewKey(int key, int keyFlags)
{
    for (const TKeyCommand& entry : KeyCommands)
        if (entry.Key == key && entry.KeyFlags == keyFlags)
            return entry.Command;
    const int camera = key - FirstCameraKey;
    if (camera < 0 || camera >= NumStoredCameras)
        return 0;
    if (keyFlags == KF_SHIFT)
        return PC_STORECAMERA + camera;
    return keyFlags == 0 ? PC_CAMERA + camera : 0;
}

int FindPreviewCharacter(unsigned character)
{
    for (const TCharacterCommand& entry : CharacterCommands)
        if (entry.Character == character)
            return entry.Command;
    return 0;
}
