#pragma once

#include "library/wimp/gl/windowmessage.h"

// Counts a wheel's way in steps. A touchpad, or a wheel without notches, tells of a notch in many small
// parts: what is too little for a step waits for the next part.
class TWheelSteps
{
public:
    // So many steps for so much of a message's Delta.
    explicit TWheelSteps(int steps, int delta = WheelNotch) : Steps(steps), Delta(delta) {}
    // Those that are complete now, away from the user.
    int Take(int delta)
    {
        Rest += delta * Steps;
        const int taken = Rest / Delta;
        Rest -= taken * Delta;
        return taken;
    }
    void Forget() { Rest = 0; }

private:
    int Steps;
    int Delta;
    int Rest = 0;
};
