#pragma once

#include <cstdint>

// What is behind the effect.
enum TBackground
{
    BG_GREY,
    BG_DARK,
    BG_BLACK,
    BG_WHITE,
    BG_BLUE,
    BG_GREEN,
    // One of the artist's own.
    BG_COLOUR,
    BG_CHECKER,
    BG_PICTURE,
    BG_NUMBACKGROUNDS
};

// What an artist has chosen to see in a preview. At first it is the effect alone, on grey, over the ground.
struct TPreviewLook
{
    TBackground Background = BG_GREY;
    // The artist's own, as 0xRRGGBB.
    uint32_t Colour = 0xCCCCCC;
    bool Ground = true;
    // Of the render stages: their static boxes, and those round their particles.
    bool Boxes = false;
    // Where each particle comes to in a tenth of a second.
    bool Velocities = false;
    // Where and how particles start.
    bool Emitters = false;
    // The one group that is drawn, -1 for all.
    int OnlyGroup = -1;
    bool operator==(const TPreviewLook& rhs) const = default;
};
