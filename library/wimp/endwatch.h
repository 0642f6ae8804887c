#pragma once

#include "library/containers/owner.h"

class TEndWatchObjects;

// Hears when the system ends the program: by a signal, or with the session, which may ask before and go on
// after all. TWimpApp::OnEnding is told at once, in whatever loop that is; at the end itself then every
// dialog and menu is closed as by its close box, whatever was in the middle of something comes to its end,
// and the message loop ends. Nobody is asked anything from then on.
class TEndWatch
{
public:
    TEndWatch();
    ~TEndWatch();
    TEndWatch(const TEndWatch&) = delete;
    TEndWatch& operator=(const TEndWatch&) = delete;

    // Whether the system has ended the program.
    bool IsEnding() const;

private:
    TOwner<TEndWatchObjects> Objects;
};
