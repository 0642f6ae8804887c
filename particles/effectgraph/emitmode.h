#pragma once

// The numbers of the entries of an emitter's "Emit Mode".
enum TEmitMode
{
    EM_CHANCE,
    EM_STEADY,
    // All at once, when the delay is over.
    EM_BURST
};
