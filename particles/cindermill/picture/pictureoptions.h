#pragma once

#include "library/containers/string.h"
#include "library/maths/vector3.h"

#include <cstdint>

class TArguments;

// What a picture shows, and how, as the words of a command line tell it.
struct TPictureOptions
{
    // No picture is larger across or down.
    static constexpr int MaxSide = 16384;

    // The pictures that are drawn, by the steps that the effect has made.
    int FirstFrame = 100;
    int LastFrame = 100;
    // Of a sheet; 0 where nothing was told.
    int Columns = 0;
    // Of a picture; 0 where nothing was told.
    int Width = 0;
    int Height = 0;
    uint32_t Seed = 1;
    bool HasCamera = false;
    TVector3 Eye;
    TVector3 Target;
    // Views round the target, 0 for the one.
    int Turntable = 0;
    // 0xRRGGBB; the preview's own at first.
    uint32_t Background = 0xCCCCCC;
    // The effect alone, without the ground and what marks nodes.
    bool Plain = false;

    // How many pictures that makes.
    int GetNumPictures() const;
};

// Takes all that is left of the words. False with what is wrong.
bool ReadPictureOptions(TArguments& arguments, TPictureOptions& options, TString& fault);
