#pragma once

// The signals by which the system, a session or a terminal asks a program to end. The handler only notes
// them: what there is to do is done by the message loop.

// From now on they are noted, but for those that whoever started the program had it ignore. False if the
// system refuses.
bool WatchEndSignals();
// What becomes readable when one has come; -1 if none are watched.
int GetEndSignalHandle();
// The first that came, or 0.
int GetEndSignal();
// Ends the process as the signal would have, so that who waits for it sees why. May be called in a signal's
// handler.
[[noreturn]] void EndBySignal(int signal);
