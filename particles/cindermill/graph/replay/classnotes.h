#pragma once

class TNodeType;

// What becomes of a node on the console.
enum TConsoleFate
{
    // The same as in the preview, as far as can be known.
    CF_ALIKE,
    // It is left out.
    CF_NOTHING,
    // It is exported as a point.
    CF_POINT,
    // It works by a rule that is not told.
    CF_OTHERRULE
};

// What holds for every node of a class. A class may have several.
struct TClassNote
{
    const char* ClassName;
    TConsoleFate Fate;
    const char* Text;
};

inline constexpr TClassNote ClassNotes[] = {
    {"TNoise", CF_NOTHING, "it is not exported, as the console has no command for it"},
    {"TVolume", CF_NOTHING, "it is not exported, as the console has no command for it"},
    {"TAnimationPath", CF_NOTHING, "it is not exported, as the console has no command for it"},
    {"TGrid", CF_POINT, "it is exported as a point: its particles leave from the transform alone"},
    {"TSphereSurface", CF_ALIKE,
     "where it turns is compared by the preview's rule, as the console's is not told"},
    {"TCollisionPlane", CF_OTHERRULE, "it is compared by the preview's rule, as the console's is not told"},
    {"TRandomEmitter", CF_ALIKE, "it draws at random: what the console draws is its own"},
    {"TVelocityCone", CF_ALIKE, "it draws at random: what the console draws is its own"},
    {"TSphereSurface", CF_ALIKE, "it draws at random: what the console draws is its own"},
    {"TTurbulence", CF_ALIKE, "it draws at random: what the console draws is its own"},
};

TConsoleFate GetConsoleFate(const TNodeType& type);
