#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/menu.h"

// What can be done with a preview, by the ids of its menu's entries.
enum TPreviewCommand
{
    PC_RESTART = 40300,
    PC_PAUSE,
    PC_STEP,
    PC_FASTER,
    PC_SLOWER,
    PC_LOOPHERE,
    PC_SAMESEED,
    PC_ANOTHERSEED,
    PC_BIRTHSAPART,
    PC_STARTVIEW,
    PC_FRONTVIEW,
    PC_SIDEVIEW,
    PC_TOPVIEW,
    PC_FRAME,
    PC_GROUND,
    PC_BOXES,
    PC_VELOCITIES,
    PC_EMITTERS,
    PC_BUDGET,
    PC_SAVEPICTURE,
    PC_RELOADTYPES,
    PC_TOGGLELOOP,
    // The first of several; the others follow.
    PC_SPEED = 40330,
    PC_LOOP = 40340,
    PC_CAMERA = 40350,
    PC_STORECAMERA = 40355,
    PC_BACKGROUND = 40360,
    // The first for all groups, then one for each.
    PC_ONLYGROUP = 40370
};

constexpr int NumStoredCameras = 4;

// The loops of the menu, in seconds; the first is none.
constexpr float LoopSeconds[] = {0, 1, 2, 3, 5, 10, 20, 30};
constexpr int NumLoops = sizeof(LoopSeconds) / sizeof(LoopSeconds[0]);

// What the menu shows of a preview's state.
struct TPreviewState
{
    bool HasEffect = false;
    bool IsPaused = false;
    int Speed = 0;
    float Loop = 0;
    bool IsSeedKept = false;
    bool AreBirthsApart = false;
    bool Ground = true;
    bool Boxes = false;
    bool Velocities = false;
    bool Emitters = false;
    bool Budget = false;
    int Background = 0;
    int OnlyGroup = -1;
    bool HasCamera[NumStoredCameras] = {};
    // Of the groups that have a tab, with their numbers.
    vector<TString> GroupNames;
    vector<int> GroupNumbers;
};

void FillPreviewMenu(TMenu& menu, const TPreviewState& state);
void FillSpeedMenu(TMenu& menu, const TPreviewState& state);

// The command of a key that is pressed, or of a character that is typed; 0 for none.
int FindPreviewKey(int key, int keyFlags);
int FindPreviewCharacter(unsigned character);
